"""The examples of the manual and of README.md give what is shown, and the manual is complete.

To look at single pages while they are written, with all that is wrong on them:

    python3 tests/cli/test_manual.py --page tutorial.md [--page README.md ...]

Fences of three backticks are told apart by the words after the backticks:

    st                  a whole script
    st NAME.st          the same; later console fences of the page find it under that name
    st frame            a whole script with a line "(* statements *)", for what follows
    st statements       statements that stand in place of that line of the latest frame

    listing [OPTIONS]   what the latest script gives: its listing with these options, -l added
    items               all items of its code, one a line
    code                the items of its program without those that every program has; only for
                        statements whose frame has no other statements
    message             the errors and warnings of its run; without this fence there must be none

    csv NAME            a table that later console fences of the page find under that name

    console             lines that begin with "$ " are run by bash, the rest is what they print;
                        the console fences of a page follow each other in one folder

    text, ebnf, sh      not executed

Milliseconds are written as "N ms". Other fences are not known.
"""

import argparse
import difflib
import os
import re
import shlex
import subprocess
import sys
import tempfile
import unittest
from collections import defaultdict
from itertools import zip_longest
from pathlib import Path
from typing import Dict, List, NamedTuple, Optional

from limits import IS_SANITIZED, STACK_SIZE, limit_stack
from support import (
    BINARY,
    DESK,
    ROOT,
    TIMEOUT_SECONDS,
    compile_source,
    diagnostics_in,
    lines_of,
    side_by_side,
    words,
)
from test_catalogue import CATALOGUE, NOT_RAISED, SOURCES, texts_in, texts_in_diagnostics

MANUAL = ROOT / "docs" / "manual"
PAGES_WITH_EXAMPLES = (
    "tutorial language target-code diagnostics reasons surprises dialects facts check lints"
    " fmt verify run test machine"
).split()

STATEMENTS_MARK = "(* statements *)"
RESULT_KINDS = {"listing", "items", "code", "message"}
SILENT_KINDS = {"text", "ebnf", "sh"}

# ---------------------------------------------------------------------------------------------
# Pages
# ---------------------------------------------------------------------------------------------


class Complaint(NamedTuple):
    page: str
    line: int
    text: str

    def __str__(self):
        return f"{self.page}:{self.line}: {self.text}"


class Fence(NamedTuple):
    page: str
    line: int  # of the opening backticks
    section: int  # index of the heading above, -1 on top
    info: List[str]
    lines: List[str]

    @property
    def kind(self):
        return self.info[0] if self.info else ""

    @property
    def text(self):
        return "".join(f"{line}\n" for line in self.lines)

    def complain(self, text, line=0):
        return Complaint(self.page, self.line + line, text)


class Heading(NamedTuple):
    line: int
    text: str


class Page(NamedTuple):
    name: str
    text: str
    fences: List[Fence]
    headings: List[Heading]
    prose: str  # all but the fences
    complaints: List[Complaint]


FENCE = re.compile(r"( *)(`{3,}|~{3,})(.*)")
HEADING = re.compile(r"#{1,6} +(.*)")


def read_page(name, text):
    page = Page(name, text, [], [], "", [])
    prose = []
    fence = None
    for number, line in enumerate(text.splitlines(), 1):
        match = FENCE.fullmatch(line)
        if fence is not None:
            if match and match[2] == marks and not match[3].strip():
                page.fences.append(fence)
                fence = None
            else:
                fence.lines.append(line.removeprefix(indent))
        elif match:
            indent, marks, info = match.groups()
            fence = Fence(name, number, len(page.headings) - 1, info.split(), [])
        else:
            prose.append(line)
            if heading := HEADING.fullmatch(line):
                page.headings.append(Heading(number, heading[1]))
    if fence is not None:
        page.complaints.append(fence.complain("this fence does not end"))
    return page._replace(prose="\n".join(prose))


def pages_at(paths):
    return [read_page(str(path.relative_to(ROOT)), path.read_text()) for path in paths]


def read_pages():
    return pages_at([ROOT / "README.md", *sorted(MANUAL.glob("*.md"))])


def read_other_pages():
    """Those for who works on the project, and of the editors, whose fences are no examples."""
    folders = [ROOT, ROOT / "docs"]
    paths = [path for folder in folders for path in sorted(folder.glob("*.md"))]
    return pages_at([*paths, *sorted((ROOT / "editors").glob("**/*.md"))])


# ---------------------------------------------------------------------------------------------
# Examples
# ---------------------------------------------------------------------------------------------


class Script(NamedTuple):
    fence: Fence
    source: str
    frame: Optional[str]  # that statements stand in
    results: Dict[str, List[Fence]]

    @property
    def is_frame(self):
        return self.fence.info[1:] == ["frame"]

    @property
    def diagnostics(self):
        return "".join(fence.text for fence in self.results.get("message", ()))

    @property
    def is_wrong(self):
        return re.search("^Error: ", self.diagnostics, re.MULTILINE) is not None


class Console(NamedTuple):
    fence: Fence
    files: Dict[str, str]  # the named scripts and tables above


class Examples(NamedTuple):
    scripts: List[Script]
    consoles: List[Console]
    complaints: List[Complaint]

    def __len__(self):
        return len(self.scripts) + len(self.consoles)


def insert_statements(frame, statements):
    lines = frame.splitlines(keepends=True)
    at = [line.strip() for line in lines].index(STATEMENTS_MARK)
    return "".join([*lines[:at], statements, *lines[at + 1 :]])


def is_frame_text(text):
    return [line.strip() for line in text.splitlines()].count(STATEMENTS_MARK) == 1


class PageReader:
    """Takes the fences of a page in order. What takes one returns what is wrong with it."""

    def __init__(self, page):
        self.found = Examples([], [], list(page.complaints))
        self.frame = None
        self.files = {}
        self.script = None  # that results belong to

    def take(self, fence):
        if fence.kind == "st":
            self.script = None
            return self.take_script(fence, fence.info[1:])
        if fence.kind in RESULT_KINDS:
            return self.take_result(fence)
        if fence.info == ["console"]:
            self.script = None
            self.found.consoles.append(Console(fence, dict(self.files)))
            return None
        if len(fence.info) == 2 and fence.kind == "csv":
            self.files[fence.info[1]] = fence.text
            return None
        if len(fence.info) == 1 and fence.kind in SILENT_KINDS:
            return None
        return f"unknown kind of fence: {' '.join(fence.info) or 'no word after it'}"

    def take_script(self, fence, role):
        source, frame = fence.text, None
        if role == ["statements"]:
            if self.frame is None:
                return "statements without a frame above them"
            source, frame = insert_statements(self.frame, fence.text), self.frame
        elif role == ["frame"]:
            if not is_frame_text(source):
                return f"a frame holds one line with {STATEMENTS_MARK}"
            self.frame = source
        elif len(role) == 1 and role[0].endswith(".st"):
            self.files[role[0]] = source
        elif role:
            return f"unknown kind of script: {' '.join(role)}"
        self.script = Script(fence, source, frame, {})
        self.found.scripts.append(self.script)
        return None

    def take_result(self, fence):
        if self.script is None:
            return "no script above this result"
        if fence.kind != "listing" and len(fence.info) > 1:
            return f"{fence.kind} takes nothing after it"
        results = self.script.results.setdefault(fence.kind, [])
        if fence.kind == "message" and results:
            return "a second message fence of the same script"
        results.append(fence)
        return None


def find_examples(page):
    """What the fences of the page mean."""
    reader = PageReader(page)
    for fence in page.fences:
        wrong = reader.take(fence)
        if wrong is not None:
            reader.found.complaints.append(fence.complain(wrong))
    return reader.found


# ---------------------------------------------------------------------------------------------
# Running them
# ---------------------------------------------------------------------------------------------


def compare(fence, given, what=""):
    """A complaint with the first line of the page that differs, or nothing."""
    if given == fence.lines:
        return []
    pairs = zip_longest(fence.lines, given)
    first = next(at for at, (shown, got) in enumerate(pairs) if shown != got)
    difference = difflib.unified_diff(
        fence.lines, given, "shown on the page", "given by the compiler", lineterm="", n=2
    )
    rows = "\n    ".join(difference)
    kind = what or " ".join(fence.info)
    return [fence.complain(f"{kind} differs here:\n    {rows}", first + 1)]


class Compiled(NamedTuple):
    status: int
    diagnostics: List[str]
    items: Optional[List[str]]  # none after an error


def compile_script(source):
    result = compile_source(source.encode(), "-s", "-l")
    items = None
    if "out" in result.files:
        items = lines_of(result.files["out.lst"])
        if "".join(f"{item} " for item in items).encode() != result.files["out"]:
            raise ValueError("code file and listing do not hold the same items")
    return Compiled(result.status, diagnostics_in(result.stdout.decode()), items)


def check_messages(script, compiled):
    is_error = any(line.startswith("Error") for line in compiled.diagnostics)
    if compiled.status != int(is_error):
        yield script.fence.complain(f"exit status {compiled.status}")
    if "message" in script.results:
        yield from compare(script.results["message"][0], compiled.diagnostics)
    elif is_error or compiled.diagnostics and not script.is_frame:
        rows = "\n    ".join(compiled.diagnostics)
        yield script.fence.complain(f"no message is shown here, but there is:\n    {rows}")


def program_code(items):
    """What stands between the MAIN: of the program and the RET at its end."""
    begin = len(items) - items[::-1].index("MAIN:")
    return items[begin:-1]


def check_code(fence, script, compiled):
    if script.frame is None:
        yield fence.complain("code is for statements; use items for a whole script")
    elif compiled.items is None:
        yield fence.complain("there is no code")
    elif program_code(compile_script(script.frame).items or ["MAIN:", "RET"]):
        yield fence.complain("code is not for frames that hold other statements")
    else:
        yield from compare(fence, program_code(compiled.items))


def check_items(fence, compiled):
    if compiled.items is None:
        yield fence.complain("there is no code")
    else:
        yield from compare(fence, compiled.items)


def check_listing(fence, script):
    result = compile_source(script.source.encode(), "-l", *fence.info[1:])
    if "out.lst" not in result.files:
        yield fence.complain(f"there is no listing; exit status {result.status}")
    else:
        yield from compare(fence, lines_of(result.files["out.lst"]))


def check_script(script):
    try:
        compiled = compile_script(script.source)
        yield from check_messages(script, compiled)
        for kind, fences in script.results.items():
            for fence in fences:
                if kind == "code":
                    yield from check_code(fence, script, compiled)
                elif kind == "items":
                    yield from check_items(fence, compiled)
                elif kind == "listing":
                    yield from check_listing(fence, script)
    except (ValueError, subprocess.SubprocessError) as error:
        yield script.fence.complain(str(error))


END_OF_COMMAND = "\x1e"
PROMPT = "$ "


LITTLE_MEMORY = "ulimit -v"


def run_commands(commands, folder, tools):
    """The outputs of the commands, which one shell runs one after the other."""
    lines = [f"end_of_command() {{ local s=$?; printf '{END_OF_COMMAND}'; return $s; }}"]
    for command in commands:
        lines += [f"eval {shlex.quote(command)}", "end_of_command"]
    process = subprocess.run(
        ["bash", "--norc", "--noprofile", "-c", "\n".join(lines)],
        cwd=folder,
        env={**os.environ, "PATH": f"{tools}:{os.environ['PATH']}", "LC_ALL": "C"},
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        timeout=TIMEOUT_SECONDS,
        preexec_fn=lambda: limit_stack(STACK_SIZE),
    )
    # A build that measures coverage cannot write its data while a limit on files holds.
    output = re.sub(rb"libgcov profiling error:.*\n", b"", process.stdout)
    outputs = output.split(END_OF_COMMAND.encode())
    return outputs if outputs[-1] else outputs[:-1]


def check_console(console, folder, tools):
    fence = console.fence
    commands = [line.removeprefix(PROMPT) for line in fence.lines if line.startswith(PROMPT)]
    if not fence.lines or not fence.lines[0].startswith(PROMPT):
        return [fence.complain("a console fence begins with a command")]
    for name, text in console.files.items():
        (folder / name).write_text(text)
    try:
        outputs = run_commands(commands, folder, tools)
    except subprocess.SubprocessError as error:
        return [fence.complain(str(error))]
    if IS_SANITIZED and any(LITTLE_MEMORY in command for command in commands):
        return []  # a sanitizer does not work with limited memory
    given = []
    for command, output in zip_longest(commands, outputs, fillvalue=None):
        given += [PROMPT + command] if command is not None else []
        given += lines_of(output) if output is not None else ["(the shell has ended)"]
    return compare(fence, given)


def check_consoles(consoles):
    """The fences of one page, in one folder: a reader types them one after the other."""
    complaints = []
    with tempfile.TemporaryDirectory() as base:
        folder, tools = Path(base, "work"), Path(base, "tools")
        folder.mkdir()
        tools.mkdir()
        (tools / "yxstcmp").symlink_to(BINARY)
        (tools / "yxst").symlink_to(DESK)
        for console in consoles:
            complaints += check_console(console, folder, tools)
    return complaints


def check_examples(all_examples):
    """The complaints about the pages, executed on all processors."""
    tasks = [(check_consoles, examples.consoles) for examples in all_examples]
    tasks += [(check_script, script) for examples in all_examples for script in examples.scripts]
    found = side_by_side(lambda task: list(task[0](task[1])), tasks)
    complaints = [one for examples in all_examples for one in examples.complaints]
    return sorted(complaints + [complaint for part in found for complaint in part])


# ---------------------------------------------------------------------------------------------
# Completeness of diagnostics.md
# ---------------------------------------------------------------------------------------------

# Texts without a heading of their own: every message, or every run, has them.
FORM_TEXTS = {
    CATALOGUE[f"TXT_{name}"]
    for name in ("ERROR", "WARNING", "LINE", "POS", "TRADEMARK", "BUILD_SUCCESSFUL")
}
MESSAGES = [text for text in CATALOGUE.values() if " " in text]


def texts_in_heading(heading):
    """A text of several lines is headed by its first one."""
    heading = heading.replace("`", "")
    found = texts_in(f"{heading} ")
    return found | {text for text in MESSAGES if heading == text.partition("\n")[0]}


def texts_in_output(output):
    """The texts of diagnostics, and the messages without a position, which begin a line."""
    lines = re.sub("^;", "", output, flags=re.MULTILINE)
    found = texts_in_diagnostics(lines)
    return found | {text for text in MESSAGES if f"\n{text}" in f"\n{lines}"}


def output_of_sections(examples):
    """Section -> the diagnostics of its scripts and the text of its console fences."""
    output = defaultdict(str)
    for script in examples.scripts:
        output[script.fence.section] += script.diagnostics
    for console in examples.consoles:
        output[console.fence.section] += console.fence.text
    return output


def missing_texts(page, examples):
    shown = {at: texts_in_output(text) for at, text in output_of_sections(examples).items()}
    entries = set()
    for at, heading in enumerate(page.headings):
        texts = texts_in_heading(heading.text)
        entries |= texts & shown.get(at, set())
    entries |= FORM_TEXTS & {text for texts in shown.values() for text in texts}
    for name, text in CATALOGUE.items():
        if name in NOT_RAISED:
            if text.strip() not in page.prose:
                yield f"not mentioned: {text!r} ({name})"
        elif text not in entries:
            yield f"no heading with an example below it that shows {text!r} ({name})"


def missing_mended_scripts(examples):
    scripts = [script for script in examples.scripts if not script.is_frame]
    for at, script in enumerate(scripts):
        if not script.is_wrong:
            continue
        rest = [one for one in scripts[at + 1 :] if one.fence.section == script.fence.section]
        if all(one.is_wrong for one in rest):
            yield str(script.fence.complain("no mended script before the next heading"))


# ---------------------------------------------------------------------------------------------
# Completeness of language.md
# ---------------------------------------------------------------------------------------------

CODE_SPAN = re.compile(r"(?<!`)(`+)(?!`)(.+?)(?<!`)\1(?!`)", re.DOTALL)


def in_backticks(page):
    """The words in code spans, and what stands in them between white space."""
    spans = [match[2] for match in CODE_SPAN.finditer(page.prose)]
    found = set()
    for span in spans:
        found.update(re.findall(r"\w+", span))
        found.update(span.split())
    return found


def missing_words(page):
    explained = in_backticks(page)
    everything = [*words.tokens(), *words.types(), *words.built_ins()]
    return [word for word in everything if word not in explained]


BUILT_IN_ROW = re.compile(r"^\| `(\w+)` \| (.+) \| (?:`(\w+)`|none) \| .+ \|$", re.MULTILINE)
PARAMETERS = re.compile(r"(four )?`(\w+)`")


def parameter_types(text):
    """`UINT` number, four `REAL` values -> ["UINT", "REAL", "REAL", "REAL", "REAL"]"""
    found = []
    for four, name in PARAMETERS.findall(text):
        found += [name] * (4 if four else 1)
    return found


def wrong_signatures(page):
    """The built-ins of which the table on the page tells another signature, or none."""
    shown = {
        name: {"name": name, "arguments": parameter_types(parameters), "result": result or None}
        for name, parameters, result in BUILT_IN_ROW.findall(page.prose)
    }
    return [name for name, row in words.built_ins().items() if shown.get(name) != row]


# ---------------------------------------------------------------------------------------------
# Completeness of surprises.md and tutorial.md
# ---------------------------------------------------------------------------------------------

QUIRK = re.compile(r"//\s*QUIRK\b(?:\(([\w-]+)\):)?")
QUIRK_ENTRY = re.compile(r"<!-- quirk: ([\w-]+) -->")


def quirks_in(source):
    """The ids of the comments that begin with QUIRK; "" for one that has none."""
    return QUIRK.findall(source)


def quirks_of_sources():
    paths = [*SOURCES.glob("*.cpp"), *SOURCES.glob("*.h")]
    return {quirk for path in paths for quirk in quirks_in(path.read_text())}


def quirks_of_page(page):
    return set(QUIRK_ENTRY.findall(page.prose))


def differing_quirks(page):
    sources, entries = quirks_of_sources(), quirks_of_page(page)
    yield from (f"no entry for <!-- quirk: {key} -->" for key in sorted(sources - entries))
    yield from (f"no such comment in the sources: {key}" for key in sorted(entries - sources))


def missing_options(examples):
    """Each option stands in a command that is run."""
    text = "\n".join(console.fence.text for console in examples.consoles)
    commands = [line for line in text.splitlines() if line.startswith(f"{PROMPT}yxstcmp ")]
    used = {word for line in commands for word in re.findall(r"[^\s;|]+", line)}
    return [option for option in words.driver_options(BINARY) if option not in used]


# ---------------------------------------------------------------------------------------------
# Links
# ---------------------------------------------------------------------------------------------

LINK = re.compile(r"(?<!!)\[[^\]]*\]\(([^)\s]+)\)")


def anchors_of(text):
    """The anchors of the headings: small letters, blanks as hyphens, no punctuation."""
    anchors = set()
    for heading in read_page("", text).headings:
        base = re.sub(r"[^\w\- ]", "", heading.text.lower()).replace(" ", "-")
        anchor, number = base, 0
        while anchor in anchors:
            number += 1
            anchor = f"{base}-{number}"
        anchors.add(anchor)
    return anchors


def broken_links(page):
    folder = (ROOT / page.name).parent
    for target in LINK.findall(re.sub(CODE_SPAN, "", page.prose)):
        if re.match(r"\w+:", target):
            continue
        name, _, anchor = target.partition("#")
        path = folder / name if name else ROOT / page.name
        if not path.exists():
            yield f"{page.name}: link to nothing: {target}"
        elif anchor and anchor not in anchors_of(path.read_text()):
            yield f"{page.name}: link to a heading that is not there: {target}"


# ---------------------------------------------------------------------------------------------
# The tests
# ---------------------------------------------------------------------------------------------


def incompleteness(page, examples):
    """What the page lacks, by its name."""
    name = page.name.removeprefix("docs/manual/")
    if name == "diagnostics.md":
        yield from missing_texts(page, examples)
        yield from missing_mended_scripts(examples)
    elif name == "language.md":
        yield from (f"not in backticks: {word}" for word in missing_words(page))
        yield from (f"signature of {name}" for name in wrong_signatures(page))
    elif name == "surprises.md":
        yield from differing_quirks(page)
    elif name == "tutorial.md":
        yield from (f"no command uses {option}" for option in missing_options(examples))


class Manual(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.pages = read_pages()
        cls.examples = [find_examples(page) for page in cls.pages]
        cls.of_page = {
            page.name.removeprefix("docs/manual/"): (page, examples)
            for page, examples in zip(cls.pages, cls.examples)
            if page.name.startswith("docs/manual/")
        }

    def assert_nothing(self, complaints):
        rows = [str(complaint) for complaint in complaints]
        if rows:
            self.fail("\n" + "\n".join(rows))

    def assert_complete(self, name):
        if name not in self.of_page:
            self.fail(f"there is no page {name}")
        self.assert_nothing(incompleteness(*self.of_page[name]))

    def test_examples_give_what_is_shown(self):
        complaints = check_examples(self.examples)
        print(f"{sum(map(len, self.examples))} examples executed", file=sys.stderr)
        self.assert_nothing(complaints)

    def test_pages_have_examples(self):
        empty = [
            name
            for name in (f"{page}.md" for page in PAGES_WITH_EXAMPLES)
            if name not in self.of_page or not len(self.of_page[name][1])
        ]
        self.assertEqual(empty, [])

    def test_every_text_has_an_entry_and_every_wrong_script_is_mended(self):
        self.assert_complete("diagnostics.md")

    def test_every_word_is_explained(self):
        self.assert_complete("language.md")

    def test_every_quirk_has_an_entry(self):
        self.assert_complete("surprises.md")

    def test_every_option_is_shown(self):
        self.assert_complete("tutorial.md")

    def test_links_lead_somewhere(self):
        pages = [*self.pages, *read_other_pages()]
        self.assert_nothing(link for page in pages for link in broken_links(page))


# ---------------------------------------------------------------------------------------------
# What the tests notice
# ---------------------------------------------------------------------------------------------


def page_of(*fences, top=""):
    """A page in which "!" stands for the three backticks."""
    return read_page("page.md", top + "\n".join(fences).replace("!", "```") + "\n")


FRAME = "!st frame\nPROGRAM p\nVAR\n a : INT := 1;\nEND_VAR\n(* statements *)\nEND_PROGRAM\n!"
WRONG = "!st statements\n a := b;\n!"
RIGHT = "!st statements\n a := 2;\n!"
CODE = "!code\nMOV 2 #A0\nMOV #A0 @a\n!"
MESSAGE = '!message\nError: Line 5, Column 8: An unrecognized keyword "b"\n!'


class WrongPagesAreNoticed(unittest.TestCase):
    def complaints(self, *fences):
        return check_examples([find_examples(page_of(*fences))])

    def assert_fine(self, *fences):
        self.assertEqual(self.complaints(*fences), [])

    def assert_noticed(self, line, text, *fences):
        found = [str(complaint) for complaint in self.complaints(*fences)]
        self.assertEqual(len(found), 1, found)
        self.assertIn(text, found[0])
        self.assertTrue(found[0].startswith(f"page.md:{line}: "), found)

    def test_code(self):
        self.assert_fine(FRAME, RIGHT, CODE)
        self.assert_noticed(13, "+MOV 2 #A0", FRAME, RIGHT, CODE.replace("2", "3"))
        self.assert_noticed(14, "+MOV #A0 @a", FRAME, RIGHT, "!code\nMOV 2 #A0\n!")
        self.assert_noticed(12, "no script above", FRAME, "!console\n$ true\n!", CODE)
        other = FRAME.replace("(*", "a := 3;\n(*")
        self.assert_noticed(13, "other statements", other, RIGHT, CODE)

    def test_messages(self):
        self.assert_fine(FRAME, WRONG, MESSAGE)
        self.assert_noticed(9, "no message is shown", FRAME, WRONG)
        other_place = MESSAGE.replace("8", "7")
        self.assert_noticed(13, "+Error: Line 5, Column 8", FRAME, WRONG, other_place)
        self.assert_noticed(13, "-Error: Line 5", FRAME, RIGHT, MESSAGE)
        self.assert_noticed(15, "a second message", FRAME, WRONG, MESSAGE, MESSAGE)

    def test_items_and_listing(self):
        script = "!st\nPROGRAM p\nVAR\n a : INT := 1;\nEND_VAR\n a := 2;\nEND_PROGRAM\n!"
        items = "PROG:\np\nVAR:\na V INT 1\nMAIN:\nMOV 2 #A0\nMOV #A0 @a\nRET"
        self.assert_fine(script, f"!items\n{items}\n!", f"!listing\n{items}\n!")
        self.assert_noticed(11, "-q", script, f"!items\n{items.replace('p', 'q')}\n!")
        self.assert_noticed(10, "+0001", script, f"!listing -n\n{items}\n!")
        self.assert_noticed(9, "code is for statements", script, CODE)
        self.assert_noticed(10, "+PROG:", script, "!listing\n!")

    def test_console(self):
        two = "!console\n$ echo a; false\na\n$ echo $?\n1\n!"
        self.assert_fine(two)
        self.assert_noticed(5, "+1", two.replace("1", "0"))
        self.assert_noticed(3, "+b", "!console\n$ echo b\na\n!")
        self.assert_noticed(3, "+b", "!console\n$ echo b\n!")
        self.assert_noticed(1, "begins with a command", "!console\nb\n!")
        self.assert_noticed(3, "has ended", "!console\n$ exit\n$ true\n!")

    def test_fences(self):
        self.assert_noticed(1, "unknown kind of fence: no word", "!\na\n!")
        self.assert_noticed(1, "unknown kind of fence: pascal", "!pascal\na\n!")
        self.assert_noticed(1, "unknown kind of script: frames", "!st frames\na\n!")
        self.assert_noticed(1, "without a frame", "!st statements\na := 1;\n!")
        self.assert_noticed(1, "a frame holds", FRAME.replace("(*", "(**"))
        self.assert_noticed(1, "does not end", "!sh\na")


class IncompletePagesAreNoticed(unittest.TestCase):
    def test_texts(self):
        heading = '### `An unrecognized keyword "X"`\n'
        for top, has_entry in ((heading, True), ("### Names\n", False)):
            page = page_of(FRAME, WRONG, MESSAGE, top=top)
            missing = "\n".join(missing_texts(page, find_examples(page)))
            self.assertEqual("TXT_UNRECOGNIZED_KEYWORD" not in missing, has_entry)
            self.assertIn("TXT_TOO_DEEP_NESTING", missing)
            self.assertIn("TXT_IS_ILLEGAL", missing)
        shown_nowhere = page_of(FRAME, RIGHT, CODE, top=heading)
        missing = "\n".join(missing_texts(shown_nowhere, find_examples(shown_nowhere)))
        self.assertIn("TXT_UNRECOGNIZED_KEYWORD", missing)

    def test_mended_scripts(self):
        def count(*fences):
            return len(list(missing_mended_scripts(find_examples(page_of(*fences)))))

        self.assertEqual(count(FRAME, WRONG, MESSAGE, RIGHT), 0)
        self.assertEqual(count(FRAME, WRONG, MESSAGE), 1)
        self.assertEqual(count(FRAME, RIGHT, WRONG, MESSAGE, "## Next", RIGHT), 1)

    def test_words(self):
        page = page_of(top="IF is bare, `THEN` and `cos(x)` are not, nor `;` and ``** <=``.\n")
        missing = missing_words(page)
        self.assertEqual({"IF", "sin", "=", "LREAL"} - set(missing), set())
        self.assertEqual({"THEN", "cos", ";", "**", "<="} & set(missing), set())
        self.assertGreater(len(missing), 100)

    def test_signatures(self):
        rows = "| `cos` | `REAL` | `LREAL` | x |\n| `pow` | `LREAL`, `LREAL` | `LREAL` | x |\n"
        block = "| `yxSetRegUINT` | four `UDINT` words, `UINT` value | {} | x |\n"
        wrong = wrong_signatures(page_of(top=rows + block.format("none")))
        self.assertEqual(words.built_ins().keys() - set(wrong), {"pow", "yxSetRegUINT"})
        wrong = wrong_signatures(page_of(top=rows + block.format("`LREAL`")))
        self.assertIn("yxSetRegUINT", wrong)

    def test_quirks(self):
        source = "// Two.\n// QUIRK(one-two): three\n    // four.\n// QUIRK: b\nint c;"
        self.assertEqual(quirks_in(source), ["one-two", ""])
        page = page_of(top="<!-- quirk: one-two -->\n<!-- quirk: none of these -->\n")
        self.assertEqual(quirks_of_page(page), {"one-two"})
        complaints = list(differing_quirks(page))
        self.assertIn("no such comment in the sources: one-two", complaints)
        self.assertEqual(len(complaints), len(quirks_of_sources()) + 1)
        self.assertGreater(len(complaints), 20)

    def test_options(self):
        examples = find_examples(page_of("!console\n$ yxstcmp a.st a -s -l\n-m\n!"))
        self.assertEqual(missing_options(examples), ["-i", "-c", "-m", "-n", "-r", "-e"])

    def test_links(self):
        links = "[a](#a-b-c) [b](#a) [c](README.md) [d](none.md) `[e](f)`"
        page = page_of(top=f"# A `B` (c)\n{links}\n")
        self.assertEqual(anchors_of(page.text), {"a-b-c"})
        page = page._replace(name="README.md")
        broken = [complaint.rpartition(" ")[2] for complaint in broken_links(page)]
        self.assertEqual(broken, ["#a-b-c", "#a", "none.md"])


# ---------------------------------------------------------------------------------------------
# Looking at single pages
# ---------------------------------------------------------------------------------------------


def report(names):
    """Prints what is wrong on the pages; the number of complaints."""
    pages = [page for page in read_pages() if page.name.split("/")[-1] in names]
    if not pages:
        print(f"there is no page {' or '.join(names)} in docs/manual", file=sys.stderr)
        return 1
    total = 0
    for page in pages:
        examples = find_examples(page)
        complaints = [str(complaint) for complaint in check_examples([examples])]
        complaints += [f"{page.name}: {text}" for text in incompleteness(page, examples)]
        complaints += broken_links(page)
        print("\n".join(complaints) or "nothing is wrong")
        print(f"{page.name}: {len(examples)} examples executed, {len(complaints)} complaints")
        total += len(complaints)
    return total


def main():
    parser = argparse.ArgumentParser(add_help=False)
    parser.add_argument("--page", action="append", metavar="NAME.md")
    arguments, others = parser.parse_known_args()
    if arguments.page:
        sys.exit(min(report(arguments.page), 1))
    unittest.main(argv=[sys.argv[0], *others])


if __name__ == "__main__":
    main()
