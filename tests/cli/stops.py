"""Runs that are stopped at each call that has to do with their files."""

import itertools
import signal
from typing import NamedTuple, Optional

from support import side_by_side
from workplace import SIDE_OPTIONS, Workplace, undisturbed

# Signals that ask the run to end; it may still tidy up.
POLITE_SIGNALS = (signal.SIGTERM, signal.SIGINT, signal.SIGHUP)

EXIT_STATUS = 77  # of a run that ends by _exit, where nobody tidies up


class Stop(NamedTuple):
    source: bytes
    at: int
    signal: Optional[int] = None  # None: _exit
    is_after: bool = False
    old_code: Optional[bytes] = None

    def settings(self):
        settings = {"AT": self.at, "STATUS": EXIT_STATUS}
        if self.signal is not None:
            settings["SIGNAL"] = int(self.signal)
        if self.is_after:
            settings["AFTER"] = 1
        return settings

    def statuses(self):
        if self.signal in POLITE_SIGNALS:
            return (1, -self.signal)
        return (EXIT_STATUS,) if self.signal is None else (-self.signal,)

    def whole_codes(self):
        return {undisturbed(self.source)[0], self.old_code}

    def strays(self):
        """Who is ended without warning may leave the file that was being written."""
        return 0 if self.signal in POLITE_SIGNALS else 1


def calls_of(library, source, old_code=None):
    """The calls of an undisturbed run, each as its name and the file's."""
    with Workplace(source, old_code) as place:
        place.run(*SIDE_OPTIONS, env=library.environment(place.path, place.log, AT=0))
        return place.log_lines()


def faults_of(library, stop):
    with Workplace(stop.source, stop.old_code) as place:
        environment = library.environment(place.path, place.log, **stop.settings())
        status = place.run(*SIDE_OPTIONS, env=environment)
        faults = place.faults(stop.whole_codes(), stop.strays())
        if status not in stop.statuses():
            faults.append(f"status {status}")
        where = place.log_lines()[stop.at - 1 : stop.at]
        return [f"{end_name(stop)} at {stop.at} {where}: {fault}" for fault in faults]


def end_name(stop):
    name = "_exit" if stop.signal is None else signal.Signals(stop.signal).name
    return f"{name} {'after' if stop.is_after else 'before'}"


def check_every_call(library, source, ends, moments=(False,), old_codes=(None,)):
    """The faults of each run that has any, and the number of runs."""
    stops = []
    for old_code in old_codes:
        calls = range(1, len(calls_of(library, source, old_code)) + 1)
        for at, end, is_after in itertools.product(calls, ends, moments):
            stops.append(Stop(source, at, end, is_after, old_code))
    found = side_by_side(lambda stop: faults_of(library, stop), stops)
    return [faults for faults in found if faults], len(stops)
