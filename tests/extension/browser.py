#!/usr/bin/env python3
"""Tests the extension in VS Code itself, in a headless Chromium; makes the pictures of its page.

    browser.py [--work FOLDER] [--pictures]

The work folder, by default build/tests/browser, gets VS Code as it runs in a browser, from npm:
some six minutes the first time, so this is run by hand. With --pictures those of
editors/vscode/images are made anew. Debian's packages chromium, ripgrep, g++ and make are needed,
and build/yxst and build/yxstcmp, or those that YXST and YXSTCMP name.
"""

import argparse
import json
import os
import re
import shutil
import subprocess
import sys
import threading
from pathlib import Path

FOLDER = Path(__file__).resolve().parent
ROOT = FOLDER.parents[1]
TOOLS = ROOT / "tests/manual"
IMAGES = ROOT / "editors/vscode/images"
PROGRAMS = {"yxst": "YXST", "yxstcmp": "YXSTCMP"}

sys.path[:0] = [str(FOLDER.parent), str(TOOLS), str(ROOT / "packaging"), str(ROOT / "scripts")]
import npm_tools  # noqa: E402
import vsix  # noqa: E402
from run import find_browser  # noqa: E402

# Later ones need a newer Node.js than Debian 12 has.
EDITOR = "code-server@4.100.3"

# Its own installation wants a compiler for parts that are not needed here, and downloads others.
INSTALLATION = f"""
    set -eu
    npm init -y
    npm install --ignore-scripts {EDITOR}
    npm rebuild argon2
    cd node_modules/code-server/lib/vscode
    npm install --ignore-scripts --omit=dev
    npm rebuild @vscode/spdlog native-watchdog
    (cd extensions && npm install --ignore-scripts --omit=dev)
    ln -sfn node_modules node_modules.asar
    mkdir -p node_modules/@vscode/ripgrep/bin
    ln -sf "$(command -v rg)" node_modules/@vscode/ripgrep/bin/rg
"""

SETTINGS = {
    "chat.commandCenter.enabled": False,
    "editor.minimap.enabled": False,
    "security.workspace.trust.enabled": False,
    "telemetry.telemetryLevel": "off",
    "window.commandCenter": False,
    "window.menuBarVisibility": "hidden",
    "workbench.layoutControl.enabled": False,
    "workbench.startupEditor": "none",
    "workbench.tips.enabled": False,
}

FAN = """\
PROGRAM Fan
VAR_INPUT
    temperature : REAL;
END_VAR
VAR_OUTPUT
    speed : INT := 0;
END_VAR
    speed := 20;
    IF temperature > 30.0 THEN
        speed := 100;
    END_IF;
END_PROGRAM
"""

FILL = """\
PROGRAM Fill
VAR_INPUT
    level : INT;
END_VAR
VAR_OUTPUT
    pump : BOOL := FALSE;
END_VAR
    IF levle > 90 THEN
        pump = FALSE;
    END_IF;
END_PROGRAM
"""

SCRIPTS = {
    "fan.st": FAN,
    "boost.st": FAN.replace("Fan", "Boost"),
    "fill.st": FILL,
    "pumps/lead.st": FILL.replace("levle", "level").replace("Fill", "Lead"),
    "pumps/assist.script": FAN.replace("100;", "many;").replace("Fan", "Assist"),
}


def install_editor(work):
    entry = work / "node_modules/code-server/out/node/entry.js"
    marker = work / EDITOR
    if not marker.exists():
        work.mkdir(parents=True, exist_ok=True)
        subprocess.run(["bash", "-c", INSTALLATION], cwd=work, check=True, stdout=sys.stderr)
        marker.touch()
    return ["node", entry]


def write_plant(work):
    plant = work / "plant"
    shutil.rmtree(plant, ignore_errors=True)
    for name, text in SCRIPTS.items():
        path = plant / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)
    return plant


def link_programs(work):
    """A folder with both programs, which are found beside each other."""
    folder = work / "bin"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    for name, variable in PROGRAMS.items():
        program = Path(os.environ.get(variable, ROOT / "build" / name)).resolve(strict=True)
        (folder / name).symlink_to(program)
    return folder


class Editor:
    """VS Code as a server with the extension, for as long as the block lasts."""

    def __init__(self, command, work, programs):
        self.data = work / "data"
        shutil.rmtree(self.data, ignore_errors=True)
        # VS Code takes PATH from the user's shell, so the program is set, for this machine.
        for scope, settings in (
            ("User", SETTINGS),
            ("Machine", {"yxst.path": str(programs / "yxst")}),
        ):
            (self.data / scope).mkdir(parents=True)
            (self.data / scope / "settings.json").write_text(json.dumps(settings))
        folders = ["--user-data-dir", self.data, "--extensions-dir", self.data / "extensions"]
        self.command = [*command, *folders]
        self.environment = {**os.environ, "HOME": str(self.data)}

    def install(self, file):
        command = [*self.command, "--install-extension", file]
        subprocess.run(command, env=self.environment, check=True, stdout=sys.stderr)

    def __enter__(self):
        options = ["--auth=none", "--bind-addr=127.0.0.1:0", "--disable-telemetry"]
        self.server = subprocess.Popen(
            [*self.command, *options, "--disable-update-check"],
            env=self.environment,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            text=True,
        )
        for line in self.server.stdout:
            found = re.search(r"listening on (http\S+?)/?$", line.strip())
            if found:
                threading.Thread(target=self.server.stdout.read, daemon=True).start()
                self.address = found[1]
                return self
        raise RuntimeError("VS Code does not start")

    def __exit__(self, *_):
        self.server.terminate()
        self.server.wait()


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--work", type=Path, default=ROOT / "build" / "tests" / "browser")
    parser.add_argument("--pictures", action="store_true", help="make the pictures of the page")
    arguments = parser.parse_args()
    work = arguments.work.resolve()

    npm_tools.install(TOOLS, work / "tools")
    editor = Editor(install_editor(work), work, link_programs(work))
    vsix.bundle(work / "extension")
    vsix.pack(work / "yxst.vsix", work / "extension")
    editor.install(work / "yxst.vsix")
    test = shutil.copy(FOLDER / "browser.mjs", work / "tools")
    pictures = IMAGES if arguments.pictures else work
    with editor:
        plant = write_plant(work)
        result = subprocess.run(["node", test, find_browser(), editor.address, plant, pictures])
    sys.exit(result.returncode)


if __name__ == "__main__":
    main()
