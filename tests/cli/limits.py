"""Runs the compiler under a limited stack and tells what the run took."""

import os
import resource
import subprocess
import threading
from pathlib import Path
from typing import NamedTuple

from support import BINARY

KIB = 1024
MIB = 1024 * KIB
GIB = 1024 * MIB

# The frames of a sanitizer, or of a build that is not optimised, measure nothing.
IS_SANITIZED = b"__asan_init" in BINARY.read_bytes()
IS_MEASURE = not IS_SANITIZED and os.environ.get("YXST_CONFIG", "Release") == "Release"

# The smallest stack that the compiler promises to work with.
STACK_SIZE = 4 * MIB if IS_MEASURE else 64 * MIB

# Far above what the slowest run takes, to tell "slow machine" from "does not end".
TIMEOUT_SECONDS = 600


# The largest source, in bytes.
SOURCE_SIZE_LIMIT = 700_000_000


def available_memory():
    """What is free or holds files that could be read again."""
    for line in Path("/proc/meminfo").read_text().splitlines():
        if line.startswith("MemAvailable:"):
            return int(line.split()[1]) * KIB
    return 0


class Run(NamedTuple):
    status: int
    screen: bytes  # the beginning of what went to standard output
    seconds: float  # of the processor
    peak_bytes: int  # of memory; not below what this Python process itself holds


def limit_stack(size):
    hard = resource.getrlimit(resource.RLIMIT_STACK)[1]
    resource.setrlimit(resource.RLIMIT_STACK, (size, hard))


def without_core_dump(size):
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    limit_stack(size)


def run_limited(folder: Path, *arguments, stack_size=STACK_SIZE, screen_bytes=64 * KIB) -> Run:
    screen = folder / "screen.txt"
    with screen.open("wb") as stdout:
        process = subprocess.Popen(
            [BINARY, *arguments],
            cwd=folder,
            stdin=subprocess.DEVNULL,
            stdout=stdout,
            stderr=subprocess.DEVNULL,
            preexec_fn=lambda: without_core_dump(stack_size),
        )
        timer = threading.Timer(TIMEOUT_SECONDS, process.kill)
        timer.start()
        _, wait_status, usage = os.wait4(process.pid, 0)
        timer.cancel()
    process.returncode = os.waitstatus_to_exitcode(wait_status)
    with screen.open("rb") as stream:
        beginning = stream.read(screen_bytes)
    seconds = usage.ru_utime + usage.ru_stime
    return Run(process.returncode, beginning, seconds, usage.ru_maxrss * KIB)
