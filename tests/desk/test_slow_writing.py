"""What helps to write scripts, at many places of scripts from which something is missing or in
which something is twice; and what may come next at each 23rd place of the golden cases."""

import random
import sys
import unittest

from support_desk import ROOT
from support_writing import ask

sys.path.insert(0, str(ROOT / "tests/golden"))
from cases import all_cases  # noqa: E402


def damaged(script, choices):
    """The script cut off, and without some characters."""
    begin = choices.randrange(len(script))
    end = begin + choices.randrange(1, 20)
    return [script[:begin], script[:begin] + script[end:]]


class SlowWriting(unittest.TestCase):
    def test_many_places(self):
        tally = ask([case.data for case in all_cases()], 23)
        self.assertGreater(tally.asked, 4000)
        self.assertGreater(tally.uses, 100 * 23)

    def test_damaged_scripts(self):
        choices = random.Random(1)
        scripts = [case.data for case in all_cases() if case.data]
        tally = ask([each for script in scripts for each in damaged(script, choices)], 300)
        self.assertGreater(tally.scripts, 2000)
        self.assertGreater(tally.proposals, 1000)

    def test_corpus_of_the_fuzzer(self):
        corpus = sorted((ROOT / "tests/fuzz/corpus").iterdir())
        tally = ask([path.read_bytes() for path in corpus], 1000)
        self.assertEqual(tally.scripts, len(corpus))


if __name__ == "__main__":
    unittest.main()
