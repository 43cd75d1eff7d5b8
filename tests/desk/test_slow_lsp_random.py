"""A long random session of an editor leaves the language server as a fresh one would be."""

import os
import unittest

os.environ["YXST_EDITS"] = "10000"
from test_lsp_random import RandomSession  # noqa: E402, F401

if __name__ == "__main__":
    unittest.main()
