"""The reports byte for byte, and that all formats tell the same.

    test_reports.py --update

writes what is expected, in reports/ and check/, anew. Read every line of the difference.
"""

import json
import re
import sys
import unittest

from samples import HERE, REPORTS, diagnostics

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


def each_report():
    """The file that holds what is expected of each call, and what is shown."""
    for folder, shown in REPORTS.items():
        for name, call in CALLS.items():
            yield HERE / folder / name, masked(shown(*call))


class Golden(unittest.TestCase):
    def test_reports_are_as_expected(self):
        for path, actual in each_report():
            with self.subTest(path.relative_to(HERE)):
                self.assertEqual(actual, path.read_bytes().decode("utf-8"))

    def test_nothing_else_is_expected(self):
        for folder in REPORTS:
            names = [path.name for path in (HERE / folder).iterdir() if path.is_file()]
            self.assertEqual(sorted(names), sorted(CALLS))


def heads_of_diagnostics(shown):
    """File, line, column and severity of each."""
    return [
        (each["file"], each["line"], each["column"], each["severity"])
        for each in diagnostics(shown)
    ]


def heads_in_lines(text):
    found = re.findall(r"^(.+?):(\d+):(\d+): (error|warning|note): .* \[[a-z-]+\]$", text, re.M)
    return [(file, int(line), int(column), level) for file, line, column, level in found]


class Agreement(unittest.TestCase):
    def each_source(self):
        for name, shown in REPORTS.items():
            with self.subTest(name):
                yield shown

    def test_all_levels_are_there(self):
        for shown in self.each_source():
            levels = {level for *_, level in heads_of_diagnostics(shown)}
            self.assertEqual(levels, {"error", "warning", "note"})

    def test_lines(self):
        for shown in self.each_source():
            for report_format in ("human", "gcc"):
                heads = heads_in_lines(shown(report_format))
                self.assertEqual(heads, heads_of_diagnostics(shown), report_format)

    def test_sarif(self):
        for shown in self.each_source():
            results = json.loads(shown("sarif"))["runs"][0]["results"]
            regions = [each["locations"][0]["physicalLocation"]["region"] for each in results]
            self.assertEqual(
                [tuple(region.values()) for region in regions],
                [
                    (each["line"], each["column"], each["endLine"], each["endColumn"])
                    for each in diagnostics(shown)
                ],
            )
            self.assertEqual(
                [(each["ruleId"], each["level"], each["message"]["text"]) for each in results],
                [(each["id"], each["severity"], each["message"]) for each in diagnostics(shown)],
            )

    def test_github(self):
        level_of = {"error": "error", "warning": "warning", "notice": "note"}
        for shown in self.each_source():
            commands = re.findall(r"^::(\w+) .*,title=([a-z-]+)::", shown("github"), re.M)
            self.assertEqual(
                [(level_of[command], title) for command, title in commands],
                [(each["severity"], each["id"]) for each in diagnostics(shown)],
            )


def update():
    for path, actual in each_report():
        path.parent.mkdir(exist_ok=True)
        path.write_bytes(actual.encode("utf-8"))


if __name__ == "__main__":
    if sys.argv[1:] == ["--update"]:
        update()
    else:
        unittest.main()
