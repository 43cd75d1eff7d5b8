"""What the compiler's tables hold, as its program yxst_words prints them, and its options.

The program is the one that the environment variable YXST_WORDS names, else that of build/.
"""

import functools
import json
import os
import re
import subprocess
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
DEFAULT_PROGRAM = ROOT / "build" / "editors" / "yxst_words"
PROGRAM = Path(os.environ.get("YXST_WORDS") or DEFAULT_PROGRAM).resolve()


@functools.lru_cache(maxsize=None)
def tables():
    if not PROGRAM.exists():
        raise SystemExit(f"{PROGRAM} is missing; build the target yxst_words")
    return json.loads(subprocess.run([PROGRAM], stdout=subprocess.PIPE, check=True).stdout)


def tokens():
    """The reserved words and the punctuation."""
    return [row["text"] for row in tables()["tokens"]]


def reserved_words():
    return [text for text in tokens() if text[0].isalpha()]


def types():
    return [row["name"] for row in tables()["types"]]


def built_ins():
    """Name -> row: the types of its arguments, that of its result or None for a function block."""
    return {row["name"]: row for row in tables()["builtIns"]}


def messages():
    """The name of each constant of the catalogue -> its text."""
    return tables()["messages"]


def lists():
    """All words and the punctuation, listed by what they are for."""
    found = {}
    for row in tables()["tokens"]:
        found.setdefault(row["use"], []).append(row["text"])
    found["types"] = types()
    for name, row in built_ins().items():
        found.setdefault("functions" if row["result"] else "functionBlocks", []).append(name)
    return found


def driver_options(compiler):
    """The options that the compiler names when it is run without arguments."""
    usage = subprocess.run([compiler], stdout=subprocess.PIPE, text=True, check=False).stdout
    return re.findall(r"\[(-\w)\]", usage)
