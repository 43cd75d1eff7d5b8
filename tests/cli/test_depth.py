"""Nesting: what is deep compiles up to the limit and stops beyond it, under a small stack; what
only looks deep has no limit."""

import resource
import unittest

from limits import IS_MEASURE, KIB, MIB, STACK_SIZE, run_limited
from support import CompilerTestCase

PROMISED_LEVELS = 1000
LIMIT_LEVELS = 4499  # beside the body of the program, which is one
ABSURD_LEVELS = 1_000_000
CHAIN_LINKS = 100_000

FUNCTION = """FUNCTION f : BOOL
VAR_ARG a : BOOL; END_VAR
RESULT := a;
END_FUNCTION
"""

FUNCTION_OF_INTEGER = """FUNCTION f : INT
VAR_ARG a : INT; END_VAR
RESULT := a;
END_FUNCTION
"""

FUNCTION_OF_TWO = """FUNCTION f : BOOL
VAR_ARG a : BOOL; c : BOOL; END_VAR
RESULT := a = c;
END_FUNCTION
"""


def program(body, functions=""):
    return f"{functions}PROGRAM p\nVAR x : INT; b : BOOL; END_VAR\n{body}\nEND_PROGRAM\n"


# Each of these gives the function that makes the source for a number of levels.


def statement(begin, end):
    return lambda levels: program(begin * levels + end * levels)


def integer(begin, middle, end):
    return lambda levels: program(f"x := {begin * levels}{middle}{end * levels};")


def boolean(begin, middle, end, functions=""):
    return lambda levels: program(f"b := {begin * levels}{middle}{end * levels};", functions)


# Each construct that nests, in its smallest shape.
NESTED = {
    "parentheses": integer("(", "1", ")"),
    "-( )": integer("-(", "1", ")"),
    "+( )": integer("+(", "1", ")"),
    "NOT ( )": boolean("NOT(", "TRUE", ")"),
    "parentheses of a comparison": boolean("b=(", "b", ")"),
    "call in the first parameter": boolean("f(", "b", ")", FUNCTION),
    "call in the second parameter": boolean("f(b,", "b", ")", FUNCTION_OF_TWO),
    "call in a comparison": boolean("b=f(", "b", ")", FUNCTION),
    "Boolean AND": boolean("b AND ", "b", ""),
    "Boolean OR": boolean("b OR ", "b", ""),
    "Boolean XOR": boolean("b XOR ", "b", ""),
    **{
        f"integer {operator}": integer(f"1 {operator} ", "1", "")
        for operator in "* / MOD AND OR XOR SHL SHR ROL ROR **".split()
    },
    "IF": statement("IF TRUE THEN ", "END_IF;"),
    "ELSIF": statement("IF TRUE THEN ELSIF TRUE THEN ", "END_IF;"),
    "ELSE": statement("IF TRUE THEN ELSE ", "END_IF;"),
    "CASE": statement("CASE 1 OF 1:", "END_CASE;"),
    "CASE, ELSE": statement("CASE 1 OF 1:ELSE ", "END_CASE;"),
    "FOR": statement("FOR x:=1 TO 2 DO ", "END_FOR;"),
    "WHILE": statement("WHILE TRUE DO ", "END_WHILE;"),
    "REPEAT": statement("REPEAT ", "UNTIL TRUE END_REPEAT;"),
}

# The constructs that need the most stack for a level, of expressions and of statements.
DEEPEST = ("call in a comparison", "CASE, ELSE", "FOR")


def declared(names, body):
    declarations = "".join(f"{name}:INT;" for name in names)
    return f"PROGRAM p\nVAR x : INT; b : BOOL; {declarations} END_VAR\n{body}\nEND_PROGRAM\n"


def numbered(text, links):
    return "".join(text.format(i) for i in range(links))


# What is written in a row and takes no level, for a number of links.
CHAINS = {
    "+": lambda links: program("x := 1" + "+1" * links + ";"),
    "-": lambda links: program("x := 1" + "-1" * links + ";"),
    "sum of products": lambda links: program("x := 1" + "+1*1" * links + ";"),
    "sum of parentheses": lambda links: program("x := 1" + "+(1)" * links + ";"),
    "sum of variables and TICK": lambda links: program("x := 1" + "+x-TICK" * links + ";"),
    "ELSIF": lambda links: program("IF b THEN " + "ELSIF b THEN " * links + "END_IF;"),
    "assignments": lambda links: program("x:=1;" * links),
    "statements without ; between": lambda links: program("IF b THEN END_IF" + ";" * links),
    "IFs in a row": lambda links: program("IF b THEN END_IF;" * links),
    "calls": lambda links: program("f(b);" * links, FUNCTION),
    "user labels": lambda links: program(numbered("w{}:", links)),
    "empty statements": lambda links: program(";" * links),
    "(* *) comments": lambda links: program("(**)" * links),
    "// comments": lambda links: program("//\n" * links),
    "mixed comments": lambda links: program("//\n(**)" * (links // 2)),
    "comments in an expression": lambda links: program("x := 1 +" + "(**)" * links + "1;"),
    "blank lines": lambda links: program("\n" * links),
    "declarations": lambda links: declared((f"v{i}" for i in range(links)), ""),
    "sections": lambda links: "PROGRAM p\n" + "VAR END_VAR\n" * links + "END_PROGRAM\n",
    "; after a section": lambda links: "PROGRAM p\nVAR END_VAR" + ";" * links + "END_PROGRAM\n",
    "functions": lambda links: program("", numbered("FUNCTION q{}:INT END_FUNCTION\n", links)),
    "parameters": lambda links: (
        "FUNCTION f : INT VAR_ARG " + numbered("v{}:INT;", links) + "END_VAR END_FUNCTION\n"
        "PROGRAM p VAR x : INT; END_VAR x := f(1" + ",1" * (links - 1) + "); END_PROGRAM\n"
    ),
    "CASE elements": lambda links: program("CASE x OF " + numbered("{}:;", links) + "END_CASE;"),
    "CASE labels": lambda links: program(
        "CASE x OF " + ",".join(map(str, range(links))) + ":; END_CASE;"
    ),
}


class DepthTestCase(CompilerTestCase):
    def compile(self, source, stack_size=STACK_SIZE):
        self.compiler.write("in.st", source.encode("ascii"))
        # The messages are wanted and the code is not, so no -s: the result file has the former.
        return run_limited(self.compiler.path, "in.st", "out", "-r", stack_size=stack_size)

    def last_message(self):
        lines = (self.compiler.path / "out.res").read_bytes().splitlines()
        return lines[-1].decode("ascii") if lines else ""

    def assert_compiles(self, source, stack_size=STACK_SIZE):
        run = self.compile(source, stack_size)
        self.assertEqual((run.status, run.screen), (0, b""), self.last_message())
        self.assertIn("Build successful.", self.last_message())
        code = (self.compiler.path / "out").read_bytes()
        self.assertTrue(code.endswith(b" RET "), code[-100:])

    def assert_too_deep(self, source, stack_size=STACK_SIZE):
        run = self.compile(source, stack_size)
        self.assertEqual(run.status, 1, self.last_message())
        self.assertRegex(self.last_message(), r"^Error: Line \d+, Column \d+: Too deep nesting$")
        self.assertFalse((self.compiler.path / "out").exists())


class Nesting(DepthTestCase):
    def for_each_construct(self, check, levels):
        for name, source in NESTED.items():
            with self.subTest(construct=name, levels=levels):
                check(source(levels))

    def test_promised_levels_compile(self):
        self.for_each_construct(self.assert_compiles, PROMISED_LEVELS)

    def test_promised_calls_within_operators_compile(self):
        calls = "f(1+2*(" * PROMISED_LEVELS + "1" + "))" * PROMISED_LEVELS
        self.assert_compiles(program(f"x := {calls};", FUNCTION_OF_INTEGER))

    def test_limit_compiles(self):
        self.for_each_construct(self.assert_compiles, LIMIT_LEVELS)

    def test_one_level_more_is_too_deep(self):
        self.for_each_construct(self.assert_too_deep, LIMIT_LEVELS + 1)

    def test_absurd_levels_are_too_deep(self):
        self.for_each_construct(self.assert_too_deep, ABSURD_LEVELS)

    def test_levels_of_all_constructs_add_up(self):
        statements = LIMIT_LEVELS // 2
        parentheses = LIMIT_LEVELS - statements

        def mixed(inner):
            sum_of_all = "x := " + "(" * inner + "1" + ")" * inner + ";"
            return program("WHILE b DO " * statements + sum_of_all + "END_WHILE;" * statements)

        self.assert_compiles(mixed(parentheses))
        self.assert_too_deep(mixed(parentheses + 1))

    def test_levels_are_given_back(self):
        deep = "x := " + "(" * LIMIT_LEVELS + "1" + ")" * LIMIT_LEVELS + ";"
        self.assert_compiles(program(deep * 10))

    def test_limit_does_not_follow_the_stack(self):
        hard = resource.getrlimit(resource.RLIMIT_STACK)[1]
        for stack_size in (STACK_SIZE, 2 * STACK_SIZE, hard):
            with self.subTest(stack_size=stack_size):
                source = NESTED[DEEPEST[0]]
                self.assert_compiles(source(LIMIT_LEVELS), stack_size)
                self.assert_too_deep(source(LIMIT_LEVELS + 1), stack_size)

    def test_unfinished_nesting(self):
        # Half-typed text: the levels are opened and never closed.
        begin_of_program = "PROGRAM p\nVAR x : INT; b : BOOL; END_VAR\n"
        for before, each in (
            ("x := ", "("),
            ("x := ", "-("),
            ("b := ", "b AND "),
            ("", "IF b THEN "),
            ("", "CASE 1 OF 1:"),
        ):
            with self.subTest(each=each):
                self.assert_too_deep(begin_of_program + before + each * ABSURD_LEVELS)
                run = self.compile(begin_of_program + before + each * LIMIT_LEVELS)
                self.assertEqual(run.status, 1)
                self.assertIn("Error: ", self.last_message())
                self.assertNotIn("Too deep nesting", self.last_message())
                self.assertFalse((self.compiler.path / "out").exists())


@unittest.skipUnless(IS_MEASURE, "the stack use of this build is no measure")
class StackUse(DepthTestCase):
    STEP = 64 * KIB
    HEADROOM = 1 * MIB

    def needed_stack(self, source):
        """The smallest stack, in steps, that the source compiles with."""
        too_small, enough = self.STEP, STACK_SIZE
        while enough - too_small > self.STEP:
            size = (too_small + enough) // 2 // self.STEP * self.STEP
            if self.compile(source, size).status == 0:
                enough = size
            else:
                too_small = size
        return enough

    def test_deepest_use_leaves_headroom(self):
        for name in DEEPEST:
            with self.subTest(construct=name):
                needed = self.needed_stack(NESTED[name](LIMIT_LEVELS))
                print(f"{name}: {LIMIT_LEVELS} levels need {needed // KIB} KiB of stack")
                self.assertLessEqual(needed, STACK_SIZE - self.HEADROOM)


class Chains(DepthTestCase):
    def test_chains_take_no_level(self):
        for name, source in CHAINS.items():
            with self.subTest(chain=name):
                self.assert_compiles(source(CHAIN_LINKS))

    @unittest.skipUnless(IS_MEASURE, "the stack use of this build is no measure")
    def test_chains_take_no_stack(self):
        for name in (
            "+",
            "ELSIF",
            "CASE elements",
            "CASE labels",
            "(* *) comments",
            "// comments",
            "comments in an expression",
        ):
            with self.subTest(chain=name):
                self.assert_compiles(CHAINS[name](CHAIN_LINKS), 256 * KIB)


if __name__ == "__main__":
    unittest.main()
