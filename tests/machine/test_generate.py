"""Generated programs: they compile, end, change their inputs, and hold all constructs."""

import sys
import unittest
from collections import Counter
from pathlib import Path

from evaluate import evaluate, read_inputs
from generate import ALL_TYPES, FEWEST_LINES, MOST_LINES, constructs_of, generate
from operations import Undefined
from script import BUILT_INS

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "cli"))
from support import compile_source, side_by_side  # noqa: E402

COMPILED = 100
PROGRAMS = 500
SHARE_TO_THE_END = 0.9

OPERATORS = "+ - * / MOD ** = <> < > <= >= AND XOR SHL SHR ROL ROR".split()
BIT_OPERATORS = ["BIT AND", "BIT OR", "BIT XOR"]
TREES = """Number Truth Variable Tick Negative Not Complement Or Assign SetTick If While Repeat For
    Case Break Continue Exit Goto Label CallStatement PROGRAM FUNCTION FUNCTION_BLOCK""".split()
SECTIONS = ("VAR", "VAR_INPUT", "VAR_OUTPUT", "VAR_GLOBAL", "VAR_ARG", "VAR_REF")
DECLARATIONS = [f"{one} {type_name}" for one in SECTIONS for type_name in ALL_TYPES]
CALLS = ["call of a definition", *(f"call {name}" for name in BUILT_INS)]


class Programs(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.programs = [generate(seed) for seed in range(PROGRAMS)]

    def test_they_compile(self):
        sources = [program.source.encode() for program in self.programs[:COMPILED]]
        results = side_by_side(compile_source, sources)
        refused = [one.source for one, it in zip(self.programs, results) if it.status != 0]
        self.assertEqual(refused, [])

    def test_they_hold_all_constructs(self):
        counts = Counter(one for it in self.programs for one in constructs_of(it.source))
        wanted = [*OPERATORS, *BIT_OPERATORS, *TREES, *DECLARATIONS, *CALLS]
        self.assertEqual([one for one in wanted if counts[one] < PROGRAMS // 100], [])

    def test_their_length(self):
        lengths = {program.source.count("\n") for program in self.programs}
        self.assertGreaterEqual(min(lengths), FEWEST_LINES)
        self.assertLessEqual(max(lengths), MOST_LINES)
        self.assertGreater(len(lengths), (MOST_LINES - FEWEST_LINES) // 2)

    def test_most_run_to_the_end(self):
        ends = Counter(self.how_it_ends(program) for program in self.programs)
        self.assertGreater(ends["end"], SHARE_TO_THE_END * PROGRAMS, ends)
        self.assertGreater(len(ends), 1, ends)

    @staticmethod
    def how_it_ends(program):
        try:
            inputs = read_inputs(program.inputs)
            result = evaluate(program.source, program.cycles, program.tick, inputs)
        except Undefined as reason:
            return f"undefined: {reason}"
        return result.stopped or "end"

    def test_inputs_change(self):
        tables = [read_inputs(program.inputs) for program in self.programs]
        changing = [table for table in tables if len({str(row) for _, row in table}) > 1]
        self.assertGreater(len(changing), PROGRAMS // 3)

    def test_a_seed_gives_one_program(self):
        self.assertEqual(generate(7), self.programs[7])
        self.assertEqual(len({program.source for program in self.programs}), PROGRAMS)


if __name__ == "__main__":
    unittest.main()
