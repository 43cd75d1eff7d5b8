"""Spoils the layout of scripts and has it brought back by yxst fmt.

    formatting.py [PROGRAMS] [--seed SEED]

Generated programs lose their line ends and blanks, get others, comments and semicolons that end
nothing, and the letters of their words change. `yxst fmt` itself compares the code of each with that
of its result, their words and comments, and formats the result once more. Beside that the code files
that the compiler makes of the first and the last text are compared here, and the comments.
"""

import argparse
import sys
import tempfile
from pathlib import Path
from random import Random
from typing import NamedTuple

from support_desk import FINE, ROOT, run_yxst

sys.path.insert(0, str(ROOT / "tests/machine"))
from generate import generate  # noqa: E402
from support import compile_source, side_by_side  # noqa: E402, isort: skip
from test_relations import (  # noqa: E402, isort: skip
    SECTIONS,
    change_letter_case,
    join,
    tokenize,
    with_neighbours,
)

SECONDS = 3000

BLANKS = [" ", "\n", "\n\n\n", "\t ", "\t\n \n"]
COMMENTS = """(* c *)|// to the end
|
// own
|
  (* own *)
|
 (* leads *) |
(* one
   two *)
|(* one *)(* two *)""".split("|")

def may_be_commented(token, after):
    """A comment before a literal, a type or the name of a unit changes what follows it."""
    is_end = token.text == ";" or token.word in ("THEN", "DO", "REPEAT", "END_VAR", "AND")
    is_operator = token.text in ("+", "*", ":=", "(", ",")
    is_name = after.kind == "name" and after.word not in ("TRUE", "FALSE")
    return is_name and (is_end or is_operator)


def spoil(data, random):
    """The same script in a layout that nobody would choose."""
    texts = []
    in_section = False
    for _, token, after in with_neighbours(tokenize(change_letter_case(data))):
        if token.kind == "blank":
            is_after_line = texts and texts[-1].lstrip(" \n").startswith("//")
            texts.append("\n" if is_after_line else random.choice(BLANKS))
            continue
        texts.append(token.text)
        in_section = token.word in SECTIONS or (in_section and token.word != "END_VAR")
        if token.kind not in ("rest", "comment") and random.random() < 0.1:
            texts.append(random.choice(BLANKS))
        if may_be_commented(token, after) and random.random() < 0.2:
            texts.append(f" {random.choice(COMMENTS)}")
        elif token.text == ";" and not in_section and random.random() < 0.1:
            texts.append(";")
    return join(texts)


def code_of(data):
    result = compile_source(data)
    return result.files.get("out") if result.status == FINE else None


def comments_of(data):
    """Those that are read, and what stands after the program."""
    kept = (token for token in tokenize(data) if token.kind in ("comment", "rest"))
    return [token.text.rstrip() for token in kept]


class Result(NamedTuple):
    formatted: int
    faults: list  # a name and what is wrong


def format_all(sources, *options):
    """What `yxst fmt` makes of named scripts, in one run, and its standard error."""
    names = list(sources)
    with tempfile.TemporaryDirectory() as scratch:
        paths = [Path(scratch, f"{number:06}.st") for number in range(len(names))]
        for path, name in zip(paths, names):
            path.write_bytes(sources[name])
        run = run_yxst("fmt", *options, scratch, timeout=SECONDS)
        return {name: path.read_bytes() for path, name in zip(paths, names)}, run


def differences(name, before, after):
    if code_of(before) != code_of(after):
        yield name, "other code"
    if comments_of(before) != comments_of(after):
        yield name, "other comments"


def measure(sources):
    """Scripts that compile are formatted and compared."""
    compiled = dict(zip(sources, side_by_side(code_of, sources.values())))
    sources = {name: data for name, data in sources.items() if compiled[name] is not None}
    results, run = format_all(sources)
    faults = [("all", line) for line in run.stderr.decode().splitlines()]
    found = side_by_side(
        lambda name: list(differences(name, sources[name], results[name])), list(sources)
    )
    return Result(len(sources), faults + [fault for each in found for fault in each])


def spoilt_programs(count, seed):
    for number in range(seed, seed + count):
        yield f"program {number}", spoil(generate(number).source.encode(), Random(number))


def main():
    parser = argparse.ArgumentParser(description=__doc__.partition("\n")[0])
    parser.add_argument("programs", type=int, nargs="?", default=200)
    parser.add_argument("--seed", type=int, default=1)
    arguments = parser.parse_args()
    result = measure(dict(spoilt_programs(arguments.programs, arguments.seed)))
    for name, fault in result.faults:
        print(f"{name}: {fault}")
    print(f"{result.formatted} of {arguments.programs} programs compile and were formatted,"
          f" {len(result.faults)} faults")  # fmt: skip
    sys.exit(1 if result.faults or not result.formatted else 0)


if __name__ == "__main__":
    main()
