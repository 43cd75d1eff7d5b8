"""Reads C++ sources as far as a look at their structure needs: includes, words, declarations.

A source is read as it stands, without a preprocessor: all branches of an #if count, and so must
close the brackets that they open. What it declares is taken at namespace level, members of
classes are not. Not found are operators, but literal ones are, pointers to functions, but aliases
of such are, and what macros make.
"""

import re
from typing import NamedTuple


class SourceError(Exception):
    pass


# ---------------------------------------------------------------------------------------------
# Tokens
# ---------------------------------------------------------------------------------------------

LEXEME = re.compile(
    r"""
      (?P<comment> //(?:[^\n\\]|\\.)* | /\*.*?\*/ )
    | (?P<directive> ^[ \t]*\#(?://[^\n]*|/\*.*?\*/|[^\n\\]|\\.)* )
    | (?P<text> (?:u8|[uUL])?R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)"
              | (?:u8|[uUL])?"(?:[^"\\\n]|\\.)*" | '(?:[^'\\\n]|\\.)+' )
    | (?P<number> \.?\d(?:'\w|[\w.])* )
    | (?P<word> [A-Za-z_]\w* )
    | (?P<sign> ::|->|<<=?|[-+*/%&|^!=<>]=|&&|\|\||\+\+|--|\.\.\.|[^\s\w] )
    """,
    re.VERBOSE | re.MULTILINE | re.DOTALL,
)
INCLUDE = re.compile(r'\s*#\s*include\s*"([^"]+)"')
DEFINE = re.compile(r"\s*#\s*define\s+(\w+)")
DIRECTIVE_NAME = re.compile(r"\s*#\s*\w*")
CLOSING = {"(": ")", "[": "]", "{": "}"}
A_TEXT = '""'  # stands for every literal of characters


class Token(NamedTuple):
    text: str
    line: int

    def is_word(self):
        return self.text.isidentifier()


def lexemes(text, line):
    """The kind, text and line of everything but white space."""
    begin = 0
    for match in LEXEME.finditer(text):
        line += text.count("\n", begin, match.start())
        begin = match.start()
        yield match.lastgroup, match[0], line


def code_tokens(text, line=1):
    """The tokens of code without comments and directives."""
    for kind, lexeme, place in lexemes(text, line):
        if kind not in ("comment", "directive"):
            yield Token(A_TEXT if kind == "text" else lexeme, place)


def partners(tokens):
    """Where the bracket that is opened at an index is closed."""
    closed_at = {}
    opened = []
    for index, token in enumerate(tokens):
        if token.text in CLOSING:
            opened.append(index)
        elif token.text in CLOSING.values():
            if not opened or CLOSING[tokens[opened[-1]].text] != token.text:
                raise SourceError(f"line {token.line}: {token.text} closes nothing")
            closed_at[opened.pop()] = index
    if opened:
        raise SourceError(f"line {tokens[opened[-1]].line}: a bracket is not closed")
    return closed_at


# ---------------------------------------------------------------------------------------------
# Statements at namespace level
#
# The outline of a statement is its tokens without what stands in brackets: of these only the
# opening one is there, of template arguments and of alignas(...) and its like nothing.
# ---------------------------------------------------------------------------------------------

SPECIFIERS = {"alignas", "decltype", "__attribute__"}  # with something in parentheses
TYPE_KEYWORDS = {"class", "struct", "union", "enum"}
NO_TYPE_NAMES = TYPE_KEYWORDS | {"final"}


def without_brackets(tokens, begin, end, closed_at):
    while begin < end:
        yield tokens[begin]
        begin = closed_at.get(begin, begin) + 1


def without_specifiers(tokens):
    before = ""
    for token in tokens:
        if token.text not in SPECIFIERS and before not in SPECIFIERS:
            yield token
        before = token.text


def without_arguments(tokens):
    """Leaves out < ... > after a word."""
    kept = []
    depth = 0
    for token in tokens:
        follows_name = kept and kept[-1].is_word() and kept[-1].text != "operator"
        if token.text == "<" and follows_name:
            depth += 1
        elif token.text == ">" and depth:
            depth -= 1
        elif not depth:
            kept.append(token)
    return kept


def is_macro_call(outline):
    """Whether it begins with MACRO(...) and goes on with what MACRO does not declare."""
    if len(outline) < 3 or outline[1].text != "(":
        return False
    return outline[0].is_word() and outline[2].is_word()


def without_prefix(outline):
    while outline and outline[0].text in ("template", "["):
        outline = outline[1:]
    return without_prefix(outline[2:]) if is_macro_call(outline) else outline


def outline_of(tokens, begin, end, closed_at):
    flat = without_brackets(tokens, begin, end, closed_at)
    return without_prefix(without_arguments(without_specifiers(flat)))


def texts_of(tokens):
    return [token.text for token in tokens]


def opens_scope(outline):
    """Whether the "{" after it opens a namespace or a linkage."""
    texts = texts_of(outline)
    return "namespace" in texts[:2] or texts == ["extern", A_TEXT]


def parameters_at(outline):
    """The index of the "(" of a function's parameters, or None."""
    texts = texts_of(outline)
    for index, text in enumerate(texts):
        before = texts[index - 1] if index else ""
        is_declarator = texts[index : index + 2] == ["(", "("]  # (*name)(...)
        if text == "(" and before and not is_declarator:
            return index
        if text in ("=", "{", ";") and before != "operator":
            return None
    return None


def is_function(outline):
    texts = texts_of(outline)
    return bool(texts) and texts[0] not in TYPE_KEYWORDS and parameters_at(outline) is not None


def begins_body(outline):
    """Whether the "{" after it begins a function's body, and not the value of a member."""
    if not is_function(outline):
        return False
    rest = texts_of(outline[parameters_at(outline) :])
    return ":" not in rest or rest[-1] in ("(", "{")


def statement_end(tokens, begin, closed_at):
    """Where the statement that begins there ends: after the "{" if that opens a scope."""
    index = begin
    while index < len(tokens):
        if tokens[index].text in (";", "}"):
            return index + 1
        if tokens[index].text == "{":
            outline = outline_of(tokens, begin, index, closed_at)
            if opens_scope(outline):
                return index + 1
            if begins_body(outline):
                return closed_at[index] + 1
        index = closed_at.get(index, index) + 1
    return index


# ---------------------------------------------------------------------------------------------
# Declarations
# ---------------------------------------------------------------------------------------------


class Declaration(NamedTuple):
    """What a statement declares.

    kind is "function", "variable", "type", "alias", "enumerator" or "macro". The name of a member
    that is defined outside its class is empty. A prototype, an extern variable and a type without
    its members are no definitions.
    """

    name: str
    kind: str
    is_definition: bool
    line: int
    end: int


def name_before(outline, index):
    """The name that ends before that index; empty for an operator and a member."""
    if index == 0 or not outline[index - 1].is_word():
        return ""
    name = outline[index - 1].text
    before = outline[index - 2].text if index > 1 else ""
    return "" if before in ("::", "~", "operator") or name == "operator" else name


def position(texts, stops):
    """The index of the first of the stops, the end if there is none."""
    return next((index for index, text in enumerate(texts) if text in stops), len(texts))


def type_name(outline):
    texts = texts_of(outline)
    head = [token for token in outline[1 : position(texts, (":", "{", ";"))] if token.is_word()]
    names = [token.text for token in head if token.text not in NO_TYPE_NAMES]
    return names[-1] if names else ""


def enumerators(statement, closed_at):
    """The names in the braces of an enum."""
    begin = position(texts_of(statement), "{")
    inner = list(without_brackets(statement, begin + 1, closed_at[begin], closed_at))
    for index, token in enumerate(inner):
        if token.is_word() and (index == 0 or inner[index - 1].text == ","):
            yield token.text


def declared_names(outline):
    """The names of variables: before what initialises them, between commas."""
    pieces = [[]]
    for token in outline:
        if token.text == ",":
            pieces.append([])
        else:
            pieces[-1].append(token)
    for piece in pieces:
        yield name_before(piece, position(texts_of(piece), ("=", "{", "[", "(", ":", ";")))


def type_declarations(outline, statement):
    """A type, and the names that it gives to its values."""
    texts = texts_of(outline)
    is_definition = "{" in texts
    yield type_name(outline), "type", is_definition
    if texts[0] == "enum" and is_definition and texts[1] not in ("class", "struct"):
        for name in enumerators(statement, partners(statement)):
            yield name, "enumerator", True


def function_declarations(outline, ends_in_body):
    texts = texts_of(outline)
    kind = "variable" if "constexpr" in texts and not ends_in_body else "function"
    is_definition = ends_in_body or kind == "variable"
    yield name_before(outline, parameters_at(outline)), kind, is_definition


def variable_declarations(outline):
    texts = texts_of(outline)
    is_definition = "extern" not in texts or "=" in texts
    for name in declared_names(outline):
        yield name, "variable", is_definition


def alias_declarations(outline):
    texts = texts_of(outline)
    if texts[0] == "typedef":
        yield name_before(outline, len(outline) - 1), "alias", True
    elif texts[2:3] == ["="]:
        yield texts[1], "alias", True


def parts_of(outline, statement):
    """The name, kind and completeness of all that a statement declares."""
    first = outline[0].text
    if first in ("}", ";", "static_assert") or opens_scope(outline[:-1]):
        return []
    if first in ("using", "typedef"):
        return alias_declarations(outline)
    if first in TYPE_KEYWORDS:
        return type_declarations(outline, statement)
    if is_function(outline):
        return function_declarations(outline, statement[-1].text == "}")
    return variable_declarations(outline)


def statements(tokens):
    closed_at = partners(tokens)
    begin = 0
    while begin < len(tokens):
        end = statement_end(tokens, begin, closed_at)
        outline = outline_of(tokens, begin, end, closed_at)
        if outline:
            yield outline, tokens[begin:end]
        begin = end


def declarations(tokens):
    for outline, statement in statements(tokens):
        for name, kind, is_definition in parts_of(outline, statement):
            yield Declaration(name, kind, is_definition, outline[0].line, statement[-1].line)


def namespaces(tokens):
    """The names of the namespaces that are opened."""
    for outline, _ in statements(tokens):
        texts = texts_of(outline)
        if opens_scope(outline[:-1]) and texts[-1] == "{":
            yield from (text for text in texts if text.isidentifier() and text != "namespace")


# ---------------------------------------------------------------------------------------------
# A whole source
# ---------------------------------------------------------------------------------------------


class Source(NamedTuple):
    lines: int
    includes: list  # Tokens: what stands in quotes after #include
    tokens: list  # of the code, in its order
    directive_tokens: list  # of the other directives: the bodies of macros, conditions
    declarations: list
    namespaces: set


def directives(text):
    for kind, lexeme, line in lexemes(text, 1):
        if kind == "directive":
            yield Token(lexeme, line)


def tokens_of_directive(directive):
    return code_tokens(DIRECTIVE_NAME.sub("", directive.text, count=1), directive.line)


def macros(found):
    for directive in found:
        define = DEFINE.match(directive.text)
        if define:
            yield Declaration(define[1], "macro", True, directive.line, directive.line)


def read(text):
    found = list(directives(text))
    included = [(INCLUDE.match(directive.text), directive.line) for directive in found]
    others = [directive for directive, (match, _) in zip(found, included) if not match]
    tokens = list(code_tokens(text))
    return Source(
        lines=text.count("\n"),
        includes=[Token(match[1], line) for match, line in included if match],
        tokens=tokens,
        directive_tokens=[token for each in others for token in tokens_of_directive(each)],
        declarations=[*declarations(tokens), *macros(found)],
        namespaces=set(namespaces(tokens)),
    )
