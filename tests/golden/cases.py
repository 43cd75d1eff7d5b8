"""The golden cases: scripts, each with what the compiler must give for it.

A case is AREA/CASE.st with files beside it that say what is expected:

    CASE.lst    the listing; needed whenever one is written
    CASE.out    standard output; without this file it must be empty
    CASE.code   the code file, CASE.res and CASE.err likewise; compared if present
    CASE.args   the options, on one line; without it those of AREA/default.args, or "-l -m"

An area without .st files of its own takes them from another folder.
"""

import shlex
from pathlib import Path

GOLDEN = Path(__file__).resolve().parent

# Expected file -> file that the compiler writes. Standard output comes by itself.
OUTPUTS = {".code": "out", ".lst": "out.lst", ".res": "out.res", ".err": "out.err"}
DEFAULT_OPTIONS = "-l -m"


class Case:
    def __init__(self, area, source):
        self.area = area
        self.stem = source.stem
        self.name = f"{area.name}/{source.stem}"
        self.data = source.read_bytes()

    def expected_path(self, suffix):
        return self.area / (self.stem + suffix)

    def expected(self, suffix):
        path = self.expected_path(suffix)
        return path.read_bytes() if path.exists() else None

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

    def update(self, results):
        for suffix, actual in results.items():
            path = self.expected_path(suffix)
            if actual is not None and (suffix == ".lst" or path.exists()):
                path.write_bytes(actual)


def find_cases(area, sources=None):
    """The cases of an area; `sources` is the folder for those that have no sources."""
    own = sorted(area.glob("*.st"))
    lent = sorted(sources.glob("*.st")) if sources else []
    return [Case(area, source) for source in own or lent]


def all_cases():
    """Those of every area that has sources of its own."""
    areas = sorted(path for path in GOLDEN.iterdir() if path.is_dir())
    return [case for area in areas for case in find_cases(area)]


def strays(area, cases):
    """Expected files that belong to no case, as after a renaming, would never be looked at."""
    stems = {case.stem for case in cases}
    suffixes = {*OUTPUTS, ".out", ".args"}
    for path in sorted(area.iterdir()):
        if path.suffix in suffixes and path.stem not in stems and path.name != "default.args":
            yield f"{area.name}/{path.name}"
