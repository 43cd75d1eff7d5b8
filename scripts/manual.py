#!/usr/bin/env python3
"""Makes web pages of docs/manual.

    manual.py FOLDER

pandoc makes HTML of the text of each page, with the filter docs/manual/web/page.lua and the colours
of editors/kate; here it is put into the templates of docs/manual/web. The chapters stand in the
order in which docs/manual/README.md names them. lunr, which searches, is that of Debian.
"""

import argparse
import json
import re
import shutil
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from html import escape
from html.parser import HTMLParser
from pathlib import Path
from string import Template
from typing import List, NamedTuple

ROOT = Path(__file__).resolve().parents[1]
MANUAL = ROOT / "docs" / "manual"
WEB = MANUAL / "web"
COLOURS = ROOT / "editors" / "kate" / "yxst.xml"

SEARCH = Path("/usr/share/javascript/lunr/lunr.min.js")
SEARCH_LICENCE = Path("/usr/share/doc/libjs-lunr/copyright")

COPIED = {
    "style.css": WEB / "style.css",
    "manual.js": WEB / "manual.js",
    "search.js": WEB / "search.js",
    "scroll.js": WEB / "scroll.js",
    "lunr.min.js": SEARCH,
    "lunr.copyright": SEARCH_LICENCE,
}

# ---------------------------------------------------------------------------------------------
# Chapters
# ---------------------------------------------------------------------------------------------


class Section(NamedTuple):
    level: int  # of its heading
    id: str
    title: str
    text: str  # up to the next heading


class Chapter(NamedTuple):
    name: str  # of its page, without .html
    html: str
    sections: List[Section]  # the first is the chapter's own

    @property
    def page(self):
        return f"{self.name}.html"

    @property
    def title(self):
        return self.sections[0].title


def chapter_files():
    """The pages in the order of the first; a page that it does not name has no place."""
    first = MANUAL / "README.md"
    named = re.findall(r"\]\(([\w-]+\.md)\b", first.read_text(encoding="utf-8"))
    files = list(dict.fromkeys([first, *(MANUAL / name for name in named)]))
    for path in sorted(MANUAL.glob("*.md")):
        if path not in files:
            sys.exit(f"manual: {path} is not named in {first}")
    return files


def version():
    text = (ROOT / "CMakeLists.txt").read_text(encoding="utf-8")
    return re.search(r"project\(yxstcmp VERSION ([\d.]+)", text)[1]


# ---------------------------------------------------------------------------------------------
# The text of a chapter
# ---------------------------------------------------------------------------------------------


def with_joined_words(text):
    """What stands after the backticks as one word: pandoc keeps no others."""
    opening = re.compile(r"^( *`{3,})(\S[^`\n]*)$", re.MULTILINE)
    return opening.sub(lambda match: match[1] + "|".join(match[2].split()), text)


def without_line_links(html):
    """A link for each line of a script would be one more stop for each on the keyboard."""
    return re.sub(r'<a href="#lines-[\d-]+"[^>]*></a>', "", html)


def text_of_chapter(path):
    result = subprocess.run(
        ["pandoc", "--from=gfm", "--to=html5", "--preserve-tabs", "--wrap=preserve"]
        + [f"--syntax-definition={COLOURS}", f"--lua-filter={WEB / 'page.lua'}"],
        input=with_joined_words(path.read_text(encoding="utf-8")),
        stdout=subprocess.PIPE,
        encoding="utf-8",
        check=True,
    )
    return without_line_links(result.stdout)


class SectionReader(HTMLParser):
    """Collects the sections of a text: a heading and what stands below it."""

    SKIPPED = ("figcaption", "a.permalink")
    BLOCKS = ("p", "li", "td", "th", "pre", "figure", "tr")

    def __init__(self, html):
        super().__init__()
        self.sections = []
        self.level, self.id, self.title, self.text = 0, "", [], []
        self.parts = self.text
        self.skipped = None
        self.feed(html)
        self.close()
        self.end_section()

    def handle_starttag(self, tag, attributes):
        attributes = dict(attributes)
        if self.skipped is None:
            named = (tag, f"{tag}.{attributes.get('class')}")
            self.skipped = tag if set(named) & set(self.SKIPPED) else None
        if re.fullmatch("h[1-6]", tag):
            self.end_section()
            self.level, self.id = int(tag[1]), attributes["id"]
            self.title, self.text = [], []
            self.parts = self.title

    def handle_endtag(self, tag):
        if tag == self.skipped:
            self.skipped = None
        if re.fullmatch("h[1-6]", tag):
            self.parts = self.text
        elif tag in self.BLOCKS:
            self.parts.append(" ")

    def handle_data(self, data):
        if self.skipped is None:
            self.parts.append(data)

    def end_section(self):
        if self.level:
            title, text = (" ".join("".join(part).split()) for part in (self.title, self.text))
            self.sections.append(Section(self.level, self.id, title, text))


def read_chapter(path):
    html = text_of_chapter(path)
    sections = SectionReader(html).sections
    if not sections or sections[0].level != 1:
        sys.exit(f"manual: {path} does not begin with its title")
    return Chapter("index" if path.stem == "README" else path.stem, html, sections)


# ---------------------------------------------------------------------------------------------
# Contents
# ---------------------------------------------------------------------------------------------


def link(target, title, attributes=""):
    return f'<a href="{target}"{attributes}>{escape(title)}</a>'


def section_list(sections, level, target):
    """The sections of that level as a list, each with those below it."""
    starts = [at for at, section in enumerate(sections) if section.level == level]
    rows = []
    for start, end in zip(starts, [*starts[1:], len(sections)]):
        inner = section_list(sections[start + 1 : end], level + 1, target)
        section = sections[start]
        rows.append(f"<li>{link(target + section.id, section.title)}{inner}</li>")
    return "\n<ul>\n" + "\n".join(rows) + "\n</ul>\n" if rows else ""


CONTENTS_LEVEL = 2  # of the sections of a chapter


def contents(chapters, current):
    """All chapters; the one that is being read with its sections."""
    rows = []
    for chapter in chapters:
        mark, inner = "", ""
        if chapter is current:
            mark = ' aria-current="page"'
            inner = section_list(chapter.sections, CONTENTS_LEVEL, "#")
        rows.append(f"<li>{link(chapter.page, chapter.title, mark)}{inner}</li>")
    return "<ul>\n" + "\n".join(rows) + "\n</ul>"


def neighbours(chapters, current):
    at = chapters.index(current)
    rows = []
    if at > 0:
        rows.append(link(chapters[at - 1].page, chapters[at - 1].title, ' rel="prev"'))
    if at + 1 < len(chapters):
        rows.append(link(chapters[at + 1].page, chapters[at + 1].title, ' rel="next"'))
    return "\n".join(rows)


# ---------------------------------------------------------------------------------------------
# Pages
# ---------------------------------------------------------------------------------------------


def read_web(name):
    return (WEB / name).read_text(encoding="utf-8")


def filled(template, **parts):
    return Template(read_web(template)).substitute(parts, version=version())


def page(chapters, chapter):
    return filled(
        "page.html",
        title=escape(chapter.title),
        contents=contents(chapters, chapter),
        text=chapter.html,
        neighbours=neighbours(chapters, chapter),
    )


TAG = re.compile(r"<[a-z][^>]*>")
ADDRESS = re.compile(r'\b(id|href)="(?:([\w-]+)\.html)?(#?)([^":/]*)"')


def address_in_all(match, chapter):
    """An id or a link of a chapter, as it is where all chapters are on one page."""
    attribute, other, sign, anchor = match.groups()
    name = other or chapter.name
    if not anchor:
        return f'{attribute}="#{name}"'
    return f'{attribute}="{sign}{name}--{anchor}"'


def chapter_in_all(chapter):
    def adapted(tag):
        return ADDRESS.sub(lambda match: address_in_all(match, chapter), tag[0])

    text = TAG.sub(adapted, chapter.html)
    return f'<section class="chapter" id="{chapter.name}">\n{text}\n</section>'


def contents_of_all(chapters):
    rows = []
    for chapter in chapters:
        top = [section for section in chapter.sections if section.level == CONTENTS_LEVEL]
        inner = section_list(top, CONTENTS_LEVEL, f"#{chapter.name}--")
        rows.append(f"<li>{link(f'#{chapter.name}', chapter.title)}{inner}</li>")
    return "<ul>\n" + "\n".join(rows) + "\n</ul>"


def page_of_all(chapters):
    first, *others = chapters
    return filled(
        "all.html",
        title=escape(first.title),
        style=read_web("style.css"),
        script=read_web("scroll.js"),
        first=chapter_in_all(first),
        contents=contents_of_all(others),
        others="\n".join(map(chapter_in_all, others)),
    )


def searched_sections(chapters):
    """The script that holds what is searched: the page, the headings above and the text."""
    rows = []
    for chapter in chapters:
        above = []
        for section in chapter.sections:
            above = [one for one in above if one.level < section.level]
            rows.append({
                "target": f"{chapter.page}#{section.id}",
                "title": section.title,
                "above": [one.title for one in above],
                "text": section.text,
            })  # fmt: skip
            above.append(section)
    lines = ",\n".join(json.dumps(row, ensure_ascii=False) for row in rows)
    return f"const manualSections = [\n{lines},\n];\n"


def files_of_manual(chapters):
    files = {chapter.page: page(chapters, chapter) for chapter in chapters}
    files["all.html"] = page_of_all(chapters)
    files["sections.js"] = searched_sections(chapters)
    return files


def missing_tools():
    files = [str(path) for path in (SEARCH, SEARCH_LICENCE) if not path.exists()]
    return files if shutil.which("pandoc") else ["pandoc", *files]


def write_manual(folder):
    with ThreadPoolExecutor() as threads:
        chapters = list(threads.map(read_chapter, chapter_files()))
    folder.mkdir(parents=True, exist_ok=True)
    for name, text in files_of_manual(chapters).items():
        (folder / name).write_text(text, encoding="utf-8")
    for name, path in COPIED.items():
        shutil.copyfile(path, folder / name)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("folder", type=Path)
    folder = parser.parse_args().folder
    if missing_tools():
        sys.exit(f"manual: not installed: {', '.join(missing_tools())}")
    write_manual(folder)


if __name__ == "__main__":
    main()
