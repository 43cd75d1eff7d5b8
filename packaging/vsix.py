#!/usr/bin/env python3
"""Packs editors/vscode into a file that VS Code installs.

    vsix.py FILE

A .vsix is a zip with the extension, a manifest that tells editors what it is, and the types of the
files. All that it holds has the date of SOURCE_DATE_EPOCH, else the present one, so that the same
extension gives the same bytes.
"""

import json
import os
import sys
import time
import zipfile
from pathlib import Path
from xml.sax.saxutils import escape

ROOT = Path(__file__).resolve().parents[1]
EXTENSION = ROOT / "editors" / "vscode"

README = "extension/README.md"
LICENCE = "extension/LICENSE.txt"

CONTENT_TYPES = {
    ".json": "application/json",
    ".md": "text/markdown",
    ".txt": "text/plain",
    ".js": "application/javascript",
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
    <Categories>{categories}</Categories>
    <GalleryFlags>Public</GalleryFlags>
    <Properties>
      <Property Id="Microsoft.VisualStudio.Code.Engine" Value="{engine}"/>
      <Property Id="Microsoft.VisualStudio.Services.GitHubFlavoredMarkdown" Value="true"/>
    </Properties>
    <License>{licence}</License>
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
  </Assets>
</PackageManifest>
"""


def manifest(package):
    texts = {key: value for key, value in package.items() if isinstance(value, str)}
    return MANIFEST.format(
        **{key: escape(value, {'"': "&quot;"}) for key, value in texts.items()},
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


def parts():
    """Name in the zip -> bytes."""
    package = json.loads((EXTENSION / "package.json").read_text(encoding="utf-8"))
    found = {"extension.vsixmanifest": manifest(package).encode()}
    for path in sorted(EXTENSION.rglob("*")):
        if path.is_file():
            found[f"extension/{path.relative_to(EXTENSION).as_posix()}"] = path.read_bytes()
    found[LICENCE] = (ROOT / "LICENSE").read_bytes()
    return {"[Content_Types].xml": content_types(found).encode(), **found}


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    date = time.gmtime(int(os.environ.get("SOURCE_DATE_EPOCH", time.time())))[:6]
    with zipfile.ZipFile(sys.argv[1], "w") as archive:
        for name, data in parts().items():
            entry = zipfile.ZipInfo(name, date)
            entry.external_attr = 0o644 << 16
            archive.writestr(entry, data, zipfile.ZIP_DEFLATED)


if __name__ == "__main__":
    main()
