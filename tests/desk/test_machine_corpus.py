"""Replays the inputs that the fuzzer of the machine has kept, and its seeds, and judges each run
as the fuzzer does."""

import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from support_desk import ROOT

sys.path.insert(0, str(ROOT / "tests/fuzz/machine"))
from seeds import write_seeds  # noqa: E402

PROGRAM = os.environ["YXST_FUZZ_MACHINE"]
CORPUS = ROOT / "tests/fuzz/machine_corpus"
FIGURES = re.compile(
    r"(\d+) inputs, (\d+) read, (\d+) sound, (\d+) by register code, (\d+) tables\n"
)


def judge(paths):
    """How many inputs there were, and of these how many were read and so on."""
    run = subprocess.run([PROGRAM, *paths], capture_output=True, check=False, text=True)
    if run.returncode:
        raise AssertionError(f"status {run.returncode}: {run.stderr[-2000:]}")
    return [int(figure) for figure in FIGURES.fullmatch(run.stdout).groups()]


class Corpus(unittest.TestCase):
    def test_every_input(self):
        paths = sorted(CORPUS.iterdir())
        inputs, *figures = judge(paths)
        self.assertEqual(inputs, len(paths))
        self.assertTrue(all(figures), figures)

    def test_seeds(self):
        with tempfile.TemporaryDirectory() as folder:
            write_seeds(Path(folder, "seeds"))
            inputs, read, sound, by_registers, tables = judge(Path(folder, "seeds").iterdir())
        self.assertGreater(inputs, 400)
        self.assertEqual(read, inputs)
        self.assertGreater(sound, 0.98 * inputs)
        self.assertGreater(by_registers, 0.5 * inputs)
        self.assertGreater(tables, 50)


if __name__ == "__main__":
    unittest.main()
