#!/usr/bin/env python3
"""Checks that the units of the compiler, and those of the desk, use each other in one direction.

    layers.py [--objects BUILD] [--metrics]

A unit is what the files of one stem make up, x.h and x.cpp. It depends on another unit when a file
of it includes a header of the other, or uses a name that such a header declares at namespace level
(functions, variables, constants, types, enumerators, aliases, templates, macros). A file can only
use what it sees: the headers that it includes, also through others, for a header those that stand
before it wherever it is included, and what the file declares itself without defining it.

A name that headers of several units declare, such as that of an overloaded function, counts only
where the file sees the header of a single one of them; else the includes alone count. A type that
a file declares ahead ("class X;") is known to that file by name alone and does not count. What the
shared header declares counts as used of it, wherever it is defined.

With --objects the calls between the compiled objects of the folder BUILD count too, as the linker
sees them: what an object leaves undefined and another one defines. That needs a build without link
time optimisation, best an unoptimised one, which inlines nothing. Calls of functions count for the
unit that defines them; variables that the shared header declares count for that.

Units that depend on each other in a circle are a fault, except for the pairs that are allowed
below, and so is an allowed pair that is no circle. Where the folders of a tree are layers, a unit
may depend on those of its own folder and of the folders below it. Without a fault the units are
shown in their layers, each with those below it that it depends on. --metrics shows the lengths of the functions
instead: from the line of the signature to that of the closing brace, without members that are
defined within their classes.
"""

import argparse
import json
import os
import re
import shlex
import statistics
import subprocess
import sys
from pathlib import Path
from typing import Callable, NamedTuple

import cpp_source

ROOT = Path(__file__).resolve().parents[1]

# ---------------------------------------------------------------------------------------------
# What is checked
# ---------------------------------------------------------------------------------------------


class Tree(NamedTuple):
    """A folder whose files make up units."""

    folder: Path
    unit_of: Callable  # the unit of a file, whose path is relative to the folder
    pairs: dict  # the units that may depend on each other, with the reason
    shared: str = ""  # the unit whose header declares what other units define
    folders: tuple = ()  # those that are layers, from the ground up; "" is that of the tree


TREES = [
    Tree(
        ROOT / "qyx_st_cmp",
        unit_of=lambda path: path.stem,
        pairs={
            ("qyx_files", "qyx_messages"): "files abort by messages, messages write to files",
            ("qyx_arithmetic", "qyx_functions"): "expressions hold calls, calls hold expressions",
        },
        shared="qyx_globals",
    ),
    Tree(
        ROOT / "desk",
        unit_of=lambda path: path.with_suffix("").as_posix(),
        pairs={},
        folders=("explain", "facts", "machine", "check", "lints", "format", "reports", "language", "protocols", ""),
    ),
]

SOURCE_SUFFIX = ".cpp"
HEADER_SUFFIX = ".h"


class LayerError(Exception):
    pass


# ---------------------------------------------------------------------------------------------
# Files
# ---------------------------------------------------------------------------------------------


class File(NamedTuple):
    path: Path  # relative to the folder of the tree
    unit: str
    source: cpp_source.Source

    def is_header(self):
        return self.path.suffix == HEADER_SUFFIX


def read_file(tree, path):
    relative = path.relative_to(tree.folder)
    try:
        source = cpp_source.read(path.read_text(encoding="utf-8"))
    except cpp_source.SourceError as error:
        raise LayerError(f"{relative}: {error}") from None
    return File(relative, tree.unit_of(relative), source)


def read_files(tree):
    paths = [*tree.folder.rglob(f"*{HEADER_SUFFIX}"), *tree.folder.rglob(f"*{SOURCE_SUFFIX}")]
    if not paths:
        raise LayerError(f"{tree.folder} holds no sources")
    return {file.path: file for file in (read_file(tree, path) for path in sorted(paths))}


def included_paths(files, file, include):
    """The files of the tree that an include can mean, none for those of others."""
    sibling = Path(os.path.normpath(file.path.parent / include))
    return [sibling] if sibling in files else [path for path in files if path.match(include)]


def includes_of(files, file):
    for include in file.source.includes:
        for path in included_paths(files, file, include.text):
            yield files[path], include.line


def reached(begin, nexts):
    """All that can be reached from there, itself included."""
    known = {begin}
    waiting = [begin]
    while waiting:
        new = set(nexts[waiting.pop()]) - known
        known |= new
        waiting += new
    return known


def include_order(path, nexts, known):
    """The path and those that it includes, each with all that stand before it."""
    if path not in known:
        yield path, set(known)
        known.add(path)
        for included in nexts[path]:
            yield from include_order(included, nexts, known)


def seen_paths(files):
    """For each file the paths of those that it sees."""
    nexts = {path: [to.path for to, _ in includes_of(files, file)] for path, file in files.items()}
    seen = {path: reached(path, nexts) for path in files}
    for begin in files:
        for path, before in include_order(begin, nexts, set()):
            seen[path] |= before
    return seen


# ---------------------------------------------------------------------------------------------
# Names
# ---------------------------------------------------------------------------------------------


class Names:
    """Who declares which name, and who sees it."""

    def __init__(self, files):
        self.declared = {}  # a name: the headers that declare it
        self.defined = {}  # a unit: the names that it defines
        for file in files.values():
            self.defined.setdefault(file.unit, set())
            for declaration in filter(lambda each: each.name, file.source.declarations):
                self.note(file, declaration)
        self.seen = seen_paths(files)
        self.files = files
        headers = [file for file in files.values() if file.is_header()]
        self.namespaces = {name for file in headers for name in file.source.namespaces}

    def note(self, file, declaration):
        if declaration.is_definition:
            self.defined[file.unit].add(declaration.name)
        if file.is_header() and (declaration.is_definition or declaration.kind != "type"):
            self.declared.setdefault(declaration.name, set()).add(file.path)

    def uses_of(self, file):
        """The unit, name and line of each use of a name of another unit."""
        ahead = [each for each in file.source.declarations if not each.is_definition]
        types = {each.name for each in ahead if each.kind == "type"}
        prototypes = {each.name for each in ahead} - types
        known = types | self.defined[file.unit]
        for token in free_words(file.source, self.namespaces):
            if token.text in self.declared and token.text not in known:
                unit = self.unit_that_declares(file, token.text, token.text in prototypes)
                if unit not in (None, file.unit):
                    yield unit, token.text, token.line

    def unit_that_declares(self, file, name, sees_all):
        headers = self.declared[name]
        seen = headers if sees_all else headers & self.seen[file.path]
        units = {self.files[path].unit for path in seen}
        return units.pop() if len(units) == 1 else None


def free_words(source, namespaces):
    """The words that are no members, and not of a namespace outside of the tree."""
    tokens = source.tokens
    for index, token in enumerate(tokens):
        before = tokens[index - 1].text if index else ""
        qualifier = tokens[index - 2] if before == "::" and index > 1 else None
        is_foreign = qualifier and qualifier.is_word() and qualifier.text not in namespaces
        if token.is_word() and before not in (".", "->") and not is_foreign:
            yield token
    yield from (token for token in source.directive_tokens if token.is_word())


# ---------------------------------------------------------------------------------------------
# The graph
# ---------------------------------------------------------------------------------------------


KINDS = ("include", "use", "call")


class Graph:
    """The units, and for each pair of them how the first depends on the second."""

    def __init__(self, units):
        self.nexts = {unit: set() for unit in units}
        self.reasons = {}  # a pair of units: the first reason of each kind

    def add(self, unit, other, kind, reason):
        if unit != other:
            self.nexts[unit].add(other)
            self.reasons.setdefault((unit, other), {}).setdefault(kind, reason)

    def edges(self):
        return [(unit, other) for unit in sorted(self.nexts) for other in sorted(self.nexts[unit])]

    def circles(self):
        """The sets of units that all depend on each other."""
        reach = {unit: reached(unit, self.nexts) for unit in self.nexts}
        return {frozenset(to for to in reach[unit] if unit in reach[to]) for unit in reach}

    def within(self, units):
        """The graph of these units alone."""
        inner = Graph(units)
        inner.nexts = {unit: self.nexts.get(unit, set()) & set(units) for unit in units}
        inner.reasons = self.reasons
        return inner

    def way(self, begin, end):
        """The shortest way, with both ends, or None."""
        ways = {begin: [begin]}
        waiting = [begin]
        for unit in waiting:
            for new in sorted(self.nexts[unit] - ways.keys()):
                ways[new] = [*ways[unit], new]
                waiting.append(new)
        return ways.get(end)


def graph_of(tree, files):
    graph = Graph({file.unit for file in files.values()})
    names = Names(files)
    for file in files.values():
        for included, line in includes_of(files, file):
            reason = f"{file.path}:{line} includes {included.path}"
            graph.add(file.unit, included.unit, "include", reason)
        for unit, name, line in names.uses_of(file):
            graph.add(file.unit, unit, "use", f"{file.path}:{line} uses {name}")
    return graph


# ---------------------------------------------------------------------------------------------
# Objects
# ---------------------------------------------------------------------------------------------

LTO_SECTION = b".gnu.lto_"  # of g++
LTO_BEGIN = b"BC\xc0\xde"  # of clang++
SYMBOL = re.compile(r"[0-9a-f]* +([A-Za-z]) (.+)")
UNDEFINED = "U"
DEFINED = "TBDRVW"  # what other objects can see: code, variables, and what may be there repeatedly


class Symbol(NamedTuple):
    kind: str  # the letter of nm
    name: str


class Object(NamedTuple):
    unit: str
    name: str
    symbols: set


def check_object(path):
    if not path.exists():
        raise LayerError(f"{path} is not there: build it first")
    data = path.read_bytes()
    if LTO_SECTION in data or data.startswith(LTO_BEGIN):
        raise LayerError(
            f"{path} is made for link time optimisation and does not tell its calls;"
            " a Debug build does"
        )


def symbols_of(path):
    check_object(path)
    command = ["nm", "-C", path]
    output = subprocess.run(command, capture_output=True, text=True, check=True).stdout
    matches = map(SYMBOL.fullmatch, output.splitlines())
    return {Symbol(*match.groups()) for match in matches if match}


def compiled_paths(build):
    """The objects of each source that is compiled in that folder."""
    try:
        commands = json.loads((build / "compile_commands.json").read_text(encoding="utf-8"))
    except OSError:
        raise LayerError(f"{build} is no build: compile_commands.json is missing") from None
    paths = {}
    for command in commands:
        source = Path(command["directory"], command["file"]).resolve()
        arguments = shlex.split(command["command"])
        compiled = Path(command["directory"], arguments[arguments.index("-o") + 1])
        paths.setdefault(source, []).append(compiled)
    return paths


def objects_of(tree, files, build):
    paths = compiled_paths(build)
    for file in files.values():
        if not file.is_header():
            source = (tree.folder / file.path).resolve()
            if source not in paths:
                raise LayerError(f"{build} does not compile {file.path}")
            yield from (Object(file.unit, path.name, symbols_of(path)) for path in paths[source])


def shared_variables(tree, files):
    """The variables that the shared header declares for others."""
    headers = [file for file in files.values() if file.unit == tree.shared and file.is_header()]
    declared = [each for file in headers for each in file.source.declarations]
    return {each.name for each in declared if each.kind == "variable"}


def definitions_in(tree, files, objects):
    """The name of each symbol that is defined, with the units for which it counts."""
    shared = shared_variables(tree, files)
    units = {}
    for each in objects:
        for name in (symbol.name for symbol in each.symbols if symbol.kind in DEFINED):
            unit = tree.shared if name.split("::")[-1] in shared else each.unit
            units.setdefault(name, set()).add(unit)
    return units


def add_calls(graph, tree, files, build):
    """Adds what the objects need of each other."""
    objects = list(objects_of(tree, files, build))
    definitions = definitions_in(tree, files, objects)
    for each in objects:
        for name in sorted(symbol.name for symbol in each.symbols if symbol.kind == UNDEFINED):
            for unit in definitions.get(name, ()):
                graph.add(each.unit, unit, "call", f"{each.name} needs {name}")


# ---------------------------------------------------------------------------------------------
# Faults
# ---------------------------------------------------------------------------------------------


def shown_edges(graph, way):
    for edge in zip(way, way[1:]):
        reasons = graph.reasons[edge]
        shown = "; ".join(reasons[kind] for kind in KINDS if kind in reasons)
        yield f"    {edge[0]} -> {edge[1]}: {shown}"


def shortest_circle(graph, edges):
    """The shortest circle through one of the edges, its first unit also at its end, or None."""
    ways = [(unit, graph.way(other, unit)) for unit, other in edges]
    circles = [[unit, *way] for unit, way in ways if way]
    return min(circles, key=lambda circle: (len(circle), circle), default=None)


def single_circles(graph, pairs):
    """Circles, the shortest first, until each circle of the graph has an edge with one in common.

    Those of the allowed pairs are left out.
    """
    left = graph.within(graph.nexts)
    while True:
        edges = [edge for edge in left.edges() if not any(pair >= set(edge) for pair in pairs)]
        circle = shortest_circle(left, edges)
        if not circle:
            return
        yield circle
        for unit, other in set(zip(circle, circle[1:])) & set(edges):
            left.nexts[unit].discard(other)


def circle_faults(graph, pairs):
    allowed = {frozenset(pair) for pair in pairs}
    for units in sorted(graph.circles() - allowed, key=sorted):
        if len(units) > 1:
            yield f"{len(units)} units depend on each other: {', '.join(sorted(units))}"
            for circle in single_circles(graph.within(units), allowed):
                yield f"  {' -> '.join(circle)}"
                yield from shown_edges(graph, circle)


def pair_faults(graph, pairs):
    for pair, reason in pairs.items():
        if frozenset(pair) not in graph.within(pair).circles():
            names = " and ".join(pair)
            yield f"{names} may depend on each other ({reason}), but do not: take the pair out"


def folder_of(unit):
    return unit.rpartition("/")[0]


def folder_faults(graph, folders):
    """Units in folders that are no layers, and dependencies on a folder above."""
    heights = {folder: height for height, folder in enumerate(folders)}
    for unit in sorted(graph.nexts) if folders else ():
        if folder_of(unit) not in heights:
            yield f"{unit} lies in no folder that is a layer: {', '.join(filter(None, folders))}"
    for edge in graph.edges():
        lower, upper = (heights.get(folder_of(unit), 0) for unit in edge)
        if lower < upper:
            yield f"{edge[0]} depends on a folder above its own"
            yield from shown_edges(graph, edge)


# ---------------------------------------------------------------------------------------------
# What is shown
# ---------------------------------------------------------------------------------------------


def layers(graph):
    """The layers from the ground up, each a list of circles, most of which are single units."""
    waiting = sorted(map(sorted, graph.circles()))
    placed = set()
    while waiting:
        layer = [
            units
            for units in waiting
            if all(graph.nexts[unit] <= placed | set(units) for unit in units)
        ]
        yield layer
        waiting = [units for units in waiting if units not in layer]
        placed.update(unit for units in layer for unit in units)


def dependencies(graph, units):
    return sorted(set().union(*(graph.nexts[unit] for unit in units)) - set(units))


def show_layers(tree, graph):
    print(tree.folder.name)
    for number, layer in enumerate(layers(graph)):
        shown = []
        for units in layer:
            below = dependencies(graph, units)
            names = " + ".join(units)
            shown.append(f"{names} -> {', '.join(below)}" if below else names)
        print(f"{number:3}  {'; '.join(shown)}")


class Metrics(NamedTuple):
    functions: list  # their lengths
    lines: int
    exported: int


def metrics_of(files):
    lengths = []
    exported = 0
    for file in files:
        functions = [each for each in file.source.declarations if each.kind == "function"]
        lengths += [each.end - each.line + 1 for each in functions if each.is_definition]
        exported += len(functions) if file.is_header() else 0
    return Metrics(sorted(lengths), sum(file.source.lines for file in files), exported)


METRICS_ROW = "{:<20}{:>10}{:>8}{:>8}{:>9}{:>8}{:>10}"
METRICS_HEAD = ("unit", "functions", "median", "p90", "longest", "lines", "exported")


def metrics_row(title, metrics):
    lengths = metrics.functions or [0]
    ninth_tenth = lengths[-(-9 * len(lengths) // 10) - 1]
    figures = (len(metrics.functions), f"{statistics.median(lengths):g}", ninth_tenth, lengths[-1])
    return METRICS_ROW.format(title, *figures, metrics.lines, metrics.exported)


def show_metrics(tree, files):
    print(METRICS_ROW.format(*METRICS_HEAD))
    for unit in sorted({file.unit for file in files.values()}):
        own = [file for file in files.values() if file.unit == unit]
        print(metrics_row(unit, metrics_of(own)))
    print(metrics_row(tree.folder.name, metrics_of(files.values())))


# ---------------------------------------------------------------------------------------------
# The command
# ---------------------------------------------------------------------------------------------


def check(tree, build=None):
    """The graph of the tree and its faults, a line or more each."""
    files = read_files(tree)
    graph = graph_of(tree, files)
    if build:
        add_calls(graph, tree, files, build)
    return graph, [
        *circle_faults(graph, tree.pairs),
        *pair_faults(graph, tree.pairs),
        *folder_faults(graph, tree.folders),
    ]


def run(tree, arguments):
    """Whether the tree has no faults."""
    if arguments.metrics:
        show_metrics(tree, read_files(tree))
        return True
    graph, faults = check(tree, arguments.objects)
    if faults:
        print(*faults, sep="\n", file=sys.stderr)
    else:
        show_layers(tree, graph)
    return not faults


def main(trees=TREES, command_line=None):
    parser = argparse.ArgumentParser(prog="layers", description=__doc__.splitlines()[0])
    parser.add_argument("--objects", type=Path, metavar="BUILD", help="count calls of objects too")
    parser.add_argument("--metrics", action="store_true", help="show the lengths of functions")
    arguments = parser.parse_args(command_line)
    try:
        are_sound = [run(tree, arguments) for tree in trees]
    except LayerError as error:
        sys.exit(f"layers: {error}")
    sys.exit(0 if all(are_sound) else 1)


if __name__ == "__main__":
    main()
