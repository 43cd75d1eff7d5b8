"""A long random session of an editor with `yxst lsp`.

    lsp_random.py [EDITS] [SEED]

The golden cases are open one after the other, some at a time; edits of all kinds are made and
everything is asked in between. At the end each script gives what a server gives that has just been
started, no answer has taken longer than LONGEST_ANSWER, and the server's memory has not grown.
"""

import os
import random
import sys
from pathlib import Path
from typing import NamedTuple

from lsp_client import Client, ServerError, position, text_range
from support_desk import ROOT

LONGEST_ANSWER = 2.0  # seconds of the processor
# Of the memory after a tenth of the edits; scripts differ in size, and that is all that may grow.
MEMORY_GROWTH = 1.5

OPEN_AT_A_TIME = 5
EDITS_OF_A_SCRIPT = 60
EDITS_UNTIL_DIAGNOSTICS = 7

PIECES = [
    "", ";", ":=", "=", "(", ")", "(*", "*)", "'", "\n", "\r\n", "IF", "THEN", "END_IF;", "x", "1",
    "END_VAR", "VAR", "PROGRAM P", "FUNCTION F : INT\n", "\U0001f600", "\u00e4", "  ", "x := 1;\n",
    "CASE x OF\n", "//", "\t",
]  # fmt: skip

METHODS = [
    "textDocument/hover", "textDocument/definition", "textDocument/documentHighlight",
    "textDocument/completion", "textDocument/signatureHelp", "textDocument/references",
    "textDocument/prepareRename", "textDocument/rename", "textDocument/onTypeFormatting",
    "textDocument/documentSymbol", "textDocument/codeLens", "textDocument/foldingRange",
    "textDocument/semanticTokens/full", "textDocument/formatting", "textDocument/codeAction",
]  # fmt: skip


def golden_texts():
    paths = sorted((ROOT / "tests/golden").glob("*/*.st"))
    return [path.read_bytes().decode("utf-8", "replace").lstrip("\ufeff") for path in paths]


class Edit(NamedTuple):
    range: dict
    text: str


def lines_of(text):
    """As the protocol divides them, with their ends."""
    return text.replace("\r\n", "\n").replace("\r", "\n").split("\n")


def random_edit(text, chance):
    lines = lines_of(text)
    line = chance.randrange(len(lines))
    start = chance.randrange(len(lines[line]) + 1)
    last = min(line + chance.choice((0, 0, 0, 0, 1, 3)), len(lines) - 1)
    end = chance.randrange(len(lines[last]) + 1)
    if last == line:
        end = min(max(start, end), start + chance.choice((0, 0, 1, 5)))
    return Edit(
        text_range((line, units(lines[line][:start])), (last, units(lines[last][:end]))),
        "".join(chance.choices(PIECES, k=chance.choice((0, 1, 1, 2)))),
    )


def units(text):
    return len(text.encode("utf-16-le", "surrogatepass")) // 2


def edited(text, edit):
    """The text after the edit, worked out in another way than the server does."""
    data = text.encode("utf-16-le", "surrogatepass")
    begin, end = (offset_of(data, edit.range[side]) for side in ("start", "end"))
    return (data[:begin] + edit.text.encode("utf-16-le") + data[end:]).decode("utf-16-le")


def offset_of(data, place):
    """In bytes."""
    offset = 0
    for _ in range(place["line"]):
        while data[offset : offset + 2] not in (b"\n\0", b"\r\0"):
            offset += 2
        offset += 4 if data[offset : offset + 4] == b"\r\0\n\0" else 2
    return offset + 2 * place["character"]


class Session:
    def __init__(self, seed):
        self.chance = random.Random(seed)
        self.client = Client(capabilities={})
        self.texts = {}
        self.slowest, self.slowest_is = 0.0, None
        self.memory = []

    def open(self, uri, text):
        self.texts[uri] = text
        self.client.open(text, uri)

    def edit(self, uri):
        edits = []
        for _ in range(self.chance.choice((1, 1, 1, 2))):
            edit = random_edit(self.texts[uri], self.chance)
            self.texts[uri] = edited(self.texts[uri], edit)
            edits.append(edit)
        self.client.change(*edits, uri=uri)

    def ask(self, uri):
        lines = lines_of(self.texts[uri])
        line = self.chance.randrange(len(lines) + 1)
        params = {
            "textDocument": {"uri": uri},
            "position": position(line, self.chance.randrange(40)),
            "context": {"includeDeclaration": True, "diagnostics": []},
            "range": text_range((line, 0), (line + 3, 0)),
            "options": {"tabSize": 4, "insertSpaces": True},
            "newName": "renamed",
            "ch": ";",
        }
        method = self.chance.choice(METHODS)
        begin = self.used()
        try:
            self.client.request(method, params)
        except ServerError as error:
            if error.code != -32803:
                raise
        seconds = self.used() - begin
        if seconds > self.slowest:
            self.slowest, self.slowest_is = seconds, (method, params, self.texts[uri])

    def work(self, uri, edits):
        for number in range(edits):
            self.edit(uri)
            if self.chance.random() < 0.3:
                self.ask(uri)
            if number % EDITS_UNTIL_DIAGNOSTICS == 0:
                self.client.diagnostics(uri)
            self.client.sent.clear()

    def used(self):
        """Seconds of the processor, of the server and of the compiles that have ended: whatever
        else the machine does."""
        stat = Path(f"/proc/{self.client.process.pid}/stat").read_text()
        ticks = stat.rpartition(")")[2].split()[11:15]
        return sum(map(int, ticks)) / os.sysconf("SC_CLK_TCK")

    def resident(self):
        status = Path(f"/proc/{self.client.process.pid}/status").read_text()
        return int(status.partition("VmRSS:")[2].split()[0])

    def run(self, edits):
        texts = golden_texts()
        for round in range(-(-edits // EDITS_OF_A_SCRIPT)):
            uri = f"file:///plant/{round}.st"
            self.open(uri, self.chance.choice(texts))
            self.work(uri, min(EDITS_OF_A_SCRIPT, edits - round * EDITS_OF_A_SCRIPT))
            if len(self.texts) > OPEN_AT_A_TIME:
                first = next(iter(self.texts))
                del self.texts[first]
                self.client.close(first)
            self.memory.append(self.resident())


def state_of(client, uri, text):
    """What a client shows of a script: diagnostics and symbols."""
    client.open(text, uri)
    diagnostics = client.diagnostics(uri)
    symbols = client.request("textDocument/documentSymbol", {"textDocument": {"uri": uri}})
    return diagnostics, symbols


def last_state(client, uri):
    client.change((text_range((0, 0), (0, 0)), ""), uri=uri)
    diagnostics = client.diagnostics(uri)
    symbols = client.request("textDocument/documentSymbol", {"textDocument": {"uri": uri}})
    return diagnostics, symbols


def differences(session):
    """The scripts of which a fresh server tells something else."""
    different = []
    for uri, text in session.texts.items():
        with Client(capabilities={}) as fresh:
            expected = state_of(fresh, uri, text)
        if last_state(session.client, uri) != expected:
            different.append((uri, text))
    return different


def growth(memory):
    """Of the later memory by that after a tenth of the edits."""
    tenth = max(len(memory) // 10, 1)
    return max(memory[-tenth:]) / max(memory[:tenth])


def main():
    edits = int(sys.argv[1]) if len(sys.argv) > 1 else 10_000
    session = Session(int(sys.argv[2]) if len(sys.argv) > 2 else 1)
    with session.client:
        session.run(edits)
        different = differences(session)
    print(f"slowest answer {session.slowest:.3f} s")
    print(f"memory {session.memory[0]} kB to {session.memory[-1]} kB")
    if session.slowest > LONGEST_ANSWER:
        print(*session.slowest_is, sep="\n")
    for uri, text in different:
        print(f"{uri} differs:\n{text}")
    sys.exit(1 if different or session.slowest > LONGEST_ANSWER else 0)


if __name__ == "__main__":
    main()
