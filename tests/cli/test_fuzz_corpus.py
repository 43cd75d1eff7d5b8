"""Replays the sources that the fuzzer has kept, and judges each run as the fuzzer does."""

import re
import sys
import unittest

from support import OPTIONS, ROOT, Compiler, side_by_side

sys.path.insert(0, str(ROOT / "tests/fuzz"))
from oracle import NAMES, OLD, problems  # noqa: E402

CORPUS = ROOT / "tests/fuzz/corpus"
OPTION_SETS = [["-l", "-m", "-i", "-n", "-r", "-e"], ["-s", "-m"]]


class Oracle(unittest.TestCase):
    """The judge itself: what it lets through and what not."""

    SOURCE = b"PROGRAM p VAR a : INT; END_VAR L1: a := 1; END_PROGRAM"
    CODE = b"PROG: p VAR: a V INT 0 MAIN: L1: MOV 1 #A0 MOV #A0 @a RET "
    ITEMS = [b"PROG:", b"p", b"VAR:", b"a V INT 0", b"MAIN:", b"L1:", b"MOV 1 #A0"]
    ITEMS += [b"MOV #A0 @a", b"RET"]
    LISTING = b"".join(item + b"\n" for item in ITEMS)
    NUMBERED = b"".join(b"%04d\t%b\n" % item for item in enumerate(ITEMS, 1))
    SUCCESS = b"Banner\nBuild successful.  Elapsed time: 1 ms.\n"
    UNTOUCHED = dict.fromkeys(NAMES - {"out"}, OLD)

    def judge(self, status, options="", **files):
        """The files are named by their suffixes, that of the code is "code"."""
        names = {"code": "out", "temporary": "out.tmp"}
        given = {names.get(key, f"out.{key}"): data for key, data in files.items()}
        left = {name: data for name, data in (self.UNTOUCHED | given).items() if data is not None}
        return problems(status, self.SOURCE, options.split(), left)

    def test_sound_runs(self):
        for status, options, files in [
            (0, "", {"code": self.CODE}),
            (1, "", {}),
            (0, "-l", {"code": self.CODE, "lst": self.LISTING}),
            (0, "-l -m", {"code": self.CODE, "lst": b";Banner\n" + self.LISTING}),
            (0, "-l -n", {"code": self.CODE, "lst": self.NUMBERED}),
            (1, "-l", {"lst": b"PROG:\n"}),
            (0, "-r", {"code": self.CODE, "res": self.SUCCESS}),
            (1, "-r", {"res": b"Banner\nError: Line 1, Column 1: why\n"}),
            (0, "-e", {"code": self.CODE, "err": b""}),
            (1, "-e", {"err": b"e:1,2e:3,4"}),
        ]:
            with self.subTest(status=status, options=options, files=files):
                self.assertEqual(self.judge(status, options, **files), [])

    def test_unsound_runs(self):
        code = {"code": self.CODE}
        for status, options, files in [
            (2, "", {}),
            (-6, "", {}),
            (0, "", {}),
            (0, "", {"code": OLD}),
            (1, "", code),
            (1, "", {"code": OLD}),
            (0, "", {"code": self.CODE.replace(b"@a", b"@b")}),
            (0, "", {"code": self.CODE[:-5]}),
            (0, "", {"temporary": b"", **code}),
            (1, "", {"temporary": b""}),
            (0, "-l", code),
            (0, "-l", {"lst": None, **code}),
            (0, "", {"lst": None, **code}),
            (0, "", {"lst": self.LISTING, **code}),
            (0, "-l", {"lst": self.LISTING.replace(b"@a", b"@b"), **code}),
            (0, "-l", {"lst": self.LISTING[:-4], **code}),
            (0, "-l", {"lst": self.NUMBERED, **code}),
            (0, "-l -n", {"lst": self.LISTING, **code}),
            (0, "-l -n", {"lst": self.NUMBERED.replace(b"0008", b"0009"), **code}),
            (1, "-r", {}),
            (1, "-r", {"res": self.SUCCESS}),
            (0, "-r", {"res": b"Banner\n", **code}),
            (1, "-e", {}),
            (1, "-e", {"err": b"e:1,2\n"}),
        ]:
            with self.subTest(status=status, options=options, files=files):
                self.assertNotEqual(self.judge(status, options, **files), [])


class Target(unittest.TestCase):
    def test_it_knows_every_option(self):
        target = (ROOT / "tests/fuzz/target.cpp").read_text()
        table = re.search(r"> OPTIONS = \{(.*?)\};", target, re.DOTALL)
        self.assertEqual(sorted(re.findall(r'"(.*?)"', table[1])), sorted(OPTIONS))


class Corpus(unittest.TestCase):
    def test_every_source(self):
        sources = sorted(CORPUS.iterdir())
        self.assertGreater(len(sources), 0)
        for options in OPTION_SETS:
            results = side_by_side(lambda path: self.judge(path, options), sources)
            for path, found in zip(sources, results):
                with self.subTest(source=path.name, options=options):
                    self.assertEqual(found, [])

    def judge(self, path, options):
        source = path.read_bytes()
        compiler = Compiler()
        try:
            compiler.write("in.st", source)
            for name in NAMES:
                compiler.write(name, OLD)
            result = compiler.run("in.st", "out", *options)
        finally:
            compiler.close()
        del result.files["in.st"]
        return problems(result.status, source, options, result.files)


if __name__ == "__main__":
    unittest.main()
