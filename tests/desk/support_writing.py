"""Asks all that helps to write scripts, at every place of them.

The program is the one that the environment variable YXST_WRITING_CHECK names.
"""

import os
import re
import subprocess
import tempfile
from pathlib import Path
from typing import NamedTuple

CHECK = os.environ["YXST_WRITING_CHECK"]


class Tally(NamedTuple):
    scripts: int
    compiled: int
    places: int
    asked: int
    proposals: int
    uses: int
    signatures: int
    colours: int
    folds: int
    mends: int
    faults: int


def ask(scripts, step):
    """What the program counts over texts of scripts; what cannot be right is an error."""
    with tempfile.TemporaryDirectory() as folder:
        files = [Path(folder) / f"{number:05}.st" for number in range(len(scripts))]
        for file, script in zip(files, scripts):
            file.write_bytes(script)
        call = [CHECK, f"--propose={step}", *files]
        run = subprocess.run(call, capture_output=True, check=False, text=True)
    if run.returncode:
        raise AssertionError(f"status {run.returncode}: {run.stdout[-3000:]}{run.stderr}")
    return Tally(*map(int, re.findall(r"(\d+) [a-z]+", run.stdout)))
