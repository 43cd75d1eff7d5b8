"""`yxst fmt`: the layout, what stays, and what its options ask for.

    test_fmt.py --update

writes the results in format/ anew. Read every line of the difference.
"""

import os
import pty
import re
import resource
import stat
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path
from random import Random

import formatting
from support_desk import DESK, FAILED, FINE, NOT_FINE, ROOT, SCRIPT, TIMEOUT_SECONDS, run_yxst

from cases import all_cases  # isort: skip: found by support_desk
from corpus import accepted_sources  # isort: skip
from test_files import drop_privileges  # isort: skip
from test_relations import add_blanks, add_comments, change_letter_case  # isort: skip

HERE = Path(__file__).parent
LAYOUTS = sorted((HERE / "format").glob("*.st"))
RESULT = ".formatted"
MARK = b"\xef\xbb\xbf"

UGLY = b"PROGRAM P\nVAR\na:INT;\nEND_VAR\na:=1;\nEND_PROGRAM\n"
WRONG = UGLY.replace(b"a:=1;", b"a:=1;\na=2;")
WRONG_MESSAGE = '6:2: error: ":=" expected but "=" found [expected-but]\n'
HALF = SCRIPT.replace(b"    a := 1;", b"    a := 1;\na=2;")


def formatted(data, *options):
    """What comes of standard input, which must be a fine script."""
    run = run_yxst("fmt", *options, "-", input=data, stdin=None)
    if run.status != FINE or run.stderr:
        raise AssertionError(f"status {run.status}, {run.stderr!r}")
    return run.stdout


def formatted_in_editor(path):
    run = run_yxst("fmt", "--stdin-name=edited", input=path.read_bytes(), stdin=None)
    return run.stdout


def with_body(*lines):
    return SCRIPT.replace(b"    a := 1;", "\n".join(lines).encode())


def body_of(data):
    return data.decode().partition("END_VAR\n")[2].removesuffix("END_PROGRAM\n")


# ---------------------------------------------------------------------------------------------
# The layout
# ---------------------------------------------------------------------------------------------


class Layout(unittest.TestCase):
    maxDiff = None

    def test_pairs(self):
        self.assertGreater(len(LAYOUTS), 5)
        for path in LAYOUTS:
            with self.subTest(path.stem):
                expected = path.with_suffix(RESULT).read_text(encoding="utf-8")
                self.assertEqual(formatted_in_editor(path).decode(), expected)

    def test_results_stay_as_they_are(self):
        for path in LAYOUTS:
            with self.subTest(path.stem):
                again = formatted_in_editor(path.with_suffix(RESULT))
                self.assertEqual(again, path.with_suffix(RESULT).read_bytes())

    def test_the_examples_have_it(self):
        run = run_yxst("fmt", "--check", ROOT / "examples")
        self.assertEqual(run, (FINE, b"", b""))

    def test_indent(self):
        data = with_body("IF a = 1 THEN", "a := 2;", "END_IF;")
        for width in (1, 2, 8):
            with self.subTest(width):
                result = formatted(data, f"--indent={width}").decode()
                blanks = " " * width
                wanted = f"{blanks}IF a = 1 THEN\n{2 * blanks}a := 2;\n{blanks}END_IF;\n"
                self.assertEqual(result.partition("END_VAR\n")[2], f"{wanted}END_PROGRAM\n")
                self.assertEqual(formatted(result.encode(), f"--indent={width}"), result.encode())

    def test_very_deep_levels_go_no_further(self):
        depth = 100
        result = formatted(with_body(*["IF a = 1 THEN"] * depth, *["END_IF;"] * depth))
        widths = [len(line) - len(line.lstrip()) for line in body_of(result).split("\n")]
        self.assertEqual(max(widths), widths[depth - 1])
        self.assertLess(max(widths), 4 * depth)


# ---------------------------------------------------------------------------------------------
# What stays
# ---------------------------------------------------------------------------------------------


class Everything(unittest.TestCase):
    """All golden cases that compile and all examples, in their layout and in others."""

    @classmethod
    def setUpClass(cls):
        cls.sources = {source.name: source.data for source in accepted_sources()}

    def assert_formatted(self, sources):
        results, run = formatting.format_all(sources)
        self.assertEqual((run.status, run.stdout, run.stderr.decode()), (FINE, b"", ""))
        return results

    def test_they_are_formatted_and_stay_so(self):
        results = self.assert_formatted(self.sources)
        changed = [name for name in results if results[name] != self.sources[name]]
        self.assertGreater(len(changed), len(results) // 2)
        _, run = formatting.format_all(results, "--check")
        self.assertEqual(run, (FINE, b"", b""))

    def test_code_and_comments_stay(self):
        names = Random(1).sample(sorted(self.sources), 40)
        sources = {name: self.sources[name] for name in names}
        self.assertEqual(formatting.measure(sources), (len(names), []))

    def test_they_come_back_from_other_layouts(self):
        for change in (change_letter_case, add_blanks, add_comments):
            with self.subTest(change.__name__):
                self.assert_formatted({name: change(data) for name, data in self.sources.items()})

    def test_spoilt_programs(self):
        result = formatting.measure(dict(formatting.spoilt_programs(20, seed=1)))
        self.assertEqual(result, (20, []))


class Bytes(unittest.TestCase):
    def test_line_ends(self):
        for end in (b"\n", b"\r\n"):
            with self.subTest(end):
                result = formatted(UGLY.replace(b"\n", end))
                self.assertEqual(result, SCRIPT.replace(b"\n", end))

    def test_the_first_line_end_decides(self):
        result = formatted(UGLY.replace(b"\n", b"\r\n", 1))
        self.assertEqual(result, SCRIPT.replace(b"\n", b"\r\n"))

    def test_byte_order_mark(self):
        self.assertEqual(formatted(MARK + UGLY), MARK + SCRIPT)

    def test_the_last_line_is_ended(self):
        self.assertEqual(formatted(UGLY.rstrip()), SCRIPT)
        self.assertEqual(formatted(UGLY + b"\n\n \t"), SCRIPT)

    def test_comments_of_all_characters(self):
        comment = "    // \u0429\u0451 \u2192 \U0001f600 e\u0301 \t.\n"
        data = SCRIPT.replace(b"    a :=", comment.encode() + b"    a :=")
        self.assertEqual(formatted(data), data)

    def test_what_would_not_come_back_is_refused(self):
        refused = {
            b"// \xff": "is not in UTF-8",
            b"// a\rb": "a carriage return stands within a line",
        }
        for comment, why in refused.items():
            with self.subTest(why):
                data = UGLY.replace(b"a:=1;", comment)
                run = run_yxst("fmt", "-", input=data, stdin=None)
                self.assertEqual(run, (FAILED, b"", f"yxst: <stdin>: {why}.\n".encode()))


# ---------------------------------------------------------------------------------------------
# Files
# ---------------------------------------------------------------------------------------------


class FolderTestCase(unittest.TestCase):
    """A folder of its own, in which fmt runs."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def write(self, name, data):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(data)
        return path

    def fmt(self, *arguments, **options):
        run = run_yxst("fmt", *arguments, cwd=self.folder, **options)
        return run.status, run.stdout.decode(), run.stderr.decode()


class Files(FolderTestCase):
    def test_a_file_is_written_in_its_place(self):
        path = self.write("a.st", UGLY)
        path.chmod(0o640)
        self.assertEqual(self.fmt("a.st"), (FINE, "", ""))
        self.assertEqual(path.read_bytes(), SCRIPT)
        self.assertEqual(stat.S_IMODE(path.stat().st_mode), 0o640)
        self.assertEqual(os.listdir(self.folder), ["a.st"])

    def test_one_in_its_layout_is_not_touched(self):
        path = self.write("a.st", SCRIPT)
        before = path.stat()
        self.assertEqual(self.fmt("a.st"), (FINE, "", ""))
        after = path.stat()
        self.assertEqual((after.st_ino, after.st_mtime_ns), (before.st_ino, before.st_mtime_ns))

    def test_symbolic_links_stay(self):
        path = self.write("real/a.st", UGLY)
        (self.folder / "one.st").symlink_to("real/a.st")
        (self.folder / "two.st").symlink_to("one.st")
        self.assertEqual(self.fmt("two.st"), (FINE, "", ""))
        self.assertEqual(os.readlink(self.folder / "one.st"), "real/a.st")
        self.assertEqual(os.readlink(self.folder / "two.st"), "one.st")
        self.assertEqual(path.read_bytes(), SCRIPT)

    @unittest.skipIf(os.geteuid() != 0, "others do not write what they may not")
    def test_any_mode_stays(self):
        for mode in (0o400, 0o444, 0o555, 0o600, 0o2755, 0o4755):
            for owner in (0, 12345):
                with self.subTest(oct(mode), owner=owner):
                    path = self.write("a.st", UGLY)
                    os.chown(path, owner, owner)
                    path.chmod(mode)
                    self.assertEqual(self.fmt("a.st"), (FINE, "", ""))
                    after = path.stat()
                    self.assertEqual((stat.S_IMODE(after.st_mode), after.st_uid), (mode, owner))
                    self.assertEqual(path.read_bytes(), SCRIPT)

    @unittest.skipIf(os.geteuid() != 0, "the owner can be another for root alone")
    def test_the_owner_stays(self):
        path = self.write("a.st", UGLY)
        os.chown(path, 12345, 54321)
        self.assertEqual(self.fmt("a.st"), (FINE, "", ""))
        self.assertEqual((path.stat().st_uid, path.stat().st_gid), (12345, 54321))
        self.assertEqual(path.read_bytes(), SCRIPT)

    def test_folders_and_suffixes(self):
        for name in ("b.st", "sub/a.st", "sub/c.scl", "other.txt"):
            self.write(name, UGLY)
        self.assertEqual(self.fmt("--check", "."), (NOT_FINE, "./b.st\n./sub/a.st\n", ""))
        self.assertEqual(self.fmt("--check", "--suffix=scl", "."), (NOT_FINE, "./sub/c.scl\n", ""))
        self.assertEqual(self.fmt("."), (FINE, "", ""))
        self.assertEqual((self.folder / "sub/a.st").read_bytes(), SCRIPT)
        self.assertEqual((self.folder / "other.txt").read_bytes(), UGLY)

    def test_many_are_told_in_order(self):
        names = [f"{number:03}.st" for number in range(60)]
        for number, name in enumerate(names):
            self.write(name, UGLY if number % 3 else SCRIPT)
        told = "".join(f"./{name}\n" for number, name in enumerate(names) if number % 3)
        for jobs in (1, 7):
            self.assertEqual(self.fmt("--check", f"--jobs={jobs}", "."), (NOT_FINE, told, ""))

    def test_one_that_is_not_there(self):
        self.write("a.st", UGLY)
        status, shown, complaint = self.fmt("none.st", "a.st")
        self.assertEqual((status, shown), (FAILED, ""))
        self.assertEqual(complaint, "yxst: none.st: no such file.\n")
        self.assertEqual((self.folder / "a.st").read_bytes(), SCRIPT)

    def test_what_is_no_file(self):
        os.mkfifo(self.folder / "pipe")
        (self.folder / "empty").mkdir()
        self.assertEqual(self.fmt("pipe")[0], FAILED)
        self.assertEqual(self.fmt("empty")[0], FAILED)

    def test_one_that_cannot_be_written(self):
        path = self.write("a.st", UGLY)
        run = run_yxst("fmt", "a.st", cwd=self.folder, preexec_fn=forbid_writing)
        self.assertEqual(run, (FAILED, b"", b"yxst: a.st: cannot be written.\n"))
        self.assertEqual(path.read_bytes(), UGLY)
        self.assertEqual(os.listdir(self.folder), ["a.st"])

    @unittest.skipIf(os.geteuid() != 0, "needs root, to become another user")
    def test_one_in_a_folder_that_cannot_be_written(self):
        path = self.write("a.st", UGLY)
        path.chmod(0o666)
        self.folder.chmod(0o755)
        status, shown, complaint = self.fmt("a.st", preexec_fn=drop_privileges)
        why = f"cannot be written, because its folder {self.folder.resolve()} cannot be"
        self.assertEqual((status, shown, complaint), (FAILED, "", f"yxst: a.st: {why}.\n"))
        self.assertEqual(path.read_bytes(), UGLY)


def forbid_writing():
    resource.setrlimit(resource.RLIMIT_FSIZE, (10, 10))


# ---------------------------------------------------------------------------------------------
# Scripts with an error
# ---------------------------------------------------------------------------------------------


class Errors(FolderTestCase):
    def test_a_file_is_left_alone(self):
        path = self.write("a.st", WRONG)
        for options in ([], ["--check"], ["--diff"]):
            self.assertEqual(self.fmt(*options, "a.st"), (NOT_FINE, "", f"a.st:{WRONG_MESSAGE}"))
        self.assertEqual(path.read_bytes(), WRONG)

    def test_standard_input_gives_nothing(self):
        told = self.fmt("-", input=WRONG, stdin=None)
        self.assertEqual(told, (NOT_FINE, "", f"<stdin>:{WRONG_MESSAGE}"))

    def test_an_editor_gets_what_is_fine(self):
        for arguments in (["--stdin-name=tank.st"], ["--stdin-name=tank.st", "-"]):
            told = self.fmt(*arguments, input=WRONG, stdin=None)
            self.assertEqual(told, (FINE, HALF.decode(), f"tank.st:{WRONG_MESSAGE}"))

    def test_a_comment_before_a_semicolon_that_ends_nothing(self):
        for rest in (" // one\n ;\n a = 2;", "\n // own\n ; (* two *) ;\n\n a = 2;"):
            with self.subTest(rest):
                self.check_rest("a:=1;", "    a := 1;", rest)

    def test_a_semicolon_between_words(self):
        self.check_rest("END_VAR", "END_VAR", ";END_IF")

    def test_semicolons_before_an_error_are_taken_out(self):
        for rest in (" ;", "\n;", ";\n ; ;"):
            with self.subTest(rest):
                wrong = WRONG.replace(b"a:=1;", b"a:=1;" + rest.encode())
                told = self.fmt("--stdin-name=x", input=wrong, stdin=None)
                self.assertEqual(told[:2], (FINE, HALF.decode()))

    def test_a_semicolon_that_is_the_error(self):
        self.check_rest("a:INT;", "    a : INT;", ";")

    def check_rest(self, text, layout, rest):
        """What stands before the rest is formatted, and the rest is as it was."""
        begin, _, after = UGLY.decode().partition(text)
        half = SCRIPT.decode().partition(layout)[0] + layout + rest + after
        told = self.fmt("--stdin-name=x", input=(begin + text + rest + after).encode(), stdin=None)
        self.assertEqual(told[:2], (FINE, half))

    def test_a_block_that_is_not_ended_is_formatted_as_far_as_it_goes(self):
        blocks = {
            "if a=1 then\na:=2;": "    IF a = 1 THEN\n        a := 2;",
            "if a=1 then\na:=2;elsif a:": "    IF a = 1 THEN\n        a := 2;elsif a:",
            "case a of\n1 : a:=2;2": "    CASE a OF\n    1:  a := 2;2",
            "repeat while a=1 do": "    REPEAT\n        WHILE a = 1 DO",
            "if a=1 then\na=2;": "    IF a = 1 THEN\na=2;",
        }
        for block, expected in blocks.items():
            with self.subTest(block):
                begin, _, _ = UGLY.partition(b"a:=1;")
                half = SCRIPT.partition(b"    a := 1;")[0].decode() + expected
                told = self.fmt("--stdin-name=x", input=begin + block.encode(), stdin=None)
                self.assertEqual(told[:2], (FINE, half))

    def test_an_error_that_names_a_word_with_small_letters(self):
        wrong = UGLY.replace(b"\nVAR\na", b"\nvar\nCONSTANT 1")
        told = self.fmt("--stdin-name=x", input=wrong, stdin=None)
        half = wrong.replace(b"var", b"VAR").decode()
        message = 'x:3:10: error: Identifier expected but "var" found [expected-but]\n'
        self.assertEqual(told, (FINE, half, message))

    def test_all_golden_errors_keep_their_rest(self):
        """Each script with an error, as an editor has it: what it says stays the same."""
        for case in [case for case in all_cases() if not case.should_succeed()][::12]:
            with self.subTest(case.name):
                self.check_half(case.data)

    def check_half(self, data):
        first = self.fmt("--stdin-name=x", input=data, stdin=None)
        if first[0] != FINE:
            self.assertRegex(first[2], "UTF-8|carriage return")
            return
        again = self.fmt("--stdin-name=x", input=first[1].encode(), stdin=None)
        self.assertEqual(again[1], first[1])
        messages = [re.sub(r"^x:\d+:\d+:", "", told[2]) for told in (first, again)]
        self.assertEqual(messages[0], messages[1])
        self.assertEqual("".join(first[1].upper().split()).replace(";", ""),
                         self.ink(data))  # fmt: skip

    @staticmethod
    def ink(data):
        text = data.decode().removeprefix("\ufeff").replace("\r", "")
        return "".join(text.upper().split()).replace(";", "")


# ---------------------------------------------------------------------------------------------
# Options
# ---------------------------------------------------------------------------------------------


def applied(diff, text):
    """The text after the changes of a unified diff of it."""
    lines = text.split("\n")
    result, at = [], 0
    for line in diff.split("\n")[2:-1]:
        hunk = re.fullmatch(r"@@ -(\d+),(\d+) \+\d+,\d+ @@", line)
        if hunk:
            begin = int(hunk[1]) - (hunk[2] != "0")
            result += lines[at:begin]
            at = begin
        elif line[0] in " -":
            if lines[at] != line[1:]:
                raise AssertionError(f"{lines[at]!r} is no {line!r}")
            result += [lines[at]] if line[0] == " " else []
            at += 1
        elif line[0] == "+":
            result.append(line[1:])
    return "\n".join(result + lines[at:])


class Options(FolderTestCase):
    def test_check_names_and_writes_nothing(self):
        path = self.write("a.st", UGLY)
        self.write("b.st", SCRIPT)
        self.assertEqual(self.fmt("--check", "b.st", "a.st"), (NOT_FINE, "a.st\n", ""))
        self.assertEqual(self.fmt("--check", "b.st"), (FINE, "", ""))
        self.assertEqual(path.read_bytes(), UGLY)

    def test_diff_shows_and_writes_nothing(self):
        path = self.write("a.st", UGLY)
        lines = ["--- a.st", "+++ a.st", "@@ -1,6 +1,6 @@", " PROGRAM P", " VAR", "-a:INT;",
                 "+    a : INT;", " END_VAR", "-a:=1;", "+    a := 1;", " END_PROGRAM", ""]  # fmt: skip
        self.assertEqual(self.fmt("--diff", "a.st"), (FINE, "\n".join(lines), ""))
        self.assertEqual(self.fmt("--diff", "--check", "a.st"), (NOT_FINE, "\n".join(lines), ""))
        self.assertEqual(path.read_bytes(), UGLY)

    def test_a_diff_leads_to_the_result(self):
        for path in LAYOUTS:
            if path.stem != "error":
                with self.subTest(path.stem):
                    diff = self.fmt("--diff", path)[1]
                    expected = path.with_suffix(RESULT).read_text(encoding="utf-8")
                    self.assertEqual(applied(diff, path.read_text(encoding="utf-8")), expected)

    def test_a_diff_of_a_text_without_last_line_end(self):
        self.write("a.st", SCRIPT.rstrip())
        shown = self.fmt("--diff", "a.st")[1].split("\n")
        self.assertEqual(
            shown[-4:], ["-END_PROGRAM", "\\ No newline at end of file", "+END_PROGRAM", ""]
        )

    def test_a_diff_has_the_line_ends_of_the_file(self):
        self.write("a.st", UGLY.replace(b"\n", b"\r\n"))
        run = run_yxst("fmt", "--diff", "a.st", cwd=self.folder)
        self.assertIn(b"-a:=1;\r\n+    a := 1;\r\n", run.stdout)

    def test_a_diff_shows_lines_whose_ends_alone_change(self):
        self.write("a.st", SCRIPT.replace(b"VAR\n", b"VAR\r\n", 1))
        run = run_yxst("fmt", "--diff", "a.st", cwd=self.folder)
        self.assertIn(b" PROGRAM P\n-VAR\r\n+VAR\n     a : INT;\n", run.stdout)

    def test_a_diff_leads_to_the_bytes_of_the_result(self):
        others = {
            "LF first": SCRIPT.replace(b"VAR\n", b"VAR\r\n"),
            "CRLF first": UGLY.replace(b"\n", b"\r\n", 3),
            "mark": MARK + UGLY.replace(b"PROGRAM P", b"PROGRAM  P"),
            "all": MARK + b" " + UGLY.replace(b"\n", b"\r\n", 4),
        }
        for name, data in others.items():
            with self.subTest(name):
                self.write("a.st", data)
                diff = run_yxst("fmt", "--diff", "a.st", cwd=self.folder).stdout.decode()
                self.assertNotEqual(diff, "")
                self.assertEqual(applied(diff, data.decode()).encode(), formatted(data))

    def test_colors(self):
        self.write("a.st", UGLY.replace(b"a:=1;", b"a:=1; // \x1b[2J"))
        shown = self.fmt("--diff", "--color=always", "a.st")[1]
        self.assertIn("\033[31m-a:INT;\033[0m\n\033[32m+    a : INT;\033[0m\n", shown)
        self.assertNotIn("\x1b[2J", shown)
        self.assertNotIn("\033[31m", self.fmt("--diff", "a.st")[1])
        self.assertIn("\x1b[2J", self.fmt("--diff", "a.st")[1])

    def test_colors_at_a_terminal(self):
        self.write("a.st", UGLY)
        master, slave = pty.openpty()
        self.addCleanup(os.close, master)
        with os.fdopen(slave, "w") as terminal:
            subprocess.run([DESK, "fmt", "--diff", "a.st"], stdout=terminal, cwd=self.folder,
                           env={**os.environ, "NO_COLOR": ""}, timeout=TIMEOUT_SECONDS,
                           check=True)  # fmt: skip
        self.assertIn(b"\033[31m-a:INT;", os.read(master, 4096))

    def test_check_of_standard_input(self):
        self.assertEqual(self.fmt("--check", "-", input=UGLY, stdin=None), (NOT_FINE, "<stdin>\n", ""))
        self.assertEqual(self.fmt("--check", "-", input=SCRIPT, stdin=None), (FINE, "", ""))

    def test_wrong_calls(self):
        self.write("a.st", UGLY)
        for arguments in ([], ["--stdin-name=b.st", "a.st"], ["--indent=0", "a.st"],
                          ["--indent=9", "a.st"], ["--indent=x", "a.st"],
                          ["--unknown", "a.st"]):  # fmt: skip
            with self.subTest(arguments):
                status, shown, complaint = self.fmt(*arguments)
                self.assertEqual((status, shown), (FAILED, ""))
                self.assertNotEqual(complaint, "")
        self.assertEqual((self.folder / "a.st").read_bytes(), UGLY)


# ---------------------------------------------------------------------------------------------
# Sizes
# ---------------------------------------------------------------------------------------------


def long_scripts(count):
    """Scripts that are long in one way each."""
    yield "one line", UGLY.replace(b"\n", b" ").replace(b"a:=1;", b"a:=1;(* c *)" * count)
    yield "one statement", UGLY.replace(b"a:=1;", b"a:=1" + b" + 1" * count + b"; // c")
    yield "one name", UGLY.replace(b"a:INT;", b"a:INT;" + b"b" * count + b":INT:=1; // c")
    yield "comments", UGLY.replace(b"a:=1;", b"(* c *) " * count + b"\n// c" * count + b"\na:=1;")
    yield "semicolons", UGLY.replace(b"a:=1;", b"a:=1;" + b" ;" * count)
    labels = b"".join(b"%d:a:=1;;; // c\n" % number for number in range(count // 20))
    yield "labels", UGLY.replace(b"a:=1;", b"CASE a OF " + labels + b"END_CASE;")
    breaks = b"a:=1" + b"\n+1" * count + b";"
    yield "line breaks", UGLY.replace(b"a:=1;", breaks)


class Sizes(unittest.TestCase):
    def seconds(self, data):
        start = time.monotonic()
        formatted(data)
        return time.monotonic() - start

    def test_time_is_linear(self):
        for (name, short), (_, long) in zip(long_scripts(5_000), long_scripts(100_000)):
            with self.subTest(name):
                base = max(self.seconds(short), 0.05)
                self.assertLess(self.seconds(long), 20 * 4 * base)


def update():
    for path in LAYOUTS:
        path.with_suffix(RESULT).write_bytes(formatted_in_editor(path))


if __name__ == "__main__":
    if sys.argv[1:] == ["--update"]:
        update()
    else:
        unittest.main()
