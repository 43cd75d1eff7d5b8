#!/usr/bin/env python3
"""Tests the colours of VS Code: of the scripts in tokens/, and the snapshots of the examples.

    run.py [--work FOLDER] [--update]

The tools are installed by npm into the work folder, by default build/tests/editors. With --update
the snapshots are rewritten instead of compared. Ends with 77, "skipped", where the tools are not
installed yet and npm reaches no registry.
"""

import argparse
import json
import shutil
import subprocess
import sys
from pathlib import Path

FOLDER = Path(__file__).resolve().parent
ROOT = FOLDER.parents[1]
EXTENSION = ROOT / "editors" / "vscode"
SNAPSHOTS = FOLDER / "snapshots"

sys.path.insert(0, str(FOLDER.parent))
import npm_tools  # noqa: E402


def grammar():
    contributed = json.loads((EXTENSION / "package.json").read_text())["contributes"]
    return EXTENSION / contributed["grammars"][0]["path"]


def run_tool(work, name, *arguments):
    """True if the tool finds nothing wrong."""
    tool = work / "node_modules" / ".bin" / name
    return subprocess.run([tool, "-g", grammar(), *arguments], cwd=work).returncode == 0


def tokens_are_right(work):
    return run_tool(work, "vscode-tmgrammar-test", str(FOLDER / "tokens" / "*.test.st"))


def copy_examples(work):
    """The examples with their snapshots, which the tool looks for beside them."""
    copies = work / "examples"
    shutil.rmtree(copies, ignore_errors=True)
    copies.mkdir()
    for folder, pattern in ((ROOT / "examples", "*.st"), (SNAPSHOTS, "*.snap")):
        for path in folder.glob(pattern):
            shutil.copy(path, copies)
    return copies


def snapshots_of(folder):
    return sorted(path.name for path in folder.glob("*.snap"))


def snapshots_are_right(work):
    copies = copy_examples(work)
    examples = sorted(f"{path.name}.snap" for path in copies.glob("*.st"))
    if snapshots_of(SNAPSHOTS) != examples:
        print("snapshots/ does not hold one snapshot for each example; run with --update")
        return False
    return run_tool(work, "vscode-tmgrammar-snap", "-s", "source.yxst", str(copies / "*.st"))


def update(work):
    copies = copy_examples(work)
    run_tool(work, "vscode-tmgrammar-snap", "-s", "source.yxst", "-u", str(copies / "*.st"))
    shutil.rmtree(SNAPSHOTS, ignore_errors=True)
    SNAPSHOTS.mkdir()
    for path in copies.glob("*.st.snap"):
        if path.with_suffix("").exists():
            shutil.copy(path, SNAPSHOTS)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--work", type=Path, default=ROOT / "build" / "tests" / "editors")
    parser.add_argument("--update", action="store_true", help="rewrite the snapshots")
    arguments = parser.parse_args()
    work = arguments.work.resolve()
    npm_tools.install(FOLDER, work)
    if arguments.update:
        update(work)
        return
    results = [tokens_are_right(work), snapshots_are_right(work)]
    sys.exit(0 if all(results) else 1)


if __name__ == "__main__":
    main()
