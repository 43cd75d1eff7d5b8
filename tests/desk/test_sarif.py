"""The published schema of SARIF accepts the reports, and they mean what they should.

The validator and the schema come from npm, into the folder that the environment variable
YXST_TOOLS names, by default build/tests/desk_tools. Ends with 77, "skipped", where they are not
installed yet and npm reaches no registry.
"""

import copy
import json
import os
import subprocess
import sys
import unittest
from pathlib import Path
from urllib.parse import unquote

from samples import REPORTS, diagnostics, shown_of_samples
from support_desk import ROOT, TIMEOUT_SECONDS

FOLDER = Path(__file__).resolve().parent
TOOLS = Path(os.environ.get("YXST_TOOLS", ROOT / "build" / "tests" / "desk_tools")).resolve()
MODULES = TOOLS / "node_modules"
SCHEMA = MODULES / "@microsoft" / "jest-sarif" / "lib" / "schemas" / "sarif-2.1.0-rtm.5.json"

sys.path.insert(0, str(FOLDER.parent))
import npm_tools  # noqa: E402


def faults_of(logs):
    """What the schema does not accept of each; None if it accepts it."""
    result = subprocess.run(
        ["node", FOLDER / "validate.js", SCHEMA],
        input=json.dumps(logs),
        env={**os.environ, "NODE_PATH": str(MODULES)},
        capture_output=True,
        check=True,
        text=True,
        timeout=TIMEOUT_SECONDS,
    )
    return json.loads(result.stdout)


def location_of(result):
    return result["locations"][0]["physicalLocation"]


def damaged(log):
    for damage in (
        lambda run, result: run.pop("tool"),
        lambda run, result: run["tool"]["driver"].pop("name"),
        lambda run, result: result.update(level="fatal"),
        lambda run, result: result.update(unknown=1),
        lambda run, result: location_of(result)["region"].update(startLine=0),
        lambda run, result: location_of(result)["artifactLocation"].update(uri="a b"),
    ):
        copied = copy.deepcopy(log)
        damage(copied["runs"][0], copied["runs"][0]["results"][0])
        yield copied


class Sarif(unittest.TestCase):
    def each_report(self):
        """The log, its run, and the objects of the JSON format."""
        for name, shown in REPORTS.items():
            log = json.loads(shown("sarif"))
            with self.subTest(name):
                yield log, log["runs"][0], diagnostics(shown)

    def test_schema_accepts_the_reports(self):
        for log, _, _ in self.each_report():
            self.assertEqual(faults_of([log]), [None])

    def test_schema_refuses_damaged_reports(self):
        log = json.loads(shown_of_samples("sarif"))
        self.assertNotIn(None, faults_of(list(damaged(log))))

    def test_results_refer_to_their_rules(self):
        for _, run, _ in self.each_report():
            rules = run["tool"]["driver"]["rules"]
            for result in run["results"]:
                self.assertEqual(rules[result["ruleIndex"]]["id"], result["ruleId"])

    def test_uris_name_the_files(self):
        for _, run, found in self.each_report():
            uris = [location_of(each)["artifactLocation"]["uri"] for each in run["results"]]
            self.assertEqual([unquote(uri) for uri in uris], [each["file"] for each in found])

    def test_helps_are_related_locations(self):
        for _, run, found in self.each_report():
            related = [
                location["message"]["text"]
                for result in run["results"]
                for location in result.get("relatedLocations", ())
            ]
            helps = [each["text"] for entry in found for each in entry.get("helps", ())]
            self.assertEqual(related, helps)


if __name__ == "__main__":
    npm_tools.install(FOLDER, TOOLS)
    unittest.main()
