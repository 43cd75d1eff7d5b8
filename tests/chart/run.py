#!/usr/bin/env python3
"""Tests the charts of `yxst run` in a headless Chromium, with axe-core for the accessibility.

    run.py [--work FOLDER]

The charts are made in the work folder, by default build/tests/chart, with the program that the
environment variable YXST names; npm installs the tools there, which are those of the manual's
tests. Ends with 77, "skipped", without Chromium, and where the tools are not installed yet and npm
reaches no registry.
"""

import argparse
import os
import shutil
import subprocess
import sys
from pathlib import Path

FOLDER = Path(__file__).resolve().parent
ROOT = FOLDER.parents[1]
TOOLS = ROOT / "tests/manual"
DESK = Path(os.environ.get("YXST", ROOT / "build" / "yxst")).resolve()

sys.path[:0] = [str(FOLDER.parent), str(TOOLS), str(ROOT / "scripts")]
import npm_tools  # noqa: E402
from run import find_browser  # noqa: E402

WAVES = """PROGRAM Waves
VAR_INPUT
    bias : REAL;
END_VAR
VAR_OUTPUT
    sine : REAL := 0.0;
    steps : INT := 0;
    large : DINT := 0;
    high : BOOL := FALSE;
    odd : BOOL := FALSE;
    root : LREAL := 0.0;
END_VAR
VAR
    count : DINT := 0;
    fixed : INT := 7;
END_VAR
    count := count + 1;
    sine := sin(count / 20.0) + bias;
    steps := count / 50;
    large := count * 1000;
    high := sine > 0.5;
    odd := (count / 30) MOD 2 = 1;
    root := sqrt(100.0 - count);
END_PROGRAM
"""

# A peak and a dip of one cycle each, in a run that is thinned.
PEAKS = """PROGRAM Peaks
VAR
    level : INT := 0;
    count : DINT := 0;
END_VAR
    count := count + 1;
    level := 0;
    IF count = 33333 THEN
        level := 500;
    ELSIF count = 77777 THEN
        level := -500;
    END_IF;
END_PROGRAM
"""

STOP = """PROGRAM Stop
VAR
    left : INT := 0;
END_VAR
    left := 10 / left;
END_PROGRAM
"""

CHARTS = {
    "waves": ("waves.st", "--cycles=400", "--set=bias=0.5"),
    "watched": ("waves.st", "--cycles=400", "--watch=fixed,sine"),
    "peaks": ("peaks.st", "--cycles=100000", "--watch=level"),
    "one": ("waves.st", "--cycles=1", "--watch=sine,high"),
    "none": ("stop.st",),  # its first cycle is the last
    "many": ("many.st", "--cycles=50"),
}
MANY = 24  # variables of a chart with many


def many():
    names = [f"value{number}" for number in range(MANY)]
    declared = "".join(f"    {name} : REAL := {at}.0;\n" for at, name in enumerate(names))
    changed = "".join(f"    {name} := {name} + {at % 5}.25;\n" for at, name in enumerate(names))
    return f"PROGRAM Many\nVAR\n{declared}END_VAR\n{changed}END_PROGRAM\n"


SCRIPTS = {"waves.st": WAVES, "peaks.st": PEAKS, "stop.st": STOP, "many.st": many()}


def write_charts(folder):
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    for name, text in SCRIPTS.items():
        (folder / name).write_text(text, encoding="utf-8")
    for name, (script, *options) in CHARTS.items():
        command = [DESK, "run", script, f"--chart={name}.html", "--quiet", *options]
        subprocess.run(command, cwd=folder, check=name != "none")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--work", type=Path, default=ROOT / "build" / "tests" / "chart")
    work = parser.parse_args().work.resolve()
    browser = find_browser()
    if browser is None:
        print("not installed: Chromium")
        sys.exit(npm_tools.SKIPPED)
    npm_tools.install(TOOLS, work)
    write_charts(work / "charts")
    test = shutil.copy(FOLDER / "browser.mjs", work)
    sys.exit(subprocess.run(["node", test, browser, work / "charts"], cwd=work).returncode)


if __name__ == "__main__":
    main()
