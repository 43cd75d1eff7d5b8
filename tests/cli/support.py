"""Runs the compiler for the command line tests.

The binary is the one that the environment variable YXSTCMP names, else build/yxstcmp; that of the
desk is the one that YXST names, else build/yxst.
"""

import os
import re
import subprocess
import sys
import tempfile
import unittest
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path
from typing import Dict, NamedTuple

ROOT = Path(__file__).resolve().parents[2]

sys.path.insert(0, str(ROOT / "scripts"))
import words  # noqa: E402, F401: for the tests

BINARY = Path(os.environ.get("YXSTCMP", ROOT / "build" / "yxstcmp")).resolve()
DESK = Path(os.environ.get("YXST", ROOT / "build" / "yxst")).resolve()
TIMEOUT_SECONDS = int(os.environ.get("YXST_TEST_SECONDS", "60"))  # for one run

BANNER = b"Ambrel Software. ST compiler version 2.00.\n"
SUCCESS = b"Build successful.  Elapsed time: N ms.\n"  # with the time masked

OPTIONS = ("-l", "-s", "-i", "-c", "-m", "-n", "-r", "-e")
SIDE_FILES = {"-l": "out.lst", "-r": "out.res", "-e": "out.err"}  # beside a code file "out"

VALID_SOURCE = b"PROGRAM main\nVAR\n    a : INT;\nEND_VAR\n    a := 1;\nEND_PROGRAM\n"


class Result(NamedTuple):
    status: int
    stdout: bytes
    stderr: bytes
    files: Dict[str, bytes]  # the files in the folder after the run


class Compiler:
    """The compiler in a temporary folder of its own."""

    def __init__(self):
        self._folder = tempfile.TemporaryDirectory()
        self.path = Path(self._folder.name)

    def close(self):
        self._folder.cleanup()

    def write(self, name, data):
        (self.path / name).write_bytes(data)

    def run(self, *arguments):
        process = subprocess.run(
            [BINARY, *arguments],
            cwd=self.path,
            stdin=subprocess.DEVNULL,
            capture_output=True,
            timeout=TIMEOUT_SECONDS,
        )
        files = {path.name: path.read_bytes() for path in self.path.iterdir() if path.is_file()}
        return Result(process.returncode, process.stdout, process.stderr, files)


class CompilerTestCase(unittest.TestCase):
    """A fresh self.compiler for every test."""

    def setUp(self):
        self.compiler = Compiler()
        self.addCleanup(self.compiler.close)


def compile_source(source, *options):
    """One run over `source` in a folder of its own. The source is left out of the files."""
    compiler = Compiler()
    try:
        compiler.write("in.st", source)
        result = compiler.run("in.st", "out", *options)
    finally:
        compiler.close()
    del result.files["in.st"]
    return result


def side_by_side(function, items):
    """The results of function for all items, on all processors."""
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        return list(pool.map(function, items))


def mask_time(data):
    return re.sub(rb"Elapsed time: \d+ ms\.", b"Elapsed time: N ms.", data)


def lines_of(data):
    """The lines of an output without their line ends, the time masked."""
    *lines, rest = mask_time(data).decode(errors="backslashreplace").split("\n")
    return [*lines, rest] if rest else lines


def diagnostics_in(text):
    """The errors and warnings among the lines of an output, without the listing's semicolon."""
    return re.findall(r"^;?((?:Error|Warning): Line \d+, Column \d+: .*)$", text, re.MULTILINE)
