"""Clients that others have written drive `yxst lsp`: Neovim's, Emacs's, and the protocol's own from
npm, which asks everything; the protocol's own types accept every answer.

The tools from npm go into the folder that the environment variable YXST_TOOLS names, by default
build/tests/desk_tools. Ends with 77, "skipped", where they are not installed yet and npm reaches no
registry.
"""

import copy
import json
import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from support_desk import DESK, FINE, ROOT, TIMEOUT_SECONDS

FOLDER = Path(__file__).resolve().parent
LSP = FOLDER / "lsp"
TOOLS = Path(os.environ.get("YXST_TOOLS", ROOT / "build" / "tests" / "desk_tools")).resolve()

sys.path.insert(0, str(FOLDER.parent))
import npm_tools  # noqa: E402

WRONG = """\
PROGRAM Tank
VAR
    (* in percent *)
    level : INT := 0;
    full : BOOL;
END_VAR
    full = 3 < level;
    level:=level+1;
    full := level > 90;
END_PROGRAM
"""
MENDED = WRONG.replace("full = 3", "full := 3")
FORMATTED = MENDED.replace("level:=level+1", "level := level + 1").replace("full :", "full  :", 1)
RENAMED = MENDED.replace("level", "height")

CALLING = """\
FUNCTION Twice : INT
VAR_ARG
    x : INT;
END_VAR
    RESULT := 2 * x;
END_FUNCTION

""" + MENDED.replace("level+1", "Twice(level)")

SCRIPTS = [WRONG, CALLING, (ROOT / "examples/pump_sequence.st").read_text("utf-8")]


def run_editor(*command):
    """What an editor has seen, as JSON on its standard output."""
    with tempfile.TemporaryDirectory() as name:
        script = Path(name, "tank.st")
        script.write_text(WRONG)
        process = subprocess.run(
            [*command, script],
            env={**os.environ, "YXST": str(DESK), "HOME": name, "XDG_CONFIG_HOME": name},
            stdin=subprocess.DEVNULL,
            capture_output=True,
            text=True,
            timeout=TIMEOUT_SECONDS,
        )
    if not process.stdout:
        raise AssertionError(process.stderr)
    return json.loads(process.stdout)


class Neovim(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        if not shutil.which("nvim"):
            raise unittest.SkipTest("Neovim is not installed")
        script = LSP / "neovim.lua"
        cls.seen = run_editor("nvim", "--headless", "-u", "NONE", "-c", f"luafile {script}")

    def test_the_session_ends_well(self):
        self.assertNotIn("failure", self.seen)

    def test_diagnostics(self):
        (message,) = self.seen["diagnostics"]
        self.assertIn('":=" expected but "="', message)
        self.assertIn("help:", message)

    def test_hover(self):
        self.assertIn("in percent", self.seen["hover"]["contents"]["value"])

    def test_completion(self):
        self.assertIn("level", [each["label"] for each in self.seen["completion"]])

    def test_jump(self):
        self.assertEqual(self.seen["jump"], [4, 4])

    def test_rename(self):
        self.assertEqual(self.seen["renamed"], RENAMED.splitlines())

    def test_format(self):
        formatted = FORMATTED.replace("level", "height").replace("full  :", "full   :")
        self.assertEqual(self.seen["formatted"], formatted.splitlines())


class Emacs(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        if not shutil.which("emacs"):
            raise unittest.SkipTest("Emacs is not installed")
        probe = subprocess.run(
            ["emacs", "-q", "--batch", "--eval", "(require 'eglot)"], capture_output=True
        )
        if probe.returncode:
            raise unittest.SkipTest("eglot is not installed")
        cls.seen = run_editor("emacs", "-q", "--batch", "-l", LSP / "eglot.el")

    def test_diagnostics(self):
        (message,) = self.seen["diagnostics"]
        self.assertIn('":=" expected but "="', message)

    def test_hover(self):
        self.assertIn("in percent", self.seen["hover"])

    def test_format(self):
        self.assertEqual(self.seen["formatted"], FORMATTED)


def run_node(script, *arguments, data):
    """What a script of Node.js writes, as JSON."""
    process = subprocess.run(
        ["node", LSP / script, *arguments],
        cwd=TOOLS,
        input=data,
        capture_output=True,
        text=True,
        timeout=TIMEOUT_SECONDS,
    )
    if process.returncode:
        raise AssertionError(process.stderr)
    return json.loads(process.stdout)


def faults_of(messages):
    """What the types of the protocol do not accept of each."""
    return run_node("validate.mjs", data=json.dumps(messages))


def numbers_in(value):
    if isinstance(value, dict):
        value = list(value.values())
    if isinstance(value, list):
        for each in value:
            yield from numbers_in(each)
    elif isinstance(value, (int, float)) and not isinstance(value, bool):
        yield value


# Where members that the types do not name are taken.
REFUSED = {"initialize": {"capabilities": 1}, "workspace/configuration": {"items": 1}}


def damaged(messages):
    """A message of each method with a fault."""
    for method, value in {method: value for method, value in messages if value}.items():
        changed = copy.deepcopy(value)
        target = changed[0] if isinstance(changed, list) else changed
        target.update(REFUSED.get(method, {"unknown": 1}))
        yield [method, changed]


class Protocol(unittest.TestCase):
    """The answers to everything that the server says it can do, over several scripts."""

    @classmethod
    def setUpClass(cls):
        cls.sessions = [run_node("session.mjs", DESK, data=text) for text in SCRIPTS]
        cls.seen = [each for session in cls.sessions for each in session["seen"]]
        cls.messages = [each for each in cls.seen if each[0] != "error"]

    def test_sessions_end_well(self):
        self.assertEqual({session["status"] for session in self.sessions}, {FINE})

    def test_everything_was_asked(self):
        asked = {method for method, _ in self.messages}
        for capability in self.sessions[0]["capabilities"]:
            if capability.endswith("Provider") and capability != "executeCommandProvider":
                name = capability.removesuffix("Provider").removeprefix("document")
                name = name.replace("workspaceSymbol", "symbol").lower()
                self.assertTrue(any(name in method.lower() for method in asked), capability)

    def test_each_method_has_an_answer_with_something_in_it(self):
        for method in {method for method, _ in self.messages}:
            self.assertTrue(
                method == "shutdown" or any(value for each, value in self.messages if each == method),
                method,
            )

    def test_the_types_accept_the_messages(self):
        for message, faults in zip(self.messages, faults_of(self.messages)):
            self.assertEqual(faults, [], message)

    def test_the_types_refuse_damaged_messages(self):
        messages = list(damaged(self.messages))
        for message, faults in zip(messages, faults_of(messages)):
            self.assertNotEqual(faults, [], message)

    def test_numbers_are_those_of_the_protocol(self):
        for method, value in self.messages:
            for number in numbers_in(value):
                self.assertEqual(number, int(number), method)
                self.assertLess(number, 2**31, method)

    def test_refusals_tell_the_user_why(self):
        for method, value in self.seen:
            if method == "error":
                self.assertEqual(value["code"], -32803, value)
                self.assertRegex(value["message"], r"[^.]$")


if __name__ == "__main__":
    npm_tools.install(FOLDER, TOOLS)
    unittest.main()
