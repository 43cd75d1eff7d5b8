#!/usr/bin/env python3
"""Makes small changes to the compiler's sources, one at a time, and tells which the tests miss.

    mutate.py [--list] [--only N...] [--files NAME...] [--workers N] [--count N] [--seed N]

Each change (a mutant) is built and tested in a copy of the work tree outside of it. A mutant on
which some test fails is killed; one that passes them all survives, and shows either a case that
the tests lack or a change that nothing can show. A test fails that takes far more than its usual
processor time, whatever else the machine does, or that waits for long without using any.

The tests are those of CTest but for the ones labelled slow. Those that need the desk come last, and
only those that take little: they look at the compiler from further off. Tests that fail without any
change are left out, with a notice. The mutants depend on the seed and the sources alone.
"""

import argparse
import json
import os
import queue
import random
import re
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import time
from collections import Counter, defaultdict
from concurrent.futures import ThreadPoolExecutor
from itertools import zip_longest
from pathlib import Path
from typing import NamedTuple

ROOT = Path(__file__).resolve().parents[2]
SOURCE_FOLDER = "qyx_st_cmp"

# Of the headers only those with texts are changed, and by these operators alone.
HEADER_OF_TEXTS = re.compile(r"inline constexpr QLatin1String \w+ =")
HEADER_OPERATORS = {"number", "text"}

# ---------------------------------------------------------------------------------------------
# Sources
# ---------------------------------------------------------------------------------------------

TOKENS = re.compile(
    r"""
    (?P<skipped> //[^\n]* | /\*.*?\*/ | \#ifdef\ Q_OS_WIN\b.*?\#endif | ^[ ]*\#[^\n]*
               | \b(?:static_)?assert\(.*?\); | \[\[.*?\]\] )
  | (?P<text>    "(?:\\.|[^"\\])*" )
  | (?P<char>    '(?:\\.|[^'\\])' )
  | (?P<number>  [0-9](?:[eE][+-]|[\w'.])* )
  | (?P<word>    \w+ )
  | (?P<mark>    [=!<>+*/|&^-]= | -> | :: | \+\+ | -- | && | \|\| | \S )
    """,
    re.VERBOSE | re.DOTALL | re.MULTILINE,
)

STATEMENT_WORDS = {"if", "for", "while", "switch", "return"}


class Token(NamedTuple):
    kind: str
    text: str
    begin: int
    end: int


class Edit(NamedTuple):
    """The text from begin to end gives way to the new one."""

    begin: int
    end: int
    new: str


class Source:
    """A file as tokens, those left out that are not compiled or that no test can see."""

    def __init__(self, path, constants):
        self.name = path.name
        self.constants = constants  # from each name to the next of its kind, and the kind
        self.text = path.read_text()
        self.tokens = [
            Token(match.lastgroup, match[0], match.start(), match.end())
            for match in TOKENS.finditer(self.text)
            if match.lastgroup != "skipped"
        ]
        self.partners = self.find_partners()  # from each bracket to the one that goes with it

    def find_partners(self):
        partners = {}
        opened = []
        for index, token in enumerate(self.tokens):
            if token.text in ("(", "[", "{"):
                opened.append(index)
            elif token.text in (")", "]", "}"):
                partners[opened[-1]] = index
                partners[index] = opened.pop()
        return partners

    def at(self, index):
        return self.tokens[index].text if 0 <= index < len(self.tokens) else ""

    def span(self, first, last):
        return self.text[self.tokens[first].begin : self.tokens[last].end]

    def edit(self, first, last, new):
        return Edit(self.tokens[first].begin, self.tokens[last].end, new)

    def swap(self, first, second):
        """Two spans of tokens, each with its first and its last, change places."""
        between = self.text[self.tokens[first[1]].end : self.tokens[second[0]].begin]
        new = self.span(*second) + between + self.span(*first)
        return self.edit(first[0], second[1], new)

    def find_at_depth(self, first, wanted):
        """The next of the wanted tokens outside of further brackets; None if there is none."""
        index = first
        while index < len(self.tokens):
            if self.at(index) in wanted:
                return index
            if self.at(index) in (")", "]", "}"):
                return None
            index = self.partners.get(index, index) + 1
        return None

    def parts(self, opening):
        """What stands between commas within the bracket: the first and last token of each."""
        first = opening + 1
        while (end := self.find_at_depth(first, (",", ";"))) is not None:
            if self.at(end) == ";":
                return
            yield first, end - 1
            first = end + 1
        if first < self.partners[opening]:
            yield first, self.partners[opening] - 1

    def path_end(self, first):
        """The last token of a name, like "a.b" or "a::b"; None for anything else."""
        last = first
        if self.tokens[first].kind != "word" or self.at(first) in STATEMENT_WORDS:
            return None
        while self.at(last + 1) in (".", "->", "::"):
            last += 2
        return last

    def statement_begins(self):
        for index in range(1, len(self.tokens) - 1):
            before = self.tokens[index - 1]
            is_case = before.text == ":" and self.text[before.end] == "\n"
            if before.text in (";", "{", "}") or is_case:
                yield index

    def call_end(self, first):
        """The ";" of a statement that is a call, else None."""
        last = self.path_end(first)
        if last is None or self.at(last + 1) != "(":
            return None
        end = self.partners[last + 1] + 1
        return end if self.at(end) == ";" else None

    def assignment_end(self, first):
        """The ";" of a statement that changes a variable, else None."""
        if self.at(first) not in ("++", "--"):
            last = self.path_end(first + (self.at(first) == "*"))
            if last is None:
                return None
            while self.at(last + 1) in ("[", "++"):
                last = self.partners.get(last + 1, last + 1)
            if not re.fullmatch("[+*/|&^-]?=", self.at(last + 1)):
                return None
        return self.find_at_depth(first, (";",))


# ---------------------------------------------------------------------------------------------
# Operators: each gives the edits that it can make in a source
# ---------------------------------------------------------------------------------------------


def replaced_marks(source, replacements):
    for index, token in enumerate(source.tokens):
        # A blank at both sides tells an operator from a bracket of a template or a sign.
        is_spaced = source.text[token.begin - 1] == " " == source.text[token.end : token.end + 1]
        if token.text in replacements and is_spaced:
            yield source.edit(index, index, replacements[token.text])


def comparison(source, _):
    flipped = {"==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">"}
    return replaced_marks(source, flipped)


def logic(source, _):
    return replaced_marks(source, {"&&": "||", "||": "&&"})


def arithmetic(source, _):
    return replaced_marks(source, {"+": "-", "-": "+", "*": "+"})


def boolean(source, _):
    opposite = {"true": "false", "false": "true"}
    for index, token in enumerate(source.tokens):
        if token.text in opposite:
            yield source.edit(index, index, opposite[token.text])


def negation(source, _):
    for index, token in enumerate(source.tokens):
        if token.text in ("if", "while") and source.at(index + 1) == "(":
            first, last = index + 2, source.partners[index + 1] - 1
            yield source.edit(first, last, f"!({source.span(first, last)})")
        elif token.text == "!":
            yield source.edit(index, index, "")
        elif token.text == "?":
            colon = source.find_at_depth(index + 1, (":",))
            end = source.find_at_depth(colon + 1, (",", ";"))
            if end is not None:
                yield source.swap((index + 1, colon - 1), (colon + 1, end - 1))


def number(source, _):
    for index, token in enumerate(source.tokens):
        match = re.fullmatch(r"(0[xX][\da-fA-F']+|[\d']+)([uUlL]*)", token.text)
        if match and token.kind == "number":
            value = int(match[1].replace("'", ""), 0)
            for other in (value + 1, value - 1):
                if other >= 0:
                    yield source.edit(index, index, f"{other}{match[2]}")


def neighbour(character):
    following = chr(ord(character) + 1)
    usable = following.isalnum() == character.isalnum() and following not in "'\"\\\x7f"
    return following if usable else chr(ord(character) - 1)


def text(source, chance):
    """One character of a text becomes its neighbour, or goes if it is a blank."""
    for index, token in enumerate(source.tokens):
        quote, inner = token.text[0], token.text[1:-1]
        plain = [match for match in re.finditer(r"\\.|.", inner) if len(match[0]) == 1]
        if token.kind in ("text", "char") and plain:
            chosen = chance.choice(plain)
            new = "" if chosen[0] == " " and token.kind == "text" else neighbour(chosen[0])
            changed = inner[: chosen.start()] + new + inner[chosen.end() :]
            yield source.edit(index, index, quote + changed + quote)


# The definitions of the constants of each kind.
KINDS = {
    "token": r"^ +(TOKEN_\w+) = \d",
    "type": r"^ +(TYP_\w+) = \d",
    "line": r"^ +(WHAT_\w+) = \d",
    "character class": r"^ +(CLASS_\w+) =",
    "code": r"^inline constexpr QLatin1String ((?!TXT_)\w+) =",
    "message": r"^inline constexpr QLatin1String (TXT_\w+) =",
}


def source_files(folder):
    return [*sorted(folder.glob("*.cpp")), *sorted(folder.glob("*.h"))]


def find_constants(folder):
    constants = {}
    text = "\n".join(path.read_text() for path in source_files(folder))
    for kind, pattern in KINDS.items():
        names = re.findall(pattern, text, re.MULTILINE)
        if len(names) < 2:
            sys.exit(f"the sources define no constants of the kind {kind}")
        for name, following in zip(names, names[1:] + names[-2:-1]):
            constants[name] = following, kind
    return constants


def constant(source, _):
    for index, token in enumerate(source.tokens):
        if token.text in source.constants and source.at(index + 1) != "=":
            yield source.edit(index, index, source.constants[token.text][0])


def dropped_call(source, _):
    for first in source.statement_begins():
        end = source.call_end(first)
        if end is not None:
            yield source.edit(first, end, ";")


def dropped_assignment(source, _):
    for first in source.statement_begins():
        end = source.assignment_end(first)
        if end is not None:
            yield source.edit(first, end, ";")


def swapped_items(source, _):
    """Two calls in sequence that each write an item or draw a label."""
    drawing = re.compile(r"Emit|Post|WriteItem|GetNewLabel|\w+->appendText")
    for first in source.statement_begins():
        middle = source.call_end(first)
        end = middle and source.call_end(middle + 1)
        if end:
            calls = [(first, middle), (middle + 1, end)]
            texts = [source.span(*call) for call in calls]
            if texts[0] != texts[1] and all(map(drawing.match, texts)):
                yield source.swap(*calls)


def kind_of_value(source, first, last):
    """Values of one kind can change places; None for what has no certain kind."""
    token = source.tokens[first]
    if first != last:
        return None
    if token.text in source.constants:
        return source.constants[token.text][1]
    if token.kind == "word":
        types = re.findall(rf"(\w+)[&*]* {token.text}\b", source.text[: token.begin])
        return types[-1] if types else None
    return token.kind


def is_list(source, index):
    """Whether a list of values is opened here, rather than a block, a body or a declaration."""
    before = source.tokens[index - 1]
    if source.at(index) == "{":
        is_block = source.text[source.tokens[index].end] == " " or before.text == ")"
        return not is_block and source.tokens[index + 1].kind != "text"
    is_named = source.at(index) == "(" and before.kind == "word"
    is_declared = source.tokens[index - 2].kind == "word" or source.at(index - 2) in "&*>"
    return is_named and (not is_declared or source.at(index - 2) in ("return", "else"))


def swapped_arguments(source, _):
    """Neighbours in a list of arguments or values, also rows of a table."""
    for index in range(2, len(source.tokens)):
        if source.at(index) not in ("(", "{") or not is_list(source, index):
            continue
        parts = list(source.parts(index))
        for part, next_part in zip(parts, parts[1:]):
            kind = kind_of_value(source, *part)
            # A list of nothing but tokens is a set.
            is_ordered = kind is not None and (kind, source.at(index)) != ("token", "{")
            is_alike = kind == kind_of_value(source, *next_part)
            if is_ordered and is_alike and source.span(*part) != source.span(*next_part):
                yield source.swap(part, next_part)


OPERATORS = {
    "arithmetic": arithmetic,
    "boolean": boolean,
    "comparison": comparison,
    "constant": constant,
    "dropped assignment": dropped_assignment,
    "dropped call": dropped_call,
    "logic": logic,
    "negation": negation,
    "number": number,
    "swapped arguments": swapped_arguments,
    "swapped items": swapped_items,
    "text": text,
}


# ---------------------------------------------------------------------------------------------
# Mutants
# ---------------------------------------------------------------------------------------------


class Mutant(NamedTuple):
    source: Source
    edit: Edit
    operator: str

    def text(self):
        original = self.source.text
        return original[: self.edit.begin] + self.edit.new + original[self.edit.end :]

    def place(self):
        line = self.source.text.count("\n", 0, self.edit.begin) + 1
        return f"{self.source.name}:{line} {self.operator}"

    def diff(self):
        begin = self.source.text.rfind("\n", 0, self.edit.begin) + 1
        rest = len(self.source.text) - self.source.text.find("\n", self.edit.end)
        old = self.source.text[begin:-rest].splitlines()
        new = self.text()[begin:-rest].splitlines()
        return "\n".join(["- " + line for line in old] + ["+ " + line for line in new])


def read_sources(folder):
    constants = find_constants(folder)
    for path in source_files(folder):
        if path.suffix == ".cpp" or HEADER_OF_TEXTS.search(path.read_text()):
            yield Source(path, constants)


def choose_mutants(folder, count, seed):
    """One of each operator in turn until there are enough, wherever it applies."""
    chance = random.Random(seed)
    groups = {name: [] for name in OPERATORS}
    for source in read_sources(folder):
        for name, operator in OPERATORS.items():
            if source.name.endswith(".cpp") or name in HEADER_OPERATORS:
                groups[name] += [Mutant(source, edit, name) for edit in operator(source, chance)]
    for group in groups.values():
        chance.shuffle(group)
    in_turn = [mutant for turn in zip_longest(*groups.values()) for mutant in turn if mutant]
    # In the order of the files, so that most builds compile a single object.
    chosen = sorted(in_turn[:count], key=lambda mutant: (mutant.source.name, mutant.edit))
    return dict(enumerate(chosen, 1))


# ---------------------------------------------------------------------------------------------
# Building and testing
# ---------------------------------------------------------------------------------------------

# Of the processor.
BUILD_SECONDS = 600
UNMUTATED_SECONDS = 300  # what a test may take when nothing is changed
UNMUTATED_DESK_SECONDS = 10  # the same, of one that needs the desk

WAITING_SECONDS = 120  # after which a test without processor time counts as one that hangs
LOOK_SECONDS = 1  # from one look at the processor time to the next
POLL_SECONDS = 0.02

MEMORY_LIMIT = 4 << 30
FILE_SIZE_LIMIT = 1 << 30

TIMED_OUT = -signal.SIGKILL
NOT_BUILT = "not built"

COMPILER_TARGET = "yxstcmp"
WORDS_TARGET = "yxst_words"  # what it prints stays that of the compiler without a change
UNIT_TARGET = "yxst_unit_tests"
DESK_TARGETS = ["yxst", "yxst_report_sample"]  # built for a mutant that all other tests let pass


def copy_work_tree(to):
    listed = subprocess.run(
        ["git", "ls-files", "-coz", "--exclude-standard"],
        cwd=ROOT,
        check=True,
        capture_output=True,
        text=True,
    )
    for name in filter(None, listed.stdout.split("\0")):
        if (ROOT / name).is_file():
            (to / name).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(ROOT / name, to / name)


def processor_seconds(session):
    """Of all processes of the session, and of those that they have waited for."""
    ticks = 0
    for path in Path("/proc").glob("[0-9]*/stat"):
        try:
            fields = path.read_text().rpartition(")")[2].split()
        except OSError:  # it has just ended
            continue
        if int(fields[3]) == session:
            ticks += sum(map(int, fields[11:15]))
    return ticks / os.sysconf("SC_CLK_TCK")


class Run(NamedTuple):
    status: int
    seconds: float  # of the processor


class Watch:
    """Waits for a process with a session of its own and ends it when it takes too much."""

    def __init__(self, process, limit):
        self.process = process
        self.limit = limit
        self.used = 0
        self.progress = self.next_look = time.monotonic()

    def run(self):
        while True:
            pid, status, usage = os.wait4(self.process.pid, os.WNOHANG)
            if pid != 0:
                self.process.returncode = os.waitstatus_to_exitcode(status)
                return Run(self.process.returncode, usage.ru_utime + usage.ru_stime)
            if time.monotonic() >= self.next_look and self.takes_too_much():
                os.killpg(self.process.pid, signal.SIGKILL)
                self.process.wait()
                return Run(TIMED_OUT, self.used)
            time.sleep(POLL_SECONDS)

    def takes_too_much(self):
        """Looks at the processor time."""
        now = time.monotonic()
        self.next_look = now + LOOK_SECONDS
        used = processor_seconds(self.process.pid)
        if used > self.used:
            self.used, self.progress = used, now
        return used > self.limit or now - self.progress > WAITING_SECONDS


class Test(NamedTuple):
    name: str
    command: list
    environment: dict

    def is_unit(self):
        return Path(self.command[0]).name == UNIT_TARGET


class Worker:
    """A copy of the work tree with a build of its own."""

    def __init__(self, folder):
        self.tree = folder / "tree"
        self.build_folder = folder / "build"
        self.scratch = folder / "scratch"  # for the files that tests leave
        shutil.copytree(folder.parent / "tree", self.tree)
        # Quick to compile, and an index out of range ends the run.
        flags = "-DCMAKE_CXX_FLAGS_DEBUG=-O0 -D_GLIBCXX_ASSERTIONS"
        options = ["-DCMAKE_BUILD_TYPE=Debug", flags, f"-DPython3_EXECUTABLE={sys.executable}"]
        configure = ["cmake", "-G", "Ninja", "-S", self.tree, "-B", self.build_folder, *options]
        subprocess.run(configure, check=True, stdout=subprocess.DEVNULL)
        if not self.build(COMPILER_TARGET) or not self.build(WORDS_TARGET):
            sys.exit("the compiler does not build even without a change")
        self.build(UNIT_TARGET)
        self.tests = {test.name: test for test in self.find_tests()}

    def run(self, command, seconds, environment=None):
        """A run that may take that many seconds of the processor."""
        self.scratch.mkdir(exist_ok=True)
        process = subprocess.Popen(
            command,
            cwd=self.build_folder,
            env={**os.environ, "TMPDIR": str(self.scratch), **(environment or {})},
            stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
            start_new_session=True,
        )
        run = Watch(process, seconds).run()
        shutil.rmtree(self.scratch, ignore_errors=True)
        return run

    def build(self, *targets):
        return self.run(["ninja", "-j1", *targets], BUILD_SECONDS).status == 0

    def find_tests(self):
        """All tests that can be run, those of the unit tests' program as a single one."""
        command = ["ctest", "--show-only=json-v1", "--label-exclude", "slow"]
        shown = subprocess.run(command, cwd=self.build_folder, check=True, capture_output=True)
        for test in json.loads(shown.stdout)["tests"]:
            properties = {item["name"]: item["value"] for item in test["properties"]}
            environment = dict(pair.split("=", 1) for pair in properties.get("ENVIRONMENT", []))
            if "command" in test:
                found = Test(test["name"], test["command"], environment)
                if found.is_unit():
                    found = Test("unit", [found.command[0], "--gtest_fail_fast"], {})
                yield found

    def run_test(self, name, seconds):
        test = self.tests[name]
        if test.is_unit() and not self.build(UNIT_TARGET):
            return Run(NOT_BUILT, 0)
        return self.run(test.command, seconds, test.environment)

    def judge(self, mutant, suite):
        """Tells what became of the mutant and which test killed it."""
        path = self.tree / SOURCE_FOLDER / mutant.source.name
        path.write_text(mutant.text())
        try:
            if not self.build(COMPILER_TARGET):
                return "not compiled", ""
            for name in suite.in_order(mutant.source.name):
                if name in suite.of_desk and not self.build(*DESK_TARGETS):
                    return "not compiled", ""
                status = self.run_test(name, suite.limit(name)).status
                if status != 0:
                    suite.kills[mutant.source.name, name] += 1
                    return "killed", f"{name} (timed out)" if status == TIMED_OUT else name
            return "survived", ""
        finally:
            path.write_text(mutant.source.text)


class Suite:
    """The tests that pass when nothing is changed, and what they have done so far."""

    def __init__(self, worker):
        self.kills = Counter()  # by file and test
        self.seconds = {}  # of the processor
        self.measure(worker, worker.tests, UNMUTATED_SECONDS)
        self.of_desk = set(worker.tests) - set(self.seconds)
        if not worker.build(*DESK_TARGETS):
            sys.exit("the desk does not build even without a change")
        self.measure(worker, self.of_desk, UNMUTATED_DESK_SECONDS)
        for name in sorted(set(worker.tests) - set(self.seconds)):
            print(f"{name} fails without a change or takes long and is left out", flush=True)
        if "unit" not in worker.tests:
            print("the unit tests do not build and are left out", flush=True)
        total = sum(self.seconds.values())
        passed = f"{len(self.seconds)} tests pass without a change"
        print(f"{passed}, in {total:.0f} s of the processor", flush=True)

    def measure(self, worker, names, limit):
        for name in names:
            run = worker.run_test(name, limit)
            if run.status == 0:
                self.seconds[name] = run.seconds

    def in_order(self, file):
        """First what is quick and has killed mutants of that file, what needs the desk last."""
        cost = {name: time / (1 + self.kills[file, name]) for name, time in self.seconds.items()}
        return sorted(cost, key=lambda name: (name in self.of_desk, cost[name]))

    def limit(self, name):
        return 10 + 5 * self.seconds[name]


def prepare_workers(folder, count):
    (folder / "tree").mkdir()
    copy_work_tree(folder / "tree")
    folders = [folder / f"worker{number}" for number in range(count)]
    with ThreadPoolExecutor(count) as pool:
        return list(pool.map(Worker, folders))


def judge_all(mutants, workers, suite):
    """Judges the mutants side by side; returns the numbers of those with each outcome."""
    idle = queue.Queue()
    for worker in workers:
        idle.put(worker)
    outcomes = defaultdict(list)

    def judge(number):
        worker = idle.get()
        begin = time.monotonic()
        outcome, test = worker.judge(mutants[number], suite)
        idle.put(worker)
        outcomes[outcome].append(number)
        seconds = time.monotonic() - begin
        place = mutants[number].place()
        print(f"{number:4} {outcome:12} {seconds:5.1f} s  {place}  {test}", flush=True)

    with ThreadPoolExecutor(len(workers)) as pool:
        list(pool.map(judge, mutants))
    return outcomes


def report(mutants, outcomes, seconds):
    for number in sorted(outcomes["survived"]):
        print(f"\nsurvivor {number}: {mutants[number].place()}\n{mutants[number].diff()}")
    killed, survived = len(outcomes["killed"]), len(outcomes["survived"])
    print(
        f"\n{killed + survived} mutants in {seconds / 60:.0f} minutes: {killed} killed, "
        f"{survived} survived ({killed / max(killed + survived, 1):.1%} killed); "
        f"{len(outcomes['not compiled'])} more did not compile"
    )


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--list", action="store_true", help="show the mutants and stop")
    parser.add_argument("--only", type=int, nargs="+", metavar="N", help="the mutants to run")
    parser.add_argument("--files", nargs="+", metavar="NAME", help="only mutants of these files")
    parser.add_argument("--workers", type=int, default=os.cpu_count())
    parser.add_argument("--count", type=int, default=360, help="how many mutants to make")
    parser.add_argument("--seed", type=int, default=1)
    arguments = parser.parse_args()

    def chosen(folder):
        mutants = choose_mutants(folder / SOURCE_FOLDER, arguments.count, arguments.seed)
        return {
            number: mutant
            for number, mutant in mutants.items()
            if (not arguments.only or number in arguments.only)
            and (not arguments.files or mutant.source.name in arguments.files)
        }

    if arguments.list:
        for number, mutant in chosen(ROOT).items():
            print(f"{number}: {mutant.place()}\n{mutant.diff()}\n")
        return

    # A mutant may ask for memory or write for ever.
    for limited, limit in [
        (resource.RLIMIT_AS, MEMORY_LIMIT),
        (resource.RLIMIT_FSIZE, FILE_SIZE_LIMIT),
        (resource.RLIMIT_CORE, 0),
    ]:
        resource.setrlimit(limited, (limit, resource.getrlimit(limited)[1]))
    with tempfile.TemporaryDirectory(prefix="mutate-") as folder:
        os.chmod(folder, 0o755)  # some tests run the compiler as another user
        begin = time.monotonic()
        workers = prepare_workers(Path(folder), arguments.workers)
        suite = Suite(workers[0])
        mutants = chosen(workers[0].tree)
        outcomes = judge_all(mutants, workers, suite)
        report(mutants, outcomes, time.monotonic() - begin)


if __name__ == "__main__":
    main()
