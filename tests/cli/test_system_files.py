"""Files that are none: what the system shows of itself under /proc, /sys and /dev, and one file
under two names that no number of it tells."""

import fcntl
import os
import shutil
import signal
import subprocess
import threading
import unittest

from support import BINARY, VALID_SOURCE
from workplace import OLD_CODE, Workplace, read, undisturbed

NEEDS_MOUNTS = "only root mounts in a name space of its own"
CAN_MOUNT = (
    os.geteuid() == 0
    and shutil.which("unshare") is not None
    and subprocess.run(
        ["unshare", "--mount", "mount", "-t", "tmpfs", "tmpfs", "/mnt"], stderr=subprocess.DEVNULL
    ).returncode
    == 0
)

CODE_FAILED = b";File open failed for output file\n"


def run_private(place, script, *arguments):
    """Runs the shell script in a name space of mounts that ends with it; "$1" is the compiler."""
    command = ["unshare", "--mount", "sh", "-euc", script, "sh", BINARY, *arguments]
    return subprocess.run(
        command, cwd=place.path, stdin=subprocess.DEVNULL, capture_output=True, timeout=30
    )


# ---------------------------------------------------------------------------------------------
# Reading
# ---------------------------------------------------------------------------------------------


class SourceOfTheSystem(unittest.TestCase):
    """Their size says nothing about what can be read from them."""

    # A name of the environment that begins a comment, and a program as its value.
    PROGRAM = {"//": "\n" + VALID_SOURCE.decode()}

    def test_program_in_a_file_that_tells_no_size(self):
        with Workplace() as place:
            self.assertEqual(os.stat("/proc/self/environ").st_size, 0)
            self.assertEqual(place.run(source="/proc/self/environ", env=self.PROGRAM), 0)
            self.assertEqual(place.code(), undisturbed(VALID_SOURCE)[0])

    def test_long_program_in_a_file_that_tells_no_size(self):
        padding = "".join(f"// line {number}\n" for number in range(2000))
        program = {"//": "\n" + padding + VALID_SOURCE.decode()}
        with Workplace() as place:
            self.assertEqual(place.run(source="/proc/self/environ", env=program), 0)
            self.assertEqual(place.code(), undisturbed(VALID_SOURCE)[0])

    def test_no_program(self):
        for source in (
            "/proc/self/status",
            "/proc/self/cmdline",
            "/proc/self/mem",
            "/proc/self/attr/exec",
            "/proc/self",
            "/sys/devices/system/cpu/online",
            "/dev/null",
            "/dev/tty",
        ):
            if os.path.exists(source):
                with self.subTest(source=source), Workplace(old_code=OLD_CODE) as place:
                    self.assertEqual(place.run(source=source), 1)
                    self.assertEqual(place.faults({OLD_CODE}), [])

    def test_nobody_writes_into_the_pipe(self):
        with Workplace(old_code=OLD_CODE) as place:
            place.source_file.unlink()
            os.mkfifo(place.source_file)
            self.assertEqual(place.run(), 1)
            self.assertIn(place.code(), (None, OLD_CODE))

    def test_nobody_ends_the_pipe(self):
        with Workplace(old_code=OLD_CODE) as place:
            place.source_file.unlink()
            os.mkfifo(place.source_file)
            end = os.open(place.source_file, os.O_RDWR)
            self.addCleanup(os.close, end)
            os.write(end, VALID_SOURCE)
            self.assertEqual(place.run(), 1)
            self.assertIn(place.code(), (None, OLD_CODE))


# ---------------------------------------------------------------------------------------------
# Writing
# ---------------------------------------------------------------------------------------------


@unittest.skipUnless(CAN_MOUNT, NEEDS_MOUNTS)
class OutputOfTheSystem(unittest.TestCase):
    """The links of /dev belong to the system, and root could remove them."""

    SCRIPT = """
        mount -t tmpfs tmpfs /dev
        mknod -m 666 /dev/null c 1 3
        mknod -m 444 /dev/urandom c 1 9
        mkdir /dev/shm
        for i in 0 1 2; do ln -s /proc/self/fd/$i /dev/fd$i; done
        ln -s /proc/self/fd /dev/fd
        ln -s fd1 /dev/stdout
        echo precious > /dev/file
        ln -s /dev devices
        ls -lR --time-style=full-iso /dev > ../before
        status=0
        "$1" in.st "$2" > ../redirected || status=$?
        ls -lR --time-style=full-iso /dev > ../after
        test ! -e /dev/shm/out || cp /dev/shm/out ../code
        rm devices
        exit $status
    """

    def run_script(self, place, output):
        status = run_private(place, self.SCRIPT, output).returncode
        top = place.path.parent
        return status, *(read(top / name) for name in ("redirected", "before", "after", "code"))

    def test_name_in_the_folder_of_devices(self):
        for output in (
            "/dev/stdout",
            "/dev/fd1",
            "/dev/file",
            "/dev/new",
            "//dev/stdout",
            "/dev/../dev/stdout",
            "/dev/shm/../stdout",
            "devices/stdout",
            "devices/new",
        ):
            with self.subTest(output=output), Workplace() as place:
                status, shown, before, after, _ = self.run_script(place, output)
                self.assertEqual((status, shown, after), (1, CODE_FAILED, before))
                self.assertEqual(place.faults(set()), [])

    def test_name_among_the_processes(self):
        for output in (
            "/proc/self/fd/1",
            "/dev/fd/1",
            "/proc/self/comm",
            "/proc/new",
            "/proc/self/new",
            "/proc/../proc/self/fd/1",
        ):
            with self.subTest(output=output), Workplace() as place:
                status, shown, before, after, _ = self.run_script(place, output)
                self.assertEqual((status, shown, after), (1, CODE_FAILED, before))

    def test_folder_below_the_devices_is_like_others(self):
        with Workplace() as place:
            status, shown, _, _, code = self.run_script(place, "/dev/shm/out")
            self.assertEqual((status, shown, code), (0, b"", undisturbed(place.source)[0]))


# ---------------------------------------------------------------------------------------------
# Two names of one file
# ---------------------------------------------------------------------------------------------


@unittest.skipUnless(CAN_MOUNT, NEEDS_MOUNTS)
class TwoNamesOfTheSource(unittest.TestCase):
    """Whatever the run ends with, the source is still found under the name that was given."""

    BIND_FILE = """
        touch alias; mount --bind in.st alias
        "$1" "$2" "$3" $4 || true
        cp in.st ../kept
    """
    BIND_FOLDER = """
        mkdir here there; cp in.st here; cp in.st here/in.lst; mount --bind here there
        "$1" "$2" "$3" $4 || true
        cp "$2" ../kept
    """
    # The two names differ even in the numbers of device and file. Only the names of the upper
    # folder are given as outputs: the folder below must not be changed while it is laid over.
    OVERLAY = """
        mkdir top; mount -t tmpfs tmpfs top; mkdir top/low top/here top/work top/there
        cp in.st top/here; cp in.st top/here/in.lst
        mount -t overlay -o lowerdir=top/low,upperdir=top/here,workdir=top/work none top/there ||
            exit 77
        "$1" "$2" "$3" $4 || true
        cp "$2" ../kept
    """

    def assert_kept(self, script, source, output, options=""):
        with self.subTest(source=source, output=output), Workplace() as place:
            run = run_private(place, script, source, output, options)
            if run.returncode == 77:
                self.skipTest("no overlay here")
            self.assertEqual(run.returncode, 0, run.stderr)
            self.assertEqual(read(place.path.parent / "kept"), place.source)

    def test_file_mounted_on_a_file(self):
        self.assert_kept(self.BIND_FILE, "in.st", "alias")
        self.assert_kept(self.BIND_FILE, "alias", "in.st")

    def test_folder_mounted_on_a_folder(self):
        for source, output in (("here", "there"), ("there", "here")):
            self.assert_kept(self.BIND_FOLDER, f"{source}/in.st", f"{output}/in.st")
            self.assert_kept(self.BIND_FOLDER, f"{source}/in.lst", f"{output}/in", "-l")

    def test_folder_laid_over_a_folder(self):
        self.assert_kept(self.OVERLAY, "top/here/in.st", "top/there/in.st")
        self.assert_kept(self.OVERLAY, "top/here/in.lst", "top/there/in", "-l")


class LeasedSource(unittest.TestCase):
    """Who serves a file to others may hold it for a moment; it is waited for."""

    SECONDS = 0.3

    def test_source_is_waited_for(self):
        with Workplace() as place:
            with (place.path / "in.st").open("rb+") as held:
                # The system asks by a signal to let go, which the timer does anyway.
                before = signal.signal(signal.SIGIO, signal.SIG_IGN)
                self.addCleanup(signal.signal, signal.SIGIO, before)
                try:
                    fcntl.fcntl(held, fcntl.F_SETLEASE, fcntl.F_WRLCK)
                except OSError as error:
                    self.skipTest(f"no lease: {error}")
                letting_go = threading.Timer(
                    self.SECONDS, lambda: fcntl.fcntl(held, fcntl.F_SETLEASE, fcntl.F_UNLCK)
                )
                letting_go.start()
                self.assertEqual(place.run(), 0)
                letting_go.join()


if __name__ == "__main__":
    unittest.main()
