#!/usr/bin/env python3
"""Checks a code file by itself, without its source.

    check_code.py [--user-label NAME]... CODE_FILE...

The code is broken into items and units, and then these must hold:

- every item has one of the forms that the compiler writes;
- every label is defined once and every jump's label is defined, a generated one in its unit;
- every operand is declared in its unit and every callee before its call;
- arguments come off the value stack in the prologue, a function loads its result before RET;
- the value stack is as high on every path that leads to an item, is never popped below the
  unit's own values, and is empty where the unit returns.

A call takes its arguments off the stack. A function that is called as a statement leaves one
value, which the next item drops; in an expression the result stays in the accumulator, and the
next item reads it.

What the language itself leaves open is let through, and only that:

- EXIT inside CASE drops the bounds of the FOR loops around it but no selector, so RET is reached
  with one value for each CASE around it.
- GOTO drops and pushes nothing. A user label is held to the height of the place where it stands,
  one value for each FOR and CASE around it, and so is the jump; the two may differ.
- A user label may be spelled like a generated one. The code does not tell which are, so they are
  told with --user-label: such a label may stand several times and is not followed.
- A declaration with a Boolean value in mixed letter case writes an empty item. A unit may then
  use as many undeclared names as it has empty items.
- A function block that calls itself as its first statement drops a value after that call, which
  the call does not leave; it counts as if it did.
- FOR addresses a control variable that is held by reference with "@" when it tests and steps it.

Arrays have no forms here since none can be declared.
"""

import argparse
import re
import sys
from collections import Counter
from pathlib import Path
from typing import NamedTuple

OPERAND_COUNTS = {
    2: "MOV MOVA ADD SUB MUL DIV MOD POW BAND BOR BXOR SHL SHR ROL ROR"
    " EQ NE LT GT LE GE AND XOR",
    1: "NOT BNOT TST JMP JMPF JMPT CAL EXEC",
    0: "RET",
}
OPERANDS = {word: count for count, words in OPERAND_COUNTS.items() for word in words.split()}

ENGINE_SECTIONS = {"YVG": 1, "YVR": 4}  # with the number of values of a declaration
PROGRAM_SECTIONS = {"V", "VI", "VO", "VG", *ENGINE_SECTIONS}
ARGUMENT_SECTIONS = {"VA", "VR"}
DEFINITION_SECTIONS = {"V", *ARGUMENT_SECTIONS}
VARIABLE_TYPES = {"BOOL", "SINT", "USINT", "INT", "UINT", "DINT", "UDINT", "REAL", "LREAL"}
RESULT_TYPES = VARIABLE_TYPES | {"STRING", "ARRAY"}

MATH_FUNCTIONS = "cos sin tan acos asin atan ceil floor round exp fabs ln log10 sqrt"
REGISTER_TYPES = ("USINT", "UINT", "UDINT", "REAL", "LREAL")
BUILTIN_FUNCTIONS = {
    **{name: 1 for name in MATH_FUNCTIONS.split()},
    "pow": 2,
    "yxGetGV": 1,
    **{"yxGetReg" + typ: 4 for typ in REGISTER_TYPES},
}
BUILTIN_BLOCKS = {"yxSetGV": 2, **{"yxSetReg" + typ: 5 for typ in REGISTER_TYPES}}

# A letter is whatever has an upper-case form among these; a dotless "i" is one too.
CAPITALS = {*"ABCDEFGHIJKLMNOPQRSTUVWXYZ_", *map(chr, range(0x410, 0x430))}
LETTERS = "".join(filter(lambda char: char.upper() in CAPITALS, map(chr, range(0x10000))))
NAME = f"[{LETTERS}][{LETTERS}0-9]*"
NUMBER = r"(?:[0-9]+(?:\.[0-9]+(?:E[+-]?[0-9]*)?)?|16#[0-9A-F]+|8#[0-7]+|2#[01]+)"
FORMS = re.compile(
    "|".join(
        [
            rf"MOV (?:[@^]{NAME}|{NUMBER}|'[^']*'|\*TICK) #A0",
            rf"MOV #A0 (?:[@^]{NAME}|\*TICK|\$PUSH)",
            r"MOV \$POP #(?:A0|R0|NIL)",
            r"MOV #R0 \$PUSH",
            rf"MOVA (?:@{NAME} #A0|#A0 @{NAME})",
            r"(?:ADD|SUB|MUL|DIV|MOD|POW) \$POP #A0",
            r"(?:BAND|BOR|BXOR|SHL|SHR|ROL|ROR) \$POP #A0",
            r"(?:EQ|NE|LT|GT|LE|GE|AND|XOR) \$POP #A0",
            r"(?:NE|LT|GT|LE|GE) #R0 #A0",
            r"SUB 0 #A0|(?:ADD|SUB) 1 #A0|EQ 1 #A0",
            r"(?:NOT|BNOT|TST) #A0",
            rf"JMP {NAME}|JMP[FT] L[0-9]+",
            rf"(?:CAL|EXEC) {NAME}",
            r"RET",
            rf"{NAME}:",
        ]
    )
)
GENERATED_LABEL = re.compile("L[1-9][0-9]*")
READS_ACCUMULATOR = re.compile(r"MOV #A0 .*|SUB 0 #A0|B?NOT #A0|[A-Z]+ \$POP #A0")
TEST = re.compile(
    r"MOV \$POP #R0 \| (?:NE|LT|GT|LE|GE) #R0 #A0 \| TST #A0 \| MOV #R0 \$PUSH \| JMPF L[0-9]+"
)
DROP = "MOV $POP #NIL"
LOAD_RESULT = "MOV @RESULT #A0"


class CodeError(Exception):
    """The code cannot be broken into items and units."""


class Unit:
    """A definition or the program: its name, its declarations and its code, each item a text."""

    def __init__(self, name, is_program):
        self.name = name
        self.is_program = is_program
        self.declarations = []
        self.code = []

    @property
    def is_function(self):
        return any(text.startswith("RESULT ") for text in self.declarations)

    @property
    def declared(self):
        """The fields of each declaration that is not empty."""
        return [text.split(" ") for text in self.declarations if text]

    @property
    def arguments(self):
        return [fields for fields in self.declared if fields[1] in ARGUMENT_SECTIONS]

    def frame(self):
        """The items before the declarations and the one between them and the code."""
        if self.is_program:
            return ["PROG:", self.name, "VAR:"], "MAIN:"
        return [self.name + ":"], "BODY:"

    def items(self):
        head, opening = self.frame()
        return [*head, *self.declarations, opening, *self.code]


class Parser:
    """Breaks the line of code into items by the number of words that each keyword takes."""

    def __init__(self, code):
        if not code.endswith(" "):
            raise CodeError("the code does not end in a blank")
        if "\n" in code or "\r" in code:
            raise CodeError("the code holds a line end")
        # A string constant may hold blanks. An empty item shows as an empty word.
        self.words = re.findall("('[^']*'|[^ ]*) ", code)
        self.pos = 0

    def units(self):
        units = []
        while not units or not units[-1].is_program:
            units.append(self.unit())
        if self.pos < len(self.words):
            raise CodeError(f"{self.word()!r} follows the program")
        return units

    def word(self, ahead=0):
        index = self.pos + ahead
        return self.words[index] if index < len(self.words) else None

    def take(self, count):
        words = self.words[self.pos : self.pos + count]
        if len(words) < count:
            raise CodeError(f"the code ends inside the item {' '.join(words)!r}")
        self.pos += count
        return " ".join(words)

    def at_label(self):
        return self.word() is not None and self.word().endswith(":")

    def at_program(self):
        return self.word() == "PROG:" and self.word(2) == "VAR:"

    def at_definition(self):
        """Tells a definition's entry from a label of code, which instructions follow."""
        is_declared = self.word(2) in DEFINITION_SECTIONS and self.word(3) in RESULT_TYPES
        return self.at_label() and (self.word(1) in ("BODY:", "") or is_declared)

    def unit(self):
        if self.at_program():
            unit = Unit(self.word(1), True)
        elif self.at_definition():
            unit = Unit(self.word()[:-1], False)
        else:
            raise CodeError(f"a definition or the program expected but {self.word()!r} found")
        head, opening = unit.frame()
        self.take(len(head))
        self.read_declarations(unit, opening)
        self.read_code(unit)
        return unit

    def read_declarations(self, unit, opening):
        while self.word() != opening:
            if self.word() is None or self.at_label():
                raise CodeError(f"{opening!r} expected but {self.word()!r} found")
            is_empty = self.word() == ""
            unit.declarations.append(
                self.take(1 if is_empty else 3 + ENGINE_SECTIONS.get(self.word(1), 1))
            )
        self.take(1)

    def read_code(self, unit):
        while self.word() is not None:
            after_return = unit.code and unit.code[-1] == "RET"
            if after_return and (self.at_program() or self.at_definition()):
                return
            if self.at_label():
                unit.code.append(self.take(1))
            elif self.word() in OPERANDS:
                unit.code.append(self.take(1 + OPERANDS[self.word()]))
            else:
                raise CodeError(f"no item begins with {self.word()!r}")


def parse(code):
    return Parser(code).units()


def break_into_items(code):
    return [item for unit in parse(code) for item in unit.items()]


def check_declaration(unit, fields):
    name, section, typ, *values = fields
    is_result = name == "RESULT"
    allowed = PROGRAM_SECTIONS if unit.is_program else DEFINITION_SECTIONS
    if not re.fullmatch(NAME, name):
        yield "not a name"
    if section not in allowed:
        yield "section code of another kind of unit"
    if typ not in (RESULT_TYPES if is_result else VARIABLE_TYPES):
        yield "unknown type"
    if is_result and (unit.is_program or section != "V" or values != ["0"]):
        yield "not the declaration of a result"
    if section in ARGUMENT_SECTIONS and values != ["0"]:
        yield "an argument with a value"
    for value in values:
        if not re.fullmatch("[01]" if typ == "BOOL" else "-?" + NUMBER, value):
            yield f"no value of the type: {value!r}"


def check_forms(unit):
    if not re.fullmatch(NAME, unit.name):
        yield f"{unit.name!r} is no name"
    for fields in unit.declared:
        for problem in check_declaration(unit, fields):
            yield f"{' '.join(fields)!r}: {problem}"
    for item in unit.code:
        if not FORMS.fullmatch(item):
            yield f"{item!r}: no form of an item"


def check_declaration_order(unit):
    names = [fields[0].upper() for fields in unit.declared]
    for name, count in Counter(names).items():
        if count > 1:
            yield f"{name} is declared {count} times"
    if "RESULT" in names[1:]:
        yield "RESULT is not declared first"
    sections = [fields[1] for fields in unit.declared if fields[0] != "RESULT"]
    if any(section in ARGUMENT_SECTIONS for section in sections[len(unit.arguments) :]):
        yield "an argument is declared after a variable"


def check_prologue(unit):
    expected = []
    for name, section, *_ in reversed(unit.arguments):
        expected += ["MOV $POP #A0", f"{'MOVA' if section == 'VR' else 'MOV'} #A0 @{name}"]
    if unit.code[: len(expected)] != expected:
        yield f"the prologue is not {expected}"
    for item in unit.code[len(expected) :]:
        if item.startswith("MOVA #A0 "):
            yield f"{item!r} outside the prologue"


def check_returns(unit):
    if unit.code[-1:] != ["RET"]:
        yield "RET is not the last item"
    if unit.is_function:
        for before, item in zip(["", *unit.code], unit.code):
            if item == "RET" and before != LOAD_RESULT:
                yield "RET without the function's result"


def check_tests(unit):
    """The tests of FOR and CASE put the value back on the stack before they jump."""
    for index, item in enumerate(unit.code):
        test = " | ".join(unit.code[index : index + 5])
        if item == "MOV $POP #R0" and not TEST.fullmatch(test):
            yield f"{test!r}: no test of a loop or case"


def steps_control_variable(code, index):
    """Whether the item loads or stores the control variable in the test or step of a FOR."""
    after = code[index + 1 : index + 3]
    is_step = code[index - 1] if code[index].startswith("MOV #A0 ") else "".join(after[:1])
    is_test = after in (["MOV $POP #R0", "GE #R0 #A0"], ["MOV $POP #R0", "LE #R0 #A0"])
    return is_test or is_step in ("ADD 1 #A0", "SUB 1 #A0")


def check_operands(unit):
    sections = {fields[0].upper(): fields[1] for fields in unit.declared}
    unknown = {}
    for index, item in enumerate(unit.code):
        keyword, *operands = item.split(" ")
        name = next((word for word in operands if word[0] in "@^"), None)
        if name is None or "'" in item:
            continue
        section = sections.get(name[1:].upper())
        if section is None:
            unknown[name[1:].upper()] = item
        elif name[0] == "^" and section != "VR":
            yield f"{item!r}: not held by reference"
        elif name[0] == "@" and section == "VR" and keyword != "MOVA":
            if not steps_control_variable(unit.code, index):
                yield f"{item!r}: held by reference"
    if len(unknown) > unit.declarations.count(""):
        yield f"not declared: {', '.join(map(repr, unknown.values()))}"


class Callees:
    """Arity and kind of what can be called; user definitions are added as they are met."""

    def __init__(self):
        self.functions = {("EXEC", name): arity for name, arity in BUILTIN_FUNCTIONS.items()}
        self.blocks = {("EXEC", name): arity for name, arity in BUILTIN_BLOCKS.items()}

    def add(self, unit):
        known = {name.upper() for _, name in [*self.functions, *self.blocks]}
        if unit.name.upper() in known:
            yield "a callee of that name is there already"
        kind = self.functions if unit.is_function else self.blocks
        kind["CAL", unit.name] = len(unit.arguments)

    def is_function(self, item):
        return tuple(item.split(" ")) in self.functions

    def arity(self, item):
        """None for an item that is no call of a known callee."""
        call = tuple(item.split(" "))
        return self.functions.get(call, self.blocks.get(call))

    def check(self, unit):
        for item, after in zip(unit.code, [*unit.code[1:], ""]):
            if not item.startswith(("CAL ", "EXEC ")):
                continue
            if self.arity(item) is None:
                yield f"{item!r}: unknown callee"
            elif self.is_function(item) and after != DROP:
                if not READS_ACCUMULATOR.fullmatch(after):
                    yield f"{item!r}: the result is neither used nor dropped"


class Region(NamedTuple):
    """The items between which a FOR or CASE keeps a value on the stack."""

    first: int
    last: int
    is_case: bool


class Flow:
    """The way of control through a unit, and how high the value stack is before each item."""

    def __init__(self, unit, callees, user_labels):
        self.code = unit.code
        self.callees = callees
        self.own_call = self.find_own_call(unit)
        self.labels = {}
        for index, item in enumerate(self.code):
            label = item[:-1]
            is_generated = item.endswith(":") and GENERATED_LABEL.fullmatch(label)
            if is_generated and label not in user_labels:
                self.labels[label] = index
        self.regions = [*self.loop_regions(), *self.case_regions()]
        self.heights = [None] * len(self.code)
        self.conflicts = []
        self.links = self.find_links()
        self.settle(0, len(unit.arguments))
        # What follows a jump or RET and is not reached by the language's own jumps begins at a
        # statement.
        for index, height in enumerate(self.heights):
            if height is None:
                self.settle(index, len(self.around(index)))

    def find_own_call(self, unit):
        """The place where a function block calls itself as its first statement, else None."""
        call = f"CAL {unit.name}"
        if unit.is_function or call not in self.code:
            return None
        index = self.code.index(call)
        prologue = 2 * len(unit.arguments)
        stores = re.findall("^MOV #A0 [@^]", "\n".join(self.code[prologue:index]), re.MULTILINE)
        return None if stores else index

    def target(self, index):
        """Where the jump at that place leads; None for a user label and for no jump."""
        item = self.code[index] if 0 <= index < len(self.code) else ""
        keyword, _, label = item.partition(" ")
        return self.labels.get(label) if keyword in ("JMP", "JMPF", "JMPT") else None

    def holds(self, index, *patterns):
        items = self.code[index : index + len(patterns)]
        return len(items) == len(patterns) and all(map(re.fullmatch, patterns, items))

    def loop_regions(self):
        """From the test of each FOR to the drop of its bound."""
        test = [r"MOV \$POP #R0", "[GL]E #R0 #A0", "TST #A0", r"MOV #R0 \$PUSH", "JMPF .*"]
        for index in range(len(self.code)):
            end = self.target(index + 4) if self.holds(index, *test) else None
            if end is not None:
                yield Region(index, end + 1, False)

    def case_regions(self):
        """From the first branch of each CASE to the drop of its selector."""
        test = [r"MOV \$POP #R0", "(NE|GT) #R0 #A0", "TST #A0", r"MOV #R0 \$PUSH", "JMPF .*"]
        starts = {}
        for index in range(len(self.code)):
            branch = self.target(index + 4) if self.holds(index, *test) else None
            next_element = self.target(branch - 1) if branch is not None else None
            end = self.target(next_element - 1) if next_element is not None else None
            if end is not None:
                starts.setdefault(end, branch)
        for end, branch in starts.items():
            yield Region(branch, end + 1, True)

    def around(self, index):
        return [region for region in self.regions if region.first <= index <= region.last]

    def effect(self, index):
        item = self.code[index]
        if "'" in item:
            return 0
        change = item.count("$PUSH") - item.count("$POP") - (self.callees.arity(item) or 0)
        leaves_value = self.callees.is_function(item) or index == self.own_call
        if leaves_value and self.code[index + 1 : index + 2] == [DROP]:
            change += 1
        return change

    def find_links(self):
        """For each item, those with which it shares a path, and how much higher they stand."""
        links = [[] for _ in self.code]
        for index, item in enumerate(self.code):
            followers = [self.target(index)]
            if not item.startswith("JMP ") and item != "RET":
                followers.append(index + 1)
            for follower in followers:
                if follower is not None and follower < len(self.code):
                    links[index].append((follower, self.effect(index)))
                    links[follower].append((index, -self.effect(index)))
        return links

    def settle(self, start, height):
        """Gives every item that is linked with start its height."""
        self.heights[start] = height
        waiting = [start]
        while waiting:
            index = waiting.pop()
            for other, change in self.links[index]:
                expected = self.heights[index] + change
                if self.heights[other] is None:
                    self.heights[other] = expected
                    waiting.append(other)
                elif self.heights[other] != expected:
                    self.conflicts.append((other, {self.heights[other], expected}))

    def check(self):
        for index, heights in self.conflicts:
            low, high = sorted(heights)
            yield f"item {index} {self.code[index]!r}: reached with {low} and with {high} values"
        for region in self.regions:
            if self.code[region.last : region.last + 1] != [DROP]:
                yield f"item {region.last}: no drop ends the loop or case"
        for index, item in enumerate(self.code):
            for problem in self.check_item(index, item):
                yield f"item {index} {item!r}: {problem}"

    def check_item(self, index, item):
        height = self.heights[index]
        pops = 0 if "'" in item else item.count("$POP") + (self.callees.arity(item) or 0)
        if height < pops:
            yield f"takes {pops} of {height} values"
        around = self.around(index)
        if item == "RET":
            # QUIRK: EXIT inside CASE leaves the selectors.
            selectors = sum(region.is_case for region in around)
            if height != selectors:
                yield f"returns with {height} values"
        if self.is_user_label(item) and height != len(around):
            yield f"stands at {height} values inside {len(around)} loops and cases"

    def is_user_label(self, item):
        label = item[:-1] if item.endswith(":") else item[4:] if item[:4] == "JMP " else None
        return label is not None and label not in self.labels


def definitions_of_labels(units):
    return Counter(item[:-1] for unit in units for item in unit.code if item.endswith(":"))


# QUIRK: a user's label may be spelled like a generated one. If both are there, the code does not
# tell which of them a jump means, so that nothing can be said of the ways through it.
def is_ambiguous(units, user_labels):
    defined = definitions_of_labels(units)
    return any(defined[label] > 1 for label in user_labels)


def check_labels(units, user_labels):
    defined = definitions_of_labels(units)
    for label, count in defined.items():
        if count > 1 and label not in user_labels:
            yield f"label {label} is defined {count} times"
    for unit in units:
        own = {item[:-1] for item in unit.code if item.endswith(":")}
        for item in unit.code:
            keyword, _, label = item.partition(" ")
            if keyword not in ("JMP", "JMPF", "JMPT"):
                continue
            # QUIRK: the labels of a user are shared by all units.
            is_shared = not GENERATED_LABEL.fullmatch(label) or label in user_labels
            if label not in (defined if is_shared else own):
                yield f"unit {unit.name}: {item!r}: the label is not defined"


def check_unit(unit, callees):
    if not unit.code:
        yield "no code"
        return
    yield from check_declaration_order(unit)
    yield from check_prologue(unit)
    yield from check_returns(unit)
    yield from check_tests(unit)
    yield from check_operands(unit)
    if not unit.is_program:
        yield from callees.add(unit)
    yield from callees.check(unit)


def check(code, user_labels=frozenset()):
    """The problems of a code text, each a line; user_labels are the user's labels that are
    spelled like generated ones."""
    try:
        units = parse(code)
    except CodeError as error:
        return [str(error)]
    in_unit = "unit {}: {}".format
    problems = [in_unit(unit.name, text) for unit in units for text in check_forms(unit)]
    if problems:
        return problems
    problems += check_labels(units, user_labels)
    callees = Callees()
    for unit in units:
        problems += [in_unit(unit.name, text) for text in check_unit(unit, callees)]
        if unit.code and not is_ambiguous(units, user_labels):
            flow = Flow(unit, callees, user_labels)
            problems += [in_unit(unit.name, text) for text in flow.check()]
    return problems


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--user-label", action="append", default=[], metavar="NAME")
    parser.add_argument("files", type=Path, nargs="+", metavar="CODE_FILE")
    arguments = parser.parse_args()
    user_labels = {label.upper() for label in arguments.user_label}
    failed = False
    for path in arguments.files:
        for problem in check(path.read_bytes().decode(), user_labels):
            failed = True
            print(f"{path}: {problem}")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
