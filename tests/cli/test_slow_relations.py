"""The relations of test_relations.py over all accepted golden cases and examples."""

import unittest

import test_relations
from corpus import accepted_sources


class AllRelations(test_relations.Relations):
    @staticmethod
    def find_sources():
        return accepted_sources()

    def test_these_are_more_than_the_sample(self):
        self.assertGreater(len(self.sources), 300)


if __name__ == "__main__":
    unittest.main()
