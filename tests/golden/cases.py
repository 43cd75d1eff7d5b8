"""The golden cases: scripts, each with what the compiler must give for it.

A case is AREA/CASE.st with files beside it that say what is expected:

    CASE.lst    the listing; needed whenever one is written
    CASE.out    standard output; without this file it must be empty
    CASE.code   the code file, CASE.res and CASE.err likewise; compared if present
    CASE.args   the options, on one line; without it those of AREA/default.args, or "-l -m"

An area without .st files of its own takes them from another folder.

Cases that are there for an error alone stand together in AREA/errors.txt, each with its name, its
source and the messages of its result file, the options being "-r":

    frame
        PROGRAM P
        VAR
          x : INT := 0;
        END_VAR
        ...
        END_PROGRAM

    real_is_refused
        x := 1.5;
    Error: Line 5, Column 9: Incompatible types: "INT" and "REAL"

What is indented by four blanks is source. That of a case takes the place of the line "..." in the
frame above; before the first frame it is the whole script.
"""

import re
import shlex
import sys
from pathlib import Path
from threading import Lock

GOLDEN = Path(__file__).resolve().parent

sys.path.insert(0, str(GOLDEN.parent / "cli"))
from support import BANNER, diagnostics_in  # noqa: E402

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


# ---------------------------------------------------------------------------------------------
# Tables of errors
# ---------------------------------------------------------------------------------------------

TABLE = "errors.txt"
INDENT = "    "
FRAME = "frame"
MARK = "..."
WHOLE = [MARK]  # the frame of whole scripts

table_lock = Lock()


class Entry:
    """A frame or a case of a table, as it is written there."""

    def __init__(self, place, head):
        self.place = place
        self.head = head
        self.source = []
        self.messages = []

    def take(self, line):
        is_source = line.startswith(INDENT) or not line
        if not is_source:
            self.messages.append(line)
        elif not self.messages:
            self.source.append(line.removeprefix(INDENT))
        elif line:
            raise ValueError(f"{self.place}: source after the messages of {self.head}")

    def text(self):
        source = [INDENT + line if line else "" for line in self.source]
        return "\n".join([self.head, *source, *self.messages, ""])


class ErrorCase:
    def __init__(self, path, entry, frame):
        mark = frame.index(MARK)
        lines = [*frame[:mark], *entry.source, *frame[mark + 1 :]]
        self.path = path
        self.entry = entry
        self.stem = entry.head
        self.name = f"{path.parent.name}/{entry.head}"
        self.data = "".join(f"{line}\n" for line in lines).encode()

    def expected(self, suffix):
        if suffix != ".res":
            return None
        return BANNER + "".join(f"{line}\n" for line in self.entry.messages).encode()

    def options(self):
        return ["-r"]

    def should_succeed(self):
        return False

    def update(self, results):
        """The cases of a table are updated side by side."""
        with table_lock:
            old = self.entry.text()
            self.entry.messages = diagnostics_in((results[".res"] or b"").decode())
            text = self.path.read_text(encoding="utf-8")
            self.path.write_text(text.replace(f"\n{old}", f"\n{self.entry.text()}"), "utf-8")


def entries_of(path):
    entries = []
    for number, line in enumerate(path.read_text(encoding="utf-8").split("\n"), 1):
        if re.fullmatch(r"\w+", line):
            entries.append(Entry(f"{path.parent.name}/{path.name}:{number}", line))
        elif entries:
            entries[-1].take(line)
        elif line:
            raise ValueError(f"{path}:{number}: a table begins with a name")
    return entries


def check_entry(entry, is_frame):
    diagnostics = diagnostics_in("\n".join(entry.messages))
    if diagnostics != entry.messages:
        raise ValueError(f"{entry.place}: {entry.head} has lines that are no messages")
    if is_frame != (not diagnostics) or is_frame and entry.source.count(MARK) != 1:
        raise ValueError(f"{entry.place}: a frame has one line {MARK}, a case has messages")


def read_table(path):
    frame = WHOLE
    cases = []
    for entry in entries_of(path):
        check_entry(entry, entry.head == FRAME)
        if entry.head == FRAME:
            frame = "\n".join(entry.source).rstrip("\n").split("\n")
        else:
            cases.append(ErrorCase(path, entry, frame))
    return cases


# ---------------------------------------------------------------------------------------------
# Areas
# ---------------------------------------------------------------------------------------------


def find_cases(area, sources=None):
    """The cases of an area; `sources` is the folder for those that have no sources."""
    own = sorted(area.glob("*.st"))
    lent = sorted(sources.glob("*.st")) if sources else []
    table = area / TABLE
    rows = read_table(table) if table.exists() else []
    return [Case(area, source) for source in own or lent] + rows


def all_cases():
    """Those of every area that has sources of its own."""
    areas = sorted(path for path in GOLDEN.iterdir() if path.is_dir())
    return [case for area in areas for case in find_cases(area)]


def strays(area, cases):
    """Expected files that belong to no case, as after a renaming, would never be looked at."""
    stems = {case.stem for case in cases if isinstance(case, Case)}
    suffixes = {*OUTPUTS, ".out", ".args"}
    for path in sorted(area.iterdir()):
        if path.suffix in suffixes and path.stem not in stems and path.name != "default.args":
            yield f"{area.name}/{path.name}"
