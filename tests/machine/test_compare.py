"""The machine does what generated programs mean; a difference between two runs shows."""

import subprocess
import unittest

import compare
from evaluate import Result
from compare import Trace, first_difference, read_trace

PROGRAMS = 60
HEAD = "# engine: default\ncycle,tick,On,x,r\n"
TYPES = {"ON": "BOOL", "X": "INT", "R": "REAL"}


def difference(rows, trace, stopped=None, message=None, undeclared=frozenset()):
    evaluated = [dict(zip(TYPES, row)) for row in rows]
    ticks = [100 * cycle for cycle in range(len(rows))]
    result = Result(evaluated, ticks, TYPES, undeclared, stopped)
    return first_difference(result, Trace(read_trace(HEAD + trace), message))


class Differences(unittest.TestCase):
    def test_none(self):
        trace = "1,0,TRUE,-2,0.5\n2,100,FALSE,3,2\n"
        self.assertIsNone(difference([(1, -2, 0.5), (0, 3, 2.0)], trace))
        self.assertIsNone(difference([(1, 2, float("nan"))], "1,0,TRUE,2,nan\n"))
        self.assertIsNone(difference([(1, 2, 0.10000000149011612)], "1,0,TRUE,2,0.1\n"))

    def test_values(self):
        for row, name in (((0, 2, 0.5), "ON"), ((1, 3, 0.5), "X"), ((1, 2, 0.25), "R")):
            self.assertIn(f"cycle 1, {name} ", difference([row], "1,0,TRUE,2,0.5\n"))

    def test_sign_of_zero(self):
        self.assertIn("R", difference([(1, 2, -0.0)], "1,0,TRUE,2,0.0\n"))

    def test_second_cycle(self):
        found = difference([(1, 2, 0.5), (1, 3, 0.5)], "1,0,TRUE,2,0.5\n2,100,TRUE,2,0.5\n")
        self.assertIn("cycle 2, X ", found)

    def test_tick(self):
        self.assertIn("tick", difference([(1, 2, 0.5)], "1,7,TRUE,2,0.5\n"))

    def test_stops(self):
        row, line = (1, 2, 0.5), "1,0,TRUE,2,0.5\n"
        self.assertIsNone(difference([row], line, "overflow", "it stopped"))
        self.assertIn("not stopped", difference([row], line, "overflow"))
        self.assertIn("not stopped", difference([row], line, None, "it stopped"))
        self.assertIn("0 cycles", difference([row], "", "overflow", "it stopped"))

    def test_a_variable_is_missing(self):
        trace = read_trace("cycle,tick,x,r\n1,0,2,0.5\n")
        rows = [{"ON": 1, "X": 2, "R": 0.5}]
        told = "cycle 1, ON : BOOL, evaluation 1, machine None"
        for undeclared, expected in (({"ON"}, None), (set(), told)):
            result = Result(rows, [0], TYPES, undeclared, None)
            self.assertEqual(first_difference(result, Trace(trace, None)), expected)


def has_machine():
    if not compare.DESK.exists():
        return False
    process = subprocess.run([compare.DESK, "run", "--help"], capture_output=True, check=False)
    return process.returncode == 0


@unittest.skipUnless(has_machine(), "yxst has no subcommand run")
class Machine(unittest.TestCase):
    def check(self, tasks):
        outcomes = compare.compare_all(tasks, compare.SECONDS)
        self.assertEqual([one for one in outcomes if one.kind == "different"], [])
        self.assertEqual(len(outcomes), PROGRAMS)

    def test_programs(self):
        self.check([compare.Task(seed, {}, {}) for seed in range(1, PROGRAMS + 1)])

    def test_programs_under_other_choices(self):
        self.check([compare.varied(seed) for seed in range(1, PROGRAMS + 1)])


if __name__ == "__main__":
    unittest.main()
