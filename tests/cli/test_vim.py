"""Vim and Neovim, started as they are out of the box, work on scripts with editors/vim.

Each editor gets a home of its own with the files installed as a package; no settings are switched
off and none are made.
"""

import json
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

from support import DESK, ROOT, TIMEOUT_SECONDS

PLUGIN = ROOT / "editors" / "vim"
EXAMPLES = sorted((ROOT / "examples").glob("*.st"))

SCRIPT = """\
PROGRAM Demo
VAR
    x : INT := 0;
END_VAR
    x := x + 1;
END_PROGRAM
"""

INDENTED = """\
FUNCTION Twice : INT
VAR_ARG
    x : INT;
END_VAR
    RESULT := 2 * x;
END_FUNCTION

PROGRAM Demo
VAR
    level : INT := 0;
    open : BOOL := FALSE;
END_VAR
    CASE level OF
    0:
        open := FALSE;
    1..9: open := TRUE;
    ELSE
        IF open THEN
            level := Twice(level)
                     + 1;
        ELSIF level > 20 THEN
again:
            level := level - 1;
        ELSE
            REPEAT
                level := 0;
            UNTIL level = 0
            END_REPEAT;
        END_IF;
    END_CASE;
END_PROGRAM
"""
# Typed into an empty buffer: no line is indented by hand.
TYPED = re.sub("^ +", "", INDENTED, flags=re.MULTILINE).removesuffix("\n")

WRONG = """\
PROGRAM Demo
VAR
    x : INT := 0;
    y : INT := 0;
END_VAR
    x := speed;
END_PROGRAM
"""


def without_indentation(text):
    """No line begins with a blank, but for those within a comment, which are left alone."""
    lines, is_comment = [], False
    for line in text.splitlines(keepends=True):
        lines.append(line if is_comment else line.lstrip(" "))
        is_comment = (is_comment or "(*" in line) and "*)" not in line
    return "".join(lines)


class EditorTests:
    """The tests of an editor, of which COMMAND, PACKAGES and SETTINGS are known."""

    def setUp(self):
        if shutil.which(self.COMMAND[0]) is None:
            self.skipTest(f"{self.COMMAND[0]} is not installed")
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.home = Path(folder.name, "home")
        self.folder = Path(folder.name, "a b")
        self.folder.mkdir()
        shutil.copytree(PLUGIN, self.home / self.PACKAGES / "pack/yxst/start/yxst")

    def write(self, name, text):
        (self.folder / name).write_text(text, encoding="utf-8")

    def run_editor(self, *arguments, commands=(), result="''"):
        """The value of an expression after the commands, which are run when all is loaded."""
        lines = [*commands, f"call writefile([json_encode({result})], 'result')", "qall!"]
        self.write("probe.vim", "\n".join(lines))
        subprocess.run(
            [*self.COMMAND, "-S", "probe.vim", *arguments],
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

    def file_type(self, *arguments, commands=()):
        result = "[&filetype, get(b:, 'current_syntax', ''), &commentstring, &indentexpr]"
        return self.run_editor(*arguments, commands=commands, result=result)

    IS_SCRIPT = ["yxst", "yxst", "// %s", "YxstIndent(v:lnum)"]

    def test_scripts_are_recognised(self):
        self.write("a.st", SCRIPT)
        self.assertEqual(self.file_type("a.st"), self.IS_SCRIPT)
        self.assertEqual(self.file_type("new.st"), self.IS_SCRIPT)
        self.assertEqual(self.file_type(commands=["edit a.st"]), self.IS_SCRIPT)
        self.assertEqual(self.file_type("-o", "a.st", "new.st"), self.IS_SCRIPT)

    def test_the_words_between_which_percent_jumps(self):
        self.write("a.st", SCRIPT)
        pairs = self.run_editor("a.st", result="b:match_words")
        self.assertIn(r"\<\%(IF\)\>:\<\%(ELSIF\)\>:\<\%(ELSE\)\>:\<\%(END_IF\)\>", pairs)

    def test_other_files_stay_what_they_are(self):
        self.write("a.c", "int a;\n")
        self.assertEqual(self.file_type("a.c")[:2], ["c", "c"])
        self.write("a.st", f"{SCRIPT}// vim: filetype=pascal\n")
        modeline = ["set modeline", "edit a.st"]
        self.assertEqual(self.file_type(commands=modeline)[:2], ["pascal", "pascal"])

    def test_settings_of_the_user_come_first(self):
        settings = self.home / self.SETTINGS
        settings.parent.mkdir(parents=True, exist_ok=True)
        self.write("a.st", SCRIPT)
        basics = "filetype plugin indent on\nsyntax on\n"
        settings.write_text(f"{basics}let g:filetype_st = 'st'\n")
        self.assertEqual(self.file_type("a.st")[:2], ["st", "st"])
        settings.write_text(f"autocmd BufRead *.st setfiletype pascal\n{basics}")
        self.assertEqual(self.file_type("a.st")[:2], ["pascal", "pascal"])
        settings.write_text(f"{basics}let g:yxst_recommended_style = 0\nset shiftwidth=2\n")
        self.assertEqual(self.run_editor("a.st", result="[&shiftwidth, &expandtab]"), [2, 0])

    def lines_after(self, *commands, file="a.st"):
        return self.run_editor(file, commands=commands, result="getline(1, '$')")

    def test_examples_keep_their_indentation(self):
        self.assertGreater(len(EXAMPLES), 5)
        for path in EXAMPLES:
            text = path.read_text(encoding="utf-8")
            self.write("a.st", without_indentation(text))
            with self.subTest(example=path.name):
                self.assertEqual(self.lines_after("normal gg=G"), text.splitlines())

    def test_what_is_typed_is_indented(self):
        keys = json.dumps(TYPED.replace("\n", "\r"))
        typed = f"execute 'normal i' .. {keys}"
        self.assertEqual(self.lines_after(typed, file="new.st"), INDENTED.splitlines())

    def test_make_shows_the_messages(self):
        self.write("it's wrong.st", WRONG)
        self.write("right.st", SCRIPT)
        fields = "[bufname(v:val.bufnr), v:val.lnum, v:val.col, v:val.type]"
        made = ["compiler yxst", "silent make!", "let found = getqflist()"]
        found = self.run_editor(
            "it's wrong.st", commands=made, result=f"map(filter(found, 'v:val.valid'), {fields!r})"
        )
        self.assertEqual([row for row in found if row[3] == "e"], [["it's wrong.st", 6, 15, "e"]])
        self.assertIn(["it's wrong.st", 4, 5, "w"], found)
        self.assertEqual(self.run_editor("right.st", commands=made, result="found"), [])


class Vim(EditorTests, unittest.TestCase):
    COMMAND = ("vim", "--not-a-term", "-n")
    PACKAGES = ".vim"
    SETTINGS = ".vimrc"


class Neovim(EditorTests, unittest.TestCase):
    COMMAND = ("nvim", "--headless", "-n")
    PACKAGES = ".local/share/nvim/site"
    SETTINGS = ".config/nvim/init.vim"


if __name__ == "__main__":
    unittest.main()
