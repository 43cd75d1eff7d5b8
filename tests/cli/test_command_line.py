"""Arguments, exit status and what goes to standard output."""

import unittest

from support import VALID_SOURCE, CompilerTestCase

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


class UsageErrors(CompilerTestCase):
    def assert_usage_error(self, *arguments):
        self.compiler.write("in.st", VALID_SOURCE)
        result = self.compiler.run(*arguments)
        self.assertEqual(result.stdout, b";" + USAGE + b"\n")
        self.assertEqual(result.stderr, b"")
        self.assertEqual(result.status, 1)
        self.assertEqual(set(result.files), {"in.st"})

    def test_no_arguments(self):
        self.assert_usage_error()

    def test_one_argument(self):
        self.assert_usage_error("in.st")

    def test_unknown_option(self):
        self.assert_usage_error("in.st", "out", "-x")

    def test_options_are_lower_case(self):
        self.assert_usage_error("in.st", "out", "-L")


class Runs(CompilerTestCase):
    def test_missing_input(self):
        result = self.compiler.run("absent.st", "out")
        self.assertTrue(result.stdout.startswith(b";"), result.stdout)
        self.assertIn(b"A input file not found", result.stdout)
        self.assertTrue(result.stdout.endswith(b"\n"), result.stdout)
        self.assertEqual(result.status, 1)
        self.assertNotIn("out", result.files)

    def test_success_is_silent_without_screen_option(self):
        self.compiler.write("in.st", VALID_SOURCE)
        result = self.compiler.run("in.st", "out")
        self.assertEqual((result.status, result.stdout, result.stderr), (0, b"", b""))
        self.assertEqual(set(result.files), {"in.st", "out"})


if __name__ == "__main__":
    unittest.main()
