"""The units of compiler and desk depend on each other in one direction, and a circle is found."""

import contextlib
import io
import json
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from support import ROOT

sys.path[:0] = [str(ROOT / "scripts")]
import cpp_source  # noqa: E402
import layers  # noqa: E402

COMPILER = shutil.which("c++")


def run_script(*arguments):
    return subprocess.run(
        [ROOT / "scripts/layers", *arguments], capture_output=True, text=True, check=False
    )


class Project(unittest.TestCase):
    def test_its_units_are_in_layers(self):
        result = run_script()
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        compiler, _, desk = result.stdout.partition("desk\n")
        title, ground, *_, top = compiler.splitlines()
        self.assertEqual(title, "qyx_st_cmp")
        self.assertNotIn("->", ground)
        self.assertRegex(top, r"^ *\d+  main -> ")
        self.assertNotIn("->", desk.splitlines()[0])

    def test_metrics(self):
        result = run_script("--metrics")
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertRegex(result.stdout, r"(?m)^qyx_st_cmp +\d{3,} ")
        self.assertRegex(result.stdout.splitlines()[-1], r"^desk +\d{2,} ")

    def test_folder_that_is_no_build(self):
        with tempfile.TemporaryDirectory() as folder:
            result = run_script("--objects", folder)
        self.assertEqual((result.returncode, result.stdout), (1, ""))
        self.assertIn("compile_commands.json is missing", result.stderr)


# ---------------------------------------------------------------------------------------------
# Small trees
# ---------------------------------------------------------------------------------------------

GOOD = {
    "ground.h": "int Read();\n",
    "ground.cpp": '#include "ground.h"\n\nint Read() {\n    return 1;\n}\n',
    "middle.h": "int Twice();\n",
    "middle.cpp": '#include "middle.h"\n#include "ground.h"\nint Twice() { return 2 * Read(); }\n',
    "top.h": "int Total();\n",
    "top.cpp": '#include "top.h"\n#include "middle.h"\nint Total() { return Twice(); }\n',
}


def first_folder(path):
    return path.parts[0]


class TreeTestCase(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name) / "toy"

    def tree(self, files, pairs=(), unit_of=lambda path: path.stem, shared="", folders=()):
        for name, text in files.items():
            path = self.folder / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text)
        reasons = {pair: "both need it" for pair in pairs}
        return layers.Tree(self.folder, unit_of, reasons, shared, folders)

    def edges(self, files, **options):
        graph, _ = layers.check(self.tree(files, **options))
        return graph.edges()

    def faults(self, files, **options):
        return layers.check(self.tree(files, **options))[1]

    def run_main(self, tree, *arguments):
        output, errors = io.StringIO(), io.StringIO()
        with contextlib.redirect_stdout(output), contextlib.redirect_stderr(errors):
            with self.assertRaises(SystemExit) as ended:
                layers.main([tree], arguments)
        return ended.exception.code, output.getvalue(), errors.getvalue()


class Layers(TreeTestCase):
    def test_good_layers_pass(self):
        shown = "toy\n  0  ground\n  1  middle -> ground\n  2  top -> middle\n"
        self.assertEqual(self.run_main(self.tree(GOOD)), (0, shown, ""))

    def test_one_layer_has_one_line(self):
        files = {**GOOD, "other.cpp": '#include "ground.h"\n'}
        _, shown, _ = self.run_main(self.tree(files))
        self.assertEqual(shown.splitlines()[2], "  1  middle -> ground; other -> ground")

    def test_include_circle_fails(self):
        files = {**GOOD, "ground.cpp": GOOD["ground.cpp"] + '#include "top.h"\n'}
        expected = [
            "3 units depend on each other: ground, middle, top",
            "  ground -> top -> middle -> ground",
            "    ground -> top: ground.cpp:6 includes top.h",
            "    top -> middle: top.cpp:2 includes middle.h; top.cpp:3 uses Twice",
            "    middle -> ground: middle.cpp:2 includes ground.h; middle.cpp:3 uses Read",
        ]
        self.assertEqual(self.faults(files), expected)

    def test_call_circle_without_an_include_fails(self):
        files = {**GOOD, "ground.cpp": "int Total();\nint Read() { return Total(); }\n"}
        self.assertIn("    ground -> top: ground.cpp:1 uses Total", self.faults(files))

    def test_circle_of_headers_fails(self):
        files = {"a.h": '#pragma once\n#include "b.h"\n', "b.h": '#pragma once\n#include "a.h"\n'}
        self.assertIn("  a -> b -> a", self.faults(files))

    def test_several_circles_are_told(self):
        uses = '#include "a.h"\n#include "b.h"\n#include "c.h"\n'
        files = {f"{unit}.{suffix}": uses for unit in "abc" for suffix in ("h", "cpp")}
        told = [line for line in self.faults(files) if line.startswith("  a") or "->" not in line]
        self.assertEqual(
            told, ["3 units depend on each other: a, b, c", "  a -> b -> a", "  a -> c -> a"]
        )

    def test_fault_ends_with_status_1(self):
        tree = self.tree({**GOOD, "ground.h": '#include "top.h"\n'})
        status, shown, errors = self.run_main(tree)
        self.assertEqual((status, shown), (1, ""))
        self.assertIn("ground -> top", errors)

    def test_shortest_circle_is_told_first(self):
        files = {
            "a.h": '#include "b.h"\n',
            "b.h": '#include "c.h"\n',
            "c.h": '#include "a.h"\n#include "b.h"\n',
        }
        told = [line for line in self.faults(files) if line.count("->") > 1]
        self.assertEqual(told, ["  b -> c -> b"])

    def test_units_can_be_folders(self):
        files = {
            "low/a.h": "",
            "low/b.cpp": '#include "a.h"\n',
            "middle/a.h": "",
            "middle/b.cpp": '#include "low/a.h"\n#include "a.h"\n',
            "high/c.cpp": '#include "../low/a.h"\n#include "d.h"\n',
            "top/d.h": "",
        }
        edges = [("high", "low"), ("high", "top"), ("middle", "low")]
        self.assertEqual(self.edges(files, unit_of=first_folder), edges)
        files["low/a.h"] = '#include "d.h"\n'
        files["top/d.h"] = '#include "../low/a.h"\n'
        self.assertIn("  low -> top -> low", self.faults(files, unit_of=first_folder))

    def test_empty_folder_is_refused(self):
        self.folder.mkdir()
        status, _, _ = self.run_main(self.tree({}))
        self.assertIn("holds no sources", status)

    def test_damaged_source_is_refused(self):
        status, _, _ = self.run_main(self.tree({"a.cpp": "int a;\nint A() {\n"}))
        self.assertEqual(status, "layers: a.cpp: line 2: a bracket is not closed")


PAIR = {
    "a.h": "int A();\n",
    "a.cpp": '#include "b.h"\nint A() { return B(); }\n',
    "b.h": "int B();\n",
    "b.cpp": '#include "a.h"\nint B() { return A(); }\n',
}


class Pairs(TreeTestCase):
    def test_pair_fails(self):
        self.assertIn("  a -> b -> a", self.faults(PAIR))

    def test_allowed_pair_passes(self):
        tree = self.tree(PAIR, pairs=[("b", "a")])
        self.assertEqual(self.run_main(tree), (0, "toy\n  0  a + b\n", ""))

    def test_allowed_pair_with_a_third_fails(self):
        files = {**PAIR, "c.h": '#include "a.h"\n', "b.h": '#include "c.h"\n'}
        faults = self.faults(files, pairs=[("a", "b")])
        self.assertEqual(faults[0], "3 units depend on each other: a, b, c")
        self.assertIn("  b -> c -> a -> b", faults)
        self.assertNotIn("  a -> b -> a", faults)

    def test_stale_allowance_fails(self):
        expected = "{} may depend on each other (both need it), but do not: take the pair out"
        for pair in (("ground", "middle"), ("ground", "gone"), ("gone", "too")):
            with self.subTest(pair=pair):
                self.assertEqual(
                    self.faults(GOOD, pairs=[pair]), [expected.format(" and ".join(pair))]
                )


def by_folders(path):
    return path.with_suffix("").as_posix()


FOLDERS = {
    "low/a.h": "int A();\n",
    "low/a.cpp": '#include "low/a.h"\nint A() { return 1; }\n',
    "low/b.cpp": '#include "low/a.h"\nint b = A();\n',
    "high/a.h": "int HighA();\n",
    "high/a.cpp": '#include "high/a.h"\n#include "low/a.h"\nint HighA() { return A(); }\n',
    "main.h": "int Main();\n",
    "main.cpp": '#include "main.h"\n#include "high/a.h"\nint Main() { return HighA(); }\n',
}


class Folders(TreeTestCase):
    """Folders that are layers, with units of one name in several of them."""

    def faults_with(self, name, text):
        """Those of the folders when this file is added or changed."""
        files = {**FOLDERS, name: text}
        return self.faults(files, unit_of=by_folders, folders=("low", "high", ""))

    def test_good_folders_pass(self):
        self.assertEqual(self.faults_with("high/b.cpp", '#include "low/a.h"\n'), [])

    def test_include_of_a_folder_above_fails(self):
        for unit, header in (("low/c", "high/a"), ("low/c", "main"), ("high/c", "main")):
            with self.subTest(unit=unit, header=header):
                expected = [
                    f"{unit} depends on a folder above its own",
                    f"    {unit} -> {header}: {unit}.cpp:1 includes {header}.h",
                ]
                found = self.faults_with(f"{unit}.cpp", f'#include "{header}.h"\n')
                self.assertEqual(found, expected)
                (self.folder / f"{unit}.cpp").unlink()

    def test_use_of_a_folder_above_fails(self):
        found = self.faults_with("low/c.cpp", "int HighA();\nint c = HighA();\n")
        self.assertIn("    low/c -> high/a: low/c.cpp:1 uses HighA", found)

    def test_circle_of_folders_fails(self):
        found = self.faults_with("low/a.h", '#include "high/a.h"\nint A();\n')
        self.assertIn("  high/a -> low/a -> high/a", found)
        self.assertIn("low/a depends on a folder above its own", found)

    def test_folder_that_is_no_layer_fails(self):
        for name in ("other/c.cpp", "low/inner/c.cpp"):
            with self.subTest(name=name):
                expected = "lies in no folder that is a layer: low, high"
                self.assertEqual(self.faults_with(name, ""), [f"{name[:-4]} {expected}"])
                (self.folder / name).unlink()


class Uses(TreeTestCase):
    """Which words count; each tree has a header low.h and sources that see it through by.h."""

    def uses(self, header, source, **more):
        """The units on which the unit top depends, but for the one through which it includes."""
        files = {"low.h": header, "by.h": '#include "low.h"\n', "other.h": "", **more}
        files["top.cpp"] = '#include "by.h"\n' + source
        edges = self.edges(files)
        self.assertIn(("top", "by"), edges)
        return [other for unit, other in edges if unit == "top" and other != "by"]

    def test_what_counts(self):
        for header, use in (
            ("int Low();", "int x = Low();"),
            ("extern int g_low;", "int x = g_low;"),
            ("enum E { LOW };", "int x = LOW;"),
            ("class Low {};", "Low::Inner x;"),
            ("#define LOW 1", "int x = LOW;"),
            ("int Low();", "#define TOP Low()"),
            ("int Low();", "#if Low\n#endif"),
            ("namespace low { int Low(); }", "int x = low::Low();"),
            ("int Low();", "int x = ::Low();"),
            ('int operator""_low(const char*);', 'int x = "a"_low;'),
        ):
            with self.subTest(header=header, use=use):
                self.assertEqual(self.uses(header, use + "\n"), ["low"])

    def test_what_does_not_count(self):
        for source in (
            "// Low()",
            "/* Low()\n Low() */",
            "#define TOP 1  // Low()",
            "#define TOP /* Low()\n Low() */ 1",
            'const char* x = "Low()";',
            'const char* x = R"x(" Low() )x";',
            "int x = y.Low();",
            "int x = y->Low();",
            "int x = std::Low();",
            "namespace { int Low() { return 1; } }\nint x = Low();",
        ):
            with self.subTest(source=source):
                self.assertEqual(self.uses("int Low();\n", source + "\n"), [])

    def test_type_that_is_declared_ahead(self):
        self.assertEqual(self.uses("class Low {};\n", "class Low;\nLow* x;\n"), [])
        by = '#include "low.h"\nclass Low;\n'
        self.assertEqual(self.uses("class Low {};\n", "Low* x;\n", **{"by.h": by}), ["low"])

    def test_name_that_is_not_seen(self):
        unseen = {"far.h": "int Far();\n"}
        self.assertEqual(self.uses("", "int Top(int Far);\n", **unseen), [])

    def test_what_stands_before_a_header(self):
        files = {
            "a.h": "int A();\n",
            "b.h": "inline int B() { return A(); }\n",
            "c.cpp": '#include "a.h"\n#include "b.h"\n',
        }
        self.assertIn(("b", "a"), self.edges(files))
        files["c.cpp"] = '#include "b.h"\n#include "a.h"\n'
        self.assertNotIn(("b", "a"), self.edges(files))

    def test_overloaded_names(self):
        both = {"low.h": "int Size(int);\n", "also.h": "int Size(char);\n"}
        by_one = {**both, "by.h": '#include "low.h"\n'}
        by_both = {**both, "by.h": '#include "low.h"\n#include "also.h"\n'}
        source = {"top.cpp": '#include "by.h"\nint x = Size(1);\n'}
        self.assertIn(("top", "low"), self.edges({**by_one, **source}))
        self.assertEqual(
            self.edges({**by_both, **source}), [("by", "also"), ("by", "low"), ("top", "by")]
        )

    def test_shared_header(self):
        files = {
            "shared.h": "extern int g_x;\n",
            "by.h": '#include "shared.h"\n',
            "low.cpp": '#include "by.h"\nint x = g_x;\n',
            "top.cpp": '#include "by.h"\nint g_x = 1;\n',
        }
        self.assertEqual(
            self.edges(files), [("by", "shared"), ("low", "by"), ("low", "shared"), ("top", "by")]
        )


# ---------------------------------------------------------------------------------------------
# Objects
# ---------------------------------------------------------------------------------------------


@unittest.skipUnless(COMPILER, "no C++ compiler")
class Objects(TreeTestCase):
    def build(self, tree, *options):
        """Compiles the sources; their objects stand beside them."""
        commands = []
        for source in sorted(tree.folder.rglob("*.cpp")):
            compiled = source.with_suffix(".o")
            arguments = [COMPILER, *options, "-c", str(source), "-o", str(compiled)]
            subprocess.run(arguments, check=True)
            entry = {"directory": "/", "file": str(source), "command": " ".join(arguments)}
            commands.append(entry)
        path = tree.folder / "compile_commands.json"
        path.write_text(json.dumps(commands))
        return path.parent

    def faults_of_build(self, files, **options):
        tree = self.tree(files, **options)
        return layers.check(tree, self.build(tree))[1]

    def test_good_layers_pass(self):
        self.assertEqual(self.faults_of_build(GOOD), [])

    def test_what_no_header_shows_fails(self):
        for declaration, name, definition in (
            ("int Hidden();", "Hidden()", "int Hidden() { return 1; }"),
            ("int Hidden();", "Hidden()", "__attribute__((weak)) int Hidden() { return 1; }"),
            ("extern int hidden;", "hidden", "int hidden;"),
            ("extern int hidden;", "hidden", "int hidden = 1;"),
            ("extern int hidden;", "hidden", "__attribute__((weak)) int hidden = 1;"),
            ("extern const int hidden;", "hidden", "extern const int hidden = 1;"),
        ):
            ground = f"{declaration}\nint Read() {{ return {name}; }}\n"
            files = {**GOOD, "ground.cpp": ground, "top.cpp": GOOD["top.cpp"] + definition}
            with self.subTest(definition=definition):
                self.assertEqual(self.faults(files), [])
                expected = f"    ground -> top: ground.o needs {name}"
                self.assertIn(expected, self.faults_of_build(files))

    def test_variables_of_the_shared_header(self):
        files = {
            "shared.h": "extern const int TABLE[2];\nnamespace n { extern int x; }\n"
            'extern "C" int Shared();\n',
            "low.h": "int Low();\n",
            "low.cpp": '#include "shared.h"\nint Low() { return TABLE[n::x]; }\n',
            "top.cpp": '#include "low.h"\n#include "shared.h"\nint n::x = Low();\n'
            "const int TABLE[2] = {1, 2};\nint Shared() { return 1; }\n",
        }
        self.assertEqual(self.faults_of_build(files, shared="shared"), [])
        self.assertIn("    low -> top: low.o needs TABLE", self.faults_of_build(files))
        files["low.cpp"] = '#include "shared.h"\nint Low() { return Shared(); }\n'
        faults = self.faults_of_build(files, shared="shared")
        self.assertIn("    low -> top: low.o needs Shared", faults)

    def refusal(self, tree, build):
        status, shown, _ = self.run_main(tree, "--objects", str(build))
        self.assertEqual(shown, "")
        return status

    def test_objects_for_link_time_optimisation_are_refused(self):
        tree = self.tree(GOOD)
        refusal = self.refusal(tree, self.build(tree, "-flto"))
        self.assertIn("ground.o is made for link time optimisation", refusal)

    def test_missing_object_is_refused(self):
        tree = self.tree(GOOD)
        build = self.build(tree)
        (self.folder / "middle.o").unlink()
        self.assertIn("middle.o is not there", self.refusal(tree, build))

    def test_source_that_is_not_compiled_is_refused(self):
        tree = self.tree(GOOD)
        build = self.build(tree)
        tree = self.tree({**GOOD, "new.cpp": "int x;\n"})
        self.assertIn("does not compile new.cpp", self.refusal(tree, build))


# ---------------------------------------------------------------------------------------------
# Metrics
# ---------------------------------------------------------------------------------------------


class Metrics(TreeTestCase):
    def test_lengths(self):
        functions = [f"int F{length}() {{\n{';' * length}\n}}\n" for length in range(3)]
        longest = "// A comment\ntemplate <typename T>\n[[nodiscard]] int G(T,\n  int) {\n\n}\n"
        header = "int F0();\nint F0(int);\nextern int g;\nstruct S {\n int M() { return 1; }\n};\n"
        files = {"a.h": header + "inline int I() { return 1; }\n", "b.h": "int B;\n"}
        files["a.cpp"] = "".join([*functions, longest])
        status, shown, _ = self.run_main(self.tree(files), "--metrics")
        self.assertEqual(status, 0)
        self.assertEqual(
            [line.split() for line in shown.splitlines()],
            [
                ["unit", "functions", "median", "p90", "longest", "lines", "exported"],
                ["a", "5", "3", "4", "4", "22", "3"],
                ["b", "0", "0", "0", "0", "1", "0"],
                ["toy", "5", "3", "4", "4", "23", "3"],
            ],
        )

    def test_nine_of_ten(self):
        functions = [f"int F{length}() {{{chr(10) * length}}}\n" for length in range(20)]
        _, shown, _ = self.run_main(self.tree({"a.cpp": "".join(functions)}), "--metrics")
        self.assertEqual(shown.split()[7:13], ["a", "20", "10.5", "18", "20", "210"])


# ---------------------------------------------------------------------------------------------
# Reading sources
# ---------------------------------------------------------------------------------------------

DECLARATIONS = (
    ("int F();", "function F"),
    ("[[noreturn]] void F(const Q& q = Q());", "function F"),
    ("std::map<int, std::function<void(int)>> F(int x);", "function F"),
    ("template <typename T>\ninline int F(T t) { return {}; }", "function F definition"),
    ("auto F() -> std::vector<int> { return {}; }", "function F definition"),
    ("decltype(auto) F();", "function F"),
    ("inline decltype(auto) F();", "function F"),
    ("int __attribute__((weak)) F();", "function F"),
    ("C::C(int x) : a_(x), b_{x} {}", "function  definition"),
    ("C::~C() {}", "function  definition"),
    ("int C::count = 0;", "variable  definition"),
    ("C& operator+(C a, C b);", "function "),
    ("bool operator<(C a, C b);", "function "),
    ("inline C::operator bool() const { return true; }", "function  definition"),
    ("void operator()(int);", "function "),
    ("C& C::operator=(const C& c) { return *this; }", "function  definition"),
    ('constexpr Q operator""_q(const char* c) { return Q(c); }', "function _q definition"),
    ("extern int x, y;", "variable x", "variable y"),
    ("int x = F(1), y[2] = {1, 2}, z{3};", *(f"variable {name} definition" for name in "xyz")),
    ("extern std::unique_ptr<C> x;", "variable x"),
    ("extern const row table[COUNT];", "variable table"),
    ("[[maybe_unused]] extern int x;", "variable x"),
    ("extern const int x = 1;", "variable x definition"),
    ("static alignas(8) int x = 1, y(2);", *(f"variable {name} definition" for name in "xy")),
    ("const bool x = (1) < 2, y = 2 > 1;", *(f"variable {name} definition" for name in "xy")),
    ("constexpr Q x('\\'');", "variable x definition"),
    ("const auto f = [](int x) { return x; };", "variable f definition"),
    ("const int x = 1'000, y = 2'000;", *(f"variable {name} definition" for name in "xy")),
    ("void (*pointer)(int) = nullptr;", "function "),
    ("class C;", "type C"),
    ("class C final : public B<C> { void M(); int m = 1; };", "type C definition"),
    ("struct alignas(SIZE) S { int m; };", "type S definition"),
    ("template <typename T> struct S { T t; };", "type S definition"),
    ("enum E : int { A, B = (1 << 2), C };", "type E definition")
    + tuple(f"enumerator {name} definition" for name in "ABC"),
    ("enum class E { A, B };", "type E definition"),
    ("using A = std::vector<int>;", "alias A definition"),
    ("template <typename T> using A = B<T>;", "alias A definition"),
    ("using F = void (*)(int);", "alias F definition"),
    ("typedef unsigned long A;", "alias A definition"),
    ("using namespace a;",),
    ("using std::move;",),
    ("namespace fs = std::filesystem;",),
    ("static_assert(sizeof(int) == 4);",),
    ("namespace a::b { int F(); }  namespace { int G(); }", "function F", "function G"),
    ('extern "C" { int F(); }', "function F"),
    ('extern "C" int F();', "function F"),
    ("Q_DECLARE_METATYPE(C)\nint F();", "function F"),
    ("#define M(x) \\\n  int x;\nint F();", "function F", "macro M definition"),
    ("#define M /* don't\n { */ 1 // /*\nint F();", "function F", "macro M definition"),
    ("#define M 1 // /*\nint F(); // */", "function F", "macro M definition"),
    ("#ifdef X\nint F();\n#else\nint G();\n#endif", "function F", "function G"),
    ("/* int F(); */ // int G();\nint H();", "function H"),
)


def described(declaration):
    suffix = " definition" if declaration.is_definition else ""
    return f"{declaration.kind} {declaration.name}{suffix}"


class Reading(unittest.TestCase):
    def test_declarations(self):
        for text, *expected in DECLARATIONS:
            with self.subTest(text=text):
                found = cpp_source.read(text).declarations
                self.assertEqual([described(each) for each in found], expected)

    def test_a_declaration_after_another(self):
        for text, *expected in DECLARATIONS:
            with self.subTest(text=text):
                found = cpp_source.read(f"{text}\nint last;\n").declarations
                self.assertIn("last", [each.name for each in found])

    def test_lines(self):
        text = "/* a\n b */ int\nF() {\n  // }\n}\n\n#include \"x.h\"\nint x;\n"
        source = cpp_source.read(text)
        self.assertEqual([(each.line, each.end) for each in source.declarations], [(2, 5), (8, 8)])
        self.assertEqual(source.includes, [("x.h", 7)])
        self.assertEqual(source.lines, 8)

    def test_namespaces(self):
        source = cpp_source.read("namespace a::b {}\nnamespace { }\nnamespace c = std;\n")
        self.assertEqual(source.namespaces, {"a", "b"})

    def test_damaged_brackets_are_refused(self):
        for text, line in (("int a;\n}", 2), ("f(\n]", 2), ("f(", 1)):
            with self.subTest(text=text), self.assertRaisesRegex(
                cpp_source.SourceError, f"^line {line}: "
            ):
                cpp_source.read(text)


if __name__ == "__main__":
    unittest.main()
