"""The lints of `yxst check`: what they find in all scripts of the project, how they are left out,
and the page of the manual about them.

    test_lints.py --update

writes anew what is found in the golden cases. Read every line of the difference.
"""

import json
import random
import re
import sys
import tempfile
import unittest
from pathlib import Path

from support_desk import FAILED, FINE, LINTS_PAGE, NOT_FINE, ROOT, lint_ids, run_yxst

from cases import all_cases  # isort: skip: found by support_desk

HERE = Path(__file__).parent
GOLDEN_LINTS = HERE / "golden_lints.txt"
MANY_SECONDS = 60

FOUND = b"""PROGRAM P
VAR_INPUT
    a : REAL;
    p : BOOL;
END_VAR
VAR_OUTPUT
    q : BOOL := FALSE;
END_VAR
    q := p AND q OR (a = 1.0);
END_PROGRAM
"""
BOTH = ["surprising-condition", "real-equality"]
CONDITION, EQUALITY = BOTH


def check_scripts(scripts):
    """Name -> what the lints find in it, all of them in one run."""
    names = list(scripts)
    found = {name: [] for name in names}
    ids = set(lint_ids())
    with tempfile.TemporaryDirectory() as folder:
        for number, name in enumerate(names):
            (Path(folder) / f"{number}.st").write_bytes(scripts[name])
        run = run_yxst("check", "--format=json", folder)
    for each in json.loads(run.stdout):
        if each["id"] in ids:
            found[names[int(Path(each["file"]).stem)]].append(each)
    return found


# ---------------------------------------------------------------------------------------------
# All golden cases
# ---------------------------------------------------------------------------------------------


def golden_lints():
    """A line for each finding in the golden cases: identifier, case, line."""
    found = check_scripts({case.name: case.data for case in all_cases()})
    return sorted(f"{each['id']} {name} {each['line']}" for name in found for each in found[name])


class GoldenCases(unittest.TestCase):
    maxDiff = None

    def test_what_is_found_is_known(self):
        self.assertEqual(golden_lints(), GOLDEN_LINTS.read_text().splitlines())

    def test_nothing_is_found_in_the_examples(self):
        examples = {path.name: path.read_bytes() for path in (ROOT / "examples").glob("*.st")}
        self.assertGreater(len(examples), 3)
        self.assertEqual({name for name, found in check_scripts(examples).items() if found}, set())


# ---------------------------------------------------------------------------------------------
# Groupings, worked out by two small parsers
# ---------------------------------------------------------------------------------------------

BOOLEAN_OPERATORS = {"OR": 1, "XOR": 2, "AND": 3}
INTEGER_OPERATORS = {
    **BOOLEAN_OPERATORS, "SHL": 5, "ROR": 5, "+": 6, "-": 6, "*": 7, "/": 7, "MOD": 7, "**": 8,
}  # fmt: skip
ASSOCIATIVE = {"*", "AND", "OR", "XOR"}


class Words:
    """The words of an expression, taken one after the other."""

    def __init__(self, text):
        self.words = re.findall(r"\w+|\*\*|[-+*/()]", text)

    def next(self):
        return self.words[0] if self.words else ""

    def take(self):
        return self.words.pop(0)


def usual_tree(words, least=0):
    """As the rules of most languages have it; an operation is (operator, left, right)."""
    left = words.take()
    if left == "(":
        left = usual_tree(words)
        words.take()
    while INTEGER_OPERATORS.get(words.next(), -1) >= least:
        operator = words.take()
        left = (operator, left, usual_tree(words, INTEGER_OPERATORS[operator] + 1))
    return left


def integer_tree(words):
    """As the language has it for integers: a sum of products that group to the right."""
    left = product_tree(words)
    while words.next() in ("+", "-"):
        left = (words.take(), left, product_tree(words))
    return left


def product_tree(words):
    return right_tree(words, ends=("", "+", "-"))


def right_tree(words, ends=("",)):
    """The right operand is all up to the end; for conditions that is the end of the expression."""
    left = words.take()
    return left if words.next() in ends else (words.take(), left, right_tree(words, ends))


def flat(tree):
    """The tree with the operands of one associative operator side by side."""
    if isinstance(tree, str):
        return tree
    operator, *operands = tree[0], *map(flat, tree[1:])
    if operator not in ASSOCIATIVE:
        return (operator, *operands)
    lists = [each[1:] if each[0] == operator else (each,) for each in operands]
    return (operator, *(each for some in lists for each in some))


class Groupings(unittest.TestCase):
    def check(self, names, operators, tree, lint):
        chance = random.Random(1)
        texts = [self.expression(chance, names, list(operators)) for _ in range(500)]
        statements = [f"{names[0]} := {text};" for text in texts]
        kind = "BOOL" if operators is BOOLEAN_OPERATORS else "INT"
        declared = " ".join(f"{name} : {kind};" for name in names)
        lines = ["PROGRAM P VAR_INPUT", declared, "END_VAR", *statements, "END_PROGRAM"]
        found = check_scripts({"random": "\n".join(lines).encode()})["random"]
        self.assertEqual({each["id"] for each in found}, {lint})
        places = {each["line"] for each in found}
        for number, text in enumerate(texts):
            is_usual = flat(usual_tree(Words(text))) == flat(tree(Words(text)))
            self.assertEqual(4 + number not in places, is_usual, text)
        for each in found:
            line = lines[each["line"] - 1]
            marked = line[each["column"] - 1 : each["endColumn"] - 1]
            spelled = re.search('"(.*)"', each["message"])[1]
            self.assertEqual(flat(usual_tree(Words(spelled))), flat(tree(Words(marked))))

    def expression(self, chance, names, operators):
        text = chance.choice(names)
        for _ in range(chance.randint(1, 5)):
            text += f" {chance.choice(operators)} {chance.choice(names)}"
        return text

    def test_of_integers(self):
        self.check("abcdef", INTEGER_OPERATORS, integer_tree, "surprising-grouping")

    def test_of_conditions(self):
        self.check("abcdef", BOOLEAN_OPERATORS, right_tree, CONDITION)


# ---------------------------------------------------------------------------------------------
# Options
# ---------------------------------------------------------------------------------------------


class Options(unittest.TestCase):
    def check(self, *arguments, script=FOUND):
        return run_yxst("check", *arguments, "-", stdin=None, input=script)

    def ids(self, *arguments, script=FOUND):
        run = self.check("--format=json", *arguments, script=script)
        self.assertEqual((run.status, run.stderr), (FINE, b""))
        return [each["id"] for each in json.loads(run.stdout)]

    def test_disable(self):
        for arguments, expected in (
            ([], BOTH),
            ([f"--disable={EQUALITY}"], [CONDITION]),
            (["--disable", CONDITION], [EQUALITY]),
            ([f"--disable={EQUALITY},{CONDITION}"], []),
            ([f"--disable={EQUALITY}", f"--disable={CONDITION}"], []),
            ([f"--disable={EQUALITY},{EQUALITY}"], [CONDITION]),
            (["--disable=unused-label"], BOTH),
            ([f"--disable= {EQUALITY.upper()} , {CONDITION}"], []),
        ):
            with self.subTest(arguments=arguments):
                self.assertEqual(self.ids(*arguments), expected)

    def test_scripts_are_no_lints(self):
        path = ROOT / "examples/mixing_tank.st"
        run = run_yxst("check", "--quiet", "--disable=unused-label", path, path)
        self.assertEqual(run, (FINE, b"", b""))

    def test_unknown_lints(self):
        for wrong, nearest in (
            ("surprising-conditions", f"; the nearest is {CONDITION}"),
            (f"{CONDITION},real-equal", f"; the nearest is {EQUALITY}"),
            ("no-such-thing-at-all", ""),
        ):
            with self.subTest(wrong=wrong):
                run = self.check(f"--disable={wrong}")
                self.assertEqual((run.status, run.stdout), (FAILED, b""))
                unknown = wrong.rpartition(",")[2]
                self.assertEqual(
                    run.stderr.decode(), f'yxst: there is no lint "{unknown}"{nearest}.\n'
                )

    def test_no_identifier(self):
        run = self.check("--disable=")
        self.assertEqual((run.status, run.stdout), (FAILED, b""))

    def test_werror(self):
        run = self.check("--werror")
        self.assertEqual(run.status, NOT_FINE)
        self.assertTrue(run.stdout.endswith(b"\n2 errors in 1 file\n"))
        self.assertEqual(self.check("--werror", f"--disable={','.join(BOTH)}").status, FINE)

    def test_a_script_with_an_error_has_none(self):
        run = self.check("--format=json", script=FOUND.replace(b"q := p", b"q := 5; q := p"))
        self.assertEqual([each["id"] for each in json.loads(run.stdout)], ["incompatible-types"])

    def test_they_stand_among_the_warnings_of_the_compiler(self):
        script = FOUND.replace(b"END_PROGRAM", b"END_PROGRAM more")
        script = script.replace(b"END_VAR\n    q", b"END_VAR VAR n : INT; END_VAR\n    q")
        self.assertEqual(
            self.ids(script=script),
            ["is-declared-but-never-used-in", *BOTH, "unexpected-data-after-end-program"],
        )

    def test_allowed(self):
        script = FOUND.replace(b"1.0);", f"1.0);  // yxst:allow {', '.join(BOTH)}".encode())
        self.assertEqual(self.ids(script=script), [])
        self.assertEqual(self.ids(f"--disable={EQUALITY}", script=script), [])
        useless = FOUND.replace(b"PROGRAM P", f"PROGRAM P  // yxst:allow {EQUALITY}".encode())
        self.assertEqual(self.ids(script=useless), ["useless-allow", *BOTH])
        self.assertEqual(self.ids("--disable=useless-allow", script=useless), BOTH)


# What takes seconds takes minutes if each is compared with all the others.
MANY = {
    "WHILE": "WHILE TRUE DO BREAK; END_WHILE;\n" * 200_000,
    "EXIT": "FOR i := 1 TO 9 DO\n" + "IF p THEN EXIT; END_IF;\n" * 200_000 + "END_FOR; i := 1;\n",
    "allow": "i := 1;  // yxst:allow " + ", ".join(["real-equality", "no-lint"] * 100_000) + "\n",
}


class Time(unittest.TestCase):
    def test_is_in_proportion_to_the_script(self):
        head = "PROGRAM P VAR_INPUT p : BOOL; END_VAR VAR i : INT := 0; END_VAR\n"
        for name, statements in MANY.items():
            with self.subTest(many=name):
                script = f"{head}{statements}END_PROGRAM\n".encode()
                run = run_yxst(
                    "check",
                    "--disable=exit-in-loop,useless-allow",
                    "-",
                    stdin=None,
                    input=script,
                    timeout=MANY_SECONDS,
                )
                self.assertEqual(run.status, FINE)


class Forms(unittest.TestCase):
    def check(self, form):
        run = run_yxst("check", f"--format={form}", "-", stdin=None, input=FOUND)
        self.assertEqual((run.status, run.stderr), (FINE, b""))
        return run.stdout.decode()

    def test_gcc(self):
        self.assertEqual(
            self.check("gcc").splitlines()[:2],
            [
                '<stdin>:9:10: warning: This is grouped as "p AND (q OR (a = 1.0))"'
                f" [{CONDITION}]",
                "<stdin>:9:10: note: write the parentheses that are meant",
            ],
        )

    def test_json_has_helps(self):
        helps = [each["helps"][0]["id"] for each in json.loads(self.check("json"))]
        self.assertEqual(helps, BOTH)

    def test_github(self):
        self.assertIn(f"title={CONDITION}::", self.check("github"))

    def test_sarif_has_rules(self):
        log = json.loads(self.check("sarif"))
        rules = log["runs"][0]["tool"]["driver"]["rules"]
        self.assertEqual([rule["id"] for rule in rules], BOTH)
        self.assertEqual(
            [rule["shortDescription"]["text"] for rule in rules],
            ["Conditions that are not grouped as most expect", "Reals compared with = or <>"],
        )
        levels = [result["level"] for result in log["runs"][0]["results"]]
        self.assertEqual(levels, ["warning"] * 2)


# ---------------------------------------------------------------------------------------------
# The page
# ---------------------------------------------------------------------------------------------

FENCE = re.compile(r"^```(st|st frame|st statements|text)\n(.*?)^```$", re.DOTALL | re.MULTILINE)
PLACE = "    (* statements *)\n"


def sections():
    """Identifier -> the fences of its entry, each with its kind; statements in their frame."""
    text = LINTS_PAGE.read_text(encoding="utf-8")
    frame = ""
    for section in re.split(r"(?=^#+ )", text, flags=re.MULTILINE):
        fences = []
        for kind, body in FENCE.findall(section):
            if kind == "st frame":
                frame = body
            else:
                is_part = kind == "st statements"
                fences.append((kind, frame.replace(PLACE, body) if is_part else body))
        mark = re.search(r"^<!-- reason: (.*) -->$", section, re.MULTILINE)
        if mark:
            yield mark[1], fences


def shown(found):
    """A finding as the page shows it."""
    lines = [f"warning: {found['message']}"]
    lines += [f"help: {each['text']}" for each in found.get("helps", [])]
    return "".join(f"{line}\n" for line in lines)


class Page(unittest.TestCase):
    def test_every_entry_is_that_of_a_lint(self):
        run = run_yxst("check", f"--disable={','.join(lint_ids())}", "-", stdin=None, input=FOUND)
        self.assertEqual(run, (FINE, b"", b""))

    def test_entries_show_what_is_found(self):
        for one, fences in sections():
            with self.subTest(lint=one):
                kinds = [kind for kind, _ in fences]
                self.assertEqual(kinds.count("text"), len(kinds) // 3)
                for (kind, script), (following, text) in zip(fences, [*fences[1:], ("", "")]):
                    if kind != "text":
                        found = check_scripts({one: script.encode()})[one]
                        expected = text if following == "text" else ""
                        self.assertEqual("".join(map(shown, found)), expected)
                        self.assertLessEqual({each["id"] for each in found}, {one})


if __name__ == "__main__":
    if sys.argv[1:] == ["--update"]:
        GOLDEN_LINTS.write_text("".join(f"{line}\n" for line in golden_lints()))
    else:
        unittest.main()
