"""Runs the desk's program for its tests."""

import json
import subprocess
import sys
import tempfile
from pathlib import Path
from typing import NamedTuple

ROOT = Path(__file__).resolve().parents[2]

sys.path[:0] = [str(ROOT / "tests/cli"), str(ROOT / "tests/golden")]
from support import DESK, TIMEOUT_SECONDS  # noqa: E402

FINE, NOT_FINE, FAILED = 0, 1, 2


class Run(NamedTuple):
    status: int
    stdout: bytes
    stderr: bytes


def run_yxst(*arguments, **options):
    """One run; the options are those of subprocess.run."""
    options = {"stdin": subprocess.DEVNULL, "timeout": TIMEOUT_SECONDS, **options}
    process = subprocess.run(
        [DESK, *arguments], stdout=subprocess.PIPE, stderr=subprocess.PIPE, **options
    )
    return Run(process.returncode, process.stdout, process.stderr)


def facts_of(data):
    """What `yxst facts` tells about a script, and how it ends."""
    with tempfile.NamedTemporaryFile(suffix=".st") as file:
        file.write(data)
        file.flush()
        run = run_yxst("facts", file.name)
    if run.stderr or run.status not in (FINE, NOT_FINE):
        raise AssertionError(f"status {run.status}, {run.stderr!r}")
    return json.loads(run.stdout), run.status
