"""A run that wants memory says so and leaves no code, wherever memory ends."""

import unittest

import want
from limits import IS_SANITIZED, KIB
from preloads import needs_c_compiler, preload_for
from support import ROOT
from workplace import SMALL_SOURCE, assert_none

# Most of what it takes are many small pieces.
GROWING_SOURCE = b"".join(
    [
        b"PROGRAM main\nVAR\n",
        *(b"name_of_variable_%d : INT := 1;\n" % i for i in range(30_000)),
        b"END_VAR\n",
        *(b"name_of_variable_%d := 2;\n" % i for i in range(30_000)),
        b"END_PROGRAM\n",
    ]
)


@needs_c_compiler
@unittest.skipIf(IS_SANITIZED, "a sanitizer has an allocator of its own")
class Memory(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.library = preload_for(cls, "want")

    def check_every_allocation(self, source):
        """Of the compiler itself, from main on."""
        moments = want.moments_of(self.library, source)
        first, last = moments["main"].allocations + 1, moments["end"].allocations
        self.assertGreater(last - first, 100, "the library was not asked")
        wants = want.failing_allocations(source, range(first, last + 1))
        assert_none(self, *want.check(self.library, wants))

    def test_every_allocation_before_main(self):
        # Some of the libraries hang in their own messages; that is theirs too.
        count = want.moments_of(self.library, SMALL_SOURCE)["main"].allocations
        wants = want.failing_allocations(SMALL_SOURCE, range(1, count + 1))
        wants = [each._replace(seconds=2) for each in wants]
        assert_none(self, *want.check(self.library, wants))

    def test_every_allocation_of_a_small_program(self):
        self.check_every_allocation(SMALL_SOURCE)

    def test_every_allocation_of_a_program_with_an_error(self):
        self.check_every_allocation(SMALL_SOURCE.replace(b"END_PROGRAM", b"a = 1;"))

    def test_every_allocation_of_an_example(self):
        self.check_every_allocation((ROOT / "examples/mixing_tank.st").read_bytes())

    def test_address_space(self):
        # From less than the libraries take to what the run does with.
        moments = want.moments_of(self.library, GROWING_SOURCE)
        least, most = moments["main"].kilobytes, moments["end"].kilobytes
        sizes = [least // 2, *(least + (most - least) * step // 10 for step in (1, 3, 6, 9, 12))]
        wants = [want.Want(GROWING_SOURCE, address_space=size * KIB) for size in sizes]
        assert_none(self, *want.check(self.library, wants))


if __name__ == "__main__":
    unittest.main()
