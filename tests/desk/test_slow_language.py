"""Every name of all golden cases gets another name, which leaves the code the same but for it; and
an editor asks about scripts from which something is missing or in which something is twice."""

import random
import sys
import unittest

from support_desk import ROOT
from support_language import ask

sys.path.insert(0, str(ROOT / "tests/golden"))
from cases import all_cases  # noqa: E402


def damaged(script, choices):
    """The script cut off, without some characters and with some twice."""
    places = sorted(choices.randrange(len(script)) for _ in range(2))
    end = places[0] + choices.randrange(1, 20)
    return [
        script[: places[0]],
        script[: places[0]] + script[end:],
        script[: places[0]] + script[places[1] :][:15] + script[places[0] :],
    ]


class SlowLanguage(unittest.TestCase):
    def test_every_name(self):
        tally = ask([case.data for case in all_cases()], 1)
        self.assertGreater(tally.names, 1500)
        self.assertEqual(tally.renamed, tally.names)

    def test_damaged_scripts(self):
        choices = random.Random(1)
        scripts = [case.data for case in all_cases() if case.data]
        scripts += [path.read_bytes() for path in (ROOT / "examples").glob("*.st")]
        tally = ask([each for script in scripts for each in damaged(script, choices)], 1)
        self.assertGreater(tally.scripts, 3000)
        self.assertGreater(tally.hovers, 0.2 * tally.places)

    def test_corpus_of_the_fuzzer(self):
        corpus = sorted((ROOT / "tests/fuzz/corpus").iterdir())
        tally = ask([path.read_bytes() for path in corpus], 1)
        self.assertEqual(tally.scripts, len(corpus))


if __name__ == "__main__":
    unittest.main()
