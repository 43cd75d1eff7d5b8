"""Compares the machine of the desk with Lua on the same programs, run in turns, and measures the
subcommands that execute and verify.

The programs stand in bench/machine/, each beside its twin in Lua. Each pair of runs gives a ratio
of their processor times; the median of the ratios is the figure.
"""

import statistics
import subprocess
from pathlib import Path
from typing import NamedTuple

from against import cells
from runner import Failure, Workload, build_type, print_heading, print_table, say

PROGRAMS = Path(__file__).with_name("machine")
LUA = "lua5.4"
LIMITS = {"checked": 2.0, "fast": 1.0, "items": None}  # of the ratio, for each way
WAYS = {
    "checked": "with checks",
    "fast": "without checks",
    "items": "with checks, an item at a time",
}
HEADER = ["program", "machine", "pairs", "machine", "Lua", "machine / Lua", "95 % interval",
          "middle half", "limit", "holds"]  # fmt: skip

EXAMPLES = Path(__file__).parents[1] / "examples"
PUMP = EXAMPLES / "pump_sequence.st"
DAY = 864_000  # cycles of 100 ms
DAY_LIMIT = 5.0  # seconds


class Plan(NamedTuple):
    cycles: int
    rounds: int
    verified: Workload


FULL = Plan(cycles=50, rounds=7, verified=Workload(100_000, 100, 7))
QUICK = Plan(cycles=20, rounds=2, verified=Workload(4_000, 100, 2))


def compiled(runner, script):
    code = runner.path(f"{script.stem}.yx")
    compiler = str(runner.build / "yxstcmp")
    subprocess.run([compiler, str(script), code], stdout=subprocess.DEVNULL, check=True)
    return code


def machine_command(runner, way, code, cycles):
    return [str(runner.build / "bench" / "machine_run"), way, code, str(cycles)]


def variables_of(command):
    """What a run prints, by the names of the variables."""
    printed = subprocess.run(command, capture_output=True, check=True, text=True).stdout
    return dict(line.split() for line in printed.splitlines())


def check_equal(machine, lua):
    """Both must have worked out the same."""
    found = variables_of(machine)
    for name, value in variables_of(lua).items():
        if float(found[name]) != float(value):
            raise Failure(f"{name} is {found[name]}, and {value} in Lua")


def rows_of(runner, script, plan):
    say(f"measuring {script.stem}")
    code = compiled(runner, script)
    lua = [LUA, str(script.with_suffix(".lua")), str(plan.cycles)]
    ways = {way: machine_command(runner, way, code, plan.cycles) for way in WAYS}
    check_equal(ways["checked"], lua)
    samples = [
        {way: (runner.run(command).seconds, runner.run(lua).seconds)
         for way, command in ways.items()}
        for _ in range(plan.rounds)
    ]  # fmt: skip
    for way, limit in LIMITS.items():
        pairs = [sample[way] for sample in samples]
        ratio = statistics.median(a / b for a, b in pairs)
        goal = ["", ""] if limit is None else [f"<= {limit:.1f}", "yes" if ratio <= limit else "NO"]
        yield [script.stem, WAYS[way], str(len(pairs)), *cells(pairs), *goal]


def day_rows(runner, plan):
    say("measuring a day of a pump")
    code = compiled(runner, PUMP)
    yield ["program", "machine", "cycles", "time", "limit", "holds"]
    for way, title in WAYS.items():
        command = machine_command(runner, way, code, DAY)
        seconds = statistics.median(runner.run(command).seconds for _ in range(plan.rounds))
        holds = "yes" if seconds <= DAY_LIMIT else "NO"
        yield [PUMP.stem, title, f"{DAY:,}", f"{seconds:.2f} s", f"<= {DAY_LIMIT} s", holds]


# ---------------------------------------------------------------------------------------------
# Subcommands
# ---------------------------------------------------------------------------------------------


def verified_code(runner, workload):
    command, [code] = runner.compile_command(runner.build / "yxstcmp", workload)
    runner.run(command, [code])
    return code


def subcommand_rows(runner, plan):
    yield ["command", "CPU time", "peak memory"]
    yxst = str(runner.build / "yxst")
    lines = f"code of {plan.verified.lines:,} lines"
    commands = {
        f"yxst run --cycles={DAY} pump_sequence.st": ["run", f"--cycles={DAY}", str(PUMP)],
        f"yxst verify, {lines}": ["verify", verified_code(runner, plan.verified)],
        "yxst test examples": ["test", str(EXAMPLES)],
    }
    for title, arguments in commands.items():
        say(f"measuring {title}")
        used = [runner.run([yxst, *arguments]) for _ in range(plan.rounds)]
        seconds, _, memory = (statistics.median(column) for column in zip(*used))
        yield [title, f"{seconds:.2f} s", f"{memory:.1f} MB"]


def compare(runner, is_quick):
    plan = QUICK if is_quick else FULL
    rows = [HEADER]
    for script in sorted(PROGRAMS.glob("*.st")):
        rows += rows_of(runner, script, plan)
    day = list(day_rows(runner, plan))
    subcommands = list(subcommand_rows(runner, plan))
    print_heading()
    print(f"Build type {build_type(runner.build / 'yxst')}\n")
    print_table(rows)
    print()
    print_table(day)
    print()
    print_table(subcommands)
