"""Scripts in the habits of other dialects, and how often check is asked until one is clean.

A folder of `evening` has the rounds of a script: `1_*.st` as an engineer wrote it who knows other
dialects, each next one with what check said of it mended, and nothing else. Beside each stands
what check says. The last one has neither an error nor a warning, also of the lints, so the mends
are one fewer than the files.
"""

import difflib
import json
import re
import unittest
from collections import Counter

from support_desk import FINE, NOT_FINE, ROOT, run_yxst

FOLDER = ROOT / "tests/desk/evening"
SCRIPTS = sorted(each for each in FOLDER.iterdir() if each.is_dir())
MOST_MENDS = 3  # of a script
ALL_MENDS = 14


def reserved_words():
    grammar = (ROOT / "docs/manual/grammar.md").read_text()
    return set(re.findall(r"`(\w+)`", grammar.partition("## Reserved words")[2]))


RESERVED = reserved_words()


def rounds_of(folder):
    return sorted(folder.glob("*.st"))


def check(path, *options):
    return run_yxst("check", *options, path.name, cwd=path.parent)


def findings_of(path):
    return json.loads(check(path, "--format=json").stdout)


# ---------------------------------------------------------------------------------------------
# What findings speak of
# ---------------------------------------------------------------------------------------------


def words_in(text):
    return {word.upper() for word in re.findall(r"[^\W\d]\w*", text)} - RESERVED


def quoted_in(text):
    quotes = re.findall(r"`([^`]*)`|\"([^\"]*)\"", text)
    return words_in(" ".join(map(" ".join, quotes)))


def declared_in(line):
    """The names that a declaration declares."""
    names = re.match(r"\s*([\w, ]+?)\s*(?:\bAT\b.*?)?:(?!=)", line)
    return words_in(names[1]) if names else set()


class Spoken:
    """The lines at which the findings are, and the names that they are about."""

    def __init__(self, lines, findings):
        self.lines = set()
        self.words = set()
        for finding in findings:
            for place in [finding, *finding.get("helps", [])]:
                self.lines.update(range(place["line"] - 1, place["endLine"]))
                self.words |= quoted_in(place.get("message", place.get("text")))
            self.words |= declared_in(lines[finding["line"] - 1])

    def is_in(self, line):
        """Whether the line has one of the names, or one made of it, such as that of an element."""
        words = words_in(line)
        made = {re.sub(r"\d*(_.*)?$", "", word) for word in words}
        return bool((words | made) & self.words)

    def has(self, lines, index):
        is_there = 0 <= index < len(lines)
        return is_there and (index in self.lines or self.is_in(lines[index]))


def without_comment(line):
    return re.sub(r"\(\*.*?\*\)|//.*", "", line)


def is_bare(line):
    """Whether it has no names and no values, such as END_IF; or the label of a CASE."""
    text = re.sub(r"^\s*\d+:", "", without_comment(line))
    return not words_in(text) and not re.search(r"\d|'", text)


def without(lines, others):
    """The lines of which the others have not as many, a moved line being no change."""
    left = Counter(others)
    left.subtract(Counter(lines))
    return {line for line, count in left.items() if count < 0}


def beyond(old, new, findings):
    """The lines that differ although no finding speaks of them."""
    spoken = Spoken(old, findings)
    gone, come = without(old, new), set(new) - set(old)
    matcher = difflib.SequenceMatcher(None, old, new, autojunk=False)
    lines = []
    for _, begin, end, first, last in matcher.get_opcodes():
        is_near = any(spoken.has(old, each) for each in range(begin - 1, end + 1))
        lines += [old[each] for each in range(begin, end)
                  if old[each] in gone and not spoken.has(old, each)]
        lines += [line for line in new[first:last]
                  if line in come and not is_near and not spoken.is_in(line)]
    return [line for line in lines if not is_bare(line)]


# ---------------------------------------------------------------------------------------------
# Rounds
# ---------------------------------------------------------------------------------------------


class Evening(unittest.TestCase):
    def test_scripts_are_there(self):
        self.assertEqual(
            [each.name for each in SCRIPTS], ["alarm", "batch", "pid", "pump", "totaliser"]
        )

    def test_mends_are_few(self):
        mends = 0
        for folder in SCRIPTS:
            with self.subTest(folder.name):
                names = [path.name for path in rounds_of(folder)]
                expected = [f"{each + 1}_{folder.name}.st" for each in range(len(names))]
                self.assertEqual(names, expected)
                self.assertLessEqual(len(names) - 1, MOST_MENDS)
                mends += len(names) - 1
        self.assertLessEqual(mends, ALL_MENDS)

    def test_what_check_says(self):
        for path in (path for folder in SCRIPTS for path in rounds_of(folder)):
            with self.subTest(path.name):
                self.assertEqual(
                    check(path).stdout.decode(), path.with_suffix(".txt").read_text()
                )

    def test_only_the_last_round_is_clean(self):
        for folder in SCRIPTS:
            *others, last = rounds_of(folder)
            with self.subTest(folder.name):
                self.assertTrue(all(findings_of(path) for path in others))
                self.assertEqual(check(others[0]).status, NOT_FINE)
                self.assertEqual((check(last).status, findings_of(last)), (FINE, []))

    def test_nothing_is_mended_beyond_what_check_says(self):
        for folder in SCRIPTS:
            paths = rounds_of(folder)
            for old, new in zip(paths, paths[1:]):
                with self.subTest(new.name):
                    lines = [path.read_text().splitlines() for path in (old, new)]
                    self.assertEqual(beyond(*lines, findings_of(old)), [])


class Beyond(unittest.TestCase):
    """What is mended beyond what check says is found."""

    OLD = ["a : WORD;", "b : INT;", "a := b;", "c := b;", "b := c;", "END_IF;"]
    FINDINGS = [
        {"line": 1, "endLine": 1, "message": 'An unrecognized keyword "WORD"', "helps": []},
    ]

    def beyond(self, *new):
        return beyond(self.OLD, list(new), self.FINDINGS)

    def test_where_the_finding_is_and_what_it_declares(self):
        self.assertEqual(self.beyond("a : UINT;", "b : INT;", "a := b + 1;", *self.OLD[3:]), [])

    def test_a_line_that_no_finding_speaks_of(self):
        self.assertEqual(self.beyond(*self.OLD[:4], "b := d;", "END_IF;"), ["b := c;", "b := d;"])

    def test_a_line_that_is_new(self):
        self.assertEqual(self.beyond(*self.OLD, "c := 1;"), ["c := 1;"])

    def test_a_line_that_is_left_out(self):
        self.assertEqual(self.beyond(*self.OLD[:4], "END_IF;"), ["b := c;"])

    def test_a_line_that_is_moved(self):
        self.assertEqual(self.beyond(self.OLD[0], *self.OLD[2:4], self.OLD[1], *self.OLD[4:]), [])


if __name__ == "__main__":
    unittest.main()
