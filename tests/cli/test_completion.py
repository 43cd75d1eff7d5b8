"""The completions of the shells and the manual pages know the options of the programs.

The completion for bash is run; those for zsh and fish are run where these shells are installed,
and only read elsewhere.
"""

import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

from support import BINARY, DESK, ROOT, TIMEOUT_SECONDS, words

PACKAGING = ROOT / "packaging"
COMPLETIONS = PACKAGING / "completions"
MANUAL_PAGE = PACKAGING / "yxstcmp.1"
DESK_MANUAL_PAGE = PACKAGING / "yxst.1"

OPTIONS = set(words.driver_options(BINARY))

FILES = ["a tank.st", "pump.st", "PUMP2.ST", "notes.txt"]
TABLE = "pump.test"
FOLDER = "plant"

# Each shell is given a file of its completion and the words of a command line, the one that is
# completed last, and prints what it offers, one a line.
BASH = """
source "$0"
COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
_$1
(( ${#COMPREPLY[@]} == 0 )) || printf '%s\\n' "${COMPREPLY[@]}"
"""

# The functions of zsh that show what is offered work in its line editor alone; here they print.
# Files are only asked for, with a pattern or without.
ZSH = """
completion=$1
words=("${@:2}") CURRENT=$(($# - 1))
_files() { print -r -- "files ${@[-1]}" }
_describe() { print -rl -- ${(P)${@[-1]}%%:*} }
compset() { : }
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
            env={
                "PATH": f"{DESK.parent}:/usr/bin:/bin",
                "HOME": str(self.folder),
                "LANG": "C.UTF-8",
            },
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

    def test_the_code_file_is_completed_to_what_is_no_script(self):
        self.assertCountEqual(self.offered("in.st", ""), ["notes.txt", FOLDER])
        self.assertEqual(self.offered("in.st", "n"), ["notes.txt"])
        self.assertEqual(self.offered("in.st", "a"), [])

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
        self.assertEqual(offered("in.st", ""), ["files ^*.(st|ST)"])


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
        self.assertCountEqual(offered("in.st", ""), ["notes.txt", f"{FOLDER}/"])
        self.assertEqual(offered("in.st", "a"), [])


def help_of(*subcommand):
    command = [DESK, *subcommand, "--help"]
    return subprocess.run(command, capture_output=True, encoding="utf-8", check=True).stdout


def subcommands():
    return re.findall(r"^  ([a-z]\S*) ", help_of().partition("Subcommands:")[2], re.MULTILINE)


def long_options(*subcommand):
    return re.findall(r"^  (?:-\w,)?(--[\w-]+)", help_of(*subcommand), re.MULTILINE)


class DeskCompletion(Completion):
    """What each shell offers for yxst; offered() is the shell's."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        (cls.folder / TABLE).touch()

    def check(self, with_equals):
        names = subcommands()
        self.assertGreater(len(names), 2)
        self.assertCountEqual(self.offered(""), names)
        self.assertCountEqual(self.offered("-"), long_options())
        for name in names:
            with self.subTest(subcommand=name):
                self.assertCountEqual(self.offered(name, "-"), long_options(name))
        formats = ["human", "gcc", "json", "sarif", "github"]
        self.assertCountEqual(self.offered("check", "--format", ""), formats)
        self.assertCountEqual(self.offered(*with_equals), formats)
        self.assertCountEqual(self.offered("explain", "--color", ""), ["auto", "always", "never"])
        self.assertIn("incompatible-types", self.offered("explain", ""))
        self.assertEqual(self.offered("lsp", ""), [])


class DeskBash(DeskCompletion):
    def offered(self, *words):
        return self.lines(["bash", "-c", BASH, COMPLETIONS / "yxst.bash", "yxst", *words])

    def test_what_is_offered(self):
        self.check(["check", "--format", "=", ""])
        self.assertEqual(self.offered("ch"), ["check"])
        self.assertEqual(self.offered("check", "--format", "=", "gi"), ["github"])

    def test_files(self):
        scripts = [name for name in FILES if name.lower().endswith(".st")]
        self.assertCountEqual(self.offered("check", ""), [*scripts, FOLDER])
        self.assertCountEqual(self.offered("check", "--quiet", "a"), ["a tank.st"])
        self.assertCountEqual(self.offered("test", ""), [TABLE, FOLDER])
        self.assertCountEqual(self.offered("test", "--new", ""), [*scripts, FOLDER])
        self.assertCountEqual(self.offered("other", ""), [*FILES, TABLE, FOLDER])

    def test_it_is_the_completion_of_yxst(self):
        command = 'source "$0" && complete -p yxst'
        lines = self.lines(["bash", "-c", command, COMPLETIONS / "yxst.bash"])
        self.assertEqual(lines, ["complete -o filenames -F _yxst yxst"])


@unittest.skipUnless(shutil.which("zsh"), "zsh is not installed")
class DeskZsh(DeskCompletion):
    def offered(self, *words):
        return self.lines(
            ["zsh", "-f", "-c", ZSH, "zsh", COMPLETIONS / "_yxst", "yxst", *words]
        )

    def test_what_is_offered(self):
        self.check(["check", "--format="])
        self.assertEqual(self.offered("check", ""), ["files *.(st|ST)"])
        self.assertEqual(self.offered("test", ""), ["files *.test"])
        self.assertEqual(self.offered("test", "--new", ""), ["files *.(st|ST)"])
        self.assertEqual(self.offered("other", ""), ["files "])


@unittest.skipUnless(shutil.which("fish"), "fish is not installed")
class DeskFish(DeskCompletion):
    def offered(self, *words):
        file = COMPLETIONS / "yxst.fish"
        lines = self.lines(["fish", "--no-config", "-c", FISH, file, "yxst", *words])
        return [line.split("\t")[0].removeprefix("--format=") for line in lines]

    def test_what_is_offered(self):
        self.check(["check", "--format="])
        self.assertEqual(self.offered("check", "a"), ["a tank.st"])
        self.assertEqual(self.offered("test", "pump.t"), [TABLE])
        self.assertEqual(self.offered("test", "--new", "pump.s"), ["pump.st"])
        self.assertEqual(self.offered("other", "n"), ["notes.txt"])


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
        assert_well_formed(self, MANUAL_PAGE)


# The two pages name each other; neither is installed here.
ABSENT = "STYLE: referenced manual not found: Xr yxst"


def assert_well_formed(test, page):
    command = ["mandoc", "-T", "lint", "-W", "style", page]
    process = subprocess.run(command, stdout=subprocess.PIPE, encoding="utf-8", check=False)
    test.assertEqual([line for line in process.stdout.splitlines() if ABSENT not in line], [])


class DeskManualPage(unittest.TestCase):
    def setUp(self):
        text = DESK_MANUAL_PAGE.read_text(encoding="utf-8")
        synopsis, description = text.split(".Sh DESCRIPTION")
        self.synopses = synopsis.partition(".Sh SYNOPSIS")[2].split(".Nm\n")[1:]
        self.description = description

    def test_each_subcommand_has_a_synopsis_with_its_options(self):
        found = {}
        for synopsis in self.synopses:
            if command := re.match(r"\.Cm (\S+)\n", synopsis):
                found[command[1]] = re.findall(r"^\.Op Fl -(\S+)", synopsis, re.MULTILINE)
        self.assertCountEqual(found, subcommands())
        for name, options in found.items():
            with self.subTest(subcommand=name):
                expected = [option for option in long_options(name) if option != "--help"]
                self.assertCountEqual([f"--{option}" for option in options], expected)

    def test_everything_is_described(self):
        described = re.findall(r"^\.It Cm (\S+)\n[A-Z]", self.description, re.MULTILINE)
        self.assertCountEqual(described, subcommands())
        described = re.findall(r"^\.It Fl -(\S+)", self.description, re.MULTILINE)
        options = {option for name in subcommands() for option in long_options(name)}
        self.assertCountEqual([f"--{name}" for name in described], options | set(long_options()))

    @unittest.skipUnless(shutil.which("mandoc"), "mandoc is not installed")
    def test_it_is_well_formed(self):
        assert_well_formed(self, DESK_MANUAL_PAGE)


class Options(unittest.TestCase):
    def test_they_are_found(self):
        readme = (ROOT / "README.md").read_text(encoding="utf-8")
        self.assertCountEqual(re.findall(r"^\| `(-\w)` \|", readme, re.MULTILINE), OPTIONS)
        self.assertTrue(OPTIONS)


if __name__ == "__main__":
    unittest.main()
