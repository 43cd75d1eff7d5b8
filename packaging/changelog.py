#!/usr/bin/env python3
"""Writes the changelog of the Debian package from CHANGELOG.md.

    changelog.py VERSION MAINTAINER FILE

VERSION must be the latest one of CHANGELOG.md. A version that is not released yet gets the date
of SOURCE_DATE_EPOCH, else the present one.
"""

import argparse
import os
import re
import sys
import textwrap
import time
from datetime import datetime, timezone
from email.utils import format_datetime
from pathlib import Path

CHANGELOG = Path(__file__).resolve().parents[1] / "CHANGELOG.md"

WIDTH = 80

VERSION = re.compile(r"^## \[(\d[^]]*)\] - (.+)\n((?:(?!## ).*\n?)*)", re.MULTILINE)
GROUP = re.compile(r"^### (.+)\n((?:(?!### ).*\n?)*)", re.MULTILINE)
CHANGE = re.compile(r"^- (.+(?:\n  .+)*)", re.MULTILINE)


def date_of(text):
    if text == "unreleased":
        seconds = int(os.environ.get("SOURCE_DATE_EPOCH", time.time()))
        return datetime.fromtimestamp(seconds, timezone.utc)
    return datetime.strptime(text, "%Y-%m-%d").replace(tzinfo=timezone.utc)


def item(text, mark):
    """The text behind the mark, broken into lines that stand below its beginning."""
    return textwrap.fill(
        " ".join(text.split()),
        WIDTH,
        initial_indent=mark,
        subsequent_indent=" " * len(mark),
        break_on_hyphens=False,
    )


def entry(version, date, text, maintainer):
    lines = [f"yxstcmp ({version}) unstable; urgency=medium", ""]
    for title, changes in GROUP.findall(text):
        lines.append(item(f"{title}:", "  * "))
        lines += [item(change, "    - ") for change in CHANGE.findall(changes)]
    return "\n".join([*lines, "", f" -- {maintainer}  {format_datetime(date_of(date))}", ""])


def main():
    parser = argparse.ArgumentParser(prog="changelog", description=__doc__.splitlines()[0])
    parser.add_argument("version")
    parser.add_argument("maintainer")
    parser.add_argument("file", type=Path)
    arguments = parser.parse_args()
    versions = VERSION.findall(CHANGELOG.read_text(encoding="utf-8"))
    if not versions or versions[0][0] != arguments.version:
        sys.exit(f"changelog: {arguments.version} is not the latest version of {CHANGELOG}")
    entries = [entry(*version, arguments.maintainer) for version in versions]
    arguments.file.write_text("\n".join(entries), encoding="utf-8")


if __name__ == "__main__":
    main()
