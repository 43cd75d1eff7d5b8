"""Errors planted in a few programs: what is planted is reported, and hardly anything else."""

import unittest

import planted


class Planted(unittest.TestCase):
    def test_few_programs(self):
        tally = planted.measure(programs=10, seed=1)
        self.assertEqual(tally.planted, 10 * planted.ERRORS)
        self.assertGreaterEqual(tally.recall(), 0.95, tally)
        self.assertGreaterEqual(tally.precision(), 0.98, tally)


if __name__ == "__main__":
    unittest.main()
