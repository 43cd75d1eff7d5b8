"""`yxst test` executes tables of tests, and does what its options ask for."""

import random
import re
import signal
import subprocess
import unittest
from xml.etree import ElementTree

from support_desk import DESK, FAILED, FINE, NOT_FINE, ROOT, TIMEOUT_SECONDS, run_yxst
from test_check import FolderTestCase
from test_run import METER

from support import BINARY  # isort: skip: found by support_desk

TANK = b"""PROGRAM Tank
VAR_INPUT
    level : REAL;
    reset : BOOL;
END_VAR
VAR_OUTPUT
    full : BOOL := FALSE;
END_VAR
VAR
    cycles : INT := 0;
    small : USINT := 0;
END_VAR
    cycles := cycles + 1;
    full := level > 90.0;
    IF reset THEN
        cycles := 0;
    END_IF;
    small := cycles * 100;
END_PROGRAM
"""

PASSING = b"""script, tank.st
case, full above 90
cycles, level, full?
1, 90.0, 0
1, 90.1, 1
case, a reset
cycles, reset, cycles?
2, 0, 2
1, 1, 0
"""

FAILING = b"""script, tank.st
case, full above 90
cycles, level, full?, cycles!
1, 90.0, 0, 1
1, 90.1, 0, 2
case, a reset
cycles, reset, cycles?
2, 0, 2
"""

NOTED = b"""script, tank.st
case, many cycles
cycles, cycles?
3, 3
"""

WRONG_SCRIPT = TANK.replace(b"REAL", b"WORD").replace(b"level > 90.0", b"levle > 90.0")


class TestTestCase(FolderTestCase):
    def setUp(self):
        super().setUp()
        self.write("tank.st", TANK)
        self.write("tank.test", PASSING)

    def run_tests(self, *arguments, **options):
        return run_yxst("test", *arguments, cwd=self.folder, **options)

    def shown(self, status, *arguments, **options):
        """What is written by a run that ends with that status and complains of nothing."""
        run = self.run_tests(*arguments, **options)
        self.assertEqual((run.status, run.stderr.decode()), (status, ""))
        return run.stdout.decode()

    def complaint(self, *arguments, **options):
        """That of a run that could not be done."""
        run = self.run_tests(*arguments, **options)
        self.assertEqual(run.status, FAILED)
        return run.stderr.decode()


class Results(TestTestCase):
    def test_all_cases_pass(self):
        self.assertEqual(self.shown(FINE, "tank.test"), "tank.test: 2 cases passed\n")

    def test_a_case_fails(self):
        self.write("tank.test", FAILING)
        self.assertEqual(
            self.shown(NOT_FINE, "tank.test"),
            "failed: full above 90\n"
            "tank.test:5:10: full? is TRUE after cycle 2, expected 0\n"
            "  cycle   full  level  cycles\n"
            "  1      FALSE   90.0       1\n"
            "  2       TRUE   90.1       2\n"
            "\n"
            "tank.test: 1 of 2 cases failed\n",
        )

    def test_what_was_given_before_is_told_too(self):
        table = b"case, late\ncycles, level, force small, reset\n1, 95.0, 7, 0\n"
        table += b"cycles, full?, cycles?\n1, 0, 2\n"
        self.write("tank.test", b"script, tank.st\n" + table)
        self.assertEqual(
            self.shown(NOT_FINE, "tank.test"),
            "failed: late\n"
            "tank.test:6:4: full? is TRUE after cycle 2, expected 0\n"
            "  cycle  full  cycles\n"
            "  1      TRUE       1\n"
            "  2      TRUE       2\n"
            "  unchanged: level 95.0, small 7, reset FALSE\n"
            "\n"
            "tank.test: 1 of 1 case failed\n",
        )

    def test_a_check_stops_the_run(self):
        self.write("tank.test", NOTED.replace(b"case,", b"check, store-overflow, stop\ncase,"))
        self.assertEqual(
            self.shown(NOT_FINE, "tank.test"),
            "failed: many cycles\n"
            "tank.test:5:1: the run ends in cycle 3\n"
            "tank.st:18:5: error: 300 does not fit the type USINT [store-overflow]\n"
            "  cycle  cycles\n"
            "  1           1\n"
            "  2           2\n"
            "  3           3\n"
            "\n"
            "tank.test: 1 of 1 case failed\n",
        )

    def test_notes_of_the_checks(self):
        self.write("tank.test", NOTED)
        note = "tank.st:18:5: note: a whole number does not fit, once [store-overflow]\n"
        self.assertEqual(
            self.shown(FINE, "tank.test"),
            f"passed, with notes: many cycles\n{note}\ntank.test: 1 case passed\n",
        )
        self.assertEqual(
            self.shown(NOT_FINE, "--strict", "tank.test"),
            f"failed: many cycles\n{note}\ntank.test: 1 of 1 case failed\n",
        )
        self.assertEqual(self.shown(FINE, "--quiet", "tank.test"), "")

    def test_a_script_that_does_not_compile(self):
        self.write("tank.st", WRONG_SCRIPT)
        errors = run_yxst("check", "--quiet", "tank.st", cwd=self.folder).stdout.decode()
        self.assertGreater(errors.count("error:"), 1)
        self.assertEqual(
            self.shown(NOT_FINE, "tank.test"),
            errors + "tank.test: the script does not compile\n",
        )

    def test_code_and_listings_are_scripts_too(self):
        for option, name in (("-n", "tank.yx"), ("-l", "tank.yx.lst")):
            subprocess.run(
                [BINARY, "tank.st", "tank.yx", option],
                cwd=self.folder,
                check=True,
                timeout=TIMEOUT_SECONDS,
            )
            self.write("code.test", PASSING.replace(b"tank.st", name.encode()))
            self.assertEqual(self.shown(FINE, "code.test"), "code.test: 2 cases passed\n")

    def test_code_that_cannot_be_read(self):
        self.write("tank.yx", b"PROG: P VAR: a V INT 0 MAIN: JUMP L1 RET ")
        self.write("tank.test", PASSING.replace(b"tank.st", b"tank.yx"))
        shown = self.shown(NOT_FINE, "tank.test")
        self.assertIn("tank.yx: item", shown)
        self.assertIn("tank.test: the script does not compile\n", shown)


class Tables(TestTestCase):
    def test_script_beside_the_table(self):
        self.write("plant/tank.test", PASSING)
        self.assertEqual(
            self.complaint("plant/tank.test"),
            "yxst: plant/tank.test:1:9: plant/tank.st: no such file.\n",
        )
        self.write("other/tank.test", PASSING.replace(b"script, tank.st\n", b""))
        self.assertEqual(
            self.complaint("other/tank.test"),
            "yxst: other/tank.test: other/tank.st: no such file.\n",
        )
        self.write("plant/tank.st", TANK)
        self.assertIn("2 cases passed", self.shown(FINE, "plant/tank.test"))

    def test_without_its_line_the_script_has_the_name_of_the_table(self):
        self.write("tank.test", PASSING.replace(b"script, tank.st\n", b""))
        self.assertIn("2 cases passed", self.shown(FINE, "tank.test"))

    def test_standard_input(self):
        shown = self.shown(FINE, "-", stdin=None, input=PASSING)
        self.assertEqual(shown, "-: 2 cases passed\n")

    def test_engine(self):
        saturated = NOTED.replace(b"cycles?", b"small?").replace(b"3, 3", b"3, 255")
        self.write("tank.test", saturated)
        self.assertIn("small? is 44 after cycle 3, expected 255", self.shown(NOT_FINE, "tank.test"))
        for line in (b"engine, overflow = saturate", b"engine, plant.txt"):
            self.write("plant.txt", b"# the plant\noverflow = saturate\n")
            self.write("tank.test", saturated.replace(b"case,", line + b"\ncase,"))
            self.assertIn("1 case passed", self.shown(FINE, "tank.test"))

    def test_choices_of_the_table_come_after_those_of_the_file(self):
        self.write("plant.txt", b"overflow = saturate\n")
        lines = b"engine, overflow = wrap\nengine, plant.txt\ncase,"
        table = NOTED.replace(b"cycles?", b"small?").replace(b"3, 3", b"3, 44")
        self.write("tank.test", table.replace(b"case,", lines))
        self.assertIn("1 case passed", self.shown(FINE, "tank.test"))

    def test_wrong_engine_files(self):
        self.write("tank.test", PASSING.replace(b"case, f", b"engine, plant.txt\ncase, f"))
        self.assertEqual(
            self.complaint("tank.test"), "yxst: tank.test:2:9: plant.txt: no such file.\n"
        )
        self.write("plant.txt", b"\nspeed = 1\n")
        self.assertEqual(
            self.complaint("tank.test"),
            'yxst: tank.test:2:9: plant.txt: line 2: no choice has the key "speed".\n',
        )

    def test_wrong_tables_are_refused_and_the_others_executed(self):
        self.write("a.test", PASSING.replace(b"level", b"levle"))
        run = self.run_tests("a.test", "none.test", "tank.test")
        self.assertEqual(run.status, FAILED)
        self.assertEqual(
            run.stderr.decode(),
            'yxst: a.test:3:9: the program has no variable "levle"; near it: level.\n'
            "yxst: none.test: no such file.\n",
        )
        self.assertEqual(
            run.stdout.decode(),
            "tank.test: 2 cases passed\n"
            "2 cases in 3 files, 0 failed; the cases of 2 could not be executed\n",
        )

    def test_tabs_part_no_cells(self):
        self.write("tank.test", PASSING.replace(b", ", b"\t"))
        self.assertEqual(
            self.complaint("tank.test"),
            "yxst: tank.test:1:7: tabs are between the cells; commas or semicolons are expected "
            "there.\n",
        )

    def test_a_script_is_no_table(self):
        self.assertEqual(
            self.complaint("tank.st"),
            "yxst: tank.st:1:1: a line begins with script, tick, engine, check, global, register, "
            'case or cycles, not with "PROGRAM Tank".\n',
        )


class Options(TestTestCase):
    def test_folders_mean_all_tables_in_them(self):
        self.write("plant/tank.st", TANK)
        self.write("plant/tank.test", FAILING)
        shown = self.shown(NOT_FINE, ".")
        self.assertIn("./plant/tank.test: 1 of 2 cases failed\n./tank.test: 2 cases", shown)
        self.assertTrue(shown.endswith("4 cases in 2 files, 1 failed\n"))
        (self.folder / "empty").mkdir()
        self.assertEqual(self.complaint("empty"), "yxst: empty: no tests in this folder.\n")

    def test_quiet(self):
        self.write("tank.test", FAILING)
        shown = self.shown(NOT_FINE, "--quiet", "tank.test")
        self.assertTrue(shown.startswith("failed: full above 90\n"))
        self.assertNotIn("cases", shown)

    def test_case(self):
        self.assertIn("1 case passed", self.shown(FINE, "--case=RESET", "tank.test"))
        self.write("other.test", NOTED)
        self.assertEqual(
            self.shown(FINE, "--case=reset", "tank.test", "other.test"),
            "tank.test: 1 case passed\n",
        )
        self.assertEqual(
            self.complaint("--case=overflow", "tank.test"),
            'yxst: no case has "overflow" in its name.\n',
        )

    def test_the_number_of_jobs_changes_nothing(self):
        cases = b"".join(b"case, %d\ncycles, cycles?\n%d, %d\n" % (n, n, n % 7) for n in range(1, 80))
        self.write("tank.test", b"script, tank.st\n" + cases)
        shown = {self.shown(NOT_FINE, f"--jobs={jobs}", "tank.test") for jobs in (1, 2, 8)}
        self.assertEqual(len(shown), 1)
        self.assertIn("73 of 79 cases failed", shown.pop())

    def test_colors(self):
        self.assertIn("\x1b[1;32m2 cases passed", self.shown(FINE, "--color=always", "tank.test"))
        self.write("tank.test", FAILING)
        self.assertIn("\x1b[1;31mfailed:", self.shown(NOT_FINE, "--color=always", "tank.test"))

    def test_wrong_calls(self):
        for arguments in ((), ("--format=xml", "tank.test"), ("--jobs=0", "tank.test")):
            self.assertEqual(self.run_tests(*arguments).status, FAILED, arguments)
        self.assertEqual(
            self.complaint("--coverage=summary", "--format=junit", "tank.test"),
            "yxst: --coverage has no place in --format=junit.\n",
        )

    def test_output_that_cannot_be_written(self):
        with open("/dev/full", "wb") as full:
            process = subprocess.run(
                [DESK, "test", "tank.test"],
                cwd=self.folder,
                stdout=full,
                stderr=subprocess.PIPE,
                timeout=TIMEOUT_SECONDS,
            )
        self.assertEqual(process.returncode, FAILED)
        self.assertEqual(process.stderr, b"yxst: standard output cannot be written.\n")


class Coverage(TestTestCase):
    def test_summary(self):
        shown = self.shown(FINE, "--coverage=summary", "--case=full", "tank.test")
        self.assertEqual(
            shown.splitlines()[-1],
            "tank.st: 4 of 5 statements executed, 80%; not all on line 16",
        )

    def test_listing(self):
        shown = self.shown(FINE, "--coverage=listing", "tank.test").splitlines()[1:]
        script = TANK.decode().splitlines()
        self.assertEqual(shown[-1], "tank.st: 5 of 5 statements executed, 100%")
        for number, (line, text) in enumerate(zip(shown, script), 1):
            count, shown_text = re.fullmatch(rf" *(\d*) +{number} \|(?: (.*))?", line).groups()
            self.assertEqual(shown_text or "", text)
            self.assertEqual(count, {13: "5", 14: "5", 15: "5", 16: "1", 18: "5"}.get(number, ""))

    def test_all_tables_of_a_script_count(self):
        for name, case in (("a.test", "full"), ("b.test", "reset")):
            at = PASSING.index(b"case, a reset")
            self.write(name, PASSING[:at] if case == "full" else PASSING[:16] + PASSING[at:])
        alone = self.shown(FINE, "--coverage=summary", "a.test")
        self.assertIn("4 of 5 statements", alone)
        both = self.shown(FINE, "--coverage=summary", "a.test", "./b.test")
        self.assertEqual(both.count("statements"), 1)
        self.assertIn("5 of 5 statements", both)

    def test_in_tap_it_is_a_comment(self):
        shown = self.shown(FINE, "--coverage=summary", "--format=tap", "tank.test")
        self.assertIn("\n# tank.st: 5 of 5 statements executed, 100%\n1..2\n", shown)


class Interrupts(TestTestCase):
    CASES = b"""script, endless.st
check, scan-limit, off
case, one
cycles, n, n?
1, 1, 1
case, two
1, 2, 2
case, three
1, 3, 3
"""

    def ended(self, *arguments):
        """A run of which the case "two" does not end by itself."""
        loop = b"IF cycles = 2 THEN WHILE TRUE DO END_WHILE; END_IF;\nEND_PROGRAM"
        script = TANK.replace(b"END_PROGRAM", loop).replace(b"cycles", b"n")
        self.write("endless.st", script.replace(b"n := n + 1;", b""))
        self.write("endless.test", self.CASES)
        process = subprocess.Popen(
            [DESK, "test", "endless.test", "--jobs=1", *arguments],
            cwd=self.folder,
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            text=True,
        )
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)
        with self.assertRaises(subprocess.TimeoutExpired):
            process.wait(0.5)
        process.send_signal(signal.SIGTERM)
        stdout, stderr = process.communicate(timeout=TIMEOUT_SECONDS)
        self.assertEqual(process.returncode, NOT_FINE)
        self.assertEqual(stderr, "yxst: interrupted; 2 cases were not executed.\n")
        return stdout

    def test_what_was_executed_is_shown(self):
        self.assertEqual(self.ended(), "endless.test: 1 of 3 cases executed, 0 failed\n")

    def test_tap_is_bailed_out_of(self):
        shown = "TAP version 13\nok 1 - endless.test: one\nBail out!  interrupted\n"
        self.assertEqual(self.ended("--format=tap"), shown)

    def test_in_junit_the_others_are_skipped(self):
        suite = ElementTree.fromstring(self.ended("--format=junit")).find("testsuite")
        self.assertEqual((suite.get("tests"), suite.get("skipped")), ("3", "2"))
        self.assertEqual(
            [each.get("name") for each in suite if each.find("skipped") is not None],
            ["two", "three"],
        )


class NewTables(TestTestCase):
    def test_a_table_that_passes(self):
        (self.folder / "tank.test").unlink()
        self.assertEqual(self.shown(FINE, "--new", "tank.st"), "tank.test\n")
        table = (self.folder / "tank.test").read_text()
        self.assertIn("cycles, level, reset, full?\n1,      0.0,   FALSE, FALSE\n", table)
        self.assertIn("1 case passed", self.shown(FINE, "tank.test"))

    def test_objects_of_the_engine_are_asked_where_the_script_writes_them(self):
        self.write("meter.st", METER)
        self.assertEqual(self.shown(FINE, "--new", "meter.st"), "meter.test\n")
        self.assertTrue(
            (self.folder / "meter.test")
            .read_text()
            .endswith(
                "script, meter.st\n"
                "tick, 100\n"
                "register, register_1_0_201_0, UINT, 1, 0, 201, 0\n"
                "global, global_61, LREAL, 61\n"
                "\n"
                "case, the first cycle\n"
                "cycles, total, known, register_1_0_201_0, total?, global_61?\n"
                "1,      0.0,   0,     0,                  0.0,    0.0\n"
            )
        )
        self.assertIn("1 case passed", self.shown(FINE, "meter.test"))

    def test_a_table_that_is_there_stays(self):
        self.assertEqual(
            self.complaint("--new", "tank.st"), "yxst: tank.test: is there already.\n"
        )
        self.assertEqual((self.folder / "tank.test").read_bytes(), PASSING)
        (self.folder / "dangling.test").symlink_to("nowhere")
        self.write("dangling.st", TANK)
        self.assertIn("dangling.test", self.complaint("--new", "dangling.st"))
        self.assertFalse((self.folder / "nowhere").exists())

    def test_scripts_that_have_none(self):
        self.write("wrong.st", WRONG_SCRIPT)
        self.assertIn('unrecognized keyword "WORD"', self.shown(NOT_FINE, "--new", "wrong.st"))
        self.assertEqual(self.complaint("--new", "none.st"), "yxst: none.st: no such file.\n")
        self.assertFalse((self.folder / "wrong.test").exists())

    def test_every_example_has_one(self):
        for path in (ROOT / "examples").glob("*.st"):
            self.write(path.name, path.read_bytes())
        self.shown(FINE, "--new", *(path.name for path in (ROOT / "examples").glob("*.st")))
        self.assertIn("0 failed", self.shown(FINE, "."))


class Examples(unittest.TestCase):
    def test_each_has_tests_that_reach_all_of_it(self):
        run = run_yxst("test", "--coverage=summary", ROOT / "examples")
        self.assertEqual((run.status, run.stderr), (FINE, b""))
        scripts = list((ROOT / "examples").glob("*.st"))
        covered = re.findall(r"(\w+)\.st: .* executed, 100%$", run.stdout.decode(), re.MULTILINE)
        self.assertEqual(sorted(covered), sorted(path.stem for path in scripts))


# ---------------------------------------------------------------------------------------------
# Whatever the table is
# ---------------------------------------------------------------------------------------------

PREAMBLE = ["tick, 7", "engine, overflow = stop", "check, real-to-int, stop"] + [
    "global, g, INT, 3",
    "register, r, UINT, 1, 2, 3, 4",
]
COLUMNS = {
    "cycles, level, full?": ["1, 90.5, 1", "<=3, 1, FALSE", "2", "5, -1e3, 0..1,"],
    "cycles, force cycles, cycles!, TICK": ["3, 4, >1, 4294967295", "2, -, <>0", "1, 1, 16#1"],
    "cycles, reset, cycles?, small?": ["9, 0, >=2, 100~100", "1, 1, <2, <1", "1, , 1..3"],
}
CHARACTERS = "\",;#=?!<>~.-+ \n\r\t0159aTé\0\ufeff\U0001f600"


def random_table(source):
    """Lines that make sense, in some tables with a few lines or characters changed."""
    lines = ["script, tank.st", *source.sample(PREAMBLE, source.randrange(len(PREAMBLE)))]
    for number in range(source.randrange(1, 4)):
        columns, rows = source.choice(list(COLUMNS.items()))
        lines += [f"case, {number}", columns, *source.choices(rows, k=source.randrange(1, 5))]
    if source.randrange(3) == 0:
        source.shuffle(lines)
    text = "\n".join(lines)
    for _ in range(source.choice((0, 0, 1, 3))):
        at = source.randrange(len(text))
        text = text[:at] + source.choice(CHARACTERS) + text[at + source.choice((0, 1)) :]
    return text.encode()


class RandomTables(TestTestCase):
    TABLES = 400
    REFUSED = re.compile(r"yxst: \d+\.test:\d+:\d+: .+")

    def test_each_is_executed_or_refused_with_its_place(self):
        source = random.Random(1)
        tables = [random_table(source) for _ in range(self.TABLES)]
        tables += [source.randbytes(100), b"\xff\xfe", b"\0", b",", b";;;", b'"', b"#"]
        for number, table in enumerate(tables):
            self.write(f"{number}.test", table)
        names = [f"{number}.test" for number in range(len(tables))]
        run = self.run_tests("--format=tap", *names)
        self.assertEqual(run.status, FAILED)
        complaints = run.stderr.decode().splitlines()
        for complaint in complaints:
            self.assertRegex(complaint, self.REFUSED)
        self.assertGreater(len(complaints), len(tables) // 10)
        self.assertGreater(run.stdout.count(b"\nok "), len(tables) // 10)


if __name__ == "__main__":
    unittest.main()
