#!/usr/bin/env python3
"""Judges a run of the compiler by what it left behind, without knowing the expected output.

    oracle.py --serve

serves the fuzzer's target: for each line "PID STATUS SOURCE OUTPUT" on standard input it answers
with a line "PID VERDICT", where the verdict is empty if all is well.
"""

import re
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "checker"))
from check_code import check  # noqa: E402

# The code does not tell a user's label from a generated one of that spelling.
LIKE_GENERATED_LABEL = re.compile(rb"(?<![A-Za-z0-9_])[Ll][0-9]+")


def problems(status, source, code):
    """What is wrong, each a line. `code` is the content of the code file, None if there is none."""
    if status not in (0, 1):
        return [f"exit status {status}"]
    if status == 1:
        return [] if code is None else ["a code file is left behind after an error"]
    if code is None:
        return ["no code file after a success"]
    user_labels = {match.decode().upper() for match in LIKE_GENERATED_LABEL.findall(source)}
    return check(code.decode(), user_labels)


def read_if_there(path):
    try:
        return path.read_bytes()
    except FileNotFoundError:
        return None


def serve():
    for line in sys.stdin:
        pid, status, source, output = line.split()
        found = problems(int(status), Path(source).read_bytes(), read_if_there(Path(output)))
        print(pid, "; ".join(found), flush=True)


if __name__ == "__main__":
    serve()
