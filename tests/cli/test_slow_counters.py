"""More items than 32 bits can number."""

import re
import unittest

from limits import IS_SANITIZED
from preloads import needs_c_compiler, preload_for
from workplace import Workplace, read

# An EXIT at this depth takes an item for each loop that it leaves, and one to return.
DEPTH = 1995
EXITS = 2**31 // (DEPTH + 1) + 1

SOURCE = b"".join(
    [
        b"PROGRAM main VAR i:INT; END_VAR\n",
        b"FOR i:=1 TO 3 DO\n" * DEPTH,
        b"EXIT;" * EXITS,
        b"END_FOR;" * DEPTH,
        b"END_PROGRAM\n",
    ]
)
SECONDS = 600  # far above what it takes


@needs_c_compiler
@unittest.skipIf(IS_SANITIZED, "a sanitizer makes it too slow")
class ManyItems(unittest.TestCase):
    def test_numbers_of_the_listing_beyond_32_bits(self):
        # Some 60 GB of listing, of which the library keeps the end.
        library = preload_for(type(self), "sink")
        with Workplace(SOURCE) as place:
            environment = library.environment(place.path, place.log)
            process = place.start("-l", "-n", env=environment)
            self.addCleanup(process.kill)
            self.assertEqual(process.wait(SECONDS), 0)
            lines = read(place.outputs / "out.lst").splitlines()[1:]
            self.assertTrue(lines[-1].endswith(b"\tRET"), lines[-1])
            numbers = [int(re.match(rb"\d+(?=\t)|", line)[0] or -1) for line in lines]
            last = numbers[-1]
            self.assertGreater(last, 2**31)
            self.assertEqual(numbers, list(range(last - len(numbers) + 1, last + 1)))


if __name__ == "__main__":
    unittest.main()
