"""Compares how soon the language server tells the diagnostics of a text after the last keystroke with
what `yxst check` takes for the same text as a process, in turns.

Each pair gives a ratio of their times by the clock; the median of the ratios is the figure.
"""

import json
import statistics
import subprocess
import time
from pathlib import Path
from typing import NamedTuple

from against import cells
from runner import TIME_LIMIT, Failure, Workload, build_type, print_heading, print_table, say

LIMIT = 2.0
URI = "file:///control.st"


class Plan(NamedTuple):
    compared: dict  # the time that feels immediate for each workload, in milliseconds


FULL = Plan({Workload(1_000, 100, 41): 50, Workload(20_000, 100, 21): 300})
QUICK = Plan({Workload(300, 20, 5): 50, Workload(1_000, 100, 5): 50})

HEADER = ["typed into", "lines", "pairs", "lsp", "check", "lsp / check", "95 % interval",
          "middle half", "limit", "holds", "feels immediate"]  # fmt: skip


class Server:
    """A language server with one script open."""

    def __init__(self, program, text):
        self.process = subprocess.Popen(
            [program, "lsp"], stdin=subprocess.PIPE, stdout=subprocess.PIPE
        )
        self.version = 0
        self.send("initialize", {"capabilities": {}}, id=1)
        self.receive()
        document = {"uri": URI, "languageId": "st", "version": 0, "text": text}
        self.send("textDocument/didOpen", {"textDocument": document})
        self.diagnostics()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.communicate()

    def send(self, method, params, **identifier):
        data = json.dumps({"jsonrpc": "2.0", "method": method, "params": params, **identifier})
        self.process.stdin.write(f"Content-Length: {len(data)}\r\n\r\n{data}".encode())
        self.process.stdin.flush()

    def receive(self):
        head = self.process.stdout.readline()
        if not head:
            raise Failure("yxst lsp: it has ended")
        self.process.stdout.readline()
        return json.loads(self.process.stdout.read(int(head.partition(b":")[2])))

    def diagnostics(self):
        while True:
            params = self.receive().get("params", {})
            if params.get("version") == self.version:
                return params["diagnostics"]

    def type_over(self, line, begin, end, text):
        """The seconds until the diagnostics are there of what is typed over a piece of a line."""
        self.version += 1
        piece = {side: {"line": line, "character": at} for side, at in
                 (("start", begin), ("end", end))}  # fmt: skip
        document = {"uri": URI, "version": self.version}
        changes = [{"range": piece, "text": text}]
        start = time.monotonic()
        self.send("textDocument/didChange", {"textDocument": document, "contentChanges": changes})
        self.diagnostics()
        return time.monotonic() - start


def assignment_in(text):
    """The line of an assignment in the middle of the script, and where its ":=" begins."""
    lines = text.splitlines()
    for number in range(len(lines) // 2, len(lines)):
        if ":=" in lines[number] and lines[number].rstrip().endswith(";"):
            return number, lines[number].index(":=")
    raise Failure("the script has no assignment")


def check_seconds(program, path):
    start = time.monotonic()
    subprocess.run(
        [program, "check", "--quiet", path],
        stdout=subprocess.DEVNULL,
        check=False,
        timeout=TIME_LIMIT,
    )
    return time.monotonic() - start


def pairs_of(runner, workload, is_broken):
    """A script that is right after the keystroke, or one in which it has broken a statement."""
    program = str(runner.build / "yxst")
    right = Path(f"{runner.sources(workload)}.st").read_text(encoding="utf-8")
    line, begin = assignment_in(right)
    lines = right.splitlines(keepends=True)
    lines[line] = lines[line].replace(":=", "=", 1)
    checked = Path(runner.path("typed.st"))
    checked.write_text("".join(lines) if is_broken else right, encoding="utf-8")
    with Server(program, right) as server:
        for _ in range(workload.rounds + 1):
            first = server.type_over(line, begin, begin + 2, "=")
            second = server.type_over(line, begin, begin + 1, ":=")
            yield first if is_broken else second, check_seconds(program, str(checked))


def rows_of(runner, plan):
    yield HEADER
    for workload, immediate in plan.compared.items():
        for is_broken, title in ((False, "a right script"), (True, "a broken statement")):
            say(f"measuring {title}, {workload}")
            pairs = list(pairs_of(runner, workload, is_broken))[1:]  # the first warms the caches
            holds = "yes" if statistics.median(a / b for a, b in pairs) <= LIMIT else "NO"
            is_immediate = statistics.median(a for a, _ in pairs) * 1000 <= immediate
            yield [title, f"{workload.lines:,}", str(len(pairs)), *cells(pairs), f"<= {LIMIT}",
                   holds, f"<= {immediate} ms: {'yes' if is_immediate else 'NO'}"]  # fmt: skip


def compare(runner, is_quick):
    rows = list(rows_of(runner, QUICK if is_quick else FULL))
    print_heading()
    print(f"Build type {build_type(runner.build / 'yxst')}\n")
    print_table(rows)
