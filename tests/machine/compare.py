"""Compares what yxst run makes of generated programs with the evaluation that uses no target code.

    compare.py COUNT [--seed SEED] [--engine FILE] [--check NAME=ACTION] [--vary] [--keep FOLDER]

All variables of the program after each cycle must be equal, reals bit for bit, and a run must end
before its last cycle in both or in neither. `--vary` draws the choices of an engine, and some of
the checks, anew for each program. The first difference is shown with its program; the status is 1
if there is one. Nothing is started after SECONDS.

The programs are those that the environment variables YXSTCMP and YXST name, else those in build/.
"""

import argparse
import csv
import math
import os
import struct
import subprocess
import sys
import tempfile
import time
from collections import Counter
from concurrent.futures import ProcessPoolExecutor
from pathlib import Path
from random import Random
from typing import NamedTuple, Optional

from evaluate import evaluate, read_engine, read_inputs
from generate import Generated, generate
from operations import CHOICES, Undefined, to_single

ROOT = Path(__file__).resolve().parents[2]
COMPILER = Path(os.environ.get("YXSTCMP", ROOT / "build" / "yxstcmp")).resolve()
DESK = Path(os.environ.get("YXST", ROOT / "build" / "yxst")).resolve()

PROCESSES = 2
SECONDS = 3600
SECONDS_OF_RUN = 60
SHOWN = 40  # differences of which one line is shown
BATCH = 25  # programs that a process takes at a time
VARIED_CHECKS = ("division-by-zero", "stack-left", "stack-empty")


class Task(NamedTuple):
    seed: int
    choices: dict
    checks: dict


class Outcome(NamedTuple):
    kind: str  # "equal", "stopped alike", "undefined" or "different"
    cycles: int
    seed: int
    text: str = ""


class Trace(NamedTuple):
    rows: list  # of each cycle: the text of each column, by its name in capitals
    stopped: Optional[str]


# ---------------------------------------------------------------------------------------------
# The machine's side
# ---------------------------------------------------------------------------------------------


def execute(program, task, folder):
    """Compiles and runs a program in a folder."""
    source, inputs = folder / "program.st", folder / "inputs.csv"
    source.write_text(program.source, "utf-8")
    inputs.write_text(program.inputs, "utf-8")
    engine = folder / "engine"
    engine.write_text("".join(f"{key} = {value}\n" for key, value in task.choices.items()))
    call([COMPILER, source, folder / "program.yx"], allowed=(0,))
    trace = folder / "trace.csv"
    options = [f"--cycles={program.cycles}", f"--tick={program.tick}", f"--inputs={inputs}"]
    options += [f"--trace={trace}", f"--engine={engine}", "--quiet"]
    options += [f"--check={name}={action}" for name, action in task.checks.items()]
    process = call([DESK, "run", source, *options], allowed=(0, 1))
    # A run that an initial value ends has no cycles and writes no trace.
    rows = read_trace(trace.read_text("utf-8")) if trace.exists() else []
    message = process.stderr.strip() or process.stdout.strip() or "no message"
    return Trace(rows, message if process.returncode else None)


def call(arguments, allowed):
    process = subprocess.run(
        arguments,
        stdin=subprocess.DEVNULL,
        capture_output=True,
        encoding="utf-8",
        timeout=SECONDS_OF_RUN,
        check=False,
    )
    if process.returncode not in allowed:
        raise RuntimeError(f"status {process.returncode}: {process.stderr or process.stdout}")
    return process


def read_trace(text):
    lines = [line for line in text.splitlines() if not line.startswith("#")]
    rows = list(csv.reader(lines))
    names = [name.upper() for name in rows[0]]
    return [dict(zip(names, row)) for row in rows[1:]]


# ---------------------------------------------------------------------------------------------
# Comparison
# ---------------------------------------------------------------------------------------------


def number_in(text, type_name):
    """What a cell of the trace says, as the evaluation would hold it."""
    if type_name == "BOOL":
        return {"TRUE": 1, "FALSE": 0}[text]
    if type_name == "REAL":
        return to_single(float(text))
    return float(text) if type_name == "LREAL" else int(text)


def is_equal(one, other):
    if isinstance(one, float) and isinstance(other, float):
        both_no_number = math.isnan(one) and math.isnan(other)
        return both_no_number or struct.pack("d", one) == struct.pack("d", other)
    return type(one) is type(other) and one == other


def first_difference(result, trace):
    """A text, or None."""
    if (result.stopped is None) != (trace.stopped is None) or len(result.rows) != len(trace.rows):
        evaluated = f"evaluation: {len(result.rows)} cycles, {result.stopped or 'not stopped'}"
        return f"{evaluated}; machine: {len(trace.rows)} cycles, {trace.stopped or 'not stopped'}"
    cycles = zip(result.ticks, result.rows, trace.rows)
    for cycle, (tick, row, texts) in enumerate(cycles, start=1):
        if tick != int(texts["TICK"]):
            return f"cycle {cycle}, tick, evaluation {tick}, machine {texts['TICK']}"
        name = different_name(result, row, texts)
        if name:
            shown = f"{name} : {result.types[name]}, evaluation {row[name]!r}"
            return f"cycle {cycle}, {shown}, machine {texts.get(name)}"
    return None


def different_name(result, row, texts):
    """The first variable with two values; one that the code does not declare may be missing."""
    for name, type_name in result.types.items():
        if name not in texts and name in result.undeclared:
            continue
        if name not in texts or not is_equal(row[name], number_in(texts[name], type_name)):
            return name
    return None


def compare_program(program, task, folder):
    try:
        inputs = read_inputs(program.inputs)
        arguments = (program.source, program.cycles, program.tick, inputs)
        result = evaluate(*arguments, task.choices, task.checks)
    except Undefined as reason:
        return Outcome("undefined", 0, task.seed, str(reason))
    difference = first_difference(result, execute(program, task, folder))
    if difference:
        return Outcome("different", len(result.rows), task.seed, difference)
    return Outcome("stopped alike" if result.stopped else "equal", len(result.rows), task.seed)


def compare_task(task):
    with tempfile.TemporaryDirectory() as folder:
        try:
            return compare_program(generate(task.seed), task, Path(folder))
        except (RuntimeError, subprocess.TimeoutExpired, LookupError, ValueError) as fault:
            return Outcome("different", 0, task.seed, f"{type(fault).__name__}: {fault}")


def compare_batch(tasks, deadline):
    return [compare_task(task) for task in tasks if time.time() < deadline]


# ---------------------------------------------------------------------------------------------
# Many programs
# ---------------------------------------------------------------------------------------------


def varied(seed):
    """An engine for a program, which differs from the default in some choices."""
    random = Random(f"engine {seed}")
    keys = [key for key in CHOICES if key != "scan-limit" and random.random() < 0.4]
    choices = {key: random.choice(CHOICES[key]) for key in keys}
    checks = {name: random.choice(["off", "note", "stop"]) for name in VARIED_CHECKS}
    return Task(seed, choices, checks)


def tasks_of(options):
    seeds = range(options.seed, options.seed + options.count)
    if options.vary:
        return [varied(seed) for seed in seeds]
    choices = read_engine(options.engine.read_text("utf-8")) if options.engine else {}
    checks = dict(one.split("=") for one in options.check)
    return [Task(seed, choices, checks) for seed in seeds]


def compare_all(tasks, seconds):
    deadline = time.time() + seconds
    batches = [tasks[at : at + BATCH] for at in range(0, len(tasks), BATCH)]
    with ProcessPoolExecutor(PROCESSES) as pool:
        futures = [pool.submit(compare_batch, batch, deadline) for batch in batches]
        return [outcome for future in futures for outcome in future.result()]


def show(outcomes, count):
    kinds = Counter(outcome.kind for outcome in outcomes)
    cycles = sum(outcome.cycles for outcome in outcomes)
    parts = ", ".join(f"{kind}: {number}" for kind, number in sorted(kinds.items()))
    print(f"{len(outcomes)} of {count} programs, {cycles} cycles; {parts}")


def show_difference(outcome, task, folder):
    program = generate(task.seed)
    print(f"seed {task.seed}: {outcome.text}\nengine: {task.choices}, checks: {task.checks}")
    print(f"{program.cycles} cycles, tick {program.tick}\n{program.source}{program.inputs}")
    if folder:
        keep(program, task, folder)


def keep(program: Generated, task, folder):
    folder.mkdir(parents=True, exist_ok=True)
    (folder / f"program{task.seed}.st").write_text(program.source, "utf-8")
    (folder / f"program{task.seed}.csv").write_text(program.inputs, "utf-8")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("count", type=int)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--engine", type=Path)
    parser.add_argument("--check", action="append", default=[])
    parser.add_argument("--vary", action="store_true")
    parser.add_argument("--keep", type=Path)
    parser.add_argument("--seconds", type=int, default=SECONDS)
    options = parser.parse_args()
    tasks = tasks_of(options)
    outcomes = compare_all(tasks, options.seconds)
    different = [outcome for outcome in outcomes if outcome.kind == "different"]
    if different:
        first = different[0]
        show_difference(first, tasks[first.seed - options.seed], options.keep)
        for outcome in different[:SHOWN]:
            print(f"seed {outcome.seed}: {outcome.text}")
    show(outcomes, len(tasks))
    return 1 if different or len(outcomes) < len(tasks) else 0


if __name__ == "__main__":
    sys.exit(main())
