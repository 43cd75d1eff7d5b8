#!/usr/bin/env python3
"""Builds the extension of editors/vscode and packs it into a file that VS Code installs.

    vsix.py FILE WORK

npm and the bundler work in the folder WORK, which may be kept for the next build; the sources stay
as they are. A .vsix is a zip with the extension, a manifest that tells editors what it is, and the
types of the files. The same sources give the same bytes.
"""

import base64
import json
import re
import shutil
import subprocess
import sys
import zipfile
from pathlib import Path
from xml.sax.saxutils import escape

ROOT = Path(__file__).resolve().parents[1]
EXTENSION = ROOT / "editors" / "vscode"

NPM = "npm"
LOCK_FILE = "package-lock.json"

README = "extension/README.md"
LICENCE = "extension/LICENSE.txt"

CONTENT_TYPES = {
    ".json": "application/json",
    ".md": "text/markdown",
    ".txt": "text/plain",
    ".js": "application/javascript",
    ".png": "image/png",
    ".vsixmanifest": "text/xml",
}

MANIFEST = """\
<?xml version="1.0" encoding="utf-8"?>
<PackageManifest Version="2.0.0"
    xmlns="http://schemas.microsoft.com/developer/vsx-schema/2011"
    xmlns:d="http://schemas.microsoft.com/developer/vsx-schema-design/2011">
  <Metadata>
    <Identity Language="en-US" Id="{name}" Version="{version}" Publisher="{publisher}"/>
    <DisplayName>{displayName}</DisplayName>
    <Description xml:space="preserve">{description}</Description>
    <Tags>{tags}</Tags>
    <Categories>{categories}</Categories>
    <GalleryFlags>Public</GalleryFlags>
    <Properties>
      <Property Id="Microsoft.VisualStudio.Code.Engine" Value="{engine}"/>
      <Property Id="Microsoft.VisualStudio.Code.ExtensionKind" Value="workspace"/>
      <Property Id="Microsoft.VisualStudio.Code.ExecutesCode" Value="true"/>
      <Property Id="Microsoft.VisualStudio.Services.GitHubFlavoredMarkdown" Value="true"/>
    </Properties>
    <License>{licence}</License>
    <Icon>extension/{icon}</Icon>
  </Metadata>
  <Installation>
    <InstallationTarget Id="Microsoft.VisualStudio.Code"/>
  </Installation>
  <Dependencies/>
  <Assets>
    <Asset Type="Microsoft.VisualStudio.Code.Manifest" Path="extension/package.json"
        Addressable="true"/>
    <Asset Type="Microsoft.VisualStudio.Services.Content.Details" Path="{readme}"
        Addressable="true"/>
    <Asset Type="Microsoft.VisualStudio.Services.Content.License" Path="{licence}"
        Addressable="true"/>
    <Asset Type="Microsoft.VisualStudio.Services.Icons.Default" Path="extension/{icon}"
        Addressable="true"/>
  </Assets>
</PackageManifest>
"""


def manifest(package):
    texts = {key: value for key, value in package.items() if isinstance(value, str)}
    return MANIFEST.format(
        **{key: escape(value, {'"': "&quot;"}) for key, value in texts.items()},
        tags=escape(",".join(package["keywords"])),
        categories=escape(",".join(package["categories"])),
        engine=escape(package["engines"]["vscode"]),
        readme=README,
        licence=LICENCE,
    )


def content_types(names):
    """Each suffix of the files with its type; a file of an unknown type is an error."""
    suffixes = sorted({Path(name).suffix for name in names})
    rows = [
        f'<Default Extension="{each}" ContentType="{CONTENT_TYPES[each]}"/>' for each in suffixes
    ]
    return (
        '<?xml version="1.0" encoding="utf-8"?>\n'
        '<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">'
        f"{''.join(rows)}</Types>\n"
    )


def with_pictures(text, folder):
    """The page with its pictures in it: an editor shows no files of an extension there."""

    def embed(match):
        data = base64.b64encode((folder / match[2]).read_bytes()).decode()
        return f"{match[1]}data:image/png;base64,{data})"

    return re.sub(r"(!\[[^\]]*\]\()([\w./-]+\.png)\)", embed, text)


def copy_sources(work):
    """All but what a build leaves beside the sources."""
    for path in EXTENSION.iterdir():
        if path.name in ("node_modules", "out"):
            continue
        if path.is_dir():
            shutil.copytree(path, work / path.name, dirs_exist_ok=True)
        else:
            shutil.copy(path, work)


def install_libraries(work):
    """Those of the lock file, unless they are there."""
    lock = (EXTENSION / LOCK_FILE).read_bytes()
    installed = work / "installed.json"
    if not installed.exists() or installed.read_bytes() != lock:
        run(work, "ci", "--ignore-scripts", "--no-audit", "--no-fund")
        installed.write_bytes(lock)


def run(work, *arguments):
    subprocess.run([NPM, *arguments], cwd=work, check=True, stdout=sys.stderr)


def bundle(work):
    work.mkdir(parents=True, exist_ok=True)
    copy_sources(work)
    install_libraries(work)
    run(work, "run", "--silent", "check")
    run(work, "run", "--silent", "build")


def parts(work):
    """Name in the zip -> bytes."""
    package = json.loads((work / "package.json").read_text(encoding="utf-8"))
    found = {"extension.vsixmanifest": manifest(package).encode()}
    for pattern in package["files"]:
        for path in sorted(work.glob(pattern)):
            found[f"extension/{path.relative_to(work).as_posix()}"] = path.read_bytes()
    found[README] = with_pictures(found[README].decode(), work).encode()
    found[LICENCE] = (ROOT / "LICENSE").read_bytes()
    return {"[Content_Types].xml": content_types(found).encode(), **found}


def pack(file, work):
    with zipfile.ZipFile(file, "w") as archive:
        for name, data in parts(work).items():
            entry = zipfile.ZipInfo(name)
            entry.external_attr = 0o644 << 16
            archive.writestr(entry, data, zipfile.ZIP_DEFLATED)


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    work = Path(sys.argv[2]).resolve()
    bundle(work)
    pack(sys.argv[1], work)


if __name__ == "__main__":
    main()
