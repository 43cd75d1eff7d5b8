"""Reports in each format, for the tests of how they are shown: those of sample diagnostics, and
those that `yxst check` makes of some scripts.

The programs are those that the environment variables YXST_REPORT_SAMPLE and YXST name, else those
of build/.
"""

import json
import os
import subprocess
from pathlib import Path

from support_desk import FAILED, ROOT, TIMEOUT_SECONDS, run_yxst

HERE = Path(__file__).resolve().parent
PROGRAM = Path(
    os.environ.get("YXST_REPORT_SAMPLE", ROOT / "build" / "tests" / "yxst_report_sample")
)


def shown_of_samples(report_format, *options):
    """What the program writes; a failure of it is an error."""
    command = [PROGRAM, report_format, *options]
    return subprocess.run(
        command, capture_output=True, check=True, timeout=TIMEOUT_SECONDS
    ).stdout.decode("utf-8")


OPTIONS = {"colors": "--color=always", "quiet": "--quiet"}


def shown_of_scripts(report_format, *options):
    """What check writes about the scripts beside its reports."""
    chosen = [OPTIONS[option] for option in options]
    run = run_yxst("check", f"--format={report_format}", *chosen, "scripts", cwd=HERE / "check")
    if run.stderr or run.status == FAILED:
        raise AssertionError(f"status {run.status}, {run.stderr!r}")
    return run.stdout.decode("utf-8")


# By the folder that holds what is expected.
REPORTS = {"reports": shown_of_samples, "check": shown_of_scripts}


def diagnostics(shown):
    """The reports as the objects of the JSON format."""
    return json.loads(shown("json"))
