"""Evaluates a script cycle by cycle, without target code.

    evaluate.py SCRIPT [--cycles N] [--tick T] [--inputs FILE] [--engine FILE]
        [--check NAME=ACTION]

Written from the language reference and from docs/manual/machine.md, to hold the machine that
executes target code to the truth. It walks the trees of the script. What the manual says of the
value stack is kept to: calls, FOR, CASE and EXIT use one here too, as some choices show what is
on it.
"""

import argparse
import csv
import sys
from pathlib import Path
from typing import NamedTuple, Optional

import script
from operations import (
    BOOL,
    C_POWER,
    DINT,
    LREAL,
    MATHEMATICS,
    REAL,
    SINT,
    STACK_LEFT_IN_PROGRAM,
    STRING,
    UDINT,
    ZERO,
    Operations,
    Stopped,
    Undefined,
    both,
    initial,
    literal,
    make_checks,
    make_choices,
    number_of,
    truth,
    zero_of,
)
from script import BUILT_INS, TYPES, read_script

MOST_CALLS = 10_000
MOST_VALUES = 1_000_000
PATIENCE = 300_000  # statements of a cycle, beyond which only the machine itself can tell

ONE = (SINT, 1)
BREAK, CONTINUE, EXIT = (object() for _ in range(3))

sys.setrecursionlimit(100 * MOST_CALLS)  # frames of Python take no room on its own stack
NO_LABELS = frozenset()


class Result(NamedTuple):
    rows: list  # of each cycle that has ended: the number of each variable, by its name
    ticks: list  # the counter in each of these cycles
    types: dict  # of the variables
    undeclared: set  # variables whose declaration is missing in the code
    stopped: Optional[str]  # why the run has ended in the cycle after these


class Cell:
    """A variable: its type, and its value, which is always of that type."""

    __slots__ = ("rank", "value")

    def __init__(self, rank, value):
        self.rank = rank
        self.value = value


class Engine:
    """What all units share: value stack, tick counter, engine globals and registers."""

    def __init__(self, choices, checks):
        self.choices = choices
        self.checks = checks
        self.operations = Operations(choices, checks)
        self.stack = []
        self.base = 0  # values below it are none of the running unit
        self.tick = 0
        self.depth = 0
        self.statements = 0
        self.globals = {}
        self.registers = {}

    def push(self, value):
        if len(self.stack) >= MOST_VALUES:
            raise Stopped("too many values on the stack")
        self.stack.append(value)

    def pop(self):
        if len(self.stack) > self.base:
            return self.stack.pop()
        if self.checks["stack-empty"] == "stop":
            raise Stopped("stack-empty")
        return self.stack.pop() if self.stack else ZERO

    def count_statement(self):
        self.statements += 1
        if self.statements > int(self.choices["scan-limit"]):
            raise Stopped("scan-limit")
        if self.statements > PATIENCE:
            raise Undefined("a cycle takes long")

    def store(self, cell, value):
        cell.value = self.operations.fit(value, cell.rank)

    def global_cell(self, number):
        return self.globals.setdefault(number, Cell(LREAL, (LREAL, 0.0)))

    def register_cell(self, words):
        return self.registers.setdefault(words, Cell(LREAL, (LREAL, 0.0)))


def new_cell(engine, declaration):
    rank = TYPES.index(declaration.type)
    if declaration.section == "VAR_YXGLOBAL":
        number = int(number_of(declaration.numbers[0]))
        return engine.globals.setdefault(number, Cell(rank, zero_of(rank)))
    if declaration.section == "VAR_YXREGISTER":
        words = tuple(int(number_of(one)) for one in declaration.numbers)
        return engine.registers.setdefault(words, Cell(rank, zero_of(rank)))
    return Cell(rank, initial(declaration.initial, engine.operations.fit, rank))


# ---------------------------------------------------------------------------------------------
# Built-ins
# ---------------------------------------------------------------------------------------------


def call_built_in(engine, name, values):
    """The result, or None of a function block."""
    numbers = [number for _, number in values]
    if name in MATHEMATICS:
        return LREAL, MATHEMATICS[name](numbers[0])
    if name == "POW":
        return LREAL, C_POWER(*numbers)
    if name.endswith("GV"):
        return access_global(engine, name, values)
    return access_register(engine, name, values)


def access_global(engine, name, values):
    cell = engine.global_cell(values[0][1])
    if name == "YXSETGV":
        return engine.store(cell, values[1])
    return engine.operations.fit(cell.value, LREAL)


def access_register(engine, name, values):
    cell = engine.register_cell(tuple(number for _, number in values[:4]))
    if name.startswith("YXGETREG"):
        return engine.operations.fit(cell.value, TYPES.index(name.removeprefix("YXGETREG")))
    return engine.store(cell, values[4])


# ---------------------------------------------------------------------------------------------
# Units
# ---------------------------------------------------------------------------------------------


class RunningUnit:
    """A unit with the variables of its present call."""

    def __init__(self, engine, unit):
        self.engine = engine
        self.unit = unit
        self.places = {one.name: place for place, one in enumerate(unit.declarations)}
        if unit.result:
            self.places["RESULT"] = len(self.places)
        self.frame = self._new_frame()
        self.calls = 0  # that have not ended
        self.body = None
        self._parameters = [self.places[one.name] for one in reversed(unit.parameters())]
        self._references = {
            self.places[one.name] for one in unit.parameters() if one.section == "VAR_REF"
        }

    def _new_frame(self):
        frame = [new_cell(self.engine, one) for one in self.unit.declarations]
        if self.unit.result:
            rank = TYPES.index(self.unit.result)
            frame.append(Cell(rank, zero_of(rank)))
        return frame

    def run(self):
        """A call, with its parameters on the stack; gives the result of a function."""
        engine = self.engine
        self._check_call()
        caller_base, caller_frame = engine.base, self.frame
        engine.base = len(engine.stack) - len(self._parameters)
        if engine.choices["locals"] == "initial":
            self.frame = self._new_frame()
        self.calls += 1
        engine.depth += 1
        self._take_parameters()
        self.body()
        result = self.frame[self.places["RESULT"]].value if self.unit.result else None
        self._leave_stack()
        self.calls -= 1
        engine.depth -= 1
        engine.base, self.frame = caller_base, caller_frame
        return result

    def _check_call(self):
        if self.calls and self.engine.checks["recursion"] == "stop":
            raise Stopped("recursion")
        if self.engine.depth >= MOST_CALLS:
            raise Stopped("too many calls within each other")

    def _take_parameters(self):
        for place in self._parameters:
            value = self.engine.pop()
            if place not in self._references:
                self.engine.store(self.frame[place], value)
            elif isinstance(value, Cell):
                self.frame[place] = value
            else:
                raise Undefined("a reference to no variable")

    def _leave_stack(self):
        engine = self.engine
        if len(engine.stack) <= engine.base:
            return
        if engine.checks["stack-left"] == "stop":
            raise Stopped("stack-left")
        if engine.choices["return-stack"] == "restore":
            del engine.stack[engine.base :]


# ---------------------------------------------------------------------------------------------
# Expressions: functions without parameters that give a value
# ---------------------------------------------------------------------------------------------


def holds_call(tree):
    if isinstance(tree, script.Call):
        return True
    return isinstance(tree, tuple) and any(holds_call(part) for part in tree)


class Builder:
    """Makes functions of the trees of one unit."""

    def __init__(self, engine, running, units):
        self._engine = engine
        self._operations = engine.operations
        self._running = running
        self._units = units

    def body(self, statements):
        block = self._block(statements)

        def run():
            if isinstance(block.run(None), str):
                raise Undefined("a jump to another unit")

        return run

    def _cell(self, name):
        place = self._running.places[name]
        running = self._running
        return lambda: running.frame[place]

    def expression(self, tree):
        return getattr(self, f"_of_{type(tree).__name__.lower()}")(tree)

    def _of_number(self, tree):
        value = literal(tree.text, self._engine.choices["width"])
        return lambda: value

    def _of_truth(self, tree):
        value = (SINT if tree.as_number else BOOL, int(tree.value))
        return lambda: value

    def _of_text(self, tree):
        value = (STRING, tree.value)
        return lambda: value

    def _of_variable(self, tree):
        place = self._running.places[tree.name]
        running = self._running
        return lambda: running.frame[place].value

    def _of_tick(self, _tree):
        engine = self._engine
        return lambda: (UDINT, engine.tick)

    def _of_negative(self, tree):
        operand, negative = self.expression(tree.operand), self._operations.negative
        return lambda: negative(operand())

    def _of_not(self, tree):
        operand = self.expression(tree.operand)
        return lambda: (BOOL, int(not truth(operand())))

    def _of_complement(self, tree):
        operand, complement = self.expression(tree.operand), self._operations.complement
        return lambda: complement(operand())

    def _of_binary(self, tree):
        return self._combined(tree, self._operations.binary(tree.operator))

    def _of_both(self, tree):
        return self._combined(tree, both(tree.operator))

    def _combined(self, tree, operation):
        """The left operand waits on the stack; without a call nothing can touch it there."""
        left, right = self.expression(tree.left), self.expression(tree.right)
        engine = self._engine

        def with_stack():
            engine.push(left())
            second = right()
            return operation(engine.pop(), second)

        if holds_call(tree.right):
            return with_stack
        return lambda: operation(left(), right())

    def _of_or(self, tree):
        left, right = self.expression(tree.left), self.expression(tree.right)

        def either():
            value = left()
            return value if truth(value) else right()

        return either

    # --- calls ---

    def _of_call(self, tree):
        """A call in an expression; its result is in the accumulator."""
        call, engine = self._call(tree), self._engine
        is_pushed = engine.choices["call-result"] == "both"

        def result():
            value = call()
            if is_pushed:
                engine.push(value)
            return value

        return result

    def _call(self, tree):
        arguments = self._pushed_arguments(tree)
        running = self._units.get(tree.name)
        if running is None:
            return self._built_in(tree.name, arguments)

        def call():
            arguments()
            return running.run()

        return call

    def _pushed_arguments(self, tree):
        engine = self._engine
        arguments = [
            self._cell(argument.name) if is_reference else self.expression(argument)
            for argument, (_, is_reference) in zip(tree.arguments, self._parameters(tree.name))
        ]

        def push_all():
            for argument in arguments:
                engine.push(argument())

        return push_all

    def _parameters(self, name):
        if name in BUILT_INS:
            return BUILT_INS[name].parameters
        formals = self._units[name].unit.parameters()
        return [(one.type, one.section == "VAR_REF") for one in formals]

    def _built_in(self, name, arguments):
        engine = self._engine
        ranks = [TYPES.index(type_name) for type_name, _ in BUILT_INS[name].parameters]

        def call():
            arguments()
            taken = [engine.operations.fit(engine.pop(), rank) for rank in reversed(ranks)]
            return call_built_in(engine, name, taken[::-1])

        return call

    # --- statements ---

    def _block(self, statements):
        return Block(self._engine, [self._statement(one) for one in statements])

    def _statement(self, tree):
        """A function and the labels within; it takes the label to go on at, or None."""
        return getattr(self, f"_do_{type(tree).__name__.lower()}")(tree)

    def _do_assign(self, tree):
        cell, value = self._cell(tree.target), self.expression(tree.value)
        store = self._engine.store
        return lambda _: store(cell(), value()), NO_LABELS

    def _do_settick(self, tree):
        value, engine = self.expression(tree.value), self._engine

        def set_tick(_):
            number = engine.operations.fit(value(), UDINT)[1]
            if engine.choices["tick-write"] == "counter":
                engine.tick = number

        return set_tick, NO_LABELS

    def _do_break(self, _tree):
        return lambda _: BREAK, NO_LABELS

    def _do_continue(self, _tree):
        return lambda _: CONTINUE, NO_LABELS

    def _do_goto(self, tree):
        return lambda _: tree.label, NO_LABELS

    def _do_label(self, tree):
        return lambda _: None, frozenset([tree.name])

    def _do_exit(self, tree):
        engine = self._engine

        def leave(_):
            for _loop in range(tree.loops):
                engine.pop()
            return EXIT

        return leave, NO_LABELS

    def _do_callstatement(self, tree):
        call, engine = self._call(tree.call), self._engine
        is_pushed = engine.choices["call-result"] != "accumulator"

        def run(_):
            value = call()
            if value is not None and is_pushed:
                engine.push(value)
            if tree.drops_result:
                engine.pop()

        return run, NO_LABELS

    def _do_if(self, tree):
        branches = [(self.expression(one), self._block(body)) for one, body in tree.branches]
        otherwise = self._block(tree.otherwise)
        blocks = [body for _, body in branches] + [otherwise]

        def run(label):
            if label is not None:
                return block_with(blocks, label).run(label)
            for condition, body in branches:
                if truth(condition()):
                    return body.run(None)
            return otherwise.run(None)

        return run, labels_of(blocks)

    def _do_while(self, tree):
        condition, body = self.expression(tree.condition), self._block(tree.body)

        def run(label):
            while label is not None or truth(condition()):
                signal = body.run(label)
                label = None
                if signal not in (None, CONTINUE):
                    return None if signal is BREAK else signal
            return None

        return run, labels_of([body])

    def _do_repeat(self, tree):
        condition, body = self.expression(tree.condition), self._block(tree.body)

        def run(label):
            while True:
                signal = body.run(label)
                label = None
                if signal not in (None, CONTINUE):
                    return None if signal is BREAK else signal
                if signal is None and truth(condition()):
                    return None

        return run, labels_of([body])

    def _do_for(self, tree):
        engine, body = self._engine, self._block(tree.body)
        begin, goes_on, step = self._for_begin(tree), self._for_test(tree), self._for_step(tree)

        def run(label):
            if label is None:
                begin()
            while label is not None or goes_on():
                signal = body.run(label)
                label = None
                if signal is BREAK:
                    break
                if signal not in (None, CONTINUE):
                    return signal
                step()
            engine.pop()
            return None

        return run, labels_of([body])

    def _for_begin(self, tree):
        cell, engine = self._cell(tree.name), self._engine
        start, bound = self.expression(tree.start), self.expression(tree.bound)

        def begin():
            engine.store(cell(), start())
            engine.push(bound())

        return begin

    def _for_test(self, tree):
        """Takes the bound off the stack and puts it back."""
        cell, engine = self._cell(tree.name), self._engine
        compare = self._operations.binary("<=" if tree.is_down else ">=")

        def goes_on():
            value, bound = cell().value, engine.pop()
            is_within = truth(compare(bound, value))
            engine.push(bound)
            return is_within

        return goes_on

    def _for_step(self, tree):
        cell, store = self._cell(tree.name), self._engine.store
        operation = self._operations.binary("-" if tree.is_down else "+")
        return lambda: store(cell(), operation(cell().value, ONE))

    def _do_case(self, tree):
        engine, selector = self._engine, self.expression(tree.selector)
        elements = [
            ([self._case_test(one) for one in labels], self._block(body))
            for labels, body in tree.elements
        ]
        otherwise = self._block(tree.otherwise)
        blocks = [body for _, body in elements] + [otherwise]

        def choose():
            engine.push(selector())
            return next((body for tests, body in elements if any(t() for t in tests)), otherwise)

        def run(label):
            block = choose() if label is None else block_with(blocks, label)
            signal = block.run(label)
            if signal is None:
                engine.pop()
            return signal

        return run, labels_of(blocks)

    def _case_test(self, label):
        low, high = label
        if high is None:
            differs = self._selector_test("<>", low)
            return lambda: not differs()
        is_below, is_above = self._selector_test("<", low), self._selector_test(">", high)
        return lambda: not is_below() and not is_above()

    def _selector_test(self, operator, bound):
        """Takes the selector off the stack and puts it back."""
        engine, number = self._engine, self.expression(bound)
        compare = self._operations.binary(operator)

        def test():
            second, selector = number(), engine.pop()
            is_true = truth(compare(selector, second))
            engine.push(selector)
            return is_true

        return test


class Block:
    """Statements one after the other, with the labels in them at any depth."""

    def __init__(self, engine, statements):
        self._engine = engine
        self._statements = [run for run, _ in statements]
        self.labels = {
            label: at for at, (_, labels) in enumerate(statements) for label in labels
        }

    def run(self, label):
        """From the beginning, or from a label within. None, or what is to happen around it:
        BREAK, CONTINUE, EXIT or a jump to a label elsewhere."""
        self._engine.count_statement()
        at = 0 if label is None else self.labels[label]
        while at < len(self._statements):
            self._engine.count_statement()
            signal = self._statements[at](label)
            label = None
            if signal is None:
                at += 1
            elif signal in self.labels:
                label, at = signal, self.labels[signal]
            else:
                return signal
        return None


def labels_of(blocks):
    return frozenset(label for block in blocks for label in block.labels)


def block_with(blocks, label):
    return next(block for block in blocks if label in block.labels)


# ---------------------------------------------------------------------------------------------
# Cycles
# ---------------------------------------------------------------------------------------------


class Program:
    """A script that is ready to run."""

    def __init__(self, source, choices, checks):
        self._engine = Engine(choices, checks)
        self._script = read_script(source)
        self._main = self._running_units()
        self._cells = list(zip(self._script.program.declarations, self._main.frame))

    def _running_units(self):
        tree = self._script
        units = {name: RunningUnit(self._engine, unit) for name, unit in tree.units.items()}
        main = RunningUnit(self._engine, tree.program)
        for running in [*units.values(), main]:
            running.body = Builder(self._engine, running, units).body(running.unit.statements)
        return main

    def types(self):
        return {one.name: TYPES[cell.rank] for one, cell in self._cells}

    def undeclared(self):
        return {one.name for one, _ in self._cells if one.is_lost}

    def tick(self):
        return self._engine.tick

    def numbers(self):
        return {one.name: cell.value[1] for one, cell in self._cells}

    def cycle(self, inputs, time):
        engine = self._engine
        for name, text in inputs.items():
            self._set_input(name, text)
        if engine.choices["program-variables"] == "initial":
            self._reset_variables()
        engine.statements = 0
        engine.base = len(engine.stack)
        self._main.body()
        if len(engine.stack) > engine.base and engine.checks[STACK_LEFT_IN_PROGRAM] == "stop":
            raise Stopped("stack-left")
        if engine.choices["scan-stack"] == "clear":
            engine.stack.clear()
        engine.tick = (engine.tick + time) % 2**32

    def _set_input(self, name, text):
        place = self._main.places[name.upper()]
        cell = self._main.frame[place]
        if cell.rank == BOOL:
            cell.value = (BOOL, int(text.upper() == "TRUE"))
        else:
            number = float(text) if cell.rank in (REAL, LREAL) else number_of(text)
            rank = LREAL if isinstance(number, float) else DINT
            self._engine.store(cell, (rank, number))

    def _reset_variables(self):
        for declaration, cell in self._cells:
            if declaration.section == "VAR":
                cell.value = new_cell(self._engine, declaration).value


def given_inputs(inputs, cycles):
    """What is put in before each cycle: of each variable what it was given last."""
    given = {}
    per_cycle = [texts for count, texts in inputs for _ in range(count)]
    for cycle in range(cycles):
        given.update(per_cycle[cycle] if cycle < len(per_cycle) else {})
        yield given


def evaluate(source, cycles, time=0, inputs=(), choices=None, checks=None):
    """Runs a script. Inputs are pairs of a number of cycles and the texts of variables."""
    try:
        program = Program(source, make_choices(choices or {}), make_checks(checks or {}))
    except Stopped as reason:
        return Result([], [], {}, set(), str(reason))
    rows, ticks, stopped = [], [], None
    try:
        for texts in given_inputs(inputs, cycles):
            ticks.append(program.tick())
            program.cycle(texts, time)
            rows.append(program.numbers())
    except Stopped as reason:
        stopped = str(reason)
    return Result(rows, ticks[: len(rows)], program.types(), program.undeclared(), stopped)


# ---------------------------------------------------------------------------------------------
# Files and command line
# ---------------------------------------------------------------------------------------------


def read_inputs(text):
    """Of each row its cycles and the texts of the variables that it sets."""
    rows = list(csv.reader(text.splitlines()))
    return [
        (int(row[0]), {name: cell for name, cell in zip(rows[0][1:], row[1:]) if cell})
        for row in rows[1:]
    ]


def read_engine(text):
    """Lines `key = value`; a `#` begins a comment."""
    lines = [line.partition("#")[0].strip() for line in text.splitlines()]
    pairs = [line.partition("=") for line in lines if line]
    return {key.strip(): value.strip() for key, _, value in pairs}


def shown(number, type_name):
    if type_name == "BOOL":
        return "TRUE" if number else "FALSE"
    return repr(number)


def print_trace(result, output):
    writer = csv.writer(output, lineterminator="\n")
    writer.writerow(["cycle", "tick", *result.types])
    for cycle, (tick, row) in enumerate(zip(result.ticks, result.rows), start=1):
        values = [shown(row[name], type_name) for name, type_name in result.types.items()]
        writer.writerow([cycle, tick, *values])


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("script", type=Path)
    parser.add_argument("--cycles", type=int, default=1)
    parser.add_argument("--tick", type=int, default=0)
    parser.add_argument("--inputs", type=Path)
    parser.add_argument("--engine", type=Path)
    parser.add_argument("--check", action="append", default=[])
    options = parser.parse_args()
    inputs = read_inputs(options.inputs.read_text("utf-8")) if options.inputs else []
    choices = read_engine(options.engine.read_text("utf-8")) if options.engine else {}
    checks = dict(one.split("=") for one in options.check)
    source = options.script.read_text("utf-8")
    result = evaluate(source, options.cycles, options.tick, inputs, choices, checks)
    print_trace(result, sys.stdout)
    if result.stopped:
        sys.exit(f"stopped in cycle {len(result.rows) + 1}: {result.stopped}")


if __name__ == "__main__":
    main()
