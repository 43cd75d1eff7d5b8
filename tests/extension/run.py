#!/usr/bin/env python3
"""Tests the extension for VS Code: its types, its parts that do without an editor, and the file.

    run.py [--work FOLDER]

The extension is built in the work folder, by default build/tests/extension, where npm installs its
libraries. Ends with 77, "skipped", where these are not installed yet and npm reaches no registry.
"""

import argparse
import json
import os
import re
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
import zipfile
from pathlib import Path

FOLDER = Path(__file__).resolve().parent
ROOT = FOLDER.parents[1]
DESK = Path(os.environ.get("YXST", ROOT / "build" / "yxst")).resolve()
VERSION = re.search(r"yxstcmp VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text())[1]

sys.path[:0] = [str(FOLDER.parent), str(ROOT / "packaging")]
import npm_tools  # noqa: E402
import vsix  # noqa: E402

# Settings that the language server or the library of its client read.
READ_BY_OTHERS = {"yxst.timeLimit", "yxst.trace.server"}

work = None  # the folder in which the extension is built


def setUpModule():
    npm_tools.install(vsix.EXTENSION, work)
    vsix.bundle(work)


def npm(*arguments):
    return subprocess.run(["npm", *arguments], cwd=work, capture_output=True, text=True)


class Program(unittest.TestCase):
    def test_parts_that_need_no_editor(self):
        result = npm("run", "--silent", "test")
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        passed = re.search(r"^\D*pass (\d+)$", result.stdout, re.MULTILINE)
        self.assertGreater(int(passed[1]), 10)

    def test_a_wrong_type_is_found(self):
        wrong = work / "src" / "wrong.ts"
        self.addCleanup(wrong.unlink)
        wrong.write_text("export const wrong: number = 'text';\n")
        result = npm("run", "--silent", "check")
        self.assertNotEqual(result.returncode, 0)
        self.assertIn("wrong.ts", result.stdout)

    def test_every_package_of_the_bundle_has_its_licence(self):
        notices = (work / "ThirdPartyNotices.txt").read_text(encoding="utf-8")
        packages = json.loads((work / vsix.LOCK_FILE).read_text())["packages"]
        needed = [key for key, each in packages.items() if key and not each.get("dev")]
        self.assertIn("node_modules/vscode-languageclient", needed)
        for key in needed:
            heading = f"{key.rpartition('node_modules/')[2]} {packages[key]['version']}"
            with self.subTest(package=heading):
                self.assertIn(f"\n{heading}\n", notices)
        granted = len(re.findall("Permission (is hereby granted|to use, copy)", notices))
        self.assertEqual(granted, len(needed))


class Contributions(unittest.TestCase):
    """What package.json promises is there."""

    def setUp(self):
        self.package = json.loads((vsix.EXTENSION / "package.json").read_text(encoding="utf-8"))
        self.contributes = self.package["contributes"]
        sources = (vsix.EXTENSION / "src").glob("*.ts")
        self.program = "\n".join(path.read_text(encoding="utf-8") for path in sources)

    def test_every_command_is_carried_out(self):
        promised = {each["command"] for each in self.contributes["commands"]}
        registered = set(re.findall(r"register\('(yxst\.\w+)'", self.program))
        self.assertEqual(promised, registered)
        self.assertGreater(len(promised), 3)

    def test_every_setting_is_read_and_described(self):
        readme = (vsix.EXTENSION / "README.md").read_text(encoding="utf-8")
        for name, setting in self.contributes["configuration"]["properties"].items():
            with self.subTest(setting=name):
                self.assertIn(f"`{name}`", readme)
                self.assertTrue({"description", "markdownDescription"} & set(setting))
                if name not in READ_BY_OTHERS:
                    short = name.removeprefix("yxst.")
                    self.assertRegex(self.program, rf"get(<[\w\[\]]+>)?\('{short}'")

    def test_every_command_is_described(self):
        readme = (vsix.EXTENSION / "README.md").read_text(encoding="utf-8")
        for command in self.contributes["commands"]:
            self.assertIn(f"*{command['title']}*", readme)

    def test_pictures_of_the_readme_are_there(self):
        readme = (vsix.EXTENSION / "README.md").read_text(encoding="utf-8")
        pictures = set(re.findall(r"!\[[^\]]+\]\(([^)]+)\)", readme))
        self.assertGreater(len(pictures), 1)
        for picture in pictures:
            self.assertTrue((vsix.EXTENSION / picture).is_file(), picture)


class ProblemMatcher(unittest.TestCase):
    def setUp(self):
        package = json.loads((vsix.EXTENSION / "package.json").read_text(encoding="utf-8"))
        self.pattern = package["contributes"]["problemMatchers"][0]["pattern"]

    def parts(self, line):
        match = re.match(self.pattern["regexp"], line)
        names = ("file", "line", "column", "severity", "message", "code")
        return match and [match[self.pattern[name]] for name in names]

    def test_it_reads_what_the_check_writes(self):
        declared = "PROGRAM p\nVAR\n    x : INT := 0;\nEND_VAR\n"
        script = f"{declared}    x := y[1];\n    x = 2;\nEND_PROGRAM\n"
        with tempfile.TemporaryDirectory() as folder:
            Path(folder, "a b.st").write_text(script)
            command = [DESK, "check", "--format=gcc", "--quiet", "--", "."]
            shown = subprocess.run(command, cwd=folder, capture_output=True, text=True).stdout
        found = [self.parts(line) for line in shown.splitlines()]
        self.assertGreater(len(found), 2)
        self.assertNotIn(None, found)
        self.assertEqual({Path(file).name for file, *_ in found}, {"a b.st"})
        self.assertLessEqual({"error", "note"}, {each[3] for each in found})
        self.assertIn("6", [line for _, line, *_ in found])
        codes = [code for *_, severity, _, code in found if severity == "error"]
        self.assertTrue(all(codes), found)

    def test_brackets_of_a_message_are_no_identifier(self):
        self.assertEqual(
            self.parts("a:b.st:1:2: error: x[1] is [wrong] here"),
            ["a:b.st", "1", "2", "error", "x[1] is [wrong] here", None],
        )


class File(unittest.TestCase):
    """The file is a zip of the form that VS Code's installer asks for."""

    MANIFEST = "{http://schemas.microsoft.com/developer/vsx-schema/2011}"
    TYPES = "{http://schemas.openxmlformats.org/package/2006/content-types}"

    @classmethod
    def setUpClass(cls):
        cls.path = work / "yxst.vsix"
        vsix.pack(cls.path, work)
        cls.archive = zipfile.ZipFile(cls.path)
        cls.addClassCleanup(cls.archive.close)
        cls.names = cls.archive.namelist()

    def test_it_holds_the_extension(self):
        self.assertIsNone(self.archive.testzip())
        self.assertEqual(len(set(self.names)), len(self.names))
        for name in ("package.json", "snippets/yxst.json", "syntaxes/yxst.tmLanguage.json"):
            own = (vsix.EXTENSION / name).read_bytes()
            self.assertEqual(self.archive.read(f"extension/{name}"), own, name)
        self.assertIn(b"Permission is hereby granted", self.archive.read("extension/LICENSE.txt"))

    def test_what_the_package_names_is_there(self):
        package = json.loads(self.archive.read("extension/package.json"))
        contributes = package["contributes"]
        paths = [package["main"], package["icon"], contributes["languages"][0]["configuration"]]
        paths += [each["path"] for each in contributes["grammars"] + contributes["snippets"]]
        for path in paths:
            self.assertIn(f"extension/{path.removeprefix('./')}", self.names)

    def test_nothing_of_the_build_is_left(self):
        for name in self.names:
            self.assertNotRegex(name, r"node_modules|\.ts$|/test/|lock|tsconfig|\.svg$|build\.mjs")
        program = self.archive.read("extension/out/extension.js").decode()
        self.assertNotIn(str(work), program)
        self.assertNotIn(str(ROOT), program)

    def test_pictures_are_in_the_readme(self):
        readme = self.archive.read("extension/README.md").decode()
        sources = re.findall(r"!\[[^\]]*\]\((.{9})", readme)
        self.assertGreater(len(sources), 1)
        self.assertEqual(set(sources), {"data:imag"})

    def test_the_manifest_is_that_of_the_package(self):
        package = json.loads(self.archive.read("extension/package.json"))
        root = ElementTree.fromstring(self.archive.read("extension.vsixmanifest"))
        identity = root.find(f".//{self.MANIFEST}Identity").attrib
        self.assertEqual(
            (identity["Id"], identity["Version"], identity["Publisher"]),
            (package["name"], package["version"], package["publisher"]),
        )
        self.assertEqual(package["version"], VERSION)
        engine = root.find(f".//{self.MANIFEST}Property[@Id='Microsoft.VisualStudio.Code.Engine']")
        self.assertEqual(engine.get("Value"), package["engines"]["vscode"])
        assets = [asset.get("Path") for asset in root.iter(f"{self.MANIFEST}Asset")]
        self.assertEqual(set(assets) - set(self.names), set())
        self.assertIn("extension/package.json", assets)

    def test_every_file_has_a_type(self):
        root = ElementTree.fromstring(self.archive.read("[Content_Types].xml"))
        known = {each.get("Extension") for each in root.iter(f"{self.TYPES}Default")}
        suffixes = {Path(name).suffix for name in self.names if name != "[Content_Types].xml"}
        self.assertEqual(suffixes, known)

    def test_the_same_extension_gives_the_same_bytes(self):
        with tempfile.TemporaryDirectory() as folder:
            again = Path(folder, "again.vsix")
            vsix.bundle(work)
            vsix.pack(again, work)
            self.assertEqual(again.read_bytes(), self.path.read_bytes())


def main():
    global work
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--work", type=Path, default=ROOT / "build" / "tests" / "extension")
    arguments, others = parser.parse_known_args()
    work = arguments.work.resolve()
    unittest.main(argv=[sys.argv[0], *others])


if __name__ == "__main__":
    main()
