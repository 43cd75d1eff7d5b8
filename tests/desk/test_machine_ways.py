"""The machine gives the same by register code and an item at a time: the code of all golden cases
and examples, and of generated programs, is executed both ways by several choices."""

import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from support_desk import ROOT

sys.path[:0] = [str(ROOT / "tests/golden"), str(ROOT / "tests/machine")]
from cases import all_cases  # noqa: E402
from support import BINARY  # noqa: E402

COMPARE = os.environ["YXST_MACHINE_COMPARE"]
GENERATED = 50  # programs


def compiled(scripts, folder):
    """The code files of the scripts that compile; the folder is theirs alone."""
    for number, script in enumerate(scripts):
        source = folder / f"{number}.st"
        source.write_bytes(script)
        call = [BINARY, source, folder / f"{number}.yx"]
        subprocess.run(call, stdout=subprocess.DEVNULL, check=False)
    return sorted(folder.glob("*.yx"))


def compare(scripts):
    """How many of the programs were executed both ways, and how many by register code alone."""
    with tempfile.TemporaryDirectory() as folder:
        files = compiled(scripts, Path(folder))
        run = subprocess.run([COMPARE, *files], capture_output=True, check=False, text=True)
    if run.returncode:
        raise AssertionError(run.stdout + run.stderr)
    programs, lowered = re.search(r"^(\d+) programs.* (\d+) programs by", run.stdout, re.M).groups()
    return int(programs), int(lowered)


class MachineWays(unittest.TestCase):
    def test_golden_cases_and_examples(self):
        scripts = [case.data for case in all_cases()]
        scripts += [path.read_bytes() for path in (ROOT / "examples").glob("*.st")]
        programs, lowered = compare(scripts)
        self.assertGreater(programs, 400)
        self.assertGreater(lowered, 0.85 * programs)

    def test_generated_programs(self):
        from generate import generate

        scripts = [generate(seed).source.encode() for seed in range(1, GENERATED + 1)]
        programs, lowered = compare(scripts)
        self.assertEqual(programs, GENERATED)
        self.assertGreater(lowered, 0.85 * programs)


if __name__ == "__main__":
    unittest.main()
