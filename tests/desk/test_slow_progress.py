"""Long work on many scripts shows how far it has come at a terminal, and leaves nothing there."""

import os
import pty
import re
import subprocess
import tempfile
import unittest
from pathlib import Path

from support_desk import DESK, large_script

SCRIPTS = 60
LINES = 40_000


class ProgressAtATerminal(unittest.TestCase):
    def run_at_terminal(self, *arguments):
        """The status, and what the terminal was sent."""
        leader, terminal = pty.openpty()
        process = subprocess.Popen(
            [DESK, *arguments], stdin=terminal, stdout=terminal, stderr=terminal
        )
        os.close(terminal)
        sent = b""
        try:
            while block := os.read(leader, 4096):
                sent += block
        except OSError:  # the last one who had the terminal has closed it
            pass
        os.close(leader)
        return process.wait(), sent

    def test_progress_is_shown_and_cleared(self):
        with tempfile.TemporaryDirectory() as folder:
            for number in range(SCRIPTS):
                Path(folder, f"{number:02}.st").write_bytes(large_script(LINES))
            status, sent = self.run_at_terminal("check", "--jobs=1", folder)
        self.assertEqual(status, 0)
        counts = [int(count) for count in re.findall(rb"\r(\d+) of 60", sent)]
        self.assertGreater(len(counts), 1)
        self.assertEqual(counts, sorted(counts))
        self.assertTrue(sent.endswith(b"\r\x1b[K"), sent)

    def test_short_work_shows_nothing(self):
        with tempfile.TemporaryDirectory() as folder:
            Path(folder, "a.st").write_bytes(large_script(1))
            self.assertEqual(self.run_at_terminal("check", folder), (0, b""))


if __name__ == "__main__":
    unittest.main()
