"""`yxst explain` knows every message, finds it by whatever a user has of it, and shows it whole."""

import functools
import itertools
import fcntl
import os
import pty
import re
import struct
import subprocess
import termios
import unittest
from pathlib import Path
from typing import List, NamedTuple

from support_desk import DESK, FAILED, FINE, ROOT, facts_of, run_yxst
from cases import all_cases
from support import TIMEOUT_SECONDS, diagnostics_in, side_by_side, words
from test_catalogue import EXPECTED_SUFFIXES, GOLDEN, NOT_RAISED, SOURCES

MANUAL = ROOT / "docs" / "manual"
HERE = Path(__file__).parent
PUBLISHED = HERE / "published_ids.txt"
EXPECTED = HERE / "explain"

# What stands in messages, or in every run, and is no message of its own.
PARTS = {
    "TXT_AND",
    "TXT_BUILD_SUCCESSFUL",
    "TXT_ERROR",
    "TXT_FOUND",
    "TXT_FUNCTION",
    "TXT_FUNCTION_BLOCK",
    "TXT_HERE_IS_ILLEGAL",
    "TXT_IDENTIFIER",
    "TXT_ILLEGAL",
    "TXT_LINE",
    "TXT_NUMBER",
    "TXT_OPERATOR",
    "TXT_OR",
    "TXT_POS",
    "TXT_RETURN_VALUE_OF_FUNCTION",
    "TXT_THE",
    "TXT_TRADEMARK",
    "TXT_VARIABLE",
    "TXT_WARNING",
}

# ---------------------------------------------------------------------------------------------
# Entries on the pages and in the output
# ---------------------------------------------------------------------------------------------


class Entry(NamedTuple):
    ids: List[str]
    is_message: bool
    title: str
    body: str


HEADING = re.compile(r"^#{1,6} +(.*)$")
ID_LINE = re.compile(r"^<!-- (id|reason): (.*) -->$", re.MULTILINE)


def outline(text):
    """The lines, each with whether it stands in a fence."""
    is_code = False
    for line in text.splitlines():
        is_fence = line.startswith("```")
        yield line, is_code or is_fence
        is_code ^= is_fence


def entries_on(text):
    found = []
    title, is_open = "", False
    for line, is_code in outline(text):
        heading, ids = (None, None) if is_code else (HEADING.match(line), ID_LINE.match(line))
        if heading:
            title, is_open = heading[1].replace("`", ""), False
        elif ids:
            found.append(Entry(ids[2].split(", "), ids[1] == "id", title, ""))
            is_open = True
        elif is_open:
            found[-1] = found[-1]._replace(body=found[-1].body + line + "\n")
    return found


# In the order of the list: the messages come first.
NAMES = ("diagnostics", "reasons", "check", "lints", "verify", "machine")
PAGES = [MANUAL / f"{name}.md" for name in NAMES]
ENTRIES = [entry for page in PAGES for entry in entries_on(page.read_text())]
IDS = sorted({one for entry in ENTRIES for one in entry.ids})
MESSAGE_IDS = {one for entry in ENTRIES if entry.is_message for one in entry.ids}


def id_of(constant):
    return constant.removeprefix("TXT_").lower().replace("_", "-")


CATALOGUE_IDS = {id_of(constant) for constant in words.messages()}


def explain(*question, **options):
    return run_yxst("explain", *question, **options)


def shown(*question):
    """(title, ids) of each entry that is shown."""
    run = explain(*question)
    if run.status != FINE or run.stderr:
        raise AssertionError(f"{question}: status {run.status}, {run.stderr.decode()}")
    heads = re.findall(r"(?:\A|\n-{20,}\n\n)((?:.+\n)+?)\[(.+)\]\n\n", run.stdout.decode())
    return [(" ".join(title.split()), ids) for title, ids in heads]


def head_of(entry):
    return " ".join(entry.title.split()), ", ".join(entry.ids)


# ---------------------------------------------------------------------------------------------
# Identifiers
# ---------------------------------------------------------------------------------------------


def listed():
    """Identifier -> titles, as the list shows them."""
    found = {}
    for line in explain().stdout.decode().splitlines():
        if line.startswith("    "):
            list(found.values())[-1].append(line.strip())
        else:
            found[line] = []
    return found


def in_capitals(one):
    return one.upper().replace("-", "_")


class Identifiers(unittest.TestCase):
    def test_every_message_has_an_entry_or_is_known_to_need_none(self):
        needless = {id_of(constant) for constant in NOT_RAISED.keys() | PARTS}
        self.assertEqual(sorted(CATALOGUE_IDS - MESSAGE_IDS - needless), [])
        self.assertEqual(sorted(set(IDS) & needless), [])
        self.assertEqual(sorted(needless - CATALOGUE_IDS), [])

    def test_parts_are_never_given_as_the_kind_of_a_message(self):
        given = set()
        for path in SOURCES.glob("*.cpp"):
            calls = r"\b(?:Abort|Error|Warning|WarningOf|ExitWith)\(\s*(TXT_\w+)"
            given.update(re.findall(calls, path.read_text()))
        self.assertGreater(len(given), 40)
        self.assertEqual(sorted(given & PARTS), [])

    def test_no_page_with_entries_is_left_out(self):
        with_entries = (path for path in MANUAL.glob("*.md") if ID_LINE.search(path.read_text()))
        self.assertEqual(sorted(PAGES), sorted(with_entries))

    def test_entries_name_identifiers_that_exist(self):
        self.assertEqual(sorted(MESSAGE_IDS - CATALOGUE_IDS), [])
        self.assertEqual(sorted((set(IDS) - MESSAGE_IDS) & CATALOGUE_IDS), [])

    def test_published_identifiers_stay(self):
        self.assertEqual(PUBLISHED.read_text().splitlines(), IDS)

    def test_the_list_is_that_of_the_pages(self):
        expected = {}
        for entry in ENTRIES:
            for one in entry.ids:
                expected.setdefault(one, []).append(entry.title)
        self.assertEqual(listed(), expected)
        self.assertEqual(list(listed()), list(expected))

    def test_each_finds_its_entries_in_any_form(self):
        forms = itertools.cycle((str, in_capitals, "a.st:1:2: error: b [{}]".format))
        for one, form in zip(IDS, forms):
            entries = [head_of(entry) for entry in ENTRIES if one in entry.ids]
            with self.subTest(question=form(one)):
                self.assertEqual(shown(form(one)), entries)


# ---------------------------------------------------------------------------------------------
# Texts
# ---------------------------------------------------------------------------------------------


def message_lines():
    """One line for each text of a message in the expected files of the golden tests."""
    lines = {}
    for path in GOLDEN.rglob("*"):
        if path.suffix in EXPECTED_SUFFIXES:
            for line in diagnostics_in(path.read_text(errors="replace")):
                lines.setdefault(text_of(line), line)
    return sorted(lines.values())


def text_of(line):
    return re.sub(r"^\w+: Line \d+, Column \d+: ", "", line)


def told_ids():
    """Text of each message that the golden cases give -> its identifier, as the compiler tells."""
    facts = side_by_side(lambda case: facts_of(case.data)[0], all_cases())
    return {message["text"]: message["id"] for fact in facts for message in fact["messages"]}


FIXED_WORDS = re.compile(r'^"(?:BREAK|CONTINUE)"|"(?:BOOLEAN|END_PROGRAM)"$')


def shape(text):
    """The text with "?" for what varies, found without the rule of the headings."""
    fixed = FIXED_WORDS.search(text)
    shaped = re.sub(r'"{3}|"[^"]*"', "?", text) if not fixed else text
    shaped = re.sub(r"'[^']*'|'''", "?", shaped)
    shaped = re.sub(r"(operand has type) \w+$", r"\1 ?", shaped)
    return " ".join(shaped.split())


class Texts(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.lines = message_lines()
        cls.ids = told_ids()

    def test_every_golden_message_finds_its_entry_and_no_other(self):
        self.assertGreater(len(self.lines), 200)
        found = side_by_side(shown, self.lines)
        for line, heads in zip(self.lines, found):
            with self.subTest(line=line):
                self.assertEqual([ids for _, ids in heads], [self.ids[text_of(line)]])
                self.assertEqual(shape(heads[0][0]), shape(text_of(line)))

    def test_every_identifier_of_a_golden_message_has_an_entry(self):
        self.assertGreater(len(set(self.ids.values())), 40)
        self.assertEqual(sorted(set(self.ids.values()) - set(IDS)), [])

    def test_every_title_finds_its_entry(self):
        for entry in ENTRIES:
            with self.subTest(title=entry.title):
                self.assertEqual(shown(entry.title), [head_of(entry)])
                self.assertEqual(shown(f";{entry.title}\nand more"), [head_of(entry)])

    def test_a_shell_without_quotes(self):
        message = 'An unrecognized keyword "foo"'
        self.assertEqual(shown(*message.replace('"', "").split()), shown(message))

    def test_parts(self):
        for part, expected in {
            "operand has type": ["left-operand-has-type", "right-operand-has-type"],
            'keyword "foo"': ["unrecognized-keyword"],
            "LABEL": [
                "case-duplicate-case-label",
                "label-already-defined",
                "label-referenced-but-not-set",
            ],
            "assigned": ["left-side-cannot-be-assigned-to"],
            "initial": [
                "expected-but",
                "this-vaiable-cannot-be-initialized",
                "might-not-have-been-initialized",
                "might-not-have-been-initialized-in",
            ],
        }.items():
            with self.subTest(part=part):
                self.assertEqual([ids for _, ids in shown(part)], expected)


# ---------------------------------------------------------------------------------------------
# What is shown
# ---------------------------------------------------------------------------------------------

ESCAPE = re.compile(r"\033\[\d*m")


def in_terminal(width, *arguments, **environment):
    """What a terminal of that width gets."""
    controller, terminal = pty.openpty()
    fcntl.ioctl(terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 24, width, 0, 0))
    variables = {name: value for name, value in os.environ.items() if name != "NO_COLOR"}
    process = subprocess.Popen(
        [DESK, "explain", *arguments],
        stdin=subprocess.DEVNULL,
        stdout=terminal,
        env={**variables, **environment},
    )
    os.close(terminal)
    output = b""
    try:
        while piece := os.read(controller, 65536):
            output += piece
    except OSError:  # the other end is closed
        pass
    os.close(controller)
    process.wait(TIMEOUT_SECONDS)
    return output.decode().replace("\r\n", "\n")


def too_wide(text, width):
    """Lines that could have been broken and were not."""
    lines = [line for line in text.splitlines() if not line.startswith("    ")]
    return [line for line in lines if len(line) > width and " " in line]


def page_words(markdown):
    """The words of a page without the targets of links."""
    text = re.sub(r"^<!--.*-->$|^```.*$", "", markdown, flags=re.MULTILINE)
    return re.findall(r"[^\W_]+", re.sub(r"\]\([^)\s]*\)", "]", text))


def code_of(markdown):
    return [
        f"    {line}" if line else ""
        for line, is_code in outline(markdown)
        if is_code and not line.startswith("```")
    ]


def is_in_order(pieces, lines):
    rest = iter(lines)
    return all(piece in rest for piece in pieces)


@functools.cache
def explanation(title):
    return explain(title).stdout.decode()


class Shown(unittest.TestCase):
    maxDiff = None

    def test_explanations(self):
        expected = sorted(EXPECTED.glob("*.txt"))
        self.assertGreaterEqual(len(expected), 3)
        for path in expected:
            with self.subTest(id=path.stem):
                self.assertEqual(explain(path.stem).stdout.decode(), path.read_text())

    def test_nothing_of_an_entry_is_lost(self):
        for entry in ENTRIES:
            with self.subTest(title=entry.title):
                output = explanation(entry.title)
                given = set(re.findall(r"[^\W_]+", output))
                self.assertEqual(sorted(set(page_words(entry.body)) - given), [])
                self.assertTrue(is_in_order(code_of(entry.body), output.splitlines()), output)

    def test_the_script_of_statements_is_shown(self):
        for entry in ENTRIES:
            output = explanation(entry.title)
            with self.subTest(title=entry.title):
                has_statements = "```st statements" in entry.body
                self.assertEqual("\n        (* statements *)\n" in output, has_statements)

    def test_no_markdown_is_left_and_lines_fit(self):
        for entry in ENTRIES:
            output = explanation(entry.title)
            with self.subTest(title=entry.title):
                self.assertNotRegex(output, r"\]\(|<!--|```|\033|\n\n\n")
                self.assertEqual(too_wide(output, 80), [])

    def test_colors_change_nothing_but_marks(self):
        for entry in ENTRIES:
            colored = explain("--color=always", entry.title).stdout.decode()
            plain = explanation(entry.title)
            with self.subTest(title=entry.title):
                self.assertIn("\033[1m", colored)
                bare = ESCAPE.sub("", colored).replace("`", "").split()
                self.assertEqual(sorted(bare), sorted(plain.replace("`", "").split()))

    def test_terminals(self):
        question = "incompatible-types"
        plain = explain(question).stdout.decode()
        self.assertEqual(in_terminal(80, question, NO_COLOR="1"), plain)
        self.assertEqual(in_terminal(80, "--color=never", question), plain)
        self.assertIn("\033[1m", in_terminal(80, question))
        self.assertEqual(in_terminal(0, question, NO_COLOR="1"), plain)
        for width in (20, 40, 120):
            with self.subTest(width=width):
                output = in_terminal(width, question, NO_COLOR="1")
                self.assertEqual(output.split(), plain.split())
                self.assertEqual(too_wide(output, width), [])
                longest = max(len(line) for line in output.splitlines())
                self.assertGreater(longest, 80 if width == 120 else 0)
        self.assertEqual(in_terminal(1, question), in_terminal(20, question))

    def test_list_in_color(self):
        colored = explain("--color=always").stdout.decode()
        self.assertIn("\033[1mincompatible-types\033[0m\n", colored)
        self.assertEqual(ESCAPE.sub("", colored), explain().stdout.decode())


class Failures(unittest.TestCase):
    def assert_complaint(self, complaint, *question):
        run = explain(*question)
        self.assertEqual((run.status, run.stdout), (FAILED, b""))
        self.assertEqual(run.stderr.decode(), f"yxst: {complaint}.\n")

    def test_unknown_messages(self):
        for question, near in {
            "incompatible-type": "incompatible-types",
            "INCOMPATIBEL_TYPES": "incompatible-types",
            "never-used": "is-declared-but-never-used, is-declared-but-never-used-in",
            "programnam-expected": "programname-expected-but",
            "label-already-define": "label-already-defined",
        }.items():
            with self.subTest(question=question):
                self.assert_complaint(
                    f'nothing is known about "{question}"; near it: {near}', question
                )

    def test_nothing_is_near(self):
        for question in ("qwertz", "", " ", "Error: Line 1, Column 2: Such a text is nowhere",
                         "x" * 100_000, "Такого сообщения нет", "%1 %2"):
            with self.subTest(question=question[:50]):
                self.assert_complaint(
                    f'nothing is known about "{question}"; "yxst explain" lists what there is',
                    question,
                )

    def test_wrong_options(self):
        for option in ("--color=red", "--color=", "--colour", "-x"):
            with self.subTest(option=option):
                run = explain(option)
                self.assertEqual((run.status, run.stdout), (FAILED, b""))
                self.assertNotEqual(run.stderr, b"")

    def test_output_that_cannot_be_written(self):
        with open("/dev/full", "wb") as full:
            run = subprocess.run([DESK, "explain"], stdout=full, stderr=subprocess.PIPE)
        self.assertEqual(run.returncode, FAILED)
        self.assertEqual(run.stderr, b"yxst: standard output cannot be written.\n")

    def test_no_page_is_named_that_could_be_read(self):
        self.assertNotIn(b"docs/manual", DESK.read_bytes())


if __name__ == "__main__":
    unittest.main()
