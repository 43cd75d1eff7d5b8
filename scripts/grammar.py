#!/usr/bin/env python3
"""Collects the grammar of the language into docs/manual/grammar.md.

    grammar.py [--check]

The productions stand in the comments above the parsing functions of qyx_st_cmp/*.cpp, each with
its name at the left; lines that are indented go on with it:

    // CaseLabel = CaseBound [ ".." CaseBound ]

A comment without a name and "=" tells a part of the production of its callers. Every name that is
used must be defined and be reached from the beginning, and what the grammar reserves must be what
the compiler's table of tokens holds.
"""

import argparse
import difflib
import re
import sys
import textwrap
from pathlib import Path
from typing import NamedTuple

import words

ROOT = Path(__file__).resolve().parents[1]
SOURCES = ROOT / "qyx_st_cmp"
PAGE = ROOT / "docs" / "manual" / "grammar.md"

PAGE_WIDTH = 100

# ---------------------------------------------------------------------------------------------
# The text of the page
# ---------------------------------------------------------------------------------------------

INTRODUCTION = """\
# Grammar

The grammar that the compiler follows, one production for each of its parsing functions.
`scripts/grammar` collects it from their comments. The [language reference](language.md)
says what the constructs mean.

| Notation | Meaning |
|---|---|
| `Name = ...` | what a `Name` consists of |
| `IF`, `";"` | this reserved word, this text; capital and small letters are the same |
| `A B` | `A`, then `B` |
| `A \\| B` | `A` or `B` |
| `[ A ]` | `A` or nothing |
| `{ A }` | `A` any number of times, also not at all |
| `( A )` | `A`, as one part |
| `? text ?` | what the text says |
"""


class Section(NamedTuple):
    """A part of the page: what the roots lead to, except for the roots of other sections."""

    title: str
    text: str
    roots: list


SECTIONS = [
    Section(
        "The script",
        "A function or function block without a section of declarations has no statements, but"
        " for one case: the statements of a function may begin with `RESULT`. What stands after"
        " `END_PROGRAM` is not read; a warning tells that it is there.",
        ["Script"],
    ),
    Section(
        "Declarations",
        "`CONSTANT` stands in `VAR` and `VAR_GLOBAL` alone and asks for an initial value."
        " `VAR_ARG` and `VAR_REF` take no initial values and stand before `VAR`."
        " `VAR_YXGLOBAL` takes one engine number, `VAR_YXREGISTER` four."
        " Neither `STRING` nor `ARRAY` can be the type of a variable.",
        ["ProgramSection", "DefinitionSection"],
    ),
    Section(
        "Statements",
        "`RESULT` is a variable in functions alone. `BREAK` and `CONTINUE` stand in loops, but"
        " not in a `CASE` within the loop. The `Integer` of a `CaseBound` has decimal digits"
        " only, also after `16#`.",
        ["Statements"],
    ),
    Section(
        "Expressions",
        "`AND`, `OR` and `XOR` after a `BOOL` are those of `BoolTerm` and `BoolExpression`;"
        " after a number they are those of `BitTerm`. The right operand of most operators is a"
        " whole `MulTerm` or `BoolExpression`, so they group to the right; see the"
        " [surprises](surprises.md). The `Name` of a function that is defined above or built in"
        " begins a `Call`; that of a function block does so in a `CallStatement` alone. A"
        " `Parameter` that is passed by reference is a `Name`, any other is a"
        " `BoolExpression`. No declaration makes an array yet, so no name takes `Indices`.",
        ["BoolExpression", "Expression", "Call", "Indices"],
    ),
    Section(
        "Lexical form",
        "`White` and `Comment` may stand between any two tokens, and `White` separates words; but"
        " no comment may stand before a `Type`, before the name after `PROGRAM`, `FUNCTION` or"
        " `FUNCTION_BLOCK`, or before or within a `CaseLabel` that is a range. A carriage return"
        " counts for nothing, even within a word. Two signs of operators in a row are always one"
        " `Operator`. In a `CaseBound` a `.` ends the number, so that `1..5` is a range. Comments"
        " do not nest. A number has 254 characters at most.",
        ["Token", "Name", "Type", "String", "Number", "Integer", "Comment", "White"],
    ),
]

RESERVED_TEXT = """\
## Reserved words

These are no names: {words}.

The types are {types}; they cannot be names of variables, functions and function blocks either.
"""

# ---------------------------------------------------------------------------------------------
# Productions
# ---------------------------------------------------------------------------------------------


class GrammarError(Exception):
    pass


class Node(NamedTuple):
    """A part of a production.

    kind is "name", "reserved", "text" or "special" with a text, or "sequence", "choice",
    "option", "repetition" or "group" with parts.
    """

    kind: str
    text: str = ""
    parts: tuple = ()


class Production(NamedTuple):
    name: str
    body: Node
    place: str


LEXEME = re.compile(r'\s*(?:("[^"]+")|(\?[^?]+\?)|([A-Z]\w*)|([][{}()|])|(\S))')
BRACKETS = {"[": ("]", "option"), "{": ("}", "repetition"), "(": (")", "group")}


class Parser:
    """Reads the right side of a production."""

    def __init__(self, text):
        self.lexemes = LEXEME.findall(text.strip())
        self.next = 0

    def parse(self):
        node = self.choice()
        if self.next < len(self.lexemes):
            raise GrammarError(f"unexpected {''.join(self.lexemes[self.next])}")
        return node

    def mark(self):
        """The bracket or bar that comes next, if one does."""
        return self.lexemes[self.next][3] if self.next < len(self.lexemes) else ""

    def choice(self):
        parts = [self.sequence()]
        while self.mark() == "|":
            self.next += 1
            parts.append(self.sequence())
        return parts[0] if len(parts) == 1 else Node("choice", parts=tuple(parts))

    def sequence(self):
        parts = []
        while self.next < len(self.lexemes) and self.mark() not in ("|", ")", "]", "}"):
            parts.append(self.item())
        if not parts:
            raise GrammarError("an alternative without parts")
        return parts[0] if len(parts) == 1 else Node("sequence", parts=tuple(parts))

    def item(self):
        quoted, special, word, bracket, other = self.lexemes[self.next]
        self.next += 1
        if bracket:
            return self.bracketed(*BRACKETS[bracket])
        if other:
            raise GrammarError(f"unexpected {other}")
        if quoted:
            return Node("text", quoted[1:-1])
        if special:
            return Node("special", special.strip("? "))
        return Node("reserved" if len(word) > 1 and word.isupper() else "name", word)

    def bracketed(self, end, kind):
        inner = self.choice()
        if self.mark() != end:
            raise GrammarError(f"{end} is missing")
        self.next += 1
        return Node(kind, parts=(inner,))


HEAD = re.compile(r"// ([A-Z]\w*) = (.*)")
CONTINUATION = re.compile(r"//  +(.*)")


def productions_of(path):
    lines = path.read_text(encoding="utf-8").splitlines()
    for index, line in enumerate(lines):
        head = HEAD.match(line)
        if not head:
            continue
        name, text = head.groups()
        for more in map(CONTINUATION.match, lines[index + 1 :]):
            if not more:
                break
            text += " " + more[1]
        place = f"{path.name}:{index + 1}"
        try:
            yield Production(name, Parser(text).parse(), place)
        except GrammarError as error:
            raise GrammarError(f"{place}: {name}: {error}") from None


def collect(folder=SOURCES):
    """The productions of all sources by their names."""
    grammar = {}
    for path in sorted(folder.glob("*.cpp")):
        for production in productions_of(path):
            if production.name in grammar:
                places = f"{grammar[production.name].place} and {production.place}"
                raise GrammarError(f"{production.name} is defined twice: {places}")
            grammar[production.name] = production
    return grammar


def leaves(node):
    if not node.parts:
        yield node
    for part in node.parts:
        yield from leaves(part)


def names_in(production):
    return [leaf.text for leaf in leaves(production.body) if leaf.kind == "name"]


# ---------------------------------------------------------------------------------------------
# Sections
# ---------------------------------------------------------------------------------------------


def section_names(grammar, section):
    """The names of the section, each before those that it uses first."""
    others = {root for other in SECTIONS if other is not section for root in other.roots}
    names = {}

    def visit(name):
        if name in others or name in names or name not in grammar:
            return
        names[name] = None
        for used in names_in(grammar[name]):
            visit(used)

    for root in section.roots:
        visit(root)
    return list(names)


# ---------------------------------------------------------------------------------------------
# What must hold
# ---------------------------------------------------------------------------------------------


def faults(grammar):
    """What is wrong with the grammar as a whole, a line each."""
    defined = set(grammar)
    used = {name: production for production in grammar.values() for name in names_in(production)}
    shown = [name for section in SECTIONS for name in section_names(grammar, section)]
    terminals = [leaf for production in grammar.values() for leaf in leaves(production.body)]
    reserved = {leaf.text for leaf in terminals if leaf.kind == "reserved"}
    texts = {leaf.text for leaf in terminals if leaf.kind in ("reserved", "text")}
    tokens = words.tokens()
    roots = {root for section in SECTIONS for root in section.roots}
    return [
        *(f"{used[name].place}: {name} is not defined" for name in sorted(used.keys() - defined)),
        *(f"{root}, where a section begins, is not defined" for root in sorted(roots - defined)),
        *(f"{grammar[name].place}: {name} is not used" for name in sorted(defined - set(shown))),
        *(f"{name} is in two sections" for name in sorted(set(shown)) if shown.count(name) > 1),
        *(f"{word} is no reserved word" for word in sorted(reserved - set(tokens))),
        *(f"{text} is a token, but no production has it" for text in tokens if text not in texts),
    ]


# ---------------------------------------------------------------------------------------------
# The page
# ---------------------------------------------------------------------------------------------

AROUND = {"option": "[ {} ]", "repetition": "{{ {} }}", "group": "( {} )"}


def written(node):
    if node.kind == "text":
        return f'"{node.text}"'
    if node.kind == "special":
        return f"? {node.text} ?"
    if node.kind in AROUND:
        return AROUND[node.kind].format(written(node.parts[0]))
    if node.parts:
        return (" | " if node.kind == "choice" else " ").join(map(written, node.parts))
    return node.text


def production_lines(production, width):
    """The production, its "=" after `width` characters and its further lines under that."""
    pieces = [production.body]
    if production.body.kind == "choice":
        pieces = production.body.parts
    lines = []
    line = f"{production.name:<{width}} = {written(pieces[0])}"
    for piece in pieces[1:]:
        more = f" | {written(piece)}"
        if len(line + more) > PAGE_WIDTH:
            lines.append(line)
            line = " " * width + more
        else:
            line += more
    return [*lines, line]


def fence(grammar, names):
    width = max(map(len, names))
    lines = [line for name in names for line in production_lines(grammar[name], width)]
    return "\n".join(["```ebnf", *lines, "```"])


def wrapped(text):
    return textwrap.fill(text, PAGE_WIDTH, break_on_hyphens=False)


def listed(names):
    return ", ".join(f"`{name}`" for name in names)


def reserved_words():
    reserved = listed(sorted(words.reserved_words()))
    text = RESERVED_TEXT.format(words=reserved, types=listed(words.types()))
    title, *paragraphs = text.strip().split("\n\n")
    return "\n\n".join([title, *map(wrapped, paragraphs)])


def page(grammar):
    parts = [INTRODUCTION.rstrip()]
    for section in SECTIONS:
        names = section_names(grammar, section)
        parts += [f"## {section.title}", wrapped(section.text), fence(grammar, names)]
    return "\n\n".join([*parts, reserved_words()]) + "\n"


def differences(new):
    old = PAGE.read_text(encoding="utf-8") if PAGE.exists() else ""
    name = str(PAGE.relative_to(ROOT))
    return list(
        difflib.unified_diff(old.splitlines(), new.splitlines(), name, "the sources", lineterm="")
    )


def main():
    parser = argparse.ArgumentParser(prog="grammar", description=__doc__.splitlines()[0])
    parser.add_argument("--check", action="store_true", help="only tell whether it is current")
    arguments = parser.parse_args()
    try:
        grammar = collect()
    except GrammarError as error:
        sys.exit(f"grammar: {error}")
    found = faults(grammar)
    if found:
        sys.exit("\n".join(f"grammar: {fault}" for fault in found))
    new = page(grammar)
    if not arguments.check:
        PAGE.write_text(new, encoding="utf-8")
        return
    changes = differences(new)
    if changes:
        sys.exit("\n".join([*changes, "grammar: the page is not current; run scripts/grammar"]))


if __name__ == "__main__":
    main()
