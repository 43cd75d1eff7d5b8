#!/usr/bin/env python3
"""Writes inputs of the machine into a new folder, named after their content.

    seeds.py FOLDER

They hold the code of the golden cases and the examples, half of it as code files and half as
listings, and the tables of the examples with the code of their scripts: each case of a table
alone, as all of it would be large.
"""

import hashlib
import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[3]
EXAMPLES = ROOT / "examples"

sys.path[:0] = [str(ROOT / "tests/golden"), str(ROOT / "tests/fuzz")]
from cases import all_cases  # noqa: E402
from oracle import code_of  # noqa: E402

PART_MARK = b"\f"
ENGINE = b"overflow = saturate\nwidth = typed # as wide as the variables\nscan-limit = 100\n"
ARGUMENTS = b"not-finite=stop\nstore-overflow=off\n%b=1\n%b>=2\n"


def choices(content):
    """Digits and letters that choose, by the content."""
    return hashlib.sha1(content).hexdigest()[:4].encode()


def code_file(listing):
    """The code that a listing shows, numbered or not."""
    is_numbered = re.search(rb"^[0-9]{4,}\t", listing, re.MULTILINE)
    return code_of(listing, ["-n"] if is_numbered else [])


def with_tables(listing, table):
    """An input for each case of a table of tests."""
    code = code_file(listing)
    inputs = table.with_suffix(".csv")
    preamble, *cases = re.split(rb"^(?=case)", table.read_bytes(), flags=re.MULTILINE)
    names = [name.encode() for name in re.findall(r"(\w+) V[IO]? ", code.decode())]
    columns = inputs.read_bytes() if inputs.exists() else b"cycles,%b\n2,1\n3,0\n" % names[0]
    arguments = ARGUMENTS % (names[0], names[-1])
    for case in cases:
        yield PART_MARK.join([code, ENGINE, columns, arguments, preamble + case])


def seeds():
    for number, case in enumerate(all_cases()):
        listing = case.expected(".lst") if case.should_succeed() else None
        code = listing and code_file(listing)
        if code:
            yield code if number % 2 else listing
    for listing in sorted((ROOT / "tests/golden/examples").glob("*.lst")):
        yield code_file(listing.read_bytes())
        yield from with_tables(listing.read_bytes(), EXAMPLES / f"{listing.stem}.test")


def write_seeds(folder):
    folder.mkdir()
    for seed in seeds():
        data = choices(seed) + seed
        (folder / hashlib.sha1(data).hexdigest()[:16]).write_bytes(data)


if __name__ == "__main__":
    write_seeds(Path(sys.argv[1]))
