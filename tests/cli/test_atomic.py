"""How outputs come to be: they are created and never followed, the code file appears whole or not
at all, and a run leaves nothing behind; whatever others do to the folder meanwhile."""

import os
import signal
import socket
import unittest

import stops
from limits import IS_SANITIZED
from preloads import needs_c_compiler, preload_for
from support import VALID_SOURCE
from workplace import (
    LARGE_SOURCE,
    OLD_CODE,
    OUTPUT_NAMES,
    SIDE_OPTIONS,
    SMALL_SOURCE,
    Workplace,
    assert_none,
    finish,
    read,
    source_with_statements,
    undisturbed,
)

PRECIOUS = b"precious, and nobody's output\n"
FAILING_SOURCE = LARGE_SOURCE.replace(b"END_PROGRAM", b"a = 1;")


# ---------------------------------------------------------------------------------------------
# Arguments
# ---------------------------------------------------------------------------------------------


class WrongArguments(unittest.TestCase):
    """All arguments are examined before anything is removed."""

    def assert_nothing_is_lost(self, *arguments):
        with Workplace() as place:
            place.put_old_outputs()
            before = {path.name: read(path) for path in place.outputs.iterdir()}
            self.assertEqual(place.run(*arguments), 1)
            after = {path.name: read(path) for path in place.outputs.iterdir()}
            self.assertEqual((after, place.strays()), (before, []))

    def test_second_source_in_place_of_the_output(self):
        with Workplace() as place:
            for name in ("b.st", "c.st"):
                (place.path / name).write_bytes(PRECIOUS)
            self.assertEqual(place.run("c.st", output="b.st"), 1)
            for name in ("b.st", "c.st"):
                self.assertEqual(read(place.path / name), PRECIOUS)

    def test_argument_that_is_no_option(self):
        for arguments in (("-x",), ("-L",), ("",), ("more.st",), ("-l", "-r", "-e", "-x")):
            with self.subTest(arguments=arguments):
                self.assert_nothing_is_lost(*arguments)
                self.assert_nothing_is_lost(*reversed(arguments))


# ---------------------------------------------------------------------------------------------
# Created, never followed
# ---------------------------------------------------------------------------------------------


@needs_c_compiler
class Planted(unittest.TestCase):
    """Somebody puts a link or a pipe to where the compiler is about to create a file."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.library = preload_for(cls, "race")

    def run_planted(self, place, kind, target=None):
        environment = self.library.environment(
            place.path, place.log, PLANT=kind, TARGET=target or "/"
        )
        status = place.run(*SIDE_OPTIONS, env=environment)
        self.assertIn("planted", place.log_lines(), "the library was not asked")
        return status

    def check_outputs(self, place, status):
        """A run that ends well has created all that it wrote; another has no code."""
        self.assertIn(status, (0, 1))
        if status == 0:
            for name in OUTPUT_NAMES:
                self.assertFalse((place.outputs / name).is_symlink(), name)
            expected = undisturbed(place.source, *SIDE_OPTIONS)
            self.assertEqual((place.code(), place.side_texts()), expected)

    def check_kind(self, kind, old_code):
        with Workplace(old_code=old_code) as place:
            target = place.path / "precious"
            target.write_bytes(PRECIOUS)
            status = self.run_planted(place, kind, target)
            self.assertEqual(read(target), PRECIOUS)
            self.check_outputs(place, status)

    def test_links_to_a_file(self):
        for kind in ("symlink", "link"):
            for old_code in (None, OLD_CODE):
                with self.subTest(kind=kind, old_code=old_code):
                    self.check_kind(kind, old_code)

    def test_links_to_the_source(self):
        for kind in ("symlink", "link"):
            for old_code in (None, OLD_CODE):
                with self.subTest(kind=kind, old_code=old_code):
                    with Workplace(old_code=old_code) as place:
                        status = self.run_planted(place, kind, place.source_file)
                        self.assertEqual(read(place.source_file), place.source)
                        self.check_outputs(place, status)

    def test_dangling_link(self):
        with Workplace() as place:
            self.check_outputs(place, self.run_planted(place, "symlink", place.path / "new"))
            self.assertFalse((place.path / "new").exists())

    def test_pipe_is_not_waited_for(self):
        with Workplace() as place:
            self.assertIn(self.run_planted(place, "pipe"), (0, 1))


# ---------------------------------------------------------------------------------------------
# The source is judged by what was opened
# ---------------------------------------------------------------------------------------------


@needs_c_compiler
class SwappedSource(unittest.TestCase):
    """The name of the source leads to something else just before it is opened."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.library = preload_for(cls, "race")

    def run_swapped(self, place):
        environment = self.library.environment(
            place.path, place.log, SOURCE="in.st", SWAP=place.path / "other"
        )
        status = place.run(*SIDE_OPTIONS, env=environment)
        self.assertIn("swapped", place.log_lines(), "the library was not asked")
        return status

    def assert_refused(self, place):
        self.assertEqual(self.run_swapped(place), 1)
        self.assertIsNone(place.code())

    def test_pipe(self):
        with Workplace() as place:
            os.mkfifo(place.path / "other")
            self.assert_refused(place)

    def test_pipe_with_a_writer(self):
        with Workplace() as place:
            os.mkfifo(place.path / "other")
            end = os.open(place.path / "other", os.O_RDWR)
            self.addCleanup(os.close, end)
            os.write(end, VALID_SOURCE)
            self.assert_refused(place)

    def test_socket(self):
        with Workplace() as place:
            with socket.socket(socket.AF_UNIX) as listener:
                listener.bind(str(place.path / "other"))
                self.assert_refused(place)

    def test_folder(self):
        with Workplace() as place:
            (place.path / "other").mkdir()
            self.assert_refused(place)

    def test_link_to_a_device(self):
        for device in ("/dev/null", "/dev/zero"):
            with self.subTest(device=device), Workplace() as place:
                (place.path / "other").symlink_to(device)
                self.assert_refused(place)

    def test_nothing(self):
        with Workplace() as place:
            self.assert_refused(place)

    def test_other_source(self):
        other = source_with_statements(3, value=7)
        with Workplace() as place:
            (place.path / "other").write_bytes(other)
            self.assertEqual(self.run_swapped(place), 0)
            self.assertEqual(place.code(), undisturbed(other)[0])

    def test_pipe_becomes_a_file(self):
        with Workplace() as place:
            place.source_file.rename(place.path / "other")
            os.mkfifo(place.source_file)
            self.assertEqual(self.run_swapped(place), 0)
            self.assertEqual(place.code(), undisturbed(place.source)[0])


# ---------------------------------------------------------------------------------------------
# Whole or not at all
# ---------------------------------------------------------------------------------------------


@needs_c_compiler
class HaltedInTheMiddle(unittest.TestCase):
    """A run that halts while it compiles, when the first block of its listing is full."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.library = preload_for(cls, "stop")

    def halted(self, place):
        """The process, which is ended at the latest with the test."""
        halt = {"CALL": "write", "NAME": "/out.lst", "AT": 1, "SIGNAL": int(signal.SIGSTOP)}
        environment = self.library.environment(place.path, place.log, **halt)
        process = place.start("-l", env=environment)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        self.assertTrue(os.WIFSTOPPED(os.waitpid(process.pid, os.WUNTRACED)[1]))
        return process

    def end(self, process, with_signal=signal.SIGCONT):
        """The status of the run, which goes on until the signal ends it."""
        process.send_signal(with_signal)
        process.send_signal(signal.SIGCONT)
        return finish(process)

    def test_name_shows_nothing(self):
        with Workplace(LARGE_SOURCE, OLD_CODE) as place:
            process = self.halted(place)
            self.assertIsNone(place.code())
            # What is written stands where a rename can bring it to its name.
            self.assertLessEqual(len(place.strays()), 1)
            self.assertEqual(set(os.listdir(place.path)), {"in.st", "sub"})
            self.assertEqual(self.end(process), 0)
            self.assertEqual(place.code(), undisturbed(LARGE_SOURCE)[0])
            self.assertEqual(place.strays(), [])

    def test_every_signal(self):
        for number in (signal.SIGKILL, *stops.POLITE_SIGNALS):
            with self.subTest(number), Workplace(LARGE_SOURCE, OLD_CODE) as place:
                status = self.end(self.halted(place), number)
                self.assertIn(status, stops.Stop(LARGE_SOURCE, 1, number).statuses())
                strays = 1 if number == signal.SIGKILL else 0
                self.assertEqual(place.faults(set(), strays), [])

    @unittest.skipIf(IS_SANITIZED, "a sanitizer handles the signal itself")
    def test_a_fault_elsewhere_is_no_want_of_stack(self):
        with Workplace(LARGE_SOURCE) as place:
            self.assertEqual(self.end(self.halted(place), signal.SIGSEGV), -signal.SIGSEGV)
            self.assertEqual(place.faults(set()), [])

    def neighbour_ends_first(self, place, with_signal=signal.SIGCONT):
        """The status of a halted run, and the code of another that began and ended meanwhile."""
        process = self.halted(place)
        (place.path / "other.st").write_bytes(SMALL_SOURCE)
        self.assertEqual(place.run(source="other.st"), 0)
        (place.path / "other.st").unlink()
        code = undisturbed(SMALL_SOURCE)[0]
        self.assertEqual(place.code(), code)
        return self.end(process, with_signal), code

    def test_neighbour_ends_first(self):
        with Workplace(LARGE_SOURCE) as place:
            status, _ = self.neighbour_ends_first(place)
            self.assertEqual(status, 0)
            self.assertEqual(place.faults({undisturbed(LARGE_SOURCE)[0]}), [])
            self.assertIsNotNone(place.code())

    def halted_without_its_file(self, place):
        """A halted run, and the name of its code file, which somebody has removed."""
        process = self.halted(place)
        [name] = place.strays()
        (place.outputs / name).unlink()
        return process, place.outputs / name

    def test_unfinished_code_is_removed_by_another(self):
        with Workplace(LARGE_SOURCE) as place:
            process, _ = self.halted_without_its_file(place)
            self.assertEqual(self.end(process), 1)
            self.assertEqual(place.faults(set()), [])

    def test_unfinished_code_is_replaced_by_another(self):
        with Workplace(LARGE_SOURCE) as place:
            process, name = self.halted_without_its_file(place)
            name.write_bytes(PRECIOUS)
            self.assertEqual(self.end(process), 1)
            self.assertEqual(read(name), PRECIOUS)
            self.assertEqual(place.faults(set(), strays=1), [])

    def test_error_leaves_the_code_of_a_neighbour(self):
        with Workplace(FAILING_SOURCE) as place:
            status, code = self.neighbour_ends_first(place)
            self.assertEqual((status, place.code(), place.strays()), (1, code, []))

    def test_signal_leaves_the_code_of_a_neighbour(self):
        for number in stops.POLITE_SIGNALS:
            with self.subTest(number), Workplace(LARGE_SOURCE) as place:
                _, code = self.neighbour_ends_first(place, number)
                self.assertEqual((place.code(), place.strays()), (code, []))


@needs_c_compiler
class StoppedAtEveryCall(unittest.TestCase):
    """cli.slow_races stops at every call in every way."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.library = preload_for(cls, "stop")

    def test_calls_are_seen(self):
        calls = stops.calls_of(self.library, SMALL_SOURCE)
        for name in ("in.st", *OUTPUT_NAMES):
            self.assertTrue([call for call in calls if call.endswith(" " + name)], name)
        for name in ("open", "write", "close"):
            self.assertTrue([call for call in calls if call.startswith(name)], name)

    def test_every_call(self):
        ends = (signal.SIGTERM, signal.SIGKILL)
        assert_none(self, *stops.check_every_call(self.library, SMALL_SOURCE, ends))

    def test_ignored_signal_stays_ignored(self):
        # A caller that has chosen so, as nohup does, wants the run to go on.
        calls = stops.calls_of(self.library, SMALL_SOURCE)
        for at in range(1, len(calls) + 1, 4):
            with self.subTest(at=at), Workplace() as place:
                environment = self.library.environment(
                    place.path, place.log, AT=at, SIGNAL=int(signal.SIGHUP)
                )
                ignore = lambda: signal.signal(signal.SIGHUP, signal.SIG_IGN)
                self.assertEqual(place.run(env=environment, preexec_fn=ignore), 0)
                self.assertEqual(place.code(), undisturbed(SMALL_SOURCE)[0])


if __name__ == "__main__":
    unittest.main()
