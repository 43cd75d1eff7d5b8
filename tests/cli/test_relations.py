"""What must stay the same, whatever the code is: over a sample of the accepted golden cases and
examples; test_slow_relations.py takes them all.
"""

import itertools
import re
import sys
import unittest
from typing import NamedTuple

from corpus import sample_of_sources
from support import ROOT, compile_source, lines_of, side_by_side, words

sys.path.insert(0, str(ROOT / "tests/checker"))
from check_code import break_into_items, parse  # noqa: E402

MARK = "\ufeff"

SECTIONS = words.lists()["sections"] + words.lists()["engineSections"]
UNIT_KEYWORDS = ("PROGRAM", "FUNCTION", "FUNCTION_BLOCK")
BOOLEANS = ("TRUE", "FALSE")
KEYWORDS = {*words.reserved_words(), *words.types()} - {*BOOLEANS}

TOKENS = re.compile(
    r"""
    (?P<blank>   [ \t\n]+)
  | (?P<comment> //[^\n]* | \(\*.*?\*\))
  | (?P<string>  '[^'\n]*')
  | (?P<number>  (?:16|8|2)\#[0-9A-Fa-f]+
               | [0-9]*\.(?!\.)[0-9]*(?:[Ee][+-]?[0-9]*)?
               | [0-9]+)
  | (?P<name>    [^\W\d]\w*)
  | (?P<mark>    [*+/:<=>-]{1,2} | \.\. | .)
    """,
    re.VERBOSE | re.DOTALL,
)


class Token(NamedTuple):
    kind: str
    text: str

    @property
    def word(self):
        """A name in capitals, which is how names compare; None for other tokens."""
        return self.text.upper() if self.kind == "name" else None


def tokenize(data):
    """The tokens up to END_PROGRAM, and the text after it as one more."""
    # A carriage return counts for nothing, even within a word.
    text = data.decode("utf-8", "surrogateescape").removeprefix(MARK).replace("\r", "")
    tokens = []
    pos = 0
    while pos < len(text) and not (tokens and tokens[-1].word == "END_PROGRAM"):
        match = TOKENS.match(text, pos)
        tokens.append(Token(match.lastgroup, match.group()))
        pos = match.end()
    return [*tokens, Token("rest", text[pos:])]


def join(texts):
    return "".join(texts).encode("utf-8", "surrogateescape")


def with_neighbours(tokens):
    """Each token with the tokens before and after it, blanks and comments passed over."""
    edge = Token("rest", "")
    solid = [edge, *(token for token in tokens if token.kind not in ("blank", "comment")), edge]
    place = 0
    for token in tokens:
        if token.kind in ("blank", "comment"):
            yield edge, token, edge
        else:
            place += 1
            yield solid[place - 1], token, solid[place + 1]


def toggle_line_ends(data):
    if b"\r\n" in data:
        return data.replace(b"\r\n", b"\n")
    return data.replace(b"\n", b"\r\n")


def toggle_byte_order_mark(data):
    mark = MARK.encode()
    return data[len(mark) :] if data.startswith(mark) else mark + data


def alternate(word):
    return "".join(char.lower() if at % 2 else char.upper() for at, char in enumerate(word))


def change_letter_case(data):
    """Keywords in small letters, capitals and both by turns."""
    styles = itertools.cycle([str.lower, alternate, str.upper])
    texts = []
    for before, token, _ in with_neighbours(tokenize(data)):
        text = token.text
        if token.word in KEYWORDS and before.word != "PROGRAM":
            text = next(styles)(text)
        elif text in BOOLEANS:
            text = text.lower()
        elif token.word in BOOLEANS and text.islower():
            # A Boolean value in mixed letter case means something else in a declaration.
            text = text.upper()
        texts.append(text)
    return join(texts)


def add_blanks(data):
    blanks = itertools.cycle([" ", "\n", "\t  ", " \n\n\t"])
    return join(
        token.text if token.kind in ("blank", "rest") else token.text + next(blanks)
        for token in tokenize(data)
    )


def add_comments(data):
    """Comments after semicolons, but not before the number of a case label, which reads
    otherwise after a comment."""
    comments = itertools.cycle(["(* x := 'b; END_VAR **)", "// ; (* y := 5;\n", " (**)(*//*)\n"])
    texts = []
    for _, token, after in with_neighbours(tokenize(data)):
        texts.append(token.text)
        if token.text == ";" and after.kind != "number" and after.text != "-":
            texts.append(next(comments))
    return join(texts)


def variables_to_rename(tokens):
    """The declared names but those that a unit or label bears too."""
    variables = set()
    others = set()
    in_section = False
    for before, token, after in with_neighbours(tokens):
        if token.word in SECTIONS or token.word == "END_VAR":
            in_section = token.word != "END_VAR"
        elif token.kind != "name" or token.word in KEYWORDS:
            continue
        elif in_section and after.text == ":":
            variables.add(token.word)
        elif after.text == ":" or before.word in ("GOTO", *UNIT_KEYWORDS):
            others.add(token.word)
    return variables - others


class Renaming:
    """A prefix that is new to the source, put before the name of every variable."""

    def __init__(self, data):
        self.tokens = tokenize(data)
        self.names = variables_to_rename(self.tokens)
        self.prefix = "n_"
        while self.prefix.encode() in data.lower():
            self.prefix += "n_"

    def name(self, name):
        return self.prefix + name if name.upper() in self.names else name

    def source(self):
        return join(
            self.name(token.text) if token.kind == "name" else token.text
            for token in self.tokens
        )

    def item(self, item):
        if "'" in item:
            return item
        return re.sub("(?<=[@^])[^ ]+", lambda match: self.name(match.group()), item)

    def code(self, code):
        items = []
        for unit in parse(code):
            unit.declarations = [
                re.sub("^[^ ]+", lambda match: self.name(match.group()), text)
                for text in unit.declarations
            ]
            unit.code = [self.item(text) for text in unit.code]
            items += unit.items()
        return "".join(item + " " for item in items)


def text_of(data):
    return data.decode(errors="backslashreplace")


def on_screen(line):
    """A line of the listing as the screen shows it: messages come without the semicolon."""
    is_message = line.startswith(";") and not re.match(';Line [0-9]+: "', line)
    return line[1:] if is_message else line


class Relations(unittest.TestCase):
    @staticmethod
    def find_sources():
        return sample_of_sources(60)

    @classmethod
    def setUpClass(cls):
        cls.sources = cls.find_sources()
        cls.runs = cls.compile_all([source.data for source in cls.sources], "-l", "-m", "-i")
        cls.codes = [text_of(run.files.get("out", b"")) for run in cls.runs]
        cls.listings = [lines_of(run.files.get("out.lst", b"")) for run in cls.runs]

    @staticmethod
    def compile_all(datas, *options):
        return side_by_side(lambda data: compile_source(data, *options), datas)

    def assert_all_equal(self, actual, expected):
        self.assertEqual(len(actual), len(self.sources))
        for source, was, should_be in zip(self.sources, actual, expected):
            with self.subTest(source.name):
                self.assertEqual(was, should_be)

    def assert_compiles_to(self, changed, codes, share=0.9):
        """Compares the codes of the changed sources; most must have changed for that to say
        anything."""
        affected = sum(data != source.data for data, source in zip(changed, self.sources))
        self.assertGreater(affected, share * len(self.sources))
        runs = self.compile_all(changed)
        self.assert_all_equal([text_of(run.files.get("out", b"")) for run in runs], codes)

    def assert_same_code(self, change):
        self.assert_compiles_to([change(source.data) for source in self.sources], self.codes)

    def test_all_compile(self):
        self.assertGreaterEqual(len(self.sources), 60)
        self.assert_all_equal([run.status for run in self.runs], itertools.repeat(0))

    def test_tokens_are_the_source(self):
        sources = [source.data.replace(b"\r", b"") for source in self.sources]
        rejoined = [join(token.text for token in tokenize(data)) for data in sources]
        self.assert_all_equal(rejoined, [data.removeprefix(MARK.encode()) for data in sources])

    def test_line_ends(self):
        self.assert_same_code(toggle_line_ends)

    def test_byte_order_mark(self):
        self.assert_same_code(toggle_byte_order_mark)

    def test_letter_case_of_keywords(self):
        self.assert_same_code(change_letter_case)

    def test_white_space(self):
        self.assert_same_code(add_blanks)

    def test_comments(self):
        self.assert_same_code(add_comments)

    def test_names_of_variables(self):
        renamings = [Renaming(source.data) for source in self.sources]
        codes = [renaming.code(code) for renaming, code in zip(renamings, self.codes)]
        self.assert_compiles_to([renaming.source() for renaming in renamings], codes)

    def test_numbered_listing(self):
        """Numbers count the code lines and are all that tells the listings apart."""
        runs = self.compile_all([source.data for source in self.sources], "-l", "-m", "-i", "-n")
        expected = []
        for lines in self.listings:
            numbers = itertools.count(1)
            expected.append(
                [line if line[:1] == ";" else f"{next(numbers):04}\t{line}" for line in lines]
            )
        numbered = [lines_of(run.files.get("out.lst", b"")) for run in runs]
        self.assert_all_equal(numbered, expected)

    def test_listing_holds_the_items_of_the_code(self):
        code_lines = [[line for line in lines if line[:1] != ";"] for lines in self.listings]
        self.assert_all_equal([break_into_items(code) for code in self.codes], code_lines)

    def test_screen_shows_what_the_listing_holds(self):
        runs = self.compile_all([source.data for source in self.sources], "-s", "-i")
        screens = [lines_of(run.stdout) for run in runs]
        self.assert_all_equal(screens, [list(map(on_screen, lines)) for lines in self.listings])


if __name__ == "__main__":
    unittest.main()
