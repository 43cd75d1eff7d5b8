"""The sample reports in each format, for the tests of how they are shown.

The program is the one that the environment variable YXST_REPORT_SAMPLE names, else that of build/.
"""

import json
import os
import subprocess
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
PROGRAM = Path(
    os.environ.get("YXST_REPORT_SAMPLE", ROOT / "build" / "tests" / "yxst_report_sample")
)
TIMEOUT_SECONDS = 60


def shown(report_format, *options):
    """What the program writes; a failure of it is an error."""
    command = [PROGRAM, report_format, *options]
    return subprocess.run(
        command, capture_output=True, check=True, timeout=TIMEOUT_SECONDS
    ).stdout.decode("utf-8")


def diagnostics():
    """The reports as the objects of the JSON format."""
    return json.loads(shown("json"))
