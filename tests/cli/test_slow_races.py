"""Races that are run, not staged: others plant links, swap the source, read, compile to the same
output or end the run, all at moments that nobody chooses. cli.atomic stages the worst of them."""

import contextlib
import itertools
import random
import signal
import subprocess
import sys
import threading
import time
import unittest

import stops
from limits import GIB, IS_SANITIZED, SOURCE_SIZE_LIMIT, available_memory
from preloads import needs_c_compiler, preload_for
from workplace import (
    LARGE_SOURCE,
    OLD_CODE,
    OUTPUT_NAMES,
    SIDE_OPTIONS,
    SMALL_SOURCE,
    Workplace,
    assert_none,
    finish,
    finish_shown,
    read,
    source_with_statements,
    undisturbed,
)

SECONDS = 10  # that one race goes on

PRECIOUS = b"precious, and nobody's output\n"

# Of several blocks, so that a run can be met in the middle of its writing.
OTHER_SOURCE = source_with_statements(20_000, value=2)
FAILING_SOURCE = LARGE_SOURCE.replace(b"END_PROGRAM", b"a = 1;")

# Puts links to its first argument at the others, again and again, where nothing stands.
PLANTER = """
import os, sys
target, *names = sys.argv[1:]
while True:
    for name in names:
        try:
            os.symlink(target, name)
        except FileExistsError:
            pass
"""

# Replaces whatever stands at the names, too.
REPLACER = """
import os, sys
target, *names = sys.argv[1:]
while True:
    for name in names:
        try:
            os.symlink(target, name + ".planted")
            os.rename(name + ".planted", name)
        except OSError:
            pass
"""

# Makes the first name lead to the second file and to a pipe in turn.
SWAPPER = """
import os, sys
name, source = sys.argv[1:]
while True:
    os.link(source, name + ".next")
    os.rename(name + ".next", name)
    os.mkfifo(name + ".next")
    os.rename(name + ".next", name)
"""


@contextlib.contextmanager
def rival(script, *arguments):
    """A process that does what the script says, without an end."""
    process = subprocess.Popen([sys.executable, "-c", script, *map(str, arguments)])
    try:
        yield process
        if process.poll() is not None:
            raise AssertionError("the rival has given up")
    finally:
        process.kill()
        process.wait()


def for_some_time(run):
    """The faults of all runs that there is time for, and their number."""
    end = time.monotonic() + SECONDS
    count = 0
    faults = []
    while time.monotonic() < end:
        count += 1
        faults += [found for found in (run(),) if found]
    return faults, count


# ---------------------------------------------------------------------------------------------
# Links and pipes
# ---------------------------------------------------------------------------------------------


class Rivals(unittest.TestCase):
    def race_against(self, script, target_name, check):
        """Runs while links to a file of the folder are planted at all outputs."""
        with Workplace() as place:
            target = place.path / target_name
            content = place.source if target == place.source_file else PRECIOUS
            target.write_bytes(content)

            def run():
                # Old outputs keep the links away until the compiler removes them.
                place.put_old_outputs()
                status = place.run(*SIDE_OPTIONS)
                faults = check(place, status)
                if read(target) != content:
                    faults.append(f"the target of the link now holds {read(target)[:20]}")
                    target.write_bytes(content)
                return faults

            with rival(script, target, *(place.outputs / name for name in OUTPUT_NAMES)):
                assert_none(self, *for_some_time(run))

    def check_outputs(self, place, status):
        """Where nobody replaces what exists, an output that was created stays what it is."""
        if status != 0:
            return [] if status == 1 else [f"status {status}"]
        if any((place.outputs / name).is_symlink() for name in OUTPUT_NAMES):
            return ["an output is a link"]
        same = (place.code(), place.side_texts()) == undisturbed(place.source, *SIDE_OPTIONS)
        return [] if same else ["an output is not whole"]

    def check_status(self, _, status):
        return [] if status in (0, 1) else [f"status {status}"]

    def test_links_to_a_file_are_planted(self):
        self.race_against(PLANTER, "precious", self.check_outputs)

    def test_links_to_the_source_are_planted(self):
        self.race_against(PLANTER, "in.st", self.check_outputs)

    def test_links_replace_outputs(self):
        self.race_against(REPLACER, "precious", self.check_status)

    def test_source_is_swapped_for_a_pipe(self):
        with Workplace() as place:
            original = place.path / "original"
            original.write_bytes(place.source)

            def run():
                status = place.run()
                whole = place.code() == (undisturbed(place.source)[0] if status == 0 else None)
                place.clear_outputs()
                return [] if status in (0, 1) and whole else [f"status {status}"]

            with rival(SWAPPER, place.source_file, original):
                assert_none(self, *for_some_time(run))


# ---------------------------------------------------------------------------------------------
# Two runs on one output
# ---------------------------------------------------------------------------------------------


class TwoRuns(unittest.TestCase):
    def race(self, sources, judge, *options):
        """Both runs at once, the second a little later, and now and then later still."""
        delays = itertools.cycle(step / 5000 for step in range(10))
        with Workplace(sources[0]) as place:
            (place.path / "other.st").write_bytes(sources[1])

            def run():
                first = place.start(*options)
                time.sleep(next(delays))
                second = place.start(*options, source="other.st")
                statuses = (finish(first), finish(second))
                faults = judge(place, statuses)
                faults += [name for name in place.strays() if name != "other.st"]
                place.clear_outputs()
                return faults and [f"statuses {statuses}", *faults]

            assert_none(self, *for_some_time(run))

    def judge(self, codes, place, statuses, needs_code):
        """The code is one of these, and there is one if it is needed."""
        code = place.code()
        if any(status not in (0, 1) for status in statuses):
            return ["a status that no run ends with"]
        if code is None:
            return ["no code after a success"] if needs_code else []
        return [] if code in codes else [f"{len(code)} bytes of no whole code"]

    def check_success(self, sources):
        codes = {undisturbed(source)[0] for source in sources}
        self.race(sources, lambda *ends: self.judge(codes, *ends, needs_code=0 in ends[1]))

    def test_both_succeed(self):
        self.check_success((SMALL_SOURCE, SMALL_SOURCE.replace(b"1", b"2")))

    def test_both_write_several_blocks(self):
        self.check_success((LARGE_SOURCE, OTHER_SOURCE))

    def test_both_write_side_files(self):
        # Who comes later may find the name of a side file taken, when the old code is gone.
        codes = {undisturbed(source)[0] for source in (LARGE_SOURCE, OTHER_SOURCE)}

        def judge(place, statuses):
            return self.judge(codes, place, statuses, statuses == (0, 0))

        self.race((LARGE_SOURCE, OTHER_SOURCE), judge, *SIDE_OPTIONS)

    def test_one_fails(self):
        # It may have removed the code of the other as an old one, but nothing after its error.
        codes = {undisturbed(LARGE_SOURCE)[0]}

        def judge(place, statuses):
            faults = self.judge(codes, place, statuses, False)
            return faults + (["success of the wrong source"] if statuses[1] == 0 else [])

        self.race((LARGE_SOURCE, FAILING_SOURCE), judge)


# ---------------------------------------------------------------------------------------------
# Somebody looks
# ---------------------------------------------------------------------------------------------


class Watcher:
    """Reads the file again and again and keeps what it sees of no whole code."""

    def __init__(self, path, whole):
        self.path = path
        self.whole = whole
        self.looks = 0
        self.faults = []
        self.is_done = False
        self.thread = threading.Thread(target=self.look)

    def __enter__(self):
        self.thread.start()
        return self

    def __exit__(self, *_):
        self.is_done = True
        self.thread.join()

    def look(self):
        while not self.is_done:
            self.looks += 1
            seen = read(self.path)
            if seen is not None and seen not in self.whole:
                self.faults.append(f"{len(seen)} bytes of no whole code")


class Watched(unittest.TestCase):
    def watch(self, source, expected_status):
        with Workplace(source) as place:

            def run():
                place.put_code(OLD_CODE)
                status = place.run()
                return [] if status == expected_status else [f"status {status}"]

            with Watcher(place.code_file, {OLD_CODE, undisturbed(source)[0]}) as watcher:
                faults, _ = for_some_time(run)
            self.assertEqual(faults, [])
            assert_none(self, watcher.faults, watcher.looks)

    def test_name_shows_whole_code_or_none(self):
        self.watch(LARGE_SOURCE, 0)

    def test_failing_run_shows_nothing_new(self):
        self.watch(FAILING_SOURCE, 1)


# ---------------------------------------------------------------------------------------------
# The run is ended
# ---------------------------------------------------------------------------------------------


class Ended(unittest.TestCase):
    """At any moment, from outside."""

    def ended(self, place, number, delay):
        place.clear_outputs()
        place.code_file.write_bytes(OLD_CODE)
        process = place.start(*SIDE_OPTIONS)
        time.sleep(delay)
        process.send_signal(number)
        status = finish(process)
        whole = {OLD_CODE, undisturbed(LARGE_SOURCE)[0]}
        faults = place.faults(whole, strays=1 if number == signal.SIGKILL else 0)
        if status not in (0, 1, -number):
            faults.append(f"status {status}")
        if status == 0 and place.code() != undisturbed(LARGE_SOURCE)[0]:
            faults.append("no code after a success")
        return faults

    def test_signals_from_outside(self):
        chance = random.Random(1)
        numbers = itertools.cycle((*stops.POLITE_SIGNALS, signal.SIGKILL))
        with Workplace(LARGE_SOURCE) as place:
            longest = self.duration(place)
            assert_none(
                self,
                *for_some_time(
                    lambda: self.ended(place, next(numbers), chance.uniform(0, longest))
                ),
            )

    def duration(self, place):
        begin = time.monotonic()
        place.run(*SIDE_OPTIONS)
        return time.monotonic() - begin


@needs_c_compiler
class StoppedAtEveryCall(unittest.TestCase):
    """At each call that has to do with a file, before it and after it."""

    ENDS = (*stops.POLITE_SIGNALS, signal.SIGKILL, None)

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.library = preload_for(cls, "stop")

    def check(self, source):
        moments = (False, True)
        old_codes = (None, OLD_CODE)
        found = stops.check_every_call(self.library, source, self.ENDS, moments, old_codes)
        assert_none(self, *found)

    def test_small_program(self):
        self.check(SMALL_SOURCE)

    def test_program_of_several_blocks(self):
        self.check(LARGE_SOURCE)

    def test_program_with_an_error(self):
        self.check(SMALL_SOURCE.replace(b"END_PROGRAM", b"a = 1;"))


# ---------------------------------------------------------------------------------------------
# Sources without an end
# ---------------------------------------------------------------------------------------------


@unittest.skipIf(IS_SANITIZED, "a sanitizer multiplies the memory")
@unittest.skipIf(available_memory() < 6 * GIB, "needs 6 GiB of memory")
class Endless(unittest.TestCase):
    SECONDS = 120  # for the reading of a source of the largest size

    def assert_refused(self, place, **more):
        process = place.start("-s", stdout=subprocess.PIPE, **more)
        status, shown = finish_shown(process, self.SECONDS)
        self.assertEqual(status, 1, shown[-300:])
        self.assertIn(b"File open failed for input file", shown)
        self.assertEqual(place.faults({OLD_CODE}), [])

    def test_file_of_the_system(self):
        # It tells no size; read whole it would give a number for each page of memory there can be.
        with Workplace(old_code=OLD_CODE) as place:
            self.assert_refused(place, source="/proc/self/pagemap")

    @needs_c_compiler
    def test_no_more_is_read_than_is_needed_to_refuse(self):
        library = preload_for(type(self), "endless")
        with Workplace(old_code=OLD_CODE) as place:
            environment = library.environment(place.path, place.log)
            self.assert_refused(place, env=environment)
            given = int(place.log_lines()[-1])
            self.assertGreater(given, 0, "the library was not asked")
            self.assertLessEqual(given, SOURCE_SIZE_LIMIT + 1)


if __name__ == "__main__":
    unittest.main()
