"""The runner of the golden cases: it passes what is right, notices what is not, and updates."""

import contextlib
import io
import re
import sys
import tempfile
import unittest
from pathlib import Path

from support import ROOT

sys.path.insert(0, str(ROOT / "tests/golden"))
import run as runner  # noqa: E402

SOURCE = "PROGRAM P\nVAR\n  x : INT := 0;\nEND_VAR\nx := 1;\nEND_PROGRAM\n"
BANNER = ";Ambrel Software. ST compiler version 2.00.\n"
CODE = "PROG:\nP\nVAR:\nx V INT 0\nMAIN:\nMOV 1 #A0\nMOV #A0 @x\nRET\n"
LISTING = BANNER + CODE + ";Build successful.  Elapsed time: N ms.\n"

TABLE = """\
whole_script
    PROGRAM P

    ; x : INT;
Error: Line 3, Column 1: The program must start with a declaration of variables

frame
    PROGRAM P
    VAR
      x : INT;
      y : BOOL;
    END_VAR
    ...
    END_PROGRAM

doubtful
    x := x + y;
Warning: Line 6, Column 8: The variable "x" might not have been initialized
Warning: Line 6, Column 11: The variable "y" might not have been initialized
Error: Line 6, Column 11: Incompatible types: "INT" and "BOOL"

two_lines

    x :=
      z;
Error: Line 8, Column 4: An unrecognized keyword "z"
"""


class RunnerTestCase(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.area = Path(folder.name, "area")
        self.area.mkdir()

    def run_area(self, *options):
        """The exit status and what is printed."""
        with contextlib.redirect_stdout(io.StringIO()) as output:
            status = runner.main([*options, str(self.area)])
        return status, output.getvalue()

    def assert_passes(self, count):
        self.assertEqual(self.run_area(), (0, f"{count} passed, 0 failed\n"))

    def assert_fails(self, text):
        status, output = self.run_area()
        self.assertEqual(status, 1)
        self.assertIn(text, output)


class Files(RunnerTestCase):
    def setUp(self):
        super().setUp()
        (self.area / "case.st").write_text(SOURCE)
        (self.area / "case.lst").write_text(LISTING)

    def test_right_listing(self):
        self.assert_passes(1)

    def test_wrong_listing(self):
        (self.area / "case.lst").write_text(LISTING.replace("MOV 1", "MOV 2"))
        self.assert_fails("MOV 1 #A0")

    def test_listing_of_a_failure(self):
        (self.area / "case.lst").write_text(BANNER + ";Error: Line 1, Column 1: x\n")
        self.assert_fails("exit status 0 is not what the expected files tell")

    def test_missing_listing(self):
        (self.area / "case.lst").unlink()
        self.assert_fails("case.lst is missing")

    def test_other_outputs(self):
        (self.area / "case.code").write_text(CODE.replace("\n", " "))
        self.assert_passes(1)
        (self.area / "case.err").write_text("")
        self.assert_fails("no out.err was written")
        (self.area / "case.args").write_text("-l -m -e\n")
        self.assert_passes(1)
        (self.area / "case.args").write_text("-l -m -e -s\n")
        self.assert_fails("+'MOV 1 #A0\\n'")

    def test_stray_file(self):
        (self.area / "other.lst").write_text(LISTING)
        self.assert_fails("no .st file goes with it")

    def test_update(self):
        (self.area / "case.lst").write_text(LISTING.replace("MOV 1", "MOV 2"))
        self.run_area("--update")
        self.assertEqual((self.area / "case.lst").read_text(), LISTING)


class Table(RunnerTestCase):
    def setUp(self):
        super().setUp()
        self.table = self.area / "errors.txt"

    def replace(self, old, new):
        self.assertEqual(TABLE.count(old), 1)
        self.table.write_text(TABLE.replace(old, new))

    def assert_refused(self, text):
        with self.assertRaisesRegex(ValueError, re.escape(text)):
            self.run_area()

    def test_right_messages(self):
        self.table.write_text(TABLE)
        self.assert_passes(3)

    def test_wrong_messages(self):
        for old, new in [
            ("Line 8, Column 4", "Line 8, Column 3"),
            ('keyword "z"', 'keyword "Z"'),
            ('"INT" and "BOOL"\n', '"INT" and "BOOL" \n'),
            ('Warning: Line 6, Column 8: The variable "x" might not have been initialized\n', ""),
        ]:
            with self.subTest(new=new):
                self.replace(old, new)
                self.assert_fails("2 passed, 1 failed")

    def test_accepted_script(self):
        self.replace("x := x + y", "x := 1")
        self.assert_fails("exit status 0 is not what the expected files tell")

    def test_damaged_tables(self):
        for old, new, text in [
            ("whole_script\n", "", "a table begins with a name"),
            ("    ...\n", "", "a frame has one line ..."),
            ("    END_VAR\n    ...", "    ...\n    ...", "a frame has one line ..."),
            ("\nError: Line 8, Column 4", "\nLine 9, Column 1", "lines that are no messages"),
            ('Error: Line 8, Column 4: An unrecognized keyword "z"\n', "", "a case has messages"),
            ("doubtful\n", "", "a frame has one line ..."),
        ]:
            with self.subTest(text=text, new=new):
                self.replace(old, new)
                self.assert_refused(text)

    def test_source_after_messages(self):
        self.table.write_text(TABLE + "    x := 1;\n")
        self.assert_refused("source after the messages of two_lines")

    def test_update(self):
        self.replace("Line 8, Column 4", "Line 8, Column 1")
        self.run_area("--update")
        self.assertEqual(self.table.read_text(), TABLE)


if __name__ == "__main__":
    unittest.main()
