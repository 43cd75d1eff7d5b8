"""A spreadsheet program opens the tests of the examples and saves them again without damage.

Needs soffice of LibreOffice (libreoffice-calc-nogui), which is not installed for the other tests.
"""

import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

from support_desk import FINE, ROOT, run_yxst

SOFFICE = shutil.which("soffice")
TABLES = sorted((ROOT / "examples").glob("*.test"))
MOST_SECONDS = 300

UTF_8 = 76
ENGLISH, GERMAN = 1033, 1031


def with_decimal_commas(text):
    """The same table with semicolons, as a German spreadsheet writes it."""
    lines = []
    for line in text.splitlines():
        if not line.startswith("#"):
            line = line.replace(",", ";")
        if re.match(r"[0-9<]", line):
            line = re.sub(r"(\d)\.(\d)", r"\1,\2", line)
        lines.append(line)
    return "\n".join(lines) + "\n"


@unittest.skipUnless(SOFFICE, "no LibreOffice")
class Spreadsheet(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def convert(self, target, *options):
        """Converts what the options name into a folder of its own."""
        profile = f"-env:UserInstallation=file://{self.folder}/profile"
        command = [SOFFICE, profile, "--headless", "--convert-to", target, *options]
        subprocess.run(command, capture_output=True, check=True, timeout=MOST_SECONDS)

    def through_the_spreadsheet(self, separator, language, changed):
        tables, saved = self.folder / "tables", self.folder / "saved"
        tables.mkdir()
        saved.mkdir()
        for path in TABLES:
            (tables / f"{path.stem}.csv").write_text(changed(path.read_text()))
            shutil.copy(path.with_suffix(".st"), saved)
        form = f"{ord(separator)},34,{UTF_8},1,,{language}"
        self.convert(
            "ods", f"--infilter=CSV:{form}", "--outdir", tables, *tables.glob("*.csv")
        )
        filters = f"csv:Text - txt - csv (StarCalc):{form},false,true,false"
        self.convert(filters, "--outdir", saved, *tables.glob("*.ods"))
        for path in TABLES:
            (saved / f"{path.stem}.csv").rename(saved / path.name)
        return saved

    def check(self, *arguments):
        saved = self.through_the_spreadsheet(*arguments)
        for path in TABLES:
            self.assertNotEqual((saved / path.name).read_text(), path.read_text())
        run = run_yxst("test", "--quiet", saved)
        self.assertEqual((run.status, run.stdout, run.stderr), (FINE, b"", b""))

    def test_with_commas(self):
        self.check(",", ENGLISH, lambda text: text)

    def test_with_semicolons_and_decimal_commas(self):
        self.check(";", GERMAN, with_decimal_commas)


if __name__ == "__main__":
    unittest.main()
