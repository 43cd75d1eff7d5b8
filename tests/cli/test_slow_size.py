"""The sizes of test_size.py that take long."""

import shutil
import unittest

from limits import GIB, IS_SANITIZED, KIB, MIB, SOURCE_SIZE_LIMIT, available_memory
from test_size import END, SizeTestCase, program


class LongLine(SizeTestCase):
    STATEMENT = b"x:=1;"
    SIZE = 100_000_000

    def test_line_of_statements(self):
        count = self.SIZE // len(self.STATEMENT)
        without_items = self.code_of_empty_body()
        chunks = (self.STATEMENT * 1000 for _ in range(count // 1000))
        self.assert_compiled(self.compile(program(chunks)))
        self.assert_code_grows_by(b"MOV 1 #A0 MOV #A0 @x ", count, without_items)


class ManyVariables(SizeTestCase):
    COUNT = 1_000_000

    def test_variables(self):
        def chunks():
            yield b"PROGRAM main VAR "
            yield from (b"v%d:INT:=1;\n" % i for i in range(self.COUNT))
            yield b"END_VAR "
            yield from (b"v0:=v%d;\n" % i for i in range(self.COUNT))
            yield END

        run = self.compile(chunks())
        self.assert_compiled(run, bytes_per_item=512, items=self.COUNT)
        begin, end = self.code_begin_and_end(1 * KIB)
        self.assertIn(b" VAR: v0 V INT 1 v1 V INT 1 ", begin)
        last = b" MOV @v%d #A0 MOV #A0 @v0 RET " % (self.COUNT - 1)
        self.assertTrue(end.endswith(last), end)


class LargestSource(SizeTestCase):
    @unittest.skipIf(IS_SANITIZED, "a sanitizer multiplies the memory")
    @unittest.skipIf(available_memory() < 5 * GIB, "needs 5 GiB of memory")
    def test_source_at_the_limit(self):
        if shutil.disk_usage(self.folder).free < 2 * GIB:
            self.skipTest("needs 2 GiB of disk")
        without_blanks = self.code_of_empty_body()
        frame = b"".join(program())
        blanks, rest = divmod(SOURCE_SIZE_LIMIT - len(frame), MIB)
        chunks = program((b" " * MIB for _ in range(blanks)), b" " * rest)
        self.assert_compiled(self.compile(chunks))
        self.assertEqual((self.folder / "in.st").stat().st_size, SOURCE_SIZE_LIMIT)
        self.assertEqual((self.folder / "out").read_bytes(), without_blanks)


if __name__ == "__main__":
    unittest.main()
