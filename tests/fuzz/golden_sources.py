#!/usr/bin/env python3
"""Writes the source of each golden case into a new folder, named after its content.

    golden_sources.py FOLDER
"""

import hashlib
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "golden"))
from cases import all_cases  # noqa: E402


def main():
    folder = Path(sys.argv[1])
    folder.mkdir()
    for case in all_cases():
        name = hashlib.sha1(case.data).hexdigest()[:16]
        (folder / f"{name}.st").write_bytes(case.data)


if __name__ == "__main__":
    main()
