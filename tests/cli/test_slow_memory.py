"""Every exit path under valgrind's memcheck: no invalid access, no undefined value, no leak."""

import re
import shutil
import subprocess
import sys
import unittest

from limits import IS_SANITIZED
from support import (
    BINARY,
    ROOT,
    VALID_SOURCE,
    Compiler,
    CompilerTestCase,
    diagnostics_in,
    side_by_side,
)

sys.path.insert(0, str(ROOT / "tests/golden"))
from cases import all_cases  # noqa: E402

VALGRIND = shutil.which("valgrind")
FOUND = 99  # the exit status when memcheck has found something
MEMCHECK = [
    VALGRIND,
    "--quiet",
    f"--error-exitcode={FOUND}",
    "--leak-check=full",
    "--show-leak-kinds=definite",
    "--errors-for-leak-kinds=definite",
]
TIMEOUT_SECONDS = 300
ALL_OUTPUTS = ["-l", "-s", "-i", "-m", "-n", "-r", "-e"]


def kind_of(message):
    """The message without its place and what it quotes."""
    return re.sub(r"^Error: Line [0-9]+, Column [0-9]+: |\"[^\"]*\"|'[^']*'", "", message)


def errors_of(case):
    report = (case.expected(".lst") or b"") + (case.expected(".res") or b"")
    lines = diagnostics_in(report.decode(errors="replace"))
    return [line for line in lines if line.startswith("Error: ")]


def cases_of_each_message():
    """For each kind of message, the first golden case that it ends."""
    found = {}
    for case in all_cases():
        for error in errors_of(case):
            found.setdefault(kind_of(error), case)
    return list(found.values())


def check(data, *arguments):
    """The exit status under memcheck and what it says."""
    compiler = Compiler()
    try:
        compiler.write("in.st", data)
        process = subprocess.run(
            [*MEMCHECK, BINARY, *arguments],
            cwd=compiler.path,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL,
            stderr=subprocess.PIPE,
            timeout=TIMEOUT_SECONDS,
        )
    finally:
        compiler.close()
    return process.returncode, process.stderr.decode(errors="replace")


def check_compile(data):
    return check(data, "in.st", "out", *ALL_OUTPUTS)


@unittest.skipIf(VALGRIND is None, "valgrind is not installed")
@unittest.skipIf(IS_SANITIZED, "a sanitizer and valgrind exclude each other")
class Memory(CompilerTestCase):
    def expect(self, status, name, run):
        with self.subTest(name):
            self.assertEqual(run, (status, ""))

    def test_checker_notices(self):
        """An error in the program that runs must show, or the other tests prove nothing."""
        program = self.compiler.path / "faulty"
        code = b"int main() { volatile int* p = new int[2]; return p[2]; }"
        build = ["g++", "-x", "c++", "-o", program, "-"]
        subprocess.run(build, input=code, check=True)
        process = subprocess.run([*MEMCHECK, program], capture_output=True)
        self.assertEqual(process.returncode, FOUND)

    def test_examples(self):
        examples = sorted((ROOT / "examples").glob("*.st"))
        runs = side_by_side(check_compile, [path.read_bytes() for path in examples])
        for source, run in zip(examples, runs):
            self.expect(0, source.name, run)

    def test_program_of_each_message(self):
        cases = cases_of_each_message()
        self.assertGreater(len(cases), 50)
        for case, run in zip(cases, side_by_side(check_compile, [case.data for case in cases])):
            self.expect(1, case.name, run)

    def test_runs_that_do_not_begin(self):
        for arguments in [
            [],
            ["in.st"],
            ["missing.st", "out"],
            ["in.st", "missing/out"],
            ["in.st", "in.st"],
            ["in.st", "out", "-q"],
            ["in.st", "/dev/full", "-l"],
        ]:
            self.expect(1, " ".join(arguments), check(VALID_SOURCE, *arguments))


if __name__ == "__main__":
    unittest.main()
