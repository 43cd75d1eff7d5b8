#!/usr/bin/env python3
"""Judges a run of the compiler by what it left behind, without knowing the expected output.

    oracle.py --serve FOLDER

serves the fuzzer's target: for each line "PID STATUS SOURCE OUTPUTS option..." on standard input
it answers with a line "PID VERDICT", where the verdict is empty if all is well. OUTPUTS is the
folder that the run wrote to. At the end it adds the seconds of processor time that it took to
FOLDER/oracle_seconds.
"""

import re
import sys
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "checker"))
from check_code import check  # noqa: E402

CODE = "out"
SIDE_FILES = {"-l": "out.lst", "-r": "out.res", "-e": "out.err"}
NAMES = {CODE, *SIDE_FILES.values()}
OLD = b"old"  # what each of these files holds before a run

# The code does not tell a user's label from a generated one of that spelling.
LIKE_GENERATED_LABEL = re.compile(rb"(?<![A-Za-z0-9_])[Ll][0-9]+")
RECORDS = re.compile(rb"(?:e:[0-9]+,[0-9]+)*")
SUCCESS = b"\nBuild successful.  Elapsed time: "


def problems(status, source, options, files):
    """What is wrong, each a line. `files` are the contents of the folder's files, by name."""
    if status not in (0, 1):
        return [f"exit status {status}"]
    found = [f"{name} is left behind" for name in sorted(files.keys() - NAMES)]
    found += code_problems(status, source, files.get(CODE))
    for option, name in SIDE_FILES.items():
        if option not in options and files.get(name) != OLD:
            found.append(f"{name} is not as it was, without {option}")
        elif option in options and files.get(name) in (None, OLD):
            found.append(f"{name} is not written, with {option}")
    return found or side_file_problems(status, options, files)


def code_problems(status, source, code):
    if status == 1:
        return [] if code is None else ["a code file is left behind after an error"]
    if code is None:
        return ["no code file after a success"]
    user_labels = {match.decode().upper() for match in LIKE_GENERATED_LABEL.findall(source)}
    return check(code.decode(), user_labels)


def side_file_problems(status, options, files):
    """Of the side files that are asked for, which are there."""
    found = []
    if "-l" in options and status == 0 and code_of(files["out.lst"], options) != files[CODE]:
        found.append("the listing tells other code")
    if "-r" in options and (SUCCESS in files["out.res"]) != (status == 0):
        found.append("the result file tells another status")
    if "-e" in options and not RECORDS.fullmatch(files["out.err"]):
        found.append("the error file holds something else than places")
    return found


def code_of(listing, options):
    """The code that a listing shows: what remains without source lines, messages and numbers.
    None if the lines are not numbered as they should be."""
    items = [line for line in listing.split(b"\n")[:-1] if not line.startswith(b";")]
    if "-n" in options:
        numbers = [b"%04d\t" % at for at in range(1, len(items) + 1)]
        if not all(map(bytes.startswith, items, numbers)):
            return None
        items = [item[len(number) :] for item, number in zip(items, numbers)]
    return b"".join(item + b" " for item in items)


def serve(folder):
    for line in sys.stdin:
        pid, status, source, outputs, *options = line.split()
        files = {path.name: path.read_bytes() for path in Path(outputs).iterdir()}
        found = problems(int(status), Path(source).read_bytes(), options, files)
        print(pid, "; ".join(found), flush=True)
    with open(Path(folder, "oracle_seconds"), "a", encoding="ascii") as file:
        print(time.process_time(), file=file)


if __name__ == "__main__":
    serve(sys.argv[2])
