"""The accepted programs among the golden cases and the examples, and how tests compile them."""

import importlib.util
import os
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path
from typing import NamedTuple

from support import ROOT, Compiler


class Source(NamedTuple):
    name: str
    data: bytes


def load_golden_runner():
    spec = importlib.util.spec_from_file_location("golden_run", ROOT / "tests/golden/run.py")
    module = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(module)
    return module


def accepted_sources():
    """Those whose expected files tell of a success, and every example."""
    golden = load_golden_runner()
    areas = sorted(path for path in (ROOT / "tests/golden").iterdir() if path.is_dir())
    cases = [case for area in areas for case in golden.find_cases(area, None)]
    paths = [case.source for case in cases if case.should_succeed()]
    paths += sorted((ROOT / "examples").glob("*.st"))
    return [Source(str(Path(*path.parts[-2:])), path.read_bytes()) for path in paths]


def compile_source(data, *options):
    compiler = Compiler()
    try:
        compiler.write("in.st", data)
        return compiler.run("in.st", "out", *options)
    finally:
        compiler.close()


def side_by_side(function, *arguments):
    """The results of the calls, in order."""
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        return list(pool.map(function, *arguments))
