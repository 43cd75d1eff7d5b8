"""Libraries that the compiler is made to load before all others: they stand between it and the
C library, and do at a certain call what else happens once in many thousand runs.

Their sources and settings stand in tests/cli/preload.
"""

import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

from limits import IS_SANITIZED

SOURCES = Path(__file__).with_name("preload")
C_COMPILER = shutil.which("cc")
C_OPTIONS = ["-shared", "-fPIC", "-O1", "-U_FORTIFY_SOURCE"]

needs_c_compiler = unittest.skipUnless(C_COMPILER, "no C compiler for the library")


class Preload:
    """The library of that name, in a folder of its own."""

    def __init__(self, name):
        self._folder = tempfile.TemporaryDirectory()
        self._prefix = name.upper()
        self._library = Path(self._folder.name) / f"{name}.so"
        command = [C_COMPILER, *C_OPTIONS, "-o", self._library, SOURCES / f"{name}.c", "-ldl"]
        subprocess.run(command, check=True)

    def close(self):
        self._folder.cleanup()

    def environment(self, folder, log, **settings):
        """Of a run in that folder; what the library logs is appended to the file."""
        environment = {
            **os.environ,
            **{f"{self._prefix}_{key}": str(value) for key, value in settings.items()},
            "PRELOAD_FOLDER": f"{Path(folder).resolve()}/",
            "PRELOAD_LOG": str(log),
            "LD_PRELOAD": str(self._library),
        }
        if IS_SANITIZED:
            given = environment.get("ASAN_OPTIONS", "")
            environment["ASAN_OPTIONS"] = f"{given}:verify_asan_link_order=0"
        return environment


def preload_for(test_class, name):
    """The library, for as long as the tests of the class run."""
    library = Preload(name)
    test_class.addClassCleanup(library.close)
    return library
