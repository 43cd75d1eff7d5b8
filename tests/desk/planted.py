"""Plants errors in programs and counts which of them yxst check reports, and what else.

    planted.py [PROGRAMS] [--seed SEED] [--show]

Each program is a generated one of about 300 lines in which five errors are planted, far enough from
each other that none has to do with another. What the compiler says of a program with one of them
alone is what check is to say of that one among the others, place and text.
"""

import argparse
import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path
from random import Random
from typing import NamedTuple

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "bench"))
from generate import generate  # noqa: E402

YXST = os.environ.get("YXST", str(ROOT / "build/yxst"))
LINES = 300
ERRORS = 5
DISTANCE = 3  # lines between two errors, at least
VARIABLES = 40
GCC_LINE = re.compile(r"[^:]*:(\d+):(\d+): error: (.*) \[([a-z-]+)\]")

# ---------------------------------------------------------------------------------------------
# Errors to plant: each takes a line and a source of chance, and gives the line with its error,
# or None where it does not fit
# ---------------------------------------------------------------------------------------------


def missing_semicolon(line, _):
    return line.rstrip()[:-1] if line.rstrip().endswith(";") else None


def unknown_name(line, chance):
    names = list(re.finditer(r"\b[a-z]+[A-Z]\w*\d\b", line.partition(":=")[2]))
    if not names or "(" in line:
        return None
    name = chance.choice(names)
    at = line.index(":=") + 2 + name.end()
    return f"{line[:at]}x{chance.randrange(10**6)}{line[at:]}"


def equals_for_assignment(line, _):
    is_assignment = re.match(r" *\w+ := ", line)
    return line.replace(":=", "=", 1) if is_assignment else None


def assignment_for_equals(line, _):
    is_condition = re.match(r" *(IF|WHILE|ELSIF)\b.* <", line)
    return re.sub(" <=? ", " := ", line, count=1) if is_condition else None


def missing_then(line, _):
    return re.sub(r"\bTHEN\b", "", line) if re.search(r"\bTHEN$", line) else None


def missing_do(line, _):
    return re.sub(r"\bDO\b", "", line) if re.search(r"\bDO$", line) else None


def missing_parenthesis(line, _):
    at = line.rfind(")")
    return line[:at] + line[at + 1 :] if at > 0 and "(*" not in line else None


def unknown_type(line, _):
    declaration = re.match(r"( +\w+ : )\w+( := .*;)$", line)
    return f"{declaration[1]}WORD{declaration[2]}" if declaration else None


def missing_colon(line, _):
    return line.replace(" : ", " ", 1) if re.match(r" +\w+ : \w+ := ", line) else None


def unfinished_expression(line, _):
    return line.replace(";", " + ;") if re.match(r" +\w+ := [^(]*;$", line) else None


def two_operators(line, _):
    return re.sub(r" \+ ", " + * ", line, count=1) if re.match(r" +\w+ := .* \+ ", line) else None


def string_for_number(line, _):
    return re.sub(r":= .*;", ":= 'text';", line) if re.match(r" +\w+ := [^(]*;$", line) else None


def open_string(line, _):
    return re.sub(r":= ", ":= 'open ", line) if re.match(r" +\w+ := [^(]*;$", line) else None


def jump_outside(line, _):
    return re.sub(r"\S.*", "CONTINUE;", line) if re.match(r" {4}\w+ := [^(]*;$", line) else None


def bad_number(line, _):
    return re.sub(r"\b\d\d\b", "7#12", line, count=1) if re.match(r" +\w+ := .*\d", line) else None


def misspelt_keyword(line, _):
    if not re.match(r" *ELSIF\b", line):
        return None
    return line.replace("ELSIF", "ELSEIF")


def missing_end(line, _):
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
    command = [YXST, "check", "--format=gcc", f"--max-errors={max_errors}", "--quiet", path]
    done = subprocess.run(command, capture_output=True, text=True, cwd=folder, check=False)
    found = (GCC_LINE.match(line) for line in done.stdout.splitlines())
    return [Message(int(each[1]), int(each[2]), each[3]) for each in found if each]


class Planted(NamedTuple):
    kind: str
    at: int
    message: Message


def names_in(line):
    return set(re.findall(r"[a-z]+[A-Z]\w*", line))


def try_to_plant(lines, at, plant, chance, folder):
    """The line with the error and what the compiler says of it alone, or None."""
    line = plant(lines[at], chance)
    if line is None or line == lines[at]:
        return None
    found = messages_of([*lines[:at], line, *lines[at + 1 :]], folder, 1)
    if not found:
        return None
    return line, Planted(plant.__name__, at, found[0])


def is_independent(at, lines, planted, declared):
    """No other error is near, and none has a name whose declaration is broken."""
    if any(abs(at - other.at) <= DISTANCE for other in planted):
        return False
    return not (names_in(lines[at]) & declared)


def plant_errors(lines, chance, folder):
    """A copy of the lines with errors, and the errors."""
    planted, changed, declared = [], list(lines), set()
    kinds = set()
    while len(planted) < ERRORS:
        plant = chance.choice(PLANTS)
        at = chance.randrange(len(lines))
        if plant in (missing_end, unknown_type) and plant in kinds:
            continue
        if not is_independent(at, lines, planted, declared):
            continue
        result = try_to_plant(lines, at, plant, chance, folder)
        if result is None:
            continue
        changes_type = plant is unknown_type
        if changes_type and any(names_in(lines[at]) & names_in(lines[p.at]) for p in planted):
            continue
        if any(result[1].message == other.message for other in planted):
            continue
        changed[at] = result[0]
        planted.append(result[1])
        kinds.add(plant)
        if changes_type:
            declared |= names_in(lines[at])
    return changed, planted


class Tally:
    def __init__(self):
        self.planted = self.reported = self.right = 0
        self.missed = {}

    def add(self, planted, reported):
        expected = {each.message for each in planted}
        right = expected & set(reported)
        self.planted += len(planted)
        self.reported += len(reported)
        self.right += len(right)
        for each in planted:
            if each.message not in right:
                self.missed[each.kind] = self.missed.get(each.kind, 0) + 1

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
