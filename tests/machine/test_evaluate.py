"""The evaluation of scripts, by values that were worked out by hand from the manual."""

import math
import unittest

from evaluate import evaluate, read_engine, read_inputs
from operations import Undefined, to_single, whole_to_single

VARIABLES = """
    a : INT := 8; b : INT := 4; c : INT := 2; n : INT := -7; i : INT; j : INT; z : INT;
    s : SINT := -8; u : USINT := 5; w : UINT := 65535; d : DINT; e : UDINT;
    x : LREAL; r : REAL; q : REAL := 2.5;
    p : BOOL; t : BOOL := TRUE; f : BOOL := FALSE; o : BOOL;
"""


def run(statements, cycles=1, sections="", definitions="", **options):
    sections += f"\nVAR{VARIABLES}END_VAR"
    source = f"{definitions}\nPROGRAM Demo\n{sections}\n{statements}\nEND_PROGRAM\n"
    return evaluate(source, cycles, **options)


def after(statements, name, **options):
    """A variable at the end of the last cycle."""
    result = run(statements, **options)
    if result.stopped:
        raise AssertionError(result.stopped)
    return result.rows[-1][name.upper()]


class Evaluation(unittest.TestCase):
    def expect(self, expected, target="x", **options):
        """Each line is an expression and the value that the target has after it is stored."""
        for line in expected.strip().splitlines():
            expression, _, value = line.partition("->")
            with self.subTest(expression.strip(), **options):
                got = after(f"{target} := {expression};", target, **options)
                self.assertEqual(repr(got), repr(type(got)(float(value))))

    def expect_stop(self, reason, statements, **options):
        with self.subTest(statements):
            result = run(statements, **options)
            self.assertIn(reason, str(result.stopped))
            return result


class Grouping(Evaluation):
    def test_right_grouping_of_all_but_sums(self):
        self.expect("""
            a - b - c -> 2
            a / b * c -> 1
            (a / b) * c -> 4
            100 / a / b -> 50
            a * b / c -> 16
            a * 7 MOD 4 -> 24
            c ** 2 * 3 -> 64
            c + 3 * b - 1 -> 13
            -c ** 2 -> 4
            c SHL 2 AND 7 -> 8
            a AND 15 OR n -> 8
            12 XOR 10 AND 3 -> 14
            1 SHL b SHL 1 -> 256
            + -5 -> -5
            a - -b -> 12
            a * -b -> -32
            """)

    def test_sums_end_a_right_operand(self):
        self.expect("""
            a AND 12 + 1 -> 9
            a / 3 + 1 -> 3
            2 ** 3 + 1 -> 9
            """)

    def test_not_takes_a_comparison_or_a_sum(self):
        self.expect("NOT a + 1 -> -10\n NOT a AND 3 -> -1\n a AND (NOT b) -> 8")
        self.expect("NOT a = b -> 1\n NOT t AND f -> 0\n NOT f AND t -> 1", "p")

    def test_truth_values_group_to_the_right(self):
        self.expect("""
            f AND f OR t -> 0
            t OR f AND f -> 1
            (f AND f) OR t -> 1
            t XOR t OR t -> 0
            t XOR f AND f -> 1
            TRUE AND a > b -> 1
            t = f AND t -> 0
            """, "p")  # fmt: skip

    def test_numbers_compared_with_truth(self):
        self.expect("c = TRUE -> 0\n (c - 1) = TRUE -> 1\n z = FALSE -> 1", "p")
        self.expect("t < f -> 0\n q = t -> 0", "p")

    def test_a_sign_before_a_truth_value(self):
        self.expect("-t -> 1\n -f -> 0\n -t AND t -> 1\n -f OR f -> 0\n -(a > b) XOR t -> 0", "p")


class ShortCircuit(Evaluation):
    FUNCTION = """
    FUNCTION Seen : BOOL VAR_REF count : INT; END_VAR VAR_ARG value : BOOL; END_VAR
        count := count + 1; RESULT := value;
    END_FUNCTION"""

    def test_or_alone_leaves_out_its_right_side(self):
        for operator, calls in (("OR", 0), ("AND", 1), ("XOR", 1)):
            statement = f"p := t {operator} Seen(i, TRUE);"
            self.assertEqual(after(statement, "i", definitions=self.FUNCTION), calls, operator)
        self.assertEqual(after("p := f OR Seen(i, TRUE);", "i", definitions=self.FUNCTION), 1)
        self.assertEqual(after("p := f AND Seen(i, TRUE);", "i", definitions=self.FUNCTION), 1)


class WholeNumbers(Evaluation):
    def test_division(self):
        self.expect("""
            -7 / 2 -> -3
            7 / (-2) -> -3
            -7 MOD 2 -> -1
            7 MOD (-2) -> 1
            (-8) / (-3) -> 2
            """)

    def test_powers(self):
        self.expect("""
            0 ** 0 -> 1
            2 ** 10 -> 1024
            (-3) ** 3 -> -27
            2 ** (-1) -> 0
            1 ** (-5) -> 1
            (-1) ** (-3) -> -1
            (-1) ** (-4) -> 1
            0 ** 5 -> 0
            (-1) ** 4294967295 -> -1
            2 ** 63 -> -9223372036854775808
            2 ** 64 -> 0
            3 ** 41 -> -420491770248316829
            """)
        self.expect("2 ** 64 -> 9223372036854775807\n (-2) ** 65 -> -9223372036854775808",
                    choices={"overflow": "saturate"})  # fmt: skip

    def test_bits(self):
        self.expect("""
            12 AND 10 -> 8
            12 OR 3 -> 15
            12 XOR 10 -> 6
            n AND 255 -> 249
            NOT u -> 250
            NOT (s + 3) -> 4
            NOT w -> 0
            NOT 200 -> 55
            NOT (NOT u) -> 5
            """)

    def test_shifts_left_move_64_bits(self):
        self.expect("""
            1 SHL 40 -> 1099511627776
            1 SHL 63 -> -9223372036854775808
            1 SHL 64 -> 0
            1 SHL (-1) -> 0
            n SHL 1 -> -14
            """)
        self.expect("u SHL 6 -> 64\n s SHL 4 -> -128\n 1 SHL 8 -> 0", choices={"width": "typed"})

    def test_shifts_left_in_a_type_without_a_sign(self):
        self.expect("u SHL 7 -> 128", choices={"width": "typed", "overflow": "saturate"})

    def test_shifts_right_work_on_the_bits_of_the_type(self):
        self.expect("""
            s SHR 1 -> 124
            s SHR 8 -> 0
            s SHR (-1) -> 0
            n SHR 1 -> 32764
            (w + 2) SHR 0 -> 1
            200 SHR 3 -> 25
            (s SHR 0) -> -8
            """)

    def test_shifts_beyond_by_the_remainder(self):
        self.expect("""
            u SHR 9 -> 2
            u SHR (-7) -> 2
            1 SHL 65 -> 2
            """, choices={"shift": "modulo"})  # fmt: skip

    def test_rotations(self):
        for shift in ("zero", "modulo"):
            self.expect("""
                u ROR 1 -> 130
                u ROL 1 -> 10
                u ROL 9 -> 10
                u ROL (-1) -> 130
                s ROL 1 -> -15
                s ROR 8 -> -8
                n ROR 4 -> -24577
                """, choices={"shift": shift})  # fmt: skip

    def test_numbers_have_the_first_type_that_holds_them(self):
        """NOT shows it: 255 less the number for a USINT."""
        self.expect("""
            NOT 127 -> -128
            NOT 128 -> 127
            NOT 256 -> -257
            NOT 32768 -> 32767
            NOT 65536 -> -65537
            NOT 2147483648 -> 2147483647
            NOT 16#FF -> 0
            NOT 2#10000000 -> 127
            NOT 8#377 -> 0
            8#17 + 007 -> 22
            99999999999999999999 -> 1e20
            """)

    def test_overflow_of_64_bits(self):
        self.expect("(2 ** 62) * 4 -> 0\n (2 ** 62) * 2 + 0 -> -9223372036854775808")
        saturated = {"overflow": "saturate"}
        self.expect("(2 ** 62) * 4 -> 9223372036854775807", choices=saturated)
        self.expect("-(2 ** 62) * 4 -> -9223372036854775808", choices=saturated)
        self.expect_stop("overflow", "x := (2 ** 62) * 4;", choices={"overflow": "stop"})

    def test_typed_results(self):
        typed = {"width": "typed"}
        self.expect("u + 251 -> 0\n u - 6 -> 255\n s * 17 -> 120", choices=typed)
        self.expect("w + 1 -> 0\n -200 -> 56", choices=typed)
        self.expect("100 + 100 -> -56\n 100 + a * 0 + 100 -> 200", choices=typed)
        saturated = {"width": "typed", "overflow": "saturate"}
        self.expect("u + 251 -> 255\n u - 6 -> 0\n s * 17 -> -128\n -200 -> 0", choices=saturated)
        self.expect("u + 251 -> 256\n u - 6 -> -1\n -200 -> -200")

    def test_tick_is_a_udint(self):
        self.expect("NOT TICK -> 4294967295\n TICK - 1 -> -1")


class DivisionByZero(Evaluation):
    def test_ends_the_run(self):
        for text in ("i := a / z;", "i := a MOD z;", "x := z ** (-1);"):
            self.expect_stop("division-by-zero", text)

    def test_goes_on(self):
        checks = {"division-by-zero": "off"}
        self.expect("a / z -> 0\n a MOD z -> 0\n z ** (-1) -> 0",
                    choices={"divide-by-zero": "zero"}, checks=checks)  # fmt: skip
        self.expect("a / z -> 8\n a MOD z -> 0\n z ** (-1) -> 1",
                    choices={"divide-by-zero": "one"}, checks=checks)  # fmt: skip

    def test_the_check_stops_whatever_the_choice(self):
        self.expect_stop("division-by-zero", "i := a / z;", choices={"divide-by-zero": "one"})

    def test_reals(self):
        self.expect("q / 0 -> inf\n -q / 0.0 -> -inf\n 0.0 / 0 -> nan\n a / (-0.0) -> inf")
        self.expect_stop("division-by-zero", "x := q / 0;", choices={"real-by-zero": "stop"})


class Reals(Evaluation):
    def test_one_real_makes_all_reals(self):
        self.expect("""
            7 / 2.0 -> 3.5
            q * a -> 20
            a / 3 * 2.0 -> 1.3333333333333333
            2 ** 0.5 -> 1.4142135623730951
            (-8) ** 0.5 -> nan
            2.0 ** 2000 -> inf
            0.0 ** (-1) -> inf
            -0.0 -> 0.0
            1.0e300 * 1.0e300 -> inf
            """)

    def test_comparison_is_one_of_reals(self):
        self.expect("9007199254740993.0 = 9007199254740992.0 -> 1", "p")
        self.expect("q > 2 -> 1\n a = 8.0 -> 1", "p")
        self.expect("(2 ** 53) + 1 = 9007199254740992.0 -> 1", "p")

    def test_no_number_is_equal_to_none(self):
        for operator, expected in (("=", 0), ("<>", 1), ("<", 0), (">", 0), ("<=", 0), (">=", 0)):
            self.expect(f"sqrt(-1.0) {operator} q -> {expected}", "p")

    def test_intermediate_results_are_wide(self):
        self.expect("q + 0.1 -> 2.6\n 0.1 -> 0.1")
        single = to_single(0.1)
        self.expect(f"0.1 -> {single!r}\n q * 0.1 -> {to_single(2.5 * single)!r}",
                    choices={"width": "typed"})  # fmt: skip
        self.expect(f"3.5E38 / 0.5 -> {3.5e38 / 0.5!r}", choices={"width": "typed"})

    def test_stores_of_reals(self):
        self.expect(f"0.1 -> {to_single(0.1)!r}\n 1.0e300 -> inf\n 16777217 -> 16777216.0", "r")
        self.expect(f"(2 ** 60) + (2 ** 36) + 1 -> {2.0**60 + 2.0**37!r}", "r")
        self.assertEqual(whole_to_single(2**60 + 2**36 + 1), 2.0**60 + 2.0**37)
        self.assertEqual(whole_to_single(-(2**60) - 2**36), -(2.0**60))

    def test_built_ins(self):
        self.expect("""
            round(2.5) -> 3
            round(-2.5) -> -3
            round(0.49999999999999994) -> 0
            round(-0.2) -> -0.0
            floor(-0.5) -> -1
            ceil(-0.5) -> -0.0
            fabs(-3) -> 3
            sqrt(2) -> 1.4142135623730951
            sqrt(-1) -> nan
            ln(0) -> -inf
            ln(1) -> 0
            log10(1000) -> 3
            exp(0) -> 1
            exp(1000) -> inf
            cos(0) -> 1
            sin(0) -> 0
            tan(0) -> 0
            acos(1) -> 0
            asin(2) -> nan
            atan(0) -> 0
            pow(2, 3) -> 8
            pow(0, 0) -> 1
            pow(-8, 0.5) -> nan
            """)


class Stores(Evaluation):
    def test_whole_numbers_that_do_not_fit(self):
        self.expect("300 -> 44\n -1 -> 255\n 255 -> 255", "u")
        self.expect("128 -> -128\n -129 -> 127", "s")
        self.expect("300 -> 255\n -1 -> 0", "u", choices={"overflow": "saturate"})
        self.expect("3000000000 -> 2147483647", "d", choices={"overflow": "saturate"})
        self.expect_stop("overflow", "u := 256;", choices={"overflow": "stop"})
        self.expect_stop("overflow", "p := -t;", choices={"overflow": "stop"})

    def test_reals_in_whole_numbers(self):
        self.expect("2.5 -> 2\n 3.5 -> 4\n -2.5 -> -2\n 2.6 -> 3\n -0.5 -> 0", "i")
        self.expect("2.5 -> 3\n -2.5 -> -3\n 2.4 -> 2", "i", choices={"real-to-int": "away"})
        self.expect("2.9 -> 2\n -2.9 -> -2", "i", choices={"real-to-int": "truncate"})

    def test_reals_that_do_not_fit(self):
        self.expect("127.4 -> 127\n -128.5 -> -128", "s")
        for value in ("128.0", "-129.0", "1.0e30", "sqrt(-1)", "1.0 / 0"):
            self.expect_stop("real", f"s := {value};")
        self.expect_stop("real", "u := -0.6;")
        self.expect("-0.6 -> 0", "u", choices={"real-to-int": "truncate"})
        self.expect_stop("real", "s := 128.0;", choices={"overflow": "saturate"})

    def test_truth_values_in_reals(self):
        self.expect("t -> 1.0\n f -> 0.0\n q + t -> 3.5", "r")

    def test_initial_values(self):
        declared = "VAR k : SINT := 300; l : INT := 2.5; END_VAR"
        declared += " VAR m : REAL := 0.1; g : BOOL := True; END_VAR"
        for name, value in (("k", 44), ("l", 2), ("m", to_single(0.1)), ("g", 0)):
            self.assertEqual(after("", name, sections=declared), value)


class StatementsOfScripts(Evaluation):
    def check(self, statements, **expected):
        for name, value in expected.items():
            with self.subTest(statements):
                self.assertEqual(after(statements, name), value)

    def test_if(self):
        for value, expected in ((150, 2), (60, 1), (1, 9)):
            text = "IF {} > 100 THEN i := 2; ELSIF {} > 50 THEN i := 1; ELSE i := 9; END_IF;"
            self.check(text.format(value, value), i=expected)
        self.check("IF f OR t THEN i := 1; END_IF; IF f THEN i := 2; END_IF;", i=1)

    def test_case(self):
        text = """CASE {} OF
            0: i := 1; 1, 3, 5..9: i := 2; -1: i := 3; 20..30: i := 4; ELSE i := 5; END_CASE;"""
        expected = {0: 1, 1: 2, 2: 5, 3: 2, 4: 5, 5: 2, 9: 2, 10: 5, -1: 3}
        expected.update({19: 5, 20: 4, 30: 4, 31: 5})
        for selector, value in expected.items():
            self.check(text.format(selector), i=value)
        self.check("CASE 4 OF 1..10: i := 1; 3..5: i := 2; END_CASE;", i=1)
        self.check("i := 3; CASE 4 OF 1: i := 1; END_CASE;", i=3)

    def test_case_label_below_zero_has_a_type(self):
        text = "CASE n - 193 OF -200: i := 1; ELSE i := 2; END_CASE;"
        self.assertEqual(after(text, "i"), 1)
        self.assertEqual(after(text, "i", choices={"width": "typed"}), 2)

    def test_for(self):
        self.check("FOR i := 1 TO 4 DO j := j * 10 + i; END_FOR;", j=1234, i=5)
        self.check("FOR i := 4 DOWNTO 2 DO j := j * 10 + i; END_FOR;", j=432, i=1)
        self.check("FOR i := 3 TO 2 DO j := 1; END_FOR;", j=0, i=3)
        self.check("FOR i := 2 DOWNTO 3 DO j := 1; END_FOR;", j=0, i=2)

    def test_for_computes_its_bound_once(self):
        self.check("FOR i := 1 TO a DO a := 2; j := j + 1; END_FOR;", j=8)
        self.check("FOR i := 1 TO i + 2 DO j := j + 1; END_FOR;", j=3)
        self.check("FOR i := 1 TO 6 DO i := i + 1; j := j + 1; END_FOR;", j=3, i=7)

    def test_break_and_continue(self):
        jumps = "IF i = 3 THEN CONTINUE; END_IF; IF i = 5 THEN BREAK; END_IF; j := j * 10 + i;"
        self.check(f"FOR i := 1 TO 9 DO {jumps} END_FOR;", j=124, i=5)
        self.check(f"WHILE i < 9 DO i := i + 1; {jumps} END_WHILE;", j=124, i=5)
        self.check(f"REPEAT i := i + 1; {jumps} UNTIL i > 8 END_REPEAT;", j=124, i=5)
        inner = "FOR i := 1 TO 9 DO BREAK; END_FOR;"
        self.check(f"FOR a := 1 TO 2 DO {inner} j := j + 1; END_FOR;", j=2)

    def test_repeat(self):
        self.check("REPEAT i := i + 1; UNTIL (i > 3) OR f END_REPEAT;", i=4)
        self.check("REPEAT i := i + 1; UNTIL t END_REPEAT;", i=1)
        text = "REPEAT i := i + 1; IF i < 5 THEN CONTINUE; END_IF; j := i; UNTIL t END_REPEAT;"
        self.check(text, j=5)

    def test_while(self):
        self.check("WHILE i < 5 DO i := i + 1; END_WHILE;", i=5)
        self.check("WHILE f DO i := 1; END_WHILE;", i=0)

    def test_exit(self):
        self.check("i := 1; EXIT; i := 2;", i=1)
        inner = "FOR j := 1 TO 3 DO EXIT; END_FOR;"
        self.check(f"FOR i := 1 TO 3 DO {inner} END_FOR; a := 0;", a=8, j=1)

    def test_goto(self):
        self.check("Again: i := i + 1; IF i < 10 THEN GOTO AGAIN; END_IF;", i=10)
        self.check("GOTO ahead; i := 1; ahead: j := 1;", i=0, j=1)
        leave = "IF i = 3 THEN GOTO out; END_IF;"
        self.check(f"WHILE t DO i := i + 1; {leave} END_WHILE; i := 9; out: ;", i=3)
        self.check("GOTO inside; IF f THEN i := 1; inside: j := 1; ELSE j := 2; END_IF;", i=0, j=1)
        text = "IF f THEN begin2: i := i + 1; END_IF; IF i < 3 THEN GOTO begin2; END_IF;"
        self.check(text, i=3)
        loop = "WHILE i < 4 DO i := i + 1; round2: j := j + 1; END_WHILE;"
        self.check(f"GOTO round2; {loop}", i=4, j=5)
        skip = "IF i < 3 THEN GOTO next; END_IF;"
        self.check(f"FOR i := 1 TO 5 DO {skip} j := j + 1; next: ; END_FOR;", j=3)

    def test_comments_and_letter_case(self):
        self.check("I := (* a (* b *) 5; // note ; i := 1;\n i := i + a;", i=13)
        self.check("if T or f Then I := 1; end_if;", i=1)


class Stack(Evaluation):
    """What is left on the value stack, or is not there."""

    LEAVING = """
    FUNCTION Leaving : INT VAR_ARG n : INT; END_VAR
        RESULT := n;
        CASE n OF 1: EXIT; END_CASE;
        RESULT := 100;
    END_FUNCTION"""

    def test_exit_in_a_case_of_the_program(self):
        for choice in ("clear", "keep"):
            text = "j := j + 1; CASE 1 OF 1: EXIT; END_CASE; i := 1;"
            self.assertEqual(after(text, "i", cycles=3, choices={"scan-stack": choice}), 0)

    def test_check_of_values_that_the_program_leaves(self):
        text = "CASE 1 OF 1: EXIT; END_CASE;"
        self.expect_stop("stack-left", text, checks={"stack-left": "stop"})
        self.assertIsNone(run(text).stopped)

    def test_values_of_the_program_that_are_kept_fill_the_stack(self):
        text = "FOR i := 1 TO 1 DO GOTO out; END_FOR; out: ;"
        self.assertIsNone(run(text, cycles=3, choices={"scan-stack": "keep"}).stopped)

    def test_what_a_cycle_leaves_to_the_next(self):
        text = """j := j + 1;
            IF j = 2 THEN GOTO inside; END_IF;
            FOR i := 1 TO 3 DO
                IF j = 1 THEN GOTO out; END_IF;
                inside: a := a + 1;
            END_FOR;
            out: ;"""
        for choice, rounds in (("keep", 3), ("clear", 1)):
            options = {"choices": {"scan-stack": choice}, "checks": {"stack-empty": "off"}}
            self.assertEqual(after(text, "a", cycles=2, **options), 8 + rounds)

    def test_goto_out_of_a_for_leaves_the_bound_to_the_loop_around(self):
        text = """FOR i := 1 TO 5 DO
            FOR j := 1 TO 2 DO GOTO next; END_FOR;
            next: a := a + 1;
        END_FOR;"""
        self.assertEqual(after(text, "a"), 8 + 2)
        self.assertEqual(after(text, "i"), 3)

    def test_goto_into_a_for(self):
        text = "GOTO inside; FOR i := 1 TO 3 DO inside: j := j + 1; END_FOR;"
        self.expect_stop("stack-empty", text)
        self.assertEqual(after(text, "j", checks={"stack-empty": "off"}), 1)

    def test_exit_in_a_case_of_a_function(self):
        self.expect_stop("stack-left", "i := Leaving(1);", definitions=self.LEAVING)
        self.assertEqual(after("i := Leaving(2);", "i", definitions=self.LEAVING), 100)

    def test_what_a_function_leaves(self):
        options = {"definitions": self.LEAVING, "checks": {"stack-left": "note"}}
        text = "i := 30 - Leaving(1);"
        self.assertEqual(after(text, "i", **options), 29)
        kept = {"return-stack": "keep"}
        self.assertEqual(after(text, "i", choices=kept, **options), 0)

    TWICE = "FUNCTION Twice : INT VAR_ARG n : INT; END_VAR RESULT := n * 2; END_FUNCTION"

    def test_result_of_a_function_called_as_a_statement(self):
        text = "FOR i := 1 TO 3 DO Twice(5); sqrt(2); j := j + 1; END_FOR;"
        for choice in ("by-use", "both"):
            got = after(text, "j", definitions=self.TWICE, choices={"call-result": choice})
            self.assertEqual(got, 3)
        accumulator = {"call-result": "accumulator"}
        self.expect_stop("stack-empty", text, definitions=self.TWICE, choices=accumulator)

    def test_result_of_a_function_in_an_expression(self):
        text = "i := 1 + Twice(5);"
        for choice, expected in (("by-use", 11), ("accumulator", 11), ("both", 20)):
            got = after(text, "i", definitions=self.TWICE, choices={"call-result": choice})
            self.assertEqual(got, expected)

    def test_function_block_before_exit(self):
        """Its call is followed by the drop of the bound, yet it has no result."""
        text = "FOR i := 1 TO 3 DO yxSetGV(1, 2); EXIT; END_FOR;"
        self.assertEqual(after(text, "i"), 1)


class Definitions(Evaluation):
    BUMP = """FUNCTION_BLOCK Bump VAR_REF v : INT; END_VAR VAR_ARG by : INT; END_VAR
        v := v + by;
    END_FUNCTION_BLOCK"""

    def test_parameters(self):
        text = """FUNCTION Minus : INT VAR_ARG m : INT; n : INT; END_VAR
            m := m - n; RESULT := m;
        END_FUNCTION"""
        self.assertEqual(after("i := Minus(a, c);", "i", definitions=text), 6)
        self.assertEqual(after("i := Minus(a, c);", "a", definitions=text), 8)
        self.assertEqual(after("Bump(i, 3); bump(i, 4);", "i", definitions=self.BUMP), 7)

    def test_value_is_made_to_fit_the_parameter(self):
        text = "FUNCTION Same : SINT VAR_ARG m : USINT; END_VAR RESULT := m; END_FUNCTION"
        self.assertEqual(after("i := Same(300);", "i", definitions=text), 44)
        self.assertEqual(after("i := Same(200);", "i", definitions=text), -56)

    def test_reference_is_passed_on(self):
        text = self.BUMP + """
        FUNCTION_BLOCK Outer VAR_REF w : INT; END_VAR
            Bump(w, 1); Bump(w, 10);
        END_FUNCTION_BLOCK"""
        self.assertEqual(after("Outer(i); Outer(i);", "i", definitions=text), 22)

    def test_two_references_to_one_variable(self):
        text = """FUNCTION_BLOCK Two VAR_REF v : INT; w : INT; END_VAR
            v := 3; w := w + v;
        END_FUNCTION_BLOCK"""
        self.assertEqual(after("Two(i, i);", "i", definitions=text), 6)

    def test_for_over_a_reference_counts_the_variable_of_the_caller(self):
        text = """FUNCTION_BLOCK Count VAR_REF v : INT; END_VAR
            FOR v := 1 TO 3 DO END_FOR;
        END_FUNCTION_BLOCK"""
        self.assertEqual(after("Count(i);", "i", definitions=text), 4)

    def test_exit_gives_the_result_so_far(self):
        text = """FUNCTION First : INT VAR i : INT; END_VAR
            FOR i := 1 TO 9 DO RESULT := i; IF i = 4 THEN EXIT; END_IF; END_FOR;
        END_FUNCTION"""
        self.assertEqual(after("i := First + First() * 10;", "i", definitions=text), 44)

    def test_variables_of_a_call(self):
        text = """FUNCTION Count : INT VAR k : INT := 5; END_VAR
            k := k + 1; RESULT := RESULT + k;
        END_FUNCTION"""
        self.assertEqual(after("i := Count; i := Count;", "i", cycles=2, definitions=text), 6)
        retained = {"locals": "retained"}
        text_of = {"definitions": text, "choices": retained}
        self.assertEqual(after("i := Count; j := Count;", "j", **text_of), 13)
        self.assertEqual(after("i := Count;", "i", cycles=3, **text_of), 6 + 7 + 8)

    FACTORIAL = """FUNCTION Factorial : DINT VAR_ARG n : DINT; END_VAR
        RESULT := 1;
        IF n > 1 THEN RESULT := Factorial(n - 1) * n; END_IF;
    END_FUNCTION"""

    def test_recursion(self):
        self.expect_stop("recursion", "d := Factorial(5);", definitions=self.FACTORIAL)
        options = {"definitions": self.FACTORIAL, "checks": {"recursion": "off"}}
        self.assertEqual(after("d := Factorial(5);", "d", **options), 120)
        retained = {"locals": "retained"}
        self.assertEqual(after("d := Factorial(5);", "d", choices=retained, **options), 1)

    def test_a_call_without_end(self):
        text = "FUNCTION_BLOCK On VAR k : INT; END_VAR k := 1; On; END_FUNCTION_BLOCK"
        self.expect_stop("calls", "On;", definitions=text, checks={"recursion": "off"})

    def test_function_block_that_calls_itself_first(self):
        text = "FUNCTION_BLOCK On VAR k : INT; END_VAR On; END_FUNCTION_BLOCK"
        self.expect_stop("recursion", "On;", definitions=text)

    def test_name_of_a_function_begins_a_definition(self):
        text = """FUNCTION Once : INT VAR END_VAR
            RESULT := 1;
        END_FUNCTION
        Once Two : INT VAR END_VAR
            RESULT := 2;
        END_FUNCTION"""
        self.assertEqual(after("i := Two;", "i", definitions=text), 2)


class Cycles(Evaluation):
    def test_variables_stay(self):
        sections = "VAR_OUTPUT v : INT := 1; END_VAR VAR_GLOBAL g : INT := 1; END_VAR"
        text = "i := i + 1; v := v * 2; g := g * 2;"
        for choice, expected in (("retained", 3), ("initial", 1)):
            result = run(text, cycles=3, sections=sections, choices={"program-variables": choice})
            self.assertEqual(result.rows[-1]["I"], expected)
            self.assertEqual((result.rows[-1]["V"], result.rows[-1]["G"]), (8, 8))

    def test_tick(self):
        result = run("e := TICK; x := TICK; TICK := 1000;", cycles=3, time=10)
        self.assertEqual([row["E"] for row in result.rows], [0, 10, 20])
        self.assertEqual([row["X"] for row in result.rows], [0, 10, 20])
        written = run("e := TICK; TICK := 1000; x := TICK;", cycles=3, time=10,
                      choices={"tick-write": "counter"})  # fmt: skip
        self.assertEqual([row["E"] for row in written.rows], [0, 1010, 1010])
        self.assertEqual([row["X"] for row in written.rows], [1000, 1000, 1000])

    def test_tick_has_32_bits(self):
        result = run("x := TICK;", cycles=3, time=4_000_000_000)
        self.assertEqual([row["X"] for row in result.rows], [0, 4_000_000_000, 3_705_032_704])

    def test_inputs(self):
        sections = "VAR_INPUT in1 : INT := 7; on : BOOL; lev : REAL; END_VAR"
        inputs = read_inputs("cycles,in1,on,lev\n2,5,TRUE,0.1\n1,,FALSE,\n1,-6,,2\n")
        result = run("i := i + in1;", cycles=5, sections=sections, inputs=inputs)
        self.assertEqual([row["IN1"] for row in result.rows], [5, 5, 5, -6, -6])
        self.assertEqual([row["ON"] for row in result.rows], [1, 1, 0, 0, 0])
        self.assertEqual(result.rows[0]["LEV"], to_single(0.1))
        self.assertEqual(result.rows[-1]["LEV"], 2.0)
        self.assertEqual(result.rows[-1]["I"], 3)

    def test_inputs_are_put_in_anew(self):
        sections = "VAR_INPUT in1 : INT := 3; in2 : INT; END_VAR"
        inputs = read_inputs("cycles,in1,in2\n1,5,\n1,,6\n")
        text = "i := in1; j := in2; in1 := 99; in2 := 98;"
        result = run(text, cycles=4, sections=sections, inputs=inputs)
        self.assertEqual([row["I"] for row in result.rows], [5, 5, 5, 5])
        self.assertEqual([row["J"] for row in result.rows], [0, 6, 6, 6])
        self.assertEqual(result.rows[-1]["IN1"], 99)

    def test_a_stop_keeps_the_cycles_before(self):
        result = self.expect_stop("division-by-zero", "i := i + 1; j := 10 / (3 - i);", cycles=9)
        self.assertEqual([row["J"] for row in result.rows], [5, 10])

    def test_limit_of_a_cycle(self):
        limit = {"scan-limit": "1000"}
        self.expect_stop("scan-limit", "WHILE t DO END_WHILE;", choices=limit)
        with self.assertRaises(Undefined):
            run("WHILE t DO i := 1; END_WHILE;")


class EngineVariables(Evaluation):
    def test_globals(self):
        sections = "VAR_YXGLOBAL g : INT (2); h : INT (16#2); k : REAL (3); END_VAR"
        for statements, name, value in (
            ("g := 5; yxSetGV(2, 6.5);", "h", 6),
            ("g := 5; x := yxGetGV(2) / 2;", "x", 2.5),
            ("yxSetGV(3, 0.1);", "k", to_single(0.1)),
            ("yxSetGV(4, 0.1); x := yxGetGV(4);", "x", 0.1),
            ("x := yxGetGV(9) - 1;", "x", -1.0),
        ):
            self.assertEqual(after(statements, name, sections=sections), value, statements)

    def test_registers(self):
        sections = "VAR_YXREGISTER m : DINT (1, 2, +3, 4); END_VAR"
        for statements, name, value in (
            ("yxSetRegUSINT(1, 2, 3, 4, 300);", "m", 44),
            ("m := -2; e := yxGetRegUDINT(1, 2, 3, 4);", "e", 2**32 - 2),
            ("yxSetRegLREAL(1, 2, 3, 5, 0.1); x := yxGetRegLREAL(1, 2, 3, 5);", "x", 0.1),
            ("yxSetRegLREAL(1, 2, 3, 5, 0.5); r := yxGetRegREAL(1, 2, 3, 5);", "r", 0.5),
            ("yxSetRegUDINT(1, 2, 3, 5, 9); x := yxGetRegUDINT(1, 2, 3, 5);", "x", 9.0),
            ("yxSetRegREAL(1, 2, 3, 5, 2.5); i := yxGetRegUINT(1, 2, 3, 5);", "i", 2),
            ("x := yxGetRegUINT(0, 0, 0, 0);", "x", 0.0),
        ):
            self.assertEqual(after(statements, name, sections=sections), value, statements)

    def test_register_that_does_not_fit_what_is_read(self):
        self.expect_stop("real", "yxSetRegLREAL(1, 1, 1, 1, 300); i := yxGetRegUSINT(1, 1, 1, 1);")


class Undecided(Evaluation):
    def test_a_real_among_bits(self):
        with self.assertRaises(Undefined):
            run("i := a MOD (* c *) 2.5;")


class EngineFile(unittest.TestCase):
    def test_lines(self):
        text = "# mine\n\noverflow = stop # why\nwidth=typed\n"
        self.assertEqual(read_engine(text), {"overflow": "stop", "width": "typed"})

    def test_unknown_choice(self):
        with self.assertRaises(ValueError):
            run("", choices={"overflow": "explode"})
        with self.assertRaises(ValueError):
            run("", choices={"colour": "red"})


class Numbers(unittest.TestCase):
    def test_single(self):
        self.assertEqual(to_single(3.5e38), math.inf)
        self.assertEqual(to_single(-3.5e38), -math.inf)
        self.assertEqual(to_single(1.0e-50), 0.0)


if __name__ == "__main__":
    unittest.main()
