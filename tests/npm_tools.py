"""Tools from npm for tests, as the lock file of a folder of tests names them."""

import re
import shutil
import subprocess
import sys

SKIPPED = 77
NO_NETWORK = re.compile(r"\b(ENOTFOUND|EAI_AGAIN|ECONNREFUSED|ENETUNREACH|ETIMEDOUT)\b")

LOCK_FILE = "package-lock.json"
PACKAGE_FILES = ("package.json", LOCK_FILE)


def is_installed(folder, work):
    """Whether the tools that the lock file names were installed completely."""
    copy = work / "installed.json"
    return copy.exists() and copy.read_bytes() == (folder / LOCK_FILE).read_bytes()


def install(folder, work):
    """Installs the tools into the work folder. Ends the test as skipped if npm reaches no registry
    and they are not there yet."""
    if is_installed(folder, work):
        return
    work.mkdir(parents=True, exist_ok=True)
    for name in PACKAGE_FILES:
        shutil.copy(folder / name, work)
    result = subprocess.run(
        ["npm", "ci", "--no-audit", "--no-fund"], cwd=work, capture_output=True, text=True
    )
    if result.returncode != 0:
        print(result.stdout, result.stderr, sep="")
        sys.exit(SKIPPED if NO_NETWORK.search(result.stderr) else 1)
    shutil.copy(folder / LOCK_FILE, work / "installed.json")
