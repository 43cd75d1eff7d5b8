"""Plants errors in programs and counts which of them yxst check reports, and what else.

    planted.py [PROGRAMS] [--seed SEED] [--show]

Each program is a generated one of about 300 lines in which five errors are planted, far enough from
each other that none has to do with another. What the compiler says of a program with one of them
alone is what check is to say of that one among the others, place and text.
"""

import argparse
import json
import re
import sys
import tempfile
from collections import Counter
from pathlib import Path
from random import Random
from typing import NamedTuple
from zlib import crc32

from support_desk import ROOT, run_yxst

sys.path.insert(0, str(ROOT / "bench"))
from generate import generate  # noqa: E402

LINES = 300
ERRORS = 5
DISTANCE = 3  # lines between two errors, at least
VARIABLES = 40

# ---------------------------------------------------------------------------------------------
# Errors to plant: each takes a line and gives it with its error, or None where it does not fit
# ---------------------------------------------------------------------------------------------


def missing_semicolon(line):
    return line.rstrip()[:-1] if line.rstrip().endswith(";") else None


def unknown_name(line):
    name = re.search(r":=.*\b[a-z]+[A-Z]\w*\d\b", line)
    if name is None or "(" in line:
        return None
    return f"{line[: name.end()]}x{crc32(line.encode())}{line[name.end() :]}"


def equals_for_assignment(line):
    is_assignment = re.match(r" *\w+ := ", line)
    return line.replace(":=", "=", 1) if is_assignment else None


def assignment_for_equals(line):
    is_condition = re.match(r" *(IF|WHILE|ELSIF)\b.* <", line)
    return re.sub(" <=? ", " := ", line, count=1) if is_condition else None


def missing_then(line):
    return re.sub(r"\bTHEN\b", "", line) if re.search(r"\bTHEN$", line) else None


def missing_do(line):
    return re.sub(r"\bDO\b", "", line) if re.search(r"\bDO$", line) else None


def missing_parenthesis(line):
    at = line.rfind(")")
    return line[:at] + line[at + 1 :] if at > 0 and "(*" not in line else None


def unknown_type(line):
    declaration = re.match(r"( +\w+ : )\w+( := .*;)$", line)
    return f"{declaration[1]}WORD{declaration[2]}" if declaration else None


def missing_colon(line):
    return line.replace(" : ", " ", 1) if re.match(r" +\w+ : \w+ := ", line) else None


def unfinished_expression(line):
    return line.replace(";", " + ;") if re.match(r" +\w+ := [^(]*;$", line) else None


def two_operators(line):
    return re.sub(r" \+ ", " + * ", line, count=1) if re.match(r" +\w+ := .* \+ ", line) else None


def string_for_number(line):
    return re.sub(r":= .*;", ":= 'text';", line) if re.match(r" +\w+ := [^(]*;$", line) else None


def open_string(line):
    return re.sub(r":= ", ":= 'open ", line) if re.match(r" +\w+ := [^(]*;$", line) else None


def jump_outside(line):
    return re.sub(r"\S.*", "CONTINUE;", line) if re.match(r" {4}\w+ := [^(]*;$", line) else None


def bad_number(line):
    return re.sub(r"\b\d\d\b", "7#12", line, count=1) if re.match(r" +\w+ := .*\d", line) else None


def misspelt_keyword(line):
    if not re.match(r" *ELSIF\b", line):
        return None
    return line.replace("ELSIF", "ELSEIF")


def missing_end(line):
    return "" if re.match(r" +END_(IF|WHILE|FOR|CASE);$", line) else None


PLANTS = [
    missing_semicolon,
    unknown_name,
    equals_for_assignment,
    assignment_for_equals,
    missing_then,
    missing_do,
    missing_parenthesis,
    unknown_type,
    missing_colon,
    unfinished_expression,
    two_operators,
    string_for_number,
    open_string,
    jump_outside,
    bad_number,
    misspelt_keyword,
    missing_end,
]

# Those of which two in a program may have to do with each other wherever they are.
ONCE = (missing_end.__name__, unknown_type.__name__)

# ---------------------------------------------------------------------------------------------
# What is said
# ---------------------------------------------------------------------------------------------


class Message(NamedTuple):
    line: int
    column: int
    text: str


def messages_of(lines, folder, max_errors):
    path = folder / "planted.st"
    path.write_text("\n".join(lines) + "\n", encoding="utf-8")
    run = run_yxst("check", "--format=json", f"--max-errors={max_errors}", path)
    return [
        Message(each["line"], each["column"], each["message"])
        for each in json.loads(run.stdout)
        if each["severity"] == "error"
    ]


class Planted(NamedTuple):
    kind: str
    at: int  # index of the line
    line: str  # with the error
    message: Message


def names_in(line):
    return set(re.findall(r"[a-z]+[A-Z]\w*", line))


def try_to_plant(lines, at, plant, folder):
    """The error, with what the compiler says of it alone, or None."""
    line = plant(lines[at])
    if line is None or line == lines[at]:
        return None
    found = messages_of([*lines[:at], line, *lines[at + 1 :]], folder, 1)
    return Planted(plant.__name__, at, line, found[0]) if found else None


def are_independent(one, other, lines):
    """They are not near each other, and neither is about a name that the other leaves in doubt."""
    if abs(one.at - other.at) <= DISTANCE or one.kind == other.kind and one.kind in ONCE:
        return False
    if unknown_type.__name__ in (one.kind, other.kind):
        return not names_in(lines[one.at]) & names_in(lines[other.at])
    return one.message.text != other.message.text or one.kind != unknown_name.__name__


def plant_errors(lines, chance, folder):
    """A copy of the lines with errors, and the errors."""
    planted = []
    while len(planted) < ERRORS:
        at = chance.randrange(len(lines))
        new = try_to_plant(lines, at, chance.choice(PLANTS), folder)
        if new and all(are_independent(new, other, lines) for other in planted):
            planted.append(new)
    line_at = {each.at: each.line for each in planted}
    return [line_at.get(at, line) for at, line in enumerate(lines)], planted


class Tally:
    def __init__(self):
        self.planted = self.reported = self.right = 0
        self.kinds = Counter()
        self.missed = Counter()

    def add(self, planted, reported):
        expected = {each.message for each in planted}
        right = expected & set(reported)
        self.planted += len(planted)
        self.reported += len(reported)
        self.right += len(right)
        self.kinds.update(each.kind for each in planted)
        self.missed.update(each.kind for each in planted if each.message not in right)

    def recall(self):
        return self.right / self.planted

    def precision(self):
        return self.right / self.reported

    def __str__(self):
        return (
            f"{self.planted} planted, {self.reported} reported, {self.right} of them planted: "
            f"{self.recall():.1%} found, {self.precision():.1%} right"
        )


def show(name, planted, reported):
    expected = {each.message for each in planted}
    for each in planted:
        if each.message not in reported:
            print(f"{name}: missed {each}")
    for message in reported:
        if message not in expected:
            print(f"{name}: reported {message}")


def measure(programs, seed, is_shown=False):
    tally = Tally()
    with tempfile.TemporaryDirectory() as scratch:
        folder = Path(scratch)
        for number in range(seed, seed + programs):
            generate(str(folder / "program"), LINES, VARIABLES, number)
            lines = (folder / "program.st").read_text(encoding="utf-8").splitlines()
            changed, planted = plant_errors(lines, Random(number), folder)
            reported = messages_of(changed, folder, 100)
            tally.add(planted, reported)
            if is_shown:
                show(f"program {number}", planted, reported)
    return tally


def main():
    parser = argparse.ArgumentParser(description=__doc__.partition("\n")[0])
    parser.add_argument("programs", type=int, nargs="?", default=200)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--show", action="store_true", help="show what differs")
    arguments = parser.parse_args()
    tally = measure(arguments.programs, arguments.seed, arguments.show)
    print(tally)
    print("missed by kind:", dict(sorted(tally.missed.items())))


if __name__ == "__main__":
    main()
