"""A long random session of an editor leaves the language server as a fresh one would be."""

import os
import unittest

os.environ["YXST_EDITS"] = "10000"
import test_lsp_random  # noqa: E402
from lsp_random import LONGEST_ANSWER  # noqa: E402


class LongSession(test_lsp_random.RandomSession):
    def test_no_answer_takes_long(self):
        self.assertLess(self.session.slowest, LONGEST_ANSWER)


if __name__ == "__main__":
    unittest.main()
