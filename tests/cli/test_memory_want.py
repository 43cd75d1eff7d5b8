"""A run that wants memory says so and leaves no code; cli.slow_memory_want tries every allocation
of more programs."""

import unittest

import want
from limits import IS_SANITIZED
from preloads import needs_c_compiler, preload_for
from workplace import SMALL_SOURCE, assert_none


@needs_c_compiler
@unittest.skipIf(IS_SANITIZED, "a sanitizer has an allocator of its own")
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


if __name__ == "__main__":
    unittest.main()
