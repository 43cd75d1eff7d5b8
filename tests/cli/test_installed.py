"""What the Debian package holds, without the package: the tree is installed into a folder.

Tests of a package that is installed for real are in scripts/try-package.
"""

import gzip
import os
import re
import shutil
import subprocess
import tempfile
import unittest
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote

from support import BANNER, DESK, ROOT, TIMEOUT_SECONDS
from test_manual import LINK, check_console, find_examples, read_page

BUILD = DESK.parent
VERSION = re.search(r"yxstcmp VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text())[1]
DOCS = "usr/share/doc/yxstcmp"

FILES = f"""
    usr/bin/yxstcmp
    usr/bin/yxst
    usr/share/man/man1/yxstcmp.1.gz
    usr/share/man/man1/yxst.1.gz
    usr/share/bash-completion/completions/yxstcmp
    usr/share/bash-completion/completions/yxst
    usr/share/zsh/vendor-completions/_yxstcmp
    usr/share/zsh/vendor-completions/_yxst
    usr/share/fish/vendor_completions.d/yxstcmp.fish
    usr/share/fish/vendor_completions.d/yxst.fish
    usr/share/vim/vimfiles/ftdetect/yxst.vim
    usr/share/nvim/site/ftdetect/yxst.vim
    usr/share/org.kde.syntax-highlighting/syntax/yxst.xml
    usr/share/doc-base/yxstcmp
    {DOCS}/README.md
    {DOCS}/changelog.gz
    {DOCS}/copyright
    {DOCS}/facts.schema.json
    {DOCS}/html/index.html
    {DOCS}/html/tutorial.html
    {DOCS}/examples/pid_loop.st
""".split()

tree = None  # the folder with all that is installed, which all tests read


def run(*command, **environment):
    result = subprocess.run(
        command,
        env={**os.environ, **environment},
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        encoding="utf-8",
        timeout=TIMEOUT_SECONDS,
    )
    if result.returncode != 0:
        raise AssertionError(result.stdout)


def setUpModule():
    global tree
    folder = tempfile.TemporaryDirectory()
    unittest.addModuleCleanup(folder.cleanup)
    tree = Path(folder.name)
    run("cmake", "--install", BUILD, "--prefix", "/usr", DESTDIR=str(tree))
    run(
        "cmake",
        f"-DCPACK_TEMPORARY_INSTALL_DIRECTORY={tree}",
        f"-DCPACK_PACKAGE_VERSION={VERSION}",
        "-DCPACK_PACKAGE_CONTACT=Nobody <nobody@localhost>",
        "-P",
        ROOT / "packaging" / "complete.cmake",
    )


class References(HTMLParser):
    """What the elements of a page refer to."""

    def __init__(self, text):
        super().__init__()
        self.found = []
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        self.found += [value for name, value in attributes if name in ("href", "src")]


def dead_links(path, links):
    """The links of a file in the tree that lead nowhere in it."""
    local = [link for link in links if not re.match(r"\w+:|#", link)]
    return [
        f"{path.relative_to(tree)}: {link}"
        for link in local
        if not (path.parent / unquote(link.partition("#")[0])).exists()
    ]


class Documents(unittest.TestCase):
    def test_everything_is_there(self):
        self.assertEqual([name for name in FILES if not (tree / name).is_file()], [])
        folders = (tree / DOCS / "examples", ROOT / "examples")
        installed, own = ({path.relative_to(top) for path in top.rglob("*")} for top in folders)
        self.assertEqual(installed, own)

    def test_no_link_is_dead(self):
        readme = tree / DOCS / "README.md"
        links = LINK.findall(readme.read_text(encoding="utf-8"))
        self.assertGreater(len(links), 5)
        dead = dead_links(readme, links)
        pages = list((tree / DOCS / "html").glob("*.html"))
        self.assertGreater(len(pages), 5)
        for page in pages:
            dead += dead_links(page, References(page.read_text(encoding="utf-8")).found)
        self.assertEqual(dead, [])

    def test_a_dead_link_is_found(self):
        page = tree / DOCS / "html" / "index.html"
        links = ["tutorial.html#a", "none.html", "../../none", "#here", "https://localhost"]
        self.assertEqual(len(dead_links(page, links)), 2)

    def test_nothing_is_to_be_built(self):
        for name in ("README.md", "html/tutorial.html"):
            text = (tree / DOCS / name).read_text(encoding="utf-8")
            with self.subTest(page=name):
                self.assertIsNone(re.search(r"cmake -|scripts/\w|\bbuild/yxst", text))

    def test_the_first_steps_do_what_they_show(self):
        text = (tree / DOCS / "README.md").read_text(encoding="utf-8")
        page = read_page("README.md", text.replace("/usr/share", f"{tree}/usr/share"))
        consoles = find_examples(page).consoles
        self.assertEqual(len(consoles), 1)
        with tempfile.TemporaryDirectory() as folder:
            complaints = check_console(consoles[0], Path(folder), tree / "usr" / "bin")
        self.assertEqual([str(each) for each in complaints], [])

    def test_doc_base_finds_the_manual(self):
        text = (tree / "usr/share/doc-base/yxstcmp").read_text(encoding="utf-8")
        parts = [re.findall(r"^(\w+): (.+)", part, re.MULTILINE) for part in text.split("\n\n")]
        about, formats = map(dict, parts)
        self.assertLessEqual({"Document", "Title", "Abstract", "Section"}, set(about))
        self.assertEqual(formats["Format"], "HTML")
        self.assertTrue((tree / formats["Index"].lstrip("/")).is_file())
        self.assertGreater(len(list(tree.glob(formats["Files"].lstrip("/")))), 5)

    def test_manual_pages(self):
        for name in ("yxst", "yxstcmp"):
            page = gzip.decompress((tree / f"usr/share/man/man1/{name}.1.gz").read_bytes())
            self.assertIn(f".Dt {name.upper()} 1\n", page.decode())


class Versions(unittest.TestCase):
    def test_both_are_told(self):
        command = [tree / "usr" / "bin" / "yxst", "--version"]
        shown = subprocess.run(command, capture_output=True, text=True, check=True).stdout
        language = BANNER.decode().strip()
        own = rf"^yxst and yxstcmp {re.escape(VERSION)} \(commit \w+, Qt 5[\d.]+\)"
        self.assertRegex(shown, own)
        self.assertTrue(shown.endswith(f"version of the language: {language}\n"), shown)
        readme = (tree / DOCS / "README.md").read_text(encoding="utf-8")
        self.assertIn(f"`{language}`", readme)


class Editors(unittest.TestCase):
    def assert_recognised(self, *command, **environment):
        if shutil.which(command[0]) is None:
            self.skipTest(f"{command[0]} is not installed")
        with tempfile.TemporaryDirectory() as folder:
            probe = "call writefile([&filetype, b:current_syntax], 'out')"
            subprocess.run(
                [*command, "-n", "a.st", "-c", probe, "-c", "qall!"],
                cwd=folder,
                env={"PATH": "/usr/bin:/bin", "HOME": folder, "TERM": "xterm", **environment},
                stdin=subprocess.DEVNULL,
                capture_output=True,
                timeout=TIMEOUT_SECONDS,
                check=True,
            )
            self.assertEqual(Path(folder, "out").read_text(), "yxst\nyxst\n")

    def test_vim_finds_its_files(self):
        runtime = sorted(Path("/usr/share/vim").glob("vim[0-9]*"))
        if not runtime:
            self.skipTest("no runtime of Vim")
        # The system's settings are part of its defaults, its own folder of files is replaced.
        self.assert_recognised(
            "vim", "--not-a-term", VIM=f"{tree}/usr/share/vim", VIMRUNTIME=str(runtime[-1])
        )

    def test_neovim_finds_its_files(self):
        folders = f"{tree}/usr/share:/usr/local/share:/usr/share"
        self.assert_recognised("nvim", "--headless", XDG_DATA_DIRS=folders)

    def test_all_files_of_vim_are_installed(self):
        source = ROOT / "editors" / "vim"
        names = {path.relative_to(source) for path in source.rglob("*.vim")}
        self.assertGreater(len(names), 4)
        for folder in ("vim/vimfiles", "nvim/site"):
            installed = tree / "usr" / "share" / folder
            found = {path.relative_to(installed) for path in installed.rglob("*.vim")}
            self.assertEqual(found, names)


if __name__ == "__main__":
    unittest.main()
