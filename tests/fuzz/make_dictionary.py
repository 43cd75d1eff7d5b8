#!/usr/bin/env python3
"""Prints the words and the punctuation of the language as the fuzzer's dictionary.

A line is group="WORD": the mutator chooses by the groups, the fuzzer itself passes over them.
"""

import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "scripts"))
import words  # noqa: E402


def main():
    for group, texts in words.lists().items():
        for text in texts:
            print(f'{group}="{text}"')


if __name__ == "__main__":
    main()
