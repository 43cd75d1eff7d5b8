"""What `yxst facts` tells agrees with the compiler, over all golden cases, examples and what the
fuzzer has kept.
"""

import json
import sys
import unittest
from typing import NamedTuple

from support_desk import FINE, NOT_FINE, ROOT, facts_of

from cases import all_cases  # isort: skip: found by support_desk
from support import compile_source, diagnostics_in, side_by_side, words  # isort: skip

WHITE = " \t\n"
END_OF_INPUT = "\uffff"  # counts as such wherever it stands


class Source:
    """A script as the compiler reads it, in UTF-16 units, with places in it."""

    def __init__(self, data):
        text = data.replace(b"\r", b"").decode("utf-8", "replace").removeprefix("\ufeff")
        self.units = text.encode("utf-16-le")
        self.begins = [0]
        for index in range(len(self)):
            if self.text(index, index + 1) == "\n":
                self.begins.append(index + 1)

    def __len__(self):
        return len(self.units) // 2

    def text(self, begin, end):
        return self.units[2 * begin : 2 * end].decode("utf-16-le", "replace")

    def offset(self, place):
        """That of a place [line, column]; it must be one of the source."""
        line, column = place
        begin = self.begins[line - 1]
        end = self.begins[line] - 1 if line < len(self.begins) else len(self)
        if not (line >= 1 and 1 <= column <= end - begin + 1):
            raise AssertionError(f"{place} is no place of the source")
        return begin + column - 1


class Subject(NamedTuple):
    """A script, what the compiler gives for it and what the facts tell."""

    name: str
    source: Source
    status: int
    code: bytes  # empty after an error
    diagnostics: list
    facts: dict
    facts_status: int

    def begin(self, fact):
        return self.source.offset(fact["begin"])

    def end(self, fact):
        return self.source.offset(fact["end"])

    def span(self, fact):
        return self.begin(fact), self.end(fact)

    def text(self, fact):
        return self.source.text(*self.span(fact))


def subject_of(name, data):
    run = compile_source(data, "-r")
    facts, facts_status = facts_of(data)
    diagnostics = diagnostics_in(run.files["out.res"].decode())
    code = run.files.get("out", b"")
    return Subject(name, Source(data), run.status, code, diagnostics, facts, facts_status)


def all_scripts():
    scripts = {case.name: case.data for case in all_cases()}
    for path in sorted((ROOT / "examples").glob("*.st")):
        scripts[f"examples/{path.stem}"] = path.read_bytes()
    for path in sorted((ROOT / "tests/fuzz/corpus").iterdir()):
        scripts[f"corpus/{path.name}"] = path.read_bytes()
    return scripts


subjects = []


def setUpModule():
    subjects.extend(side_by_side(lambda item: subject_of(*item), all_scripts().items()))


# ---------------------------------------------------------------------------------------------
# What must hold of every script. Each function gives what is wrong.
# ---------------------------------------------------------------------------------------------


def wrong_end(subject):
    is_compiled = subject.facts["compiled"]
    if subject.facts_status != (FINE if is_compiled else NOT_FINE):
        yield f"status {subject.facts_status}"
    if is_compiled != (subject.status == 0):
        yield f"compiled is {is_compiled}, but the compiler's status {subject.status}"


def wrong_items(subject):
    items = "".join(f"{item['item']} " for item in subject.facts["items"]).encode()
    if subject.code and items != subject.code:
        yield f"the items are not the code: {items!r}"


def place_of_message(subject, message):
    """As the compiler gives it: it counts line feeds as column 0, and has a line 0."""
    line, column = message["begin"]
    last = "".join(subject.diagnostics[-1:])
    if "Line 0, Column 0:" in last and subject.begin(message) == 0:
        return 0, 0
    if f"Line {line + 1}, Column 0:" in last:
        return line + 1, 0
    return line, column


def line_of(subject, message):
    line, column = place_of_message(subject, message)
    severity = message["severity"].capitalize()
    return f"{severity}: Line {line}, Column {column}: {message['text']}"


def wrong_messages(subject):
    messages = [line_of(subject, message) for message in subject.facts["messages"]]
    if messages != subject.diagnostics:
        yield f"{messages} and not {subject.diagnostics}"


def wrong_ids(subject):
    """An id is that of a constant whose text is in the message."""
    for message in subject.facts["messages"]:
        constant = "TXT_" + message["id"].upper().replace("-", "_")
        if words.messages().get(constant, message["id"]) not in message["text"]:
            yield f"{message}"


def wrong_texts(subject):
    for kind in ("tokens", "comments"):
        for fact in subject.facts[kind]:
            if fact["text"] != subject.text(fact):
                yield f"{fact} and not {subject.text(fact)!r}"


def wrong_order(subject):
    """Tokens and comments follow each other."""
    for kind in ("tokens", "comments"):
        spans = [subject.span(fact) for fact in subject.facts[kind]]
        for (begin, end), (following, _) in zip(spans, [*spans[1:], (len(subject.source),) * 2]):
            if begin > end or end > following:
                yield f"{kind}: {begin} to {end}, then {following}"


def wrong_begins(subject):
    """Records stand in the order of the script."""
    for kind in ("units", "uses", "declarations", "statements", "operations"):
        begins = [subject.begin(fact) for fact in subject.facts[kind]]
        if begins != sorted(begins):
            yield f"{kind} begin at {begins}"


def left_out(subject):
    """The pieces of the script that are neither token nor comment, up to the end of the last."""
    facts = subject.facts["tokens"] + subject.facts["comments"]
    at = 0
    for begin, end in sorted(map(subject.span, facts)):
        yield subject.source.text(at, begin)
        at = end


def wrong_cover(subject):
    """The language skips white space and repeated semicolons alone."""
    if subject.facts["compiled"]:
        for text in left_out(subject):
            if text.strip(WHITE + ";"):
                yield f"left out: {text!r}"
        end = subject.end(subject.facts["tokens"][-1])
        more = subject.source.text(end, len(subject.source)).strip(WHITE).partition(END_OF_INPUT)[0]
        warnings = [message["id"] for message in subject.facts["messages"]]
        if bool(more) != ("unexpected-data-after-end-program" in warnings):
            yield f"after the end: {more!r}"


def within(inner, outer):
    return outer[0] <= inner[0] and inner[1] <= outer[1]


def wrong_statements(subject):
    statements = subject.facts["statements"]
    ends = {}  # of the last statement in each statement and unit
    for index, statement in enumerate(statements):
        parent = statement.get("parent")
        begin, end = subject.span(statement)
        if parent is not None:
            outer = statements[parent]
            if parent >= index or outer["unit"] != statement["unit"]:
                yield f"{statement} in {outer}"
            if outer["ended"] and not within((begin, end), subject.span(outer)):
                yield f"{statement} reaches out of {outer}"
        if begin < ends.get((statement["unit"], parent), 0):
            yield f"{statement} begins in another"
        ends[statement["unit"], parent] = end
        if subject.facts["compiled"] and not statement["ended"]:
            yield f"{statement} does not end"


def wrong_units(subject):
    facts = subject.facts
    for kind in ("statements", "declarations"):
        for fact in facts[kind]:
            unit = facts["units"][fact["unit"]]
            if unit["ended"] and not within(subject.span(fact), subject.span(unit)):
                yield f"{fact} reaches out of {unit}"
    if facts["compiled"] and not all(unit["ended"] for unit in facts["units"]):
        yield "a unit does not end"


def wrong_declarations(subject):
    names = subject.facts["names"]
    for declaration in subject.facts["declarations"]:
        if "name" in declaration and declaration["ended"]:
            if not within(subject.span(names[declaration["name"]]), subject.span(declaration)):
                yield f"{declaration} does not hold its name"
    declared = [each.get("name") for each in subject.facts["declarations"]]
    for index, name in enumerate(names):
        is_variable = name["kind"] == "variable" and name["section"] != "RESULT"
        if declared.count(index) != int(is_variable):
            yield f"{name} has {declared.count(index)} declarations"


def wrong_names(subject):
    names = subject.facts["names"]
    for index, name in enumerate(names):
        if name["id"] != index:
            yield f"{name} stands at {index}"
        is_result = name.get("section") == "RESULT"
        if "begin" in name and not is_result and subject.text(name) != name["name"]:
            yield f"{name} is not {subject.text(name)!r}"
    for use in subject.facts["uses"]:
        if subject.text(use).upper() != names[use["name"]]["name"].upper():
            yield f"{use} is {subject.text(use)!r}"


NAME_CODES = ("identifier", "function", "functionBlock", "RESULT")


def wrong_uses(subject):
    """Every name in a statement is one use, or the definition of a label."""
    facts = subject.facts
    if facts["compiled"]:
        bodies = [subject.span(each) for each in facts["statements"] if "parent" not in each]
        tokens = [subject.span(each) for each in facts["tokens"] if each["code"] in NAME_CODES]
        expected = [span for span in tokens if any(within(span, body) for body in bodies)]
        labels = [each for each in facts["names"] if each["kind"] == "label" and "begin" in each]
        if sorted(map(subject.span, facts["uses"] + labels)) != expected:
            yield f"{facts['uses']} are not {expected}"


OPERATORS = set("+ - * / ** = <> < > <= >= MOD AND OR XOR NOT SHL SHR ROL ROR".split())
ENDS_OF_VALUES = set("identifier function number string RESULT TICK TRUE FALSE ) ]".split())


def operator_places(subject):
    """The operators of the script; a + or - that follows no value is a sign."""
    codes = [token["code"] for token in subject.facts["tokens"]]
    for token, before in zip(subject.facts["tokens"], [None, *codes]):
        is_sign = token["code"] in ("+", "-") and before not in ENDS_OF_VALUES
        if token["code"] in OPERATORS and not is_sign:
            yield token["begin"]


def wrong_operations(subject):
    """Every operator is one operation, between its operands; none reaches out of another."""
    operations = subject.facts["operations"]
    places = sorted(each["at"] for each in operations)
    if subject.facts["compiled"] and places != list(operator_places(subject)):
        yield f"operators at {places}"
    open_ends = []  # of the operations that hold the next one
    for each in operations:
        begin, end = subject.span(each)
        statement = subject.facts["statements"][each["statement"]]
        if statement["ended"] and not within((begin, end), subject.span(statement)):
            yield f"{each} reaches out of {statement}"
        if not is_between_operands(subject, each):
            yield f"{each} does not stand between its operands"
        open_ends = [outer for outer in open_ends if outer > begin]
        if any(end > outer for outer in open_ends):
            yield f"{each} reaches out of another"
        open_ends.append(end)


def is_between_operands(subject, operation):
    right = subject.span(operation["right"])
    at = subject.source.offset(operation["at"])
    word_end = at + len(operation["operator"])
    begin = subject.begin(operation)
    left = subject.span(operation["left"]) if "left" in operation else (begin, begin)
    is_not = operation["operator"] == "NOT"
    return (
        is_not == ("left" not in operation)
        and begin == left[0]
        and (left[1] == at if is_not else left[0] < left[1] <= at)
        and word_end <= right[0] < right[1] == subject.end(operation)
    )


def wrong_places(subject):
    """An item is written for a place in its statement."""
    for item in subject.facts["items"]:
        at = subject.source.offset(item["at"])
        if "statement" in item:
            statement = subject.facts["statements"][item["statement"]]
            begin, end = subject.span(statement)
            if at < begin or statement["ended"] and at >= end:
                yield f"{item} is not in {statement}"


def wrong_codes(subject):
    """A reserved word and a sign have their own text for their code, all else a class.

    A dot by itself is a sign after a number that can have no fraction, else a number.
    """
    known = set(words.tokens())
    for token in subject.facts["tokens"]:
        text = token["text"].upper()
        expected = (text,) if text in known else CLASSES
        if token["code"] not in expected and text != ".":
            yield f"{token}"


CLASSES = ("identifier", "function", "functionBlock", "number", "string", "unknown")
CHECKS = [
    wrong_end, wrong_items, wrong_messages, wrong_ids, wrong_texts, wrong_order, wrong_begins,
    wrong_cover, wrong_statements, wrong_units, wrong_declarations, wrong_names, wrong_uses,
    wrong_operations, wrong_places, wrong_codes,
]  # fmt: skip


class EveryScript(unittest.TestCase):
    def test_all(self):
        self.assertGreater(len(subjects), 1000)
        for check in CHECKS:
            for subject in subjects:
                with self.subTest(check=check.__name__, script=subject.name):
                    self.assertEqual(list(check(subject)), [])


SAMPLE = b"""PROGRAM P
VAR
    a : INT := 0;  // of no use
    b : INT := 1;
END_VAR
    IF a = b * b THEN
        b := a;;
    END_IF;
END_PROGRAM
"""
SPAN = {"begin": [1, 1], "end": [1, 2]}


def change(kind, index, **members):
    return lambda facts: facts[kind][index].update(members)


# What each check must notice in the facts about the sample.
NOTICED = [
    (wrong_end, lambda facts: facts.update(compiled=False)),
    (wrong_items, change("items", -1, item="NOP")),
    (wrong_items, lambda facts: facts["items"].pop()),
    (wrong_messages, lambda facts: facts["messages"].append(
        {"severity": "error", "text": "none", **SPAN})),
    (wrong_ids, lambda facts: facts["messages"].append({"id": "comma", "text": "none"})),
    (wrong_ids, lambda facts: facts["messages"].append({"id": "none", "text": "no"})),
    (wrong_texts, change("tokens", 0, text="program")),
    (wrong_texts, change("comments", 0, text="of no use")),
    (wrong_order, lambda facts: facts["tokens"].reverse()),
    (wrong_order, change("tokens", 0, end=[2, 2])),
    (wrong_begins, lambda facts: facts["uses"].reverse()),
    (wrong_cover, lambda facts: facts["tokens"].pop(5)),
    (wrong_cover, lambda facts: facts["tokens"].pop()),
    (wrong_cover, lambda facts: facts["comments"].pop()),
    (wrong_statements, change("statements", 1, end=[9, 1])),
    (wrong_statements, change("statements", 1, begin=[5, 1])),
    (wrong_statements, change("statements", 1, parent=1)),
    (wrong_statements, change("statements", 1, ended=False)),
    (wrong_units, change("units", 0, end=[6, 1])),
    (wrong_units, change("units", 0, ended=False)),
    (wrong_declarations, change("declarations", 0, name=2)),
    (wrong_declarations, change("declarations", 1, name=1)),
    (wrong_names, change("names", 1, begin=[4, 5], end=[4, 6])),
    (wrong_names, change("uses", 0, name=2)),
    (wrong_names, change("names", 1, id=2)),
    (wrong_uses, lambda facts: facts["uses"].pop()),
    (wrong_uses, lambda facts: facts["uses"].append(facts["uses"][0])),
    (wrong_operations, lambda facts: facts["operations"].pop()),
    (wrong_operations, change("operations", 0, statement=1)),
    (wrong_operations, change("operations", 0, end=[6, 10])),
    (wrong_operations, change("operations", 1, end=[6, 22])),
    (wrong_operations, change("operations", 1, operator="NOT")),
    (wrong_places, change("items", -2, at=[9, 1], statement=0)),
    (wrong_codes, change("tokens", 0, code="identifier")),
    (wrong_codes, change("tokens", 1, code="P")),
]  # fmt: skip


class Checks(unittest.TestCase):
    """The checks themselves: they accept what is right and notice what is not."""

    def test_what_is_wrong_is_noticed(self):
        for check, damage in NOTICED:
            subject = subject_of("sample", SAMPLE)
            with self.subTest(check=check.__name__, line=damage.__code__.co_firstlineno):
                self.assertEqual(list(check(subject)), [])
                damage(subject.facts)
                self.assertNotEqual(list(check(subject)), [])

    def test_every_check_is_tried(self):
        self.assertEqual({check for check, _ in NOTICED}, set(CHECKS))


# ---------------------------------------------------------------------------------------------
# The schema
# ---------------------------------------------------------------------------------------------

DEBIAN_MODULES = "/usr/lib/python3/dist-packages"  # also for another Python than Debian's


def schema_validator():
    """The function that refuses what does not keep to the schema, None without the tool."""
    sys.path.append(DEBIAN_MODULES)
    try:
        import fastjsonschema
    except ImportError:
        return None
    finally:
        sys.path.remove(DEBIAN_MODULES)
    schema = ROOT / "tests/desk/facts.schema.json"
    return fastjsonschema.compile(json.loads(schema.read_text(encoding="utf-8")))


validate = schema_validator()

DAMAGES = [
    ("version", lambda facts: facts.update(version=2)),
    ("other member", lambda facts: facts.update(other=1)),
    ("missing list", lambda facts: facts.pop("tokens")),
    ("place from 0", lambda facts: facts["tokens"][0].update(begin=[1, 0])),
    ("place of three", lambda facts: facts["tokens"][0].update(begin=[1, 1, 1])),
    ("reference below 0", lambda facts: facts["uses"][0].update(name=-1)),
    ("text for a reference", lambda facts: facts["statements"][0].update(unit="Pump")),
    ("unknown type", lambda facts: facts["names"][1].update(type="TIME")),
    ("variable without a unit", lambda facts: facts["names"][1].pop("unit")),
    ("label with a section", lambda facts: facts["names"][0].update(section="VAR")),
    ("code with a blank", lambda facts: facts["tokens"][0].update(code="END VAR")),
    ("other severity", lambda facts: facts["messages"][0].update(severity="hint")),
    ("operation without a right", lambda facts: facts["operations"][0].pop("right")),
    ("operand of no type", lambda facts: facts["operations"][0]["left"].update(type="")),
    ("id in capitals", lambda facts: facts["messages"][0].update(id="TXT_COMMA")),
]
WITH_WARNING = b"PROGRAM P VAR a : INT; b : INT; END_VAR b := 1 + 2; END_PROGRAM"


@unittest.skipUnless(validate, "fastjsonschema is not installed")
class Schema(unittest.TestCase):
    def test_all(self):
        for subject in subjects:
            with self.subTest(script=subject.name):
                validate(subject.facts)

    def test_damaged_facts_are_refused(self):
        for name, damage in DAMAGES:
            facts, _ = facts_of(WITH_WARNING)
            validate(facts)
            damage(facts)
            with self.subTest(damage=name), self.assertRaises(ValueError):
                validate(facts)


if __name__ == "__main__":
    unittest.main()
