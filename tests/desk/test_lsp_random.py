"""A random session of an editor leaves the language server as a fresh one would be."""

import os
import unittest

from lsp_random import MEMORY_GROWTH, Edit, Session, differences, edited, growth
from lsp_client import text_range

EDITS = int(os.environ.get("YXST_EDITS", "400"))


class RandomSession(unittest.TestCase):
    SEED = 20261122

    @classmethod
    def setUpClass(cls):
        session = Session(cls.SEED)
        with session.client:
            session.run(EDITS)
            cls.different = differences(session)
        cls.session = session

    def test_it_ends_as_a_fresh_server(self):
        self.assertEqual(self.different, [])

    def test_memory_does_not_grow(self):
        self.assertLess(growth(self.session.memory), MEMORY_GROWTH, self.session.memory)

    def test_the_texts_are_those_of_the_protocol(self):
        edit = Edit(text_range((1, 2), (2, 1)), "!")
        self.assertEqual(edited("a\r\n\U0001f600b\ncd", edit), "a\r\n\U0001f600!d")


if __name__ == "__main__":
    unittest.main()
