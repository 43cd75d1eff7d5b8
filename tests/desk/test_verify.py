"""`yxst verify`: compiled code is sound, damaged code is told, no code brings it down."""

import json
import random
import re
import resource
import subprocess
import sys
import tempfile
import time
import unittest
from collections import Counter
from pathlib import Path

from support_desk import DESK, FAILED, FINE, NOT_FINE, ROOT, SCRIPT, TIMEOUT_SECONDS, run_yxst

from corpus import accepted_sources  # isort: skip: found by support_desk
from support import compile_source, side_by_side  # isort: skip

sys.path.insert(0, str(ROOT / "tests/checker"))
from check_code import break_into_items, check  # noqa: E402

# The liberties of the language that golden cases take, each with its number there.
EXPECTED = {
    "arithmetic/real_literal_after_a_comment_passes_mod": {"number-without-type": 4},
    "arithmetic/untyped_literal_plus_bool_is_bool": {"number-without-type": 1},
    "calls/literal_type_lost_after_comment": {"number-without-type": 1},
    "case/nested_case_for_repeat_while_and_if": {"unreached-code": 1},
    "case/nested_case_while_if_repeat_case": {"unreached-code": 1},
    "declarations/bool_mixed_case_counts_as_initialized": {"missing-declaration": 1},
    "functions/block_calls_itself_first": {"drop-without-value": 1},
    "functions/label_of_function_reached_from_program": {"goto-into-unit": 1},
    "goto/cyrillic_label_is_upper_cased": {"unreached-code": 1},
    "goto/forward": {"unreached-code": 1},
    "goto/function_block_label_is_set_later_in_the_program": {"goto-into-unit": 1},
    "goto/in_a_function_and_in_the_program": {"unreached-code": 1},
    "goto/into_branches_and_loops": {"unreached-code": 1},
    "goto/label_in_case_branches": {"goto-changes-stack": 1},
    "goto/label_like_a_generated_one_is_not_prevented": {"duplicate-label": 1},
    "goto/out_of_for_and_case_drops_nothing": {"goto-changes-stack": 2},
    "goto/program_jumps_to_a_label_of_a_function": {"goto-into-unit": 1},
    "goto/several_jumps_to_one_label": {"unreached-code": 1},
    "loops/break_in_each_branch_of_a_nested_if": {"unreached-code": 1},
    "loops/exit_in_a_case_leaves_the_selector": {"exit-in-case": 3},
    "loops/exit_in_a_for_in_a_case_drops_the_bound_only": {"exit-in-case": 2},
    "loops/exit_in_a_program_returns_at_once": {"unreached-code": 1},
    "loops/exit_in_while_and_repeat_drops_nothing": {"unreached-code": 1},
    "loops/for_continue_goes_to_the_step_and_break_to_the_drop": {"unreached-code": 1},
    "loops/nested_if_while_repeat_for_case": {"unreached-code": 1},
    "loops/nested_while_for_if_case_repeat": {"exit-in-case": 1, "unreached-code": 1},
    "programs/conveyor_case_with_loops_in_branches": {"exit-in-case": 1},
    "programs/dosing_retry_with_goto": {"goto-changes-stack": 1},
    "programs/listing_without_messages_of_a_filter_wash": {"goto-changes-stack": 1},
    "types/uint_argument_takes_untyped_real": {"number-without-type": 1},
}
WITH_TWO_LABELS_OF_ONE_NAME = "goto/label_like_a_generated_one_is_not_prevented"


def compiled_codes():
    """The code of each accepted source, by the name of the source."""
    sources = accepted_sources()
    runs = side_by_side(compile_source, [source.data for source in sources])
    return {source.name: run.files["out"].decode() for source, run in zip(sources, runs)}


class Folder:
    """Files to be verified, many in one call."""

    def __enter__(self):
        self.folder = tempfile.TemporaryDirectory()
        return self

    def __exit__(self, *_):
        self.folder.cleanup()

    def write(self, name, data):
        path = Path(self.folder.name, name)
        path.write_bytes(data if isinstance(data, bytes) else data.encode())
        return str(path)

    def findings(self, codes):
        """The findings of each code, in their order; each call has to end well."""
        paths = [self.write(f"{number}.yx", code) for number, code in enumerate(codes)]
        found = {path: [] for path in paths}
        for begin in range(0, len(paths), 200):
            run = run_yxst("verify", "--format=json", *paths[begin : begin + 200])
            if run.status not in (FINE, NOT_FINE) or run.stderr:
                raise AssertionError(f"status {run.status}, {run.stderr!r}")
            for finding in json.loads(run.stdout):
                found[finding["file"]].append(finding)
        return [found[path] for path in paths]


def errors_of(findings):
    return [finding for finding in findings if finding["severity"] == "error"]


class CompiledCode(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.codes = compiled_codes()
        with Folder() as folder:
            cls.findings = dict(zip(cls.codes, folder.findings(cls.codes.values())))

    def test_is_sound_but_for_what_is_listed(self):
        self.assertGreater(len(self.codes), 400)
        told = {name: Counter(one["id"] for one in found) for name, found in self.findings.items()}
        self.assertEqual({name: dict(ids) for name, ids in told.items() if ids}, EXPECTED)

    def test_has_an_error_only_where_two_labels_have_one_name(self):
        names = [name for name, found in self.findings.items() if errors_of(found)]
        self.assertEqual(names, [WITH_TWO_LABELS_OF_ONE_NAME])


# ---------------------------------------------------------------------------------------------
# Damaged code
# ---------------------------------------------------------------------------------------------

DAMAGES = 2000
OPERANDS = "#A0 #R0 $PUSH $POP #NIL *TICK @x ^x 0 1 2.5 'A' L1 L2 L3".split()

# What the verifier alone finds: the checker knows no types and no test before a jump. It gives
# items that nothing leads to the height that what follows them needs, while here they begin at
# that of the loops and cases around them; so there the heights may disagree here alone.
FOUND_HERE_ALONE = {
    "no-value",
    "wrong-type",
    "jump-without-test",
    "stack-heights-differ",
    "stack-too-low",
    "stack-not-empty",
}

# What the checker alone finds, for it knows what the compiler writes and asks for exactly that,
# while the verifier takes any code that is sound on the machine: other instructions in the test of
# a loop or a branch; a label before the prologue; a loop or CASE whose drop a jump has lost, so
# that its regions are not known; a GOTO, which is held to the regions of one place, and which may
# lead to a label of another unit that looks like one of the compiler's; arrays.
FOUND_THERE_ALONE = (
    "no test of a loop or case",
    "the prologue is not",
    "no drop ends the loop or case",
    "values inside",
    "'JMP L[0-9]+': the label is not defined",
    "'MOV #A0 #R0': no form",
    "'ADD #R0 #A0': no form",
    "JMP[FT] [^']*': no form",
)


def change_operand(items, index, chance):
    words = items[index].split(" ")
    near = [word for item in chance.sample(items, min(5, len(items))) for word in item.split(" ")]
    words[chance.randrange(len(words))] = chance.choice(OPERANDS + near)
    items[index] = " ".join(words)


def damaged(items, chance):
    """The items with one of them deleted, doubled, swapped or changed."""
    items = list(items)
    index = chance.randrange(len(items))
    kind = chance.choice(("delete", "double", "swap", "operand"))
    if kind == "delete":
        del items[index]
    elif kind == "double":
        items.insert(index, items[index])
    elif kind == "swap":
        other = chance.randrange(len(items))
        items[index], items[other] = items[other], items[index]
    else:
        change_operand(items, index, chance)
    return "".join(f"{item} " for item in items)


class DamagedCode(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        chance = random.Random(1)
        codes = compiled_codes()
        del codes[WITH_TWO_LABELS_OF_ONE_NAME]
        items = [break_into_items(code) for code in codes.values()]
        cls.codes = [damaged(chance.choice(items), chance) for _ in range(DAMAGES)]
        with Folder() as folder:
            cls.findings = [errors_of(found) for found in folder.findings(cls.codes)]
        cls.problems = [check(code) for code in cls.codes]

    def test_most_damages_are_found(self):
        found = sum(1 for errors in self.findings if errors)
        self.assertGreater(found, 0.6 * DAMAGES)

    def test_what_the_checker_does_not_find_is_about_types_and_tests(self):
        for code, errors, problems in zip(self.codes, self.findings, self.problems):
            if errors and not problems:
                with self.subTest(code=code):
                    self.assertLessEqual({one["id"] for one in errors}, FOUND_HERE_ALONE)

    def test_what_the_checker_finds_alone_is_about_the_compilers_way_to_write(self):
        alone = 0
        for code, errors, problems in zip(self.codes, self.findings, self.problems):
            if problems and not errors:
                alone += 1
                with self.subTest(code=code, problems=problems):
                    self.assertRegex(problems[0], "|".join(FOUND_THERE_ALONE))
        self.assertLess(alone, 0.01 * DAMAGES)


# ---------------------------------------------------------------------------------------------
# What is no code
# ---------------------------------------------------------------------------------------------

SOUND = "PROG: P VAR: a V INT 0 MAIN: MOV 1 #A0 MOV #A0 @a RET "
UNSOUND = SOUND.replace("@a RET", "@b RET")


def program(statements):
    return f"PROG: P VAR: a V INT 0 MAIN: {statements}RET "


class StrangeInput(unittest.TestCase):
    def verify(self, *codes):
        with Folder() as folder:
            return folder.findings(codes)

    def test_random_bytes(self):
        chance = random.Random(2)
        texts = [bytes(chance.choices(range(256), k=chance.randrange(300))) for _ in range(300)]
        for found in self.verify(*texts):
            self.assertEqual([one["id"] for one in found], ["no-target-code"])

    def test_words_of_code_in_any_order(self):
        chance = random.Random(3)
        words = f"{program('')} L1: JMP L1 CAL P EXEC sqrt $POP #A0 MOV ADD  'A' F: BODY:"
        words = words.split(" ")
        texts = [" ".join(chance.choices(words, k=20)) + " " for _ in range(1000)]
        heads = [program(" ".join(chance.choices(words, k=8)) + " ") for _ in range(1000)]
        self.verify(*texts, *heads)

    def test_code_that_breaks_off_is_not_sound(self):
        code = max(compiled_codes().values(), key=len)
        cuts = [code[: cut * len(code) // 200] for cut in range(200)]
        for found in self.verify(*cuts):
            self.assertTrue(errors_of(found))

    def test_long_words_and_names(self):
        name = "A" * 1_000_000
        statements = (f"JMP {name} {name}: ", f"MOV '{name}' #A0 ", f"{name} ")
        found = self.verify(*map(program, statements))
        self.assertEqual([len(errors_of(one)) for one in found], [0, 0, 1])
        self.assertTrue(all(len(one["message"]) < 1000 for each in found for one in each))

    def test_deep_nesting(self):
        depth = 20_000
        begins = "".join(
            f"MOV 1 #A0 MOV #A0 @a MOV 9 #A0 MOV #A0 $PUSH L{n}1: MOV @a #A0 MOV $POP #R0 "
            f"GE #R0 #A0 TST #A0 MOV #R0 $PUSH JMPF L{n}2 "
            for n in range(1, depth)
        )
        ends = "".join(
            f"MOV @a #A0 ADD 1 #A0 MOV #A0 @a JMP L{n}1 L{n}2: MOV $POP #NIL "
            for n in range(depth - 1, 0, -1)
        )
        self.assertEqual(self.verify(program(begins + ends)), [[]])
        self.assertTrue(self.verify(program(begins + "RET " + ends))[0])

    def test_cyclic_calls_and_jumps(self):
        units = "".join(f"F{n}: BODY: CAL F{n + 1} CAL F{n} JMP L1 RET " for n in range(1, 50))
        found = self.verify(units + program("L1: JMP L1 "))[0]
        ids = {one["id"] for one in found}
        self.assertEqual(ids, {"call-ahead", "unknown-callee", "goto-into-unit"})


def processor_time(path):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    subprocess.run([DESK, "verify", path], timeout=TIMEOUT_SECONDS, check=True)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


class LinearTime(unittest.TestCase):
    """Four times the items take about four times the time, whatever the items are."""

    SHAPES = {
        "sums": lambda n: "MOV @a #A0 MOV #A0 $PUSH MOV 1 #A0 ADD $POP #A0 MOV #A0 @a " * n,
        "labels": lambda n: "".join(f"JMP N{i} N{i}: " for i in range(n)),
        "waiting values": lambda n: "MOV @a #A0 " + "MOV #A0 $PUSH " * n + "ADD $POP #A0 " * n,
        "joins": lambda n: "".join(
            f"MOV @b #A0 TST #A0 JMPF L{i} MOV 1 #A0 MOV #A0 $PUSH MOV 2.5 #A0 MOV $POP #NIL "
            f"L{i}: "
            for i in range(1, n)
        ),
    }

    def test_shapes(self):
        for name, shape in self.SHAPES.items():
            with self.subTest(name), Folder() as folder:
                short, long = (
                    folder.write(f"{n}.yx", program(shape(n)).replace("MAIN:", "b V BOOL 0 MAIN:"))
                    for n in (10_000, 40_000)
                )
                short_time = min(processor_time(short) for _ in range(3))
                self.assertLess(processor_time(long), 12 * max(short_time, 0.02))


# ---------------------------------------------------------------------------------------------
# The command line
# ---------------------------------------------------------------------------------------------


class CommandLine(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def write(self, name, text):
        data = text if isinstance(text, bytes) else text.encode()
        Path(self.folder.name, name).write_bytes(data)

    def verify(self, *arguments, **options):
        run = run_yxst("verify", *arguments, cwd=self.folder.name, **options)
        return run.status, run.stdout.decode(), run.stderr.decode()

    def test_sound_code_is_silent(self):
        self.write("a.yx", SOUND)
        self.assertEqual(self.verify("a.yx"), (FINE, "", ""))

    def test_place_in_the_code_file(self):
        self.write("a.yx", UNSOUND)
        status, shown, _ = self.verify("--format=gcc", "a.yx")
        self.assertEqual(status, NOT_FINE)
        self.assertEqual(
            shown,
            'a.yx:1:40: error: item 7 "MOV #A0 @b" (after "MOV 1 #A0", before "RET"): '
            'the unit declares no "b" [undeclared-variable]\n',
        )

    def test_place_counts_characters(self):
        self.write("a.yx", UNSOUND.replace(" P ", " Ж ").replace("a V", "Я V"))
        self.assertIn("a.yx:1:40: error: item 7 ", self.verify("--format=gcc", "a.yx")[1])

    def test_place_in_a_listing(self):
        items = "PROG:|P|VAR:|a V INT 0|MAIN:|MOV 1 #A0|MOV #A0 @b|RET|"
        source_line = ';Line 5: "b := 1;"|'
        listing = ";Ambrel|" + items.replace("MOV 1", source_line + "MOV 1")
        self.write("a.lst", listing.replace("|", "\n"))
        self.write("a.yx", items.replace("|", " "))
        expected = (
            'a.lst:9:1: error: item 7 "MOV #A0 @b" (after "MOV 1 #A0", before "RET"): '
            'the unit declares no "b" [undeclared-variable]\n'
            'a.lst:9:1: note: line 5 of the script stands above: "b := 1;"'
        )
        self.assertIn(expected, self.verify("--format=gcc", "a.lst")[1])
        self.assertIn(expected, self.verify("--format=gcc", "--listing=a.lst", "a.yx")[1])
        other = {"input": SOUND.encode(), "stdin": None}
        self.assertEqual(
            self.verify("--listing=a.lst", "-", **other),
            (FAILED, "", "yxst: a.lst: is no listing of this code.\n"),
        )

    def test_place_in_the_script_beside(self):
        script = SCRIPT.replace(b"a := 1;", b"CASE a OF 1: EXIT; END_CASE;")
        self.write("a.st", script)
        self.write("other.st", SCRIPT)
        self.write("a.yx", compile_source(script).files["out"])
        told = "EXIT inside CASE leaves the selector on the value stack [exit-in-case]\n"
        status, shown, _ = self.verify("--format=gcc", "a.yx")
        self.assertEqual(status, FINE)
        self.assertRegex(shown, r"^a\.st:5:18: warning: item \d+ .*" + re.escape(told))
        self.write("b.yx", compile_source(script).files["out"])
        self.assertIn("b.yx:1:", self.verify("--format=gcc", "b.yx")[1])
        self.assertEqual(self.verify("--format=gcc", "--script=a.st", "b.yx")[1], shown)
        self.assertEqual(self.verify("--format=gcc", "--werror", "a.yx")[0], NOT_FINE)
        self.assertEqual(
            self.verify("--script=other.st", "a.yx"),
            (FAILED, "", "yxst: other.st: does not compile to this code.\n"),
        )

    def test_lines_of_the_script_for_damaged_code(self):
        script = SCRIPT.replace(b"a := 1;", b"a := 1;\n a := a + 2;\n a := a * 3;")
        code = compile_source(script).files["out"]
        self.write("a.st", script)
        line = 'line 6 of a.st stands for this place: "a := a + 2;"'
        for old, new in (
            (b"ADD $POP #A0", b"ADD $POP #A1"),
            (b"ADD $POP #A0 MOV #A0 @a", b"ADD $POP #A0 MOV #A0 @b"),
            (b"ADD $POP", b"ADDD $POP"),
        ):
            with self.subTest(new):
                self.assertIn(old, code)
                self.write("a.yx", code.replace(old, new))
                status, shown, _ = self.verify("--format=gcc", "a.yx")
                self.assertEqual(status, NOT_FINE)
                self.assertIn(f"note: {line}\n", shown)
                self.assertRegex(shown, r"^a\.yx:1:\d+: error: item \d+ ")
                self.write("b.yx", code.replace(old, new))
                self.assertNotIn("note:", self.verify("--format=gcc", "b.yx")[1])
                self.assertIn(line, self.verify("--format=gcc", "--script=a.st", "b.yx")[1])

    def test_lines_of_the_listing_for_damaged_code(self):
        run = compile_source(SCRIPT, "-l", "-i")
        damaged = run.files["out"].replace(b"MOV #A0 @a", b"MOV #A0 @b")
        self.write("a.yx", damaged)
        self.write("a.yx.lst", run.files["out.lst"])
        told = 'line 5 of the script stands above: "a := 1;"\n'
        self.assertIn(told, self.verify("--format=gcc", "a.yx")[1])
        self.write("b.yx", damaged)
        self.assertIn(told, self.verify("--format=gcc", "--listing=a.yx.lst", "b.yx")[1])
        self.write("a.yx.lst", compile_source(SCRIPT, "-l").files["out.lst"])
        told = 'line 7 of a.yx.lst stands for this place: "MOV #A0 @a"\n'
        self.assertIn(told, self.verify("--format=gcc", "a.yx")[1])

    def test_an_unknown_callee_is_told_alone(self):
        script = b"""FUNCTION Two : INT
VAR_ARG
    a : INT;
    b : INT;
END_VAR
    RESULT := a / b;
END_FUNCTION
FUNCTION_BLOCK Set
VAR_ARG
    a : INT;
END_VAR
    a := a / 2;
END_FUNCTION_BLOCK
PROGRAM P
VAR
    i : INT;
    total : INT := 0;
END_VAR
    Set(5);
    FOR i := Two(1, 2) TO Two(3, Two(4, 5)) DO
        IF Two(1, 2) > i THEN total := i * Two(i, i); END_IF;
        CASE Two(4, 4) OF 1..5: total := Two(7, 8); END_CASE;
        Two(5, 5);
        Set(5);
    END_FOR;
    WHILE Two(1, 1) < 3 DO Set(2); END_WHILE;
    REPEAT Set(3); UNTIL Two(1, 1) < 3 END_REPEAT;
END_PROGRAM
"""
        code = compile_source(script).files["out"].decode()
        calls = [match.end() for match in re.finditer("CAL (Two|Set)", code)]
        self.assertEqual(len(calls), 14)
        with Folder() as folder:
            damaged = [f"{code[:at]}X{code[at:]}" for at in calls]
            for found in folder.findings(damaged):
                self.assertEqual([one["id"] for one in found], ["unknown-callee"])

    def test_a_lost_declaration_that_was_no_bool(self):
        script = SCRIPT.replace(b"a : INT;", b"a : INT; b : BOOL := True; r : REAL; s : REAL;")
        statements = b"a := a + 1; b := NOT b; r := r * 2.5; s := a;"
        code = compile_source(script.replace(b"a := 1;", statements)).files["out"].decode()
        found = {}
        with Folder() as folder:
            lost = ("", "a V INT 0", "r V REAL 0", "s V REAL 0")
            damaged = [code.replace(each, "", 1) for each in lost]
            for name, all_found in zip(lost, folder.findings(damaged)):
                found[name[:1]] = sorted(one["id"] for one in all_found)
        expected = ["missing-declaration", "undeclared-variable"]
        self.assertEqual(found.pop(""), ["missing-declaration"])
        self.assertEqual(found, {"a": expected, "r": expected, "s": expected})

    def test_forms(self):
        self.write("a.yx", UNSOUND)
        shown = self.verify("a.yx")[1]
        self.assertIn("   |                                        ^^^^^^^^^^\n", shown)
        self.assertTrue(shown.endswith("\n1 error in 1 file\n"))
        self.assertNotIn("1 error", self.verify("--quiet", "a.yx")[1])
        found = json.loads(self.verify("--format=json", "a.yx")[1])
        self.assertEqual([(one["line"], one["column"]) for one in found], [(1, 40)])
        self.assertEqual(self.verify("--format=sarif", "a.yx")[0], FAILED)

    def test_standard_input(self):
        status, shown, _ = self.verify("--format=gcc", "-", input=UNSOUND.encode(), stdin=None)
        self.assertEqual(status, NOT_FINE)
        self.assertTrue(shown.startswith("<stdin>:1:40: error: "))

    def test_what_is_no_code(self):
        self.write("a.yx", SCRIPT)
        status, shown, _ = self.verify("--format=gcc", "a.yx")
        self.assertEqual(status, NOT_FINE)
        self.assertIn("[no-target-code]", shown)

    def test_calls_that_are_wrong(self):
        self.write("a.yx", SOUND)
        self.assertEqual(
            self.verify("none.yx", "a.yx"), (FAILED, "", "yxst: none.yx: no such file.\n")
        )
        self.assertEqual(self.verify(".")[::2], (FAILED, "yxst: .: is a folder.\n"))
        self.assertEqual(
            self.verify("--script=a.st", "a.yx", "a.yx")[::2],
            (FAILED, "yxst: a listing or a script belongs to one file alone.\n"),
        )
        self.assertEqual(self.verify()[0], FAILED)


if __name__ == "__main__":
    unittest.main()
