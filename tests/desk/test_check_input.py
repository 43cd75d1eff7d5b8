"""`yxst check` over what cannot be read, checked or shown, and how it ends then."""

import os
import resource
import signal
import stat
import subprocess
import time
import unittest
from pathlib import Path

from support_desk import (
    DESK,
    FAILED,
    FINE,
    IS_SANITIZED,
    NOT_FINE,
    SANITIZED,
    SCRIPT,
    TIMEOUT_SECONDS,
    is_running,
    large_script,
    wait_for,
)
from test_check import FolderTestCase

from limits import IS_SANITIZED  # isort: skip: found by support_desk
from test_files import drop_privileges, snapshot  # isort: skip

WRONG = SCRIPT.replace(b":=", b"=")
FOUND_IN_WRONG = b'wrong.st:5:7: error: ":=" expected but "=" found [expected-but]\n'
CANNOT_BE_WRITTEN = b"yxst: standard output cannot be written.\n"


class InputTestCase(FolderTestCase):
    """In its folder is a script with an error, which is to be found whatever happens to others."""

    def setUp(self):
        super().setUp()
        self.folder.chmod(0o755)
        self.write("wrong.st", WRONG)

    def assert_others_are_checked(self, complaint, *arguments, **options):
        run = self.check("--format=gcc", *arguments, "wrong.st", **options)
        self.assertEqual((run.status, run.stderr.decode()), (FAILED, complaint))
        self.assertEqual(run.stdout.splitlines(True)[:1], [FOUND_IN_WRONG])

    def start(self, *arguments):
        process = subprocess.Popen(
            [DESK, "check", *arguments],
            cwd=self.folder,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
        )
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)
        return process


class Files(InputTestCase):
    def test_missing_files(self):
        self.assert_others_are_checked("yxst: none.st: no such file.\n", "none.st")
        self.assert_others_are_checked("yxst: a/b.st: no such file.\n", "a/b.st")
        self.assert_others_are_checked("yxst: wrong.st/a: no such file.\n", "wrong.st/a")

    def test_nothing_to_check(self):
        run = self.check("none.st")
        self.assertEqual((run.status, run.stdout), (FAILED, b""))

    def test_folder_without_scripts(self):
        (self.folder / "empty/inner").mkdir(parents=True)
        self.write("empty/inner/a.txt", WRONG)
        complaint = "yxst: empty: no scripts in this folder.\n"
        self.assert_others_are_checked(complaint, "empty")

    def test_what_is_no_file(self):
        os.mkfifo(self.folder / "pipe.st")
        self.assert_others_are_checked("yxst: pipe.st: cannot be read.\n", "pipe.st")
        self.assert_others_are_checked("yxst: /dev/zero: cannot be read.\n", "/dev/zero")
        (self.folder / "loop.st").symlink_to("loop.st")
        self.assert_others_are_checked("yxst: loop.st: no such file.\n", "loop.st")

    @unittest.skipUnless(os.geteuid() == 0, "needs root, to become another user")
    def test_what_may_not_be_read(self):
        for name in ("secret.st", "closed/a.st"):
            self.write(name, WRONG)
        (self.folder / "secret.st").chmod(0)
        (self.folder / "closed").chmod(0)
        self.addCleanup((self.folder / "closed").chmod, stat.S_IRWXU)
        for path, complaint in (
            ("secret.st", "secret.st: cannot be read"),
            ("closed", "closed: no scripts in this folder"),
            ("closed/a.st", "closed/a.st: no such file"),
        ):
            with self.subTest(path):
                self.assert_others_are_checked(
                    f"yxst: {complaint}.\n", path, preexec_fn=drop_privileges
                )

    def test_unusual_scripts(self):
        """The compiler's message is found and nothing is complained of."""
        for data in (b"", b"\n", b"\0", b"\xff\xfe\x00", b"\xef\xbb\xbf", b"(*", b"'" * 1000):
            with self.subTest(data=data):
                self.write("odd.st", data)
                run = self.check("--format=gcc", "odd.st")
                self.assertEqual((run.status, run.stderr), (NOT_FINE, b""))
                self.assertIn(b": error: ", run.stdout)

    def test_invalid_utf_8_in_a_comment(self):
        self.write("odd.st", SCRIPT + b"// \xff\xc0\x80\n")
        self.assertEqual(self.check("odd.st").status, FINE)

    def test_invalid_utf_8_is_shown_as_valid(self):
        self.write("odd.st", SCRIPT.replace(b":=", b"\xff\xc0"))
        for form in ("human", "gcc", "json", "sarif", "github"):
            with self.subTest(form):
                run = self.check(f"--format={form}", "odd.st")
                self.assertIn("\ufffd", run.stdout.decode())
                self.assertEqual((run.status, run.stderr), (NOT_FINE, b""))

    @unittest.skipIf(IS_SANITIZED, SANITIZED)
    def test_deep_nesting(self):
        deep = SCRIPT.replace(b"1;", b"(" * 100_000 + b"1;")
        self.write("deep.st", deep)
        run = self.check("--format=gcc", "deep.st")
        self.assertEqual((run.status, run.stderr), (NOT_FINE, b""))

    def test_standard_input_that_is_closed(self):
        complaint = "yxst: -: standard input cannot be read whole.\n"
        self.assert_others_are_checked(
            complaint, "-", stdin=None, preexec_fn=lambda: os.close(0)
        )


class NothingIsWritten(InputTestCase):
    def test_folder_stays_as_it_is(self):
        before = snapshot(self.folder)
        self.assertEqual(self.check(".").status, NOT_FINE)
        self.assertEqual(snapshot(self.folder), before)

    @unittest.skipUnless(os.geteuid() == 0, "needs root, to become another user")
    def test_folder_without_leave_to_write(self):
        self.folder.chmod(0o555)
        run = self.check("--format=gcc", ".", preexec_fn=drop_privileges)
        self.assertEqual((run.status, run.stderr), (NOT_FINE, b""))
        self.assertIn(FOUND_IN_WRONG, run.stdout)


# ---------------------------------------------------------------------------------------------
# Standard output
# ---------------------------------------------------------------------------------------------


class Output(InputTestCase):
    def setUp(self):
        super().setUp()
        for number in range(1000):
            self.write(f"many/{number}.st", WRONG)
        self.expected = self.check("many").stdout
        self.assertGreater(len(self.expected), 1 << 16)

    def test_a_slow_reader(self):
        process = self.start("many")
        time.sleep(0.5)
        stdout, stderr = process.communicate(timeout=TIMEOUT_SECONDS)
        self.assertEqual((process.returncode, stderr), (NOT_FINE, b""))
        self.assertEqual(stdout, self.expected)

    def test_a_reader_that_leaves(self):
        process = self.start("many")
        self.assertEqual(process.stdout.readline(), self.expected.splitlines(True)[0])
        process.stdout.close()
        self.assertEqual(process.stderr.read(), b"")
        self.assertEqual(process.wait(TIMEOUT_SECONDS), FAILED)

    def test_output_that_cannot_be_written(self):
        for form in ("human", "sarif"):
            with open("/dev/full", "wb") as full, self.subTest(form):
                process = subprocess.run(
                    [DESK, "check", f"--format={form}", "wrong.st"],
                    cwd=self.folder,
                    stdout=full,
                    stderr=subprocess.PIPE,
                    timeout=TIMEOUT_SECONDS,
                )
                self.assertEqual((process.returncode, process.stderr), (FAILED, CANNOT_BE_WRITTEN))

    def test_standard_output_that_is_closed(self):
        for path, ending in (("wrong.st", (FAILED, CANNOT_BE_WRITTEN)), ("fine.st", (FINE, b""))):
            self.write("fine.st", SCRIPT)
            process = subprocess.run(
                [DESK, "check", path],
                cwd=self.folder,
                stderr=subprocess.PIPE,
                preexec_fn=lambda: os.close(1),
                timeout=TIMEOUT_SECONDS,
            )
            with self.subTest(path):
                self.assertEqual((process.returncode, process.stderr), ending)

    def test_standard_error_that_is_closed(self):
        run = self.check("none.st", "wrong.st", preexec_fn=lambda: os.close(2))
        self.assertEqual(run.status, FAILED)
        self.assertIn(b"wrong.st:5:7", run.stdout)


# ---------------------------------------------------------------------------------------------
# Processes
# ---------------------------------------------------------------------------------------------


def children_of(pid):
    """The processes that it has started and that have not ended."""
    try:
        children = Path(f"/proc/{pid}/task/{pid}/children").read_text().split()
    except FileNotFoundError:
        return []
    return [child for child in map(int, children) if is_running(child)]


class Processes(InputTestCase):
    """With scripts that are long under way."""

    def setUp(self):
        super().setUp()
        data = large_script(100_000)
        for number in range(6):
            self.write(f"large/{number}.st", data)

    def start_with_children(self, jobs):
        process = self.start(f"--jobs={jobs}", "--format=gcc", "large", "wrong.st")
        wait_for(lambda: len(children_of(process.pid)) == jobs)
        return process, children_of(process.pid)

    @unittest.skipIf(IS_SANITIZED, SANITIZED)
    def test_a_compile_that_dies(self):
        for number, name in ((signal.SIGKILL, "Killed"), (signal.SIGSEGV, "Segmentation fault")):
            with self.subTest(name):
                process, children = self.start_with_children(1)
                os.kill(children[0], number)
                stdout, stderr = process.communicate(timeout=TIMEOUT_SECONDS)
                complaint = f"the compiler was ended by signal {number.value} ({name})"
                self.assertEqual(process.returncode, FAILED)
                self.assertEqual(stdout, self.check("--format=gcc", "wrong.st").stdout)
                self.assertEqual(stderr.decode(), f"yxst: large/0.st: {complaint}.\n")

    def test_a_compile_that_dies_in_each_format(self):
        """What is shown of the others is as it is without the one that died."""
        for form in ("human", "json", "sarif", "github"):
            with self.subTest(form):
                process = self.start("--jobs=1", f"--format={form}", "large/0.st", "wrong.st")
                os.kill(wait_for(lambda: children_of(process.pid))[0], signal.SIGKILL)
                stdout, _ = process.communicate(timeout=TIMEOUT_SECONDS)
                self.assertEqual(process.returncode, FAILED)
                self.assertEqual(stdout, self.check(f"--format={form}", "wrong.st").stdout)

    def test_no_child_is_left(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGKILL):
            with self.subTest(signal=number):
                process, children = self.start_with_children(3)
                process.send_signal(number)
                self.assertEqual(process.wait(TIMEOUT_SECONDS), -number)
                wait_for(lambda: not any(map(is_running, children)))

    @unittest.skipIf(IS_SANITIZED, SANITIZED)
    def test_no_process_can_be_started(self):
        limit = lambda: resource.setrlimit(resource.RLIMIT_NOFILE, (4, 4))  # noqa: E731
        run = self.check("-", "wrong.st", stdin=None, input=SCRIPT, preexec_fn=limit)
        complaint = "yxst: -: no process for the compiler can be started.\n"
        self.assertEqual(run.status, FAILED)
        self.assertTrue(run.stderr.decode().startswith(complaint))

    @unittest.skipIf(IS_SANITIZED, "a sanitizer does not work with limited memory")
    def test_want_of_memory(self):
        for megabytes in (70, 90, 110, 130):
            size = megabytes << 20
            limit = lambda: resource.setrlimit(resource.RLIMIT_AS, (size, size))  # noqa: B023,E731
            run = self.check("large/0.st", preexec_fn=limit)
            with self.subTest(megabytes=megabytes):
                self.assertIn(run.status, (FINE, FAILED))
                pattern = r"^(yxst: (.*: )?out of memory\.\n)?$"
                self.assertRegex(run.stderr.decode(), pattern)
                self.assertEqual(run.stderr == b"", run.status == FINE)


if __name__ == "__main__":
    unittest.main()
