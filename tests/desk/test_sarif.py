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

from samples import ROOT, TIMEOUT_SECONDS, diagnostics, shown

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


class Sarif(unittest.TestCase):
    def setUp(self):
        self.log = json.loads(shown("sarif"))
        self.run_ = self.log["runs"][0]

    def test_schema_accepts_the_report(self):
        self.assertEqual(faults_of([self.log]), [None])

    def test_schema_refuses_damaged_reports(self):
        logs = []
        for damage in (
            lambda run, result: run.pop("tool"),
            lambda run, result: run["tool"]["driver"].pop("name"),
            lambda run, result: result.update(level="fatal"),
            lambda run, result: result.update(unknown=1),
            lambda run, result: location_of(result)["region"].update(startLine=0),
            lambda run, result: location_of(result)["artifactLocation"].update(uri="a b"),
        ):
            log = copy.deepcopy(self.log)
            damage(log["runs"][0], log["runs"][0]["results"][0])
            logs.append(log)
        self.assertNotIn(None, faults_of(logs))

    def test_results_refer_to_their_rules(self):
        rules = self.run_["tool"]["driver"]["rules"]
        for result in self.run_["results"]:
            self.assertEqual(rules[result["ruleIndex"]]["id"], result["ruleId"])

    def test_uris_name_the_files(self):
        uris = [location_of(result)["artifactLocation"]["uri"] for result in self.run_["results"]]
        files = [each["file"] for each in diagnostics()]
        self.assertEqual([unquote(uri) for uri in uris], files)

    def test_helps_are_related_locations(self):
        related = [
            location["message"]["text"]
            for result in self.run_["results"]
            for location in result.get("relatedLocations", ())
        ]
        helps = [each["text"] for entry in diagnostics() for each in entry.get("helps", ())]
        self.assertEqual(related, helps)


if __name__ == "__main__":
    npm_tools.install(FOLDER, TOOLS)
    unittest.main()
