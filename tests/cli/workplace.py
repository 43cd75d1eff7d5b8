"""A folder for one run that is disturbed, and what such a run must leave there."""

import functools
import os
import resource
import subprocess
import tempfile
from pathlib import Path

from support import BINARY

# Hardly a run here takes a second; one that waits for somebody waits for ever.
TIMEOUT_SECONDS = 20

HANGS = "hangs"  # the status of a run that had to be ended

OUTPUT = "sub/out"
OUTPUT_NAMES = ("out", "out.lst", "out.res", "out.err")
SIDE_OPTIONS = ("-l", "-m", "-r", "-e")
OLD_CODE = b"old code, whole "

# A warning gives the error file something to hold.
SMALL_SOURCE = b"PROGRAM main\nVAR a : INT; unused : INT; END_VAR\na := 1;\nEND_PROGRAM\n"


def source_with_statements(count, value=1):
    statement = b"a := %d;\n" % value
    return b"PROGRAM main\nVAR a : INT; END_VAR\n" + statement * count + b"END_PROGRAM\n"


# Its code and its listing are each several blocks of what is written at a time.
LARGE_SOURCE = source_with_statements(30_000)


# A run that aborts under these tests need not be kept; the runs inherit this.
resource.setrlimit(resource.RLIMIT_CORE, (0, resource.getrlimit(resource.RLIMIT_CORE)[1]))


def without_time(text):
    """A listing or result file without the line that tells the elapsed time."""
    return b"".join(line for line in text.splitlines(True) if b"Elapsed time" not in line)


def read(path):
    """The content of the file, None if there is none."""
    try:
        return path.read_bytes()
    except FileNotFoundError:
        return None


class Workplace:
    """The source is in.st; the outputs have a folder of their own, so that all else that a run
    leaves there shows."""

    def __init__(self, source=SMALL_SOURCE, old_code=None):
        self._folder = tempfile.TemporaryDirectory()
        self.log = Path(self._folder.name) / "log"
        self.path = Path(self._folder.name) / "work"
        self.outputs = self.path / "sub"
        self.outputs.mkdir(parents=True)
        self.code_file = self.path / OUTPUT
        self.source_file = self.path / "in.st"
        self.source = source
        self.source_file.write_bytes(source)
        if old_code is not None:
            self.put_code(old_code)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._folder.cleanup()

    def start(self, *options, source="in.st", output=OUTPUT, **more):
        settings = {
            "stdin": subprocess.DEVNULL,
            "stdout": subprocess.DEVNULL,
            "stderr": subprocess.DEVNULL,
        }
        command = [BINARY, source, output, *options]
        return subprocess.Popen(command, cwd=self.path, **{**settings, **more})

    def run(self, *options, **more):
        return finish(self.start(*options, **more))

    def code(self):
        return read(self.code_file)

    def put_output(self, name, content):
        """Brings an old output to its name, at once."""
        other = self.log.with_name("old")
        other.write_bytes(content)
        other.rename(self.outputs / name)

    def put_code(self, content):
        self.put_output("out", content)

    def put_old_outputs(self):
        for name in OUTPUT_NAMES:
            self.put_output(name, b"old " + name.encode())

    def side_texts(self):
        """The side files by name, without times."""
        paths = (self.outputs / name for name in OUTPUT_NAMES[1:])
        return {path.name: without_time(path.read_bytes()) for path in paths if path.is_file()}

    def strays(self):
        """What is neither an output nor the source."""
        beside = set(os.listdir(self.path)) - {"in.st", "sub"}
        return sorted(beside | set(os.listdir(self.outputs)) - set(OUTPUT_NAMES))

    def clear_outputs(self):
        for name in os.listdir(self.outputs):
            (self.outputs / name).unlink()

    def log_lines(self):
        return (read(self.log) or b"").decode().splitlines()

    def faults(self, whole_codes, strays=0):
        """What is wrong in the folder: at its name there may be one of these codes or none."""
        found = []
        code = self.code()
        if code is not None and code not in whole_codes:
            found.append(f"{len(code)} bytes of no whole code: {code[:20]}")
        if len(self.strays()) > strays:
            found.append(f"left behind: {self.strays()}")
        if read(self.source_file) != self.source:
            found.append("the source is lost")
        return found


def finish_shown(process, seconds=TIMEOUT_SECONDS):
    """The status of the run and what it has shown; a run that hangs is ended."""
    try:
        shown = process.communicate(timeout=seconds)[0]
        return process.returncode, shown
    except subprocess.TimeoutExpired:
        process.kill()
        return HANGS, process.communicate()[0]


def finish(process):
    return finish_shown(process)[0]


@functools.lru_cache(maxsize=None)
def undisturbed(source, *options):
    """The code, None if it does not compile, and the side files of a run that nobody disturbs."""
    with Workplace(source) as place:
        status = place.run(*options)
        if status not in (0, 1) or (status == 0) != (place.code() is not None):
            raise AssertionError(f"status {status} of a run that nobody disturbs")
        return place.code(), place.side_texts()


def assert_none(test, faults, runs):
    """Fails with the first of the faults, if there are any; tells in how many runs."""
    print(f"{test.id()}: {len(faults)} of {runs} runs failed")
    test.assertEqual(faults[:5], [], f"{len(faults)} of {runs} runs failed")
