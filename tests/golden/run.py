#!/usr/bin/env python3
"""Compares what the compiler gives for the cases of some areas with what is expected (cases.py).

The compiler is the one that the environment variable YXSTCMP names, else build/yxstcmp.
"""

import argparse
import difflib
import re
import subprocess
import sys
from pathlib import Path

from cases import OUTPUTS, find_cases, strays

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "cli"))
from support import SIDE_FILES, compile_source, mask_time, side_by_side  # noqa: E402


class Run:
    """One run of the compiler: its exit status, its output and the files that it wrote."""

    def __init__(self, case):
        result = compile_source(case.data, *case.options())
        self.status = result.status
        self.stderr = result.stderr
        self.files = result.files
        self.results = {suffix: self.masked(suffix, name) for suffix, name in OUTPUTS.items()}
        self.results[".out"] = mask_time(result.stdout)

    def masked(self, suffix, name):
        data = self.files.get(name)
        return data if data is None or suffix == ".code" else mask_time(data)


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
        elif actual != expected:
            yield difference(case, suffix, expected, actual)


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
    allowed = {"out"} | {name for opt, name in SIDE_FILES.items() if opt in options}
    for name in sorted(run.files.keys() - allowed):
        yield f"unexpected file {name}"


def problems(case, updating):
    try:
        run = Run(case)
    except subprocess.TimeoutExpired as timeout:
        return [f"not finished after {timeout.timeout} s"]
    if updating:
        case.update(run.results)
    return [*check_rules(case, run), *check_outputs(case, run)]


def main(command_line=None):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--sources", type=Path, help="folder of .st files for areas without any")
    parser.add_argument("--filter", default="", help="only cases whose area/case name holds this")
    parser.add_argument("--update", action="store_true", help="rewrite the expected files")
    parser.add_argument("areas", type=Path, nargs="+", metavar="AREA_DIR")
    arguments = parser.parse_args(command_line)

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
    found = side_by_side(lambda case: problems(case, arguments.update), cases)
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
