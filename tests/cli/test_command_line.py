"""Arguments, exit status and what goes to standard output."""

import unittest

from support import (
    BANNER,
    OPTIONS,
    SIDE_FILES,
    SUCCESS,
    VALID_SOURCE,
    CompilerTestCase,
    compile_source,
    mask_time,
)

USAGE = (
    b"Error arguments.\n"
    b"Usage: yxstcmp <YX script input file name> <YX code output file name>"
    b" [-l] [-s] [-i] [-c] [-m] [-n] [-r] [-e]\n"
    b"Where:\n"
    b"\t-l\t-Save to output LST file\n"
    b"\t-s\t-Show output on screen\n"
    b"\t-i\t-Show input script lines in LST file\n"
    b"\t-c\t-Show input commented script lines in LST file\n"
    b"\t-m\t-Show messages in LST file\n"
    b"\t-n\t-Show line numbers in LST file\n"
    b"\t-r\t-Save to output RES file\n"
    b"\t-e\t-Save to output ERR file\n"
)

INPUT_NOT_FOUND = b"A input file not found"
OUTPUT_FAILED = b"File open failed for output file"
LST_FAILED = b"File open failed for output LST file"
RES_FAILED = b"File open failed for output RES file"
ERR_FAILED = b"File open failed for output ERR file"

CODE = b"PROG: main VAR: a V INT 0 MAIN: MOV 1 #A0 MOV #A0 @a RET "
CODE_LISTING = b"PROG:\nmain\nVAR:\na V INT 0\nMAIN:\nMOV 1 #A0\nMOV #A0 @a\nRET\n"

# Line 3 assigns to a constant; the semicolon is the character after the token that is refused.
FAILING_SOURCE = b"PROGRAM main\nVAR CONSTANT a : INT := 1; END_VAR\n    a := 2;\nEND_PROGRAM\n"
FAILURE = b"Error: Line 3, Column 7: Left side cannot be assigned to\n"
FAILURE_RECORD = b"e:3,10"
FAILURE_LISTING = b"PROG:\nmain\nVAR:\na V INT 1\nMAIN:\n"


class CommandLineTestCase(CompilerTestCase):
    """Each test finds the valid source in in.st."""

    def setUp(self):
        super().setUp()
        self.compiler.write("in.st", VALID_SOURCE)

    def make_folder(self, name):
        (self.compiler.path / name).mkdir()

    def assert_refused(self, text, *arguments):
        """The run ends before it begins: the text on standard output and nothing else."""
        result = self.compiler.run(*arguments)
        self.assertEqual(result.stdout, b";" + text + b"\n")
        self.assertEqual(result.stderr, b"")
        self.assertEqual(result.status, 1)
        self.assertEqual(result.files["in.st"], VALID_SOURCE)
        return result

    def assert_refused_without_files(self, text, *arguments):
        result = self.assert_refused(text, *arguments)
        self.assertEqual(set(result.files), {"in.st"})


class UsageErrors(CommandLineTestCase):
    def test_no_arguments(self):
        self.assert_refused_without_files(USAGE)

    def test_one_argument(self):
        self.assert_refused_without_files(USAGE, "in.st")

    def test_one_argument_that_is_no_file(self):
        self.assert_refused_without_files(USAGE, "absent.st")

    def test_unknown_option(self):
        self.assert_refused_without_files(USAGE, "in.st", "out", "-x")

    def test_options_are_lower_case(self):
        for option in OPTIONS:
            with self.subTest(option=option):
                self.assert_refused_without_files(USAGE, "in.st", "out", option.upper())

    def test_options_are_compared_whole(self):
        for option in ("-", "-lm", "-l ", " -l", "l", "--l", "/l", "-l=1", ""):
            with self.subTest(option=option):
                self.assert_refused_without_files(USAGE, "in.st", "out", option)

    def test_third_file_name(self):
        self.assert_refused_without_files(USAGE, "in.st", "out", "more.st")

    def test_bad_argument_after_good_options(self):
        self.assert_refused_without_files(USAGE, "in.st", "out", *OPTIONS, "-x")

    def test_good_options_after_bad_argument(self):
        self.assert_refused_without_files(USAGE, "in.st", "out", "-x", *OPTIONS)


class Failures(CommandLineTestCase):
    def test_missing_input(self):
        self.assert_refused_without_files(INPUT_NOT_FOUND, "absent.st", "out")

    def test_input_with_empty_name(self):
        self.assert_refused_without_files(INPUT_NOT_FOUND, "", "out")

    def test_options_cannot_come_first(self):
        self.assert_refused_without_files(INPUT_NOT_FOUND, "-l", "in.st", "out")

    def test_output_in_missing_folder(self):
        self.assert_refused_without_files(OUTPUT_FAILED, "in.st", "absent/out")

    def test_output_with_empty_name(self):
        self.assert_refused_without_files(OUTPUT_FAILED, "in.st", "")

    def test_output_is_folder(self):
        self.make_folder("out")
        self.assert_refused_without_files(OUTPUT_FAILED, "in.st", "out")

    def test_side_file_is_folder(self):
        texts = {"-l": LST_FAILED, "-r": RES_FAILED, "-e": ERR_FAILED}
        for option, name in SIDE_FILES.items():
            self.make_folder(name)
            with self.subTest(option=option):
                self.assert_refused_without_files(texts[option], "in.st", "out", option)

    def test_side_file_that_is_not_wanted_may_be_folder(self):
        for name in SIDE_FILES.values():
            self.make_folder(name)
        result = self.compiler.run("in.st", "out")
        self.assertEqual((result.status, result.stdout), (0, b""))

    def test_failures_are_shown_once_with_all_options(self):
        self.assert_refused_without_files(INPUT_NOT_FOUND, "absent.st", "out", *OPTIONS)
        self.assert_refused_without_files(OUTPUT_FAILED, "in.st", "absent/out", *OPTIONS)
        self.make_folder("out.err")
        self.assert_refused_without_files(ERR_FAILED, "in.st", "out", *OPTIONS)


class OrderOfChecks(CommandLineTestCase):
    """Of several faults the first in this order counts: number of arguments, input, output,
    options, listing, result file, error file."""

    def test_input_before_output(self):
        self.assert_refused(INPUT_NOT_FOUND, "absent.st", "absent/out")

    def test_input_before_options(self):
        self.assert_refused(INPUT_NOT_FOUND, "absent.st", "out", "-x")

    def test_output_before_options(self):
        self.assert_refused(OUTPUT_FAILED, "in.st", "absent/out", "-x")

    def test_options_before_side_files(self):
        self.make_folder("out.lst")
        self.assert_refused(USAGE, "in.st", "out", "-l", "-x")

    def test_side_files_have_an_order_of_their_own(self):
        for name in SIDE_FILES.values():
            self.make_folder(name)
        self.assert_refused(LST_FAILED, "in.st", "out", "-e", "-r", "-l")
        self.assert_refused(RES_FAILED, "in.st", "out", "-e", "-r")

    def test_missing_input_leaves_old_output(self):
        self.compiler.write("out", b"old")
        result = self.assert_refused(INPUT_NOT_FOUND, "absent.st", "out")
        self.assertEqual(result.files["out"], b"old")

    def test_output_is_only_tested_before_options_are_read(self):
        self.compiler.write("out", b"old")
        result = self.assert_refused(USAGE, "in.st", "out", "-x")
        self.assertEqual(result.files, {"in.st": VALID_SOURCE, "out": b"old"})

    def test_side_files_are_probed_after_all_options_are_read(self):
        for name in SIDE_FILES.values():
            self.compiler.write(name, b"old")
        result = self.assert_refused(USAGE, "in.st", "out", *SIDE_FILES, "-x")
        for name in SIDE_FILES.values():
            self.assertEqual(result.files[name], b"old")

    def test_nothing_is_removed_unless_all_outputs_can_be_created(self):
        old = {name: b"old" for name in ("out", "out.lst", "out.err")}
        for name, data in old.items():
            self.compiler.write(name, data)
        self.make_folder("out.res")
        result = self.assert_refused(RES_FAILED, "in.st", "out", "-l", "-r", "-e")
        self.assertEqual(result.files, {"in.st": VALID_SOURCE, **old})

    def test_all_probes_come_before_compiling(self):
        self.compiler.write("in.st", FAILING_SOURCE)
        self.make_folder("out.err")
        result = self.compiler.run("in.st", "out", "-s", "-e")
        self.assertEqual(result.stdout, b";" + ERR_FAILED + b"\n")


class Options(CommandLineTestCase):
    def test_each_side_file_has_its_option(self):
        for option in OPTIONS:
            with self.subTest(option=option):
                result = compile_source(VALID_SOURCE, option)
                self.assertEqual(result.status, 0)
                wanted = {SIDE_FILES[option]} if option in SIDE_FILES else set()
                self.assertEqual(set(result.files), {"out"} | wanted)

    def test_only_the_screen_option_shows_anything(self):
        for option in OPTIONS:
            with self.subTest(option=option):
                result = self.compiler.run("in.st", "out", option)
                shown = BANNER + CODE_LISTING + SUCCESS if option == "-s" else b""
                self.assertEqual(mask_time(result.stdout), shown)

    def test_options_may_be_repeated(self):
        once = self.compiler.run("in.st", "out", *OPTIONS)
        self.assertEqual(once.status, 0)
        again = self.compiler.run("in.st", "out", *OPTIONS, *reversed(OPTIONS), "-l", "-l")
        self.assertEqual(again.status, 0)
        self.assertEqual(mask_time(again.stdout), mask_time(once.stdout))
        self.assertEqual(set(again.files), set(once.files))
        for name, data in once.files.items():
            self.assertEqual(mask_time(again.files[name]), mask_time(data), name)

    def test_order_of_options_does_not_matter(self):
        one = self.compiler.run("in.st", "out", "-n", "-i", "-l")
        other = self.compiler.run("in.st", "out", "-l", "-i", "-n")
        self.assertIn(b"0001\t", one.files["out.lst"])
        self.assertEqual(one.files, other.files)

    def test_side_file_names_append_to_whole_output_name(self):
        result = self.compiler.run("in.st", "prog.code", "-l", "-r", "-e")
        names = {"in.st", "prog.code", "prog.code.lst", "prog.code.res", "prog.code.err"}
        self.assertEqual(set(result.files), names)

    def test_option_as_output_name(self):
        result = self.compiler.run("in.st", "-l", "-l")
        self.assertEqual(result.status, 0)
        self.assertEqual(set(result.files), {"in.st", "-l", "-l.lst"})


class Runs(CommandLineTestCase):
    def test_success_is_silent_without_screen_option(self):
        result = self.compiler.run("in.st", "out")
        self.assertEqual((result.status, result.stdout, result.stderr), (0, b"", b""))
        self.assertEqual(result.files, {"in.st": VALID_SOURCE, "out": CODE})

    def test_failure_is_silent_without_screen_option(self):
        self.compiler.write("in.st", FAILING_SOURCE)
        result = self.compiler.run("in.st", "out")
        self.assertEqual((result.status, result.stdout, result.stderr), (1, b"", b""))
        self.assertEqual(set(result.files), {"in.st"})

    def test_old_files_are_replaced(self):
        old = b"old " * 1000
        for name in ("out", *SIDE_FILES.values()):
            self.compiler.write(name, old)
        result = self.compiler.run("in.st", "out", "-l", "-r", "-e")
        self.assertEqual(result.files["out"], CODE)
        self.assertEqual(result.files["out.lst"], CODE_LISTING)
        self.assertEqual(mask_time(result.files["out.res"]), BANNER + SUCCESS)
        self.assertEqual(result.files["out.err"], b"")

    def test_old_side_files_stay_unless_wanted(self):
        for name in SIDE_FILES.values():
            self.compiler.write(name, b"old")
        result = self.compiler.run("in.st", "out")
        for name in SIDE_FILES.values():
            self.assertEqual(result.files[name], b"old")

    def test_failure_removes_old_code_file(self):
        self.compiler.write("in.st", FAILING_SOURCE)
        self.compiler.write("out", b"old")
        result = self.compiler.run("in.st", "out")
        self.assertEqual(result.status, 1)
        self.assertEqual(set(result.files), {"in.st"})

    def test_failure_keeps_side_files(self):
        self.compiler.write("in.st", FAILING_SOURCE)
        result = self.compiler.run("in.st", "out", "-l", "-m", "-r", "-e", "-s")
        self.assertEqual((result.status, result.stderr), (1, b""))
        self.assertEqual(result.stdout, BANNER + FAILURE_LISTING + FAILURE)
        del result.files["in.st"]
        expected = {
            "out.lst": b";" + BANNER + FAILURE_LISTING + b";" + FAILURE,
            "out.res": BANNER + FAILURE,
            "out.err": FAILURE_RECORD,
        }
        self.assertEqual(result.files, expected)


class TextAfterProgram(CommandLineTestCase):
    WARNING = b'Warning: Line 6, Column 1: An unexpected data after "END_PROGRAM"\n'

    def assert_end(self, text, warning):
        self.compiler.write("in.st", VALID_SOURCE.rstrip() + text)
        result = self.compiler.run("in.st", "out", "-r")
        self.assertEqual((result.status, result.stdout), (0, b""))
        self.assertEqual(mask_time(result.files["out.res"]), BANNER + warning + SUCCESS)
        self.assertEqual(result.files["out"], CODE)

    def test_anything_is_one_warning(self):
        texts = (b";", b"\nEND_PROGRAM\n", b" (* end *)", b" // end", b"\n\n\n'", b"\n#\n#\n")
        for text in texts:
            with self.subTest(text=text):
                self.assert_end(text, self.WARNING)

    def test_white_space_is_no_text(self):
        for text in (b"", b"\n", b" \t\r\n\n "):
            with self.subTest(text=text):
                self.assert_end(text, b"")


if __name__ == "__main__":
    unittest.main()
