#!/usr/bin/env python3
"""Measures yxstcmp beside tcc, luac and fpc on the same generated programs.

All programs take turns within each round; a figure is the median of the rounds. Time is user
plus system time of a program and its children. The result goes to standard output as Markdown;
goals that are missed are shown and do not fail the run.
"""

import argparse
import datetime
import math
import os
import platform
import re
import shlex
import shutil
import signal
import statistics
import subprocess
import sys
from pathlib import Path
from typing import NamedTuple, Optional

from generate import tokens_per_line

GENERATE = Path(__file__).with_name("generate.py")
TIME_LIMIT = 60  # seconds of CPU time; a program that takes more is not tried again
WALL_LIMIT = 900  # seconds, for a program that hangs
SLOW = 8.0  # seconds; a program that takes longer runs in the first round only
NOT_INSTALLED = "not installed"
TOO_SLOW = f"over {TIME_LIMIT} s"
ALL_OUTPUTS = ("-l", "-i", "-m", "-n", "-r", "-e")

MEMORY_BASE = 16.0  # MB
MEMORY_PER_SOURCE = 6.0
MEGABYTE = 1_000_000.0

# Names of the columns
EMPTY = "empty Qt program"
OURS = "yxstcmp"
OURS_ALL = "yxstcmp " + " ".join(ALL_OUTPUTS)
TCC = "tcc -c"
LUAC = "luac5.4 -o"
FPC = "fpc -Cn"


class Workload(NamedTuple):
    lines: int
    variables: int
    rounds: int

    def __str__(self):
        return f"{self.lines:,} lines, {self.variables:,} variables"


class Plan(NamedTuple):
    workloads: list  # the first is the small one
    large: int  # from so many lines on the peers are the measure
    growth_from: int  # lines


FULL = Plan(
    [
        Workload(300, 100, 41),
        Workload(10_000, 100, 21),
        Workload(100_000, 100, 11),
        Workload(100_000, 10_000, 11),
        Workload(1_000_000, 100, 5),
        Workload(1_000_000, 10_000, 5),
    ],
    large=100_000,
    growth_from=10_000,
)
QUICK = Plan(
    [Workload(300, 100, 3), Workload(1_000, 100, 3), Workload(4_000, 100, 3),
     Workload(4_000, 1_000, 3)],
    large=4_000,
    growth_from=1_000,
)  # fmt: skip


class Sample(NamedTuple):
    seconds: float
    megabytes: float


class Failure(Exception):
    """A program that could not be measured; the text says why."""


class Program:
    """A program and what it gave for one workload."""

    def __init__(self, name, command, outputs=()):
        self.name = name
        self.command = command
        self.outputs = outputs
        self.samples = []
        self.failure = None if shutil.which(command[0]) else NOT_INSTALLED

    def is_wanted(self):
        return not self.failure and not (self.samples and self.samples[-1].seconds > SLOW)

    def measure(self, runner):
        for path in self.outputs:
            Path(path).unlink(missing_ok=True)
        try:
            sample = runner.run(self.command)
            missing = [path for path in self.outputs if not Path(path).exists()]
            if missing:
                raise Failure(f"no {Path(missing[0]).name} written")
            return sample
        except Failure as failure:
            self.failure = str(failure)
            say(f"{self.name}: {failure}")
            return None


class Result(NamedTuple):
    """The medians of one program for one workload, or why there are none."""

    seconds: Optional[float]
    megabytes: Optional[float]
    failure: Optional[str]

    @classmethod
    def of(cls, program):
        if program.failure:
            return cls(None, None, program.failure)
        return cls(
            statistics.median(sample.seconds for sample in program.samples),
            statistics.median(sample.megabytes for sample in program.samples),
            None,
        )


def say(text):
    print(text, file=sys.stderr, flush=True)


def last_line(log):
    lines = log.read_text(errors="replace").strip().splitlines()
    return lines[-1][:60] if lines else "no message"


class Runner:
    """Runs commands to their end, one at a time."""

    def __init__(self, launcher, data):
        self.launcher = str(launcher)
        self.usage = data / "usage.txt"
        self.log = data / "output.txt"

    def run(self, command):
        """What the command used; its output is thrown away unless it fails."""
        with open(self.log, "wb") as log:
            # A group of its own, so that the limit of a hanging program reaches its children.
            process = subprocess.Popen(
                [self.launcher, str(self.usage), str(TIME_LIMIT), *command],
                stdin=subprocess.DEVNULL, stdout=log, stderr=log, start_new_session=True,
            )  # fmt: skip
        try:
            status = process.wait(WALL_LIMIT)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            process.wait()
            raise Failure("hangs") from None
        used = self.usage.read_text().split()
        if not used:
            raise Failure("cannot be started")
        microseconds, kilobytes = map(int, used)
        sample = Sample(microseconds / 1e6, kilobytes * 1024 / MEGABYTE)
        if sample.seconds > TIME_LIMIT - 0.5:  # it is stopped a little before or behind
            raise Failure(TOO_SLOW)
        if status:
            raise Failure(f"status {status}: {last_line(self.log)}")
        return sample


# ---------------------------------------------------------------------------------------------
# Measuring
# ---------------------------------------------------------------------------------------------


class Bench:
    def __init__(self, build, data, seed):
        self.yxstcmp = str(build / "yxstcmp")
        self.empty_qt = str(build / "bench" / "empty_qt")
        self.data = data
        self.seed = seed
        data.mkdir(parents=True, exist_ok=True)
        self.runner = Runner(build / "bench" / "launcher", data)

    def sources(self, workload):
        """The path of the sources without a suffix; they are written if need be."""
        base = self.data / f"control_{workload.lines}_{workload.variables}_{self.seed}"
        source = Path(f"{base}.st")
        if not source.exists() or source.stat().st_mtime < GENERATE.stat().st_mtime:
            say(f"writing {workload}")
            subprocess.run(
                [sys.executable, GENERATE, base, f"--seed={self.seed}",
                 f"--lines={workload.lines}", f"--variables={workload.variables}"],
                check=True, stdout=subprocess.DEVNULL,
            )  # fmt: skip
        return base

    def output(self, name):
        return str(self.data / name)

    def programs(self, base):
        code = self.output("ours.code")
        side_files = [f"{code}.{suffix}" for suffix in ("lst", "res", "err")]
        compile_it = [self.yxstcmp, f"{base}.st", code]
        tcc, luac = self.output("tcc.o"), self.output("luac.out")
        fpc_folder = self.output("fpc")
        Path(fpc_folder).mkdir(exist_ok=True)
        fpc = f"{fpc_folder}/{base.name}.o"
        return [
            Program(EMPTY, [self.empty_qt]),
            Program(OURS, compile_it, [code]),
            Program(OURS_ALL, [*compile_it, *ALL_OUTPUTS], [code, *side_files]),
            Program(TCC, ["tcc", "-c", "-o", tcc, f"{base}.c"], [tcc]),
            Program(LUAC, ["luac5.4", "-o", luac, f"{base}.lua"], [luac]),
            Program(FPC, ["fpc", "-Cn", "-v0", f"-FE{fpc_folder}", f"{base}.pas"], [fpc]),
        ]

    def measure(self, workload, too_slow):
        """Measures all programs but those that were too slow for a smaller workload."""
        programs = self.programs(self.sources(workload))
        for program in programs:
            if program.name in too_slow:
                program.failure = TOO_SLOW
        say(f"measuring {workload}")
        # The first round warms the caches; what takes long is not helped by it.
        for i in range(workload.rounds + 1):
            for k in range(len(programs)):
                program = programs[(i + k) % len(programs)]
                if not program.is_wanted():
                    continue
                sample = program.measure(self.runner)
                if sample and (i > 0 or sample.seconds > SLOW):
                    program.samples.append(sample)
        return {program.name: Result.of(program) for program in programs}

    def system_calls(self, workload):
        if not shutil.which("strace"):
            return None
        table = self.data / "strace.txt"
        ours = next(p for p in self.programs(self.sources(workload)) if p.name == OURS)
        try:
            self.runner.run(["strace", "-c", "-f", "-o", str(table), *ours.command])
        except Failure as failure:
            say(f"strace: {failure}")
            return None
        total = re.search(r"^\s*100\.00\s+\S+\s+\S+\s+(\d+)\s.*total$", table.read_text(), re.M)
        return int(total.group(1)) if total else None


# ---------------------------------------------------------------------------------------------
# Judging
# ---------------------------------------------------------------------------------------------


class Goal(NamedTuple):
    text: str
    limit: float
    measured: Optional[float]
    unit: str = ""
    strict: bool = False  # less than the limit, not just as much

    def row(self):
        digits = {"calls": 0, "MB": 1}.get(self.unit, 3)
        sign = "<" if self.strict else "<="
        unit = f" {self.unit}" if self.unit else ""
        limit = f"{sign} {self.limit:,.{digits}f}{unit}"
        if self.measured is None:
            return [self.text, limit, "not measured", "unknown"]
        holds = self.measured < self.limit if self.strict else self.measured <= self.limit
        return [self.text, limit, f"{self.measured:,.{digits}f}{unit}", "yes" if holds else "NO"]


def ratio(a, b):
    return a / b if a is not None and b else None


def exponent(factor, before, after):
    return math.log(after / before) / math.log(factor) if before and after else None


class Report:
    def __init__(self, plan, bench, results):
        self.plan = plan
        self.bench = bench
        self.results = results  # workload -> program name -> Result
        self.small = plan.workloads[0]
        self.large = [w for w in results if w.lines >= plan.large]

    def seconds(self, workload, name):
        return self.results[workload][name].seconds

    def line_growth(self, name):
        """How time grows with lines. The time for the small source stands for the start-up."""
        pairs = [w for w in self.results if w.variables == self.small.variables]
        first = next((w for w in pairs if w.lines == self.plan.growth_from), None)
        times = [self.seconds(w, name) for w in (self.small, first, pairs[-1]) if w]
        if len(times) < 3 or None in times or first is pairs[-1]:
            return None
        start_up, before, after = times
        if before <= start_up or after <= start_up:
            return None
        return exponent(pairs[-1].lines / first.lines, before - start_up, after - start_up)

    def variable_growths(self, name):
        """Pairs of a number of lines and how time grows with the variables at that number."""
        for workload in self.results:
            if workload.variables != self.small.variables:
                fewer = next(
                    w for w in self.results
                    if w.lines == workload.lines and w.variables == self.small.variables
                )  # fmt: skip
                factor = workload.variables / fewer.variables
                times = self.seconds(fewer, name), self.seconds(workload, name)
                yield workload, exponent(factor, *times)

    def ratio_goals(self):
        for name, limit, strict in ((TCC, 1.0, False), (LUAC, 1.0, True)):
            for workload in self.large:
                times = self.seconds(workload, OURS), self.seconds(workload, name)
                yield Goal(f"time against {name}, {workload}", limit, ratio(*times), "", strict)
        for workload in self.large:
            times = self.seconds(workload, OURS_ALL), self.seconds(workload, OURS)
            yield Goal(f"time with all outputs against none, {workload}", 2.0, ratio(*times))
        times = self.seconds(self.small, OURS), self.seconds(self.small, EMPTY)
        yield Goal(f"time against an {EMPTY}, {self.small}", 1.3, ratio(*times))

    def growth_goals(self):
        most = max(w.lines for w in self.results)
        text = f"growth exponent, {self.plan.growth_from:,} to {most:,} lines"
        yield Goal(text, 1.05, self.line_growth(OURS))
        for workload, value in self.variable_growths(OURS):
            text = f"growth exponent, {self.small.variables} to {workload.variables:,} variables"
            yield Goal(f"{text}, {workload.lines:,} lines", 1.05, value)

    def source_size(self, workload):
        return Path(f"{self.bench.sources(workload)}.st").stat().st_size / MEGABYTE

    def memory_goals(self):
        for workload, of_program in self.results.items():
            limit = MEMORY_BASE + MEMORY_PER_SOURCE * self.source_size(workload)
            yield Goal(f"peak memory, {workload}", limit, of_program[OURS].megabytes, "MB")

    def goals(self):
        yield from self.ratio_goals()
        yield from self.growth_goals()
        yield from self.memory_goals()
        workload = self.large[0] if self.large else self.small
        calls = self.bench.system_calls(workload)
        yield Goal(f"system calls, {workload}", 1000, calls, "calls", strict=True)

    def cell(self, result):
        if result.failure:
            return result.failure
        return f"{result.seconds * 1000:,.1f} ms, {result.megabytes:.0f} MB"

    def measurement_rows(self):
        programs = [EMPTY, OURS, OURS_ALL, TCC, LUAC, FPC]
        yield ["lines", "variables", "source", "tokens a line", *programs]
        for workload, of_program in self.results.items():
            source = f"{self.bench.sources(workload)}.st"
            yield [
                f"{workload.lines:,}", f"{workload.variables:,}",
                f"{self.source_size(workload):.2f} MB", f"{tokens_per_line(source):.1f}",
                *map(self.cell, of_program.values()),
            ]  # fmt: skip
        growths = [self.line_growth(name) for name in programs[1:]]
        cells = ["" if value is None else f"{value:.2f}" for value in growths]
        yield ["growth exponent", str(self.small.variables), "", "", "", *cells]

    def print(self):
        print(f"{datetime.date.today()}, {machine()}\n\n    {shlex.join(sys.argv)}\n")
        versions = ", ".join(peer_versions())
        print(f"Build type {build_type(self.bench.yxstcmp)}; {versions}\n")
        print_table(self.measurement_rows())
        print()
        print_table([["goal", "limit", "measured", "holds"], *(g.row() for g in self.goals())])


def print_table(rows):
    rows = [list(row) for row in rows]
    widths = [max(map(len, column)) for column in zip(*rows)]
    rows.insert(1, ["-" * width for width in widths])
    for row in rows:
        print("| " + " | ".join(f"{cell:<{width}}" for cell, width in zip(row, widths)) + " |")


def machine():
    model = re.search(r"model name\s*: (.*)", Path("/proc/cpuinfo").read_text())
    name = model.group(1) if model else platform.machine()
    return f"{name}, {os.cpu_count()} CPUs, {platform.system()} {platform.release()}"


def build_type(yxstcmp):
    cache = Path(yxstcmp).with_name("CMakeCache.txt")
    text = cache.read_text() if cache.exists() else ""
    found = re.search(r"^CMAKE_BUILD_TYPE:\w+=(\w+)", text, re.M)
    return found.group(1) if found else "unknown"


def peer_versions():
    for command in (["tcc", "-v"], ["luac5.4", "-v"], ["fpc", "-iV"]):
        if shutil.which(command[0]):
            done = subprocess.run(command, capture_output=True, text=True, check=False)
            version = re.search(r"\d+\.\d+\.\d+", done.stdout + done.stderr)
            yield f"{command[0]} {version.group() if version else ''}".strip()


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", type=Path, required=True, help="the folder of the build")
    parser.add_argument("--data", type=Path, help="where sources and outputs are kept")
    parser.add_argument("--quick", action="store_true", help="small sources and few rounds")
    parser.add_argument("--max-lines", type=int, help="leave out the larger sources")
    parser.add_argument("--seed", type=int, default=1, help="another program of the same kind")
    arguments = parser.parse_args()

    build = arguments.build.resolve()
    for name in ("yxstcmp", "bench/launcher", "bench/empty_qt"):
        if not (build / name).exists():
            parser.error(f"{build / name} is not built")
    data = (arguments.data or build / "bench" / "data").resolve()
    plan = QUICK if arguments.quick else FULL
    bench = Bench(build, data, arguments.seed)
    results, too_slow = {}, set()
    for workload in plan.workloads:
        if workload.lines <= (arguments.max_lines or math.inf):
            results[workload] = bench.measure(workload, too_slow)
            too_slow |= {n for n, r in results[workload].items() if r.failure == TOO_SLOW}
    report = Report(plan, bench, results)
    report.print()
    failures = {result.failure for of_program in results.values() for result in of_program.values()}
    return 1 if failures - {None, NOT_INSTALLED, TOO_SLOW} else 0


if __name__ == "__main__":
    sys.exit(main())
