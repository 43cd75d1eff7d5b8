#!/usr/bin/env python3
"""Prints the words and the punctuation of the language as the fuzzer's dictionary."""

import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "scripts"))
import words  # noqa: E402


def main():
    for word in sorted({*words.tokens(), *words.types(), *words.built_ins()}):
        print(f'"{word}"')


if __name__ == "__main__":
    main()
