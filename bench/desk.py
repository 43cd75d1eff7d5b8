"""Compares the desk's program with the compiler on the same scripts, run in turns.

Each pair of runs gives a ratio of their times; the median of the ratios is the figure.
"""

import os
import shutil
import statistics
import subprocess
from pathlib import Path
from random import Random
from typing import NamedTuple

from against import cells
from runner import Workload, build_type, print_heading, print_table, say

COMPARED = {  # the limit of the ratio for each workload
    Workload(1_000, 100, 41): 4.0,
    Workload(100_000, 100, 11): 20.0,
}
GROWTH = [Workload(25_000, 100, 3), Workload(50_000, 100, 3), Workload(100_000, 100, 3)]
GROWTH_LIMIT = 1.1  # of the memory for each line, the largest script by the smallest
CHECK_LIMIT = 1.5
FMT_LIMIT = 10.0


class Plan(NamedTuple):
    compared: dict
    growth: list
    scripts: int  # that are checked in one run
    formatted: Workload
    rounds: int


FULL = Plan(
    COMPARED, GROWTH, scripts=1_000, formatted=Workload(100_000, 100, 11), rounds=7
)
QUICK = Plan(
    {Workload(1_000, 100, 3): 4.0, Workload(4_000, 100, 3): 20.0},
    [Workload(1_000, 100, 1), Workload(2_000, 100, 1), Workload(4_000, 100, 1)],
    scripts=50,
    formatted=Workload(4_000, 100, 3),
    rounds=2,
)
HEADER = ["measured", "pairs", "time", "desk", "compiler", "desk / compiler", "95 % interval",
          "middle half", "limit", "holds"]  # fmt: skip


# ---------------------------------------------------------------------------------------------
# Small scripts
# ---------------------------------------------------------------------------------------------

SMALL_LINES = 100
SMALL_VARIABLES = 20


def small_statement(random):
    a, b, c = (f"v{random.randrange(SMALL_VARIABLES)}" for _ in range(3))
    number = random.randrange(1, 100)
    return random.choice([
        [f"{a} := {b} + {c} * {number};"],
        [f"{a} := ({b} - {number}) / 7;  // {c}"],
        [f"IF ({a} > {b}) AND ({c} < {number}) THEN", f"    {a} := {number};", "END_IF;"],
        [f"WHILE {a} > {number} DO", f"    {a} := {a} - {number};", "END_WHILE;"],
    ])  # fmt: skip


def small_script(random):
    """A script of that many lines that compiles without a message."""
    lines = ["PROGRAM small", "VAR"]
    lines += [f"    v{index} : INT := {index};" for index in range(SMALL_VARIABLES)]
    lines += ["END_VAR"]
    lines += [f"    v0 := v0 + v{index};" for index in range(SMALL_VARIABLES)]
    while len(lines) < SMALL_LINES - 4:
        lines += [f"    {line}" for line in small_statement(random)]
    lines += ["    v0 := 1;"] * (SMALL_LINES - 1 - len(lines)) + ["END_PROGRAM"]
    return "".join(f"{line}\n" for line in lines)


def write_scripts(runner, count):
    """A folder of small scripts and a list of them, each with the name of its code file."""
    folder = Path(runner.path(f"small_{count}"))
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir()
    random = Random(runner.seed)
    names = [folder / f"script_{index}.st" for index in range(count)]
    for name in names:
        name.write_text(small_script(random), encoding="utf-8")
    pairs = Path(runner.path("pairs.txt"))
    pairs.write_text("".join(f"{name}\n{name.with_suffix('.yx')}\n" for name in names))
    return folder, pairs


# ---------------------------------------------------------------------------------------------
# Measuring
# ---------------------------------------------------------------------------------------------


def usages(runner, commands, rounds):
    """Pairs of what the commands use, after one round that warms the caches."""
    pairs = [[runner.run(*command) for command in commands] for _ in range(rounds + 1)]
    return pairs[1:]


def rows_of(title, pairs, limit):
    """For each kind of time, from pairs of what the desk and the compiler used."""
    for field, name in (("seconds", "CPU"), ("wall", "wall")):
        times = [(getattr(a, field), getattr(b, field)) for a, b in pairs]
        holds = "yes" if statistics.median(a / b for a, b in times) <= limit else "NO"
        yield [title, str(len(pairs)), name, *cells(times), f"<= {limit:.1f}", holds]


def facts_command(runner, workload):
    return [str(runner.build / "yxst"), "facts", f"{runner.sources(workload)}.st"], ()


def facts_rows(runner, compared):
    for workload, limit in compared.items():
        say(f"measuring facts, {workload}")
        compiler = runner.compile_command(runner.build / "yxstcmp", workload)
        commands = [facts_command(runner, workload), compiler]
        pairs = usages(runner, commands, workload.rounds)
        yield from rows_of(f"facts, {workload.lines:,} lines", pairs, limit)


def has_check(runner):
    call = [runner.build / "yxst", "check", "--help"]
    return subprocess.run(call, capture_output=True, check=False).returncode == 0


def check_rows(runner, plan):
    """All scripts of a folder at once, by as many processes as there are processors."""
    jobs = str(os.cpu_count())
    title = f"check, {plan.scripts:,} scripts of {SMALL_LINES} lines, {jobs} jobs"
    if not has_check(runner):
        yield [title, *["not measured"] * 7, f"<= {CHECK_LIMIT}", "unknown"]
        return
    say(f"measuring {title}")
    folder, pairs_file = write_scripts(runner, plan.scripts)
    compiler = ["xargs", "-a", str(pairs_file), "-P", jobs, "-n", "2",
                str(runner.build / "yxstcmp")]  # fmt: skip
    desk = [str(runner.build / "yxst"), "check", f"--jobs={jobs}", str(folder)]
    yield from rows_of(title, usages(runner, [(desk,), (compiler,)], plan.rounds), CHECK_LIMIT)


def without_indents(path):
    return b"".join(line.lstrip() for line in path.read_bytes().splitlines(keepends=True))


def fmt_pairs(runner, workload):
    """Each run formats a script that has lost its indents, for it writes what comes of it."""
    spoilt = without_indents(Path(f"{runner.sources(workload)}.st"))
    script = Path(runner.path("spoilt.st"))
    code = runner.path("code")
    for _ in range(workload.rounds + 1):
        script.write_bytes(spoilt)
        compiler = runner.run([str(runner.build / "yxstcmp"), str(script), code], [code])
        yield runner.run([str(runner.build / "yxst"), "fmt", str(script)]), compiler


def fmt_rows(runner, workload):
    say(f"measuring fmt, {workload}")
    pairs = list(fmt_pairs(runner, workload))[1:]
    yield from rows_of(f"fmt, {workload.lines:,} lines", pairs, FMT_LIMIT)


def memory_rows(runner, workloads):
    yield ["lines", "yxst facts", "a line", "limit", "holds"]
    base = runner.run([str(runner.build / "yxst"), "--version"]).megabytes
    first = None
    for workload in workloads:
        say(f"measuring memory, {workload}")
        command, _ = facts_command(runner, workload)
        samples = [runner.run(command).megabytes for _ in range(workload.rounds)]
        peak = statistics.median(samples)
        each = (peak - base) / workload.lines
        first = first or each
        limit, holds = GROWTH_LIMIT * first, each <= GROWTH_LIMIT * first
        yield [f"{workload.lines:,}", f"{peak:,.1f} MB", f"{each * 1e6:,.0f} B",
               f"<= {limit * 1e6:,.0f} B", "yes" if holds else "NO"]  # fmt: skip


def compare(runner, is_quick):
    plan = QUICK if is_quick else FULL
    times = [HEADER, *facts_rows(runner, plan.compared), *check_rows(runner, plan),
             *fmt_rows(runner, plan.formatted)]  # fmt: skip
    memory = list(memory_rows(runner, plan.growth))
    print_heading()
    print(f"Build type {build_type(runner.build / 'yxst')}\n")
    print_table(times)
    print()
    print_table(memory)
