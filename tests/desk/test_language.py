"""What an editor asks about names, literals, operators and code, at every place of all golden
cases and examples: names lead to their declarations, and some of them get another name."""

import sys
import unittest

from support_desk import ROOT
from support_language import ask

sys.path.insert(0, str(ROOT / "tests/golden"))
from cases import all_cases  # noqa: E402

STEP = 10  # between the names that get another


class Language(unittest.TestCase):
    def test_golden_cases(self):
        tally = ask([case.data for case in all_cases()], STEP)
        self.assertGreater(tally.scripts, 1000)
        self.assertGreater(tally.compiled, 400)
        self.assertGreater(tally.hovers, 0.4 * tally.places)
        self.assertGreater(tally.uses, 2000)
        self.assertEqual(tally.renamed, tally.names // STEP)

    def test_examples(self):
        scripts = [path.read_bytes() for path in (ROOT / "examples").glob("*.st")]
        tally = ask(scripts, STEP)
        self.assertEqual(tally.compiled, len(scripts))
        self.assertEqual(tally.renamed, tally.names // STEP)


if __name__ == "__main__":
    unittest.main()
