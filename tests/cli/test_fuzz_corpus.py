"""Replays the sources that the fuzzer has kept, and judges each run as the fuzzer does."""

import sys
import unittest

from support import ROOT, compile_source, side_by_side

sys.path.insert(0, str(ROOT / "tests/fuzz"))
from oracle import problems  # noqa: E402

CORPUS = ROOT / "tests/fuzz/corpus"
OPTION_SETS = [["-l", "-m", "-i", "-n", "-r", "-e"], ["-s", "-m"]]


class Oracle(unittest.TestCase):
    """The judge itself: what it lets through and what not."""

    SOURCE = b"PROGRAM p VAR a : INT; END_VAR L1: a := 1; END_PROGRAM"
    CODE = b"PROG: p VAR: a V INT 0 MAIN: L1: MOV 1 #A0 MOV #A0 @a RET "

    def test_sound_runs(self):
        self.assertEqual(problems(0, self.SOURCE, self.CODE), [])
        self.assertEqual(problems(1, self.SOURCE, None), [])

    def test_unsound_runs(self):
        for status, code in [
            (2, None),
            (-6, None),
            (0, None),
            (1, self.CODE),
            (0, self.CODE.replace(b"@a", b"@b")),
            (0, self.CODE[:-5]),
        ]:
            with self.subTest(status=status, code=code):
                self.assertNotEqual(problems(status, self.SOURCE, code), [])


class Corpus(unittest.TestCase):
    def test_every_source(self):
        sources = sorted(CORPUS.iterdir())
        self.assertGreater(len(sources), 0)
        for options in OPTION_SETS:
            results = side_by_side(lambda path: self.judge(path, options), sources)
            for path, found in zip(sources, results):
                with self.subTest(source=path.name, options=options):
                    self.assertEqual(found, [])

    def judge(self, path, options):
        source = path.read_bytes()
        result = compile_source(source, *options)
        return problems(result.status, source, result.files.get("out"))


if __name__ == "__main__":
    unittest.main()
