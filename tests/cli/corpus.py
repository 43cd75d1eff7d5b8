"""The accepted programs among the golden cases and the examples."""

import sys
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
