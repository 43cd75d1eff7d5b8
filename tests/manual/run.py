#!/usr/bin/env python3
"""Tests the manual as web pages in a headless Chromium, with axe-core for the accessibility.

    run.py [--work FOLDER]

The pages are made in the work folder, by default build/tests/manual, and npm installs the tools
there. Ends with 77, "skipped", without Chromium, pandoc or lunr, and where the tools are not
installed yet and npm reaches no registry.
"""

import argparse
import shutil
import subprocess
import sys
from pathlib import Path

FOLDER = Path(__file__).resolve().parent
ROOT = FOLDER.parents[1]

sys.path[:0] = [str(FOLDER.parent), str(ROOT / "scripts")]
import manual  # noqa: E402
import npm_tools  # noqa: E402

BROWSERS = ("chromium", "chromium-browser", "google-chrome")


def find_browser():
    return next(filter(None, map(shutil.which, BROWSERS)), None)


def skip_without_tools(browser):
    missing = manual.missing_tools() + ([] if browser else ["Chromium"])
    if missing:
        print(f"not installed: {', '.join(missing)}")
        sys.exit(npm_tools.SKIPPED)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--work", type=Path, default=ROOT / "build" / "tests" / "manual")
    work = parser.parse_args().work.resolve()
    browser = find_browser()
    skip_without_tools(browser)
    npm_tools.install(FOLDER, work)
    pages = work / "pages"
    shutil.rmtree(pages, ignore_errors=True)
    manual.write_manual(pages)
    test = shutil.copy(FOLDER / "browser.mjs", work)
    sys.exit(subprocess.run(["node", test, browser, pages], cwd=work).returncode)


if __name__ == "__main__":
    main()
