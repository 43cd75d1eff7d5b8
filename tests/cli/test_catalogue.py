"""Every text of the message catalogue is raised in some test, or it is known why it cannot be.

A text counts as raised when an expected file of the golden tests, or a string in a command line
test, holds a line of output with it. Such a line is read as a chain of catalogue texts, the
longest that fits first, so "The function" is not found in "The function_block".
"""

import ast
import re
import unittest

from support import ROOT

SOURCES = ROOT / "qyx_st_cmp"
HEADER = SOURCES / "qyx_messages.h"
GOLDEN = ROOT / "tests" / "golden"
COMMAND_LINE_TESTS = ROOT / "tests" / "cli"

EXPECTED_SUFFIXES = {".lst", ".out", ".res"}

# Why a text is not raised.
NOT_USED = "defined and not raised"
NO_CALLER = "an unknown name is an unrecognized keyword; nothing calls Undefined"
NO_ARRAYS = "no source text reaches it: no array can be declared"
LITERAL_IS_CURRENT = "no source text reaches it: only TRUE and FALSE lead there"
NUMBER_IS_CURRENT = "no source text reaches it: a number that was read has digits"
SOURCE_IS_OPEN = "no source text reaches it: the source is open until the run ends"

NOT_RAISED = {
    "TXT_A_LOT_OF_LENGTH_IN_INPUT_STRING": NOT_USED,
    "TXT_ARRAY_CANNOT_ALLOCATE_AN_ARRAY_DIMENSION_GREATER": NOT_USED,
    "TXT_ARRAY_CANNOT_ALLOCATE_AN_ARRAY_SIZE": NOT_USED,
    "TXT_ARRAY_INCORRECT_SIZE_OF_ARRAY": NO_ARRAYS,
    "TXT_ARRAY_UNKNOWN_SIZE": NOT_USED,
    "TXT_BOOLEAN_LITERAL": LITERAL_IS_CURRENT,
    "TXT_EXPECTED": LITERAL_IS_CURRENT,
    "TXT_EXPRESSION_EXPECTED_BUT": NOT_USED,
    "TXT_FOR_LOOP_CONTROL_VARIABLE_MUST_HAVE_DIGIT_TYPE": NOT_USED,
    "TXT_IS_ILLEGAL": NOT_USED,
    "TXT_MAX_COUNT_OF_VARIABLES_IS": NOT_USED,
    "TXT_NUMBER_EXPECTED_BUT": NOT_USED,
    "TXT_OPERATION_EXPECTED_BUT": NOT_USED,
    "TXT_PROBLEM_READING_INPUT_FILE": SOURCE_IS_OPEN,
    "TXT_PROBLEM_WRITING_OUTPUT_FILE_ERR": NOT_USED,
    "TXT_PROBLEM_WRITING_OUTPUT_FILE_LST": NOT_USED,
    "TXT_PROBLEM_WRITING_OUTPUT_FILE_RES": NOT_USED,
    "TXT_STRING_EXPECTED_BUT": NUMBER_IS_CURRENT,
    "TXT_UNDECLARED_IDENTIFIER": NOT_USED,
    "TXT_UNDEFINED_IDENTIFIER": NO_CALLER,
}

# ---------------------------------------------------------------------------------------------
# The catalogue
# ---------------------------------------------------------------------------------------------

DEFINITION_BEGIN = "constexpr QLatin1String TXT_"
DEFINITION = re.compile(r'QLatin1String (TXT_\w+) =((?:\s*"(?:[^"\\]|\\.)*")+)_L1;')
LITERAL = re.compile(r'"(?:[^"\\]|\\.)*"')


def read_catalogue():
    """Name -> text. The literals of the header mean the same in Python."""
    return {
        name: "".join(ast.literal_eval(literal) for literal in LITERAL.findall(literals))
        for name, literals in DEFINITION.findall(HEADER.read_text())
    }


CATALOGUE = read_catalogue()

# ---------------------------------------------------------------------------------------------
# The texts in a line
# ---------------------------------------------------------------------------------------------


def whole_words(text):
    begin = r"(?<!\w)" if text[0].isalnum() else ""
    end = r"(?!\w)" if text[-1].isalnum() else ""
    return begin + re.escape(text) + end


# What stands in quotes comes from the source, unless a text itself begins with a quote.
LONGEST_FIRST = sorted(CATALOGUE.values(), key=len, reverse=True)
PIECE = re.compile("({})|\"[^\"]*\"".format("|".join(map(whole_words, LONGEST_FIRST))))


def texts_in(line):
    return {match[1] for match in PIECE.finditer(line) if match[1]}


# ---------------------------------------------------------------------------------------------
# The raised texts
# ---------------------------------------------------------------------------------------------

# Tests of the command line may leave the numbers to a regular expression.
NUMBER = r"(?:\d+|\\d\+)"
DIAGNOSTIC = re.compile(
    rf"^[;^]?((?:Error|Warning): Line {NUMBER}, Column {NUMBER}: .*)$", re.MULTILINE
)


def texts_in_diagnostics(output):
    raised = set()
    for line in DIAGNOSTIC.findall(output):
        raised |= texts_in(line)
    return raised


def raised_in_golden_tests():
    raised = set()
    for path in GOLDEN.rglob("*"):
        if path.suffix in EXPECTED_SUFFIXES:
            raised |= texts_in_diagnostics(path.read_text(errors="replace"))
    return raised


def strings_of(path):
    """The string and bytes constants of a Python file but for its documentation."""
    tree = ast.parse(path.read_text())
    documentation = {node.value for node in ast.walk(tree) if isinstance(node, ast.Expr)}
    for node in ast.walk(tree):
        if isinstance(node, ast.Constant) and node not in documentation:
            if isinstance(node.value, bytes):
                yield node.value.decode(errors="replace")
            elif isinstance(node.value, str):
                yield node.value


def raised_in_command_line_tests():
    """A message without a position has to begin its string; single words are no message."""
    messages = [text for text in CATALOGUE.values() if " " in text]
    raised = set()
    for path in COMMAND_LINE_TESTS.glob("*.py"):
        if path.name == "test_catalogue.py":
            continue
        for string in strings_of(path):
            raised |= texts_in_diagnostics(string)
            raised |= {text for text in messages if string.startswith(text)}
    return raised


class Catalogue(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        texts = raised_in_golden_tests() | raised_in_command_line_tests()
        cls.raised = {name for name, text in CATALOGUE.items() if text in texts}

    def test_every_definition_is_read(self):
        self.assertEqual(len(CATALOGUE), HEADER.read_text().count(DEFINITION_BEGIN))
        self.assertGreater(len(CATALOGUE), 90)

    def test_every_text_is_raised_or_known_not_to_be(self):
        self.assertEqual(sorted(CATALOGUE.keys() - self.raised - NOT_RAISED.keys()), [])

    def test_no_text_is_raised_that_is_known_not_to_be(self):
        self.assertEqual(sorted(self.raised & NOT_RAISED.keys()), [])

    def test_only_texts_of_the_catalogue_are_known_not_to_be_raised(self):
        self.assertEqual(sorted(NOT_RAISED.keys() - CATALOGUE.keys()), [])

    def test_texts_that_the_compiler_names_are_not_called_unused(self):
        sources = "".join(path.read_text() for path in SOURCES.glob("*.cpp"))
        named = set(re.findall(r"\bTXT_\w+", sources))
        unused = {name for name, reason in NOT_RAISED.items() if reason == NOT_USED}
        self.assertEqual(sorted(CATALOGUE.keys() - named), sorted(unused))


class TextsInLines(unittest.TestCase):
    def test_longest_text_counts(self):
        line = 'The function_block "B" is declared but never used in "P"'
        self.assertEqual(texts_in(line), {"The function_block", "is declared but never used in"})

    def test_names_of_the_source_do_not_count(self):
        line = 'Identifier expected but "found" found'
        self.assertEqual(texts_in(line), {"Identifier", "expected but", "found"})
        self.assertEqual(texts_in('"The variable" "and"'), set())

    def test_text_with_quotes(self):
        line = '"BREAK" outside of loop'
        self.assertEqual(texts_in(line), {line})

    def test_only_diagnostics_are_searched(self):
        listing = ';Line 1: "Operator"\nMOV #A0 @Number\n;Error: Line 2, Column 3: illegal\n'
        self.assertEqual(
            texts_in_diagnostics(listing), {"Error", "Line", "Column", "illegal"}
        )


if __name__ == "__main__":
    unittest.main()
