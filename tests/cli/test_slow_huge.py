"""Texts that are as long as the largest source lets them be."""

import shutil
import unittest

from limits import GIB, IS_SANITIZED, MIB, SOURCE_SIZE_LIMIT, available_memory
from test_size import END, SizeTestCase, program

LENGTH = SOURCE_SIZE_LIMIT - 1_000

MEMORY = 16 * GIB
DISK = 4 * GIB


def repeated(character):
    """So many of the character, in pieces."""
    for _ in range(LENGTH // MIB):
        yield character * MIB
    yield character * (LENGTH % MIB)


def joined(*parts):
    for part in parts:
        yield from [part] if isinstance(part, bytes) else part


@unittest.skipIf(IS_SANITIZED, "a sanitizer multiplies the memory")
@unittest.skipIf(available_memory() < MEMORY, "needs 16 GiB of memory")
class HugeTexts(SizeTestCase):
    def setUp(self):
        super().setUp()
        if shutil.disk_usage(self.folder).free < DISK:
            self.skipTest("needs 4 GiB of disk")

    def compile(self, chunks, *options):
        run = super().compile(chunks, *options)
        took = f"{run.seconds:.1f} s, {run.peak_bytes // MIB} MiB"
        print(f"{self.id()}: status {run.status}, {took}")
        return run

    def count_in(self, name, character):
        """How often the character stands in the file, and all else in it."""
        count = 0
        rest = b""
        with (self.folder / name).open("rb") as file:
            while block := file.read(16 * MIB):
                count += block.count(character)
                rest += block.replace(character, b"")
        return count, rest

    def test_name(self):
        chunks = (b"PROGRAM main VAR ", repeated(b"n"), b":INT:=1; END_VAR", END)
        self.assertEqual(self.compile(joined(*chunks)).status, 0)
        rest = b"PROG: mai VAR:  V INT 1 MAIN: RET "  # what else there is, without its one "n"
        self.assertEqual(self.count_in("out", b"n"), (LENGTH + 1, rest))

    def test_unknown_name(self):
        run = self.compile(program(repeated(b"n"), b":=1;"))
        self.assertEqual(run.status, 1)
        count, rest = self.count_in("out.res", b"n")
        self.assertGreater(count, LENGTH)
        self.assertTrue(rest.endswith(b'A urecogized keyword ""\n'), rest)

    def test_string(self):
        run = self.compile(program(b"x:='", repeated(b"n"), b"';"))
        self.assertEqual(run.status, 1)
        self.assertFalse((self.folder / "out").exists())

    def test_comment(self):
        without_comment = self.code_of_empty_body()
        for begin, end in ((b"(*", b"*)"), (b"//", b"\n")):
            with self.subTest(begin=begin):
                run = self.compile(program(begin, repeated(b"n"), end))
                self.assertEqual(run.status, 0)
                self.assertEqual((self.folder / "out").read_bytes(), without_comment)

    def test_echo(self):
        run = self.compile(program(b"(*", repeated(b"z"), b"*)"), "-l", "-i")
        self.assertEqual(run.status, 0)
        count, rest = self.count_in("out.lst", b"z")
        self.assertEqual(count, LENGTH)
        self.assertIn(b';Line 3: "(**)"\n', rest)


if __name__ == "__main__":
    unittest.main()
