"""The checker of code over all accepted programs, and over code that it must refuse."""

import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from corpus import accepted_sources
from support import ROOT, compile_source, side_by_side

sys.path.insert(0, str(ROOT / "tests/checker"))
from check_code import break_into_items, check  # noqa: E402

CHECKER = ROOT / "tests/checker/check_code.py"

# A label spelled like a generated one; a variable of that spelling has a type after the colon.
LABEL_LIKE_GENERATED = re.compile(
    r"\b(L[0-9]+)\s*:(?!=)(?!\s*(?:BOOL|U?[SD]?INT|L?REAL)\b)", re.IGNORECASE
)

# Sound code: a reference, a result dropped and one used, EXIT inside CASE inside FOR, GOTO out
# of FOR, OR, an engine register, and an empty item for a Boolean value, which leaves "flag" out.
GOOD = """
Fill:|RESULT V BOOL 0|level VR INT 0|limit VA INT 0|BODY:
MOV $POP #A0|MOV #A0 @limit|MOV $POP #A0|MOVA #A0 @level
MOV ^level #A0|MOV #A0 $PUSH|MOV @limit #A0|LT $POP #A0|TST #A0|MOV #A0 @RESULT
MOV @RESULT #A0|RET
Log:|i V INT 0|BODY:
MOV 1 #A0|MOV #A0 @i|MOV 9 #A0|MOV #A0 $PUSH
L1:|MOV @i #A0|MOV $POP #R0|GE #R0 #A0|TST #A0|MOV #R0 $PUSH|JMPF L2
MOV @I #A0|MOV #A0 $PUSH
MOV 3 #A0|MOV $POP #R0|NE #R0 #A0|TST #A0|MOV #R0 $PUSH|JMPF L5|JMP L6
L5:|MOV $POP #NIL|RET|JMP L4|L6:|L4:|MOV $POP #NIL
JMP OUT
L3:|MOV @i #A0|ADD 1 #A0|MOV #A0 @i|JMP L1|L2:|MOV $POP #NIL
OUT:|RET
PROG:|P|VAR:|x V INT -5|w YVR UINT 1 2 3 4||r VG REAL 1.5E3|MAIN:
MOVA @x #A0|MOV #A0 $PUSH|MOV 16#1F #A0|MOV #A0 $PUSH|CAL Fill|MOV $POP #NIL
L9:|MOVA @w #A0|MOV #A0 $PUSH|MOV 2 #A0|MOV #A0 $PUSH|CAL Fill
MOV #A0 $PUSH|MOV #A0 $PUSH|MOV 1 #A0|EQ $POP #A0|TST #A0|MOV $POP #A0|JMPT L8
MOV @flag #A0|TST #A0|L8:|JMPF L9
MOV @r #A0|MOV #A0 $PUSH|EXEC sqrt|SUB 0 #A0|MOV #A0 @r
MOV 'A: $PUSH' #A0|CAL Log
L10:|LAST:|RET
"""

# The text of GOOD to be replaced, its replacement, and the problem that must be told.
BROKEN_ITEMS = [
    ("MOVA #A0 @level\n", "MOVA #A0 @level\nMOV\n", "no item begins with '#A0'"),
    ("TST #A0|L8:", "TST #A0|TST|L8:", "'TST L8:': no form"),
    ("TST #A0|L8:", "TST #R0|L8:", "'TST #R0': no form"),
    ("TST #A0|L8:", "TST #A0|HALT|L8:", "no item begins with 'HALT'"),
    ("TST #A0|L8:", "TST #A0||L8:", "no item begins with ''"),
    ("TST #A0|L8:", "TST #A0\r|L8:", "the code holds a line end"),
    ("LAST:|RET", "LAST:|MOV @r", "the code ends inside the item 'MOV @r'"),
    ("MOV 1 #A0|EQ", "MOV 16#1G #A0|EQ", "'MOV 16#1G #A0': no form"),
    ("MOV 1 #A0|EQ", "MOV -1 #A0|EQ", "'MOV -1 #A0': no form"),
    ("SUB 0 #A0", "SUB 2 #A0", "'SUB 2 #A0': no form"),
    ("'A: $PUSH'", "'A: $PUSH", "no item begins with '#A0'"),
    ("JMPF L9", "JMPF LAST", "'JMPF LAST': no form"),
    ("P|VAR:", "1P|VAR:", "'1P' is no name"),
    ("PROG:|P|VAR:", "PROG:|VAR:", "no item begins with 'x'"),
    ("MAIN:\n", "MAYN:\n", "'MAIN:' expected but 'MAYN:' found"),
    ("Fill:|RESULT", "Fill|RESULT", "a definition or the program expected but 'Fill' found"),
]

BROKEN_DECLARATIONS = [
    ("x V INT -5", "x V WORD -5", "'x V WORD -5': unknown type"),
    ("x V INT -5", "x V STRING 0", "unknown type"),
    ("x V INT -5", "x V INT +5", "no value of the type: '+5'"),
    ("x V INT -5", "x V BOOL 2", "no value of the type: '2'"),
    ("x V INT -5", "x VA INT 0", "section code of another kind of unit"),
    ("limit VA INT 0", "limit VI INT 0", "section code of another kind of unit"),
    ("x V INT -5", "2x V INT -5", "not a name"),
    ("x V INT -5", "RESULT V INT 0", "not the declaration of a result"),
    ("RESULT V BOOL 0", "RESULT V BOOL 1", "not the declaration of a result"),
    ("limit VA INT 0", "limit VA INT 1", "an argument with a value"),
    ("1 2 3 4", "1 2 3 A", "no value of the type: 'A'"),
    ("x V INT -5", "R V INT -5", "R is declared 2 times"),
    ("RESULT V BOOL 0|level VR INT 0", "level VR INT 0|RESULT V BOOL 0", "not declared first"),
    ("level VR INT 0", "k V INT 0|level VR INT 0", "declared after a variable"),
]

BROKEN_NAMES = [
    ("L10:", "L9:", "label L9 is defined 2 times"),
    ("LAST:", "OUT:", "label OUT is defined 2 times"),
    ("JMPF L9", "JMPF L11", "'JMPF L11': the label is not defined"),
    ("JMPF L9", "JMPF L1", "'JMPF L1': the label is not defined"),
    ("JMP OUT", "JMP AWAY", "'JMP AWAY': the label is not defined"),
    ("MOV @limit #A0", "MOV @limits #A0", "not declared: 'MOV @limits #A0'"),
    ("MOV @limit #A0", "MOV @i #A0", "not declared: 'MOV @i #A0'"),
    ("MOV @r #A0", "MOV @R1 #A0", "not declared: 'MOV @flag #A0', 'MOV @R1 #A0'"),
    ("MOV @limit #A0", "MOV ^limit #A0", "'MOV ^limit #A0': not held by reference"),
    ("MOV ^level #A0", "MOV @level #A0", "'MOV @level #A0': held by reference"),
    ("CAL Log", "CAL log", "'CAL log': unknown callee"),
    ("EXEC sqrt", "EXEC root", "'EXEC root': unknown callee"),
    ("EXEC sqrt", "CAL sqrt", "'CAL sqrt': unknown callee"),
    ("CAL Log", "EXEC Log", "'EXEC Log': unknown callee"),
    ("MOV 1 #A0|MOV #A0 @i", "CAL P|MOV 1 #A0|MOV #A0 @i", "'CAL P': unknown callee"),
    ("Log:|", "FILL:|", "a callee of that name is there already"),
    ("Log:|", "Sqrt:|", "a callee of that name is there already"),
]

BROKEN_BALANCE = [
    ("MOVA #A0 @level\n", "MOV #A0 @level\n", "the prologue is not"),
    ("MOV #A0 @limit|", "MOV #A0 @level|", "the prologue is not"),
    ("MOV ^level #A0|", "MOVA #A0 @level|", "outside the prologue"),
    ("MOV @RESULT #A0|RET", "RET", "RET without the function's result"),
    ("LAST:|RET", "RET|LAST:", "RET is not the last item"),
    ("^level #A0|MOV #A0 $PUSH", "^level #A0", "'LT $POP #A0': takes 1 of 0 values"),
    ("LT $POP #A0|", "", "'RET': returns with 1 values"),
    ("L2:|MOV $POP #NIL", "L2:", "item 34: no drop ends the loop or case"),
    ("MOV 9 #A0|MOV #A0 $PUSH", "MOV 9 #A0", "'MOV $POP #R0': takes 1 of 0 values"),
    ("LT $POP #A0", "JMPT L7|LT $POP #A0|L7:", "'L7:': reached with 0 and with 1 values"),
    ("MOV #R0 $PUSH|JMPF L5", "JMPF L5", "no test of a loop or case"),
    ("L5:|MOV $POP #NIL|RET", "L5:|RET", "'RET': returns with 2 values"),
    ("L5:|MOV $POP #NIL|RET", "L5:|MOV $POP #NIL|MOV $POP #NIL|RET", "returns with 0 values"),
    ("L4:|MOV $POP #NIL", "L4:", "item 26: no drop ends the loop or case"),
    ("OUT:|RET", "MOV 1 #A0|MOV #A0 $PUSH|OUT:|MOV $POP #NIL|RET", "'OUT:': stands at 1 values"),
    ("JMP OUT", "MOV $POP #NIL|JMP OUT", "'JMP OUT': stands at 0 values inside 1 loops"),
    ("CAL Fill|MOV $POP #NIL", "CAL Fill", "'CAL Fill': the result is neither used nor dropped"),
    ("EXEC sqrt|SUB 0 #A0|", "EXEC sqrt|MOV 1 #A0|", "'EXEC sqrt': the result is neither used"),
    ("CAL Log", "CAL Log|MOV $POP #NIL", "'MOV $POP #NIL': takes 1 of 0 values"),
    ("@r #A0|MOV #A0 $PUSH", "@r #A0", "'EXEC sqrt': takes 1 of 0 values"),
    ("EXEC sqrt", "EXEC pow", "'EXEC pow': takes 2 of 1 values"),
]


def code_of(text):
    """Code from a text where "|" or a line end parts the items."""
    return re.sub("[|\n]", " ", text.lstrip("\n"))


class AcceptedPrograms(unittest.TestCase):
    def test_code_is_sound(self):
        sources = accepted_sources()
        self.assertGreater(len(sources), 300)
        runs = side_by_side(compile_source, [source.data for source in sources])
        for source, run in zip(sources, runs):
            with self.subTest(source.name):
                self.assertEqual(run.status, 0)
                text = source.data.decode(errors="replace")
                user_labels = {label.upper() for label in LABEL_LIKE_GENERATED.findall(text)}
                self.assertEqual(check(run.files["out"].decode(), user_labels), [])


class Checker(unittest.TestCase):
    def assert_refused(self, broken):
        for old, new, problem in broken:
            with self.subTest(old=old, new=new):
                self.assertEqual(GOOD.count(old), 1)
                problems = check(code_of(GOOD.replace(old, new)))
                self.assertIn(problem, "\n".join(problems))

    def test_sound_code(self):
        self.assertEqual(check(code_of(GOOD)), [])

    def test_a_users_label_spelled_like_a_generated_one(self):
        source = """PROGRAM P
VAR
  i : INT;
END_VAR
  FOR i := i TO 3 DO END_FOR; l2: i := i + 1;
END_PROGRAM
"""
        code = compile_source(source.encode()).files["out"].decode()
        self.assertEqual(code.count("L2: "), 2)
        self.assertEqual(check(code, {"L2"}), [])
        self.assertIn("label L2 is defined 2 times", check(code))

    def test_items(self):
        items = re.split("[|\n]", GOOD.strip("\n"))
        self.assertEqual(break_into_items(code_of(GOOD)), items)

    def test_broken_items(self):
        self.assert_refused(BROKEN_ITEMS)

    def test_broken_declarations(self):
        self.assert_refused(BROKEN_DECLARATIONS)

    def test_broken_names(self):
        self.assert_refused(BROKEN_NAMES)

    def test_broken_balance(self):
        self.assert_refused(BROKEN_BALANCE)

    def test_no_blank_at_the_end(self):
        self.assertEqual(check(code_of(GOOD)[:-1]), ["the code does not end in a blank"])

    def test_no_program(self):
        for code in ("", " ", code_of(GOOD.partition("PROG:")[0])):
            with self.subTest(code=code):
                self.assertNotEqual(check(code), [])

    def test_definition_after_the_program(self):
        problems = check(code_of(GOOD + "Late:|BODY:|RET\n"))
        self.assertEqual(problems, ["'Late:' follows the program"])

    def test_unit_without_code(self):
        problems = check(code_of(GOOD.partition("MAIN:\n")[0] + "MAIN:\n"))
        self.assertEqual(problems, ["unit P: no code"])

    def test_undeclared_name_without_an_empty_item(self):
        problems = check(code_of(GOOD.replace("4||r", "4|r")))
        self.assertEqual(problems, ["unit P: not declared: 'MOV @flag #A0'"])

    def test_user_label_like_a_generated_one(self):
        twice = code_of(GOOD.replace("L10:", "L9:"))
        self.assertEqual(check(twice, {"L9"}), [])
        self.assertNotEqual(check(twice, {"L10"}), [])

    def test_units_named_like_section_marks(self):
        names = GOOD.replace("Fill", "PROG").replace("Log", "MAIN").replace("OUT", "PROG")
        self.assertEqual(check(code_of(names)), [])

    def test_control_variable_held_by_reference(self):
        prologue = "BODY:\nMOV $POP #A0|MOVA #A0 @i\n"
        reference = GOOD.replace("i V INT 0|BODY:\n", "i VR INT 0|" + prologue)
        reference = reference.replace("1 #A0|MOV #A0 @i", "1 #A0|MOV #A0 ^i", 1)
        reference = reference.replace("@I #A0", "^I #A0")
        reference = reference.replace("#A0|CAL Log", "#A0|MOVA @x #A0|MOV #A0 $PUSH|CAL Log")
        self.assertEqual(check(code_of(reference)), [])


class CommandLine(unittest.TestCase):
    def run_checker(self, code, *options):
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder, "out")
            path.write_text(code, encoding="utf-8")
            return subprocess.run(
                [sys.executable, "-B", CHECKER, *options, path], capture_output=True, text=True
            )

    def test_sound_code_is_silent(self):
        process = self.run_checker(code_of(GOOD))
        self.assertEqual((process.returncode, process.stdout, process.stderr), (0, "", ""))

    def test_problems_are_told(self):
        process = self.run_checker(code_of(GOOD.replace("L10:", "L9:")))
        self.assertEqual((process.returncode, process.stderr), (1, ""))
        self.assertIn("out: label L9 is defined 2 times\n", process.stdout)

    def test_user_label(self):
        code = code_of(GOOD.replace("L10:", "L9:"))
        self.assertEqual(self.run_checker(code, "--user-label", "l9").returncode, 0)


if __name__ == "__main__":
    unittest.main()
