"""A run that wants memory says so and leaves no code; cli.slow_memory_want tries every allocation
of more programs."""

import resource
import signal
import subprocess
import unittest

import want
from limits import IS_MEASURE, IS_SANITIZED, KIB, MIB, STACK_SIZE, limit_stack
from preloads import needs_c_compiler, preload_for
from workplace import (
    SMALL_SOURCE,
    TIMEOUT_SECONDS,
    Workplace,
    assert_none,
    finish_shown,
)


def limit_space(limit):
    limit_stack(STACK_SIZE)
    resource.setrlimit(resource.RLIMIT_AS, limit)


@needs_c_compiler
@unittest.skipUnless(IS_MEASURE, "this build asks for memory of its own")
class FailingAllocation(unittest.TestCase):
    STEP = 11

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.library = preload_for(cls, "want")

    def test_some_allocations(self):
        moments = want.moments_of(self.library, SMALL_SOURCE)
        numbers = range(
            moments["main"].allocations + 1, moments["end"].allocations + 1, self.STEP
        )
        self.assertGreater(len(numbers), 10, "the library was not asked")
        wants = want.failing_allocations(SMALL_SOURCE, numbers)
        assert_none(self, *want.check(self.library, wants))


@unittest.skipIf(IS_SANITIZED, "a sanitizer does not work with limited memory")
class SmallAddressSpace(unittest.TestCase):
    """The stack grows when it is used, and finds no room."""

    LEVELS = 4400
    STEP = 256 * KIB

    def test_stack(self):
        parentheses = b"(" * self.LEVELS + b"1" + b")" * self.LEVELS
        source = SMALL_SOURCE.replace(b"a := 1", b"a := " + parentheses)
        ends = set()
        size = 48 * MIB
        while 0 not in ends:
            size += self.STEP
            with Workplace(source) as place:
                limit = (size, size)
                pipes = {"stdout": subprocess.PIPE, "stderr": subprocess.DEVNULL}
                process = place.start(preexec_fn=lambda: limit_space(limit), **pipes)
                status, shown = finish_shown(process, TIMEOUT_SECONDS)
                ends.add(status)
                self.assertEqual(place.strays(), [])
                if status == 1:
                    self.assertEqual(shown, b";Out of memory\n")
        self.assertIn(1, ends)
        self.assertNotIn(-signal.SIGSEGV, ends)


if __name__ == "__main__":
    unittest.main()
