"""The reports byte for byte, and that all formats tell the same.

    test_reports.py --update

writes what is expected, in reports/, anew. Read every line of the difference.
"""

import json
import re
import sys
import unittest
from pathlib import Path

from samples import diagnostics, shown

EXPECTED = Path(__file__).resolve().parent / "reports"

# The file of each call.
CALLS = {
    "human.txt": ("human",),
    "quiet.txt": ("human", "quiet"),
    "colors.txt": ("human", "colors"),
    "gcc.txt": ("gcc",),
    "json.json": ("json",),
    "sarif.sarif": ("sarif",),
    "github.txt": ("github",),
}


def masked(text):
    """Without the version of the program."""
    return re.sub(r'("name":"yxst","version":)"[\d.]+"', r'\1"N"', text)


class Golden(unittest.TestCase):
    def test_reports_are_as_expected(self):
        for name, call in CALLS.items():
            with self.subTest(name):
                expected = (EXPECTED / name).read_bytes().decode("utf-8")
                self.assertEqual(masked(shown(*call)), expected)

    def test_nothing_else_is_expected(self):
        self.assertEqual(sorted(path.name for path in EXPECTED.iterdir()), sorted(CALLS))


def heads_of_diagnostics():
    """File, line, column and severity of each."""
    return [
        (each["file"], each["line"], each["column"], each["severity"]) for each in diagnostics()
    ]


def heads_in_lines(text):
    found = re.findall(r"^(.+?):(\d+):(\d+): (error|warning|note): .* \[[a-z-]+\]$", text, re.M)
    return [(file, int(line), int(column), level) for file, line, column, level in found]


class Agreement(unittest.TestCase):
    def test_samples_have_all_levels(self):
        levels = {level for *_, level in heads_of_diagnostics()}
        self.assertEqual(levels, {"error", "warning", "note"})

    def test_lines(self):
        for report_format in ("human", "gcc"):
            with self.subTest(report_format):
                self.assertEqual(heads_in_lines(shown(report_format)), heads_of_diagnostics())

    def test_sarif(self):
        results = json.loads(shown("sarif"))["runs"][0]["results"]
        regions = [each["locations"][0]["physicalLocation"]["region"] for each in results]
        self.assertEqual(
            [tuple(region.values()) for region in regions],
            [
                (each["line"], each["column"], each["endLine"], each["endColumn"])
                for each in diagnostics()
            ],
        )
        self.assertEqual(
            [(each["ruleId"], each["level"], each["message"]["text"]) for each in results],
            [(each["id"], each["severity"], each["message"]) for each in diagnostics()],
        )

    def test_github(self):
        commands = re.findall(r"^::(\w+) .*,title=([a-z-]+)::", shown("github"), re.M)
        level_of = {"error": "error", "warning": "warning", "notice": "note"}
        self.assertEqual(
            [(level_of[command], title) for command, title in commands],
            [(each["severity"], each["id"]) for each in diagnostics()],
        )


def update():
    EXPECTED.mkdir(exist_ok=True)
    for name, call in CALLS.items():
        (EXPECTED / name).write_bytes(masked(shown(*call)).encode("utf-8"))


if __name__ == "__main__":
    if sys.argv[1:] == ["--update"]:
        update()
    else:
        unittest.main()
