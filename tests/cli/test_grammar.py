"""The grammar of the manual: it is complete and current, and every accepted script follows it."""

import os
import subprocess
import sys
import unittest

from corpus import accepted_sources
from support import ROOT, words
from test_relations import tokenize

sys.path.insert(0, str(ROOT / "scripts"))
import grammar as collector  # noqa: E402

GRAMMAR = collector.collect()
RESERVED = set(words.reserved_words())

# ---------------------------------------------------------------------------------------------
# Following the grammar
# ---------------------------------------------------------------------------------------------


def is_name(token):
    return token.kind == "name" and token.word not in RESERVED


# What the productions of the lexical form are among the tokens.
LEXICAL = {
    "Name": is_name,
    "Type": lambda token: is_name(token) and token.text.upper().isascii(),
    "String": lambda token: token.kind == "string",
    "Number": lambda token: token.kind == "number",
    "Integer": lambda token: token.kind == "number" and "." not in token.text,
}


class Reading:
    """The tokens of a source, and how far each part of the grammar can read them from a place."""

    def __init__(self, data):
        tokens = tokenize(data)[:-1]  # the last is what stands after the program
        self.tokens = [token for token in tokens if token.kind not in ("blank", "comment")]
        self.known = {}

    def is_script(self):
        return len(self.tokens) in self.name_ends("Script", 0)

    def name_ends(self, name, place):
        if name in LEXICAL:
            return self.token_ends(LEXICAL[name], place)
        return self.ends(GRAMMAR[name].body, place)

    def token_ends(self, matches, place):
        is_there = place < len(self.tokens) and matches(self.tokens[place])
        return {place + 1} if is_there else set()

    def ends(self, node, place):
        key = (node, place)
        if key not in self.known:
            self.known[key] = self.KINDS[node.kind](self, node, place)
        return self.known[key]

    def reserved_ends(self, node, place):
        return self.token_ends(lambda token: token.word == node.text, place)

    def text_ends(self, node, place):
        return self.token_ends(lambda token: token.text == node.text, place)

    def sequence_ends(self, node, place):
        places = {place}
        for part in node.parts:
            places = {end for begin in places for end in self.ends(part, begin)}
        return places

    def choice_ends(self, node, place):
        return {end for part in node.parts for end in self.ends(part, place)}

    def group_ends(self, node, place):
        return self.ends(node.parts[0], place)

    def option_ends(self, node, place):
        return {place} | self.ends(node.parts[0], place)

    def repetition_ends(self, node, place):
        reached = {place}
        latest = {place}
        while latest:
            ends = {end for begin in latest for end in self.ends(node.parts[0], begin)}
            latest = ends - reached
            reached |= latest
        return reached

    def named_ends(self, node, place):
        return self.name_ends(node.text, place)

    KINDS = {
        "name": named_ends,
        "reserved": reserved_ends,
        "text": text_ends,
        "sequence": sequence_ends,
        "choice": choice_ends,
        "group": group_ends,
        "option": option_ends,
        "repetition": repetition_ends,
    }


FRAME = "FUNCTION f : INT VAR_ARG a : INT; END_VAR RESULT := a; END_FUNCTION\n"
FRAME += "PROGRAM p VAR x : INT; END_VAR; {} END_PROGRAM\n"

STATEMENTS = ("", ";;", "x := f(1);", "l: GOTO l;", "CASE x OF 1..5, -2: END_CASE;")
NO_STATEMENTS = (
    "x := 1",
    "x := ;",
    "x = 1;",
    "x := 1 +- 2;",
    "x := 1 + * 2;",
    "x := a < b < c;",
    "x := 1; VAR y : INT; END_VAR",
    "BREAK",
    "GOTO 1;",
    "IF x THEN END_IF",
    "CASE x OF END_CASE;",
    "CASE x OF 1.5: END_CASE;",
    "FOR RESULT := 1 TO 2 DO END_FOR;",
)


def is_script(statements):
    return Reading(FRAME.format(statements).encode()).is_script()


class Following(unittest.TestCase):
    def test_every_accepted_source(self):
        sources = accepted_sources()
        self.assertGreater(len(sources), 300)
        for source in sources:
            with self.subTest(source=source.name):
                self.assertTrue(Reading(source.data).is_script())

    def test_statements(self):
        for statements in STATEMENTS:
            with self.subTest(statements=statements):
                self.assertTrue(is_script(statements))

    def test_what_is_no_statement(self):
        for statements in NO_STATEMENTS:
            with self.subTest(statements=statements):
                self.assertFalse(is_script(statements))


# ---------------------------------------------------------------------------------------------
# The page
# ---------------------------------------------------------------------------------------------


def run_script(*arguments):
    return subprocess.run(
        [ROOT / "scripts/grammar", *arguments],
        env={**os.environ, "YXST_WORDS": str(words.PROGRAM)},
        capture_output=True,
        text=True,
        check=False,
    )


class Page(unittest.TestCase):
    def test_it_is_current(self):
        result = run_script("--check")
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "", ""))

    def test_every_production_is_on_it_once(self):
        lines = collector.PAGE.read_text(encoding="utf-8").splitlines()
        names = [line.split()[0] for line in lines if line.split()[1:2] == ["="]]
        self.assertEqual(sorted(names), sorted(GRAMMAR))

    def test_no_line_is_too_long(self):
        lines = collector.PAGE.read_text(encoding="utf-8").splitlines()
        self.assertEqual([line for line in lines if len(line) > collector.PAGE_WIDTH], [])


class Completeness(unittest.TestCase):
    def test_nothing_is_at_fault(self):
        self.assertEqual(collector.faults(GRAMMAR), [])

    def test_every_name_is_defined(self):
        used = {name for each in GRAMMAR.values() for name in collector.names_in(each)}
        self.assertEqual(sorted(used - GRAMMAR.keys()), [])

    def test_missing_production_is_a_fault(self):
        grammar = {name: each for name, each in GRAMMAR.items() if name != "Indices"}
        self.assertIn("Indices is not defined", "\n".join(collector.faults(grammar)))

    def test_production_that_nothing_uses_is_a_fault(self):
        grammar = {**GRAMMAR, "Spare": GRAMMAR["Exit"]._replace(name="Spare")}
        self.assertIn("Spare is not used", "\n".join(collector.faults(grammar)))

    def test_token_that_no_production_has_is_a_fault(self):
        grammar = {**GRAMMAR, "GoTo": GRAMMAR["Exit"]}
        self.assertEqual(
            collector.faults(grammar), ["GOTO is a token, but no production has it"]
        )

    def test_unknown_reserved_word_is_a_fault(self):
        body = collector.Parser('EXIT LOOP ";"').parse()
        grammar = {**GRAMMAR, "Exit": GRAMMAR["Exit"]._replace(body=body)}
        self.assertEqual(collector.faults(grammar), ["LOOP is no reserved word"])

    def test_damaged_productions_are_refused(self):
        for text in ("", "A |", "[ A", "A ]", "( A }", "name", '"open', "A, B"):
            with self.subTest(text=text), self.assertRaises(collector.GrammarError):
                collector.Parser(text).parse()


if __name__ == "__main__":
    unittest.main()
