"""Editors show what the language server finds, with the settings that editors/README.md tells.

The settings are taken from that page as they stand there. Each editor gets a home of its own with
them, and opens a script with an error and one in which a finding is left out by the settings.
"""

import json
import os
import re
import shutil
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
from pathlib import Path

from support import DESK, ROOT, TIMEOUT_SECONDS

EDITORS = ROOT / "editors"
PAGE = (EDITORS / "README.md").read_text(encoding="utf-8")

WRONG = """\
PROGRAM Demo
VAR
    x : INT := 0;
END_VAR
    x := speed;
END_PROGRAM
"""
WRONG_FOUND = [["wrong.st", 5, 15, "unrecognized-keyword"]]

# Line 6 is an unused-store, too.
DOUBTFUL = """\
PROGRAM Demo
VAR_OUTPUT
    x : REAL := 0.0;
    same : BOOL := FALSE;
END_VAR
    x := 1.0;
    x := 2.0;
    same := x = 2.0;
END_PROGRAM
"""
DOUBTFUL_FOUND = [["doubtful.st", 8, 13, "real-equality"]]


def block(heading, language):
    """The first settings in a language below a heading of the page."""
    section = re.search(rf"^### {heading}$(.*?)(?=^##)", PAGE, re.MULTILINE | re.DOTALL)[1]
    return re.search(rf"^```{language}\n(.*?)^```$", section, re.MULTILINE | re.DOTALL)[1]


class Client:
    """The tests of an editor, of which COMMAND is known and how it tells what it shows."""

    def setUp(self):
        if shutil.which(self.COMMAND[0]) is None:
            self.skipTest(f"{self.COMMAND[0]} is not installed")
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.home = Path(folder.name, "home")
        self.folder = Path(folder.name, "a b")
        self.folder.mkdir()
        self.write(self.folder / "wrong.st", WRONG)
        self.write(self.folder / "doubtful.st", DOUBTFUL)
        self.write(self.folder / self.PROBE, self.PROBE_TEXT)
        self.set_up_home()

    def write(self, path, text):
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")

    def shown(self, script):
        """What the editor shows of a script: file, line and column from 1, identifier."""
        subprocess.run(
            self.command(script),
            cwd=self.folder,
            env={
                "HOME": str(self.home),
                "PATH": f"{DESK.parent}:/usr/local/bin:/usr/bin:/bin",
                "TERM": "xterm",
                "LC_ALL": "C.UTF-8",
            },
            stdin=subprocess.DEVNULL,
            capture_output=True,
            timeout=TIMEOUT_SECONDS,
            check=True,
        )
        return json.loads((self.folder / "result").read_text(encoding="utf-8"))

    def test_errors_are_shown(self):
        self.assertEqual(self.shown("wrong.st"), WRONG_FOUND)

    def test_settings_reach_the_server(self):
        self.assertEqual(self.shown("doubtful.st"), DOUBTFUL_FOUND)


class Neovim(Client, unittest.TestCase):
    COMMAND = ("nvim", "--headless", "-n")
    PROBE = "probe.lua"
    PROBE_TEXT = """
        vim.wait(20000, function() return #vim.diagnostic.get(0) > 0 end, 20)
        local found = {}
        for _, each in ipairs(vim.diagnostic.get(0)) do
          local name = vim.fn.bufname(each.bufnr)
          table.insert(found, { name, each.lnum + 1, each.col + 1, each.code })
        end
        vim.fn.writefile({ vim.fn.json_encode(found) }, 'result')
        vim.cmd('qall!')
    """

    def set_up_home(self):
        shutil.copytree(EDITORS / "vim", self.home / ".local/share/nvim/site/pack/yxst/start/yxst")
        self.write(self.home / ".config/nvim/init.lua", block("Neovim", "lua"))

    def command(self, script):
        return [*self.COMMAND, script, "-c", "luafile probe.lua"]


class VimWithAle(Client, unittest.TestCase):
    COMMAND = ("vim", "-n")
    PROBE = "probe.vim"
    PROBE_TEXT = """
        function! Probe(timer) abort
          let found = copy(ale#engine#GetLoclist(bufnr('')))
          if !empty(found) || s:rounds >= 400
            call map(found, '[bufname(v:val.bufnr), v:val.lnum, v:val.col, v:val.code]')
            call writefile([json_encode(found)], 'result')
            qall!
          endif
          let s:rounds += 1
        endfunction
        let s:rounds = 0
        call timer_start(50, 'Probe', {'repeat': -1})
    """

    def setUp(self):
        if not Path("/usr/share/vim-ale").is_dir():
            self.skipTest("ALE is not installed")
        super().setUp()

    def set_up_home(self):
        shutil.copytree(EDITORS / "vim", self.home / ".vim/pack/yxst/start/yxst")
        config = re.search("^let g:ale_yxst_yxst_config = .*$", PAGE, re.MULTILINE)[0]
        packages = block("Vim with ALE", "vim")
        self.write(self.home / ".vimrc", f"filetype plugin on\n{packages}{config}\n")

    def command(self, script):
        # Without a terminal Vim does not wait for what others have to say.
        inner = " ".join([*self.COMMAND, "-S", "probe.vim", script])
        return ["script", "--quiet", "--return", "--command", inner, "/dev/null"]


class Emacs(Client, unittest.TestCase):
    COMMAND = ("emacs", "--batch")
    PROBE = "probe.el"
    PROBE_TEXT = """
        (defun probe-id (text)
          (string-match "\\\\[\\\\([a-z-]+\\\\)\\\\]" text)
          (match-string 1 text))
        (defun probe-found ()
          (mapcar
           (lambda (each)
             (save-excursion
               (goto-char (flymake-diagnostic-beg each))
               (vector (buffer-name) (line-number-at-pos) (1+ (current-column))
                       (probe-id (flymake-diagnostic-text each)))))
           (flymake-diagnostics)))
        (find-file (car command-line-args-left))
        (run-hooks 'post-command-hook)
        (with-timeout (20)
          (while (null (probe-found)) (accept-process-output nil 0.05)))
        (let ((coding-system-for-write 'utf-8))
          (write-region (json-encode (vconcat (probe-found))) nil "result"))
        (kill-emacs)
    """

    def setUp(self):
        if not list(Path("/usr/share/emacs/site-lisp").glob("elpa*/eglot-*")):
            self.skipTest("eglot is not installed")
        super().setUp()

    def set_up_home(self):
        self.write(self.home / ".emacs.d/init.el", block("Emacs with eglot", "elisp"))

    def command(self, script):
        start = ["-f", "package-initialize", "-l", self.home / ".emacs.d/init.el"]
        return [*self.COMMAND, *start, "-l", "probe.el", script]


class Kate(unittest.TestCase):
    def test_settings_fit_the_highlighting(self):
        server = json.loads(block("Kate", "json"))["servers"]["yxst"]
        name = ElementTree.parse(EDITORS / "kate" / "yxst.xml").getroot().get("name")
        self.assertRegex(name, server["highlightingModeRegex"])
        self.assertEqual(server["command"], ["yxst", "lsp"])


class Page(unittest.TestCase):
    def test_every_command_line_is_that_of_the_server(self):
        told = re.findall(r"""['"]yxst['"],? ['"](\w+)['"]""", PAGE)
        self.assertEqual(set(told), {"lsp"})
        self.assertGreater(len(told), 3)
        shown = subprocess.run([DESK, told[0], "--help"], capture_output=True, text=True)
        self.assertEqual(shown.returncode, 0, shown.stderr)

    def test_every_setting_is_one_of_the_extension(self):
        package = json.loads((EDITORS / "vscode" / "package.json").read_text(encoding="utf-8"))
        known = package["contributes"]["configuration"]["properties"]
        told = re.findall(r"""yxst['"]?[ :=)({.]+['":]?(\w+)['"]?[: =]+[\[{]""", PAGE)
        self.assertEqual({f"yxst.{name}" for name in told} - set(known), set())


if __name__ == "__main__":
    unittest.main()
