"""`yxst check` says what the compiler says, and does what its options ask for."""

import json
import os
import pty
import re
import subprocess
import tempfile
import unittest
from collections import Counter
from pathlib import Path

from support_desk import DESK, FAILED, FINE, NOT_FINE, ROOT, TIMEOUT_SECONDS, lint_ids, run_yxst

from cases import all_cases  # isort: skip: found by support_desk
from support import compile_source, diagnostics_in, side_by_side  # isort: skip

WARNED = b"PROGRAM P\nVAR\n    spare : INT := 0;\nEND_VAR\nEND_PROGRAM\n"
WRONG = WARNED.replace(b"INT", b"WORD")
CALM = WARNED.replace(b"END_VAR\n", b"END_VAR\n    spare := spare + 1;\n")

LEVELS = {"error": "Error", "warning": "Warning"}


def with_errors(count):
    """A script with so many errors, one a line from the fifth on."""
    return CALM.replace(b"    spare := spare + 1;\n", b"    spare := ;\n" * count)


class FolderTestCase(unittest.TestCase):
    """A folder of its own, in which check runs."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def write(self, name, data):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(data)

    def check(self, *arguments, **options):
        return run_yxst("check", *arguments, cwd=self.folder, **options)

    def found(self, *arguments, **options):
        """The objects of the JSON format."""
        run = self.check("--format=json", *arguments, **options)
        self.assertEqual(run.stderr, b"")
        return json.loads(run.stdout)

    def files_found(self, *arguments):
        return [each["file"] for each in self.found(*arguments)]


# ---------------------------------------------------------------------------------------------
# The compiler's messages
# ---------------------------------------------------------------------------------------------


def messages_of_compiler(case):
    """Those of the golden result file where there is one."""
    report = case.expected(".res") or compile_source(case.data, "-r").files["out.res"]
    return diagnostics_in(report.decode())


def messages_of_check(found):
    """What is found in a script, without notes, as the compiler writes it."""
    return [
        f"{LEVELS[each['severity']]}: Line {each['line']}, Column {each['column']}: "
        f"{each['message']}"
        for each in found
        if each["severity"] in LEVELS
    ]


def is_error(message):
    return message.startswith("Error: ")


def check_cases(cases):
    """What is found in each case without the lints, all of them in one run."""
    found = [[] for _ in cases]
    with tempfile.TemporaryDirectory() as folder:
        for number, case in enumerate(cases):
            (Path(folder) / f"{number}.st").write_bytes(case.data)
        run = run_yxst("check", "--format=json", f"--disable={','.join(lint_ids())}", folder)
    for each in json.loads(run.stdout):
        found[int(Path(each["file"]).stem)].append(each)
    return found


class GoldenCases(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.cases = all_cases()
        cls.expected = side_by_side(messages_of_compiler, cls.cases)
        cls.found = check_cases(cls.cases)

    def refused(self):
        """Each case that does not compile, what is expected and what is found."""
        for case, expected, found in zip(self.cases, self.expected, self.found):
            if expected and is_error(expected[-1]):
                yield case, expected, found

    def accepted(self):
        for case, expected, found in zip(self.cases, self.expected, self.found):
            if not (expected and is_error(expected[-1])):
                yield case, expected, found

    def test_cases_are_many(self):
        self.assertGreater(len(list(self.refused())), 600)
        self.assertGreater(len(list(self.accepted())), 400)

    def test_the_first_error_is_that_of_the_compiler(self):
        for case, expected, found in self.refused():
            with self.subTest(case.name):
                shown = messages_of_check(found)
                self.assertEqual(next(filter(is_error, shown), None), expected[-1])
                self.assertLessEqual(Counter(expected), Counter(shown))

    def test_scripts_that_compile_have_the_warnings_of_the_compiler(self):
        for case, expected, found in self.accepted():
            with self.subTest(case.name):
                self.assertEqual(sorted(messages_of_check(found)), sorted(expected))

    def test_what_is_found_is_in_the_order_of_the_script(self):
        for case, found in zip(self.cases, self.found):
            with self.subTest(case.name):
                places = [(each["line"], each["column"]) for each in found]
                self.assertEqual(places, sorted(places))

    def test_no_place_has_two_errors(self):
        for case, _, found in self.refused():
            with self.subTest(case.name):
                errors = [each for each in found if each["severity"] == "error"]
                places = {(each["line"], each["column"]) for each in errors}
                self.assertEqual(len(places), len(errors))

    def test_helps_are_for_errors_alone(self):
        helped = {each["severity"] for found in self.found for each in found if "help" in each}
        self.assertEqual(helped, {"error"})


class Examples(unittest.TestCase):
    def test_nothing_is_found_in_the_examples(self):
        run = run_yxst("check", ROOT / "examples")
        self.assertEqual((run.status, run.stdout, run.stderr), (FINE, b"", b""))


# ---------------------------------------------------------------------------------------------
# Options
# ---------------------------------------------------------------------------------------------


class Options(FolderTestCase):
    def assert_wrong_call(self, *arguments):
        run = self.check(*arguments)
        self.assertEqual((run.status, run.stdout), (FAILED, b""))
        self.assertIn(b"--help", run.stderr)

    def test_a_word_that_is_no_subcommand(self):
        run = run_yxst("chekc", "a.st")
        self.assertEqual((run.status, run.stdout), (FAILED, b""))
        self.assertIn(b"chekc is no subcommand", run.stderr)

    def test_max_errors(self):
        self.write("a.st", with_errors(60))
        for options, count in (([], 50), (["--max-errors=3"], 3), (["--max-errors", "99"], 60)):
            with self.subTest(options=options):
                found = self.found(*options, "a.st")
                errors = [each["line"] for each in found if each["severity"] == "error"]
                notes = [each["line"] for each in found if each["severity"] == "note"]
                self.assertEqual(errors, list(range(5, 5 + count)))
                self.assertEqual(notes, [] if count == 60 else [5 + count])

    def test_max_errors_are_those_of_each_script(self):
        """After them stands the note that there are more."""
        self.write("a.st", with_errors(3))
        self.write("b.st", with_errors(3))
        self.assertEqual(self.files_found("--max-errors=2", "."), ["./a.st"] * 3 + ["./b.st"] * 3)

    def test_status(self):
        self.write("a.st", CALM)
        self.write("b.st", WARNED)
        self.write("c.st", WRONG)
        for names, status in (("a", FINE), ("ab", FINE), ("abc", NOT_FINE), ("c", NOT_FINE)):
            with self.subTest(names=names):
                run = self.check(*(f"{name}.st" for name in names))
                self.assertEqual((run.status, run.stderr), (status, b""))

    def test_werror(self):
        self.write("a.st", WARNED)
        self.write("b.st", CALM)
        self.assertEqual(self.check("--werror", "b.st").status, FINE)
        run = self.check("--werror", ".")
        self.assertEqual(run.status, NOT_FINE)
        self.assertTrue(run.stdout.endswith(b"\n1 error in 1 of 2 files\n"))
        severities = [[each["severity"] for each in self.found(*options, ".")]
                      for options in ([], ["--werror"])]  # fmt: skip
        self.assertEqual(severities, [["warning"], ["error"]])

    def test_quiet(self):
        self.write("a.st", WRONG)
        shown = self.check("a.st").stdout
        quiet = self.check("--quiet", "a.st")
        self.assertEqual(quiet.stdout + b"1 error in 1 file\n", shown)
        self.assertEqual(quiet.status, NOT_FINE)

    def test_jobs_change_nothing(self):
        for number in range(40):
            self.write(f"{number}.st", with_errors(number % 7) + b" " * 20_000 * (number % 3))
        for form in ("human", "json"):
            runs = [self.check(f"--jobs={jobs}", f"--format={form}", ".") for jobs in (1, 4, 99)]
            with self.subTest(form):
                self.assertEqual(runs[0].status, NOT_FINE)
                self.assertEqual(runs[1:], runs[:1] * 2)

    def test_files_of_folders_are_in_order(self):
        for name in ("c.st", "b/z.st", "b/a/y.st", "a.st", "a.txt", "b/x.iecst"):
            self.write(name, WRONG)
        folder = ["./a.st", "./b/a/y.st", "./b/z.st", "./c.st"]
        self.assertEqual(self.files_found("."), folder)
        self.assertEqual(self.files_found("c.st", "b", "a.st"),
                         ["c.st", "b/a/y.st", "b/z.st", "a.st"])  # fmt: skip
        self.assertEqual(self.files_found("a.txt"), ["a.txt"])

    def test_a_folder_that_leads_to_itself(self):
        self.write("a.st", WRONG)
        (self.folder / "self").symlink_to(self.folder)
        self.assertEqual(self.files_found("."), ["./a.st"])

    def test_suffix(self):
        for name in ("a.st", "b.iecst", "c.txt", "dst"):
            self.write(name, WRONG)
        self.assertEqual(self.files_found("--suffix=iecst", "."), ["./b.iecst"])
        two = self.files_found("--suffix", "txt", "--suffix=st", ".")
        self.assertEqual(two, ["./a.st", "./c.txt"])
        self.assertEqual(self.files_found("--suffix=txt", "a.st", "."), ["a.st", "./c.txt"])

    def test_standard_input(self):
        found = self.found("-", stdin=None, input=WRONG)
        self.assertEqual([(each["file"], each["line"]) for each in found], [("<stdin>", 3)])
        self.write("a.st", WRONG)
        found = self.found("a.st", "-", stdin=None, input=WRONG)
        self.assertEqual([each["file"] for each in found], ["a.st", "<stdin>"])
        self.assertEqual(self.check("-", stdin=None, input=CALM), (FINE, b"", b""))

    def test_names_like_options(self):
        self.write("--quiet", WRONG)
        self.write("-x", WRONG)
        self.assertEqual(self.files_found("--", "--quiet", "-x"), ["--quiet", "-x"])

    def test_names_of_files(self):
        names = ["Насос 1.st", "a\tb.st", "quote'\".st"]
        for name in names:
            self.write(name, WRONG)
        self.assertEqual(sorted(self.files_found(*names)), sorted(names))

    def test_wrong_calls(self):
        self.write("a.st", CALM)
        for arguments in (
            [],
            ["--unknown", "a.st"],
            ["-q", "a.st"],
            ["--format=xml", "a.st"],
            ["--format", "", "a.st"],
            ["--color=perhaps", "a.st"],
            ["--max-errors=0", "a.st"],
            ["--max-errors=-1", "a.st"],
            ["--max-errors=many", "a.st"],
            ["--max-errors=99999999999", "a.st"],
            ["--jobs=0", "a.st"],
            ["--jobs=", "a.st"],
        ):
            with self.subTest(arguments=arguments):
                self.assert_wrong_call(*arguments)

    def test_help(self):
        run = self.check("--help")
        self.assertEqual((run.status, run.stderr), (FINE, b""))
        options = re.findall(rb"--[a-z-]+", run.stdout)
        for option in (b"--format", b"--max-errors", b"--werror", b"--quiet", b"--jobs"):
            self.assertIn(option, options)


def shown_on_terminal(folder, environment):
    """What the call shows where standard output is a terminal."""
    terminal, child = pty.openpty()
    try:
        with subprocess.Popen(
            [DESK, "check", "--quiet", "a.st"],
            cwd=folder,
            stdin=subprocess.DEVNULL,
            stdout=child,
            env={**os.environ, **environment},
        ) as process:
            process.wait(TIMEOUT_SECONDS)
        return os.read(terminal, 1 << 16)
    finally:
        os.close(child)
        os.close(terminal)


ESCAPE = b"\x1b["


class Colors(FolderTestCase):
    def setUp(self):
        super().setUp()
        self.write("a.st", WRONG)
        self.environment = {**os.environ, "NO_COLOR": ""}

    def has_colors(self, *options, environment=None):
        run = self.check(*options, "a.st", env={**self.environment, **(environment or {})})
        return ESCAPE in run.stdout

    def test_wish(self):
        self.assertTrue(self.has_colors("--color=always"))
        self.assertTrue(self.has_colors("--color=always", environment={"NO_COLOR": "1"}))
        self.assertFalse(self.has_colors("--color=never"))
        self.assertFalse(self.has_colors("--color=auto"))
        self.assertFalse(self.has_colors())

    def test_terminal(self):
        self.assertIn(ESCAPE, shown_on_terminal(self.folder, {"NO_COLOR": ""}))
        self.assertNotIn(ESCAPE, shown_on_terminal(self.folder, {"NO_COLOR": "1"}))

    def test_other_formats_have_none(self):
        for form in ("gcc", "json", "sarif", "github"):
            self.assertFalse(self.has_colors("--color=always", f"--format={form}"), form)


if __name__ == "__main__":
    unittest.main()
