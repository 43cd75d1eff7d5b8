"""`yxst run` writes its files whole or not at all, however it ends."""

import contextlib
import fcntl
import os
import pty
import resource
import signal
import subprocess
import sys
import termios
import unittest
from pathlib import Path

from support_desk import DESK, FAILED, FINE, NOT_FINE, TIMEOUT_SECONDS, run_yxst, wait_for
from test_check import FolderTestCase

from test_files import drop_privileges  # isort: skip: found by support_desk

LOOP = b"""PROGRAM Loop
VAR
    count : UDINT := 0;
END_VAR
    count := count + 1;
END_PROGRAM
"""
FOR_EVER = "--cycles=2000000000"
OUTPUTS = ("--trace=trace.csv", "--chart=chart.html", "--record=run.test")


def unread(pipe):
    """The bytes that wait in it."""
    return int.from_bytes(fcntl.ioctl(pipe, termios.FIONREAD, bytes(4)), sys.byteorder)


class FilesTestCase(FolderTestCase):
    def setUp(self):
        super().setUp()
        self.folder.chmod(0o777)
        self.write("loop.st", LOOP)

    def run_loop(self, *arguments, **options):
        return run_yxst("run", "loop.st", *arguments, cwd=self.folder, **options)

    def start(self, *arguments):
        process = subprocess.Popen(
            [DESK, "run", "loop.st", *arguments],
            cwd=self.folder,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
        )
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)
        return process

    def names(self):
        return sorted(path.name for path in self.folder.iterdir())

    def written(self, process):
        """The bytes in the largest file of the folder that a process has open."""
        sizes = [0]
        for descriptor in Path(f"/proc/{process.pid}/fd").iterdir():
            with contextlib.suppress(OSError):
                if os.readlink(descriptor).startswith(str(self.folder)):
                    sizes.append(descriptor.stat().st_size)
        return max(sizes)


class Interrupts(FilesTestCase):
    def test_a_run_ends_with_what_it_has(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with self.subTest(signal=number):
                process = self.start(FOR_EVER, *OUTPUTS)
                wait_for(lambda: self.written(process) > 100_000)  # noqa: B023
                process.send_signal(number)
                stdout, stderr = process.communicate(timeout=TIMEOUT_SECONDS)
                self.assertEqual(process.returncode, NOT_FINE)
                cycles = int(stdout.split(b"\n")[1].split()[0])
                self.assertEqual(stderr, f"yxst: interrupted after {cycles} cycles.\n".encode())
                self.assert_files_are_whole(cycles)

    def assert_files_are_whole(self, cycles):
        self.assertEqual(self.names(), ["chart.html", "loop.st", "run.test", "trace.csv"])
        trace = (self.folder / "trace.csv").read_text().splitlines()
        self.assertEqual(len(trace), 4 + cycles)
        self.assertEqual(trace[-1].split(",")[::2], [str(cycles), str(cycles)])
        self.assertTrue((self.folder / "chart.html").read_text().endswith("</html>\n"))
        self.assertEqual((self.folder / "run.test").read_text().splitlines()[-1], str(cycles))
        for name in ("chart.html", "run.test", "trace.csv"):
            (self.folder / name).unlink()

    def test_a_cycle_that_does_not_end_is_ended(self):
        endless = b"IF count = 3 THEN\nWHILE TRUE DO END_WHILE; END_IF;\nEND_PROGRAM"
        self.write("loop.st", LOOP.replace(b"END_PROGRAM", endless))
        for arguments in (["--fast"], ["--check=scan-limit=off"], ["--force=count=3", "--fast"]):
            with self.subTest(arguments):
                process = self.start(FOR_EVER, *arguments, "--trace=trace.csv")
                wait_for(lambda: not is_default(process.pid, signal.SIGINT))  # noqa: B023
                with self.assertRaises(subprocess.TimeoutExpired):
                    process.wait(0.1)
                process.send_signal(signal.SIGTERM)
                stdout, stderr = process.communicate(timeout=TIMEOUT_SECONDS)
                cycles = 0 if "--force=count=3" in arguments else 2
                complaint = f"interrupted after {cycles} cycles, in the next one at loop.st:7:15"
                self.assertEqual(stderr, f"yxst: {complaint}.\n".encode())
                self.assertEqual(process.returncode, NOT_FINE)
                self.assertRegex(stdout, rb"^count  UDINT  VAR  3\n")
                trace = (self.folder / "trace.csv").read_text().splitlines()
                self.assertEqual(trace[-1].split(",")[0], str(cycles or "cycle"))

    def test_calls_that_take_for_ever_are_ended(self):
        doubled = "".join(
            f"FUNCTION f{n} : UDINT\nVAR END_VAR\nf{n - 1}(); f{n - 1}();\n"
            "RESULT := 1;\nEND_FUNCTION\n"
            for n in range(1, 60)
        )
        functions = "FUNCTION f0 : UDINT\nVAR END_VAR\nRESULT := 1;\nEND_FUNCTION\n" + doubled
        script = LOOP.replace(b"count + 1", b"f59()")
        self.write("loop.st", functions.encode() + script)
        for arguments in (["--fast"], ["--check=scan-limit=off"], ["--force=count=3", "--fast"]):
            with self.subTest(arguments):
                process = self.start(*arguments)
                wait_for(lambda: not is_default(process.pid, signal.SIGINT))  # noqa: B023
                with self.assertRaises(subprocess.TimeoutExpired):
                    process.wait(0.1)
                process.send_signal(signal.SIGINT)
                stderr = process.communicate(timeout=TIMEOUT_SECONDS)[1]
                self.assertIn(b"interrupted after 0 cycles, in the next one at loop.st", stderr)
        self.assertIn(b"scan-limit", self.run_loop("--quiet").stdout)

    def test_a_second_signal_ends_it_at_once(self):
        process = self.start(FOR_EVER, "--trace=-")  # which nobody reads
        wait_for(lambda: unread(process.stdout) > 60_000)
        with self.assertRaises(subprocess.TimeoutExpired):
            process.wait(0.1)
        process.send_signal(signal.SIGINT)
        wait_for(lambda: is_default(process.pid, signal.SIGINT))
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(TIMEOUT_SECONDS), -signal.SIGINT)

    def test_a_signal_that_is_ignored_stays_so(self):
        ignore = lambda: signal.signal(signal.SIGHUP, signal.SIG_IGN)  # noqa: E731
        process = subprocess.Popen(
            [DESK, "run", "loop.st", FOR_EVER, "--quiet"], cwd=self.folder, preexec_fn=ignore
        )
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        wait_for(lambda: not is_default(process.pid, signal.SIGINT))
        process.send_signal(signal.SIGHUP)
        with self.assertRaises(subprocess.TimeoutExpired):
            process.wait(0.3)


def is_default(pid, number):
    """Whether the process does not catch the signal."""
    with open(f"/proc/{pid}/status", encoding="ascii") as file:
        caught = next(line.split()[1] for line in file if line.startswith("SigCgt"))
    return not int(caught, 16) >> (number - 1) & 1


class StandardOutput(FilesTestCase):
    def test_a_reader_that_leaves(self):
        process = self.start(FOR_EVER, "--trace=-")
        self.assertTrue(process.stdout.readline().startswith(b"# script: loop.st"))
        process.stdout.close()
        self.assertEqual(process.stderr.read(), b"")
        self.assertEqual(process.wait(TIMEOUT_SECONDS), FAILED)

    def test_output_that_cannot_be_written(self):
        for arguments in ([], ["--trace=-"], [FOR_EVER, "--trace=-"]):
            with open("/dev/full", "wb") as full, self.subTest(arguments):
                process = subprocess.run(
                    [DESK, "run", "loop.st", *arguments],
                    cwd=self.folder,
                    stdout=full,
                    stderr=subprocess.PIPE,
                    timeout=TIMEOUT_SECONDS,
                )
                complaint = b"yxst: standard output cannot be written.\n"
                self.assertEqual((process.returncode, process.stderr), (FAILED, complaint))

    def test_standard_output_that_is_closed(self):
        run = self.run_loop(preexec_fn=lambda: os.close(1))
        self.assertEqual(run.status, FAILED)


class Unwritable(FilesTestCase):
    def assert_refused(self, name, *arguments, **options):
        run = self.run_loop(*arguments, **options)
        complaint = f"yxst: {name}: cannot be written.\n".encode()
        self.assertEqual(run, (FAILED, b"", complaint))

    def test_names_that_lead_to_no_file(self):
        (self.folder / "inner").mkdir()
        os.mkfifo(self.folder / "pipe")
        before = self.names()
        for option in ("--trace", "--chart", "--record"):
            for name in ("inner", "pipe", "none/x", "loop.st/x", "/dev/null", "/dev/full"):
                with self.subTest(option=option, name=name):
                    self.assert_refused(name, f"{option}={name}")
        self.assertEqual(self.names(), before)

    @unittest.skipUnless(os.geteuid() == 0, "needs root, to become another user")
    def test_what_may_not_be_written(self):
        self.folder.chmod(0o555)
        self.assert_refused("trace.csv", "--trace=trace.csv", preexec_fn=drop_privileges)

    def test_what_cannot_be_written_whole_is_not_there(self):
        limit = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (50_000, 50_000))  # noqa: E731
        self.write("trace.csv", b"old")
        for option in OUTPUTS[:2]:
            name = option.partition("=")[2]
            run = self.run_loop(option, "--cycles=20000", preexec_fn=limit)
            self.assertEqual(run.status, FAILED)
            self.assertEqual(run.stderr, f"yxst: {name}: cannot be written.\n".encode())
        self.assertEqual(self.names(), ["loop.st", "trace.csv"])
        self.assertEqual((self.folder / "trace.csv").read_bytes(), b"old")

    def test_a_link_leads_to_the_file_that_is_written(self):
        (self.folder / "link").symlink_to("target.csv")
        self.assertEqual(self.run_loop("--trace=link", "--quiet").status, FINE)
        self.assertTrue((self.folder / "link").is_symlink())
        self.assertTrue((self.folder / "target.csv").read_text().startswith("# script"))


class AtATerminal(FilesTestCase):
    def test_progress_is_shown_and_cleared(self):
        leader, terminal = pty.openpty()
        process = subprocess.Popen(
            [DESK, "run", "loop.st", "--quiet", FOR_EVER],
            cwd=self.folder,
            stdin=terminal,
            stdout=terminal,
            stderr=terminal,
        )
        os.close(terminal)
        self.addCleanup(os.close, leader)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        self.assertRegex(os.read(leader, 4096), rb"^\r\d+ of 2000000000")
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(TIMEOUT_SECONDS), NOT_FINE)
        self.assertRegex(os.read(leader, 65536), rb"\r\x1b\[Kyxst: interrupted after \d+ cycles\.")


if __name__ == "__main__":
    unittest.main()
