"""What helps to write scripts, at every place of all golden cases and examples: folds lie in each
other, colours and selections are in order, and what may come next has the name that comes."""

import sys
import unittest

from support_desk import ROOT
from support_writing import ask

sys.path.insert(0, str(ROOT / "tests/golden"))
from cases import all_cases  # noqa: E402

STEP = 500  # between the places where it is asked what may come next


class Writing(unittest.TestCase):
    def test_golden_cases(self):
        tally = ask([case.data for case in all_cases()], STEP)
        self.assertGreater(tally.scripts, 1000)
        self.assertGreater(tally.compiled, 400)
        self.assertEqual(tally.asked, tally.places // STEP)
        self.assertGreater(tally.proposals, 10 * tally.asked)
        self.assertGreater(tally.uses, 4 * STEP)
        self.assertGreater(tally.signatures, 1000)
        self.assertGreater(tally.colours, 10 * tally.scripts)
        self.assertGreater(tally.folds, tally.scripts)
        self.assertGreater(tally.mends, 10)

    def test_examples(self):
        scripts = [path.read_bytes() for path in (ROOT / "examples").glob("*.st")]
        tally = ask(scripts, STEP)
        self.assertEqual(tally.compiled, len(scripts))


if __name__ == "__main__":
    unittest.main()
