"""Harnesses and servers read what `yxst test` writes: TAP by prove and tap-parser, JUnit's XML by
junitparser. tap-parser comes from npm as the validator of test_sarif.py does."""

import json
import os
import shutil
import subprocess
import sys
import unittest
from pathlib import Path
from xml.etree import ElementTree

from support_desk import FINE, NOT_FINE, ROOT, TIMEOUT_SECONDS
from test_test import FAILING, NOTED, PASSING, WRONG_SCRIPT, TestTestCase

FOLDER = Path(__file__).resolve().parent
TOOLS = Path(os.environ.get("YXST_TOOLS", ROOT / "build" / "tests" / "desk_tools")).resolve()

sys.path.insert(0, str(FOLDER.parent))
import npm_tools  # noqa: E402

try:
    import junitparser
except ImportError:
    junitparser = None

SPECIAL = 'a "b" \\ <c> & #d \u0401 %1'


class ReaderTestCase(TestTestCase):
    """Four tables: one passes, one fails, one is refused, one has a script that does not
    compile."""

    def setUp(self):
        super().setUp()
        self.write("a.test", PASSING.replace(b"a reset", SPECIAL.encode()))
        self.write("b.test", FAILING)
        self.write("c.test", PASSING.replace(b"level", b"levle"))
        self.write("wrong.st", WRONG_SCRIPT)
        self.write("wrong.test", PASSING.replace(b"tank.st", b"wrong.st"))
        self.write("z.test", NOTED)

    def written(self, *options):
        run = self.run_tests(*options, "a.test", "b.test", "c.test", "wrong.test", "z.test")
        return run.stdout.decode()


# Whether each result is fine, and its description.
RESULTS = [
    (True, "a.test: full above 90"),
    (True, f"a.test: {SPECIAL}"),
    (False, "b.test: full above 90"),
    (True, "b.test: a reset"),
    (False, "c.test"),
    (False, "wrong.test"),
    (True, "z.test: many cycles"),
]


class Tap(ReaderTestCase):
    @unittest.skipUnless(shutil.which("prove"), "no prove")
    def test_prove(self):
        for name, status in (("tank", 0), ("b", 1)):
            shown = self.shown(NOT_FINE if status else FINE, "--format=tap", f"{name}.test")
            self.write(f"{name}.tap", shown.encode())
            process = subprocess.run(
                ["prove", "--exec", "cat", f"{name}.tap"],
                cwd=self.folder,
                capture_output=True,
                text=True,
                timeout=TIMEOUT_SECONDS,
            )
            self.assertEqual(process.returncode, status, process.stdout)
            self.assertNotIn("Parse errors", process.stdout)
            self.assertIn("Tests=2", process.stdout)

    def test_tap_parser(self):
        npm_tools.install(FOLDER, TOOLS)
        process = subprocess.run(
            [TOOLS / "node_modules" / ".bin" / "tap-parser", "--json=0", "--strict"],
            input=self.written("--format=tap", "--coverage=summary"),
            capture_output=True,
            text=True,
            timeout=TIMEOUT_SECONDS,
        )
        events = json.loads(process.stdout)
        found = [each for kind, *rest in events if kind == "assert" for each in rest]
        self.assertEqual([(each["ok"], each["name"]) for each in found], RESULTS)
        self.assertNotIn("extra", [kind for kind, *_ in events])
        self.check_blocks(found)

    def check_blocks(self, found):
        failed = found[2]["diag"]
        self.assertEqual((failed["file"], failed["line"]), ("b.test", 2))
        self.assertEqual(
            failed["message"], "b.test:5:10: full? is TRUE after cycle 2, expected 0\n"
        )
        self.assertEqual(failed["lastCycles"].splitlines()[0].split()[:2], ["cycle", "full"])
        self.assertIn("c.test:3:9: the program has no variable", found[4]["diag"]["message"])
        self.assertEqual(found[5]["diag"]["message"].count("wrong.st:"), 2)


class Junit(ReaderTestCase):
    def test_counts_agree_with_the_cases(self):
        suites = list(ElementTree.fromstring(self.written("--format=junit")))
        self.assertEqual([each.get("name")[0] for each in suites], list("abcwz"))
        for suite in suites:
            self.assertEqual(int(suite.get("tests")), len(suite.findall("testcase")))
            self.assertEqual(int(suite.get("failures")), len(suite.findall("*/failure")))
            self.assertEqual(int(suite.get("errors")), len(suite.findall("*/error")))
            self.assertEqual(suite.get("file"), suite.get("name"))
            self.assertGreaterEqual(float(suite.get("time")), 0.0)
        self.assertIn("store-overflow", suites[-1].findtext("testcase/system-out"))

    def test_cases_have_their_places_and_times(self):
        suite = ElementTree.fromstring(self.written("--format=junit")).find("testsuite")
        for case, line in zip(suite, ("2", "6")):
            self.assertEqual((case.get("file"), case.get("line")), (suite.get("name"), line))
            self.assertRegex(case.get("time"), r"^\d+\.\d{3}$")

    @unittest.skipUnless(junitparser, "junitparser is not installed")
    def test_junitparser(self):
        found = []
        xml = junitparser.JUnitXml.fromstring(self.written("--format=junit").encode())
        for suite in xml:
            for case in suite:
                name = case.name if case.name != "cases" else ""
                found.append((not any(map(self.is_bad, case.result)), case.classname, name))
        expected = [(fine, *text.partition(": ")[::2]) for fine, text in RESULTS]
        self.assertEqual(found, expected)

    @staticmethod
    def is_bad(result):
        return isinstance(result, (junitparser.Failure, junitparser.Error))

    def test_strict_cases_are_failures(self):
        xml = ElementTree.fromstring(self.written("--format=junit", "--strict"))
        self.assertIn("store-overflow", xml.findall("testsuite")[-1].findtext("*/failure"))


if __name__ == "__main__":
    unittest.main()
