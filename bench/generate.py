#!/usr/bin/env python3
"""Writes one control program in three languages, statement by statement the same.

The program is given by its number of lines, its number of variables and a seed. It is written
as Structured Text for yxstcmp, as C for tcc and as Lua for luac. A line of the one is a line of
the others, with the same operators and operands, so that compilers can be compared by the time
they take for it. It is meant to be compiled, not to be run.

Where languages differ, the peers get the form that suits them: the body of the program is one
piece in Structured Text and cut into procedures of PART_LINES lines in the others.
"""

import argparse
import re
from contextlib import contextmanager
from pathlib import Path
from random import Random
from typing import NamedTuple, Optional

SUFFIXES = (".st", ".c", ".lua")
COMMENTS = re.compile(r"//.*|\(\*.*|.*\*\)")
TOKENS = re.compile(r"16#\w+|\d+\.\d+|\w+|:=|<>|<=|>=|\.\.|\S")

FUNCTIONS_SHARE = 0.25  # of the statement lines stand in functions and function blocks
PART_LINES = 400
MAX_DEPTH = 3
LOOP_VARIABLES = 6
SECTIONS = 5
LEAST_STATEMENTS = 150
LEAST_VARIABLES = 2 * LOOP_VARIABLES + 8

# Signs that the lines below are written in, and what the languages have for them: Structured
# Text, C, Lua.
SIGNS = {
    "←": (":=", "=", "="),
    "≡": ("=", "==", "=="),
    "≠": ("<>", "!=", "~="),
    "≤": ("<=", "<=", "<="),
    "≥": (">=", ">=", ">="),
    "÷": ("/", "/", "//"),
    "‰": ("MOD", "%", "%"),
    "∧": ("AND", "&&", "and"),
    "∨": ("OR", "||", "or"),
    "⊕": ("XOR", "!=", "~="),
    "¬": ("NOT ", "!", "not "),
    "∩": ("AND", "&", "&"),
    "∪": ("OR", "|", "|"),
    "△": ("XOR", "^", "~"),
    "«": ("SHL", "<<", "<<"),
    "»": ("SHR", ">>", ">>"),
    "⌗": ("16#", "0x", "0x"),  # before hexadecimal digits
    "⊤": ("TRUE", "1", "true"),
    "⊥": ("FALSE", "0", "false"),
    "⟨": ("", "(*", ""),  # around a name held by reference
    "⟩": ("", ")", ""),
    "⁂": ("", "&", ""),  # before an actual parameter that is passed by reference
    "®": ("RESULT", "result", "result"),
    "τ": ("TICK", "tick", "tick"),
}
TABLES = [{ord(sign): texts[i] for sign, texts in SIGNS.items()} for i in range(3)]


def same(text):
    return (text,) * 3


def st_only(text):
    """A line of Structured Text, empty in the others."""
    return (text, "", "")


# The forms of a line in the three languages; there is none where the form is None.
PROLOGUE = (
    None,
    "double sqrt(double), sin(double), cos(double), exp(double); static unsigned tick = 0;",
    "sqrt, sin, cos, exp, tick = math.sqrt, math.sin, math.cos, math.exp, 0",
)
ASSIGN = same("{} ← {};")
ASSIGN_AND_NOTE = ("{} ← {};  // {}", "{} ← {};  // {}", "{} ← {};  -- {}")
NOTE = ("// {}", "// {}", "-- {}")
REMARK = ("(* {} *)", "/* {} */", "--[[ {} ]]")
REMARK_BEGIN = ("(* {}", "/* {}", "--[[ {}")
REMARK_END = ("   {} *)", "   {} */", "   {} ]]")
IF = ("IF {} THEN", "if ({}) {{", "if {} then")
ELSIF = ("ELSIF {} THEN", "}} else if ({}) {{", "elseif {} then")
ELSE = ("ELSE", "}} else {{", "else")
END_IF = ("END_IF;", "}}", "end;")
WHILE = ("WHILE {} DO", "while ({}) {{", "while {} do")
END_WHILE = ("END_WHILE;", "}}", "{}end;")
REPEAT = ("REPEAT", "do {{", "repeat")
UNTIL = ("UNTIL {1} END_REPEAT;", "}} while (!({1}));", "{0}until {1};")
FOR_TO = (
    "FOR {0} ← {1} TO {2} DO",
    "for ({0} = {1}; {0} <= {2}; ++{0}) {{",
    "for {0} = {1}, {2} do",
)
FOR_DOWNTO = (
    "FOR {0} ← {1} DOWNTO {2} DO",
    "for ({0} = {1}; {0} >= {2}; --{0}) {{",
    "for {0} = {1}, {2}, -1 do",
)
END_FOR = ("END_FOR;", "}}", "{}end;")
BREAK = ("BREAK;", "break;", "break;")
CONTINUE = ("CONTINUE;", "continue;", "goto continue_{};")
CONTINUE_LABEL = "::continue_{}:: "  # Lua's, at the end of a loop
LABEL = ("{}:", "{}:", "::{}::")
GOTO = ("GOTO {};", "goto {};", "goto {};")
CASE = ("CASE {} OF", "switch ({}) {{", "do local selector = {};")
FIRST_BRANCH = ("{0}:", "{1}:", "if {2} then")
BRANCH = ("{0}:", "break; {1}:", "elseif {2} then")
CASE_ELSE = ("ELSE", "break; default:", "else")
END_CASE = ("END_CASE;", "}}", "end; end;")
EXIT_PART = ("EXIT;", "return;", "do return end;")
EXIT_FUNCTION = ("EXIT;", "return result;", "do return result end;")
EXIT_BLOCK = ("EXIT;", "return;", "do return {} end;")
CALL = same("{}({});")
CALL_BLOCK = ("{0}({1});", "{0}({1});", "{2} = {0}({1});")

SECTION = st_only("{}")
END_SECTION = st_only("END_VAR")
FUNCTION = ("FUNCTION {0} : {1}", "static {2} {0}(", "function {0}(")
BLOCK = ("FUNCTION_BLOCK {0}", "static void {0}(", "function {0}(")
ARGUMENT = ("{0} : {1};", "{2} {0}{3}", "{0}{3}")
REFERENCE = ("{0} : {1};", "{2} *{0}{3}", "{0}{3}")
END_FUNCTION_ARGUMENTS = ("END_VAR", ") {{ {} result = 0;", ") local result = 0;")
END_BLOCK_ARGUMENTS = ("END_VAR", ") {{", ")")
LOCAL = ("{0} : {1} ← {3};", "{2} {0} = {3};", "local {0} = {3};")
END_FUNCTION = ("END_FUNCTION", "return result; }}", "return result end")
END_BLOCK = ("END_FUNCTION_BLOCK", "}}", "return {} end")

PROGRAM = st_only("PROGRAM Control")
INPUT = ("{0} : {1};", "static {2} {0};", "{0} = {3};")
VARIABLE = ("{0} : {1} ← {3};", "static {2} {0} = {3};", "{0} = {3};")
CONSTANT = ("CONSTANT {0} : {1} ← {3};", "static const {2} {0} = {3};", "{0} = {3};")
PART = (None, "static void {0}(void) {{", "function {0}()")
END_PART = (None, "}}", "end")
MAIN = (None, "int main(void) {{", "function main()")
CALL_PART = (None, "{}();", "{}();")
END_PROGRAM = ("END_PROGRAM", "return 0; }}", "end")

INTEGERS = ("SINT", "USINT", "INT", "UINT", "DINT", "UDINT")
REALS = ("REAL", "LREAL")
C_TYPES = {
    "BOOL": "_Bool",
    "SINT": "signed char",
    "USINT": "unsigned char",
    "INT": "short",
    "UINT": "unsigned short",
    "DINT": "int",
    "UDINT": "unsigned",
    "REAL": "float",
    "LREAL": "double",
}
TYPE_MIX = (
    ["DINT"] * 5 + ["INT"] * 4 + ["UINT"] * 2 + ["UDINT", "SINT", "USINT"]
    + ["REAL"] * 3 + ["LREAL"] * 2 + ["BOOL"] * 4
)  # fmt: skip
REFERENCE_TYPES = ("DINT", "REAL", "INT")
COUNTER = ("index", "DINT")  # the control variable of FOR in functions and function blocks
LOCALS = [("step", "DINT"), ("part", "REAL"), ("rest", "INT"), ("isDone", "BOOL")]

ROOTS = """tank pump valve motor belt mixer burner filter boiler silo feeder dryer reactor
    chiller scale gate fan press line zone""".split()
ROLES = """Level Speed Flow Pressure Count Limit State Target Offset Load Alarm Delay Ratio
    Ready Power Demand""".split()
WORDS = """the level is kept above its lower limit while pump runs and valve follows with a short
    delay scaled to range of sensor then checked against value that operator has set before next
    cycle begins""".split()


class Deck:
    """Gives its items in random order, each once before any comes again."""

    def __init__(self, random, items):
        self.random = random
        self.items = list(items)
        self.next = 0

    def __bool__(self):
        return bool(self.items)

    def draw(self):
        if self.next == 0:
            self.random.shuffle(self.items)
        item = self.items[self.next]
        self.next = (self.next + 1) % len(self.items)
        return item


class Scope:
    """What statements at one place may name; pairs of a name and its type."""

    def __init__(self, random, variables, readable, loop_variables, exit_form, returned=""):
        def deck(types, pairs):
            return Deck(random, [name for name, type_name in pairs if type_name in types])

        everything = [*variables, *readable]
        self.integers = deck(INTEGERS, variables)
        self.reals = deck(REALS, variables)
        self.booleans = deck(("BOOL",), variables)
        self.readable_integers = deck(INTEGERS, everything)
        self.readable_reals = deck(REALS, everything)
        self.readable_booleans = deck(("BOOL",), everything)
        self.of_type = {name: deck((name,), variables) for name in REFERENCE_TYPES}
        self.loop_variables = loop_variables
        self.exit_form = exit_form
        self.returned = returned


class Callable(NamedTuple):
    """A function or function block; parameters are pairs of a name and its type."""

    name: str
    result: Optional[str]  # the type, None for a function block
    values: list
    references: list

    def returned(self):
        """What Lua gives back in place of references."""
        return ", ".join(name for name, _ in self.references)

    def variables(self):
        references = [(f"⟨{name}⟩", type_name) for name, type_name in self.references]
        return [*self.values, *references, *LOCALS]


class Output:
    """The three files. They get their names when they are whole."""

    def __init__(self, base):
        self.paths = [Path(f"{base}{suffix}") for suffix in SUFFIXES]
        self.files = [open(f"{path}.part", "w", encoding="ascii") for path in self.paths]
        self.depth = 0
        self.lines = 0  # of Structured Text

    @contextmanager
    def indented(self):
        self.depth += 1
        yield
        self.depth -= 1

    def put(self, form, *values):
        """One line."""
        indent = "    " * self.depth
        self.lines += form[0] is not None
        for file, text, table in zip(self.files, form, TABLES):
            if text is not None:
                line = text.format(*values).translate(table)
                file.write(f"{indent}{line}\n" if line else "\n")

    def close(self):
        for file, path in zip(self.files, self.paths):
            file.close()
            Path(file.name).replace(path)


class Generator:
    def __init__(self, base, lines, variables, seed):
        self.random = Random(f"{lines} {variables} {seed}")
        self.output = Output(base)
        self.put = self.output.put
        self.lines = lines
        self.variables = variables
        self.functions = []  # callables that are defined, and decks of them
        self.function_deck = self.block_deck = None
        self.scope = None
        self.label_count = 0
        self.loops = []  # [number, whether CONTINUE occurs]; None inside CASE
        self.loop_count = 0
        self.busy = []  # control variables of the open loops
        self.is_last = False  # the current statement ends its block

    # -----------------------------------------------------------------------------------------
    # Expressions
    # -----------------------------------------------------------------------------------------

    def chance(self, share):
        return self.random.random() < share

    def integer_literal(self):
        if self.chance(0.2):
            return f"⌗{self.random.randrange(1, 128):X}"
        return str(self.random.randrange(1, 100))

    def integer_variable(self):
        if self.busy and self.chance(0.2):
            return self.random.choice(self.busy)
        return self.scope.readable_integers.draw()

    def integer_factor(self):
        return self.integer_literal() if self.chance(0.3) else self.integer_variable()

    def integer_term(self):
        draw = self.random.random()
        if draw < 0.45:
            return self.integer_factor()
        left = self.integer_variable()
        if draw < 0.65:
            return f"{left} * {self.integer_factor()}"
        if draw < 0.75:
            return f"{left} ÷ {self.integer_literal()}"
        if draw < 0.95:
            operator = self.random.choice("‰∩∪△«»")
            is_shift = operator in "«»"
            right = self.random.randrange(1, 8) if is_shift else self.integer_literal()
            return f"({left} {operator} {right})"
        return self.function_call("integer") or left

    def integer_expression(self, terms):
        parts = ["-" + self.integer_variable() if self.chance(0.03) else self.integer_variable()]
        for _ in range(terms - 1):
            parts += [self.random.choice("+-"), self.integer_term()]
        return " ".join(parts)

    def real_literal(self):
        return f"{self.random.randrange(0, 50)}.{self.random.randrange(1, 100)}"

    def real_factor(self):
        draw = self.random.random()
        if draw < 0.35:
            return self.real_literal()
        if draw < 0.45:
            return self.integer_variable()
        return self.scope.readable_reals.draw()

    def real_term(self):
        draw = self.random.random()
        if draw < 0.4:
            return self.real_factor()
        left = self.scope.readable_reals.draw()
        if draw < 0.7:
            return f"{left} * {self.real_factor()}"
        if draw < 0.8:
            return f"{left} / {self.random.randrange(1, 50)}.0"
        if draw < 0.9:
            return f"({left} - {self.real_factor()}) * {self.real_literal()}"
        if draw < 0.97:
            return f"{self.random.choice(('sqrt', 'sin', 'cos', 'exp'))}({left})"
        return self.function_call("real") or left

    def real_expression(self, terms):
        parts = [self.scope.readable_reals.draw()]
        for _ in range(terms - 1):
            parts += [self.random.choice("+-"), self.real_term()]
        return " ".join(parts)

    def comparison(self):
        operator = self.random.choice(("≡", "≠", "<", ">", "≤", "≥"))
        if self.chance(0.3):
            operator = self.random.choice("<>≤≥")
            return f"{self.scope.readable_reals.draw()} {operator} {self.real_factor()}"
        left = self.integer_expression(1 if self.chance(0.6) else 2)
        return f"{left} {operator} {self.integer_factor()}"

    def boolean_operand(self):
        draw = self.random.random()
        if draw < 0.4 or not self.scope.readable_booleans:
            return f"({self.comparison()})"
        return ("¬" if draw < 0.6 else "") + self.scope.readable_booleans.draw()

    def condition(self):
        """One operator at most: their precedence is not the same in all languages."""
        draw = self.random.random()
        if draw < 0.55:
            return self.comparison()
        if draw < 0.67 and self.scope.readable_booleans:
            operand = self.scope.readable_booleans.draw()
            return operand if draw < 0.62 else f"{operand} ⊕ {self.boolean_operand()}"
        operator = self.random.choice("∧∧∨")
        return f"{self.boolean_operand()} {operator} {self.boolean_operand()}"

    def value_of(self, type_name):
        if type_name == "BOOL":
            return self.scope.readable_booleans.draw() if self.scope.readable_booleans else "⊤"
        if type_name in REALS:
            return self.real_expression(1 if self.chance(0.7) else 2)
        return self.integer_expression(1 if self.chance(0.6) else 2)

    def actual_values(self, callee):
        return [self.value_of(type_name) for _, type_name in callee.values]

    def function_call(self, kind):
        """A call whose result is of that kind, or None if the next function's is not."""
        callee = self.function_deck.draw() if self.function_deck else None
        if not callee or (callee.result in REALS) != (kind == "real"):
            return None
        return f"{callee.name}({', '.join(self.actual_values(callee))})"

    # -----------------------------------------------------------------------------------------
    # Statements; each writes exactly the number of lines that it is given
    # -----------------------------------------------------------------------------------------

    def words(self):
        start = self.random.randrange(len(WORDS))
        return " ".join((WORDS + WORDS)[start : start + self.random.randrange(4, 9)])

    def statements(self, count):
        while count:
            size, write = self.pick_statement(count)
            self.is_last = size == count
            write(size)
            count -= size

    def nested(self, count):
        with self.output.indented():
            self.statements(count)

    def pick_statement(self, room):
        draw = self.random.random()
        nesting = len(self.loops) + self.output.depth
        if draw < 0.045 and room > 1:  # never last: C wants a statement after every label
            lines = self.random.choice((1, 1, 1, 1, 2))
            return min(lines, room - 1), self.comment
        if draw < 0.33 and nesting < 2 * MAX_DEPTH:
            compound = self.pick_compound(room, draw)
            if compound:
                return compound
        if draw < 0.345 and room >= 3:
            return 3, self.jump_out
        return 1, self.simple_statement

    def pick_compound(self, room, draw):
        choices = (
            (0.21, 3, 12, self.if_statement),
            (0.25, 3, 9, self.for_statement),
            (0.27, 3, 8, self.while_statement),
            (0.29, 3, 8, self.repeat_statement),
            (0.32, 6, 18, self.case_statement),
            (0.33, 5, 5, self.retry),
        )
        for limit, smallest, largest, write in choices:
            if draw < limit:
                if room < smallest:
                    return None
                return self.random.randrange(smallest, min(room, largest) + 1), write
        return None

    def simple_statement(self, _):
        draw = self.random.random()
        if draw < 0.07 and self.block_call():
            return
        if draw < 0.09 and self.function_deck:
            callee = self.function_deck.draw()
            self.put(CALL, callee.name, ", ".join(self.actual_values(callee)))
        elif draw < 0.10:
            self.put(ASSIGN, self.scope.integers.draw(), "τ")
        elif draw < 0.22 and self.scope.booleans:
            self.assign(self.scope.booleans.draw(), self.condition())
        elif draw < 0.45 and self.scope.reals:
            self.assign(self.scope.reals.draw(), self.real_expression(self.terms()))
        else:
            self.assign(self.scope.integers.draw(), self.integer_expression(self.terms()))

    def terms(self):
        return self.random.choice((2, 3, 3, 4, 4, 5))

    def assign(self, target, value):
        # After a comment the low bound of a CASE range would be read as a fraction.
        if self.chance(0.06) and not self.is_last:
            self.put(ASSIGN_AND_NOTE, target, value, self.words())
        else:
            self.put(ASSIGN, target, value)

    def block_call(self):
        callee = self.block_deck.draw() if self.block_deck else None
        types = [type_name for _, type_name in callee.references] if callee else []
        if not callee or not all(self.scope.of_type[name] for name in types):
            return False
        targets = [self.scope.of_type[name].draw() for name in types]
        if len(set(targets)) < len(targets):
            return False
        actual = self.actual_values(callee) + ["⁂" + name for name in targets]
        self.put(CALL_BLOCK, callee.name, ", ".join(actual), ", ".join(targets))
        return True

    def comment(self, size):
        if size == 1:
            self.put(NOTE if self.chance(0.6) else REMARK, self.words())
            return
        self.put(REMARK_BEGIN, self.words())
        self.put(REMARK_END, self.words())

    def split(self, total, parts):
        """Splits a number of lines at random into that many parts of at least one each."""
        cuts = sorted(self.random.sample(range(1, total), parts - 1))
        return [b - a for a, b in zip([0, *cuts], [*cuts, total])]

    def if_statement(self, size):
        branches = min(self.random.choice((1, 1, 2, 2, 3)), (size - 1) // 2)
        bodies = self.split(size - 1 - branches, branches)
        self.put(IF, self.condition())
        self.nested(bodies[0])
        for i, body in enumerate(bodies[1:], start=2):
            if i == branches and self.chance(0.7):
                self.put(ELSE)
            else:
                self.put(ELSIF, self.condition())
            self.nested(body)
        self.put(END_IF)

    def loop_body(self, size):
        """Returns what Lua needs before the end of the loop."""
        self.loop_count += 1
        loop = [self.loop_count, False]
        self.loops.append(loop)
        self.nested(size)
        self.loops.pop()
        return CONTINUE_LABEL.format(loop[0]) if loop[1] else ""

    def while_statement(self, size):
        self.put(WHILE, self.condition())
        self.put(END_WHILE, self.loop_body(size - 2))

    def repeat_statement(self, size):
        self.put(REPEAT)
        label = self.loop_body(size - 2)
        self.put(UNTIL, label, self.condition())

    def for_statement(self, size):
        free = [name for name in self.scope.loop_variables if name not in self.busy]
        if not free:
            self.while_statement(size)
            return
        variable = self.random.choice(free)
        low = str(self.random.randrange(0, 4))
        high = self.integer_expression(2) if self.chance(0.5) else self.integer_literal()
        if self.chance(0.7):
            self.put(FOR_TO, variable, low, high)
        else:
            self.put(FOR_DOWNTO, variable, high, low)
        self.busy.append(variable)
        label = self.loop_body(size - 2)
        self.busy.pop()
        self.put(END_FOR, label)

    def case_label(self, low, high):
        """The values low to high in the three languages, as a list or a range."""
        if high - low > 3:
            in_lua = f"selector >= {low} and selector <= {high}"
            return f"{low}..{high}", f"case {low} ... {high}", in_lua
        values = range(low, high + 1)
        return (
            ", ".join(map(str, values)),
            ": ".join(f"case {value}" for value in values),
            " or ".join(f"selector == {value}" for value in values),
        )

    def case_statement(self, size):
        branches = min(self.random.randrange(2, 6), (size - 2) // 2)
        bodies = self.split(size - 2 - branches, branches)
        self.put(CASE, self.integer_variable())
        self.loops.append(None)
        low = 0
        for i, body in enumerate(bodies):
            high = low + self.random.choice((0, 0, 0, 1, 2, 5))
            if i == branches - 1 and self.chance(0.5):
                self.put(CASE_ELSE)
            else:
                self.put(BRANCH if i else FIRST_BRANCH, *self.case_label(low, high))
            self.nested(body)
            low = high + self.random.randrange(1, 5)
        self.loops.pop()
        self.put(END_CASE)

    def jump_out(self, _):
        """Leaves a loop or the unit on a condition; three lines."""
        self.put(IF, self.condition())
        with self.output.indented():
            self.jump(self.loops[-1] if self.loops else None)
        self.put(END_IF)

    def jump(self, loop):
        if loop and self.chance(0.5):
            loop[1] = True
            self.put(CONTINUE, loop[0])
        elif loop:
            self.put(BREAK)
        else:
            self.put(self.scope.exit_form, self.scope.returned)

    def retry(self, size):
        """A backward GOTO; five lines. Labels stand at the outermost level of a part."""
        if self.output.depth or self.scope.exit_form is not EXIT_PART:
            self.if_statement(size)
            return
        self.label_count += 1
        label = f"again_{self.label_count}"
        self.put(LABEL, label)
        self.assign(self.scope.integers.draw(), self.integer_expression(2))
        self.put(IF, self.comparison())
        self.put(GOTO, label)
        self.put(END_IF)

    # -----------------------------------------------------------------------------------------
    # Functions and function blocks
    # -----------------------------------------------------------------------------------------

    def definitions(self, lines):
        """Writes functions and function blocks in turn, at least one of each."""
        count = max(2, lines // 32)
        sizes = [lines // count + (i < lines % count) for i in range(count)]
        for i, size in enumerate(sizes):
            self.definition(i + 1, size, is_function=i % 2 == 0)
            # Calls of the latest ones are enough; all are called from the program.
            self.use_callables(self.functions[-20:])
        self.use_callables(self.functions)

    def use_callables(self, callables):
        self.function_deck = Deck(self.random, [c for c in callables if c.result])
        self.block_deck = Deck(self.random, [c for c in callables if not c.result])

    def definition(self, number, size, is_function):
        unit = self.signature(number, is_function)
        end = self.output.lines + size - 1
        self.definition_head(unit)
        exit_form = EXIT_FUNCTION if is_function else EXIT_BLOCK
        self.scope = Scope(
            self.random, unit.variables(), [COUNTER], [COUNTER[0]], exit_form, unit.returned()
        )
        self.definition_body(end - self.output.lines, unit.result)
        self.put(END_FUNCTION if is_function else END_BLOCK, unit.returned())
        self.functions.append(unit)

    def signature(self, number, is_function):
        choice = self.random.choice
        values = [(f"value{i}", choice(TYPE_MIX)) for i in range(1, 1 + choice((1, 2, 3)))]
        values.append(("amount", choice(("REAL", "LREAL"))))
        references = []
        if not is_function:
            types = self.random.sample(REFERENCE_TYPES, choice((1, 2)))
            references = [(f"target{i}", name) for i, name in enumerate(types, start=1)]
        verb = choice(("Scale", "Limit", "Filter", "Merge")) if is_function else "Control"
        name = f"{verb}{choice(ROOTS).capitalize()}{number}"
        result = choice(("INT", "DINT", "REAL", "LREAL")) if is_function else None
        return Callable(name, result, values, references)

    def definition_head(self, unit):
        c_result = C_TYPES.get(unit.result)
        self.put(FUNCTION if unit.result else BLOCK, unit.name, unit.result, c_result)
        self.put(SECTION, "VAR_ARG")
        self.parameters(ARGUMENT, unit.values, is_end=not unit.references)
        if unit.references:
            self.put(END_SECTION)
            self.put(SECTION, "VAR_REF")
            self.parameters(REFERENCE, unit.references, is_end=True)
        self.put(END_FUNCTION_ARGUMENTS if unit.result else END_BLOCK_ARGUMENTS, c_result)
        self.put(SECTION, "VAR")
        for name, type_name in [COUNTER, *LOCALS]:
            self.declare(LOCAL, name, type_name, initial(type_name, "0"))
        self.put(END_SECTION)

    def declare(self, form, name, type_name, last):
        with self.output.indented():
            self.put(form, name, type_name, C_TYPES[type_name], last)

    def parameters(self, form, parameters, is_end):
        for i, (name, type_name) in enumerate(parameters, start=1):
            is_last = is_end and i == len(parameters)
            self.declare(form, name, type_name, "" if is_last else ",")

    def definition_body(self, size, result):
        self.nested(size - 1)
        target = "®" if result else "part"
        is_integer = result in INTEGERS
        value = self.integer_expression(3) if is_integer else self.real_expression(3)
        with self.output.indented():
            self.put(ASSIGN, target, value)

    # -----------------------------------------------------------------------------------------
    # The program
    # -----------------------------------------------------------------------------------------

    def variable_list(self):
        """Names and types; the first ones are the control variables of FOR."""
        names = []
        for i in range(self.variables):
            root, role = ROOTS[i % len(ROOTS)], ROLES[i // len(ROOTS) % len(ROLES)]
            names.append(f"{root}{role}{i + 1}")
        types = ["DINT"] * LOOP_VARIABLES
        types += [self.random.choice(TYPE_MIX) for _ in range(self.variables - len(types))]
        return list(zip(names, types))

    def declarations(self, variables):
        """Returns what may be assigned to and the constants."""
        cuts = [int(len(variables) * share) for share in (0.0, 0.65, 0.70, 0.85, 0.95, 1.0)]
        sections = [variables[a:b] for a, b in zip(cuts, cuts[1:])]
        names = ("VAR", "VAR", "VAR_INPUT", "VAR_OUTPUT", "VAR_GLOBAL")
        forms = (VARIABLE, CONSTANT, INPUT, VARIABLE, VARIABLE)
        for section, name, form in zip(sections, names, forms):
            self.put(SECTION, name)
            for variable, type_name in section:
                value = initial(type_name, str(self.random.randrange(0, 100)))
                self.declare(form, variable, type_name, value)
            self.put(END_SECTION)
        return [v for i, section in enumerate(sections) if i != 1 for v in section], sections[1]

    def body(self, lines):
        """Writes the statements in parts; returns the names of the parts."""
        parts = []
        while lines:
            size = min(PART_LINES, lines)
            parts.append(f"part_{len(parts) + 1}")
            self.put(PART, parts[-1])
            self.statements(size)
            self.put(END_PART)
            lines -= size
        return parts

    def program_scope(self):
        """Writes the declarations; what the statements may name."""
        variables = self.variable_list()
        assignable, constants = self.declarations(variables)
        loop_variables = variables[:LOOP_VARIABLES]
        return Scope(
            self.random,
            assignable[LOOP_VARIABLES:],
            [*constants, *loop_variables],
            [name for name, _ in loop_variables],
            EXIT_PART,
        )

    def generate(self):
        frame = 2 + 2 * SECTIONS + self.variables  # PROGRAM, END_PROGRAM and the declarations
        statements = self.lines - frame
        if statements < LEAST_STATEMENTS or self.variables < LEAST_VARIABLES:
            raise ValueError(f"{self.lines} lines are too few for {self.variables} variables")
        in_functions = int(statements * FUNCTIONS_SHARE)
        self.put(PROLOGUE)
        self.definitions(in_functions)
        self.put(PROGRAM)
        self.scope = self.program_scope()
        parts = self.body(statements - in_functions)
        self.put(MAIN)
        for part in parts:
            self.put(CALL_PART, part)
        self.put(END_PROGRAM)
        self.output.close()


def initial(type_name, number):
    if type_name == "BOOL":
        return "⊥"
    return number + ".5" if type_name in REALS else number


def generate(base, lines, variables, seed):
    """Writes base.st, base.c and base.lua."""
    Generator(base, lines, variables, seed).generate()


def tokens_per_line(source):
    """How many tokens a line of a Structured Text file has on average, comments left out."""
    lines = tokens = 0
    with open(source, encoding="ascii") as file:
        for line in file:
            lines += 1
            tokens += len(TOKENS.findall(COMMENTS.sub("", line)))
    return tokens / lines


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--lines", type=int, default=10_000)
    parser.add_argument("--variables", type=int, default=100)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("base", type=Path, help="the files' name without a suffix")
    arguments = parser.parse_args()
    generate(arguments.base, arguments.lines, arguments.variables, arguments.seed)


if __name__ == "__main__":
    main()
