"""What the manual says to those who write Structured Text elsewhere is what the compiler does.

Each row of the tables of docs/manual/dialects.md has a form of another dialect and one of this
language, which stand in the latest frame above the table, and what the compiler says to the first:
its message, with a link to the entry of that message, or that it is accepted, with the same code or
with other code than the second form.

What is written in the habits of other dialects has an example in docs/manual/diagnostics.md, in the
entry of the message that it gives.
"""

import re
import unittest
from typing import NamedTuple

from support import compile_source, diagnostics_in, side_by_side
from test_catalogue import texts_in_diagnostics
from test_manual import (
    MANUAL,
    anchors_of,
    find_examples,
    insert_statements,
    read_page,
    texts_in_heading,
)

FEWEST_ROWS = 120

SPAN = re.compile(r"`([^`]+)`")
LINKED_MESSAGE = re.compile(r"\[`(.+)`\]\(diagnostics\.md#([\w-]+)\)")
MESSAGE = re.compile(r"^Error: Line \d+, Column \d+: (.*?) ?$", re.MULTILINE)
FORMS_HEADER = "| | There | Here | The compiler on the form there |"

# What else a script of another dialect is made of, and must be found in the first column.
CONSTRUCTS = """
    RETURN EXIT TIME TON R_TRIG F_TRIG CTU SR RETAIN PERSISTENT AT VAR_TEMP VAR_IN_OUT VAR_OUTPUT
    VAR_INPUT VAR_EXTERNAL TYPE ENUM STRUCT ARRAY STRING DATE BYTE WORD DWORD LINT ABS MIN MAX LIMIT
    SEL MUX EXPT TRUNC REAL_TO_INT INT_TO_REAL BOOL_TO_INT INT_TO_BOOL == != =< => & += BY ELSEIF
    AND_THEN OR_ELSE JMP OTHERS METHOD
""".split()


class Row(NamedTuple):
    line: int
    frame: str
    what: str
    there: str
    here: str
    verdict: str


def code_in(cell):
    return "".join(f"{span}\n" for span in SPAN.findall(cell))


def frames_with_ends(page):
    """Each frame of the page with the line after it."""
    frames = [script for script in find_examples(page).scripts if script.is_frame]
    return [(one.fence.line + len(one.fence.lines) + 2, one.source) for one in frames]


def rows_of(page):
    frames = frames_with_ends(page)
    is_table = False
    for number, line in enumerate(page.text.splitlines(), 1):
        if line == FORMS_HEADER:
            is_table = True
        elif not line.startswith("|"):
            is_table = False
        elif is_table and not line.startswith("|---"):
            frame = [source for end, source in frames if end <= number][-1]
            what, there, here, verdict = (cell.strip() for cell in line.split("|")[1:-1])
            yield Row(number, frame, what, code_in(there), code_in(here), verdict)


class Outcome(NamedTuple):
    message: str  # of the error; empty if there is none
    code: bytes


def outcome(row, form):
    source = insert_statements(row.frame, form)
    result = compile_source(source.encode(), "-s")
    errors = MESSAGE.findall("\n".join(diagnostics_in(result.stdout.decode())))
    return Outcome(errors[0] if errors else "", result.files.get("out", b""))


def wrong_acceptance(row, there, here):
    if there.message:
        return f"there is refused: {there.message}"
    if (there.code == here.code) != ("the same code" in row.verdict):
        return f"the two forms have {'the same' if there.code == here.code else 'other'} code"
    return None


def wrong_refusal(row, there):
    link = LINKED_MESSAGE.match(row.verdict)
    if not link:
        return "neither a message with a link nor accepted"
    if link[1] != there.message:
        return f"the message is {there.message!r}"
    if link[2] not in anchors_of_message(there.message):
        return f"the entry {link[2]} is for another message"
    return None


ENTRIES = read_page("diagnostics.md", (MANUAL / "diagnostics.md").read_text(encoding="utf-8"))


def anchors_of_message(message):
    """The headings of diagnostics.md that are of a message's text."""
    texts = texts_in_diagnostics(f"Error: Line 1, Column 1: {message}\n")
    found = set()
    for heading in ENTRIES.headings:
        if texts & texts_in_heading(heading.text):
            found |= anchors_of(f"# {heading.text}\n")
    return found


def wrong_row(row):
    """What is wrong with the row, or None."""
    if not row.there or not row.here:
        return "a form is missing"
    there, here = outcome(row, row.there), outcome(row, row.here)
    if here.message:
        return f"here is refused: {here.message}"
    if row.verdict.startswith("accepted"):
        return wrong_acceptance(row, there, here)
    return wrong_refusal(row, there)


class Tables(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        path = MANUAL / "dialects.md"
        cls.rows = list(rows_of(read_page(path.name, path.read_text(encoding="utf-8"))))

    def test_each_form_does_what_the_row_says(self):
        found = zip(self.rows, side_by_side(wrong_row, self.rows))
        wrong = [f"line {row.line}, {row.what}: {text}" for row, text in found if text]
        self.assertEqual(wrong, [])
        self.assertGreater(len(self.rows), FEWEST_ROWS)

    def test_what_others_have_is_named(self):
        named = {word for row in self.rows for word in code_in(row.what).split()}
        self.assertEqual(set(CONSTRUCTS) - named, set())


# What is written elsewhere, as it stands in a script, with the identifiers of the messages that it
# gives; in some places it gives more than one.
HABITS = {
    r"Twice := 2 \* x": {"not-enough-actual-parameters"},
    r"Five := 5;": {"expected-but"},
    r"VAR RETAIN": {"expected-but"},
    r"> 0(?:\.0)? AND": {"expected-but", "left-operand-has-type", "incompatible-types"},
    r"> 0 AND level > 0\.5": {"right-operand-has-type"},
    r"==": {"expected-but", "incompatible-types", "type-of-expression-must-be-boolean"},
    r"!=": {"type-of-expression-must-be-boolean"},
    r"=<": {"type-of-expression-must-be-boolean"},
    r"IF \w+ := ": {"expected-but", "type-of-expression-must-be-boolean"},
    r"^ +\w+ : 5;": {"duplicate-variable-name", "expected-but"},
    r"automatic: lamp": {"duplicate-variable-name", "ordinal-type-required"},
    r"VAR_TEMP": {"program-must-start-with-declaration-of-variables", "unrecognized-keyword"},
    r"ELSE IF": {"expected-but"},
    r"WHILE count < 5 DO(?![^#]*END_WHILE)": {"expected-but"},
    r"\(base := level": {"unrecognized-keyword"},
    r"1_000": {"expected-but"},
    r"1e-3": {"expected-but"},
    r"\(\*[^)]*\(\*": {"expected-but"},
    r"\{": {"expected-but"},
    r"^TYPE": {"expected-but"},
    r"^VAR_GLOBAL.*^PROGRAM": {"expected-but"},
    r"END_FUNCTION;": {"expected-but"},
    r"a, b : REAL": {"expected-but"},
    r" AT %": {"expected-but"},
    r": TIME\b": {"unrecognized-keyword"},
    r"T#5s": {"unrecognized-keyword"},
    r"RETURN;": {"unrecognized-keyword"},
    r"ABS\(": {"unrecognized-keyword"},
}

ID = re.compile(r"^<!-- id: (.+) -->$")


def ids_of_sections(page):
    """Index of a heading -> the identifiers in the line below it."""
    found, section = {}, -1
    for line in page.prose.splitlines():
        if section + 1 < len(page.headings) and line.endswith(page.headings[section + 1].text):
            section += 1
        if match := ID.match(line):
            found[section] = set(match[1].split(", "))
    return found


def is_of_message(script, page):
    """Whether the message of a script is the one that its section is about."""
    heading = page.headings[script.fence.section].text
    return bool(texts_in_heading(heading) & texts_in_diagnostics(script.diagnostics))


def ids_with_example(page, habit):
    """The identifiers of the entries with a wrong script that is written in that habit."""
    ids = ids_of_sections(page)
    pattern = re.compile(habit, re.MULTILINE | re.DOTALL)
    return {
        name
        for script in find_examples(page).scripts
        if script.is_wrong and pattern.search(script.source) and is_of_message(script, page)
        for name in ids.get(script.fence.section, ())
    }


class Habits(unittest.TestCase):
    def test_each_has_an_example_in_the_entry_of_its_message(self):
        for habit, ids in HABITS.items():
            with self.subTest(habit=habit):
                self.assertEqual(ids - ids_with_example(ENTRIES, habit), set())

    def test_an_example_elsewhere_does_not_count(self):
        for heading, expected in ((ENTRY, {"expected-but"}), ("### `Array type required`", set())):
            page = read_page("page.md", f"{heading}\n\n<!-- id: expected-but -->\n\n{EXAMPLE}")
            with self.subTest(heading=heading):
                self.assertEqual(ids_with_example(page, "1_0"), expected)
                self.assertEqual(ids_with_example(page, "1_1"), set())

    def test_nothing_is_mended_with_exit_but_return(self):
        mended = [one for one in find_examples(ENTRIES).scripts if not one.is_wrong]
        sections = [one.fence.section for one in mended if "EXIT;" in one.source]
        headings = [ENTRIES.headings[section].text for section in sections]
        self.assertEqual(headings, ['`An unrecognized keyword "X"`'])


ENTRY = '### `"X" expected but "Y" found`'
EXAMPLE = """\
```st
PROGRAM p VAR x : INT; END_VAR x := 1_0; END_PROGRAM
```
```message
Error: Line 1, Column 38: ";" expected but "_0" found
```
"""

FRAME = "PROGRAM p\nVAR\n x : INT := 1;\nEND_VAR\n(* statements *)\nEND_PROGRAM"
UNKNOWN = '[`An unrecognized keyword "y"`](diagnostics.md#an-unrecognized-keyword-x)'


class WrongRowsAreNoticed(unittest.TestCase):
    def found(self, there, here, verdict):
        page = f"```st frame\n{FRAME}\n```\n{FORMS_HEADER}\n|---|---|---|---|\n"
        rows = list(rows_of(read_page("page.md", page + f"| a | {there} | {here} | {verdict} |\n")))
        self.assertEqual([row.line for row in rows], [11])
        return wrong_row(rows[0])

    def test_messages(self):
        self.assertIsNone(self.found("`x := y;`", "`x := 1;`", UNKNOWN))
        self.assertIn("is missing", self.found("x := y;", "`x := 1;`", UNKNOWN))
        self.assertIn("here is refused", self.found("`x := y;`", "`x := z;`", UNKNOWN))
        self.assertIn("the message is", self.found("`x := z;`", "`x := 1;`", UNKNOWN))
        self.assertIn("the message is ''", self.found("`x := 1;`", "`x := 1;`", UNKNOWN))
        other = UNKNOWN.replace("#an-unrecognized-keyword-x", "#unterminated-string")
        self.assertIn("another message", self.found("`x := y;`", "`x := 1;`", other))
        self.assertIn("neither", self.found("`x := y;`", "`x := 1;`", "refused"))

    def test_acceptance(self):
        self.assertIsNone(self.found("`x := 1;`", "`x := 2;`", "accepted"))
        self.assertIsNone(self.found("`x := 1;`", "`x := 1;` `;`", "accepted, the same code"))
        self.assertIn("the same code", self.found("`x := 1;`", "`x := 1;`", "accepted"))
        self.assertIn("other code", self.found("`x := 1;`", "`x := 2;`", "accepted, the same code"))
        self.assertIn("there is refused", self.found("`x := y;`", "`x := 1;`", "accepted"))


if __name__ == "__main__":
    unittest.main()
