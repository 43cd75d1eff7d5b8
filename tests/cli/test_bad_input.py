"""Sources that no editor would save: whatever they hold, a run ends in time with status 0 or 1,
says why, and leaves a code file with status 0 alone."""

import random
import unittest

from support import (
    BANNER,
    SUCCESS,
    VALID_SOURCE,
    CompilerTestCase,
    compile_source,
    mask_time,
    side_by_side,
)

MILLION = 1_000_000
BYTE_ORDER_MARK = b"\xef\xbb\xbf"
REPLACEMENT = "\N{REPLACEMENT CHARACTER}".encode()

VALID_CODE = b"PROG: main VAR: a V INT 0 MAIN: MOV 1 #A0 MOV #A0 @a RET "

EMPTY_MESSAGE = b"Line 0, Column 0: An unexpected end of input file"

# Every construct of the language, and tokens that look different when they are cut.
RICH_PROGRAM = """\
(* all * ) **) // of it (*
FUNCTION F : INT VAR_ARG a : INT; END_VAR VAR_REF r : REAL; END_VAR VAR n : INT; END_VAR
RESULT := a ** n; r := .5; END_FUNCTION
FUNCTION_BLOCK B VAR_ARG a : BOOL; END_VAR IF a THEN EXIT; END_IF; END_FUNCTION_BLOCK
PROGRAM Насос VAR_INPUT i : INT; END_VAR VAR_OUTPUT o : BOOL := TRUE; END_VAR
VAR_GLOBAL CONSTANT g : LREAL := -1.5E+3; END_VAR;;
VAR_YXGLOBAL y : DINT (1); END_VAR VAR_YXREGISTER z : REAL (1, -2, 3, 4); END_VAR
VAR s : REAL; END_VAR
again: o := NOT (i <> 16#1F) AND (i >= 8#17) OR FALSE;
FOR i := 1 TO 2#101 DO IF o THEN CONTINUE; ELSIF i = 3 THEN BREAK; ELSE s := 5.; END_IF; END_FOR;
WHILE i <= 9 DO REPEAT i := (i + 1) MOD 2 SHL 1; UNTIL o END_REPEAT; END_WHILE;
CASE F(i, s) OF 1, 2: o := TRUE; 4..6: z := sin(g); ELSE END_CASE;
B(o XOR o); TICK := y; GOTO again;
END_PROGRAM
"""


def program(expression):
    """The source that assigns the expression at line 3, column 6."""
    return b"PROGRAM main\nVAR a : INT; END_VAR\na := " + expression + b";\nEND_PROGRAM\n"


def fault_of(result):
    """What is wrong with a run with -r and -e, whatever its source. None if nothing is."""
    if result.status not in (0, 1):
        return f"exit status {result.status}"
    if result.stderr:
        return f"standard error holds {result.stderr[:500]}"
    if result.stdout:
        return f"standard output holds {result.stdout[:500]}"
    succeeded = result.status == 0
    if ("out" in result.files) != succeeded:
        return f"exit status {result.status} with files {sorted(result.files)}"
    report = mask_time(result.files["out.res"])
    lines = report.removeprefix(BANNER).splitlines(keepends=True)
    if not report.startswith(BANNER) or not lines:
        return f"the result file holds {report[:500]}"
    if succeeded != (lines[-1] == SUCCESS):
        return f"exit status {result.status} after {lines[-1][:500]}"
    errors = report.count(b"\nError: Line ")
    if errors != (0 if succeeded else 1):
        return f"{errors} errors with exit status {result.status}"
    if result.files["out.err"].count(b"e:") != errors + report.count(b"\nWarning: Line "):
        return f"the error file holds {result.files['out.err'][:500]}"
    return None


class BadInputTestCase(unittest.TestCase):
    def run_checked(self, source, *options):
        result = compile_source(source, "-r", "-e", *options)
        self.assertIsNone(fault_of(result))
        return result

    def assert_valid_code(self, source):
        """The source compiles to what the plain valid one gives, without a warning."""
        result = self.run_checked(source)
        self.assertEqual(mask_time(result.files["out.res"])[:1000], BANNER + SUCCESS)
        self.assertEqual(result.files["out"], VALID_CODE)

    def assert_error(self, message, source):
        result = self.run_checked(source)
        self.assertEqual(result.files["out.res"][:1000], BANNER + b"Error: " + message + b"\n")

    def run_all(self, sources):
        """Runs all; shows the first source at fault. Returns the exit statuses."""
        results = side_by_side(lambda source: compile_source(source, "-r", "-e"), sources)
        for source, result in zip(sources, results):
            fault = fault_of(result)
            if fault:
                self.fail(f"{fault} from the source {source!r}")
        return [result.status for result in results]


class NothingToRead(BadInputTestCase):
    def test_empty_file(self):
        self.assert_error(EMPTY_MESSAGE, b"")

    def test_white_space_alone(self):
        for text in (b" ", b"\n", b"\r", b"\t", b" \t\r\n" * 10_000):
            with self.subTest(text=text[:10]):
                self.assert_error(EMPTY_MESSAGE, text)

    def test_byte_order_mark_alone(self):
        self.assert_error(EMPTY_MESSAGE, BYTE_ORDER_MARK)


class FolderAsInput(CompilerTestCase):
    """A folder exists, so it is found out only when it is opened: before any output is."""

    def assert_open_failed(self, shown, *options):
        (self.compiler.path / "folder").mkdir()
        result = self.compiler.run("folder", "out", *options)
        self.assertEqual((result.status, result.stdout, result.stderr), (1, shown, b""))
        self.assertEqual(result.files, {})

    def test_message_is_shown_on_screen(self):
        message = b"Error: Line 0, Column 0: File open failed for input file\n"
        self.assert_open_failed(message, "-s", "-l", "-m", "-r", "-e")

    def test_nothing_is_shown_without_screen_option(self):
        self.assert_open_failed(b"", "-l", "-m", "-r", "-e")


class Garbage(BadInputTestCase):
    def setUp(self):
        self.random = random.Random(19)

    def test_bytes(self):
        sources = [self.random.randbytes(self.random.randrange(1, 3000)) for _ in range(80)]
        self.assertEqual(set(self.run_all(sources)), {1})

    def test_bytes_within_program(self):
        def source():
            return program(self.random.randbytes(self.random.randrange(1, 20)))

        self.run_all([source() for _ in range(80)])

    def test_words_of_the_language_in_any_order(self):
        words = RICH_PROGRAM.encode().split()
        sources = [
            b" ".join([b"PROGRAM P VAR i : INT; END_VAR"] + self.random.choices(words, k=200))
            for _ in range(80)
        ]
        self.run_all(sources)

    def test_damaged_program(self):
        statuses = self.run_all([self.damaged(RICH_PROGRAM.encode()) for _ in range(160)])
        self.assertEqual(set(statuses), {0, 1})

    def damaged(self, source):
        """The source with a piece lost, doubled or moved, and a byte overwritten."""
        begin = self.random.randrange(len(source))
        end = begin + self.random.randrange(20)
        to = self.random.randrange(len(source))
        piece = source[begin:end]
        rest = bytearray(self.random.choice((source[:begin] + source[end:], source)))
        rest[to:to] = self.random.choice((b"", piece, self.random.randbytes(1)))
        return bytes(rest)


class CutOff(BadInputTestCase):
    """Sources that end too early."""

    BEGIN = b"PROGRAM main\nVAR a : INT; END_VAR\na := "  # the next character is at 3, 6

    def test_rich_program_compiles(self):
        self.assertEqual(self.run_checked(RICH_PROGRAM.encode()).status, 0)

    def test_every_prefix_of_rich_program(self):
        lengths = range(len(RICH_PROGRAM) + 1)
        statuses = self.run_all([RICH_PROGRAM[:length].encode() for length in lengths])
        complete = len(RICH_PROGRAM.rstrip())
        expected = [0 if length >= complete else 1 for length in lengths]
        self.assertEqual(statuses, expected)

    def test_comment(self):
        for tail in (b"(*", b"(* ", b"(* no end", b"(* *", b"(*)", b"(*\n\n *\n", b"(* ) *"):
            with self.subTest(tail=tail):
                message = b"Line 3, Column 6: An unexpected end of input file"
                self.assert_error(message, self.BEGIN + tail)

    def test_line_comment(self):
        message = b"Line 3, Column 8: An unexpected end of input file"
        for tail in (b"//", b"// ", b"// no end", b"// *)", b"// no end\n", b"// (*\n\n"):
            with self.subTest(tail=tail):
                self.assert_error(message, self.BEGIN + tail)

    def test_empty_line_comment(self):
        """Its text begins at the line feed, which counts as column 0 of the next line."""
        message = b"Line 4, Column 0: An unexpected end of input file"
        for tail in (b"//\n", b"//\n\n"):
            with self.subTest(tail=tail):
                self.assert_error(message, self.BEGIN + tail)

    def test_string(self):
        for tail in (b"'", b"' ", b"'no end", b"'no end\n", b"'\n'", b"'(* *)", b"'no end;\n';"):
            with self.subTest(tail=tail):
                message = b"Line 3, Column 6: Unterminated string"
                self.assert_error(message, self.BEGIN + tail)

    def test_character(self):
        """A letter of two bytes that lost its second one."""
        message = b'Line 3, Column 6: Number expected but "' + REPLACEMENT + b'" found'
        self.assert_error(message, self.BEGIN + "я".encode()[:1])


class Encoding(BadInputTestCase):
    def test_byte_order_mark_takes_no_column(self):
        self.assert_valid_code(BYTE_ORDER_MARK + VALID_SOURCE)
        message = b'Line 1, Column 1: "PROGRAM" expected but "x" found'
        self.assert_error(message, BYTE_ORDER_MARK + b"x")

    def test_second_byte_order_mark_is_text(self):
        message = b'Line 1, Column 1: "PROGRAM" expected but "%b" found' % BYTE_ORDER_MARK
        self.assert_error(message, BYTE_ORDER_MARK * 2 + VALID_SOURCE)

    def test_invalid_utf8_is_one_unknown_symbol(self):
        message = b'Line 3, Column 6: Number expected but "%b" found' % REPLACEMENT
        for invalid in (b"\xff", b"\xfe\xff", b"\x80", b"\xc3(", b"\xd0 ", b"\xed\xa0\x80"):
            with self.subTest(invalid=invalid):
                self.assert_error(message, program(invalid))

    def test_invalid_utf8_in_comment(self):
        self.assert_valid_code(VALID_SOURCE.replace(b"1;", b"(* \xff\xc3*) 1;// \xd0\n"))

    def test_invalid_utf8_in_echo(self):
        result = self.run_checked(program(b"1 (* \xff *)"), "-l", "-i")
        self.assertIn(b';Line 3: "a := 1 (* %b *);"\n' % REPLACEMENT, result.files["out.lst"])

    def test_utf16(self):
        self.assertEqual(self.run_checked(VALID_SOURCE.decode().encode("utf-16")).status, 1)

    def test_lone_carriage_return_separates_nothing(self):
        name_apart = VALID_SOURCE.replace(b"main", b"\rma\rin\r")
        self.assert_valid_code(name_apart.replace(b"\n", b"\r\n"))
        message = b'Line 1, Column 1: "PROGRAM" expected but "PROGRAMmain" found'
        self.assert_error(message, VALID_SOURCE.replace(b" main", b"\rmain"))

    def test_carriage_returns_end_no_line(self):
        source = b"PROGRAM p \rVAR CONSTANT c:INT:=1;END_VAR \rc := 2;END_PROGRAM"
        column = source.replace(b"\r", b"").index(b":= 2") + 1
        message = b"Line 1, Column %d: Left side cannot be assigned to" % column
        self.assert_error(message, source)


class NulCharacters(BadInputTestCase):
    """NUL is a character like any other that begins no token."""

    def test_nothing_else(self):
        message = b'Line 1, Column 1: "PROGRAM" expected but "\0" found'
        self.assert_error(message, b"\0" * 1000)

    def test_before_program(self):
        message = b'Line 1, Column 1: "PROGRAM" expected but "\0" found'
        self.assert_error(message, b"\0" + VALID_SOURCE)

    def test_in_expression(self):
        self.assert_error(b'Line 3, Column 6: Number expected but "\0" found', program(b"\0"))

    def test_after_name(self):
        message = b'Line 3, Column 7: ":" expected but "\0" found'
        self.assert_error(message, VALID_SOURCE.replace(b"a :", b"a \0:", 1))

    def test_in_comments(self):
        self.assert_valid_code(VALID_SOURCE.replace(b"1;", b"(* \0 *) 1; // \0\n"))

    def test_in_string(self):
        result = self.run_checked(program(b"'a\0b'"), "-l")
        self.assertIn(b"MOV 'A\0B' #A0\n", result.files["out.lst"])

    def test_after_program(self):
        result = self.run_checked(VALID_SOURCE + b"\0")
        self.assertEqual(result.files["out"], VALID_CODE)
        self.assertIn(b"An unexpected data after", result.files["out.res"])


class LongNumbers(BadInputTestCase):
    """254 characters are the most that any number may have, its prefix and its point included."""

    LONGEST = 254

    def assert_accepted(self, number, written):
        result = self.run_checked(program(number))
        self.assertEqual(result.status, 0)
        self.assertIn(b" MOV %b #A0 " % written, result.files["out"])

    def assert_too_much(self, number):
        self.assert_error(b"Line 3, Column 6: Too much the constants", program(number))

    def assert_longest(self, begin, digit, end=b""):
        def number(length):
            return begin + digit * (length - len(begin + end)) + end

        longest = number(self.LONGEST)
        self.assert_accepted(longest, written=longest)
        self.assert_too_much(number(self.LONGEST + 1))
        self.assert_too_much(number(10_000))

    def test_decimal(self):
        self.assert_longest(b"", b"1")
        self.assert_longest(b"", b"9")
        self.assert_longest(b"", b"0")

    def test_hexadecimal(self):
        self.assert_longest(b"16#", b"0", b"F")

    def test_octal(self):
        self.assert_longest(b"8#", b"0", b"7")

    def test_binary(self):
        """Its own limit of 32 digits comes first."""
        self.assert_accepted(b"2#" + b"1" * 32, written=b"2#" + b"1" * 32)
        for count in (33, 252, 253, 254, 255, 10_000):
            with self.subTest(count=count):
                self.assert_too_much(b"2#" + b"0" * count)

    def test_value_beyond_limit_is_too_much_at_any_length(self):
        for prefix in (b"16#", b"8#"):
            for count in (254, 255):
                with self.subTest(prefix=prefix, count=count):
                    self.assert_too_much(prefix + b"7" * (count - len(prefix)))

    def test_fraction(self):
        self.assert_longest(b"1.", b"3")
        self.assert_longest(b"0.", b"0")

    def test_zero_before_point_counts_though_it_is_not_written(self):
        self.assert_accepted(b"." + b"3" * 252, written=b"0." + b"3" * 252)
        self.assert_too_much(b"." + b"3" * 253)

    def test_exponent(self):
        self.assert_longest(b"1.0E", b"0", b"1")
        self.assert_longest(b"1.0E-", b"9")

    def test_number_sign_after_longest_decimal(self):
        self.assert_too_much(b"1" * self.LONGEST + b"#")


class Comments(BadInputTestCase):
    """A comment takes no stack, however many follow one another."""

    def test_million_comments(self):
        for comment in (b"(**)", b"(* *) ", b"(*\n*)", b"(***)"):
            with self.subTest(comment=comment):
                self.assert_valid_code(comment * MILLION + VALID_SOURCE)

    def test_million_line_comments(self):
        for comment in (b"//\n", b"// (*\n"):
            with self.subTest(comment=comment):
                self.assert_valid_code(comment * MILLION + VALID_SOURCE)

    def test_million_comments_of_both_kinds_in_expression(self):
        comments = b"(* // *)// *)\n" * (MILLION // 2)
        self.assert_valid_code(VALID_SOURCE.replace(b"1;", comments + b"1;"))

    def test_million_comment_begins(self):
        self.assert_valid_code(b"(*" * MILLION + b"*)" + VALID_SOURCE)


class LongLines(BadInputTestCase):
    LENGTH = 10 * MILLION

    def test_blanks(self):
        self.assert_valid_code(VALID_SOURCE.replace(b"1;", b" " * self.LENGTH + b"1;"))

    def test_position_after_blanks(self):
        message = b'Line 3, Column 10000006: Number expected but ";" found'
        self.assert_error(message, program(b" " * self.LENGTH))

    def test_comment_is_echoed_whole(self):
        comment = b"(*" + b"x" * (self.LENGTH - 4) + b"*)"
        result = self.run_checked(b"  " + comment + b" \n" + VALID_SOURCE, "-l", "-i")
        echo = result.files["out.lst"].split(b"\n", 1)[0]
        self.assertTrue(echo == b';Line 1: "' + comment + b'"', echo[:100])
        self.assertEqual(result.files["out"], VALID_CODE)

    def test_comment_of_operators(self):
        self.assert_valid_code(b"(*" + b"*-" * (self.LENGTH // 2) + b"*)" + VALID_SOURCE)

    def test_string(self):
        text = b"a" * self.LENGTH
        result = self.run_checked(program(b"'" + text + b"'"), "-l")
        written = b"\nMOV '" + text.upper() + b"' #A0\n"
        self.assertTrue(written in result.files["out.lst"], result.files["out.lst"][:100])

    def test_statements(self):
        count = self.LENGTH // len(b"a := 1; ")
        result = self.run_checked(program(b"1" + b"; a := 1" * (count - 1)))
        self.assertEqual(result.status, 0)
        self.assertEqual(result.files["out"].count(b"MOV #A0 @a "), count)

    def test_digits(self):
        message = b"Line 3, Column 6: Too much the constants"
        self.assert_error(message, program(b"1" * self.LENGTH))


class LongNames(BadInputTestCase):
    NAME = b"Name_" + b"x" * (MILLION - len(b"Name_"))

    def test_declared(self):
        source = b"PROGRAM p\nVAR %b : INT; END_VAR\n%b := 1;\nEND_PROGRAM\n"
        result = self.run_checked(source % (self.NAME, self.NAME.upper()))
        code = b"PROG: p VAR: %b V INT 0 MAIN: MOV 1 #A0 MOV #A0 @%b RET "
        self.assertTrue(result.files["out"] == code % (self.NAME, self.NAME.upper()))

    def test_not_declared(self):
        result = self.run_checked(program(self.NAME))
        self.assertEqual(result.status, 1)
        error = b'Error: Line 3, Column 1000006: An unrecognized keyword "%b"\n' % self.NAME
        self.assertTrue(result.files["out.res"] == BANNER + error, result.files["out.res"][:200])


if __name__ == "__main__":
    unittest.main()
