"""Generates programs that compile and end, with inputs that change from cycle to cycle.

    generate.py [COUNT] [--seed SEED] [--into FOLDER] [--inputs] [--constructs]

prints the programs, or writes them to FOLDER, each with its inputs beside it if these are wanted.
`--constructs` prints how many of the programs hold each construct instead.

Loops are bounded by how they are made. What ends a run, as a division by 0 or a real that does not
fit an integer, is made rarely on purpose; the rest of the programs run all their cycles.
"""

import argparse
import csv
import io
from collections import Counter
from pathlib import Path
from random import Random
from typing import NamedTuple

import script
from operations import number_of

SIGNED = ("SINT", "INT", "DINT")
UNSIGNED = ("USINT", "UINT", "UDINT")
INTEGERS = (*SIGNED, *UNSIGNED)
REALS = ("REAL", "LREAL")
ALL_TYPES = ("BOOL", *INTEGERS, *REALS)
ENDS = {
    "SINT": (-128, 127),
    "USINT": (0, 255),
    "INT": (-32768, 32767),
    "UINT": (0, 65535),
    "DINT": (-2147483648, 2147483647),
    "UDINT": (0, 4294967295),
}

SMALL_NUMBERS = "0 1 2 3 5 7 10 42 100".split()
EDGE_NUMBERS = """127 128 255 256 32767 32768 65535 65536 2147483647 2147483648 4294967295
    16#7F 16#ff 16#8000 16#FFFF 16#7fffffff 16#80000000 16#FFFFFFFF 8#17 8#377 8#7777
    2#101 2#11111111 2#1000000000000000 007""".split()
SMALL_REALS = "0.0 0.5 1.0 1.5 2.5 .25 3. 0.1 10.0 1.5E-3 100.25".split()
EDGE_REALS = """16777217.0 2147483648.5 3.4E38 3.5E38 1.0e300 1.0E-40 1.0E-320 4294967295.5
    123456789.123456789 9007199254740993.0 1.0e10 0.30000001""".split()
REAL_BUILT_INS = [name.lower() for name in script.MATHEMATICS]

MOST_COST = 500  # statements of a cycle, by estimate
RARELY = 0.01  # what may end the run
FEWEST_LINES, MOST_LINES = 10, 80
OTHER_NAMES = ["Level", "speed", "Count_2", "total", "Уровень", "x", "Y1", "flag", "mode_", "t"]


class Generated(NamedTuple):
    source: str
    inputs: str  # CSV
    cycles: int
    tick: int


class Slot(NamedTuple):
    """A variable of a unit."""

    name: str
    type: str
    section: str
    initial: str = ""
    numbers: str = ""
    is_kept: bool = False  # nothing but its own statement may assign it

    def declared(self):
        constant = "CONSTANT " if self.initial and self.is_kept else ""
        initial = f" := {self.initial}" if self.initial else ""
        return f"    {constant}{self.name} : {self.type}{self.numbers}{initial};"


class Definition(NamedTuple):
    name: str
    result: str  # empty for a function block
    parameters: list
    lines: list
    cost: int


class Place(NamedTuple):
    """Where a statement stands."""

    indent: str
    depth: int
    is_in_loop: bool = False
    loops: int = 0  # FOR statements around it
    is_in_case: bool = False


def generate(seed):
    """A program, always the same for a seed."""
    random = Random(seed)
    while True:
        program = ProgramMaker(random).program()
        if FEWEST_LINES <= program.source.count("\n") <= MOST_LINES:
            return program


class Unit:
    """The names of one unit, and how much its statements cost."""

    def __init__(self, random, result=""):
        self.random = random
        self.result = result
        self.slots = []
        self.cost = 0
        self.weight = 1  # how often the place is reached, by estimate
        self._names = random.sample(OTHER_NAMES, len(OTHER_NAMES))

    def add(self, type_name, section="VAR", **more):
        number = len(self.slots)
        name = self._names.pop() if self._names else f"v{number}"
        name += str(number) if number % 3 else ""
        self.slots.append(Slot(name, type_name, section, **more))
        return self.slots[-1]

    def readable(self, types):
        names = [slot.name for slot in self.slots if slot.type in types]
        return names + ["RESULT"] * (self.result in types)

    def assignable(self, types):
        names = [slot.name for slot in self.slots if slot.type in types and not slot.is_kept]
        return names + ["RESULT"] * (self.result in types)

    def referable(self, type_name):
        return [one.name for one in self.slots if one.type == type_name and not one.is_kept]

    def type_of(self, name):
        return next((slot.type for slot in self.slots if slot.name == name), self.result)

    def sections(self, *names):
        lines = []
        for name in names:
            slots = [slot for slot in self.slots if slot.section == name]
            if slots or name == "VAR":
                lines += [name, *(slot.declared() for slot in slots), "END_VAR"]
        return lines


class Expressions:
    """Expressions of numbers and of truth values, over the names of a unit."""

    def __init__(self, random, definitions):
        self.random = random
        self.definitions = definitions
        self.unit = None

    def chance(self, share):
        return self.random.random() < share

    def pick(self, choices):
        return self.random.choice(choices)

    def spelled(self, name):
        """Letter case counts for nothing."""
        if self.chance(0.9):
            return name
        return self.pick([name.upper(), name.lower(), name.swapcase()])

    def name_of(self, types):
        names = self.unit.readable(types)
        return self.spelled(self.pick(names)) if names else None

    # --- calls ---

    def callable_functions(self, types):
        room = MOST_COST - self.unit.cost
        return [
            one
            for one in self.definitions
            if one.result in types and one.cost * self.unit.weight < room
        ]

    def call(self, definition, depth):
        self.unit.cost += definition.cost * self.unit.weight
        arguments = [self.argument(slot, depth) for slot in definition.parameters]
        if None in arguments:
            return None
        name = self.spelled(definition.name)
        return f"{name}({', '.join(arguments)})" if arguments or self.chance(0.5) else name

    def argument(self, slot, depth):
        if slot.section == "VAR_REF":
            names = self.unit.referable(slot.type)
            return self.spelled(self.pick(names)) if names else None
        return self.of_type(slot.type, depth - 1, is_strict=True)

    def call_of(self, types, depth):
        functions = self.callable_functions(types)
        if depth <= 0 or not functions or self.chance(0.5):
            return None
        return self.call(self.pick(functions), depth)

    def of_type(self, type_name, depth, is_strict=False):
        if type_name == "BOOL":
            return self.truth(depth)
        if type_name in INTEGERS:
            return self.whole(depth)
        if type_name == "REAL" and not is_strict and self.chance(0.03):
            return self.name_of(["BOOL"]) or self.real(depth)
        return self.whole(depth) if self.chance(0.2) else self.real(depth)

    # --- whole numbers ---

    def whole_number(self):
        return self.pick(EDGE_NUMBERS if self.chance(0.3) else SMALL_NUMBERS)

    def whole_operand(self, depth):
        drawn = self.random.random()
        if depth > 0 and drawn < 0.2:
            return self.pick(["({})", "({})", "(NOT {})"]).format(self.whole(depth - 1))
        if drawn < 0.25:
            return "TICK" if self.chance(0.5) else f"-{self.whole_atom(depth)}"
        return self.whole_atom(depth)

    def whole_atom(self, depth):
        if self.chance(0.03):
            return self.register_read()
        if self.chance(0.3):
            return self.whole_number()
        return self.call_of(INTEGERS, depth) or self.name_of(INTEGERS) or self.whole_number()

    def register_read(self):
        type_name, word = self.pick(
            [("USINT", 5), ("UINT", 5), ("UINT", 4), ("UDINT", 4), ("UDINT", 5), ("UDINT", 8)]
        )
        return f"yxGetReg{type_name}(1, 2, 3, {word})"

    def not_zero(self, depth):
        if self.chance(RARELY * 2):
            return self.whole_operand(depth)
        guarded = f"({self.whole_atom(0)} AND {self.pick('137')} + 1)"
        return guarded if self.chance(0.5) else self.pick(["2", "3", "-7", "10", "255", "65536"])

    def exponent(self, depth):
        if self.chance(RARELY):
            return self.whole_operand(depth)
        return self.pick(["2", "3", "0", "9", "62", "65", f"({self.whole_atom(0)} AND 7)"])

    def whole(self, depth):
        """A chain of operators of any level; the right operand of one that must not be 0 ends
        where a sum goes on."""
        text = self.whole_operand(depth)
        must_add = False
        for _ in range(self.random.choice([0, 1, 1, 2, 3])):
            operator = self.whole_operator(must_add)
            must_add = operator in ("/", "MOD", "**")
            text += f" {operator} {self.right_whole(operator, depth - 1)}"
        return text

    def whole_operator(self, must_add):
        others = "* * / MOD AND OR XOR SHL SHR ROL ROR **".split()
        return self.pick("+-") if must_add or self.chance(0.4) else self.pick(others)

    def right_whole(self, operator, depth):
        if operator in ("/", "MOD"):
            return self.not_zero(depth)
        if operator == "**":
            return self.exponent(depth)
        if operator in ("SHL", "SHR", "ROL", "ROR") and self.chance(0.7):
            return self.pick("0 1 2 4 7 8 15 16 31 32 63 64 -1".split())
        return self.whole_operand(depth)

    # --- reals ---

    def real_number(self):
        return self.pick(EDGE_REALS if self.chance(0.2) else SMALL_REALS)

    def real_operand(self, depth):
        drawn = self.random.random()
        if depth > 0 and drawn < 0.15:
            return f"({self.real(depth - 1)})"
        if depth > 0 and drawn < 0.35:
            return self.mathematics(depth - 1)
        return f"-{self.real_atom(depth)}" if drawn < 0.42 else self.real_atom(depth)

    def mathematics(self, depth):
        if self.chance(0.15):
            return f"pow({self.real(depth)}, {self.real(0)})"
        if self.chance(0.1):
            return f"yxGetGV({self.pick('1234')})"
        if self.chance(0.1):
            return f"yxGetReg{self.pick(REALS)}(1, 2, 3, {self.pick('67')})"
        return f"{self.spelled(self.pick(REAL_BUILT_INS))}({self.real(depth)})"

    def real_atom(self, depth):
        if self.chance(0.25):
            return self.real_number()
        return self.call_of(REALS, depth) or self.name_of(REALS) or self.real_number()

    def real(self, depth):
        """Begins with a real; so does what is a divisor or an exponent, as it takes in all that
        follows."""
        text = self.real_operand(depth)
        for _ in range(self.random.choice([0, 1, 1, 2])):
            operator = self.pick("+ - * * / / **".split())
            is_real = operator in ("/", "**") or self.chance(0.6)
            right = self.real_operand(depth - 1) if is_real else self.whole_atom(depth - 1)
            text += f" {operator} {right}"
        return text

    # --- truth values ---

    def comparison(self, depth):
        operator = self.pick(["=", "<>", "<", ">", "<=", ">="])
        if self.chance(0.05):
            return f"{self.whole_atom(depth)} {operator} {self.pick(['TRUE', 'false'])}"
        if self.chance(0.1):
            left, right = self.name_of(["BOOL"]), self.name_of(["BOOL"])
            return f"{left} {operator} {right}" if left else self.comparison(depth)
        if self.chance(0.3):
            return f"{self.real(depth)} {operator} {self.of_type('LREAL', depth)}"
        return f"{self.whole(depth)} {operator} {self.whole(depth)}"

    def truth_atom(self):
        name = self.name_of(["BOOL"])
        if name and self.chance(0.03):
            return f"-{name}"
        form = self.pick(["{}", "{}", "NOT {}"])
        return form.format(name or self.pick(["TRUE", "FALSE"]))

    def truth_operand(self, depth):
        drawn = self.random.random()
        if depth <= 0 or drawn < 0.4:
            return self.truth_atom()
        if drawn < 0.5:
            return self.call_of(["BOOL"], depth) or self.pick(["TRUE", "FALSE", "NOT true"])
        inner = self.truth(depth - 1) if drawn < 0.65 else self.comparison(depth - 1)
        return self.pick(["({})", "({})", "NOT ({})"]).format(inner)

    def truth(self, depth):
        """A comparison needs no parentheses where no operator of truth values follows."""
        operands = [self.truth_operand(depth) for _ in range(self.random.choice([0, 0, 1, 2, 2]))]
        last = self.comparison(depth - 1) if self.chance(0.5) else self.truth_operand(depth)
        parts = [f"{one} {self.pick(['AND', 'OR', 'XOR'])} " for one in operands]
        return "".join(parts) + last


class Statements(Expressions):
    """Statements, each as lines."""

    def __init__(self, random, definitions, labels):
        super().__init__(random, definitions)
        self.labels = labels  # of the whole script

    def new_label(self):
        self.labels.append(f"{self.pick(['again', 'Skip', 'inner_', 'go'])}{len(self.labels)}")
        return self.labels[-1]

    def block(self, place, most=3):
        lines = []
        for _ in range(self.random.randint(1, most)):
            lines += self.statement(place)
        return lines

    def statement(self, place):
        self.unit.cost += self.unit.weight
        is_tight = self.unit.cost > MOST_COST
        compound = [self.if_, self.case, self.for_] * 2 + [self.while_, self.repeat]
        compound += [self.jump_back, self.jump_ahead, self.jump_inside]
        if place.depth > 0 and not is_tight and self.chance(0.4):
            return self.pick(compound)(place)
        plain = [self.assign] * 8 + [self.call_statement] * 4 + [self.leave] * 2
        plain += [self.engine_call, self.set_tick, self.real_to_whole, self.aside]
        return self.pick(plain)(place)

    def deeper(self, place, **more):
        return place._replace(indent=place.indent + "    ", depth=place.depth - 1, **more)

    def weighted(self, rounds, make, *arguments):
        """What is in a loop counts as often as it is run."""
        self.unit.weight *= rounds
        lines = make(*arguments)
        self.unit.weight //= rounds
        return lines

    # --- plain ---

    def assign(self, place):
        names = self.unit.assignable(ALL_TYPES)
        if not names:
            return self.aside(place)
        name = self.pick(names)
        value = self.of_type(self.unit.type_of(name), 2)
        return [f"{place.indent}{self.spelled(name)} := {value};"]

    def call_statement(self, place):
        calls = self.callable_functions(["", *ALL_TYPES])
        call = self.call(self.pick(calls), 1) if calls else None
        if call is None and self.chance(0.9):
            return self.assign(place)
        return [f"{place.indent}{call or self.mathematics(0)};"]

    def leave(self, place):
        """EXIT, BREAK or CONTINUE under a condition, or after the call of a function block."""
        words = ["EXIT"] + ["BREAK", "CONTINUE"] * (2 * place.is_in_loop)
        if place.is_in_case and self.unit.result is not None and not self.chance(RARELY * 5):
            return self.assign(place)
        condition = f"{place.indent}IF {self.truth(1)} THEN"
        before = self.call_statement(self.deeper(place)) if self.chance(0.3) else []
        word = self.pick(words)
        return [condition, *before, f"{place.indent}    {word};", f"{place.indent}END_IF;"]

    def engine_call(self, place):
        drawn = self.random.random()
        if drawn < 0.4:
            return [f"{place.indent}yxSetGV({self.pick('134')}, {self.of_type('LREAL', 1)});"]
        if drawn < 0.5:
            return [f"{place.indent}yxSetGV(2, {self.name_or_number()} AND 127);"]
        type_name, words = self.pick(
            [("USINT", "45"), ("UINT", "4"), ("UDINT", "8"), ("REAL", "67"), ("LREAL", "6")]
        )
        value = self.of_type(type_name, 1, is_strict=True)
        return [f"{place.indent}yxSetReg{type_name}(1, 2, 3, {self.pick(words)}, {value});"]

    def name_or_number(self):
        return self.name_of(INTEGERS) or self.whole_number()

    def set_tick(self, place):
        return [f"{place.indent}TICK := {self.whole(1)};"]

    def real_to_whole(self, place):
        """Within the range of the type, but for a few."""
        source, targets = self.name_of(REALS), self.unit.assignable(INTEGERS)
        if source is None or not targets:
            return self.assign(place)
        line = f"{place.indent}{{}}{self.pick(targets)} := {source};"
        if self.chance(RARELY * 3):
            return [line.format("")]
        condition = f"{place.indent}IF ({source} > -0.4) AND {source} < 127.4 THEN"
        return [condition, line.format("    "), f"{place.indent}END_IF;"]

    def aside(self, place):
        """What means nothing. A comment must not stand before a label of CASE that is a range."""
        comments = [] if place.is_in_case else ["// note", "(* a (* note *)"]
        return [place.indent + self.pick([";", ";;", *comments])]

    # --- compound ---

    def if_(self, place):
        inner = self.deeper(place)
        lines = [f"{place.indent}IF {self.truth(2)} THEN", *self.block(inner)]
        for _ in range(self.pick([0, 0, 0, 1, 2])):
            lines += [f"{place.indent}ELSIF {self.truth(2)} THEN", *self.block(inner, 2)]
        if self.chance(0.4):
            lines += [f"{place.indent}ELSE", *self.block(inner, 2)]
        return [*lines, f"{place.indent}END_IF;"]

    def case(self, place):
        inner = self.deeper(place, is_in_loop=False, is_in_case=True)
        free = sorted(self.random.sample(range(-9, 130), 12))
        lines = [f"{place.indent}CASE {self.selector()} OF"]
        for _ in range(self.random.randint(1, 3)):
            labels = ", ".join(self.case_label(free) for _ in range(self.random.randint(1, 2)))
            lines += [f"{place.indent}{labels}:", *self.block(inner, 2)]
        if self.chance(0.5):
            lines += [f"{place.indent}ELSE", *self.block(inner, 2)]
        return [*lines, f"{place.indent}END_CASE;"]

    def selector(self):
        atom = self.whole_atom(0)
        return self.pick([atom, f"{atom} AND 15", f"{atom} MOD 10", f"({atom} AND 63) - 5"])

    def case_label(self, free):
        """Labels that no other holds: the numbers between two of the drawn ones."""
        low = free.pop(0)
        return f"{low}..{free.pop(0) - 1}" if self.chance(0.4) and free[0] - low > 1 else str(low)

    def for_(self, place):
        """The ends stay off those of the type, beyond which the variable could not go."""
        counter = self.unit.add(self.pick(INTEGERS), is_kept=True)
        inner = self.deeper(place, is_in_loop=True, loops=place.loops + 1, is_in_case=False)
        body = self.weighted(5, self.block, inner)
        head = f"{place.indent}FOR {counter.name} := {self.ends(ENDS[counter.type])} DO"
        return [head, *body, f"{place.indent}END_FOR;"]

    def ends(self, limits):
        low, high = limits
        if self.chance(0.2):
            return f"{self.whole_atom(0)} AND 3 TO ({self.whole_atom(0)} AND 7) + 1"
        if self.chance(0.2):
            return f"({self.whole_atom(0)} AND 7) + 3 DOWNTO {self.pick('123')}"
        if self.chance(0.3):
            return self.pick([f"{high - 1} DOWNTO {high - 4}", f"{high - 5} TO {high - 1}"])
        if self.chance(0.3):
            return self.pick([f"{low} TO {low + 4}", f"{low + 4} DOWNTO {low + 1}"])
        return f"{self.pick('0125')} TO {self.pick('234567')}"

    def counted(self, place):
        """A variable that ends a loop: how it begins, counts and is tested."""
        counter = self.unit.add(self.pick(["SINT", "INT", "UDINT"]), is_kept=True).name
        most = self.random.randint(2, 6)
        step = f"{place.indent}    {counter} := {counter} + 1;"
        return f"{place.indent}{counter} := 0;", step, f"{counter} < {most}"

    def while_(self, place):
        begin, step, test = self.counted(place)
        inner = self.deeper(place, is_in_loop=True)
        condition = f"({self.truth(1)}) AND {test}" if self.chance(0.6) else test
        body = self.weighted(4, self.block, inner)
        head = f"{place.indent}WHILE {condition} DO"
        return [begin, head, step, *body, f"{place.indent}END_WHILE;"]

    def repeat(self, place):
        """CONTINUE goes back without a test, so only a counter lets it be reached."""
        begin, step, test = self.counted(place)
        body = self.weighted(4, self.block, self.deeper(place, is_in_loop=False))
        inner = place.indent + "    "
        if self.chance(0.4):
            condition = f"({test}) AND ({self.truth(1)})"
            body += [f"{inner}IF {condition} THEN", f"{inner}    CONTINUE;", f"{inner}END_IF;"]
        until = f"NOT ({test})" + (f" OR ({self.truth(1)})" if self.chance(0.5) else "")
        end = [f"{place.indent}UNTIL {until}", f"{place.indent}END_REPEAT;"]
        return [begin, f"{place.indent}REPEAT", step, *body, *end]

    # --- jumps ---

    def jump_back(self, place):
        begin, step, test = self.counted(place)
        label = self.new_label()
        body = self.weighted(4, self.block, place._replace(depth=place.depth - 1), 2)
        condition = f"IF ({test}) AND {self.truth(1)} THEN"
        jump = f"{place.indent}{condition} GOTO {self.spelled(label)}; END_IF;"
        return [begin, f"{place.indent}{label}:", step, *body, jump]

    def jump_ahead(self, place):
        """Over statements, or out of a loop; out of a FOR or a CASE in the program alone."""
        label = self.new_label()
        jump = f"IF {self.truth(1)} THEN GOTO {label}; END_IF;"
        if self.chance(0.5):
            body = [place.indent + jump, *self.block(place._replace(depth=place.depth - 1))]
        elif self.unit.result is None and self.chance(0.3):
            body = self.pick([self.for_, self.case])(place)
            body.insert(-1, f"{place.indent}    {jump}")
        else:
            body = self.while_(place)
            body.insert(-1, f"{place.indent}    {jump}")
        return [*body, f"{place.indent}{label}:"]

    def jump_inside(self, place):
        label = self.new_label()
        inner = self.deeper(place)
        return [
            f"{place.indent}IF {self.truth(1)} THEN GOTO {label}; END_IF;",
            f"{place.indent}IF {self.truth(1)} THEN",
            *self.block(inner, 2),
            f"{inner.indent}{self.spelled(label)}:",
            *self.block(inner, 2),
            f"{place.indent}END_IF;",
        ]


class ProgramMaker(Statements):
    """A whole script: definitions, program, inputs."""

    def __init__(self, random):
        super().__init__(random, [], [])
        self.size = random.randint(FEWEST_LINES, MOST_LINES)

    def program(self):
        for number in range(self.random.choice([0, 1, 2, 2, 3]) if self.size > 25 else 0):
            self.definitions.append(self.definition(number))
        lines = [line for one in self.definitions for line in one.lines]
        lines += self.main_lines(self.size - len(lines))
        inputs = [slot for slot in self.unit.slots if slot.section == "VAR_INPUT"]
        cycles = self.random.choice([1, 5, 20, 50])
        tick = self.random.choice([0, 1, 10, 100, 60000, 2000000000])
        return Generated("\n".join(lines) + "\n", self.inputs(inputs, cycles), cycles, tick)

    def definition(self, number):
        is_block = self.chance(0.4)
        result = "" if is_block else self.pick(ALL_TYPES)
        self.unit = Unit(self.random, result)
        for _ in range(self.pick([0, 1, 2, 2, 3])):
            self.unit.add(self.pick(ALL_TYPES), self.pick(["VAR_ARG", "VAR_ARG", "VAR_REF"]))
        self.sort_parameters()
        parameters = list(self.unit.slots)
        for _ in range(self.pick([0, 1, 2])):
            self.add_plain("VAR")
        body = self.block(Place("    ", 2), 4)
        if result:
            body.append(f"    RESULT := {self.of_type(result, 1)};")
        return self.finished(f"{self.pick(['Fn', 'Calc_', 'Блок'])}{number}", parameters, body)

    def sort_parameters(self):
        """The order of the declarations is that of the parameters."""
        self.unit.slots.sort(key=lambda slot: slot.section)

    def finished(self, name, parameters, body):
        result = self.unit.result
        word = "FUNCTION" if result else "FUNCTION_BLOCK"
        head = f"{word} {name}" + (f" : {result}" if result else "")
        sections = self.unit.sections("VAR_ARG", "VAR_REF", "VAR")
        lines = [head, *sections, *body, f"END_{word}"]
        return Definition(name, result, parameters, lines, self.unit.cost + 1)

    def main_lines(self, room):
        self.unit = Unit(self.random, None)
        for section in ("VAR_INPUT", "VAR_INPUT", "VAR_OUTPUT", "VAR_GLOBAL", *["VAR"] * 6):
            if self.chance(0.7):
                self.add_plain(section)
        self.add_engine_variables()
        body = self.statement(Place("    ", 3))
        while len(body) + len(self.unit.slots) + 14 < room:
            body += self.statement(Place("    ", 3))
        sections = "VAR_INPUT VAR_OUTPUT VAR_GLOBAL VAR VAR_YXGLOBAL VAR_YXREGISTER".split()
        return ["PROGRAM Demo", *self.unit.sections(*sections), *body, "END_PROGRAM"]

    def add_plain(self, section):
        type_name = self.pick(ALL_TYPES)
        can_be_constant = section in ("VAR", "VAR_GLOBAL") and self.chance(0.15)
        has_initial = can_be_constant or self.chance(0.6)
        initial = self.initial(type_name, section) if has_initial else ""
        self.unit.add(type_name, section, initial=initial, is_kept=can_be_constant)

    def initial(self, type_name, section):
        if type_name == "BOOL":
            undeclared = ["True"] if section != "VAR_INPUT" else []
            return self.pick(["TRUE", "FALSE", "true", "false", *undeclared])
        sign = self.pick(["", "", "-", "+"])
        if type_name in REALS and self.chance(0.7):
            return sign + self.pick([one for one in SMALL_REALS + EDGE_REALS if one != "0.0"])
        if self.chance(0.2):
            return str(self.pick(ENDS[type_name])) if type_name in ENDS else "7"
        number = self.whole_number()
        return number if number_of(number) > ENDS["DINT"][1] else sign + number

    def add_engine_variables(self):
        if self.chance(0.3):
            self.unit.add(self.pick(REALS), "VAR_YXGLOBAL", numbers=" (1)")
            self.unit.add(self.pick(INTEGERS), "VAR_YXGLOBAL", numbers=" (2)")
        if self.chance(0.3):
            self.unit.add(self.pick(INTEGERS), "VAR_YXREGISTER", numbers=" (1, 2, +3, 4)")
            self.unit.add(self.pick(REALS), "VAR_YXREGISTER", numbers=" (1, 16#2, 3, 6)")

    # --- inputs ---

    def inputs(self, slots, cycles):
        output = io.StringIO()
        writer = csv.writer(output, lineterminator="\n")
        writer.writerow(["cycles", *(slot.name for slot in slots)])
        left = cycles
        while left > 0:
            count = self.random.choice([1, 1, 2, 3, 10])
            writer.writerow([count, *(self.cell(slot.type) for slot in slots)])
            left -= count
        return output.getvalue()

    def cell(self, type_name):
        if self.chance(0.2):
            return ""
        if type_name == "BOOL":
            return self.pick(["TRUE", "FALSE"])
        if type_name in INTEGERS:
            low, high = ENDS[type_name]
            return self.pick([low, high, high - 1, 1, 2, 3, self.random.randint(low, high)])
        return self.pick([0.5, -2.5, 1e10, self.random.uniform(-200, 200), 3.0])


# ---------------------------------------------------------------------------------------------
# Constructs
# ---------------------------------------------------------------------------------------------


def constructs_of(source):
    """Names of what a script holds: statements, operators, operands, types, built-ins."""
    tree = script.read_script(source)
    found = set()
    for unit in [*tree.units.values(), tree.program]:
        found.add(unit.kind)
        found |= {f"{one.section} {one.type}" for one in unit.declarations}
        gather(unit.statements, found)
    return found


def gather(tree, found):
    if isinstance(tree, script.Call):
        found.add(f"call {tree.name}" if tree.name in script.BUILT_INS else "call of a definition")
    elif hasattr(tree, "operator"):
        found.add(tree.operator)
    elif hasattr(tree, "_fields"):
        found.add(type(tree).__name__)
    for part in tree if isinstance(tree, (list, tuple)) else []:
        gather(part, found)


def print_constructs(programs):
    counts = Counter(one for program in programs for one in constructs_of(program.source))
    for name, count in sorted(counts.items()):
        print(f"{count:6} {name}")


def write_program(program, folder, number, with_inputs):
    (folder / f"program{number}.st").write_text(program.source, "utf-8")
    if with_inputs:
        (folder / f"program{number}.csv").write_text(program.inputs, "utf-8")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("count", type=int, nargs="?", default=1)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--into", type=Path)
    parser.add_argument("--inputs", action="store_true")
    parser.add_argument("--constructs", action="store_true")
    options = parser.parse_args()
    seeds = range(options.seed, options.seed + options.count)
    if options.constructs:
        return print_constructs(generate(seed) for seed in seeds)
    for seed in seeds:
        program = generate(seed)
        if options.into:
            options.into.mkdir(parents=True, exist_ok=True)
            write_program(program, options.into, seed, options.inputs)
        else:
            print(program.source + (program.inputs if options.inputs else ""), end="")
    return None


if __name__ == "__main__":
    main()
