"""What the measurements share: the generated sources, running a program, how a result looks."""

import datetime
import os
import platform
import re
import shlex
import subprocess
import sys
from pathlib import Path
from typing import NamedTuple

import generate

TIME_LIMIT = 60  # seconds of CPU time
MEGABYTE = 1_000_000.0
ALL_OUTPUTS = ("-l", "-i", "-m", "-n", "-r", "-e")


class Workload(NamedTuple):
    lines: int
    variables: int
    rounds: int

    def __str__(self):
        return f"{self.lines:,} lines, {self.variables:,} variables"


class Usage(NamedTuple):
    seconds: float  # user plus system time
    wall: float  # seconds
    megabytes: float


class Failure(Exception):
    """A program that could not be measured; the text says why."""


class Runner:
    """Runs commands on generated sources, one at a time."""

    def __init__(self, build, seed):
        self.build = build
        self.seed = seed
        self.data = build / "bench" / "data"
        self.data.mkdir(parents=True, exist_ok=True)

    def path(self, name):
        return str(self.data / name)

    def sources(self, workload):
        """The path of the sources without a suffix; they are written if need be."""
        base = self.path(f"control_{workload.lines}_{workload.variables}_{self.seed}")
        source = Path(f"{base}.st")
        newest = Path(generate.__file__).stat().st_mtime
        if not source.exists() or source.stat().st_mtime < newest:
            say(f"writing {workload}")
            generate.generate(base, workload.lines, workload.variables, self.seed)
        return base

    def compile_command(self, compiler, workload, options=()):
        """The command and the files that it writes."""
        code = self.path("code")
        suffixes = ("", ".lst", ".res", ".err") if options else ("",)
        command = [str(compiler), f"{self.sources(workload)}.st", code, *options]
        return command, [code + suffix for suffix in suffixes]

    def run(self, command, outputs=()):
        """What the command used; what it prints is thrown away unless it fails."""
        for output in outputs:
            Path(output).unlink(missing_ok=True)
        usage, log = Path(self.path("usage.txt")), Path(self.path("output.txt"))
        launcher = [str(self.build / "bench" / "launcher"), str(usage), str(TIME_LIMIT)]
        with open(log, "wb") as file:
            status = subprocess.call(
                [*launcher, *command], stdin=subprocess.DEVNULL, stdout=file, stderr=file
            )
        name = Path(command[0]).name
        if status:
            raise Failure(f"{name}: status {status}, {last_line(log)}")
        for output in outputs:
            if not Path(output).exists():
                raise Failure(f"{name}: no {Path(output).name} written")
        cpu, wall, kilobytes = map(int, usage.read_text().split())
        return Usage(cpu / 1e6, wall / 1e6, kilobytes * 1024 / MEGABYTE)


def say(text):
    print(text, file=sys.stderr, flush=True)


def last_line(log):
    lines = log.read_text(errors="replace").strip().splitlines()
    return lines[-1][:60] if lines else "no message"


def build_type(compiler):
    cache = compiler.with_name("CMakeCache.txt")
    text = cache.read_text() if cache.exists() else ""
    found = re.search(r"^CMAKE_BUILD_TYPE:\w+=(\w+)", text, re.M)
    return found.group(1) if found else "unknown"


def machine():
    model = re.search(r"model name\s*: (.*)", Path("/proc/cpuinfo").read_text())
    name = model.group(1) if model else platform.machine()
    return f"{name}, {os.cpu_count()} CPUs, {platform.system()} {platform.release()}"


def print_heading():
    command = shlex.join(["scripts/bench", *sys.argv[2:]])
    print(f"{datetime.date.today()}, {machine()}\n\n    {command}\n")


def print_table(rows):
    rows = [list(row) for row in rows]
    widths = [max(map(len, column)) for column in zip(*rows)]
    rows.insert(1, ["-" * width for width in widths])
    for row in rows:
        print("| " + " | ".join(f"{cell:<{width}}" for cell, width in zip(row, widths)) + " |")
