"""`yxst run` executes scripts and target code, and does what its options ask for."""

import re
import subprocess
import unittest

from support_desk import FAILED, FINE, NOT_FINE, ROOT, run_yxst
from test_check import FolderTestCase

from support import BINARY  # isort: skip: found by support_desk

COUNTER = b"""PROGRAM Counter
VAR_INPUT
    step : INT;
    reset : BOOL;
END_VAR
VAR_OUTPUT
    high : BOOL := FALSE;
END_VAR
VAR
    total : INT := 0;
    level : REAL := 0.5;
END_VAR
    total := total + step;
    IF reset THEN
        total := 0;
    END_IF;
    level := level * 2.0;
    high := total > 4;
END_PROGRAM
"""

DIVISION = b"""PROGRAM Division
VAR_INPUT
    divisor : INT;
END_VAR
VAR
    small : USINT := 0;
    left : INT;
END_VAR
    small := divisor * 100;
    left := left + 1;
    left := 10 / divisor;
END_PROGRAM
"""


METER = b"""PROGRAM Meter
VAR_YXGLOBAL
    total : LREAL(7);
    known : INT(8);
END_VAR
    total := total + yxGetRegUINT(1, 0, 201, 0) + TICK;
    yxSetGV(61, yxGetGV(8) + 0.25 * yxGetRegUINT(1, 0, 201, 0));
    yxSetGV(known, 3.0);
END_PROGRAM
"""


class RunTestCase(FolderTestCase):
    def setUp(self):
        super().setUp()
        self.write("counter.st", COUNTER)
        self.write("division.st", DIVISION)

    def run_file(self, *arguments, **options):
        return run_yxst("run", *arguments, cwd=self.folder, **options)

    def fine(self, *arguments, **options):
        """What a run that goes well shows."""
        run = self.run_file(*arguments, **options)
        self.assertEqual((run.status, run.stderr.decode()), (FINE, ""))
        return run.stdout.decode()

    def refused(self, complaint, *arguments):
        run = self.run_file(*arguments)
        self.assertEqual((run.status, run.stdout), (FAILED, b""))
        self.assertEqual(run.stderr.decode(), f"yxst: {complaint}.\n")

    def rows(self, *arguments, names="total"):
        """The values of a trace, as lists of texts, without cycle and tick."""
        trace = self.fine("counter.st", "--trace=-", f"--watch={names}", *arguments)
        lines = [line for line in trace.splitlines() if not line.startswith("#")]
        return [line.split(",")[2:] for line in lines[1:]]

    def totals(self, *arguments):
        return [int(row[0]) for row in self.rows(*arguments)]

    def text(self, name):
        return (self.folder / name).read_text(encoding="utf-8")


TABLE = """\
step   INT   VAR_INPUT   3
reset  BOOL  VAR_INPUT   FALSE
high   BOOL  VAR_OUTPUT  TRUE
total  INT   VAR         6
level  REAL  VAR         2.0
2 cycles of 100 ticks, 50 instructions
"""


class WhatIsShown(RunTestCase):
    def test_variables(self):
        self.assertEqual(self.fine("counter.st", "--cycles=2", "--set=step=3"), TABLE)

    def test_variables_that_are_watched(self):
        shown = self.fine("counter.st", "--watch=TOTAL,high", "--watch=total")
        expected = "total  INT   VAR         0\nhigh   BOOL  VAR_OUTPUT  FALSE\n"
        self.assertEqual(shown, expected + "1 cycle of 100 ticks, 25 instructions\n")

    def test_quiet(self):
        self.assertEqual(self.fine("counter.st", "--quiet"), "")
        self.assertEqual(self.fine("division.st", "--quiet", "--set=divisor=5"), "")

    def test_tick_that_the_script_sets(self):
        script = COUNTER.replace(b"high :=", b"TICK := 50; high :=").replace(b"BOOL :=", b"BOOL:=")
        self.write("tick.st", script)
        self.assertTrue(self.fine("tick.st").endswith("\nTICK was set to 50\n"))

    def test_a_stop_and_notes_of_a_script(self):
        run = self.run_file("division.st")
        self.assertEqual((run.status, run.stderr), (NOT_FINE, b""))
        expected = """\
division.st:10:5: note: the variable is read before it has a value, once [uninitialized-read]
 10 |     left := left + 1;
    |     ^^^^^^^^^^^^^^^^^

division.st:11:5: error: a whole number is divided by 0 [division-by-zero]
 11 |     left := 10 / divisor;
    |     ^^^^^^^^^^^^^^^^^^^^^

divisor  INT    VAR_INPUT  0
small    USINT  VAR        0
left     INT    VAR        1
0 cycles of 100 ticks, 14 instructions; stopped in cycle 1
"""
        self.assertEqual(run.stdout.decode(), expected)

    def test_notes_are_counted(self):
        shown = self.fine("division.st", "--set=divisor=5", "--cycles=7")
        self.assertIn(
            "division.st:9:5: note: a whole number does not fit, 7 times [store-overflow]", shown
        )

    def test_a_stop_with_the_trace_on_standard_output(self):
        run = self.run_file("division.st", "--trace=-")
        self.assertEqual(run.status, NOT_FINE)
        self.assertEqual(run.stdout.decode().splitlines()[-1], "cycle,tick,divisor,small,left")
        self.assertEqual(
            run.stderr.decode().splitlines(),
            [
                "yxst: division.st:10:5: note: the variable is read before it has a value, "
                "once [uninitialized-read].",
                "yxst: division.st:11:5: error: a whole number is divided by 0 [division-by-zero].",
            ],
        )

    def test_colours(self):
        run = self.run_file("division.st", "--color=always")
        self.assertIn(b"\x1b[1;31merror:\x1b[0m", run.stdout)

    def test_variables_with_a_value_are_not_noted(self):
        """Neither those that begin with one, nor inputs, nor those that are set."""
        for arguments in (["--set=left=3"], ["--check=uninitialized-read=off"]):
            shown = self.fine("division.st", "--set=divisor=1", *arguments)
            self.assertNotIn("uninitialized-read", shown)


class WhatIsExecuted(RunTestCase):
    def setUp(self):
        super().setUp()
        command = [BINARY, "counter.st", "counter.yx", "-l", "-i", "-m", "-n"]
        subprocess.run(command, cwd=self.folder, check=True)

    def test_code_and_listing_are_executed_like_the_script(self):
        for name in ("counter.yx", "counter.yx.lst"):
            self.assertEqual(self.fine(name, "--cycles=2", "--set=step=3"), TABLE)

    def test_standard_input(self):
        for name in ("counter.st", "counter.yx", "counter.yx.lst"):
            data = (self.folder / name).read_bytes()
            shown = self.fine("-", "--cycles=2", "--set=step=3", stdin=None, input=data)
            self.assertEqual(shown, TABLE)

    def test_all_examples_run(self):
        for script in sorted((ROOT / "examples").glob("*.st")):
            with self.subTest(script.name):
                self.assertEqual(self.run_file(script, "--cycles=50", "--quiet").status, FINE)

    def test_script_with_errors(self):
        """The report is that of yxst check."""
        self.write("wrong.st", COUNTER.replace(b"total + step", b"total + steps"))
        run = self.run_file("wrong.st")
        self.assertEqual((run.status, run.stderr), (NOT_FINE, b""))
        self.assertEqual(run.stdout, self.check("wrong.st").stdout)
        self.assertIn(b"1 error in 1 file", run.stdout)

    def test_code_that_is_wrong(self):
        code = (self.folder / "counter.yx").read_bytes().replace(b"GT $POP", b"GTX $POP")
        self.write("wrong.yx", code)
        run = self.run_file("wrong.yx")
        self.assertEqual((run.status, run.stderr), (NOT_FINE, b""))
        expected = r"""wrong\.yx: item (\d+): error: no instruction begins with "GTX"
 \d+ \| MOV 4 #A0
 \1 \| GTX
    \| \^\^\^
"""
        self.assertRegex(run.stdout.decode(), f"^{expected}$")

    def test_a_stop_in_code(self):
        subprocess.run([BINARY, "division.st", "division.yx"], cwd=self.folder, check=True)
        run = self.run_file("division.yx", "--quiet")
        self.assertEqual(run.status, NOT_FINE)
        expected = """\
division.yx: item 21: error: a whole number is divided by 0 [division-by-zero]
 20 | MOV @divisor #A0
 21 | DIV $POP #A0
    | ^^^^^^^^^^^^
 22 | MOV #A0 @left

"""
        self.assertEqual(run.stdout.decode(), expected)

    def test_a_stop_before_the_first_cycle(self):
        self.write("wide.yx", b"PROG: P VAR: a V SINT 300 MAIN: RET ")
        arguments = ["wide.yx", "--set=a=1", "--trace=t.csv", "--chart=c.html", "--record=r.test"]
        run = self.run_file(*arguments, "--check=store-overflow=stop")
        self.assertEqual((run.status, run.stderr), (NOT_FINE, b""))
        self.assertRegex(run.stdout, rb"^wide.yx: item 4: error: .* \[store-overflow\]\n")
        self.assertEqual(list(self.folder.glob("t.csv*")), [])

    def test_what_cannot_be_read(self):
        self.refused("none.st: no such file", "none.st")
        self.refused(".: is a folder", ".")


class Options(RunTestCase):
    def test_cycles_and_tick(self):
        trace = self.fine("counter.st", "--cycles=3", "--tick=7", "--trace=-", "--watch=reset")
        self.assertEqual(
            re.sub("# version: yxst .*", "# version", trace),
            "# script: counter.st\n# version\n# engine: default\n"
            "cycle,tick,reset\n1,0,FALSE\n2,7,FALSE\n3,14,FALSE\n",
        )

    def test_wrong_numbers(self):
        for option, values, least, greatest in (
            ("--cycles", ("0", "x", "2147483648"), 1, 2147483647),
            ("--tick", ("-1", "4294967296", "x"), 0, 4294967295),
        ):
            for value in values:
                run = self.run_file("counter.st", f"{option}={value}")
                self.assertEqual((run.status, run.stdout), (FAILED, b""), value)
                expected = f"{option}: {value} is no whole number from {least} to {greatest}."
                self.assertIn(expected, run.stderr.decode())

    def test_the_tick_counter_begins_anew_after_its_greatest_value(self):
        trace = self.fine("counter.st", "--cycles=3", "--tick=4294967295", "--trace=-")
        ticks = [line.split(",")[1] for line in trace.splitlines()[4:]]
        self.assertEqual(ticks, ["0", "4294967295", "4294967294"])

    def test_set(self):
        self.assertEqual(self.totals("--set=total=10", "--set=STEP=16#2", "--cycles=2"), [12, 14])
        rows = self.rows("--set=level=1e-3", names="level")
        self.assertEqual(rows, [["0.002"]])

    def test_set_is_checked(self):
        self.refused("--set: NAME=VALUE is expected, not \"total\"", "counter.st", "--set=total")
        self.refused(
            '--set: the program has no variable "totl"; near it: total', "counter.st", "--set=totl=1"
        )
        self.refused(
            "--set: step is INT, so it takes a whole number from -32768 to 32767, not \"1.5\"",
            "counter.st",
            "--set=step=1.5",
        )

    def test_force(self):
        self.assertEqual(self.totals("--force=total=9", "--set=step=1", "--cycles=2"), [9, 9])
        self.refused(
            '--force: the program has no variable "x"', "counter.st", "--force=x=1"
        )

    def test_until(self):
        self.assertEqual(self.totals("--set=step=2", "--until=total>=6"), [2, 4, 6])
        self.assertEqual(self.totals("--set=step=2", "--until=high=TRUE", "--cycles=3"), [2, 4, 6])

    def test_until_in_vain(self):
        run = self.run_file("counter.st", "--until=total=5", "--cycles=3", "--quiet")
        complaint = b"yxst: --until: total=5 did not hold within 3 cycles.\n"
        self.assertEqual(run, (NOT_FINE, b"", complaint))
        run = self.run_file("counter.st", "--until=total=5", "--quiet")
        self.assertIn(b" within 1000000 cycles", run.stderr)

    def test_until_is_checked(self):
        self.refused(
            '--until: NAME=VALUE is expected, or <, >, <=, >=, <> instead of =, not "total"',
            "counter.st",
            "--until=total",
        )

    def test_watch_is_checked(self):
        self.refused(
            '--watch: the program has no variable "stp"; near it: step',
            "counter.st",
            "--watch=total,stp",
        )

    def test_engine(self):
        self.write("engine.txt", b"# ours\noverflow = saturate\nprogram-variables = initial\n")
        arguments = ["--engine=engine.txt", "--set=step=20000", "--cycles=3"]
        self.assertEqual(self.totals(*arguments), [20000, 20000, 20000])
        trace = self.fine("counter.st", "--trace=-", *arguments)
        choices = "# engine: overflow = saturate\n# engine: program-variables = initial\n"
        self.assertIn(choices, trace)

    def test_engine_is_checked(self):
        self.write("engine.txt", b"width = typed\noverflow = sat\n")
        self.refused(
            'engine.txt: line 2: overflow is wrap, saturate or stop, not "sat"',
            "counter.st",
            "--engine=engine.txt",
        )
        self.refused("none.txt: no such file", "counter.st", "--engine=none.txt")

    def test_checks(self):
        arguments = ["counter.st", "--set=step=20000", "--cycles=2"]
        self.assertIn("store-overflow", self.fine(*arguments))
        self.assertNotIn("store-overflow", self.fine(*arguments, "--check=store-overflow=off"))
        run = self.run_file(*arguments, "--check=store-overflow=stop")
        self.assertEqual(run.status, NOT_FINE)
        self.assertIn(b"error:", run.stdout)

    def test_checks_are_checked(self):
        self.refused('--check: no check has the name "x"', "counter.st", "--check=x=off")
        self.refused(
            '--check: a check is off, note or stop, not "on"',
            "counter.st",
            "--check=store-overflow=on",
        )
        self.refused(
            "--check: NAME=ACTION is expected, where ACTION is off, note or stop, not "
            '"store-overflow"',
            "counter.st",
            "--check=store-overflow",
        )
        self.refused(
            '--check: no check has the name "unsound-code"',
            "counter.st",
            "--check=unsound-code=off",
        )

    def test_fast(self):
        arguments = ["counter.st", "--set=step=20000", "--cycles=2", "--fast"]
        expected = TABLE.replace("   3\n", "   20000\n").replace("6\n", "-25536\n")
        expected = expected.replace("VAR_OUTPUT  TRUE", "VAR_OUTPUT  FALSE")
        self.assertEqual(self.fine(*arguments), expected.replace(", 50 instructions", ""))
        noted = self.fine(*arguments, "--check=store-overflow=note")
        self.assertIn("a whole number does not fit, once [store-overflow]", noted)

    def test_fast_ends_where_a_run_must(self):
        run = self.run_file("division.st", "--fast", "--quiet")
        self.assertEqual((run.status, run.stderr), (NOT_FINE, b""))
        self.assertIn(b"division.st:11:5: error: a whole number is divided by 0", run.stdout)
        self.assertNotIn(b"note:", run.stdout)
        for code in (
            b"U: BODY: CAL U RET PROG: P VAR: MAIN: CAL U RET ",
            b"PROG: P VAR: MAIN: L: MOV 1 #A0 MOV #A0 $PUSH JMP L RET ",
            b"PROG: P VAR: a V INT 0 MAIN: MOV 1e30 #A0 MOV #A0 @a RET ",
            b"PROG: P VAR: a V INT 0 MAIN: MOVA #A0 @a RET ",
        ):
            self.write("bad.yx", code)
            run = self.run_file("bad.yx", "--fast", "--quiet")
            self.assertEqual((run.status, run.stderr), (NOT_FINE, b""), code)
            self.assertIn(b": error: ", run.stdout)


class Engine(RunTestCase):
    def setUp(self):
        super().setUp()
        self.write("meter.st", METER)

    def test_objects_that_the_script_uses_by_number_have_names(self):
        shown = self.fine("meter.st", "--set=GLOBAL_61=9", "--until=global_61=0.0")
        self.assertEqual(
            shown,
            "total               LREAL  VAR_YXGLOBAL    0.0\n"
            "known               INT    VAR_YXGLOBAL    0\n"
            "register_1_0_201_0  UINT   VAR_YXREGISTER  0\n"
            "global_61           LREAL  VAR_YXGLOBAL    0.0\n"
            "1 cycle of 100 ticks, 43 instructions\n",
        )

    def test_an_object_of_several_types_holds_what_the_engine_holds(self):
        script = METER.replace(b"yxSetGV(known, 3.0)", b"yxSetRegREAL(1, 0, 201, 0, 2.5)")
        self.write("meter.st", script)
        shown = self.fine("meter.st", "--watch=register_1_0_201_0")
        self.assertIn("register_1_0_201_0  LREAL  VAR_YXREGISTER  2.5\n", shown)

    def test_the_tick_counter_is_set_and_nothing_else(self):
        trace = self.fine("meter.st", "--set=tick=16#10", "--trace=-", "--watch=total")
        self.assertEqual(trace.splitlines()[-1], "1,16,16.0")
        self.write("in.csv", b"cycles,TICK,register_1_0_201_0\n2,50,4\n1,9,\n")
        trace = self.fine("meter.st", "--inputs=in.csv", "--trace=-", "--watch=total")
        self.assertEqual(trace.splitlines()[-3:], ["1,50,54.0", "2,150,208.0", "3,9,221.0"])
        self.refused("--force: TICK can be set, not forced", "meter.st", "--force=TICK=1")
        self.refused(
            '--watch: TICK is in each trace, in the column "tick"', "meter.st", "--watch=tick"
        )
        self.refused(
            "--until: TICK goes on by --tick in each cycle, so --cycles says how far",
            "meter.st",
            "--until=TICK>5",
        )
        self.refused(
            "--set: TICK is UDINT, so it takes a whole number from 0 to 4294967295, "
            'not "-5"',
            "meter.st",
            "--set=TICK=-5",
        )


class Inputs(RunTestCase):
    def test_rows_hold_for_their_cycles(self):
        self.write("in.csv", b"cycles,step,reset\n2,1,\n1,,1\n2,3,0\n")
        self.assertEqual(self.totals("--inputs=in.csv"), [1, 2, 0, 3, 6])

    def test_the_last_row_stays(self):
        self.write("in.csv", b"cycles,step\n1,1\n1,2\n")
        self.assertEqual(self.totals("--inputs=in.csv", "--cycles=4"), [1, 3, 5, 7])
        self.assertEqual(self.totals("--inputs=in.csv", "--cycles=1"), [1])
        self.assertEqual(self.totals("--inputs=in.csv", "--until=total>=7"), [1, 3, 5, 7])

    def test_forms(self):
        for data in (
            b"\xef\xbb\xbfcycles;level\r\n1;1,5\r\n",
            b'"cycles","level"\n"1","1.5"\n',
            b"# values\ncycles, LEVEL\n\n1, 1.5",
        ):
            self.write("in.csv", data)
            self.assertEqual(self.rows("--inputs=in.csv", names="level"), [["3.0"]], data)

    def test_bad_cells(self):
        for data, complaint in (
            (
                b"cycles,stp\n",
                'line 1, column 8: the program has no variable "stp"; near it: step',
            ),
            (
                b"cycles,step,reset\n1,2,3\n",
                'line 2, column 5: reset is BOOL, so it takes TRUE or FALSE, not "3"',
            ),
            (b"step\n", 'line 1, column 1: the first column is "cycles", not "step"'),
            (
                b"cycles\tstep\n1\t2\n",
                "line 1, column 7: tabs are between the cells; commas or semicolons are "
                "expected there",
            ),
            (b"cycles,step\n", "line 1, column 1: no row with values follows the names"),
            (
                b"cycles,step\n3000000000,1\n",
                "line 2, column 1: a number of cycles from 1 to 2147483647 is expected, not "
                '"3000000000"',
            ),
        ):
            self.write("in.csv", data)
            self.refused(f"in.csv: {complaint}", "counter.st", "--inputs=in.csv")
        self.refused("none.csv: no such file", "counter.st", "--inputs=none.csv")
        self.refused(
            "standard input can be read for one purpose alone", "-", "--inputs=-"
        )


class Files(RunTestCase):
    def test_trace(self):
        self.write("trace.csv", b"old")
        shown = self.fine("counter.st", "--set=step=3", "--cycles=2", "--trace=trace.csv")
        self.assertEqual(shown, TABLE)
        self.assertEqual(
            self.text("trace.csv").splitlines()[3:],
            [
                "cycle,tick,step,reset,high,total,level",
                "1,0,3,FALSE,FALSE,3,1.0",
                "2,100,3,FALSE,TRUE,6,2.0",
            ],
        )

    def test_trace_of_a_stop_has_the_cycles_before(self):
        self.write("in.csv", b"cycles,divisor\n2,5\n2,0\n")
        run = self.run_file("division.st", "--inputs=in.csv", "--trace=trace.csv")
        self.assertEqual(run.status, NOT_FINE)
        self.assertIn(b"stopped in cycle 3\n", run.stdout)
        self.assertEqual(len(self.text("trace.csv").splitlines()), 4 + 2)

    def test_record(self):
        self.write("in.csv", b"cycles,step,total\n2,1,\n2,2,\n1,0,50\n")
        (self.folder / "tests").mkdir()
        self.fine(
            "counter.st", "--inputs=in.csv", "--record=tests/a.test", "--set=reset=0", "--tick=5"
        )
        self.assertEqual(
            self.text("tests/a.test"),
            "script, ../counter.st\n"
            "tick, 5\n"
            "\n"
            "case, recorded\n"
            "cycles, step, reset, total, high?\n"
            "2,      1,    0,     ,      0\n"
            "1,      2,    0,     ,      0\n"
            "1,      2,    0,     ,      1\n"
            "1,      0,    0,     50,    1\n",
        )

    def test_the_head_of_a_trace_has_the_changed_checks(self):
        arguments = ["counter.st", "--check=stack-left=off", "--check=store-overflow=note"]
        trace = self.fine(*arguments, "--trace=-", "--record=a.test")
        self.assertIn("# engine: default\n# check: stack-left = off\ncycle,", trace)
        self.assertIn("\ntick, 100\ncheck, stack-left, off\n\ncase", self.text("a.test"))

    def test_record_asks_what_the_script_writes_in_the_engine(self):
        self.write("meter.st", METER)
        self.fine("meter.st", "--record=a.test", "--set=register_1_0_201_0=10", "--set=TICK=7")
        self.assertEqual(
            self.text("a.test"),
            "script, meter.st\n"
            "tick, 100\n"
            "register, register_1_0_201_0, UINT, 1, 0, 201, 0\n"
            "global, global_61, LREAL, 61\n"
            "\n"
            "case, recorded\n"
            "cycles, TICK, register_1_0_201_0, total?, global_61?\n"
            "1,      7,    10,                 17.0,   2.5\n",
        )
        self.assertEqual(run_yxst("test", "a.test", cwd=self.folder).status, FINE)

    def test_chart(self):
        self.fine("counter.st", "--chart=chart.html", "--cycles=3")
        page = self.text("chart.html")
        self.assertIn("<title>counter.st</title>", page)
        self.assertIn('{"name":"level","type":"REAL","points":[[1,1.0],[2,2.0],[3,4.0]]}', page)
        self.assertNotRegex(page, r"""(src|href)\s*=\s*["'](?!data:)""")

    def test_files_that_have_another_use(self):
        for option in ("--trace", "--chart", "--record"):
            self.refused(f"{option}: this file is read", "counter.st", f"{option}=./counter.st")
        self.refused(
            "--trace: this file has another use", "counter.st", "--trace=a", "--chart=./a"
        )
        self.refused("--chart: needs the name of a file", "counter.st", "--chart=-")
        self.refused("--record: needs the name of a file", "counter.st", "--record=-")
        self.refused("--record: a test needs the name of the script", "-", "--record=a.test")
        self.refused(
            "--record: a test forces nothing, so --force cannot be used",
            "counter.st",
            "--record=a.test",
            "--force=total=1",
        )
        self.assertEqual(self.text("counter.st"), COUNTER.decode())


if __name__ == "__main__":
    unittest.main()
