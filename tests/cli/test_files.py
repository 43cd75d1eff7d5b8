"""Files: the source is never lost, a code file is whole or absent, and no kind of file or name
brings the compiler down."""

import os
import resource
import shutil
import signal
import socket
import stat
import subprocess
import tempfile
import unittest
from pathlib import Path

from limits import GIB, IS_SANITIZED
from support import BINARY, VALID_SOURCE, CompilerTestCase, Result
from workplace import (
    LARGE_SOURCE,
    OUTPUT_NAMES,
    SMALL_SOURCE,
    source_with_statements,
    without_time,
)

# Nothing here takes long; what waits for the other end of a pipe waits for ever.
TIMEOUT_SECONDS = 30

IS_ROOT = os.geteuid() == 0
NOBODY = 65534

CODE_FAILED = b";File open failed for output file\n"
CODE_NOT_WRITTEN = b"A problem writing output file"
SOURCE_FAILED = b"File open failed for input file"

# A side file of an output called out: its option, its name and the message that refuses it.
SIDE_FILES = (
    ("-l", "out.lst", b";File open failed for output LST file\n"),
    ("-r", "out.res", b";File open failed for output RES file\n"),
    ("-e", "out.err", b";File open failed for output ERR file\n"),
)
ALL_SIDE_FILES = ("-l", "-m", "-r", "-e")


def snapshot(folder):
    """Every entry under the folder: kind, identity, and content or target."""
    entries = {}
    for parent, names, files in os.walk(folder):
        for name in names + files:
            path = os.path.join(parent, name)
            status = os.lstat(path)
            content = None
            if stat.S_ISREG(status.st_mode):
                content = Path(path).read_bytes()
            elif stat.S_ISLNK(status.st_mode):
                content = os.readlink(path)
            kind = stat.S_IFMT(status.st_mode)
            entries[os.path.relpath(path, folder)] = (kind, status.st_ino, content)
    return entries


def drop_privileges():
    os.setgroups([])
    os.setgid(NOBODY)
    os.setuid(NOBODY)


def limit_file_size(size):
    return lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))


class FilesTestCase(CompilerTestCase):
    def setUp(self):
        super().setUp()
        self.folder = self.compiler.path
        self.source("in.st", VALID_SOURCE)

    def source(self, name, data):
        (self.folder / name).write_bytes(data)

    def run_compiler(self, *arguments, binary=BINARY, stdout=subprocess.PIPE, **options):
        """As self.compiler.run, with more freedom for the process and less of the result."""
        before = set(os.listdir(self.folder))
        process = subprocess.run(
            [binary, *arguments],
            cwd=self.folder,
            stdin=subprocess.DEVNULL,
            stdout=stdout,
            stderr=subprocess.DEVNULL,
            timeout=TIMEOUT_SECONDS,
            **options,
        )
        self.assert_nothing_strange(before, arguments)
        return Result(process.returncode, process.stdout, b"", self.regular_files())

    def assert_nothing_strange(self, before, arguments):
        """What has come to the folder are outputs of the run."""
        output = os.path.basename(os.fsdecode(arguments[1])) if len(arguments) > 1 else ""
        outputs = {name.replace("out", output, 1) for name in OUTPUT_NAMES}
        self.assertLessEqual(set(os.listdir(self.folder)) - before, outputs)

    def regular_files(self):
        paths = (path for path in self.folder.iterdir() if not path.is_symlink())
        return {path.name: path.read_bytes() for path in paths if path.is_file()}

    def compiled(self, data, *options):
        """The output files of an undisturbed run, by name."""
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            (folder / "in.st").write_bytes(data)
            subprocess.run(
                [BINARY, "in.st", "out", *options],
                cwd=folder,
                check=True,
                stdout=subprocess.DEVNULL,
                timeout=TIMEOUT_SECONDS,
            )
            return {path.name: path.read_bytes() for path in folder.glob("out*")}

    def assert_refused(self, message, *arguments):
        """Refused before anything in the folder was touched."""
        before = snapshot(self.folder)
        result = self.run_compiler(*arguments)
        self.assertEqual((result.status, result.stdout), (1, message))
        self.assertEqual(snapshot(self.folder), before)

    def assert_compiled(self, result, data=VALID_SOURCE, source_name="in.st"):
        self.assertEqual(result.status, 0, result.stdout)
        self.assertEqual(result.files.get("out"), self.compiled(data)["out"])
        self.assertEqual((self.folder / source_name).read_bytes(), data)


# ---------------------------------------------------------------------------------------------
# The source is never lost
# ---------------------------------------------------------------------------------------------


class SourceAsOutput(FilesTestCase):
    def ways_to(self, name):
        """Names that lead to a file of the folder, by every kind of way."""
        target = self.folder / name
        (self.folder / "sub").mkdir()
        (self.folder / "linked").symlink_to(".")
        (self.folder / "link").symlink_to(name)
        (self.folder / "link_to_link").symlink_to("link")
        (self.folder / "absolute_link").symlink_to(target)
        os.link(target, self.folder / "hard_link")
        return (
            name,
            f"./{name}",
            f"sub/../{name}",
            f"../{self.folder.name}/{name}",
            f"linked/{name}",
            str(target),
            "link",
            "link_to_link",
            "absolute_link",
            "hard_link",
        )

    def test_output_leads_to_the_source(self):
        for output in self.ways_to("in.st"):
            with self.subTest(output=output):
                self.assert_refused(CODE_FAILED, "in.st", output)

    def test_source_leads_to_the_output(self):
        for source in self.ways_to("in.st"):
            with self.subTest(source=source):
                self.assert_refused(CODE_FAILED, source, "in.st")

    def test_side_file_leads_to_the_source(self):
        top = self.folder
        for option, name, message in SIDE_FILES:
            self.folder = top / name
            self.folder.mkdir()
            # The other outputs of an earlier run must outlive the refusal too.
            for output in OUTPUT_NAMES:
                self.source(output, b"old " + output.encode())
            self.source(name, VALID_SOURCE)
            for source in self.ways_to(name):
                with self.subTest(option=option, source=source):
                    self.assert_refused(message, source, "out", option)
                    self.assert_refused(message, source, "out", "-s", "-m", option, option)
                    self.assert_refused(message, source, "sub/../out", option)

    def test_side_file_is_a_link_to_the_source(self):
        for option, name, message in SIDE_FILES:
            for make_link in (os.symlink, os.link):
                with self.subTest(option=option, link=make_link.__name__):
                    self.source("out", b"old code")
                    make_link(
                        "in.st" if make_link is os.symlink else self.folder / "in.st",
                        self.folder / name,
                    )
                    self.assert_refused(message, "in.st", "out", option)
                    (self.folder / name).unlink()

    def test_side_file_that_is_not_wanted_may_be_the_source(self):
        for _, name, _ in SIDE_FILES:
            with self.subTest(name=name):
                self.source(name, VALID_SOURCE)
                result = self.run_compiler(name, "out")
                self.assert_compiled(result, source_name=name)

    def test_other_file_of_equal_content_is_no_source(self):
        self.source("out", VALID_SOURCE)
        self.assert_compiled(self.run_compiler("in.st", "out"))


# ---------------------------------------------------------------------------------------------
# What may stand where an output belongs
# ---------------------------------------------------------------------------------------------


class OutputKinds(FilesTestCase):
    def make_folder(self, path):
        path.mkdir()
        (path / "kept").write_bytes(b"kept")

    def make_empty_folder(self, path):
        path.mkdir()

    def make_pipe(self, path):
        os.mkfifo(path)

    def make_socket(self, path):
        listener = socket.socket(socket.AF_UNIX)
        self.addCleanup(listener.close)
        listener.bind(str(path))

    def make_device(self, path):
        if IS_ROOT:
            try:
                os.mknod(path, stat.S_IFCHR | 0o666, os.makedev(1, 3))
            except OSError:
                self.skipTest("no devices in this file system")
        else:
            self.skipTest("only root makes devices")

    def makers(self):
        return (
            self.make_folder,
            self.make_empty_folder,
            self.make_pipe,
            self.make_socket,
            self.make_device,
        )

    def test_code_file_is_no_regular_file(self):
        for make in self.makers():
            with self.subTest(make.__name__):
                make(self.folder / "special")
                self.assert_refused(CODE_FAILED, "in.st", "special")
                (self.folder / "special").rename(self.folder / make.__name__)

    def test_side_file_is_no_regular_file(self):
        for option, name, message in SIDE_FILES:
            for make in self.makers():
                with self.subTest(make.__name__, option=option):
                    make(self.folder / name)
                    self.assert_refused(message, "in.st", "out", option)
                    (self.folder / name).rename(self.folder / f"{make.__name__}{option}")

    def test_side_file_without_its_option_is_left_alone(self):
        for _, name, _ in SIDE_FILES:
            os.mkfifo(self.folder / name)
        before = snapshot(self.folder)
        self.assert_compiled(self.run_compiler("in.st", "out"))
        after = snapshot(self.folder)
        del after["out"]
        self.assertEqual(after, before)

    def test_link_to_a_pipe_or_device_is_replaced(self):
        for make in (self.make_pipe, self.make_socket, self.make_device):
            with self.subTest(make.__name__):
                target = self.folder / make.__name__
                make(target)
                kind = target.stat().st_mode
                (self.folder / "link").symlink_to(make.__name__)
                self.assertEqual(self.run_compiler("in.st", "link").status, 0)
                self.assertFalse((self.folder / "link").is_symlink())
                self.assertEqual(target.stat().st_mode, kind)
                (self.folder / "link").unlink()

    def assert_link_is_replaced(self, target):
        for name in OUTPUT_NAMES:
            (self.folder / name).symlink_to(target)
        before = snapshot(self.folder)
        result = self.run_compiler("in.st", "out", *ALL_SIDE_FILES)
        self.assert_compiled(result)
        after = snapshot(self.folder)
        self.assertEqual(before.keys(), after.keys())
        for name in before:
            if name in OUTPUT_NAMES:
                self.assertEqual(after[name][0], stat.S_IFREG, name)
            else:
                self.assertEqual(after[name], before[name], name)

    def test_dangling_link(self):
        self.assert_link_is_replaced("nowhere")

    def test_dangling_link_into_a_missing_folder(self):
        self.assert_link_is_replaced("missing/nowhere")

    def test_link_to_itself(self):
        (self.folder / "out").symlink_to("out")
        self.assert_compiled(self.run_compiler("in.st", "out"))

    def test_link_to_a_file(self):
        self.source("precious", b"not to be written through the link")
        self.assert_link_is_replaced("precious")

    def test_link_to_a_folder(self):
        self.make_folder(self.folder / "precious")
        self.assert_link_is_replaced("precious")

    def test_hard_link_to_another_file(self):
        self.source("precious", b"shares its content with the old output")
        os.link(self.folder / "precious", self.folder / "out")
        self.assert_compiled(self.run_compiler("in.st", "out"))
        content = (self.folder / "precious").read_bytes()
        self.assertEqual(content, b"shares its content with the old output")

    def test_old_outputs_do_not_shine_through(self):
        for name in OUTPUT_NAMES:
            self.source(name, b"old " * 1000)
        result = self.run_compiler("in.st", "out", *ALL_SIDE_FILES)
        expected = self.compiled(VALID_SOURCE, *ALL_SIDE_FILES)
        for name in OUTPUT_NAMES:
            text = without_time(result.files[name])
            self.assertEqual(text, without_time(expected[name]), name)

    def test_output_in_a_missing_folder(self):
        self.assert_refused(CODE_FAILED, "in.st", "missing/out")
        self.assert_refused(CODE_FAILED, "in.st", "in.st/out")
        self.assert_refused(CODE_FAILED, "in.st", "out/")

    def test_output_without_a_name(self):
        self.assert_refused(CODE_FAILED, "in.st", "")
        self.assert_refused(CODE_FAILED, "in.st", ".")
        self.assert_refused(CODE_FAILED, "in.st", "..")

    def test_too_long_name(self):
        longest = os.pathconf(self.folder, "PC_NAME_MAX")
        self.assert_refused(CODE_FAILED, "in.st", "o" * (longest + 1))
        for option, _, message in SIDE_FILES:
            self.assert_refused(message, "in.st", "o" * longest, option)
        result = self.run_compiler("in.st", "o" * longest)
        self.assertEqual(result.status, 0)
        self.assertEqual(result.files["o" * longest], self.compiled(VALID_SOURCE)["out"])


# ---------------------------------------------------------------------------------------------
# What may stand where the source belongs
# ---------------------------------------------------------------------------------------------


class InputKinds(FilesTestCase):
    def assert_not_read(self, name, **options):
        # The old output may go or stay; what matters is that no new one comes.
        self.source("out", b"old code")
        result = self.run_compiler(name, "out", "-s", **options)
        self.assertEqual(result.status, 1)
        self.assertIn(SOURCE_FAILED, result.stdout)
        self.assertIn(result.files.get("out"), (None, b"old code"))
        quiet = self.run_compiler(name, "out", **options)
        self.assertEqual((quiet.status, quiet.stdout), (1, b""))
        self.assertIn(quiet.files.get("out"), (None, b"old code"))

    def assert_not_found(self, name):
        self.assert_refused(b";A input file not found\n", name, "out")

    def test_folder(self):
        (self.folder / "folder.st").mkdir()
        self.assert_not_read("folder.st")

    def test_pipe_is_not_waited_for(self):
        os.mkfifo(self.folder / "pipe.st")
        self.assert_not_read("pipe.st")

    def test_socket(self):
        listener = socket.socket(socket.AF_UNIX)
        self.addCleanup(listener.close)
        listener.bind(str(self.folder / "socket.st"))
        self.assert_not_read("socket.st")

    def test_device(self):
        self.assert_not_read("/dev/null")

    @unittest.skipIf(IS_SANITIZED, "a sanitizer does not work with limited memory")
    def test_device_without_an_end(self):
        limit = (2 * GIB, 2 * GIB)
        self.assert_not_read(
            "/dev/zero", preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, limit)
        )

    def test_missing(self):
        self.source("out", b"old code")
        self.assert_not_found("absent.st")
        self.assert_not_found("missing/in.st")
        self.assert_not_found("in.st/in.st")
        self.assert_not_found("")

    def test_dangling_link(self):
        (self.folder / "link.st").symlink_to("absent.st")
        self.assert_not_found("link.st")

    def test_link_to_itself(self):
        (self.folder / "link.st").symlink_to("link.st")
        self.assert_not_found("link.st")

    def test_too_long_name(self):
        self.assert_not_found("i" * (os.pathconf(self.folder, "PC_NAME_MAX") + 1))

    def test_through_a_link(self):
        (self.folder / "link.st").symlink_to("in.st")
        self.assert_compiled(self.run_compiler("link.st", "out"))
        self.assertTrue((self.folder / "link.st").is_symlink())


# ---------------------------------------------------------------------------------------------
# Permissions
# ---------------------------------------------------------------------------------------------


class Permissions(FilesTestCase):
    """Root may do everything, so these runs give their privileges up."""

    def setUp(self):
        super().setUp()
        self.folder.chmod(0o777)
        self.binary = BINARY
        if IS_ROOT:
            # The build folder may be closed to other users.
            tools = tempfile.TemporaryDirectory()
            self.addCleanup(tools.cleanup)
            os.chmod(tools.name, 0o755)
            self.binary = Path(tools.name) / BINARY.name
            shutil.copy(BINARY, self.binary)
            self.binary.chmod(0o755)

    def run_compiler(self, *arguments, **options):
        if IS_ROOT:
            options["preexec_fn"] = drop_privileges
        try:
            return super().run_compiler(*arguments, binary=self.binary, **options)
        except PermissionError:
            self.skipTest("the temporary folder is closed to other users")

    def test_ordinary_run(self):
        self.assert_compiled(self.run_compiler("in.st", "out", *ALL_SIDE_FILES))

    def test_read_only_folder(self):
        locked = self.folder / "locked"
        locked.mkdir()
        (locked / "old").write_bytes(b"old code")
        (locked / "old").chmod(0o666)
        locked.chmod(0o555)
        self.addCleanup(locked.chmod, 0o755)
        self.assert_refused(CODE_FAILED, "in.st", "locked/new")
        self.assert_refused(CODE_FAILED, "in.st", "locked/old")

    def test_closed_folder(self):
        locked = self.folder / "locked"
        locked.mkdir()
        locked.chmod(0o000)
        self.addCleanup(locked.chmod, 0o755)
        result = self.run_compiler("in.st", "locked/out")
        self.assertEqual((result.status, result.stdout), (1, CODE_FAILED))

    def test_read_only_old_output_is_replaced(self):
        self.source("out", b"old code")
        (self.folder / "out").chmod(0o444)
        self.assert_compiled(self.run_compiler("in.st", "out"))

    def test_unreadable_source(self):
        (self.folder / "sub").mkdir()
        source = self.folder / "sub" / "in.st"
        source.write_bytes(VALID_SOURCE)
        source.chmod(0o000)
        result = self.run_compiler("sub/in.st", "out", "-s")
        self.assertEqual(result.status, 1)
        self.assertIn(SOURCE_FAILED, result.stdout)
        self.assertNotIn("out", result.files)
        self.assert_refused(CODE_FAILED, "sub/in.st", "sub/../sub/in.st")

    @unittest.skipUnless(IS_ROOT, "only root gives files away")
    def test_old_outputs_in_a_folder_that_is_shared(self):
        shared = self.folder / "shared"
        shared.mkdir()
        shared.chmod(0o1777)
        code, listing = shared / "out", shared / "out.lst"
        code.write_bytes(b"old code")
        listing.write_bytes(b"old listing")
        # The code file could be removed, the listing could not.
        os.chown(code, NOBODY, NOBODY)
        self.assert_refused(SIDE_FILES[0][2], "in.st", "shared/out", "-l")
        for theirs in (listing, shared):
            with self.subTest(theirs.name):
                listing.unlink()
                listing.write_bytes(b"old listing")
                os.chown(theirs, NOBODY, NOBODY)
                self.assertEqual(self.run_compiler("in.st", "shared/out", "-l").status, 0)
                self.assertEqual(code.read_bytes(), self.compiled(VALID_SOURCE)["out"])
                self.assertNotEqual(listing.read_bytes(), b"old listing")


# ---------------------------------------------------------------------------------------------
# Names
# ---------------------------------------------------------------------------------------------


class Names(FilesTestCase):
    NAMES = (
        "программа".encode("utf-8"),
        "Бак смешивания № 1 (новый)".encode("utf-8"),
        b" blanks  in and around ",
        "программа".encode("koi8-r"),
        b"\xff\xfe not UTF-8 \x80",
        b"\xed\xa0\x80 surrogate",
        "𝒜 beyond 16 bits".encode("utf-8"),
        "e\u0301 decomposed".encode("utf-8"),
        b"new\nline\ttab",
        b"quote'\"`$;*?[]%1\\",
        b"-l",
        b":resource",
        b"ab:cd",
        b"~",
        bytes(range(0x80, 0x100)),
    )
    LOCALES = ("C.UTF-8", "C", "POSIX", "xx_XX.not-installed", "")

    def run_in_locale(self, folder, locale, source, output):
        process = subprocess.run(
            [BINARY, source, output, *ALL_SIDE_FILES],
            cwd=folder,
            env={**os.environ, "LC_ALL": locale},
            stdin=subprocess.DEVNULL,
            capture_output=True,
            timeout=TIMEOUT_SECONDS,
        )
        self.assertEqual((process.returncode, process.stdout), (0, b""))

    def each_locale_and_name(self):
        """With each pair, a fresh folder, its name as bytes."""
        for locale in self.LOCALES:
            for name in self.NAMES:
                with tempfile.TemporaryDirectory() as folder:
                    yield locale, name, os.fsencode(folder)

    def check_folder(self, folder, source, output, code):
        outputs = {output + suffix for suffix in (b"", b".lst", b".res", b".err")}
        self.assertEqual(set(os.listdir(folder)), {source} | outputs)
        self.assertEqual(Path(os.fsdecode(os.path.join(folder, output))).read_bytes(), code)

    def test_names_are_the_bytes_given(self):
        code = self.compiled(VALID_SOURCE)["out"]
        for locale, name, folder in self.each_locale_and_name():
            with self.subTest(locale=locale, name=name):
                Path(os.fsdecode(os.path.join(folder, name))).write_bytes(VALID_SOURCE)
                self.run_in_locale(folder, locale, name, name + b".code")
                self.check_folder(folder, name, name + b".code", code)

    def test_folder_names_are_the_bytes_given(self):
        code = self.compiled(VALID_SOURCE)["out"]
        for locale, name, folder in self.each_locale_and_name():
            with self.subTest(locale=locale, name=name):
                below = os.path.join(folder, name)
                os.mkdir(below)
                Path(os.fsdecode(os.path.join(below, b"in.st"))).write_bytes(VALID_SOURCE)
                self.run_in_locale(folder, locale, name + b"/in.st", name + b"/out")
                self.check_folder(below, b"in.st", b"out", code)

    def test_source_is_found_again_under_every_locale(self):
        name = "исходник".encode("utf-8")
        source = os.path.join(os.fsencode(self.folder), name)
        Path(os.fsdecode(source)).write_bytes(VALID_SOURCE)
        for locale in self.LOCALES:
            with self.subTest(locale=locale):
                result = self.run_compiler(
                    name, b"./" + name, env={**os.environ, "LC_ALL": locale}
                )
                self.assertEqual((result.status, result.stdout), (1, CODE_FAILED))
                self.assertEqual(Path(os.fsdecode(source)).read_bytes(), VALID_SOURCE)


# ---------------------------------------------------------------------------------------------
# Standard output
# ---------------------------------------------------------------------------------------------


class StandardOutput(FilesTestCase):
    def setUp(self):
        super().setUp()
        self.source("in.st", LARGE_SOURCE)
        self.expected = self.compiled(LARGE_SOURCE, *ALL_SIDE_FILES)

    def assert_files_are_whole(self, status, files):
        self.assertEqual(status, 0)
        for name in OUTPUT_NAMES:
            self.assertEqual(without_time(files[name]), without_time(self.expected[name]), name)
        self.assertEqual(files["in.st"], LARGE_SOURCE)

    def test_closed(self):
        # What is shown must not land in a file that was given the free descriptor.
        for closed in ((1,), (0, 1), (1, 2), (0, 1, 2), (0,), (2,)):
            with self.subTest(closed=closed):
                result = self.run_compiler(
                    "in.st",
                    "out",
                    "-s",
                    *ALL_SIDE_FILES,
                    preexec_fn=lambda: [os.close(descriptor) for descriptor in closed],
                )
                self.assert_files_are_whole(result.status, result.files)

    def test_closed_and_the_command_line_is_wrong(self):
        result = self.run_compiler("in.st", preexec_fn=lambda: os.close(1))
        self.assertEqual(result.status, 1)
        self.assertEqual(result.files, {"in.st": LARGE_SOURCE})

    def test_nobody_reads(self):
        reader, writer = os.pipe()
        os.close(reader)
        self.addCleanup(os.close, writer)
        result = self.run_compiler("in.st", "out", "-s", *ALL_SIDE_FILES, stdout=writer)
        self.assert_files_are_whole(result.status, result.files)

    def test_nobody_reads_an_error(self):
        reader, writer = os.pipe()
        os.close(reader)
        self.addCleanup(os.close, writer)
        self.source("in.st", LARGE_SOURCE.replace(b"END_PROGRAM", b"a = 1;"))
        result = self.run_compiler("in.st", "out", "-s", stdout=writer)
        self.assertEqual(result.status, 1)
        self.assertNotIn("out", result.files)

    def test_reader_leaves(self):
        process = subprocess.Popen(
            [BINARY, "in.st", "out", "-s", *ALL_SIDE_FILES],
            cwd=self.folder,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
        )
        self.assertTrue(process.stdout.read(10))
        process.stdout.close()
        status = process.wait(TIMEOUT_SECONDS)
        self.assert_files_are_whole(status, self.regular_files())

    def test_full_device(self):
        if not os.path.exists("/dev/full"):
            self.skipTest("no /dev/full")
        with open("/dev/full", "wb") as full:
            result = self.run_compiler("in.st", "out", "-s", *ALL_SIDE_FILES, stdout=full)
        self.assert_files_are_whole(result.status, result.files)


# ---------------------------------------------------------------------------------------------
# Outputs that cannot be written whole
# ---------------------------------------------------------------------------------------------


class FailedWriteTestCase(FilesTestCase):
    def assert_code_file_failed(self, result, source):
        self.assertEqual(result.status, 1, result.stdout[-300:])
        self.assertIn(CODE_NOT_WRITTEN, result.stdout)
        self.assertNotIn(b"Build successful", result.stdout)
        self.assertNotIn("out", result.files)
        self.assertEqual((self.folder / "in.st").read_bytes(), source)

    def assert_code_file_is_whole(self, result, source, code):
        self.assertEqual(result.status, 0, result.stdout[-300:])
        self.assertNotIn(CODE_NOT_WRITTEN, result.stdout)
        self.assertEqual(result.files["out"], code)
        self.assertEqual((self.folder / "in.st").read_bytes(), source)


class FileSizeLimit(FailedWriteTestCase):
    def check_limits_around_the_code(self, source):
        self.source("in.st", source)
        code = self.compiled(source)["out"]
        size = len(code)
        for limit in (0, 1, 4096, size // 3, size // 2, size - 1):
            if limit < size:
                with self.subTest(limit=limit, size=size):
                    result = self.run_with_limit(limit)
                    self.assert_code_file_failed(result, source)
        for limit in (size, size + 1):
            with self.subTest(limit=limit, size=size):
                self.assert_code_file_is_whole(self.run_with_limit(limit), source, code)

    def run_with_limit(self, limit, *options):
        set_limit = limit_file_size(limit)
        return self.run_compiler("in.st", "out", "-s", *options, preexec_fn=set_limit)

    def test_small_code(self):
        self.check_limits_around_the_code(VALID_SOURCE)

    def test_code_of_several_blocks(self):
        self.check_limits_around_the_code(LARGE_SOURCE)

    def test_only_the_side_files_are_too_large(self):
        self.source("in.st", LARGE_SOURCE)
        options = (*ALL_SIDE_FILES, "-n")  # the numbers make the listing larger than the code
        expected = self.compiled(LARGE_SOURCE, *options)
        for limit in (len(expected["out"]), len(expected["out"]) + 100):
            with self.subTest(limit=limit):
                self.assertGreater(len(expected["out.lst"]), limit)
                result = self.run_with_limit(limit, *options)
                self.assert_code_file_is_whole(result, LARGE_SOURCE, expected["out"])
                self.assertLessEqual(len(result.files["out.lst"]), limit)
                result_text = without_time(result.files["out.res"])
                self.assertEqual(result_text, without_time(expected["out.res"]))

    def test_signal_is_not_fatal_when_asked_for(self):
        # The signal may arrive blocked or with its default action; neither ends the run.
        def block_and_limit():
            signal.pthread_sigmask(signal.SIG_BLOCK, {signal.SIGXFSZ})
            limit_file_size(1)()

        result = self.run_compiler("in.st", "out", "-s", preexec_fn=block_and_limit)
        self.assert_code_file_failed(result, VALID_SOURCE)


@unittest.skipUnless(IS_ROOT and shutil.which("mount"), "only root mounts a small file system")
class FullFileSystem(FailedWriteTestCase):
    PAGE = os.sysconf("SC_PAGE_SIZE")
    PAGES = 16

    def mount(self, options):
        disk = self.folder / "disk"
        disk.mkdir()
        command = ["mount", "-t", "tmpfs", "-o", options, "tmpfs", str(disk)]
        if subprocess.run(command, stderr=subprocess.DEVNULL).returncode != 0:
            self.skipTest("mounting is not allowed here")
        self.addCleanup(subprocess.run, ["umount", str(disk)], check=True)
        return disk

    def setUp(self):
        super().setUp()
        # Larger than the page that a file takes at the least, smaller than the file system.
        self.data = source_with_statements(1000)
        self.source("in.st", self.data)
        self.code = self.compiled(self.data)["out"]
        self.code_pages = -(-len(self.code) // self.PAGE)
        self.assertLess(2, self.code_pages)
        self.assertLess(self.code_pages, self.PAGES)

    def compile_with_free_pages(self, disk, free, *options):
        for path in disk.iterdir():
            path.unlink()
        (disk / "filler").write_bytes(b"x" * (self.PAGES - free) * self.PAGE)
        result = self.run_compiler("in.st", "disk/out", "-s", *options)
        files = {path.name: path.read_bytes() for path in disk.iterdir()}
        return result._replace(files=files)

    def test_every_amount_of_free_space(self):
        disk = self.mount(f"size={self.PAGES * self.PAGE}")
        for free in range(self.code_pages + 2):
            with self.subTest(free_pages=free, code_pages=self.code_pages):
                result = self.compile_with_free_pages(disk, free)
                if free < self.code_pages:
                    self.assert_code_file_failed(result, self.data)
                else:
                    self.assert_code_file_is_whole(result, self.data, self.code)

    def test_space_for_the_code_alone(self):
        disk = self.mount(f"size={self.PAGES * self.PAGE}")
        result = self.compile_with_free_pages(disk, self.code_pages, *ALL_SIDE_FILES)
        self.assert_code_file_is_whole(result, self.data, self.code)
        self.assertEqual(result.files["out.lst"], b"")

    def test_no_file_may_be_created(self):
        disk = self.mount("nr_inodes=1")
        self.assert_refused(CODE_FAILED, "in.st", "disk/out")
        self.assertEqual(list(disk.iterdir()), [])


# Fails the n-th call, or every call from the n-th on, that concerns a regular file of a folder;
# removes a file when the first file is created, or when a file of a certain name is opened.
INJECTION = r"""
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

static long calls;

static int is_set(const char *name) { return getenv(name) != NULL; }

static int is_output(int fd, char *path, size_t size) {
    char link[64];
    struct stat status;
    const char *folder = getenv("INJECT_FOLDER");
    ssize_t length;
    if (folder == NULL || fstat(fd, &status) != 0 || !S_ISREG(status.st_mode) ||
        (fcntl(fd, F_GETFL) & O_ACCMODE) == O_RDONLY) {
        return 0;
    }
    snprintf(link, sizeof link, "/proc/self/fd/%d", fd);
    length = readlink(link, path, size - 1);
    if (length < 0) {
        return 0;
    }
    path[length] = '\0';
    return strncmp(path, folder, strlen(folder)) == 0;
}

static int must_fail(const char *call, int fd) {
    char path[4096];
    const char *wanted = getenv("INJECT_CALL");
    long at;
    int log;
    if (wanted == NULL || strcmp(wanted, call) != 0 || !is_output(fd, path, sizeof path)) {
        return 0;
    }
    at = atol(getenv("INJECT_AT"));
    ++calls;
    if (calls < at || (calls > at && !is_set("INJECT_FROM_THERE_ON"))) {
        return 0;
    }
    log = (int)syscall(SYS_openat, AT_FDCWD, getenv("INJECT_LOG"),
                       O_WRONLY | O_CREAT | O_APPEND, 0666);
    strcat(path, "\n");
    syscall(SYS_write, log, path, strlen(path));
    syscall(SYS_close, log);
    return 1;
}

ssize_t write(int fd, const void *data, size_t size) {
    ssize_t (*next)(int, const void *, size_t) = dlsym(RTLD_NEXT, "write");
    if (must_fail("write", fd)) {
        errno = ENOSPC;
        return -1;
    }
    return next(fd, data, size);
}

ssize_t writev(int fd, const struct iovec *data, int count) {
    ssize_t (*next)(int, const struct iovec *, int) = dlsym(RTLD_NEXT, "writev");
    if (must_fail("write", fd)) {
        errno = ENOSPC;
        return -1;
    }
    return next(fd, data, count);
}

int close(int fd) {
    int (*next)(int) = dlsym(RTLD_NEXT, "close");
    if (must_fail("close", fd)) {
        next(fd);
        errno = EIO;
        return -1;
    }
    return next(fd);
}

static void before_open(const char *path, int flags) {
    const char *victim = getenv("INJECT_REMOVE");
    const char *opened = getenv("INJECT_REMOVE_WHEN_OPENED");
    const int is_moment = opened != NULL ? strcmp(path, opened) == 0 : (flags & O_CREAT) != 0;
    if (is_moment && victim != NULL) {
        syscall(SYS_unlinkat, AT_FDCWD, victim, 0);
    }
}

static mode_t mode_of(int flags, va_list rest) {
    return (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
}

#define DEFINE_OPEN(name)                                             \
    int name(const char *path, int flags, ...) {                      \
        int (*next)(const char *, int, ...) = dlsym(RTLD_NEXT, #name); \
        mode_t mode;                                                  \
        va_list rest;                                                 \
        va_start(rest, flags);                                        \
        mode = mode_of(flags, rest);                                  \
        va_end(rest);                                                 \
        before_open(path, flags);                                     \
        return next(path, flags, mode);                               \
    }

DEFINE_OPEN(open)
DEFINE_OPEN(open64)
"""


@unittest.skipUnless(shutil.which("cc"), "no C compiler for the failing library")
class InjectedFailure(FailedWriteTestCase):
    MOST_CALLS = 1000

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        tools = tempfile.TemporaryDirectory()
        cls.addClassCleanup(tools.cleanup)
        source = Path(tools.name) / "inject.c"
        source.write_text(INJECTION)
        cls.library = Path(tools.name) / "inject.so"
        options = ["-shared", "-fPIC", "-O1", "-U_FORTIFY_SOURCE"]
        command = ["cc", *options, "-o", cls.library, source, "-ldl"]
        subprocess.run(command, check=True, stderr=subprocess.DEVNULL)
        cls.log = Path(tools.name) / "log"

    def run_injected(self, *options, **settings):
        self.log.unlink(missing_ok=True)
        environment = {
            **os.environ,
            **{f"INJECT_{key}": str(value) for key, value in settings.items()},
            "INJECT_FOLDER": f"{self.folder.resolve()}/",
            "INJECT_LOG": str(self.log),
            "LD_PRELOAD": str(self.library),
        }
        if IS_SANITIZED:
            given = environment.get("ASAN_OPTIONS", "")
            environment["ASAN_OPTIONS"] = f"{given}:verify_asan_link_order=0"
        return self.run_compiler("in.st", "out", "-s", *options, env=environment)

    def hit_files(self):
        """The outputs that a call failed for, in order; the code file has other names before."""
        if not self.log.exists():
            return []
        names = (Path(line).name for line in self.log.read_text().splitlines())
        return [name if name in OUTPUT_NAMES else "out" for name in names]

    def check_every_call(self, source, **settings):
        """Fails each call in turn, until there is none left; returns the files that were hit."""
        self.source("in.st", source)
        expected = self.compiled(source, *ALL_SIDE_FILES)
        all_hits = []
        for at in range(1, self.MOST_CALLS):
            with self.subTest(at=at, **settings):
                result = self.run_injected(*ALL_SIDE_FILES, AT=at, **settings)
                hits = self.hit_files()
                if not hits:
                    break
                self.check_result(result, source, expected, hits)
                all_hits.append(hits[0])
        return all_hits

    def check_result(self, result, source, expected, hits):
        if "out" in hits:
            self.assert_code_file_failed(result, source)
            return
        self.assert_code_file_is_whole(result, source, expected["out"])
        for name in OUTPUT_NAMES[1:]:
            if name not in hits:
                text = without_time(result.files[name])
                self.assertEqual(text, without_time(expected[name]), name)

    def test_every_write_of_a_small_program(self):
        hits = self.check_every_call(SMALL_SOURCE, CALL="write")
        self.assertEqual(set(hits), set(OUTPUT_NAMES))

    def test_every_write_of_a_program_of_several_blocks(self):
        hits = self.check_every_call(LARGE_SOURCE, CALL="write")
        self.assertGreater(hits.count("out"), 1)
        self.assertGreater(hits.count("out.lst"), 1)

    def test_disk_stays_full_from_every_write_on(self):
        hits = self.check_every_call(LARGE_SOURCE, CALL="write", FROM_THERE_ON=1)
        self.assertGreater(hits.count("out"), 1)

    def test_every_close_after_writing(self):
        # A network file system may tell of a full disk only then.
        self.source("in.st", SMALL_SOURCE)
        code = self.compiled(SMALL_SOURCE)["out"]
        hits = []
        for at in range(1, self.MOST_CALLS):
            result = self.run_injected(*ALL_SIDE_FILES, CALL="close", AT=at)
            if not self.hit_files():
                break
            hits += self.hit_files()
            with self.subTest(at=at, hit=hits[-1]):
                # A probe of the name that fails so may refuse it; a success needs whole code.
                if result.status == 0:
                    self.assert_code_file_is_whole(result, SMALL_SOURCE, code)
                else:
                    self.assertEqual(result.status, 1)
                    self.assertNotIn("out", result.files)
        self.assertIn("out", hits)

    def test_close_of_the_written_code_file(self):
        # The last close of the code file is the one after the code.
        self.source("in.st", SMALL_SOURCE)
        results = []
        for at in range(1, self.MOST_CALLS):
            result = self.run_injected(CALL="close", AT=at)
            if not self.hit_files():
                break
            results.append(result)
        self.assert_code_file_failed(results[-1], SMALL_SOURCE)

    def test_source_vanishes_before_it_is_opened(self):
        source = self.folder / "in.st"
        result = self.run_injected(REMOVE=source, REMOVE_WHEN_OPENED="in.st")
        self.assertEqual((result.status, result.files), (1, {}))

    def test_source_vanishes_when_a_file_is_created(self):
        # Either it has been read whole by then, or there is nothing to compile.
        self.source("out", b"old code")
        result = self.run_injected(REMOVE=self.folder / "in.st")
        ends = ((0, self.compiled(VALID_SOURCE)["out"]), (1, b"old code"), (1, None))
        self.assertIn((result.status, result.files.get("out")), ends)


# ---------------------------------------------------------------------------------------------
# Side by side
# ---------------------------------------------------------------------------------------------


class TwoRunsAtOnce(FilesTestCase):
    def test_two_outputs_of_one_source(self):
        self.source("in.st", LARGE_SOURCE)
        expected = self.compiled(LARGE_SOURCE, *ALL_SIDE_FILES)
        processes = [
            subprocess.Popen(
                [BINARY, "in.st", output, *ALL_SIDE_FILES],
                cwd=self.folder,
                stdin=subprocess.DEVNULL,
                stdout=subprocess.DEVNULL,
            )
            for output in ("one", "two", "three", "four")
        ]
        self.assertEqual([process.wait(TIMEOUT_SECONDS) for process in processes], [0, 0, 0, 0])
        for output in ("one", "two", "three", "four"):
            for name in OUTPUT_NAMES:
                path = self.folder / name.replace("out", output)
                with self.subTest(path=path.name):
                    content = without_time(path.read_bytes())
                    self.assertEqual(content, without_time(expected[name]))

    def test_a_failing_run_leaves_its_neighbour_alone(self):
        self.source("in.st", LARGE_SOURCE)
        self.source("wrong.st", LARGE_SOURCE.replace(b"END_PROGRAM", b"a = 1;"))
        expected = self.compiled(LARGE_SOURCE)
        processes = [
            subprocess.Popen(
                [BINARY, source, output],
                cwd=self.folder,
                stdin=subprocess.DEVNULL,
                stdout=subprocess.DEVNULL,
            )
            for source, output in (("in.st", "right"), ("wrong.st", "wrong"))
        ]
        self.assertEqual([process.wait(TIMEOUT_SECONDS) for process in processes], [0, 1])
        self.assertEqual((self.folder / "right").read_bytes(), expected["out"])
        self.assertFalse((self.folder / "wrong").exists())


if __name__ == "__main__":
    unittest.main()
