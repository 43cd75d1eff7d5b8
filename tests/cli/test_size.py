"""Large sources: each finishes, with all of its code, in memory that grows with the source."""

import itertools
import os
import unittest
from string import ascii_lowercase, digits

from limits import IS_SANITIZED, KIB, MIB, SOURCE_SIZE_LIMIT, run_limited
from support import CompilerTestCase, words

# What an empty compile takes, and the interpreter that runs the tests, from which it is forked.
BASE_BYTES = 48 * MIB

# The text of the source: one byte of it as it is read, and two of each character.
BYTES_PER_SOURCE_BYTE = 4


BEGIN = b"PROGRAM main\nVAR x : INT; b : BOOL; END_VAR\n"
END = b"\nEND_PROGRAM\n"


def program(*parts):
    """The chunks of a source file."""
    yield BEGIN
    for part in parts:
        if isinstance(part, bytes):
            yield part
        else:
            yield from part
    yield END


class SizeTestCase(CompilerTestCase):
    def setUp(self):
        super().setUp()
        self.folder = self.compiler.path

    def write_source(self, chunks):
        with (self.folder / "in.st").open("wb") as source:
            source.writelines(chunks)

    def compile(self, chunks, *options):
        self.write_source(chunks)
        return run_limited(self.folder, "in.st", "out", "-r", *options)

    def result_lines(self):
        return (self.folder / "out.res").read_bytes().splitlines()

    def assert_compiled(self, run, bytes_per_item=0, items=0):
        self.assertEqual((run.status, run.screen), (0, b""), self.result_lines()[-1:])
        self.assertIn(b"Build successful.", self.result_lines()[-1])
        if not IS_SANITIZED:
            source_bytes = (self.folder / "in.st").stat().st_size
            budget = BASE_BYTES + BYTES_PER_SOURCE_BYTE * source_bytes + bytes_per_item * items
            print(f"{self.id()}: {source_bytes} bytes of source, {run.peak_bytes // KIB} KiB")
            self.assertLessEqual(run.peak_bytes, budget)

    def code_size(self):
        return (self.folder / "out").stat().st_size

    def code_begin_and_end(self, count):
        with (self.folder / "out").open("rb") as code:
            begin = code.read(count)
            code.seek(max(0, self.code_size() - count))
            return begin, code.read()

    def assert_code_grows_by(self, item, repeats, without_items):
        """The code is that of the source without the items and `item` so many times more."""
        self.assertEqual(self.code_size(), len(without_items) + len(item) * repeats)
        begin, end = self.code_begin_and_end(2 * KIB)
        first = without_items.index(b"MAIN: ") + len(b"MAIN: ")
        self.assertEqual(begin[:first], without_items[:first])
        self.assertTrue((item * (2 * KIB // len(item) + 1)).startswith(begin[first:]))
        self.assertTrue(end.endswith(item + b"RET "), end[-100:])

    def code_of_empty_body(self):
        self.assertEqual(self.compile(program()).status, 0)
        return (self.folder / "out").read_bytes()


class Lines(SizeTestCase):
    COUNT = 1_000_000

    def test_lines(self):
        without_items = self.code_of_empty_body()
        run = self.compile(program(b"x:=1;\n" for _ in range(self.COUNT)))
        self.assert_compiled(run)
        self.assert_code_grows_by(b"MOV 1 #A0 MOV #A0 @x ", self.COUNT, without_items)

    def test_echo_of_every_line(self):
        lines = (b"x:=%d;\n" % (i % 10) for i in range(self.COUNT // 10))
        run = self.compile(program(lines), "-l", "-i", "-n")
        self.assert_compiled(run)
        listing = (self.folder / "out.lst").read_bytes().splitlines()
        echoes = [line for line in listing if line.startswith(b";Line ")]
        # The three lines of the frame that are not blank, and each line of the body.
        self.assertEqual(len(echoes), 3 + self.COUNT // 10)
        self.assertIn(b';Line 100001: "x:=8;"', echoes)

    def test_blank_lines(self):
        without_items = self.code_of_empty_body()
        run = self.compile(program(b"\n" for _ in range(self.COUNT)), "-l", "-i")
        self.assert_compiled(run)
        self.assertEqual((self.folder / "out").read_bytes(), without_items)


class LongTexts(SizeTestCase):
    NAME = b"i" * (1024 * KIB)
    LONGEST_NUMBER = 254

    def test_identifier(self):
        name = self.NAME
        run = self.compile([BEGIN.replace(b"x", name), name, b":=1;b:=", name, b"=2;", END])
        self.assert_compiled(run, bytes_per_item=16, items=len(name))
        code = (self.folder / "out").read_bytes()
        self.assertEqual(code.count(name), 3)
        self.assertIn(b"MAIN: MOV 1 #A0 MOV #A0 @" + name + b" MOV @" + name + b" #A0 ", code)

    def test_unknown_identifier(self):
        name = self.NAME
        run = self.compile(program(name + b":=1;"))
        self.assertEqual(run.status, 1)
        message = self.result_lines()[-1]
        self.assertTrue(message.endswith(b'An unrecognized keyword "' + name + b'"'))

    def test_user_label(self):
        name = self.NAME
        run = self.compile(program(b"GOTO ", name, b";", name, b":;"))
        self.assert_compiled(run, bytes_per_item=16, items=len(name))
        code = (self.folder / "out").read_bytes()
        self.assertIn(b"JMP " + name.upper() + b" " + name.upper() + b": ", code)

    def test_number(self):
        longest = b"1" * self.LONGEST_NUMBER
        self.assert_compiled(self.compile(program(b"x:=", longest, b";")))
        code = (self.folder / "out").read_bytes()
        self.assertTrue(code.endswith(b" MAIN: MOV " + longest + b" #A0 MOV #A0 @x RET "), code)
        for length in (self.LONGEST_NUMBER + 1, len(self.NAME)):
            with self.subTest(length=length):
                run = self.compile(program(b"x:=", b"1" * length, b";"))
                self.assertEqual(run.status, 1)
                message = b"Error: Line 3, Column 4: Too much the constants"
                self.assertEqual(self.result_lines()[-1], message)
                self.assertFalse((self.folder / "out").exists())

    def test_line_of_blanks(self):
        without_items = self.code_of_empty_body()
        run = self.compile(program(b" " * MIB for _ in range(100)))
        self.assert_compiled(run)
        self.assertEqual((self.folder / "out").read_bytes(), without_items)


def short_names():
    """All names of four letters and digits, in order."""
    known = (*words.reserved_words(), *words.types(), *words.built_ins())
    taken = {word.lower() for word in known}
    names = itertools.product(ascii_lowercase, *[digits + ascii_lowercase] * 3)
    return (name for name in map("".join, names) if name not in taken)


class Symbols(SizeTestCase):
    FUNCTIONS = 100_000
    VARIABLES = 100_000
    SHORT_LABELS = 400_000

    def test_functions(self):
        definitions = (b"FUNCTION f%d:INT END_FUNCTION\n" % i for i in range(self.FUNCTIONS))
        calls = (b"x:=f%d;\n" % i for i in range(self.FUNCTIONS))
        run = self.compile(self.with_functions(definitions, calls))
        self.assert_compiled(run, bytes_per_item=512, items=self.FUNCTIONS)
        code = (self.folder / "out").read_bytes()
        self.assertEqual(code.count(b"RESULT V INT 0 BODY: "), self.FUNCTIONS)
        self.assertEqual(code.count(b" MOV #A0 @x "), self.FUNCTIONS)
        self.assertIn(b" CAL f%d MOV #A0 @x RET " % (self.FUNCTIONS - 1), code)

    def with_functions(self, definitions, calls):
        yield from definitions
        yield from program(calls)

    def test_variables(self):
        count = self.VARIABLES
        declarations = (b"v%d:INT:=%d;\n" % (i, i % 100) for i in range(count))
        uses = (b"x:=v%d;\n" % i for i in range(count))
        run = self.compile([b"PROGRAM main VAR x:INT;", *declarations, b"END_VAR ", *uses, END])
        self.assert_compiled(run, bytes_per_item=512, items=count)
        code = (self.folder / "out").read_bytes()
        self.assertEqual(code.count(b" V INT "), count + 1)
        last = count - 1
        self.assertTrue(code.endswith(b" MOV @v%d #A0 MOV #A0 @x RET " % last), code[-100:])

    def test_user_labels(self):
        count = 100_000
        jumps = (b"GOTO w%d;" % i for i in range(count))
        labels = (b"w%d:" % i for i in range(count))
        run = self.compile(program(jumps, labels))
        self.assert_compiled(run, bytes_per_item=512, items=count)
        code = (self.folder / "out").read_bytes()
        self.assertEqual(code.count(b" JMP W"), count)
        self.assertTrue(code.endswith(b" W%d: RET " % (count - 1)), code[-100:])

    def test_labels_of_few_letters(self):
        # No other source takes so much memory for each of its bytes.
        names = itertools.islice(short_names(), self.SHORT_LABELS)
        labels = "".join(f"{name}:" for name in names).encode()
        self.assertEqual(len(labels), 5 * self.SHORT_LABELS)
        self.assert_compiled(self.compile(program(labels)), 256, self.SHORT_LABELS)
        items = labels.upper().replace(b":", b": ")
        self.assertTrue((self.folder / "out").read_bytes().endswith(items + b"RET "))


class Comments(SizeTestCase):
    COUNT = 1_000_000

    def assert_comments_vanish(self, comment):
        without_items = self.code_of_empty_body()
        chunks = (comment * 1000 for _ in range(self.COUNT // 1000))
        self.assert_compiled(self.compile(program(chunks)))
        self.assertEqual((self.folder / "out").read_bytes(), without_items)

    def test_block_comments_in_a_row(self):
        self.assert_comments_vanish(b"(**)")

    def test_line_comments_in_a_row(self):
        self.assert_comments_vanish(b"//\n")

    def test_one_long_comment(self):
        without_items = self.code_of_empty_body()
        self.assert_compiled(self.compile(program(b"(*", b"*(" * self.COUNT, b"*)")))
        self.assertEqual((self.folder / "out").read_bytes(), without_items)


class CaseLabels(SizeTestCase):
    COUNT = 10_000
    SECONDS = 60 if IS_SANITIZED else 5

    def check(self, element, begin, end):
        labels = (element % (10 * i, 10 * i + 5) for i in range(self.COUNT))
        run = self.compile(program(begin, labels, end))
        self.assert_compiled(run, bytes_per_item=512, items=self.COUNT)
        self.assertLess(run.seconds, self.SECONDS)
        code = (self.folder / "out").read_bytes()
        self.assertEqual(code.count(b" LT #R0 #A0 "), self.COUNT)
        self.assertEqual(code.count(b" GT #R0 #A0 "), self.COUNT)

    def test_ranges_in_one_element(self):
        self.check(b"%d..%d,", b"CASE x OF ", b"9999999: END_CASE;")

    def test_range_in_every_element(self):
        self.check(b"%d..%d:", b"CASE x OF ", b"END_CASE;")

    def test_last_label_is_still_checked(self):
        labels = (b"%d..%d," % (10 * i, 10 * i + 5) for i in range(self.COUNT))
        run = self.compile(program(b"CASE x OF ", labels, b"3: END_CASE;"))
        self.assertEqual(run.status, 1)
        self.assertTrue(self.result_lines()[-1].endswith(b"Duplicate case label"))
        self.assertFalse((self.folder / "out").exists())


class Warnings(SizeTestCase):
    COUNT = 10_000

    def test_warnings(self):
        declarations = (b"v%d:INT;\n" % i for i in range(self.COUNT))
        chunks = [b"PROGRAM main VAR ", *declarations, b"END_VAR", END]
        run = self.compile(chunks, "-l", "-m", "-e")
        self.assert_compiled(run, bytes_per_item=512, items=self.COUNT)
        results = self.result_lines()
        warnings = [line for line in results if line.startswith(b"Warning: ")]
        self.assertEqual(len(warnings), self.COUNT)
        self.assertIn(b'"v%d" is declared but never used' % (self.COUNT - 1), warnings[-1])
        listing = (self.folder / "out.lst").read_bytes().splitlines()
        self.assertEqual(listing.count(b";" + warnings[0]), 1)
        self.assertEqual(sum(line.startswith(b";Warning: ") for line in listing), self.COUNT)
        self.assertEqual((self.folder / "out.err").read_bytes().count(b"e:"), self.COUNT)


class SourceSize(SizeTestCase):
    def test_source_beyond_the_limit(self):
        self.write_source(program())
        os.truncate(self.folder / "in.st", SOURCE_SIZE_LIMIT + 1)
        run = run_limited(self.folder, "in.st", "out", "-s")
        self.assertEqual(run.status, 1)
        self.assertIn(b"File open failed for input file", run.screen)
        self.assertFalse((self.folder / "out").exists())


if __name__ == "__main__":
    unittest.main()
