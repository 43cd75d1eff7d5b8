"""What docs/manual/many-scripts.md and examples/build tell about many scripts is done here.

The commands are those of the page. GNU parallel reaches this machine under two names, by way of an
sshd that is started for the test, with keys of its own.
"""

import json
import os
import re
import shutil
import socket
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

from support import DESK, ROOT, TIMEOUT_SECONDS
from test_manual import MANUAL, read_page

EXAMPLES = ROOT / "examples" / "build"
PAGE = read_page("many-scripts.md", (MANUAL / "many-scripts.md").read_text(encoding="utf-8"))
INSTALLED = "/usr/share/doc/yxstcmp/examples/build"

RIGHT = "PROGRAM P\nVAR\n    x : INT := 0;\nEND_VAR\n    x := x + 1;\nEND_PROGRAM\n"
WRONG = RIGHT.replace("x + 1", "y + 1")
MESSAGE = re.compile(r"^(?:.*/)?plant/Wrong\.st:5:\d+: error: .+ \[unrecognized-keyword\]$", re.M)

FEW = {"plant/Wrong.st": WRONG, "plant/a.st": RIGHT, "plant/deep/er/b.st": RIGHT}
# The wrong one comes first, and more come after it than are compiled at the same time.
MORE = {f"plant/more/{number}.st": RIGHT for number in range(max(8, os.cpu_count() * 2))}
SCRIPTS = {**FEW, **MORE}
BLANK = {"plant/deep/with a blank.st": RIGHT}


def commands_below(heading):
    """The texts of the sh fences of a section of the page."""
    section = [each.text for each in PAGE.headings].index(heading)
    return [one.text for one in PAGE.fences if one.section == section and one.kind == "sh"]


class Page(unittest.TestCase):
    def test_files_are_shown_as_they_are(self):
        shown = [fence.text for fence in PAGE.fences if fence.kind == "text"]
        files = [path.read_text(encoding="utf-8") for path in EXAMPLES.iterdir()]
        self.assertCountEqual(shown, files)


class PlantTestCase(unittest.TestCase):
    """A folder with scripts of which one is wrong."""

    SCRIPTS = SCRIPTS
    CODE = "code"  # where the code of the folder plant goes

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        for name, text in self.SCRIPTS.items():
            self.write(name, text)

    def write(self, name, text):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")

    def environment(self):
        return {**os.environ, "PATH": f"{DESK.parent}:{os.environ['PATH']}", "LC_ALL": "C"}

    def run_commands(self, text):
        """Status and output of commands of the page."""
        process = subprocess.run(
            ["bash", "-euo", "pipefail", "-c", text.replace(INSTALLED, str(EXAMPLES))],
            cwd=self.folder,
            env=self.environment(),
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            encoding="utf-8",
            timeout=TIMEOUT_SECONDS,
        )
        return process.returncode, process.stdout

    def codes(self):
        """The code files with the times when they were written."""
        top = self.folder / self.CODE
        return {
            str(path.relative_to(top)): path.stat().st_mtime_ns for path in top.rglob("*.yx")
        }

    def expected_codes(self, *others):
        right = [name for name, text in self.SCRIPTS.items() if text == RIGHT]
        return {name.removeprefix("plant/").replace(".st", ".yx") for name in [*right, *others]}

    def check_first_build(self, status, output):
        self.assertNotEqual(status, 0, output)
        self.assertEqual(len(MESSAGE.findall(output)), 1, output)
        self.assertEqual(set(self.codes()), self.expected_codes(), output)


class BuildTests:
    """What every build tool must do; heading is its section of the page."""

    def setUp(self):
        if shutil.which(self.TOOL) is None:
            self.skipTest(f"{self.TOOL} is not installed")
        super().setUp()

    def build(self):
        (commands,) = commands_below(self.HEADING)
        return self.run_commands(commands)

    def test_one_that_fails_stops_no_other(self):
        status, output = self.build()
        self.assertEqual(status, self.STATUS, output)
        self.check_first_build(status, output)

    def test_only_what_has_changed_is_compiled(self):
        self.build()
        before = self.codes()
        time.sleep(0.01)
        self.write("plant/a.st", RIGHT)
        self.write("plant/Wrong.st", RIGHT)
        status, output = self.build()
        self.assertEqual(status, 0, output)
        after = self.codes()
        self.assertEqual(set(after), self.expected_codes("Wrong.yx"))
        changed = {name for name, date in after.items() if date != before.get(name)}
        self.assertEqual(changed, {"a.yx", "Wrong.yx"})

    def test_a_new_script_is_noticed(self):
        self.build()
        self.write("plant/Wrong.st", RIGHT)
        self.write("plant/new/c.st", RIGHT)
        status, output = self.build()
        self.assertEqual(status, 0, output)
        self.assertEqual(set(self.codes()), self.expected_codes("Wrong.yx", "new/c.yx"))


class Make(BuildTests, PlantTestCase):
    TOOL, HEADING, STATUS = "make", "Make", 2

    def test_options(self):
        self.build()
        self.run_commands("make SCRIPTS=plant CODE=listed OPTIONS=-l")
        self.assertTrue((self.folder / "listed" / "a.yx.lst").is_file())


class Ninja(BuildTests, PlantTestCase):
    TOOL, HEADING, STATUS = "ninja", "Ninja", 1
    SCRIPTS = {**SCRIPTS, **BLANK, "plant/a $1: b.st": RIGHT}


class CMake(BuildTests, PlantTestCase):
    TOOL, HEADING, STATUS = "cmake", "CMake", 1
    SCRIPTS = {**SCRIPTS, **BLANK}

    def test_a_new_script_is_noticed_by_the_build_itself(self):
        self.build()
        self.write("plant/new/c.st", RIGHT)
        self.run_commands(commands_below("CMake")[0].splitlines()[-1])
        self.assertEqual(set(self.codes()), self.expected_codes("new/c.yx"))


class Check(PlantTestCase):
    def test_a_folder(self):
        (command,) = commands_below("Many scripts")
        status, output = self.run_commands(command)
        self.assertEqual(status, 1)
        self.assertIn("plant/Wrong.st", output)


class Server(PlantTestCase):
    """The steps of the workflow that are commands of this project."""

    def steps(self):
        text = (EXAMPLES / "github.yml").read_text(encoding="utf-8")
        steps = re.findall(r"^ +run: (yxst .+)$", text, re.MULTILINE)
        self.assertEqual(len(steps), 2)
        return steps

    def check_report(self):
        report = json.loads((self.folder / "yxst.sarif").read_text(encoding="utf-8"))
        self.assertEqual(report["version"], "2.1.0")
        (run,) = report["runs"]
        rules = {result["ruleId"] for result in run["results"]}
        self.assertIn("unrecognized-keyword", rules)

    def test_annotations(self):
        status, output = self.run_commands(self.steps()[0])
        self.assertEqual(status, 1)
        self.assertRegex(output, r"(?m)^::error file=plant/Wrong\.st,line=5,")

    def test_report(self):
        status, output = self.run_commands(self.steps()[1])
        self.assertEqual(status, 0, output)
        self.check_report()
        (command,) = commands_below("A server that builds")
        self.assertEqual(self.run_commands(command)[0], 1)
        self.check_report()

    def test_a_wrong_call_is_no_report(self):
        status, output = self.run_commands(self.steps()[1].replace("plant", "none"))
        self.assertEqual(status, 1, output)


# ---------------------------------------------------------------------------------------------
# Several machines
# ---------------------------------------------------------------------------------------------

SSHD_CONFIG = """\
ListenAddress 127.0.0.1
Port {port}
HostKey {folder}/host
AuthorizedKeysFile {folder}/user.pub
PidFile none
StrictModes no
UsePAM no
PasswordAuthentication no
PermitRootLogin yes
SetEnv PATH={tools}:/usr/local/bin:/usr/bin:/bin
"""

SSH_CONFIG = """\
Host one two
HostName 127.0.0.1
Port {port}
IdentityFile {folder}/user
IdentitiesOnly yes
StrictHostKeyChecking no
UserKnownHostsFile {folder}/known
LogLevel ERROR
"""

SEPARATION = Path("/run/sshd")  # sshd wants it when root runs it


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class SeveralMachines(PlantTestCase):
    SCRIPTS = {**FEW, **BLANK}
    CODE = "code/plant"

    def setUp(self):
        self.sshd = shutil.which("sshd", path="/usr/sbin:/usr/local/sbin")
        tools = ("ssh", "ssh-keygen", "parallel", "rsync")
        missing = [tool for tool in tools if shutil.which(tool) is None]
        if missing or not self.sshd:
            self.skipTest(f"not installed: {' '.join(missing) or 'sshd'}")
        super().setUp()
        self.write("hosts", "one\ntwo\n")
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.keys = Path(folder.name)
        self.start_sshd()

    def start_sshd(self):
        port = free_port()
        for name in ("host", "user"):
            command = ["ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", self.keys / name]
            subprocess.run(command, stdin=subprocess.DEVNULL, check=True)
        values = {"port": port, "folder": self.keys, "tools": DESK.parent}
        (self.keys / "sshd_config").write_text(SSHD_CONFIG.format(**values))
        (self.keys / "ssh_config").write_text(SSH_CONFIG.format(**values))
        if os.geteuid() == 0 and not SEPARATION.exists():
            SEPARATION.mkdir()
            self.addCleanup(SEPARATION.rmdir)
        log = open(self.keys / "log", "w", encoding="utf-8")
        self.addCleanup(log.close)
        process = subprocess.Popen(
            [self.sshd, "-D", "-e", "-f", self.keys / "sshd_config"],
            stdin=subprocess.DEVNULL,
            stdout=log,
            stderr=log,
        )
        self.addCleanup(process.wait)
        self.addCleanup(process.terminate)
        self.wait_for(port, process)

    def wait_for(self, port, process):
        deadline = time.monotonic() + TIMEOUT_SECONDS
        while time.monotonic() < deadline and process.poll() is None:
            with socket.socket() as probe:
                if probe.connect_ex(("127.0.0.1", port)) == 0:
                    return
            time.sleep(0.05)
        self.fail((self.keys / "log").read_text(encoding="utf-8"))

    def environment(self):
        # At home there are no programs of this project: the hosts must have done the work.
        return {
            "PATH": "/usr/local/bin:/usr/bin:/bin",
            "HOME": str(self.keys),
            "LC_ALL": "C.UTF-8",
            "PARALLEL_SSH": f"ssh -F {self.keys}/ssh_config",
        }

    def test_the_work_is_spread(self):
        spread, changed = commands_below("Several machines")
        status, output = self.run_commands(spread)
        self.check_first_build(status, output)
        self.assertEqual(status, 1, output)
        self.assertRegex(output, r"(?m)^plant/Wrong\.st:5:")
        log = (self.keys / "log").read_text(encoding="utf-8")
        self.assertGreaterEqual(log.count("Accepted publickey"), 2, log)

        self.write("plant/Wrong.st", RIGHT)
        self.run_commands(changed)
        self.assertEqual((self.folder / "changed").read_text(), "plant/Wrong.st\n")
        again = spread.replace("parallel ", "parallel -a changed ").partition("|\n")[2]
        status, output = self.run_commands(again)
        self.assertEqual(status, 0, output)
        self.assertEqual(set(self.codes()), self.expected_codes("Wrong.yx"))


if __name__ == "__main__":
    unittest.main()
