"""Runs the desk's program for its tests."""

import json
import re
import subprocess
import sys
import tempfile
import time
from pathlib import Path
from typing import NamedTuple

ROOT = Path(__file__).resolve().parents[2]

sys.path[:0] = [str(ROOT / "tests/cli"), str(ROOT / "tests/golden")]
from support import DESK, TIMEOUT_SECONDS  # noqa: E402

FINE, NOT_FINE, FAILED = 0, 1, 2

IS_SANITIZED = b"__asan_init" in DESK.read_bytes()
SANITIZED = "a sanitizer takes more stack, catches signals and needs processes of its own"

SCRIPT = b"""PROGRAM P
VAR
    a : INT;
END_VAR
    a := 1;
END_PROGRAM
"""


LINTS_PAGE = ROOT / "docs/manual/lints.md"


def lint_ids():
    """The identifiers of all lints: those that have an entry in the manual."""
    return re.findall(r"^<!-- reason: (.*) -->$", LINTS_PAGE.read_text("utf-8"), re.MULTILINE)


class Run(NamedTuple):
    status: int
    stdout: bytes
    stderr: bytes


# A build that measures coverage complains where it may not write its data.
PROFILING = re.compile(rb"^(profiling|libgcov profiling error):.*\n", re.MULTILINE)


def run_yxst(*arguments, **options):
    """One run; the options are those of subprocess.run."""
    options = {"stdin": subprocess.DEVNULL, "timeout": TIMEOUT_SECONDS, **options}
    process = subprocess.run(
        [DESK, *arguments], stdout=subprocess.PIPE, stderr=subprocess.PIPE, **options
    )
    return Run(process.returncode, process.stdout, PROFILING.sub(b"", process.stderr))


def facts_of(data):
    """What `yxst facts` tells about a script, and how it ends."""
    with tempfile.NamedTemporaryFile(suffix=".st") as file:
        file.write(data)
        file.flush()
        run = run_yxst("facts", file.name)
    if run.stderr or run.status not in (FINE, NOT_FINE):
        raise AssertionError(f"status {run.status}, {run.stderr!r}")
    return json.loads(run.stdout), run.status


def large_script(lines):
    statements = b"a := a + 1 * (2 - a);\n" * lines
    return SCRIPT.replace(b"    a := 1;\n", b"    a := 1;\n" + statements)


def child_of(pid):
    """The process that it has started, None as long as there is none."""
    children = Path(f"/proc/{pid}/task/{pid}/children").read_text().split()
    return int(children[0]) if children else None


def is_running(pid):
    try:
        state = Path(f"/proc/{pid}/stat").read_text().rpartition(") ")[2][0]
    except FileNotFoundError:
        return False
    return state not in "ZX"


def wait_for(condition):
    """What the condition gives as soon as it holds."""
    end = time.monotonic() + TIMEOUT_SECONDS
    while not (found := condition()):
        if time.monotonic() > end:
            raise AssertionError("waited in vain")
        time.sleep(0.001)
    return found
