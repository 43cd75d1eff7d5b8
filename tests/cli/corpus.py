"""The accepted programs among the golden cases and the examples."""

import random
import sys
from itertools import groupby
from typing import NamedTuple

from support import ROOT

sys.path.insert(0, str(ROOT / "tests/golden"))
from cases import all_cases  # noqa: E402


class Source(NamedTuple):
    name: str
    data: bytes


def accepted_sources():
    """Those whose expected files show a success, and every example."""
    sources = [Source(case.name, case.data) for case in all_cases() if case.should_succeed()]
    for path in sorted((ROOT / "examples").glob("*.st")):
        sources.append(Source(f"examples/{path.stem}", path.read_bytes()))
    return sources


def sample_of_sources(count, seed=1):
    """About that many of the accepted sources, of each area the same share but one at least."""
    sources = accepted_sources()
    chance = random.Random(seed)
    sample = []
    for _, area in groupby(sources, lambda source: source.name.partition("/")[0]):
        of_area = list(area)
        sample += chance.sample(of_area, -(-count * len(of_area) // len(sources)))
    return sample
