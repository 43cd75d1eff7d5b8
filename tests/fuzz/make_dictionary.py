#!/usr/bin/env python3
"""Turns the words of the language (JSON, standard input) into the fuzzer's dictionary."""

import json
import sys


def main():
    words = sorted({word for group in json.load(sys.stdin).values() for word in group})
    for word in words:
        print(f'"{word}"')


if __name__ == "__main__":
    main()
