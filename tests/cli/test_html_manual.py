"""The manual as web pages: they are complete, hang together, and their search finds every message.

tests/manual looks at the same pages in a browser.
"""

import functools
import json
import re
import shutil
import subprocess
import tempfile
import unittest
from html import unescape
from html.parser import HTMLParser
from pathlib import Path
from typing import NamedTuple
from unittest import mock

from support import ROOT, words
from test_catalogue import CATALOGUE
from test_manual import find_examples, read_page, texts_in_heading

import manual  # of scripts/, which support has made known

MISSING = manual.missing_tools()
NODE = shutil.which("node")

ALL = "all.html"
FIRST = "index.html"

# ---------------------------------------------------------------------------------------------
# Reading pages
# ---------------------------------------------------------------------------------------------


class PageReader(HTMLParser):
    """The ids, the headings and what the page refers to."""

    def __init__(self, text):
        super().__init__()
        self.ids, self.headings, self.targets = [], [], []
        self.feed(text)
        self.close()

    def handle_starttag(self, tag, attributes):
        attributes = dict(attributes)
        if "id" in attributes:
            self.ids.append(attributes["id"])
        if re.fullmatch("h[1-6]", tag):
            self.headings.append((tag, attributes.get("id")))
        self.targets += [attributes[name] for name in ("href", "src") if name in attributes]


class Figure(NamedTuple):
    """A script as it is shown."""

    state: str
    caption: str
    first_line: int
    code: str  # with its tags


FIGURE = re.compile(
    r'<figure class="script ?(\w*)"><figcaption>(.*?)</figcaption>'
    r".*?<code[^>]*?(?:source-line (\d+);\")?>(.*?)</code>.*?</figure>",
    re.DOTALL,
)

CODE = re.compile(r"<pre[^>]*><code[^>]*>(.*?)</code></pre>", re.DOTALL)


def plain(html):
    return unescape(re.sub(r"<[^>]*>", "", html))


def figures_of(text):
    return [
        Figure(state, plain(caption), int(before or 0) + 1, code)
        for state, caption, before, code in FIGURE.findall(text)
    ]


def address(page):
    return FIRST if page == "README" else f"{page}.html"


def expected_states(examples):
    """What each script of a page is called: a right one below a wrong one is that one mended."""
    states, section, is_faulty = [], None, False
    for script in examples.scripts:
        if script.fence.section != section:
            section, is_faulty = script.fence.section, False
        fault = "wrong" if script.is_wrong else "warned" if script.diagnostics else ""
        is_faulty = is_faulty or bool(fault)
        states.append(fault or ("mended" if is_faulty and not script.is_frame else ""))
    return states


LABELS = {
    "": r"(Script|Statements)( \S+\.st)?",
    "wrong": r"Wrong (script|statements)( \S+\.st)?",
    "warned": r"(Script|Statements)( \S+\.st)? with a warning",
    "mended": r"Mended (script|statements)( \S+\.st)?",
}


def first_line(script):
    """The line of the script's first line in what is compiled."""
    return script.frame.partition("(* statements *)")[0].count("\n") + 1 if script.frame else 1


# ---------------------------------------------------------------------------------------------
# The pages
# ---------------------------------------------------------------------------------------------


@functools.lru_cache(maxsize=None)
def folder_with_manual():
    """The pages, made once for all tests of this file."""
    folder = tempfile.TemporaryDirectory()
    unittest.addModuleCleanup(folder.cleanup)
    manual.write_manual(Path(folder.name))
    return Path(folder.name)


@unittest.skipIf(MISSING, f"not installed: {', '.join(MISSING)}")
class PagesTestCase(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.folder = folder_with_manual()
        cls.texts = {path.name: path.read_text() for path in cls.folder.glob("*.html")}
        cls.pages = {name: PageReader(text) for name, text in cls.texts.items()}
        cls.sources = {
            address(path.stem): read_page(path.name, path.read_text())
            for path in manual.MANUAL.glob("*.md")
        }


class Pages(PagesTestCase):
    def test_every_page_of_the_manual_is_there(self):
        self.assertEqual(set(self.texts), {*self.sources, ALL})
        for name, source in self.sources.items():
            with self.subTest(page=name):
                self.assertEqual(len(self.pages[name].headings), len(source.headings))

    def test_titles(self):
        for name, text in self.texts.items():
            heading = plain(re.search(r"<h1[^>]*>(.*?)<a ", text, re.DOTALL)[1])
            title = f"{heading} – yxstcmp {manual.version()}"
            with self.subTest(page=name):
                self.assertEqual(plain(re.search("<title>(.*)</title>", text)[1]), title)

    def test_version_is_that_of_the_project(self):
        cmake = (ROOT / "CMakeLists.txt").read_text()
        self.assertIn(f"project(yxstcmp VERSION {manual.version()} ", cmake)

    def test_headings_have_ids_and_permalinks(self):
        for name, page in self.pages.items():
            ids = [its_id for _, its_id in page.headings if its_id]
            own = len(page.headings) - (name == ALL)  # its contents have a heading of their own
            with self.subTest(page=name):
                self.assertEqual(len(ids), own)
                self.assertEqual(len(page.ids), len(set(page.ids)))
                self.assertEqual(self.texts[name].count('<a class="permalink"'), own)
                for its_id in ids:
                    self.assertIn(f"#{its_id}", page.targets)

    def test_identifiers_have_places(self):
        for name, marks in (("diagnostics", "id"), ("lints", "reason"), ("check", "reason")):
            text = (ROOT / "docs/manual" / f"{name}.md").read_text("utf-8")
            ids = re.findall(rf"^<!-- {marks}: (.*) -->$", text, re.MULTILINE)
            self.assertTrue(ids)
            for its_id in ", ".join(ids).split(", "):
                self.assertIn(f"id-{its_id}", self.pages[f"{name}.html"].ids)

    def test_links_lead_somewhere_in_the_folder(self):
        for name, page in self.pages.items():
            for target in page.targets:
                file, _, anchor = target.partition("#")
                with self.subTest(page=name, target=target):
                    self.assertTrue((self.folder / (file or name)).is_file())
                    if anchor:
                        self.assertIn(anchor, self.pages[file or name].ids)

    def test_page_of_everything_needs_no_other_file(self):
        targets = self.pages[ALL].targets
        self.assertEqual([each for each in targets if not each.startswith("#")], [])
        everything = sum(len(source.headings) for source in self.sources.values())
        self.assertEqual(len(self.pages[ALL].headings), everything + 1)

    def test_each_chapter_leads_to_the_next(self):
        order = [address(path.stem) for path in manual.chapter_files()]
        self.assertEqual(order[0], FIRST)
        for before, after in zip(order, order[1:]):
            self.assertRegex(self.texts[before], f'<a href="{after}" rel="next">')
            self.assertRegex(self.texts[after], f'<a href="{before}" rel="prev">')
        self.assertNotIn('rel="prev"', self.texts[order[0]])
        self.assertNotIn('rel="next"', self.texts[order[-1]])

    def test_contents_name_every_chapter_and_every_section(self):
        for name in self.sources:
            contents = re.search('<nav class="contents".*?</nav>', self.texts[name], re.DOTALL)[0]
            listed = PageReader(contents).targets
            sections = [f"#{its_id}" for _, its_id in self.pages[name].headings[1:]]
            with self.subTest(page=name):
                self.assertEqual([each for each in listed if each[0] == "#"], sections)
                self.assertLessEqual(set(self.sources), set(listed))

    def test_dark_colours_are_for_screens_alone(self):
        conditions = re.findall("@media ([^{]*dark[^{]*)", (self.folder / "style.css").read_text())
        self.assertEqual(conditions, ["screen and (prefers-color-scheme: dark) "])

    def test_licence_is_where_the_code_is(self):
        self.assertIn("Permission is hereby granted", (self.folder / "lunr.copyright").read_text())
        self.assertIn("MIT", (self.folder / "lunr.min.js").read_text()[:300])


class Examples(PagesTestCase):
    def examples(self):
        """Each script with the figure that shows it and the state that it must have."""
        found = []
        for name, source in self.sources.items():
            examples, figures = find_examples(source), figures_of(self.texts[name])
            self.assertEqual(len(figures), len(examples.scripts), name)
            found += zip(examples.scripts, figures, expected_states(examples))
        return found

    def in_place(self, script):
        return self.subTest(page=script.fence.page, line=script.fence.line)

    def test_examples_are_shown_as_they_are_written(self):
        for name, source in self.sources.items():
            shown = [plain(code) for code in CODE.findall(self.texts[name])]
            with self.subTest(page=name):
                self.assertEqual(shown, [fence.text.removesuffix("\n") for fence in source.fences])

    def test_wrong_and_mended_scripts_have_labels(self):
        for script, figure, state in self.examples():
            with self.in_place(script):
                self.assertEqual(figure.state, state)
                self.assertRegex(figure.caption, f"^{LABELS[state]}$")
        self.assertEqual({state for _, _, state in self.examples()}, set(LABELS))

    def test_lines_are_numbered_as_messages_count_them(self):
        for script, figure, _ in self.examples():
            with self.in_place(script):
                self.assertEqual(figure.first_line, first_line(script))
                lines = figure.code.count('<span id="lines-')
                self.assertEqual(lines, script.fence.text.count("\n"))
        self.assertGreater(len({first_line(script) for script, _, _ in self.examples()}), 1)

    def test_reserved_words_are_coloured_and_names_are_not(self):
        coloured, bare = set(), set()
        for _, figure, _ in self.examples():
            coloured.update(re.findall(r'<span class="(?:kw|cf|im|dt|cn|va)">(\w+)<', figure.code))
            outside = re.sub(r'<span class="\w+">[^<]*</span>', " ", figure.code)
            # No word of the language: a literal with a type, as other dialects have it.
            bare.update(word.upper() for word in re.findall(r"\w+\b(?!#)", plain(outside)))
        reserved = {*words.reserved_words(), *words.types()}
        self.assertEqual(bare & reserved, set())
        self.assertGreater(len({word.upper() for word in coloured} & reserved), 50)


# ---------------------------------------------------------------------------------------------
# Search
# ---------------------------------------------------------------------------------------------

SEARCH_PROGRAM = """
const vm = require("vm");
const fs = require("fs");
const path = require("path");
const [folder] = process.argv.slice(1);
const page = vm.createContext({});
for (const name of ["lunr.min.js", "sections.js", "search.js"]) {
    vm.runInContext(fs.readFileSync(path.join(folder, name), "utf8"), page, name);
}
const find = vm.runInContext("manualSearch.open(manualSections)", page);
const queries = JSON.parse(fs.readFileSync(0, "utf8"));
console.log(JSON.stringify(queries.map(find)));
"""


def one_line(text):
    return " ".join(text.split())


def holds(section, text):
    return one_line(text).lower() in f"{section['title']} {section['text']}".lower()


@unittest.skipIf(NODE is None, "Node.js is not installed")
class Search(PagesTestCase):
    def search(self, *queries):
        """The sections that are found for each query, the best first."""
        result = subprocess.run(
            [NODE, "-e", SEARCH_PROGRAM, self.folder],
            input=json.dumps(queries),
            capture_output=True,
            encoding="utf-8",
        )
        self.assertEqual(result.stderr, "")
        return json.loads(result.stdout)

    def titles(self, query, count=1):
        """Of the first sections that are found."""
        return [section["title"] for section in self.search(query)[0][:count]]

    def test_every_message_is_found_by_its_text(self):
        texts = list(CATALOGUE.values())
        for text, found in zip(texts, self.search(*texts)):
            with self.subTest(text=text):
                self.assertTrue(found and holds(found[0], text), [s["title"] for s in found[:3]])

    def test_every_message_is_found_by_its_words(self):
        """Without the signs, in small letters."""
        texts = [text for text in CATALOGUE.values() if re.search(r"\w", text)]
        queries = [" ".join(re.findall(r"\w+", text)).lower() for text in texts]
        for text, found in zip(texts, self.search(*queries)):
            with self.subTest(text=text):
                self.assertTrue(any(holds(section, text) for section in found))

    def test_the_entry_of_a_message_is_among_the_first(self):
        source = self.sources["diagnostics.html"]
        headed = [
            (text, heading.text.replace("`", ""))
            for heading in source.headings
            for text in texts_in_heading(heading.text)
            if heading.text.replace("`", "") == text.partition("\n")[0]
        ]
        self.assertGreater(len(headed), 20)
        for (text, heading), found in zip(headed, self.search(*(text for text, _ in headed))):
            with self.subTest(text=text):
                self.assertEqual(found[0]["title"], heading)

    def test_a_section_of_that_name_comes_first(self):
        self.assertEqual(self.titles("types"), ["Types"])

    def test_words_are_found_in_part_and_in_other_forms(self):
        entry = "Not enough actual parameters"
        for query in ("actu enou", "parameter enough", "ENOUGH  actual", "actual enough not"):
            with self.subTest(query=query):
                self.assertEqual(self.titles(query), [entry])

    def test_small_words_and_signs_are_found(self):
        found = self.search("not or and")[0]
        self.assertTrue(found and all(holds(section, "or") for section in found))
        for signs, found in zip(("**", ":=", "<>"), self.search("**", ":=", "<>")):
            self.assertTrue(found and all(holds(section, signs) for section in found), signs)

    def test_a_result_tells_where_it_stands(self):
        section = self.search('"BREAK" outside of loop')[0][0]
        self.assertEqual(section["above"], ["Diagnostics", "Statements"])
        self.assertEqual(section["target"], "diagnostics.html#break-outside-of-loop")

    def test_every_section_is_found_by_its_title(self):
        titles = [
            (name, its_id)
            for name, page in self.pages.items()
            if name != ALL
            for _, its_id in page.headings
        ]
        sections = re.findall(r'"target": "([^"]+)"', (self.folder / "sections.js").read_text())
        self.assertEqual(sorted(sections), sorted(f"{name}#{its_id}" for name, its_id in titles))

    def test_what_is_not_there_is_not_found(self):
        self.assertEqual(self.search("qqqq", "  ", "$$$$"), [[], [], []])


# ---------------------------------------------------------------------------------------------
# What the script notices
# ---------------------------------------------------------------------------------------------


class WrongManualsAreNoticed(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        patch = mock.patch.object(manual, "MANUAL", self.folder)
        patch.start()
        self.addCleanup(patch.stop)

    def write(self, name, text):
        (self.folder / name).write_text(text)

    def test_a_page_without_a_place(self):
        self.write("README.md", "# A\n\n[b](b.md) [c](c.md#d) [b](b.md)\n")
        self.write("b.md", "# B\n")
        self.write("c.md", "# C\n")
        names = [path.name for path in manual.chapter_files()]
        self.assertEqual(names, ["README.md", "b.md", "c.md"])
        self.write("d.md", "# D\n")
        with self.assertRaisesRegex(SystemExit, "d.md is not named"):
            manual.chapter_files()

    @unittest.skipIf(MISSING, f"not installed: {', '.join(MISSING)}")
    def test_a_page_without_a_title(self):
        self.write("b.md", "## B\n")
        with self.assertRaisesRegex(SystemExit, "does not begin with its title"):
            manual.read_chapter(self.folder / "b.md")


if __name__ == "__main__":
    unittest.main()
