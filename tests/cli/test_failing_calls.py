"""Calls of the system that fail where they hardly ever do: the run ends well or with a message,
and nobody's file is lost."""

import errno
import os
import subprocess
import unittest

from preloads import needs_c_compiler, preload_for
from workplace import (
    OLD_CODE,
    OUTPUT_NAMES,
    SIDE_OPTIONS,
    Workplace,
    finish_shown,
    read,
    undisturbed,
)

CODE_FAILED = b";File open failed for output file\n"
OUT_OF_MEMORY = b";Out of memory\n"

OWN_NAME = ".yxstcmp-"  # how the names begin that the compiler gives for a moment


@needs_c_compiler
class FailingCallsTestCase(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.library = preload_for(cls, "fail")

    def run_failing(self, place, *failures, **more):
        """Each failure is a function, a part of the path, which of these calls, counted from 1 or
        0 for all, and the error; each must be met."""
        calls = [":".join(map(str, failure)) for failure in failures]
        environment = self.library.environment(place.path, place.log, CALLS=" ".join(calls))
        process = place.start(*SIDE_OPTIONS, env=environment, stdout=subprocess.PIPE, **more)
        status, shown = finish_shown(process)
        self.assertEqual(set(place.log_lines()), set(calls))
        return status, shown

    def assert_whole(self, place, status):
        self.assertEqual(status, 0)
        expected = undisturbed(place.source, *SIDE_OPTIONS)
        self.assertEqual((place.code(), place.side_texts()), expected)
        self.assertEqual(place.faults({place.code()}), [])

    def assert_old_outputs(self, place, names):
        for name in names:
            self.assertEqual(read(place.outputs / name), b"old " + name.encode(), name)


class Source(FailingCallsTestCase):
    """Opening it without waiting is refused, as for a file that a server of files holds."""

    HELD = ("open", "in.st", 1, errno.EWOULDBLOCK)

    def assert_not_read(self, place, *failures):
        self.assertEqual(self.run_failing(place, *failures), (1, b""))
        self.assertIsNone(place.code())

    def test_pipe_is_not_waited_for(self):
        with Workplace() as place:
            place.source_file.unlink()
            os.mkfifo(place.source_file)
            self.assert_not_read(place, self.HELD)

    def test_source_is_gone_after_the_refusal(self):
        with Workplace() as place:
            self.assert_not_read(place, self.HELD, ("open", "in.st", 2, errno.ENOENT))
            self.assertEqual(place.faults(set()), [])

    def test_source_is_read_after_the_refusal(self):
        with Workplace() as place:
            status, _ = self.run_failing(place, self.HELD)
            self.assert_whole(place, status)


class Probe(FailingCallsTestCase):
    """Whether a folder takes files is tried before anything is removed."""

    def assert_ends(self, message, error):
        with Workplace() as place:
            place.put_old_outputs()
            end = self.run_failing(place, ("fopen", OWN_NAME, 1, error))
            self.assertEqual(end, (1, message))
            self.assert_old_outputs(place, OUTPUT_NAMES)
            self.assertEqual(place.strays(), [])

    def test_folder_takes_no_files(self):
        self.assert_ends(CODE_FAILED, errno.EDQUOT)

    def test_want_of_memory_says_nothing_about_the_folder(self):
        self.assert_ends(OUT_OF_MEMORY, errno.ENOMEM)


class OldOutput(FailingCallsTestCase):
    """It is put aside, removed, and put back if that fails."""

    PUT_ASIDE = ("rename", "/out", 1)
    # Before, for each output, the file is removed that tries its folder.
    REMOVE = ("remove", OWN_NAME, len(OUTPUT_NAMES) + 1)
    PUT_BACK = ("renameat2", OWN_NAME, 1)

    def refused(self, place, *failures):
        place.put_old_outputs()
        self.assertEqual(self.run_failing(place, *failures), (1, CODE_FAILED))

    def assert_kept(self, *failures):
        with Workplace() as place:
            self.refused(place, *failures)
            self.assert_old_outputs(place, OUTPUT_NAMES)
            self.assertEqual(place.faults({b"old out"}), [])

    def test_another_run_has_taken_it_away(self):
        with Workplace(old_code=OLD_CODE) as place:
            status, _ = self.run_failing(place, (*self.PUT_ASIDE, errno.ENOENT))
            self.assert_whole(place, status)

    def test_it_cannot_be_put_aside(self):
        self.assert_kept((*self.PUT_ASIDE, errno.EBUSY))

    def test_it_cannot_be_removed(self):
        self.assert_kept((*self.REMOVE, errno.EBUSY))

    def test_file_system_has_no_safe_way_to_put_it_back(self):
        self.assert_kept((*self.REMOVE, errno.EBUSY), (*self.PUT_BACK, errno.EINVAL))

    def test_another_has_taken_the_name(self):
        with Workplace() as place:
            self.refused(place, (*self.REMOVE, errno.EBUSY), (*self.PUT_BACK, errno.EEXIST))
            self.assert_old_outputs(place, OUTPUT_NAMES[1:])
            [aside] = place.strays()
            self.assertEqual(read(place.outputs / aside), b"old out")


class StandardStreams(FailingCallsTestCase):
    def test_closed_stream_without_a_null_device(self):
        with Workplace() as place:
            status, _ = self.run_failing(
                place, ("open", "/dev/null", 0, errno.ENOENT), preexec_fn=lambda: os.close(0)
            )
            self.assert_whole(place, status)


if __name__ == "__main__":
    unittest.main()
