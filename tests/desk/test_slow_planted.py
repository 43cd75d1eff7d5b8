"""Errors planted in many programs: what is planted is reported, and hardly anything else."""

import unittest

import planted


class Planted(unittest.TestCase):
    def test_many_programs(self):
        tally = planted.measure(programs=150, seed=1001)
        self.assertEqual(tally.planted, 150 * planted.ERRORS)
        self.assertEqual(set(tally.kinds), {plant.__name__ for plant in planted.PLANTS})
        self.assertGreaterEqual(tally.recall(), 0.95, tally)
        self.assertGreaterEqual(tally.precision(), 0.98, tally)


if __name__ == "__main__":
    unittest.main()
