"""Runs that want memory: at a certain allocation, or in a small address space."""

import resource
import subprocess
from typing import NamedTuple

from support import side_by_side
from workplace import TIMEOUT_SECONDS, Workplace, finish_shown, undisturbed

OPTIONS = ("-l", "-s", "-i", "-m", "-n", "-r", "-e")
OUT_OF_MEMORY = b"Out of memory"


class Want(NamedTuple):
    source: bytes
    at: int = 0  # the allocation that fails; 0: none
    do_others: bool = False  # all that follow fail too
    address_space: int = resource.RLIM_INFINITY
    seconds: int = TIMEOUT_SECONDS  # after which the run counts as one that hangs

    def settings(self):
        return {"AT": self.at, **({"FROM_THERE_ON": 1} if self.do_others else {})}

    def limit(self):
        resource.setrlimit(resource.RLIMIT_AS, (self.address_space, self.address_space))


class Moment(NamedTuple):
    """What the library tells when main begins or the process ends."""

    allocations: int
    kilobytes: int  # of address space; the most there was, at the end


class End(NamedTuple):
    status: int
    shown: bytes
    moments: dict  # by their names; one that the run did not come to is missing


def run(place, library, want):
    environment = library.environment(place.path, place.log, **want.settings())
    pipes = {"stdout": subprocess.PIPE, "stderr": subprocess.STDOUT}
    process = place.start(*OPTIONS, env=environment, preexec_fn=want.limit, **pipes)
    status, shown = finish_shown(process, want.seconds)
    words = [line.split() for line in place.log_lines()]
    return End(status, shown, {name: Moment(int(n), int(size)) for name, n, size in words})


def moments_of(library, source):
    """The moments of a run that wants nothing."""
    with Workplace(source) as place:
        return run(place, library, Want(source)).moments


def end_faults(place, end):
    """What is wrong with the end of a run that had come to main."""
    expected = undisturbed(place.source, *OPTIONS)
    if end.status == 0:
        is_whole = expected[0] is not None and (place.code(), place.side_texts()) == expected
        return [] if is_whole else ["success without the right files"]
    if end.status != 1:
        return [f"status {end.status}: {end.shown[-80:]}"]
    found = ["code after an error"] if place.code() is not None else []
    if OUT_OF_MEMORY not in end.shown and (expected[0] is not None or b"Error" not in end.shown):
        found.append(f"status 1, but it says {end.shown[-80:]}")
    return found


def faults_of(library, want):
    """Before main the libraries may end the process as they like; files are not yet theirs."""
    with Workplace(want.source) as place:
        end = run(place, library, want)
        is_compiler = "main" in end.moments
        faults = place.faults({undisturbed(want.source)[0]} if is_compiler else set())
        if is_compiler:
            faults += end_faults(place, end)
        return [f"{want[1:]}: {fault}" for fault in faults]


def check(library, wants):
    """The faults of each run that has any, and the number of runs."""
    found = side_by_side(lambda want: faults_of(library, want), wants)
    return [faults for faults in found if faults], len(wants)


def failing_allocations(source, numbers):
    """Each of these allocations fails, alone and with all that follow."""
    return [Want(source, at, do_others) for at in numbers for do_others in (False, True)]
