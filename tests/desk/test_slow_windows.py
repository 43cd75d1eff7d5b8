"""Editors with windows, Kate and Qt Creator, start `yxst lsp` with the settings of editors/README.md
and do what its answers ask for: they are driven by keys under a display without a screen.

Each class is skipped where its editor, Xvfb, xdotool or dbus-run-session is not installed.
"""

import os
import re
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

from support_desk import DESK, ROOT, TIMEOUT_SECONDS, wait_for

README = ROOT / "editors" / "README.md"
COLOURS = ROOT / "editors" / "kate" / "yxst.xml"
DISPLAY_TOOLS = ("xvfb-run", "xdotool", "dbus-run-session")

UGLY = """\
PROGRAM Tank
VAR
level : INT := 0;
END_VAR
level:=level+1;
END_PROGRAM
"""
FORMATTED = """\
PROGRAM Tank
VAR
    level : INT := 0;
END_VAR
    level := level + 1;
END_PROGRAM
"""
MARKED_AT_DECLARATION = UGLY.replace("level : INT", "new_level : INT")


def are_installed(*programs):
    return all(shutil.which(program) for program in programs)


class WindowTestCase(unittest.TestCase):
    """A home of its own, an editor in it, and the server with a log of what both say."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        self.addCleanup(folder.cleanup)
        self.home = Path(folder.name)
        self.script = self.home / "tank.st"
        self.script.write_text(UGLY)
        self.log = self.home / "log"
        server = self.home / "bin" / "yxst"
        server.parent.mkdir()
        server.write_text(f'#!/bin/sh\ntee -a "{self.log}" | "{DESK}" "$@" | tee -a "{self.log}"\n')
        server.chmod(0o755)
        (self.home / "run").mkdir(mode=0o700)

    def start(self, *command):
        process = subprocess.Popen(
            ["xvfb-run", "-a", "-s", "-screen 0 1280x900x24", "dbus-run-session", "--",
             sys.executable, "-c", KEEP_DISPLAY, str(self.home / "display"), *command],
            env={**os.environ, "HOME": str(self.home), "XDG_RUNTIME_DIR": str(self.home / "run"),
                 "XDG_CONFIG_HOME": str(self.home / ".config"),
                 "XDG_DATA_HOME": str(self.home / ".local/share"),
                 "PATH": f"{self.home / 'bin'}:{os.environ['PATH']}"},
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            start_new_session=True,
        )  # fmt: skip
        self.addCleanup(self.stop, process)
        wait_for((self.home / "display").exists)
        wait_for(lambda: self.said("publishDiagnostics"))

    def stop(self, process):
        os.killpg(process.pid, signal.SIGTERM)
        process.wait(TIMEOUT_SECONDS)

    def said(self, word):
        return self.log.exists() and word.encode() in self.log.read_bytes()

    def xdotool(self, *arguments):
        display = dict(line.split("=", 1) for line in (self.home / "display").read_text().split())
        return subprocess.run(["xdotool", *arguments], env={**os.environ, **display},
                              capture_output=True, text=True, timeout=TIMEOUT_SECONDS)  # fmt: skip

    def focus(self):
        """Gives the keys to the window of the script, as soon as it is there."""
        search = ("search", "--onlyvisible", "--name", self.script.name)
        window = wait_for(lambda: self.xdotool(*search).stdout.split())[0]
        self.xdotool("windowfocus", "--sync", window)

    def press_until(self, *keys, expected):
        """Presses the keys again until the script is as expected: windows take their time."""

        def is_written():
            for key in keys:
                self.xdotool("key", key)
                time.sleep(0.5)
            return self.script.read_text() == expected

        wait_for(is_written)

    def press(self, *keys):
        for key in keys:
            self.xdotool("key", key)
            time.sleep(0.3)


# What xdotool needs to find the display, then the editor in the place of this program.
KEEP_DISPLAY = """\
import os, pathlib, sys
kept = "".join(f"{name}={os.environ[name]}\\n" for name in ("DISPLAY", "XAUTHORITY"))
path = pathlib.Path(sys.argv[1])
path.with_suffix(".new").write_text(kept)
path.with_suffix(".new").rename(path)
os.execvp(sys.argv[2], sys.argv[2:])
"""


@unittest.skipUnless(are_installed("kate", *DISPLAY_TOOLS), "no Kate, or no display for it")
class Kate(WindowTestCase):
    def setUp(self):
        super().setUp()
        settings = self.home / ".config/kate/lspclient/settings.json"
        settings.parent.mkdir(parents=True)
        section = README.read_text("utf-8").partition("### Kate")[2]
        settings.write_text(re.search(r"```json\n(.*?)```", section, re.DOTALL)[1])
        colours = self.home / ".local/share/org.kde.syntax-highlighting/syntax/yxst.xml"
        colours.parent.mkdir(parents=True)
        shutil.copy(COLOURS, colours)
        server = self.home / "bin" / "yxst"
        (self.home / ".config/katerc").write_text(
            "[Kate Plugins]\nlspclientplugin=true\n"
            f"[lspclient]\nAllowedServerCommandLines=yxst lsp,{server} lsp\n"
        )

    def test_it_formats_what_is_saved(self):
        self.start("kate", "--new", "--block", str(self.script))
        self.focus()
        self.press_until("ctrl+t", "f", "ctrl+s", expected=FORMATTED)


def variant(value):
    """A value as Qt stores it in its settings."""
    if isinstance(value, bool):
        return struct.pack(">IB", 1, value)
    if isinstance(value, int):
        return struct.pack(">Ii", 2, value)
    if isinstance(value, str):
        return struct.pack(">I", 10) + text(value)
    if isinstance(value, list):
        return struct.pack(">II", 9, len(value)) + b"".join(map(variant, value))
    pairs = b"".join(text(key) + variant(each) for key, each in value.items())
    return struct.pack(">II", 8, len(value)) + pairs


def text(value):
    data = value.encode("utf-16-be")
    return struct.pack(">I", len(data)) + data


@unittest.skipUnless(are_installed("qtcreator", *DISPLAY_TOOLS), "no Qt Creator, or no display")
class QtCreator(WindowTestCase):
    def setUp(self):
        super().setUp()
        section = README.read_text("utf-8").partition("### Qt Creator")[2]
        fields = dict(re.findall(r"^\| ([\w: ]+?) \| `(.*)` \|$", section, re.MULTILINE))
        server = {
            "typeId": "LanguageClient::StdIOSettingsID",
            "id": "{6f1b8bd8-3b0b-4d6e-9f67-3c3f6a3c1d10}",
            "name": fields["Name"],
            "enabled": True,
            "startupBehavior": 1,  # with a file that is open
            "filePattern": [fields["Language: file pattern"]],
            "executable": fields["Executable"],
            "arguments": fields["Arguments"],
            "initializationOptions": fields["Initialization options"],
        }
        escaped = "".join(f"\\x{byte:x}" for byte in variant([server]))
        settings = self.home / ".config/QtProject/QtCreator.ini"
        settings.parent.mkdir(parents=True)
        settings.write_text(f"[LanguageClient]\nclients=@Variant({escaped})\n")

    def test_it_jumps_to_the_declaration(self):
        self.start("qtcreator", "-noload", "Welcome", "-noload", "UpdateInfo", str(self.script))
        self.focus()

        def is_asked():
            self.press("ctrl+Home", "Down", "Down", "Down", "Down", "F2")
            return self.said("textDocument/definition")

        wait_for(is_asked)
        time.sleep(2)  # for the jump
        self.xdotool("type", "new_")
        self.press_until("ctrl+s", expected=MARKED_AT_DECLARATION)


if __name__ == "__main__":
    unittest.main()
