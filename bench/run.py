#!/usr/bin/env python3
"""Measures yxstcmp beside tcc and luac on the same generated programs, or beside another build, or
the desk's program beside yxstcmp, its language server beside its check, or its machine beside Lua.

All programs take turns within each round; a figure is the median of the rounds. Time is user
plus system time. The result goes to standard output as Markdown; goals that are missed are shown
and do not fail the run.
"""

import argparse
import math
import re
import shutil
import statistics
import subprocess
import sys
from pathlib import Path
from typing import NamedTuple, Optional

import against
import desk
import lsp
import machine
from generate import tokens_per_line
from runner import (
    ALL_OUTPUTS, MEGABYTE, Failure, Runner, Workload, build_type, print_heading, print_table, say,
)  # fmt: skip

NOT_INSTALLED = "not installed"
MEMORY_BASE = 16.0  # MB
MEMORY_PER_SOURCE = 6.0

# Names of the columns
EMPTY = "empty Qt program"
OURS = "yxstcmp"
OURS_ALL = "yxstcmp " + " ".join(ALL_OUTPUTS)
TCC = "tcc -c"
LUAC = "luac5.4 -o"


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


# ---------------------------------------------------------------------------------------------
# Measuring
# ---------------------------------------------------------------------------------------------


class Program:
    """A program and what it used for one workload."""

    def __init__(self, name, command, outputs=()):
        self.name = name
        self.command = command
        self.outputs = outputs
        self.samples = []
        self.failure = None if shutil.which(command[0]) else NOT_INSTALLED

    def measure(self, runner):
        if self.failure:
            return
        try:
            self.samples.append(runner.run(self.command, self.outputs))
        except Failure as failure:
            self.failure = str(failure)
            say(failure)

    def median(self, field):
        """None if the program failed. The first sample is left out: it warmed the caches."""
        if self.failure:
            return None
        return statistics.median(getattr(sample, field) for sample in self.samples[1:])


def programs_for(runner, workload):
    base = runner.sources(workload)
    compiler = runner.build / "yxstcmp"
    tcc, luac = runner.path("tcc.o"), runner.path("luac.out")
    return [
        Program(EMPTY, [str(runner.build / "bench" / "empty_qt")]),
        Program(OURS, *runner.compile_command(compiler, workload)),
        Program(OURS_ALL, *runner.compile_command(compiler, workload, ALL_OUTPUTS)),
        Program(TCC, ["tcc", "-c", "-o", tcc, f"{base}.c"], [tcc]),
        Program(LUAC, ["luac5.4", "-o", luac, f"{base}.lua"], [luac]),
    ]


def measure(runner, workload):
    """The programs by their names, measured."""
    programs = programs_for(runner, workload)
    say(f"measuring {workload}")
    for i in range(workload.rounds + 1):
        first = i % len(programs)
        for program in programs[first:] + programs[:first]:
            program.measure(runner)
    return {program.name: program for program in programs}


def system_calls(runner, workload):
    """How many system calls a compilation takes, or None if that cannot be counted."""
    if not shutil.which("strace"):
        return None
    table = runner.path("strace.txt")
    command, _ = runner.compile_command(runner.build / "yxstcmp", workload)
    try:
        runner.run(["strace", "-c", "-f", "-o", table, *command])
    except Failure as failure:
        say(f"strace: {failure}")
        return None
    total = re.search(r"^\s*100\.00\s+\S+\s+\S+\s+(\d+)\s.*total$", Path(table).read_text(), re.M)
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
    def __init__(self, plan, runner, results):
        self.plan = plan
        self.runner = runner
        self.results = results  # workload -> program name -> Program
        self.small = plan.workloads[0]
        self.large = [w for w in results if w.lines >= plan.large]

    def seconds(self, workload, name):
        return self.results[workload][name].median("seconds")

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
        return Path(f"{self.runner.sources(workload)}.st").stat().st_size / MEGABYTE

    def memory_goals(self):
        for workload, of_program in self.results.items():
            limit = MEMORY_BASE + MEMORY_PER_SOURCE * self.source_size(workload)
            measured = of_program[OURS].median("megabytes")
            yield Goal(f"peak memory, {workload}", limit, measured, "MB")

    def goals(self):
        yield from self.ratio_goals()
        yield from self.growth_goals()
        yield from self.memory_goals()
        workload = self.large[0] if self.large else self.small
        calls = system_calls(self.runner, workload)
        yield Goal(f"system calls, {workload}", 1000, calls, "calls", strict=True)

    def measurement_rows(self):
        programs = [EMPTY, OURS, OURS_ALL, TCC, LUAC]
        yield ["lines", "variables", "source", "tokens a line", *programs]
        for workload, of_program in self.results.items():
            source = f"{self.runner.sources(workload)}.st"
            yield [
                f"{workload.lines:,}", f"{workload.variables:,}",
                f"{self.source_size(workload):.2f} MB", f"{tokens_per_line(source):.1f}",
                *map(cell, of_program.values()),
            ]  # fmt: skip
        growths = [self.line_growth(name) for name in programs[1:]]
        cells = ["" if value is None else f"{value:.2f}" for value in growths]
        yield ["growth exponent", str(self.small.variables), "", "", "", *cells]

    def print(self):
        print_heading()
        versions = ", ".join(peer_versions())
        print(f"Build type {build_type(self.runner.build / 'yxstcmp')}; {versions}\n")
        print_table(self.measurement_rows())
        print()
        print_table([["goal", "limit", "measured", "holds"], *(g.row() for g in self.goals())])


def cell(program):
    if program.failure:
        return program.failure
    return f"{program.median('seconds') * 1000:,.1f} ms, {program.median('megabytes'):.0f} MB"


def peer_versions():
    for command in (["tcc", "-v"], ["luac5.4", "-v"]):
        if shutil.which(command[0]):
            done = subprocess.run(command, capture_output=True, text=True, check=False)
            version = re.search(r"\d+\.\d+\.\d+", done.stdout + done.stderr)
            yield f"{command[0]} {version.group() if version else ''}".strip()


def program_path(text):
    path = shutil.which(text)
    if not path:
        raise argparse.ArgumentTypeError(f"{text} is no program")
    return Path(path)


def parse_arguments():
    parser = argparse.ArgumentParser(prog="scripts/bench", description=__doc__.splitlines()[0])
    parser.add_argument("build", type=Path, help=argparse.SUPPRESS)
    parser.add_argument("--quick", action="store_true", help="small sources and few rounds")
    parser.add_argument("--max-lines", type=int, default=math.inf, help="leave out larger sources")
    parser.add_argument("--seed", type=int, default=1, help="another program of the same kind")
    parser.add_argument("--against", type=program_path, metavar="OTHER_YXSTCMP",
                        help="compare with another build of the compiler")  # fmt: skip
    parser.add_argument("--desk", action="store_true", help="compare yxst with the compiler")
    parser.add_argument("--lsp", action="store_true", help="compare yxst lsp with yxst check")
    parser.add_argument("--machine", action="store_true", help="compare yxst's machine with Lua")
    return parser.parse_args()


def measure_beside_peers(runner, plan, max_lines):
    workloads = [w for w in plan.workloads if w.lines <= max_lines]
    results = {workload: measure(runner, workload) for workload in workloads}
    Report(plan, runner, results).print()
    failures = {program.failure for of_name in results.values() for program in of_name.values()}
    return 1 if failures - {None, NOT_INSTALLED} else 0


def main():
    arguments = parse_arguments()
    runner = Runner(arguments.build.resolve(), arguments.seed)
    if not (arguments.against or arguments.desk or arguments.lsp or arguments.machine):
        plan = QUICK if arguments.quick else FULL
        return measure_beside_peers(runner, plan, arguments.max_lines)
    try:
        if arguments.desk:
            desk.compare(runner, arguments.quick)
        elif arguments.lsp:
            lsp.compare(runner, arguments.quick)
        elif arguments.machine:
            machine.compare(runner, arguments.quick)
        else:
            against.compare(runner, arguments.against, arguments.quick, arguments.max_lines)
    except Failure as failure:
        say(failure)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
