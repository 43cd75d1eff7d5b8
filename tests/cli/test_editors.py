"""The highlighting of the editors: it is current, and colours tokens as the compiler reads them.

VS Code has more tests in tests/editors. Vim is run where it is installed; for Kate the rules of
its file are followed here.
"""

import json
import os
import re
import shutil
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
from itertools import groupby
from pathlib import Path

from support import ROOT, compile_source, words
from test_relations import tokenize

EDITORS = ROOT / "editors"
EXAMPLES = sorted((ROOT / "examples").glob("*.st"))

# The lists of words, each word standing in one, with the scope that VS Code knows it by.
SCOPES = {
    "units": "keyword.declaration.unit.yxst",
    "sections": "storage.modifier.section.yxst",
    "engineSections": "storage.modifier.section.engine.yxst",
    "declarations": "storage.modifier.yxst",
    "statements": "keyword.control.yxst",
    "operators": "keyword.operator.word.yxst",
    "constants": "constant.language.boolean.yxst",
    "variables": "variable.language.yxst",
    "types": "support.type.yxst",
    "functions": "support.function.yxst",
    "functionBlocks": "support.function.block.yxst",
}


def words_by_list():
    return {name: texts for name, texts in words.lists().items() if name in SCOPES}


def list_of(word):
    """The list that holds the word in whatever case, or None."""
    for name, texts in words_by_list().items():
        if word.upper() in map(str.upper, texts):
            return name
    return None


def read(name):
    return (EDITORS / name).read_text(encoding="utf-8")


# ---------------------------------------------------------------------------------------------
# The generated files
# ---------------------------------------------------------------------------------------------


def generate(folder, *arguments):
    return subprocess.run(
        [folder / "generate", *arguments],
        env={**os.environ, "YXST_WORDS": str(words.PROGRAM)},
        capture_output=True,
        text=True,
    )


class Generated(unittest.TestCase):
    def test_files_are_current(self):
        result = generate(EDITORS, "--check")
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "", ""))

    def test_stale_file_is_found_and_mended(self):
        with tempfile.TemporaryDirectory() as folder:
            copy = Path(shutil.copytree(EDITORS, Path(folder) / "editors"))
            shutil.copytree(ROOT / "scripts", Path(folder) / "scripts")
            stale = copy / "vim" / "syntax" / "yxst.vim"
            current = stale.read_text(encoding="utf-8")
            stale.write_text(current.replace("ELSIF", "ELSEIF"), encoding="utf-8")
            result = generate(copy, "--check")
            self.assertEqual(result.returncode, 1)
            self.assertIn("ELSEIF", result.stderr)
            self.assertEqual(generate(copy).returncode, 0)
            self.assertEqual(stale.read_text(encoding="utf-8"), current)

    def test_each_word_is_in_a_list(self):
        listed = [word for texts in words_by_list().values() for word in texts]
        known = [*words.reserved_words(), *words.types(), *words.built_ins()]
        self.assertEqual(sorted(listed), sorted(known))
        self.assertGreater(len(listed), 80)


# ---------------------------------------------------------------------------------------------
# What every editor must show
# ---------------------------------------------------------------------------------------------

PROGRAM = """\
(* Комментарий (* once *)
FUNCTION f : INT
VAR_ARG  Ток2 : Int; // 'a' (* b
END_VAR
RESULT := -Ток2;
END_FUNCTION
PROGRAM p
VAR_YXGLOBAL g : UINT (16#0fF); END_VAR
var x : REAL := 1.5e-3; CONSTANT y : BOOL := tRUE; end_var
VAR_GLOBAL IFx : INT; END_VAR
again:
  x := Sqrt(x) ** 2.0 + 8#17 MOD 2#01 <> .5;
  IF x THEN yxSetGV(1, TICK); END_IF;
  CASE IFx OF 1..5: GOTO again; END_CASE;
END_PROGRAM
"""

# Tokens of the program by line: text, then what it is. Lists are named as in the tables.
EXPECTED = {
    0: [("(* Комментарий (* once *)", "Comment")],
    1: [("FUNCTION", "units"), ("f", "UnitName"), (":", "Operator"), ("INT", "types")],
    2: [("VAR_ARG", "sections"), ("Ток2", "Declared"), (":", "Operator"), ("Int", "types"),
        (";", "Delimiter"), ("// 'a' (* b", "Comment")],
    4: [("RESULT", "variables"), (":=", "Operator"), ("-", "Operator"), ("Ток2", "Name"),
        (";", "Delimiter")],
    5: [("END_FUNCTION", "units")],
    6: [("PROGRAM", "units"), ("p", "UnitName")],
    7: [("VAR_YXGLOBAL", "engineSections"), ("g", "Declared"), (":", "Operator"),
        ("UINT", "types"), ("(", "Delimiter"), ("16#0fF", "BasedNumber"), (")", "Delimiter"),
        (";", "Delimiter")],
    8: [("var", "sections"), ("x", "Declared"), (":", "Operator"), ("REAL", "types"),
        (":=", "Operator"), ("1.5e-3", "Float"), (";", "Delimiter"),
        ("CONSTANT", "declarations"), ("y", "Declared"), (":", "Operator"), ("BOOL", "types"),
        (":=", "Operator"), ("tRUE", "constants"), (";", "Delimiter")],
    9: [("VAR_GLOBAL", "sections"), ("IFx", "Declared"), (":", "Operator"), ("INT", "types"),
        (";", "Delimiter")],
    10: [("again", "Label"), (":", "Operator")],
    11: [("x", "Name"), (":=", "Operator"), ("Sqrt", "functions"), ("(", "Delimiter"),
         ("x", "Name"), (")", "Delimiter"), ("**", "Operator"), ("2.0", "Float"),
         ("+", "Operator"), ("8#17", "BasedNumber"), ("MOD", "operators"),
         ("2#01", "BasedNumber"), ("<>", "Operator"), (".5", "Float"), (";", "Delimiter")],
    12: [("IF", "statements"), ("x", "Name"), ("THEN", "statements"),
         ("yxSetGV", "functionBlocks"), ("(", "Delimiter"), ("1", "Number"), (",", "Delimiter"),
         ("TICK", "variables"), (")", "Delimiter"), (";", "Delimiter"), ("END_IF", "statements"),
         (";", "Delimiter")],
    13: [("CASE", "statements"), ("IFx", "Name"), ("OF", "statements"), ("1", "Number"),
         ("..", "Delimiter"), ("5", "Number"), (":", "Operator"), ("GOTO", "statements"),
         ("again", "Label"), (";", "Delimiter"), ("END_CASE", "statements"), (";", "Delimiter")],
    14: [("END_PROGRAM", "units")],
}  # fmt: skip

ERRORS = """\
a +-b => c;
x := 10#1 + 016#1;
x := 'no end
(*) *) y(***) z +// a
VAR1 1VAR2 'IF' x '(*'
"""
EXPECTED_ERRORS = {
    0: [("a", "Name"), ("+-", "Error"), ("b", "Name"), ("=>", "Error"), ("c", "Name")],
    1: [("x", "Name"), (":=", "Operator"), ("10#", "Error"), ("1", "Number"), ("+", "Operator"),
        ("016#", "Error"), ("1", "Number")],
    2: [("x", "Name"), (":=", "Operator"), ("'no end", "Error")],
    3: [("(*) *)", "Comment"), ("y", "Name"), ("(***)", "Comment"), ("z", "Name"),
        ("+/", "Error"), ("/", "Operator"), ("a", "Name")],
    4: [("VAR1", "Name"), ("1", "Number"), ("VAR2", "Name"), ("'IF'", "String"),
        ("x", "Name"), ("'(*'", "String")],
}  # fmt: skip

KINDS = {
    "comment": {"Comment"},
    "string": {"String"},
    "number": {"Number", "BasedNumber", "Float"},
    "mark": {"Operator", "Delimiter"},
}
NAME_COLOURS = {"Name", "Declared", "Label", "UnitName"}


def expected_colours(token):
    if token.kind == "name":
        name = list_of(token.text)
        return {name} if name else NAME_COLOURS
    return KINDS[token.kind]


class Colours:
    """The tests that every editor passes whose colours can be asked for here.

    coloured(text) gives for each line the colour of each of its characters.
    """

    def assert_tokens(self, text, expected):
        lines = text.splitlines()
        colours = self.coloured(text)
        for line, tokens in expected.items():
            place = 0
            for token, colour in tokens:
                place = lines[line].index(token, place)
                with self.subTest(line=lines[line], token=token):
                    found = colours[line][place : place + len(token)]
                    self.assertEqual(found, [colour] * len(token))
                place += len(token)

    def test_tokens(self):
        self.assert_tokens(PROGRAM, EXPECTED)

    def test_errors(self):
        self.assert_tokens(ERRORS, EXPECTED_ERRORS)

    def test_every_word(self):
        for name, texts in words_by_list().items():
            for case in (str, str.upper, str.lower):
                text = "".join(f"{case(word)}\nEND_VAR\n" for word in texts)
                if name == "declarations":
                    text = "".join(f"VAR\n{case(word)}\n" for word in texts)
                shown = dict(zip(text.splitlines(), self.coloured(text)))
                for word in map(case, texts):
                    with self.subTest(list=name, word=word):
                        self.assertEqual(shown[word], [name] * len(word))

    def test_every_token_of_the_examples(self):
        self.assertGreater(len(EXAMPLES), 5)
        for path in EXAMPLES:
            with self.subTest(example=path.name):
                self.assertEqual(self.wrong_tokens(path.read_text(encoding="utf-8")), [])

    def wrong_tokens(self, text):
        """The tokens with the colours that they should not have, or that differ within them."""
        colours = [colour for line in self.coloured(text) for colour in [*line, None]]
        wrong = []
        place = 0
        for token in tokenize(text.encode())[:-1]:
            shown = set(colours[place : place + len(token.text)]) - {None}
            place += len(token.text)
            if token.kind != "blank" and not (
                len(shown) == 1 and shown <= expected_colours(token)
            ):
                wrong.append((token.text, shown))
        return wrong


# ---------------------------------------------------------------------------------------------
# Vim
# ---------------------------------------------------------------------------------------------


def has_vim():
    if shutil.which("vim") is None:
        return False
    version = subprocess.run(["vim", "--version"], capture_output=True, text=True).stdout
    return "+syntax" in version


# Writes the group of each character with a comma after it, a line of groups for each line.
VIM_PROBE = """\
function! Groups(line)
  let groups = []
  for index in range(strchars(getline(a:line)))
    let column = byteidx(getline(a:line), index) + 1
    call add(groups, synIDattr(synID(a:line, column, 1), 'name') . ',')
  endfor
  return join(groups, '')
endfunction
call writefile(map(range(1, line('$')), 'Groups(v:val)'), 'groups')
"""


@unittest.skipUnless(has_vim(), "Vim with +syntax is not installed")
class Vim(Colours, unittest.TestCase):
    def run_vim(self, folder, *commands):
        options = [option for command in commands for option in ("-c", command)]
        subprocess.run(
            ["vim", "-es", "-u", "NONE", "-i", "NONE", "-n", *options, "-c", "qall!"],
            cwd=folder,
            stdin=subprocess.DEVNULL,
            capture_output=True,
            timeout=60,
            check=True,
        )

    def coloured(self, text):
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            (folder / "a.st").write_text(text, encoding="utf-8")
            (folder / "probe.vim").write_text(VIM_PROBE)
            syntax = EDITORS / "vim" / "syntax" / "yxst.vim"
            commands = ("set encoding=utf-8", "edit a.st", f"source {syntax}", "source probe.vim")
            self.run_vim(folder, *commands)
            groups = (folder / "groups").read_text().split("\n")[:-1]
        return [[self.colour(group) for group in line.split(",")[:-1]] for line in groups]

    def colour(self, group):
        colour = group.removeprefix("yxst")
        first_small = colour[:1].lower() + colour[1:]
        special = {"Goal": "Label", "Number": "Number"}
        return first_small if first_small in SCOPES else special.get(colour, colour)

    def assert_tokens(self, text, expected):
        """A number with a base is a number like others."""
        kinds = {"BasedNumber": "Number"}
        super().assert_tokens(
            text,
            {
                line: [(token, kinds.get(colour, colour)) for token, colour in tokens]
                for line, tokens in expected.items()
            },
        )


class VimFile(unittest.TestCase):
    def test_lists_are_those_of_the_tables(self):
        text = read("vim/syntax/yxst.vim")
        found = {name: set() for name in SCOPES}
        for group, listed in re.findall(r"^syntax keyword yxst(\w+) (.*)$", text, re.MULTILINE):
            listed = listed.partition(" nextgroup=")[0].split()
            found[group[0].lower() + group[1:]] |= set(listed)
        for group, start in re.findall(r"matchgroup=yxst(\w+) start=/\\<\\%\(([^/]*)\\\)", text):
            found[group[0].lower() + group[1:]] |= set(start.split(r"\|"))
        found["declarations"] |= set(re.findall(r"end=/\\<(\w+)\\>/", text))
        self.assertEqual(found, {name: set(texts) for name, texts in words_by_list().items()})


# ---------------------------------------------------------------------------------------------
# Kate
# ---------------------------------------------------------------------------------------------

# The elements of the file with the attributes that they may have.
RULE = {"attribute", "context", "beginRegion", "endRegion", "lookAhead", "firstNonSpace"}
KATE_ELEMENTS = {
    "language": {"name", "section", "extensions", "mimetype", "version", "kateversion", "author",
                 "license"},
    "highlighting": set(),
    "list": {"name"},
    "item": set(),
    "contexts": set(),
    "context": {"name", "attribute", "lineEndContext", "fallthroughContext"},
    "keyword": RULE | {"String"},
    "WordDetect": RULE | {"String", "insensitive"},
    "RegExpr": RULE | {"String"},
    "Detect2Chars": RULE | {"char", "char1"},
    "DetectSpaces": RULE,
    "IncludeRules": {"context"},
    "itemDatas": set(),
    "itemData": {"name", "defStyleNum"},
    "general": set(),
    "comments": set(),
    "comment": {"name", "start", "end", "region"},
    "keywords": {"casesensitive"},
}  # fmt: skip

KATE_STYLES = (
    "Normal Keyword Function Variable ControlFlow Operator BuiltIn Extension Preprocessor"
    " Attribute Char SpecialChar String VerbatimString SpecialString Import DataType DecVal BaseN"
    " Float Constant Comment Documentation Annotation CommentVar RegionMarker Information Warning"
    " Alert Others Error"
).split()

DELIMITERS = set(" \t!%&()*+,-./:;<=>?[\\]^{|}~")


class KateRules:
    """Follows the rules of the file as the editor does, as far as the file uses them."""

    def __init__(self, root):
        self.lists = {
            element.get("name"): {item.text.upper() for item in element}
            for element in root.iter("list")
        }
        self.contexts = {context.get("name"): context for context in root.iter("context")}
        self.first = next(root.iter("context")).get("name")

    def rules_of(self, name):
        for rule in self.contexts[name]:
            if rule.tag == "IncludeRules":
                yield from self.rules_of(rule.get("context"))
            else:
                yield rule

    def coloured(self, text):
        stack = [self.first]
        return [self.line_colours(line, stack) for line in text.splitlines()]

    def line_colours(self, line, stack):
        colours = []
        while len(colours) < len(line):
            colours += self.step(line, len(colours), stack)
        while self.contexts[stack[-1]].get("lineEndContext") == "#pop":
            stack.pop()
        return colours

    def step(self, line, place, stack):
        """The colours of the next characters."""
        context = self.contexts[stack[-1]]
        for rule in self.rules_of(stack[-1]):
            length = self.length(rule, line, place)
            if length:
                self.follow(rule.get("context", "#stay"), stack)
                return [rule.get("attribute") or context.get("attribute")] * length
        if context.get("fallthroughContext"):
            self.follow(context.get("fallthroughContext"), stack)
            return []
        return [context.get("attribute")]

    @staticmethod
    def follow(target, stack):
        if target == "#pop":
            stack.pop()
        elif target != "#stay":
            stack.append(target)

    def length(self, rule, line, place):
        """How many characters the rule takes there."""
        if rule.tag == "RegExpr":
            match = re.compile(rule.get("String")).match(line, place)
            return len(match[0]) if match else 0
        if rule.tag == "Detect2Chars":
            return 2 if line.startswith(rule.get("char") + rule.get("char1"), place) else 0
        if rule.tag == "DetectSpaces":
            return len(line) - place - len(line[place:].lstrip())
        word = self.word(line, place).upper()
        texts = self.lists[rule.get("String")] if rule.tag == "keyword" else {rule.get("String")}
        return len(word) if word in texts else 0

    @staticmethod
    def word(line, place):
        """The word that begins there, empty within a word."""
        if place > 0 and line[place - 1] not in DELIMITERS and line[place] not in DELIMITERS:
            return ""
        end = place
        while end < len(line) and line[end] not in DELIMITERS:
            end += 1
        return line[place:end]


class Kate(Colours, unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.root = ElementTree.parse(EDITORS / "kate" / "yxst.xml").getroot()
        cls.rules = KateRules(cls.root)

    def coloured(self, text):
        names = {"Based Number": "BasedNumber", "Unit Name": "UnitName"}
        lines = self.rules.coloured(text)
        return [[names.get(colour, colour) for colour in line] for line in lines]

    def test_elements_and_attributes(self):
        for element in self.root.iter():
            with self.subTest(element=element.tag, attributes=element.attrib):
                self.assertLessEqual(set(element.attrib), KATE_ELEMENTS[element.tag])
        self.assertEqual([child.tag for child in self.root], ["highlighting", "general"])
        parts = [child.tag for child in self.root[0]]
        self.assertEqual([tag for tag, _ in groupby(parts)], ["list", "contexts", "itemDatas"])

    def test_what_is_referred_to_is_there(self):
        data = list(self.root.iter("itemData"))
        styles = {each.get("name"): each.get("defStyleNum") for each in data}
        self.assertLessEqual(set(styles.values()), {f"ds{style}" for style in KATE_STYLES})
        for element in self.root.iter():
            for key in ("context", "lineEndContext", "fallthroughContext"):
                target = element.get(key, "#stay")
                self.assertIn(target, {"#stay", "#pop", *self.rules.contexts})
            if "attribute" in element.attrib:
                self.assertIn(element.get("attribute"), styles)

    def test_lists_are_those_of_the_tables(self):
        lists = self.root.iter("list")
        found = {each.get("name"): [item.text for item in each] for each in lists}
        self.assertEqual(found, words_by_list())

    def test_regions_that_begin_end(self):
        begun = {rule.get("beginRegion") for rule in self.root.iter()} - {None}
        ended = {rule.get("endRegion") for rule in self.root.iter()} - {None}
        self.assertEqual(begun, ended)
        self.assertLessEqual({"If", "Case", "FunctionBlock", "Section", "Comment"}, begun)

    def test_case_does_not_count(self):
        self.assertEqual(self.root.find("general/keywords").get("casesensitive"), "0")


# ---------------------------------------------------------------------------------------------
# VS Code
# ---------------------------------------------------------------------------------------------


def rules_in(part):
    """The rules of a part of the grammar with a pattern, each with the scope of its match."""
    if isinstance(part, list):
        for each in part:
            yield from rules_in(each)
    elif isinstance(part, dict):
        if "match" in part and "name" in part:
            yield part["match"], part["name"]
        for key in ("begin", "end"):
            captures = part.get(f"{key}Captures")
            if captures:
                yield part[key], captures["0"]["name"]
        for each in part.values():
            yield from rules_in(each)


SNIPPET_FRAME = "PROGRAM p\nVAR\ni : INT;\nEND_VAR\n{}\nEND_PROGRAM\n"
SECTION_FRAME = "PROGRAM p\n{}\nEND_PROGRAM\n"
UNIT_FRAME = "{}\nPROGRAM p\nVAR END_VAR\nEND_PROGRAM\n"
PROGRAM_FRAME = "{}\n"


def snippet_source(body):
    """A script with the snippet as it stands when nothing has been changed in it."""
    text = re.sub(r"\$0|\$\{\d+:([^}]*)\}", lambda match: match[1] or "", "\n".join(body))
    word = text.split()[0]
    if word == "PROGRAM":
        frame = PROGRAM_FRAME
    elif list_of(word) == "units":
        frame = UNIT_FRAME
    elif list_of(word) == "sections":
        frame = SECTION_FRAME
    else:
        frame = SNIPPET_FRAME
    return frame.format(text)


class VsCode(unittest.TestCase):
    def test_every_word_has_its_scope(self):
        grammar = json.loads(read("vscode/syntaxes/yxst.tmLanguage.json"))
        parts = [grammar["repository"][name] for name in ("words", "sections")]
        rules = list(rules_in(parts))
        for name, texts in words_by_list().items():
            for word in [form for each in texts for form in (each, each.upper(), each.lower())]:
                scopes = {scope for pattern, scope in rules if re.fullmatch(pattern, word)}
                with self.subTest(list=name, word=word):
                    self.assertEqual(scopes, {SCOPES[name]})

    def test_no_other_words_are_coloured(self):
        grammar = json.loads(read("vscode/syntaxes/yxst.tmLanguage.json"))
        known = {word for texts in words_by_list().values() for word in texts}
        for pattern, _ in rules_in(grammar["repository"]["words"]):
            listed = re.fullmatch(r"\(\?i:([\w|]+)\)\(\?!.*\)", pattern)[1].split("|")
            self.assertLessEqual(set(listed), known)

    def test_files_of_the_extension(self):
        contributes = json.loads(read("vscode/package.json"))["contributes"]
        language = contributes["languages"][0]
        self.assertEqual((language["id"], language["extensions"]), ("yxst", [".st"]))
        grammar = contributes["grammars"][0]
        scope = json.loads(read(f"vscode/{grammar['path']}"))["scopeName"]
        self.assertEqual((grammar["language"], grammar["scopeName"]), ("yxst", scope))
        for path in (language["configuration"], contributes["snippets"][0]["path"]):
            self.assertTrue(json.loads(read(f"vscode/{path}")))

    def test_indentation(self):
        rules = json.loads(read("vscode/language-configuration.json"))["indentationRules"]
        patterns = [rules[f"{name}IndentPattern"] for name in ("increase", "decrease")]
        self.assertEqual([pattern["flags"] for pattern in patterns], ["i", "i"])
        lines = {
            "    IF x THEN": (True, False),
            "if x then": (True, False),
            "ELSIF x THEN": (True, True),
            "ELSE": (True, True),
            "END_IF;": (False, True),
            "IF x THEN y := 1; END_IF;": (False, False),
            "VAR_YXGLOBAL": (True, False),
            "VAR a : INT; END_VAR": (False, False),
            "END_VAR": (False, True),
            "UNTIL x END_REPEAT;": (False, True),
            "IFx := 1;": (False, False),
            "PROGRAM p": (False, False),
        }
        for line, expected in lines.items():
            found = tuple(
                re.match(pattern["pattern"], line, re.IGNORECASE) is not None
                for pattern in patterns
            )
            with self.subTest(line=line):
                self.assertEqual(found, expected)

    def test_snippets_compile(self):
        snippets = json.loads(read("vscode/snippets/yxst.json"))
        self.assertGreater(len(snippets), 5)
        for name, snippet in snippets.items():
            result = compile_source(snippet_source(snippet["body"]).encode(), "-r")
            with self.subTest(snippet=name):
                self.assertEqual(result.status, 0, result.files.get("out.res"))

    def test_readme_names_every_snippet(self):
        readme = read("vscode/README.md")
        for snippet in json.loads(read("vscode/snippets/yxst.json")).values():
            self.assertIn(f"`{snippet['prefix']}`", readme)


if __name__ == "__main__":
    unittest.main()
