#!/usr/bin/env python3
"""Compares what the compiler gives for the cases of some areas with the expected files.

A case is AREA/CASE.st with files beside it that say what is expected:

    CASE.lst    the listing; needed whenever one is written
    CASE.out    standard output; without this file it must be empty
    CASE.code   the code file, CASE.res and CASE.err likewise; compared if present
    CASE.args   the options, on one line; without it those of AREA/default.args, or "-l -m"

An area without .st files of its own takes them from the folder given with --sources.
"""

import argparse
import difflib
import os
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

# Expected file -> file the compiler leaves behind. Standard output comes by itself.
OUTPUTS = {".code": "out", ".lst": "out.lst", ".res": "out.res", ".err": "out.err"}
SIDE_FILE_OPTIONS = {"-l": "out.lst", "-r": "out.res", "-e": "out.err"}
DEFAULT_OPTIONS = "-l -m"
TIMEOUT_SECONDS = 60


class Case:
    def __init__(self, area, source):
        self.area = area
        self.source = source
        self.name = f"{area.name}/{source.stem}"

    def expected_path(self, suffix):
        return self.area / (self.source.stem + suffix)

    def expected(self, suffix):
        return read(self.expected_path(suffix))

    def options(self):
        for path in (self.expected_path(".args"), self.area / "default.args"):
            if path.exists():
                return shlex.split(path.read_text())
        return shlex.split(DEFAULT_OPTIONS)

    def should_succeed(self):
        report = (self.expected(".lst") or b"") + (self.expected(".res") or b"")
        if b"Build successful." in report:
            return True
        if b";Error: " in report:
            return False
        return self.expected(".code") is not None


class Run:
    """One run of the compiler: its exit status, its output and the files it left behind."""

    def __init__(self, compiler, case):
        with tempfile.TemporaryDirectory() as folder:
            source = Path(folder, case.source.name)
            shutil.copyfile(case.source, source)
            process = subprocess.run(
                [compiler, source.name, "out", *case.options()],
                cwd=folder,
                stdin=subprocess.DEVNULL,
                capture_output=True,
                timeout=TIMEOUT_SECONDS,
            )
            self.status = process.returncode
            self.stderr = process.stderr
            self.files = {
                path.name: path.read_bytes() if path.is_file() else b""
                for path in Path(folder).iterdir()
                if path != source
            }
        self.results = {suffix: self.files.get(name) for suffix, name in OUTPUTS.items()}
        self.results[".out"] = process.stdout


def read(path):
    return path.read_bytes() if path.exists() else None


def mask_time(data):
    return re.sub(rb"Elapsed time: \d+ ms\.", b"Elapsed time: N ms.", data)


def visible(data, separator):
    """The pieces of data, each up to a separator, quoted so that every byte can be seen."""
    pieces = re.split(b"(?<=" + separator + b")", data)
    return [repr(piece).lstrip("b") for piece in pieces if piece]


def difference(case, suffix, expected, actual):
    # The code is a single long line, so it is compared word by word.
    separator = b" " if suffix == ".code" else b"\n"
    lines = difflib.unified_diff(
        visible(expected, separator),
        visible(actual, separator),
        f"expected {case.name}{suffix}",
        f"actual {case.name}{suffix}",
        lineterm="",
    )
    return "\n".join(lines)


def check_outputs(case, run):
    for suffix, actual in run.results.items():
        expected = case.expected(suffix)
        if suffix == ".out" and expected is None:
            expected = b""
        if expected is None:
            if suffix == ".lst" and actual is not None:
                yield f"{case.expected_path(suffix)} is missing"
        elif actual is None:
            yield f"no {OUTPUTS[suffix]} was written, but {case.name}{suffix} is expected"
        elif mask_time(actual) != mask_time(expected):
            yield difference(case, suffix, mask_time(expected), mask_time(actual))


def check_rules(case, run):
    """What holds for every run, whatever the expected files say."""
    if run.status not in (0, 1):
        yield f"exit status {run.status}"
    if run.stderr:
        yield "standard error is not empty:\n" + run.stderr.decode(errors="backslashreplace")

    succeeded = run.status == 0
    if succeeded != case.should_succeed():
        yield f"exit status {run.status} is not what the expected files tell"
    code = run.results[".code"]
    if succeeded != (code is not None):
        yield f"exit status {run.status}, code file {'absent' if code is None else 'present'}"
    if succeeded and code is not None and (b"\n" in code or not code.endswith(b" ")):
        yield "the code file holds a line feed or does not end in a blank"

    options = case.options()
    allowed = {"out"} | {name for opt, name in SIDE_FILE_OPTIONS.items() if opt in options}
    for name in sorted(run.files.keys() - allowed):
        yield f"unexpected file {name}"


def update(case, run):
    for suffix, actual in run.results.items():
        path = case.expected_path(suffix)
        if actual is not None and (suffix == ".lst" or path.exists()):
            path.write_bytes(actual if suffix == ".code" else mask_time(actual))


def problems(compiler, case, updating):
    try:
        run = Run(compiler, case)
    except subprocess.TimeoutExpired:
        return [f"not finished after {TIMEOUT_SECONDS} s"]
    if updating:
        update(case, run)
    return [*check_rules(case, run), *check_outputs(case, run)]


def find_cases(area, sources):
    own = sorted(area.glob("*.st"))
    return [Case(area, source) for source in own or sorted(sources.glob("*.st") if sources else [])]


def strays(area, cases):
    """Expected files that belong to no case, as after a renaming, would never be looked at."""
    stems = {case.source.stem for case in cases}
    suffixes = {*OUTPUTS, ".out", ".args"}
    for path in sorted(area.iterdir()):
        if path.suffix in suffixes and path.stem not in stems and path.name != "default.args":
            yield f"{area.name}/{path.name}"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--compiler", type=Path, required=True)
    parser.add_argument("--sources", type=Path, help="folder of .st files for areas without any")
    parser.add_argument("--filter", default="", help="only cases whose area/case name holds this")
    parser.add_argument("--update", action="store_true", help="rewrite the expected files")
    parser.add_argument("areas", type=Path, nargs="+", metavar="AREA_DIR")
    arguments = parser.parse_args()

    compiler = arguments.compiler.resolve()
    cases = []
    failed = 0
    for area in arguments.areas:
        area_cases = find_cases(area.resolve(), arguments.sources)
        for name in strays(area.resolve(), area_cases):
            if arguments.filter in name:
                failed += 1
                print(f"FAILED {name}\nno .st file goes with it\n")
        cases += [case for case in area_cases if arguments.filter in case.name]

    passed = 0
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        found = pool.map(lambda case: problems(compiler, case, arguments.update), cases)
        for case, messages in zip(cases, found):
            if messages:
                failed += 1
                print(f"FAILED {case.name}", *messages, "", sep="\n")
            else:
                passed += 1
    print(f"{passed} passed, {failed} failed")
    return 1 if failed or not cases else 0


if __name__ == "__main__":
    sys.exit(main())
