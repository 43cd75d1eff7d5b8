"""Every text of the message catalogue is raised in some test, or it is known why it cannot be.

A text counts as raised when a diagnostic in an expected file of the golden tests holds it. Such a
line is read as a chain of catalogue texts, the longest that fits first, so "The function" is not
found in "The function_block". The other texts are raised here.
"""

import re
import resource
import unittest
from typing import NamedTuple, Optional, Tuple

from limits import IS_SANITIZED, MIB, STACK_SIZE, limit_stack
from support import ROOT, VALID_SOURCE, diagnostics_in, mask_time, words
from test_depth import LIMIT_LEVELS
from test_files import FilesTestCase, limit_file_size

SOURCES = ROOT / "qyx_st_cmp"
GOLDEN = ROOT / "tests" / "golden"

EXPECTED_SUFFIXES = {".lst", ".out", ".res", ".txt"}

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

CATALOGUE = words.messages()

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

def texts_in_diagnostics(output):
    raised = set()
    for line in diagnostics_in(output):
        raised |= texts_in(line)
    return raised


def raised_in_golden_tests():
    raised = set()
    for path in GOLDEN.rglob("*"):
        if path.suffix in EXPECTED_SUFFIXES:
            raised |= texts_in_diagnostics(path.read_text(errors="replace"))
    return raised


# ---------------------------------------------------------------------------------------------
# Runs for the texts that no golden test raises
# ---------------------------------------------------------------------------------------------


class Run(NamedTuple):
    """A run of the compiler, and a line that its screen output must hold, {} being the text."""

    line: str
    arguments: Tuple[str, ...]
    folder: Optional[str] = None  # stands where a file belongs
    source: bytes = VALID_SOURCE
    file_size: Optional[int] = None  # the limit of every file
    address_space: Optional[int] = None  # the limit of the process


REFUSED = ";{}\n"
OUTPUT_ALONE = ("in.st", "out")
ON_SCREEN = ("in.st", "out", "-s")

TOO_DEEP = b"PROGRAM main\nVAR a : INT; END_VAR\na := " + b"(" * (LIMIT_LEVELS + 1)
TOO_DEEP_COLUMN = len("a := ") + LIMIT_LEVELS + 1

ADDRESS_SPACE = 128 * MIB

RUNS = {
    "TXT_ARGUMENTS_ERROR": Run(REFUSED, ()),
    "TXT_BUILD_SUCCESSFUL": Run("{}  Elapsed time: N ms.\n", ON_SCREEN),
    "TXT_INPUT_FILE_NOT_FOUND": Run(REFUSED, ("absent.st", "out")),
    "TXT_OPEN_FAILED_ON_INPUT_FILE": Run(
        "Error: Line 0, Column 0: {}\n", ("folder", "out", "-s"), folder="folder"
    ),
    "TXT_OPEN_FAILED_ON_OUTPUT_FILE": Run(REFUSED, OUTPUT_ALONE, folder="out"),
    "TXT_OPEN_FAILED_ON_OUTPUT_FILE_LST": Run(REFUSED, (*OUTPUT_ALONE, "-l"), folder="out.lst"),
    "TXT_OPEN_FAILED_ON_OUTPUT_FILE_RES": Run(REFUSED, (*OUTPUT_ALONE, "-r"), folder="out.res"),
    "TXT_OPEN_FAILED_ON_OUTPUT_FILE_ERR": Run(REFUSED, (*OUTPUT_ALONE, "-e"), folder="out.err"),
    "TXT_OUT_OF_MEMORY": Run(
        REFUSED, OUTPUT_ALONE, source=b" " * ADDRESS_SPACE, address_space=ADDRESS_SPACE
    ),
    "TXT_PROBLEM_WRITING_OUTPUT_FILE": Run(
        "Error: Line 6, Column 1: {}\n", ON_SCREEN, file_size=0
    ),
    "TXT_TOO_DEEP_NESTING": Run(
        f"Error: Line 3, Column {TOO_DEEP_COLUMN}: {{}}\n", ON_SCREEN, source=TOO_DEEP
    ),
    "TXT_TRADEMARK": Run("{}\n", ON_SCREEN),
}


class Runs(FilesTestCase):
    def screen_of(self, run):
        self.source("in.st", run.source)
        if run.folder:
            (self.folder / run.folder).mkdir()

        def set_limits():
            limit_stack(STACK_SIZE)
            if run.file_size is not None:
                limit_file_size(run.file_size)()
            if run.address_space is not None:
                resource.setrlimit(resource.RLIMIT_AS, (run.address_space, run.address_space))

        result = self.run_compiler(*run.arguments, preexec_fn=set_limits)
        return mask_time(result.stdout).decode()

    def test_every_run_raises_its_text(self):
        top = self.folder
        for name, run in RUNS.items():
            self.folder = top / name
            self.folder.mkdir()
            if IS_SANITIZED and run.address_space is not None:
                continue  # a sanitizer does not work with limited memory
            with self.subTest(text=name):
                line = run.line.format(CATALOGUE[name])
                self.assertIn("\n" + line, "\n" + self.screen_of(run))


def named_in_sources():
    sources = "".join(path.read_text() for path in SOURCES.glob("*.cpp"))
    return set(re.findall(r"\bTXT_\w+", sources))


class Catalogue(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        texts = raised_in_golden_tests()
        cls.raised = {name for name, text in CATALOGUE.items() if text in texts} | RUNS.keys()

    def test_every_text_is_raised_or_known_not_to_be(self):
        self.assertEqual(sorted(CATALOGUE.keys() - self.raised - NOT_RAISED.keys()), [])

    def test_no_text_is_raised_that_is_known_not_to_be(self):
        self.assertEqual(sorted(self.raised & NOT_RAISED.keys()), [])

    def test_only_texts_of_the_catalogue_are_known_not_to_be_raised(self):
        self.assertEqual(sorted(NOT_RAISED.keys() - CATALOGUE.keys()), [])

    def test_every_text_that_the_compiler_names_is_in_the_catalogue(self):
        self.assertEqual(sorted(named_in_sources() - CATALOGUE.keys()), [])

    def test_texts_that_the_compiler_names_are_not_called_unused(self):
        unused = {name for name, reason in NOT_RAISED.items() if reason == NOT_USED}
        self.assertEqual(sorted(CATALOGUE.keys() - named_in_sources()), sorted(unused))


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
