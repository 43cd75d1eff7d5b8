"""Editors find their way in the lines of the gcc format, as they are out of the box."""

import json
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

from samples import REPORTS, TIMEOUT_SECONDS, diagnostics


def messages(shown):
    """File, line, column, level and text of each line that is to be found."""
    for each in diagnostics(shown):
        text = f"{each['message']} [{each['id']}]".replace("\r", "␍").replace("\n", "␊")
        yield each["file"], each["line"], each["column"], each["severity"], text
        for note in each.get("helps", ()):
            yield each["file"], note["line"], note["column"], "note", note["text"]


class EditorTestCase(unittest.TestCase):
    """A folder of its own."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def each_report(self):
        """Puts the lines of each into a file, and gives the messages in them."""
        for name, shown in REPORTS.items():
            (self.folder / "lines").write_text(shown("gcc"), encoding="utf-8")
            with self.subTest(name):
                yield list(messages(shown))

    def run_editor(self, *command):
        subprocess.run(
            command,
            cwd=self.folder,
            env={"HOME": str(self.folder), "PATH": "/usr/bin:/bin", "LC_ALL": "C.UTF-8"},
            stdin=subprocess.DEVNULL,
            capture_output=True,
            check=True,
            timeout=TIMEOUT_SECONDS,
        )
        return json.loads((self.folder / "found").read_text(encoding="utf-8"))


VIM_SCRIPT = """
cgetfile lines
let found = map(getqflist(),
    \\ '[bufname(v:val.bufnr), v:val.lnum, v:val.col, v:val.type, trim(v:val.text)]')
call writefile([json_encode(found)], 'found')
qall!
"""


@unittest.skipUnless(shutil.which("vim"), "no Vim")
class Vim(EditorTestCase):
    def found(self, *commands):
        (self.folder / "script").write_text(VIM_SCRIPT)
        options = [part for command in commands for part in ("-c", command)]
        quietly = ("-es", "-u", "DEFAULTS", "-i", "NONE")
        return self.run_editor("vim", *quietly, *options, "-S", "script")

    def test_default_errorformat(self):
        for expected in self.each_report():
            self.assertEqual(
                self.found(),
                [
                    [file, line, column, "", f"{level}: {text}"]
                    for file, line, column, level, text in expected
                ],
            )

    def test_errorformat_of_gcc(self):
        """It finds errors and warnings as such."""
        for expected in self.each_report():
            self.assertEqual(
                self.found("compiler gcc"),
                [
                    [file, line, column, "", f"note: {text}"]
                    if level == "note"
                    else [file, line, column, level[0], text]
                    for file, line, column, level, text in expected
                ],
            )


EMACS_SCRIPT = """
(require 'compile)
(require 'json)
(with-temp-buffer
  (insert-file-contents "lines")
  (compilation-mode)
  (compilation--ensure-parse (point-max))
  (let (found (at (point-min)))
    (while at
      (let ((message (get-text-property at 'compilation-message)))
        (when message
          (let ((loc (compilation--message->loc message)))
            (push (vector (caar (compilation--loc->file-struct loc))
                          (compilation--loc->line loc)
                          (compilation--loc->col loc)
                          (compilation--message->type message))
                  found))))
      (setq at (next-single-property-change at 'compilation-message)))
    (with-temp-file "found" (insert (json-encode (vconcat (nreverse found)))))))
"""


@unittest.skipUnless(shutil.which("emacs"), "no Emacs")
class Emacs(EditorTestCase):
    def test_compilation_mode(self):
        (self.folder / "script.el").write_text(EMACS_SCRIPT)
        number_of = {"note": 0, "warning": 1, "error": 2}
        for expected in self.each_report():
            self.assertEqual(
                self.run_editor("emacs", "-Q", "--batch", "-l", "script.el"),
                [
                    [file, line, column, number_of[level]]
                    for file, line, column, level, _ in expected
                ],
            )


if __name__ == "__main__":
    unittest.main()
