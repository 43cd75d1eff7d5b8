"""All 256 sets of options over one source that compiles and one that does not.

What a set must give is put together from the events of the compile, in the order in which they
come: which outputs an event goes to, and in which form, depends on its kind and on the options
alone.
"""

import itertools
import unittest
from typing import NamedTuple

from support import (
    BINARY,
    OPTIONS,
    VALID_SOURCE,
    compile_source,
    mask_time,
    side_by_side,
    words,
)

OPTION_SETS = [
    chosen
    for count in range(len(OPTIONS) + 1)
    for chosen in itertools.combinations(OPTIONS, count)
]

# ---------------------------------------------------------------------------------------------
# Events
# ---------------------------------------------------------------------------------------------


class Code(NamedTuple):
    """An item of target code."""

    text: str


class Echo(NamedTuple):
    """A line of the source that the listing shows, trimmed."""

    line: int
    text: str


class Information(NamedTuple):
    """The banner or the success line."""

    text: str


class Diagnostic(NamedTuple):
    """A warning or an error, and the place of the look-ahead character when it comes."""

    text: str
    line: int
    column: int


BANNER = Information("Ambrel Software. ST compiler version 2.00.")
SUCCESS = Information("Build successful.  Elapsed time: N ms.")

# ---------------------------------------------------------------------------------------------
# The sources and their events
# ---------------------------------------------------------------------------------------------

# Comments over and after lines, an empty line and one of blanks, Cyrillic names, a tab, a
# carriage return, warnings in the middle and at the end, text after the program.
SOURCE = """\
(* Opens the valve while the level
   is low. *)
FUNCTION Half : REAL
VAR_ARG value : REAL; spare : INT; END_VAR
    RESULT := value / 2.0;   // without a check
END_FUNCTION

PROGRAM Dose
VAR_INPUT
    level : REAL;
END_VAR
VAR_OUTPUT valve : BOOL; END_VAR
VAR
    Объем : REAL := 1.5;\r
    idle : INT;
END_VAR
   \t
\tIF level < Half(Объем, 1) THEN
        valve := NOT valve;
    END_IF;
END_PROGRAM
that is all
"""

FAILING_SOURCE = SOURCE.replace("NOT valve;", "NOT level;")

EVENTS_TO_THE_CONDITION = [
    BANNER,
    Echo(1, "(* Opens the valve while the level"),
    Echo(2, "is low. *)"),
    Echo(3, "FUNCTION Half : REAL"),
    Code("Half:"),
    Code("RESULT V REAL 0"),
    Echo(4, "VAR_ARG value : REAL; spare : INT; END_VAR"),
    Code("value VA REAL 0"),
    Code("spare VA INT 0"),
    Echo(5, "RESULT := value / 2.0;   // without a check"),
    Code("BODY:"),
    Code("MOV $POP #A0"),
    Code("MOV #A0 @spare"),
    Code("MOV $POP #A0"),
    Code("MOV #A0 @value"),
    Code("MOV @value #A0"),
    Code("MOV #A0 $PUSH"),
    Code("MOV 2.0 #A0"),
    Code("DIV $POP #A0"),
    Code("MOV #A0 @RESULT"),
    Echo(6, "END_FUNCTION"),
    Code("MOV @RESULT #A0"),
    Diagnostic(
        'Warning: Line 4, Column 23: The variable "spare" is declared but never used in "Half"',
        line=8,
        column=1,
    ),
    Code("RET"),
    Echo(8, "PROGRAM Dose"),
    Code("PROG:"),
    Code("Dose"),
    Echo(9, "VAR_INPUT"),
    Code("VAR:"),
    Echo(10, "level : REAL;"),
    Code("level VI REAL 0"),
    Echo(11, "END_VAR"),
    Echo(12, "VAR_OUTPUT valve : BOOL; END_VAR"),
    Code("valve VO BOOL 0"),
    Echo(13, "VAR"),
    Echo(14, "Объем : REAL := 1.5;"),
    Code("Объем V REAL 1.5"),
    Echo(15, "idle : INT;"),
    Code("idle V INT 0"),
    Echo(16, "END_VAR"),
    Echo(18, "IF level < Half(Объем, 1) THEN"),
    Code("MAIN:"),
    Code("MOV @level #A0"),
    Code("MOV #A0 $PUSH"),
    Code("MOV @Объем #A0"),
    Code("MOV #A0 $PUSH"),
    Code("MOV 1 #A0"),
    Code("MOV #A0 $PUSH"),
    Code("CAL Half"),
    Code("LT $POP #A0"),
    Code("TST #A0"),
]

EVENTS = [
    *EVENTS_TO_THE_CONDITION,
    Echo(19, "valve := NOT valve;"),
    Code("JMPF L2"),
    Code("MOV @valve #A0"),
    Diagnostic(
        'Warning: Line 19, Column 27: The variable "valve" might not have been initialized',
        line=20,
        column=5,
    ),
    Code("MOV #A0 $PUSH"),
    Code("MOV #A0 $PUSH"),
    Code("MOV 1 #A0"),
    Code("EQ $POP #A0"),
    Code("TST #A0"),
    Code("MOV $POP #A0"),
    Code("NOT #A0"),
    Code("TST #A0"),
    Code("MOV #A0 @valve"),
    Echo(20, "END_IF;"),
    Code("L2:"),
    Echo(21, "END_PROGRAM"),
    Diagnostic(
        'Warning: Line 15, Column 5: The variable "idle" is declared but never used in "Dose"',
        line=22,
        column=1,
    ),
    Code("RET"),
    Diagnostic(
        'Warning: Line 21, Column 1: An unexpected data after "END_PROGRAM"', line=22, column=1
    ),
    SUCCESS,
]

FAILING_EVENTS = [
    *EVENTS_TO_THE_CONDITION,
    Echo(19, "valve := NOT level;"),
    Code("JMPF L2"),
    Code("MOV @level #A0"),
    Diagnostic(
        'Error: Line 19, Column 27: Operator "NOT" not applicable to this operand type',
        line=20,
        column=5,
    ),
]

# ---------------------------------------------------------------------------------------------
# The routes
# ---------------------------------------------------------------------------------------------


class Outputs:
    """What a set of options makes of events."""

    def __init__(self, options, events):
        self.options = options
        self.code = self.screen = self.listing = self.result = self.error = ""
        self._code_lines = 0
        for event in events:
            self._route(event)

    def _route(self, event):
        if isinstance(event, Code):
            self._route_code(event)
        elif isinstance(event, Echo):
            self._route_echo(event)
        else:
            self._route_message(event)

    def _route_code(self, code):
        self._code_lines += 1
        self.code += code.text + " "
        number = f"{self._code_lines:04}\t" if "-n" in self.options else ""
        self.screen += f"{number}{code.text}\n"
        self.listing += f"{number}{code.text}\n"

    def _route_echo(self, echo):
        if "-i" in self.options:
            line = f';Line {echo.line}: "{echo.text}"\n'
            self.screen += line
            self.listing += line

    def _route_message(self, message):
        self.screen += f"{message.text}\n"
        if "-m" in self.options:
            self.listing += f";{message.text}\n"
        self.result += f"{message.text}\n"
        if isinstance(message, Diagnostic):
            self.error += f"e:{message.line},{message.column}"

    def visible(self, succeeded):
        """All that a run leaves behind, by name; the screen is "standard output"."""
        found = {"standard output": self.screen if "-s" in self.options else ""}
        if succeeded:
            found["out"] = self.code
        for option, name, text in (
            ("-l", "out.lst", self.listing),
            ("-r", "out.res", self.result),
            ("-e", "out.err", self.error),
        ):
            if option in self.options:
                found[name] = text
        return {name: text.encode() for name, text in found.items()}


class OptionSets(unittest.TestCase):
    maxDiff = None

    def test_every_option_of_the_compiler_is_in_the_sets(self):
        self.assertEqual(sorted(words.driver_options(BINARY)), sorted(OPTIONS))

    def test_no_other_character_is_an_option(self):
        options = [f"-{character}" for character in map(chr, range(33, 127))]
        runs = side_by_side(lambda option: compile_source(VALID_SOURCE, option), options)
        accepted = [option for option, run in zip(options, runs) if run.status == 0]
        self.assertEqual(sorted(accepted), sorted(OPTIONS))

    def assert_all_sets(self, source, events, status):
        """Shows the outputs of the smallest set that differs: there may be many."""
        results = side_by_side(
            lambda options: compile_source(source.encode(), *options), OPTION_SETS
        )
        wrong = 0
        first = None
        for options, result in zip(OPTION_SETS, results):
            expected = Outputs(options, events).visible(succeeded=status == 0)
            found = {"standard output": result.stdout, **result.files}
            actual = {name: mask_time(data) for name, data in found.items()}
            expected_run = (status, b"", expected)
            actual_run = (result.status, result.stderr, actual)
            if actual_run != expected_run:
                wrong += 1
                first = first or (options, actual_run, expected_run)
        if first:
            options, actual_run, expected_run = first
            self.assertEqual(actual_run, expected_run, f"{wrong} sets differ, as {options}")

    def test_source_with_warnings(self):
        self.assert_all_sets(SOURCE, EVENTS, status=0)

    def test_source_with_error(self):
        self.assert_all_sets(FAILING_SOURCE, FAILING_EVENTS, status=1)


if __name__ == "__main__":
    unittest.main()
