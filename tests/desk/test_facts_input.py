"""`yxst facts` over unusual scripts, files and streams, and how it ends when something fails."""

import json
import os
import resource
import signal
import subprocess
import tempfile
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
    child_of,
    facts_of,
    is_running,
    large_script,
    run_yxst,
    wait_for,
)

from limits import IS_SANITIZED  # isort: skip: found by support_desk


def texts(facts, kind="tokens"):
    return [fact["text"] for fact in facts[kind]]


def places(facts, kind="tokens"):
    return [(fact["begin"], fact["end"]) for fact in facts[kind]]


def spelled(declaration, statement):
    """A script whose lines 3 and 5 are these."""
    lines = SCRIPT.decode().split("\n")
    lines[2], lines[4] = declaration, statement
    return "\n".join(lines).encode()


class Characters(unittest.TestCase):
    def test_carriage_returns_do_not_count(self):
        for data in (SCRIPT.replace(b"\n", b"\r\n"), SCRIPT.replace(b" ", b" \r")):
            facts, status = facts_of(data)
            self.assertEqual(status, FINE)
            self.assertEqual(places(facts), places(facts_of(SCRIPT)[0]))

    def test_byte_order_mark_does_not_count(self):
        facts, _ = facts_of(b"\xef\xbb\xbf" + SCRIPT)
        self.assertEqual(places(facts), places(facts_of(SCRIPT)[0]))

    def test_a_tab_is_one_column(self):
        facts, _ = facts_of(spelled("\ta : INT;", "\t\ta := 1;"))
        self.assertEqual(facts["declarations"][0]["begin"], [3, 2])
        self.assertEqual(facts["statements"][0]["begin"], [5, 3])

    def test_a_character_beyond_the_bmp_is_two_columns(self):
        facts, status = facts_of(spelled("a : INT;", "(* \U0001f600 *) a := 1;"))
        self.assertEqual(status, FINE)
        self.assertEqual(texts(facts, "comments"), ["(* \U0001f600 *)"])
        self.assertEqual(facts["statements"][0]["begin"], [5, 10])

    def test_half_a_character_is_a_replacement_character(self):
        facts, status = facts_of(spelled("a : INT;", "\U0001f600 := 1;"))
        self.assertEqual(status, NOT_FINE)
        self.assertEqual(texts(facts)[8:10], ["\ufffd", "\ufffd"])
        self.assertEqual(places(facts)[8:10], [([5, 1], [5, 2]), ([5, 2], [5, 3])])

    def test_letters_outside_ascii(self):
        facts, _ = facts_of(spelled("Насос : INT;", "насос := 1;"))
        self.assertEqual(facts["names"][1]["name"], "Насос")
        self.assertEqual(texts(facts)[8], "насос")

    def test_u_ffff_ends_the_script(self):
        facts, status = facts_of(SCRIPT + "\uffff no script".encode())
        self.assertEqual((status, texts(facts)[-1]), (FINE, "END_PROGRAM"))
        facts, status = facts_of(SCRIPT.replace(b"1", "\uffff1".encode()))
        self.assertEqual((status, texts(facts)[-1]), (NOT_FINE, ":="))

    def test_invalid_utf_8(self):
        facts, status = facts_of(spelled("a : INT;", "// x").replace(b"x", b"\xff\xc0\x80"))
        self.assertEqual(status, FINE)
        self.assertRegex(texts(facts, "comments")[0], "^// \ufffd+$")

    def test_scripts_without_a_token(self):
        for data in (b"", b"\n \t\n", b"\r", b"\xef\xbb\xbf", b"\0"):
            with self.subTest(data=data):
                facts, status = facts_of(data)
                self.assertEqual((status, facts["compiled"]), (NOT_FINE, False))
                self.assertEqual(facts["messages"][0]["begin"], [1, 1])


class AfterAnError(unittest.TestCase):
    def test_tokens_and_comments_go_on(self):
        facts, _ = facts_of(spelled("a : INT;", "a := ; // here"))
        self.assertEqual(texts(facts)[-3:], [":=", ";", "END_PROGRAM"])
        self.assertEqual(texts(facts, "comments"), ["// here"])

    def test_what_is_no_token_is_left_out(self):
        for wrong in ("'open", "3#1", "1" * 300):
            with self.subTest(wrong=wrong):
                facts, _ = facts_of(spelled("a : INT;", f"a := {wrong}\n a := 2;"))
                self.assertEqual(facts["messages"][0]["severity"], "error")
                self.assertEqual(texts(facts)[-5:], ["a", ":=", "2", ";", "END_PROGRAM"])

    def test_an_open_comment(self):
        facts, _ = facts_of(spelled("a : INT;", "a := 1; (* open"))
        self.assertEqual(places(facts, "comments"), [([5, 9], [5, 9])])

    def test_what_has_not_ended(self):
        facts, _ = facts_of(spelled("a : INT;", "IF TRUE THEN a := ;"))
        self.assertEqual([each["ended"] for each in facts["statements"]], [False, False])
        self.assertEqual([each["ended"] for each in facts["units"]], [False])
        facts, _ = facts_of(spelled("a INT;", "a := 1;"))
        self.assertEqual([each["ended"] for each in facts["declarations"]], [False])


class Streams(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.script = self.folder / "script.st"
        self.script.write_bytes(SCRIPT)

    def assert_refused(self, run, complaint):
        self.assertEqual((run.status, run.stdout), (FAILED, b""))
        self.assertEqual(run.stderr.decode(), complaint)

    def test_standard_input(self):
        run = run_yxst("facts", "-", stdin=None, input=SCRIPT)
        facts = json.loads(run.stdout)
        self.assertEqual((run.status, facts.pop("file")), (FINE, "<stdin>"))
        of_file = json.loads(run_yxst("facts", self.script).stdout)
        self.assertEqual(of_file.pop("file"), str(self.script))
        self.assertEqual(facts, of_file)

    def test_large_standard_input(self):
        run = run_yxst("facts", "-", stdin=None, input=SCRIPT + b"// a comment\n" * 100_000)
        self.assertEqual((run.status, len(json.loads(run.stdout)["tokens"])), (FINE, 13))

    def test_standard_input_that_cannot_be_read(self):
        complaint = "yxst: -: standard input cannot be read whole.\n"
        folder = os.open(self.folder, os.O_RDONLY)
        self.addCleanup(os.close, folder)
        self.assert_refused(run_yxst("facts", "-", stdin=folder), complaint)
        run = run_yxst("facts", "-", stdin=None, preexec_fn=lambda: os.close(0))
        self.assert_refused(run, complaint)

    def test_files_that_are_none(self):
        pipe = self.folder / "pipe"
        os.mkfifo(pipe)
        for path, reason in (
            (self.folder / "none.st", "no such file"),
            (self.folder, "is a folder"),
            (pipe, "cannot be read"),
            (Path("/dev/zero"), "cannot be read"),
        ):
            with self.subTest(path=path.name):
                self.assert_refused(run_yxst("facts", path), f"yxst: {path}: {reason}.\n")

    @unittest.skipIf(os.geteuid() == 0, "root reads every file")
    def test_file_that_may_not_be_read(self):
        self.script.chmod(0)
        complaint = f"yxst: {self.script}: cannot be read.\n"
        self.assert_refused(run_yxst("facts", self.script), complaint)

    def test_names_of_files(self):
        for name in ("-l", "Насос.st", "a b.st", 'quote".st'):
            with self.subTest(name=name):
                (self.folder / name).write_bytes(SCRIPT)
                run = run_yxst("facts", "--", name, cwd=self.folder)
                self.assertEqual(json.loads(run.stdout)["file"], name)

    def test_wrong_calls(self):
        for arguments in ([], ["-x"], ["--format=gcc", "a"], ["a", "b"]):
            with self.subTest(arguments=arguments):
                run = run_yxst("facts", *arguments)
                self.assertEqual((run.status, run.stdout), (FAILED, b""))
                self.assertIn(b"--help", run.stderr)

    def test_output_that_cannot_be_written(self):
        complaint = b"yxst: standard output cannot be written.\n"
        with open("/dev/full", "wb") as full:
            process = subprocess.run(
                [DESK, "facts", self.script], stdout=full, stderr=subprocess.PIPE, check=False
            )
        self.assertEqual((process.returncode, process.stderr), (FAILED, complaint))

    def test_standard_output_that_is_closed(self):
        process = subprocess.run(
            [DESK, "facts", self.script],
            stderr=subprocess.PIPE,
            preexec_fn=lambda: os.close(1),
            check=False,
        )
        complaint = b"yxst: standard output cannot be written.\n"
        self.assertEqual((process.returncode, process.stderr), (FAILED, complaint))

    def test_standard_error_that_is_closed(self):
        for path, status in ((self.script, FINE), (self.folder, FAILED)):
            run = run_yxst("facts", path, preexec_fn=lambda: os.close(2))
            self.assertEqual((run.status, run.stdout != b""), (status, status == FINE))

    def test_a_reader_that_leaves(self):
        self.script.write_bytes(large_script(5_000))
        with subprocess.Popen(
            [DESK, "facts", self.script], stdout=subprocess.PIPE, stderr=subprocess.PIPE
        ) as process:
            self.assertEqual(process.stdout.readline(), b"{\n")
            process.stdout.close()
            self.assertEqual(process.stderr.read(), b"")
            self.assertEqual(process.wait(TIMEOUT_SECONDS), FAILED)


# ---------------------------------------------------------------------------------------------
# The process of the compile
# ---------------------------------------------------------------------------------------------


class Child(unittest.TestCase):
    def setUp(self):
        file = tempfile.NamedTemporaryFile(suffix=".st")
        self.addCleanup(file.close)
        self.path = file.name
        file.write(large_script(100_000))
        file.flush()

    def start(self):
        process = subprocess.Popen(
            [DESK, "facts", self.path], stdout=subprocess.PIPE, stderr=subprocess.PIPE
        )
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)
        return process, wait_for(lambda: child_of(process.pid))

    @unittest.skipIf(IS_SANITIZED, SANITIZED)
    def test_a_compile_that_dies(self):
        for number, name in ((signal.SIGKILL, "Killed"), (signal.SIGSEGV, "Segmentation fault")):
            with self.subTest(signal=number):
                process, child = self.start()
                os.kill(child, number)
                stdout, stderr = process.communicate(timeout=TIMEOUT_SECONDS)
                complaint = f"the compiler was ended by signal {number.value} ({name})"
                self.assertEqual((process.returncode, stdout), (FAILED, b""))
                self.assertEqual(stderr.decode(), f"yxst: {self.path}: {complaint}.\n")

    def test_no_child_is_left(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGKILL):
            with self.subTest(signal=number):
                process, child = self.start()
                process.send_signal(number)
                self.assertEqual(process.wait(TIMEOUT_SECONDS), -number)
                wait_for(lambda: not is_running(child))

    @unittest.skipIf(IS_SANITIZED, SANITIZED)
    def test_no_process_can_be_started(self):
        limit = lambda: resource.setrlimit(resource.RLIMIT_NOFILE, (4, 4))  # noqa: E731
        run = run_yxst("facts", "-", stdin=None, input=SCRIPT, preexec_fn=limit)
        complaint = "yxst: -: no process for the compiler can be started.\n"
        self.assertEqual((run.status, run.stderr.decode()), (FAILED, complaint))

    @unittest.skipIf(IS_SANITIZED, "a sanitizer does not work with limited memory")
    def test_want_of_memory(self):
        for megabytes in (70, 90, 110, 130):
            size = megabytes << 20
            limit = lambda: resource.setrlimit(resource.RLIMIT_AS, (size, size))  # noqa: B023,E731
            run = run_yxst("facts", self.path, preexec_fn=limit)
            with self.subTest(megabytes=megabytes):
                self.assertEqual(run.status, FAILED)
                self.assertRegex(run.stderr.decode(), r"^yxst: (.*: )?out of memory\.\n$")

    @unittest.skipIf(IS_SANITIZED, SANITIZED)
    def test_deep_nesting(self):
        facts, status = facts_of(spelled("a : INT;", "a := " + "(" * 100_000 + "1;"))
        self.assertEqual((status, facts["messages"][0]["severity"]), (NOT_FINE, "error"))


if __name__ == "__main__":
    unittest.main()
