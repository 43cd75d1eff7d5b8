"""Reads a script: its units, declarations, statements and expressions, as trees.

Written from the language reference and the grammar, for scripts that compile: what the compiler
refuses is not looked for. Names of variables, units and labels are in capitals, as letter case
counts for nothing.
"""

import re
from typing import NamedTuple, Optional

TYPES = ["BOOL", "SINT", "USINT", "INT", "UINT", "DINT", "UDINT", "REAL", "LREAL", "STRING"]

REGISTER_WORDS = ["UDINT"] * 4
REGISTER_TYPES = ["USINT", "UINT", "UDINT", "REAL", "LREAL"]
MATHEMATICS = "cos sin tan acos asin atan ceil floor round exp fabs ln log10 sqrt".upper().split()


class Signature(NamedTuple):
    """What a call must know of what it calls: parameters as pairs of type and whether it is a
    reference."""

    result: Optional[str]
    parameters: list


def by_value(types):
    return [(type_name, False) for type_name in types]


BUILT_INS = {
    **{name: Signature("LREAL", by_value(["LREAL"])) for name in MATHEMATICS},
    "POW": Signature("LREAL", by_value(["LREAL", "LREAL"])),
    "YXGETGV": Signature("LREAL", by_value(["UINT"])),
    "YXSETGV": Signature(None, by_value(["UINT", "LREAL"])),
    **{f"YXGETREG{one}": Signature(one, by_value(REGISTER_WORDS)) for one in REGISTER_TYPES},
    **{
        f"YXSETREG{one}": Signature(None, by_value([*REGISTER_WORDS, one]))
        for one in REGISTER_TYPES
    },
}

# ---------------------------------------------------------------------------------------------
# Trees
# ---------------------------------------------------------------------------------------------


class Number(NamedTuple):
    text: str


class Truth(NamedTuple):
    """TRUE or FALSE; on the right of a comparison it is a number like any other."""

    value: bool
    as_number: bool


class Text(NamedTuple):
    value: str


class Variable(NamedTuple):
    name: str


class Tick(NamedTuple):
    pass


class Call(NamedTuple):
    name: str
    arguments: list


class Negative(NamedTuple):
    operand: object


class Not(NamedTuple):
    operand: object


class Complement(NamedTuple):
    operand: object


class Binary(NamedTuple):
    operator: str  # of numbers, as written, with "BIT " before AND, OR, XOR; or a comparison
    left: object
    right: object


class Both(NamedTuple):
    """AND and XOR of truth values, which compute both sides."""

    operator: str
    left: object
    right: object


class Or(NamedTuple):
    left: object
    right: object


class Assign(NamedTuple):
    target: str
    value: object


class SetTick(NamedTuple):
    value: object


class If(NamedTuple):
    branches: list  # pairs of condition and statements
    otherwise: list


class While(NamedTuple):
    condition: object
    body: list


class Repeat(NamedTuple):
    body: list
    condition: object


class For(NamedTuple):
    name: str
    start: object
    bound: object
    is_down: bool
    body: list


class Case(NamedTuple):
    selector: object
    elements: list  # pairs of labels and statements; a label is a pair of low and high or None
    otherwise: list


class Break(NamedTuple):
    pass


class Continue(NamedTuple):
    pass


class Exit(NamedTuple):
    loops: int  # FOR statements around it


class Goto(NamedTuple):
    label: str


class Label(NamedTuple):
    name: str


class CallStatement(NamedTuple):
    call: Call
    drops_result: bool


class Declaration(NamedTuple):
    name: str
    spelled: str
    section: str
    type: str
    initial: Optional[str]  # with its sign; None if there is none or if it is lost
    is_lost: bool  # a BOOL that begins with True, not TRUE, is missing from the code
    numbers: list  # of an engine variable


class Unit(NamedTuple):
    name: str
    kind: str
    result: Optional[str]
    declarations: list
    statements: list

    def parameters(self):
        return [one for one in self.declarations if one.section in ("VAR_ARG", "VAR_REF")]


class Script(NamedTuple):
    units: dict  # functions and function blocks
    program: Unit


# ---------------------------------------------------------------------------------------------
# Tokens
# ---------------------------------------------------------------------------------------------

LETTER = "A-Za-z_А-Яа-я"
TOKEN = re.compile(
    rf"""(?P<skip>[ \t\n]+|//[^\n]*|\(\*.*?\*\))
    |(?P<name>[{LETTER}][{LETTER}0-9]*)
    |(?P<text>'[^'\n]*')
    |(?P<range>\.\.)
    |(?P<number>(?:16|8|2)\#[0-9A-Fa-f]+|(?:\d+\.(?!\.)|\.)\d*(?:[Ee][+-]?\d*)?|\d+)
    |(?P<operator>[*+\-/:<=>]{{1,2}})
    |(?P<other>.)""",
    re.VERBOSE | re.DOTALL,
)


def tokens_of(source):
    """Pairs of kind and text, then the end."""
    text = source.removeprefix("\ufeff").replace("\r", "")
    found = [(one.lastgroup, one.group()) for one in TOKEN.finditer(text)]
    return [one for one in found if one[0] != "skip"] + [("end", "")]


# ---------------------------------------------------------------------------------------------
# Parser
# ---------------------------------------------------------------------------------------------

DEFINITION_SECTIONS = ("VAR_ARG", "VAR_REF", "VAR")
ENGINE_SECTIONS = ("VAR_YXGLOBAL", "VAR_YXREGISTER")
PROGRAM_SECTIONS = ("VAR", "VAR_INPUT", "VAR_OUTPUT", "VAR_GLOBAL", *ENGINE_SECTIONS)
COMPARISONS = ("=", "<>", "<", ">", "<=", ">=")
PRODUCTS = ("*", "/", "MOD")
TRUTH_OPERATORS = ("AND", "OR", "XOR")
SHIFTS = ("SHL", "SHR", "ROL", "ROR")


def read_script(source):
    return Parser(source).script()


class Parser:
    """The tokens, the place among them and the names that are known at that place.

    Each function of an expression gives a pair: the tree, and whether it is a truth value. The
    latter tells the AND of truth values from that of bits.
    """

    def __init__(self, source):
        self._tokens = tokens_of(source)
        self._at = 0
        self._signatures = dict(BUILT_INS)
        self._blocks = {name for name, one in BUILT_INS.items() if one.result is None}
        self._types = {}  # of the variables of the unit
        self._loops = 0  # FOR statements around the place

    # --- tokens ---

    def _word(self):
        return self._tokens[self._at][1].upper()

    def _kind(self):
        return self._tokens[self._at][0]

    def _take(self):
        text = self._tokens[self._at][1]
        self._at += 1
        return text

    def _take_if(self, *words):
        return self._take().upper() if self._word() in words else None

    def _expect(self, *words):
        taken = self._take_if(*words)
        if taken is None:
            raise SyntaxError(f"{words} expected, {self._tokens[self._at : self._at + 5]} found")
        return taken

    # --- units and declarations ---

    def script(self):
        units = {}
        while self._word() != "PROGRAM":
            unit = self._definition()
            units[unit.name] = unit
        return Script(units, self._program())

    def _definition(self):
        opener = self._take().upper()
        name = self._take().upper()
        is_block = opener == "FUNCTION_BLOCK" or opener in self._blocks
        result = None if is_block else self._result_type()
        declarations = self._sections(DEFINITION_SECTIONS)
        self._declare_unit(name, result, declarations)
        end = "END_FUNCTION_BLOCK" if is_block else "END_FUNCTION"
        statements = self._first_self_call(name) if is_block else []
        statements += self._statements(end)
        self._expect(end)
        kind = "FUNCTION_BLOCK" if is_block else "FUNCTION"
        return Unit(name, kind, result, declarations, statements)

    def _result_type(self):
        self._expect(":")
        return self._take().upper()

    def _declare_unit(self, name, result, declarations):
        parameters = [
            (one.type, one.section == "VAR_REF")
            for one in declarations
            if one.section in ("VAR_ARG", "VAR_REF")
        ]
        self._signatures[name] = Signature(result, parameters)
        self._types = {one.name: one.type for one in declarations}
        if result is None:
            self._blocks.add(name)
        else:
            self._types["RESULT"] = result

    def _first_self_call(self, name):
        """A function block that calls itself first is taken for a function there."""
        if self._word() != name:
            return []
        call = self._call()
        self._expect(";")
        return [CallStatement(call, True)]

    def _program(self):
        self._expect("PROGRAM")
        name = self._take()
        declarations = self._sections(PROGRAM_SECTIONS)
        self._types = {one.name: one.type for one in declarations}
        statements = self._statements("END_PROGRAM")
        return Unit(name, "PROGRAM", None, declarations, statements)

    def _sections(self, allowed):
        declarations = []
        while self._word() in allowed:
            section = self._take().upper()
            while not self._take_if("END_VAR"):
                declarations.append(self._declaration(section))
            while self._take_if(";"):
                pass
        return declarations

    def _declaration(self, section):
        self._take_if("CONSTANT")
        spelled = self._take()
        self._expect(":")
        type_name = self._take().upper()
        numbers = self._engine_numbers() if section in ENGINE_SECTIONS else []
        initial = self._initial_value() if self._take_if(":=") else None
        self._expect(";")
        is_lost = type_name == "BOOL" and initial not in (None, "TRUE", "true", "FALSE", "false")
        kept = None if is_lost else initial
        return Declaration(spelled.upper(), spelled, section, type_name, kept, is_lost, numbers)

    def _engine_numbers(self):
        self._expect("(")
        numbers = [self._initial_value()]
        while self._take_if(","):
            numbers.append(self._initial_value())
        self._expect(")")
        return numbers

    def _initial_value(self):
        sign = self._take_if("-", "+")
        return ("-" if sign == "-" else "") + self._take()

    # --- statements ---

    def _statements(self, *ends):
        statements = []
        while self._word() not in ends:
            if not self._take_if(";"):
                statements.append(self._statement())
        return statements

    def _statement(self):
        special = {
            "IF": self._if,
            "WHILE": self._while,
            "REPEAT": self._repeat,
            "FOR": self._for,
            "CASE": self._case,
            "EXIT": self._exit,
            "GOTO": self._goto,
            "TICK": self._set_tick,
        }.get(self._word())
        if special:
            self._take()
            return special()
        return self._plain_statement()

    def _plain_statement(self):
        if self._word() in ("BREAK", "CONTINUE"):
            return self._ended(Break() if self._take().upper() == "BREAK" else Continue())
        if self._is_call():
            drops_result = self._word() not in self._blocks
            return self._ended(CallStatement(self._call(), drops_result))
        name = self._take().upper()
        if self._expect(":", ":=") == ":":
            return Label(name)
        return self._ended(Assign(name, self._truth_expression()[0]))

    def _ended(self, statement):
        self._expect(";")
        return statement

    def _if(self):
        branches = [self._branch()]
        while self._take_if("ELSIF"):
            branches.append(self._branch())
        otherwise = self._statements("END_IF") if self._take_if("ELSE") else []
        self._expect("END_IF")
        return self._ended(If(branches, otherwise))

    def _branch(self):
        condition = self._truth_expression()[0]
        self._expect("THEN")
        return condition, self._statements("ELSIF", "ELSE", "END_IF")

    def _while(self):
        condition = self._truth_expression()[0]
        self._expect("DO")
        body = self._statements("END_WHILE")
        self._expect("END_WHILE")
        return self._ended(While(condition, body))

    def _repeat(self):
        body = self._statements("UNTIL")
        self._expect("UNTIL")
        condition = self._truth_expression()[0]
        self._expect("END_REPEAT")
        return self._ended(Repeat(body, condition))

    def _for(self):
        name = self._take().upper()
        self._expect(":=")
        start = self._expression()[0]
        is_down = self._expect("TO", "DOWNTO") == "DOWNTO"
        bound = self._expression()[0]
        self._expect("DO")
        self._loops += 1
        body = self._statements("END_FOR")
        self._loops -= 1
        self._expect("END_FOR")
        return self._ended(For(name, start, bound, is_down, body))

    def _case(self):
        selector = self._truth_expression()[0]
        self._expect("OF")
        elements = [self._case_element()]
        while self._is_case_label():
            elements.append(self._case_element())
        otherwise = self._statements("END_CASE") if self._take_if("ELSE") else []
        self._expect("END_CASE")
        return self._ended(Case(selector, elements, otherwise))

    def _is_case_label(self):
        return self._kind() == "number" or self._word() == "-"

    def _case_element(self):
        labels = [self._case_label()]
        while self._take_if(","):
            labels.append(self._case_label())
        self._expect(":")
        body = []
        while not self._is_case_label() and self._word() not in ("ELSE", "END_CASE"):
            if not self._take_if(";"):
                body.append(self._statement())
        return labels, body

    def _case_label(self):
        low = self._case_bound()
        return low, self._case_bound() if self._take_if("..") else None

    def _case_bound(self):
        is_negative = self._take_if("-")
        number = Number(self._take())
        return Negative(number) if is_negative else number

    def _exit(self):
        return self._ended(Exit(self._loops))

    def _goto(self):
        return self._ended(Goto(self._take().upper()))

    def _set_tick(self):
        self._expect(":=")
        return self._ended(SetTick(self._truth_expression()[0]))

    # --- expressions ---

    def _truth_expression(self):
        left, is_truth = self._truth_term()
        while self._word() in ("OR", "XOR"):
            operator = self._take().upper()
            right = self._truth_expression()[0]
            left = Or(left, right) if operator == "OR" else Both("XOR", left, right)
        return left, is_truth

    def _truth_term(self):
        left, is_truth = self._not_factor()
        while self._take_if("AND"):
            left = Both("AND", left, self._truth_expression()[0])
        return left, is_truth

    def _not_factor(self):
        if not self._take_if("NOT"):
            return self._truth_factor()
        operand, is_truth = self._truth_factor()
        return (Not(operand) if is_truth else Complement(operand)), is_truth

    def _truth_factor(self):
        if self._word() in ("TRUE", "FALSE"):
            return Truth(self._take().upper() == "TRUE", False), True
        return self._relation()

    def _relation(self):
        left, is_truth = self._expression()
        operator = self._take_if(*COMPARISONS)
        if operator is None:
            return left, is_truth
        return Binary(operator, left, self._compared()), True

    def _compared(self):
        if self._word() in ("TRUE", "FALSE"):
            return Truth(self._take().upper() == "TRUE", True)
        return self._expression()[0]

    def _expression(self):
        left, is_truth = self._product()
        while self._word() in ("+", "-"):
            operator = self._take()
            left, is_truth = Binary(operator, left, self._product()[0]), False
        return left, is_truth

    def _product(self):
        return self._level(self._bit_term, PRODUCTS)

    def _bit_term(self):
        left, is_truth = self._shift_term()
        while not is_truth and self._word() in TRUTH_OPERATORS:
            operator = f"BIT {self._take().upper()}"
            left = Binary(operator, left, self._product()[0])
        return left, is_truth

    def _shift_term(self):
        return self._level(self._power_term, SHIFTS)

    def _power_term(self):
        return self._level(self._signed_factor, ("**",))

    def _level(self, operand, operators):
        """The right operand of each operator is a whole product."""
        left, is_truth = operand()
        while self._word() in operators:
            operator = self._take().upper()
            left, is_truth = Binary(operator, left, self._product()[0]), False
        return left, is_truth

    def _signed_factor(self):
        self._take_if("+")
        if not self._take_if("-"):
            return self._factor()
        operand, is_truth = self._factor()
        return Negative(operand), is_truth

    def _factor(self):
        if self._take_if("("):
            inner = self._truth_expression()
            self._expect(")")
            return inner
        if self._take_if("TICK"):
            return Tick(), False
        if self._kind() == "number":
            return Number(self._take()), False
        if self._kind() == "text":
            return Text(self._take().upper()), False
        return self._named()

    def _named(self):
        if self._is_call():
            result = self._signatures[self._word()].result
            return self._call(), result == "BOOL"
        name = self._take().upper()
        return Variable(name), self._types[name] == "BOOL"

    # --- calls ---

    def _is_call(self):
        return self._word() in self._signatures

    def _call(self):
        name = self._take().upper()
        arguments = []
        if self._take_if("(") and not self._take_if(")"):
            arguments = self._arguments(self._signatures[name].parameters)
        return Call(name, arguments)

    def _arguments(self, parameters):
        arguments = []
        for type_and_reference in parameters:
            arguments.append(self._argument(type_and_reference[1]))
            self._expect(",", ")")
        return arguments

    def _argument(self, is_reference):
        if is_reference:
            return Variable(self._take().upper())
        return self._truth_expression()[0]
