"""Compares this build of the compiler with another one, run in turns on the same programs.

Each pair of runs gives one ratio of their times. What disturbs the machine for longer than a run
disturbs both, so the median of the ratios is far steadier than the times.
"""

import math
import os
import shutil
import statistics

from runner import ALL_OUTPUTS, Workload, build_type, print_heading, print_table, say

# The rounds are the pairs.
FULL = [Workload(300, 100, 601), Workload(100_000, 100, 151), Workload(1_000_000, 100, 41)]
QUICK = [Workload(300, 100, 5), Workload(4_000, 100, 5)]
HEADER = ["lines", "outputs", "pairs", "time", "this", "other", "this / other",
          "95 % interval", "middle half"]  # fmt: skip


def measure(runner, workload, compilers, options):
    """Pairs of the usage of this compiler and of the other."""
    commands = [runner.compile_command(compiler, workload, options) for compiler in compilers]
    pairs = [[runner.run(*command) for command in commands] for _ in range(workload.rounds + 1)]
    return pairs[1:]  # the first one warms the caches


def cells(pairs):
    """From pairs of times: the medians, the median of the ratios, its interval, their quartiles."""
    ratios = sorted(this / other for this, other in pairs)
    # The median lies between these ranks of a sample with that probability, however distributed.
    rank = max(0, int((len(ratios) - 1.96 * math.sqrt(len(ratios))) / 2))
    lower, middle, upper = statistics.quantiles(ratios, n=4)
    return [
        *(f"{statistics.median(times) * 1000:,.1f} ms" for times in zip(*pairs)),
        f"{middle:.3f}",
        f"{ratios[rank]:.3f} to {ratios[-1 - rank]:.3f}",
        f"{lower:.3f} to {upper:.3f}",
    ]


def rows(runner, workloads, compilers):
    yield HEADER
    for workload in workloads:
        for options, outputs in (((), "code"), (ALL_OUTPUTS, "all")):
            say(f"measuring {workload}, outputs: {outputs}")
            pairs = measure(runner, workload, compilers, options)
            head = [f"{workload.lines:,}", outputs, str(len(pairs))]
            yield [*head, "CPU", *cells([(a.seconds, b.seconds) for a, b in pairs])]
            yield [*head, "wall", *cells([(a.wall, b.wall) for a, b in pairs])]


def compare(runner, other, is_quick, max_lines):
    this = runner.build / "yxstcmp"
    # Side by side, so that neither folder nor length of the name makes a difference.
    compilers = [
        shutil.copy(this, runner.path("compiler_a")),
        shutil.copy(other, runner.path("compiler_b")),
    ]
    os.sched_setaffinity(0, [max(os.sched_getaffinity(0))])
    workloads = [w for w in (QUICK if is_quick else FULL) if w.lines <= max_lines]
    table = list(rows(runner, workloads, compilers))
    print_heading()
    print(f"Build types: this {build_type(this)}, other {build_type(other)}\n")
    print_table(table)
