"""The completions of the shells and the manual page know the options of the compiler.

The completion for bash is run; those for zsh and fish are run where these shells are installed,
and only read elsewhere.
"""

import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

from support import BINARY, ROOT, TIMEOUT_SECONDS, words

PACKAGING = ROOT / "packaging"
COMPLETIONS = PACKAGING / "completions"
MANUAL_PAGE = PACKAGING / "yxstcmp.1"

OPTIONS = set(words.driver_options(BINARY))

FILES = ["a tank.st", "pump.st", "PUMP2.ST", "notes.txt"]
FOLDER = "plant"

# Each shell is given a file of its completion and the words of a command line, the one that is
# completed last, and prints what it offers, one a line.
BASH = """
source "$0"
COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
_yxstcmp
(( ${#COMPREPLY[@]} == 0 )) || printf '%s\\n' "${COMPREPLY[@]}"
"""

# The functions of zsh that show what is offered work in its line editor alone; here they print.
# Files are only asked for, with a pattern or without.
ZSH = """
completion=$1
words=("${@:2}") CURRENT=$(($# - 1))
_files() { print -r -- "files ${@[-1]}" }
_describe() { print -rl -- ${(P)${@[-1]}%%:*} }
complete_word() { source $completion }
complete_word
"""

FISH = """
source $argv[1]
set line (string escape -- $argv[2..-2]) $argv[-1]
complete -C "$line"
"""


class Completion(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = Path(folder.name)
        (cls.folder / FOLDER).mkdir()
        for name in FILES:
            (cls.folder / name).touch()

    def lines(self, command):
        # The folder is the home too, so that no shell reads or writes settings of the user.
        output = subprocess.run(
            command,
            cwd=self.folder,
            env={"PATH": "/usr/bin:/bin", "HOME": str(self.folder), "LANG": "C.UTF-8"},
            stdin=subprocess.DEVNULL,
            capture_output=True,
            encoding="utf-8",
            timeout=TIMEOUT_SECONDS,
            check=True,
        )
        self.assertEqual(output.stderr, "")
        return output.stdout.splitlines()

    def check_options(self, offered):
        """offered gives what a shell offers for the words after the name of the compiler."""
        self.assertCountEqual(offered("in.st", "out", ""), OPTIONS)
        self.assertCountEqual(offered("in.st", "out", "-"), OPTIONS)
        self.assertCountEqual(offered("in.st", "out", "-l", "-n", ""), OPTIONS - {"-l", "-n"})
        self.assertCountEqual(offered("in.st", "-l", ""), OPTIONS)
        self.assertCountEqual(offered("in.st", "out", *sorted(OPTIONS), ""), [])


class Bash(Completion):
    def offered(self, *words):
        file = COMPLETIONS / "yxstcmp.bash"
        return self.lines(["bash", "-c", BASH, file, "yxstcmp", *words])

    def test_options(self):
        self.check_options(self.offered)
        self.assertEqual(self.offered("in.st", "out", "-l"), ["-l"])
        self.assertEqual(self.offered("in.st", "out", "-x"), [])

    def test_the_script_is_completed_to_scripts_and_folders(self):
        scripts = [name for name in FILES if name.lower().endswith(".st")]
        self.assertCountEqual(self.offered(""), [*scripts, FOLDER])
        self.assertEqual(self.offered("a"), ["a tank.st"])
        self.assertEqual(self.offered("n"), [])

    def test_the_code_file_is_completed_to_any_file(self):
        self.assertCountEqual(self.offered("in.st", ""), [*FILES, FOLDER])
        self.assertEqual(self.offered("in.st", "n"), ["notes.txt"])

    def test_it_is_the_completion_of_the_compiler(self):
        command = 'source "$0" && complete -p yxstcmp'
        lines = self.lines(["bash", "-c", command, COMPLETIONS / "yxstcmp.bash"])
        self.assertEqual(lines, ["complete -o filenames -F _yxstcmp yxstcmp"])


class Zsh(Completion):
    def setUp(self):
        self.file = COMPLETIONS / "_yxstcmp"

    def test_text(self):
        text = self.file.read_text(encoding="utf-8")
        self.assertEqual(text.splitlines()[0], "#compdef yxstcmp")
        self.assertCountEqual(re.findall(r"^    '(-\w):.+'$", text, re.MULTILINE), OPTIONS)

    @unittest.skipUnless(shutil.which("zsh"), "zsh is not installed")
    def test_run(self):
        def offered(*words):
            return self.lines(["zsh", "-f", "-c", ZSH, "zsh", self.file, "yxstcmp", *words])

        # Which options begin with the word is found by _describe.
        self.check_options(lambda *words: list(filter(None, offered(*words))))
        self.assertEqual(offered(""), ["files *.(st|ST)"])
        self.assertEqual(offered("in.st", ""), ["files "])


class Fish(Completion):
    def setUp(self):
        self.file = COMPLETIONS / "yxstcmp.fish"

    def test_text(self):
        text = self.file.read_text(encoding="utf-8")
        options = re.findall(r'^__yxstcmp_option (-\w) ".+"$', text, re.MULTILINE)
        self.assertCountEqual(options, OPTIONS)

    @unittest.skipUnless(shutil.which("fish"), "fish is not installed")
    def test_run(self):
        def offered(*words):
            lines = self.lines(["fish", "--no-config", "-c", FISH, self.file, "yxstcmp", *words])
            return [line.split("\t")[0] for line in lines]

        self.check_options(offered)
        self.assertEqual(offered("in.st", "out", "-l"), ["-l"])
        self.assertEqual(offered("a"), ["a tank.st"])
        self.assertEqual(offered("in.st", "n"), ["notes.txt"])


class ManualPage(unittest.TestCase):
    def setUp(self):
        self.text = MANUAL_PAGE.read_text(encoding="utf-8")

    def section(self, name):
        return re.search(rf"^\.Sh {name}\n(.*?)(?=^\.Sh |\Z)", self.text, re.DOTALL | re.M)[1]

    def test_each_option_is_in_the_synopsis(self):
        options = re.findall(r"^\.Op Fl (\w)$", self.section("SYNOPSIS"), re.MULTILINE)
        self.assertCountEqual([f"-{letter}" for letter in options], OPTIONS)

    def test_each_option_is_described(self):
        options = re.findall(r"^\.It Fl (\w)\n[A-Z].+\.$", self.section("OPTIONS"), re.MULTILINE)
        self.assertCountEqual([f"-{letter}" for letter in options], OPTIONS)

    @unittest.skipUnless(shutil.which("mandoc"), "mandoc is not installed")
    def test_it_is_well_formed(self):
        command = ["mandoc", "-T", "lint", "-W", "style", MANUAL_PAGE]
        process = subprocess.run(command, stdout=subprocess.PIPE, encoding="utf-8", check=False)
        self.assertEqual((process.stdout, process.returncode), ("", 0))


class Options(unittest.TestCase):
    def test_they_are_found(self):
        readme = (ROOT / "README.md").read_text(encoding="utf-8")
        self.assertCountEqual(re.findall(r"^\| `(-\w)` \|", readme, re.MULTILINE), OPTIONS)
        self.assertTrue(OPTIONS)


if __name__ == "__main__":
    unittest.main()
