// Declarations: their form, the names, the types and the initial values in them.

#include "check/rules_table.h"

#include "qyx_types.h"

#include <iterator>

namespace {

using Maybe = std::optional<Help>;

// ---------------------------------------------------------------------------------------------
// Form
// ---------------------------------------------------------------------------------------------

Maybe Address(const Context& context) {
    const bool isAt = IsDeclaring(context) && Expects(context, TOKEN_COLON) &&
                      Near(context, 0).isSpelled("AT"_L1);
    const QChar area = Near(context, 1).text.isEmpty() ? QChar() : Near(context, 1).text.front();
    const bool isDirect = Near(context, 0).text == QLatin1String("%") &&
                          ExpectsOneOf(context, {TOKEN_IDENTIFIER, TOKEN_NUMBER}) &&
                          QStringLiteral("IQMiqm").contains(area);
    if (!isAt && !isDirect) {
        return std::nullopt;
    }
    return Say(
        QStringLiteral("variables have no addresses: declare an input in `VAR_INPUT`, an "
                       "output in `VAR_OUTPUT`, or a register in `VAR_YXREGISTER`"));
}

// The type that stands after the next ":" of the declaration; an empty piece if none does.
Piece TypeOfDeclaration(const Context& context) {
    int index = context.here;
    while (PieceAt(context, index).isOneOf({TOKEN_COMMA, TOKEN_IDENTIFIER})) {
        ++index;
    }
    return PieceAt(context, index).is(TOKEN_COLON) ? PieceAt(context, index + 1) : Piece();
}

QString DeclarationOf(const Piece& name, const Piece& type) {
    return QStringLiteral("%1 : %2;").arg(name.text, type.text);
}

Maybe TypeBeforeName(const Context& context) {
    const Piece type = Near(context, 0);
    const Piece name = Near(context, 1);
    if (!IsError(context, TXT_USING_RESERVED_WORD) || !IsTypeName(type) ||
        !name.is(TOKEN_IDENTIFIER)) {
        return std::nullopt;
    }
    const Span both = {type.span.begin, name.span.end};
    const QString declared = QStringLiteral("%1 : %2").arg(name.text, type.text);
    return SayAndOffer(
        QStringLiteral("the name stands before its type: write `%1`").arg(declared), both,
        {{both, declared}});
}

Maybe MissingColon(const Context& context) {
    const Piece type = Near(context, 0);
    if (!IsDeclaring(context) || !Expects(context, TOKEN_COLON) || !IsTypeName(type) ||
        !Near(context, -1).is(TOKEN_IDENTIFIER)) {
        return std::nullopt;
    }
    return SayAndOffer(QStringLiteral("a `:` stands between a name and its type: write `%1 : %2`")
                           .arg(Near(context, -1).text, type.text),
                       After(Near(context, -1)),
                       {PutInAfter(Near(context, -1), QStringLiteral(" :"))});
}

// The name before the ":" that stands so many pieces before the error.
Piece NameBeforeColon(const Context& context, int distance) {
    const bool isThere = IsDeclaring(context) && Near(context, -distance).is(TOKEN_COLON);
    return isThere ? Near(context, -distance - 1) : Piece();
}

Maybe Enumeration(const Context& context) {
    const Piece name = NameBeforeColon(context, 1);
    if (!Near(context, 0).is(TOKEN_LEFT_PARENTHESIS) || !Near(context, 1).is(TOKEN_IDENTIFIER) ||
        !name.is(TOKEN_IDENTIFIER)) {
        return std::nullopt;
    }
    return Say(QStringLiteral("there are no enumerations: write `%1 : INT`, and a constant for "
                              "each name, as in `%2`; a label of `CASE` is the number itself")
                   .arg(name.text, ConstantsOfEnumeration(context, context.here + 1)));
}

Maybe RangeOfType(const Context& context) {
    const bool isAfterType =
        IsTypeName(Near(context, -1)) && !NameBeforeColon(context, 2).span.isEmpty();
    int last = context.here;
    while (PieceAt(context, last)
               .isOneOf({TOKEN_LEFT_PARENTHESIS, TOKEN_NUMBER, TOKEN_MINUS, TOKEN_DOT_DOT,
                         TOKEN_IDENTIFIER})) {
        ++last;
    }
    const Span span = {Near(context, 0).span.begin, PieceAt(context, last).span.end};
    if (!isAfterType || !Near(context, 0).is(TOKEN_LEFT_PARENTHESIS) ||
        !PieceAt(context, last).is(TOKEN_RIGHT_PARENTHESIS)) {
        return std::nullopt;
    }
    return SayAndMend(QStringLiteral("a type has neither a range nor a size: leave out `%1`")
                          .arg(context.source.text(span).toString()),
                      span, {BlankOut(context.source, span)}, {TakeOut(context.source, span)});
}

Maybe MissingType(const Context& context) {
    const bool hasValue = Expects(context, TOKEN_COLON) && Near(context, 0).is(TOKEN_ASSIGN);
    const bool hasColon = IsError(context, TXT_IDENTIFIER_EXPECTED_BUT) &&
                          Near(context, -1).is(TOKEN_COLON) &&
                          Near(context, 0).isOneOf({TOKEN_SEMICOLON, TOKEN_ASSIGN});
    const Piece name = Near(context, hasValue ? -1 : -2);
    if (!IsDeclaring(context) || !name.is(TOKEN_IDENTIFIER) || (!hasValue && !hasColon)) {
        return std::nullopt;
    }
    return Say(QStringLiteral("a declaration names the type, as in `%1 : INT`").arg(name.text));
}

Maybe MissingName(const Context& context) {
    if (!IsError(context, TXT_USING_RESERVED_WORD) || !Near(context, 0).is(TOKEN_SEMICOLON)) {
        return std::nullopt;
    }
    return SayAndOffer(
        QStringLiteral("this `;` is one too many: a declaration has one, at its end"), {},
        {TakeOut(context.source, Near(context, 0).span)});
}

// Moves the comment that begins there; nothing if the line has another after it, or no end of it.
Mend CommentAtEndOfLine(const Source& source, int begin) {
    const int endOfLine = source.lineAt(source.placeOf(begin).line).end;
    const QString line = source.text({begin, endOfLine}).toString();
    const int size = line.indexOf(QLatin1String("*)")) + 2;
    const QString rest = line.mid(size);
    const bool canMove = line.startsWith(QLatin1String("(*")) && size > 3 &&
                         !rest.contains(QLatin1String("(*")) &&
                         !rest.contains(QLatin1String("//")) && !rest.trimmed().isEmpty();
    return canMove ? Mend{TakeOut(source, {begin, begin + size}),
                          {{endOfLine, endOfLine}, u' ' + line.left(size)}}
                   : Mend();
}

Maybe CommentBeforeName(const Context& context) {
    const int begin = context.facts.error.token.begin;
    const QStringView text = context.source.text({begin, begin + 2});
    const bool isComment = text == QLatin1String("(*") || text == QLatin1String("//");
    if (!IsError(context, TXT_IDENTIFIER_EXPECTED_BUT) || !isComment) {
        return std::nullopt;
    }
    return SayAndOffer(QStringLiteral("no comment may stand here: put it at the end of the line"),
                       {}, CommentAtEndOfLine(context.source, begin));
}

Maybe MisplacedConstant(const Context& context) {
    if (!IsError(context, TXT_THIS_VAIABLE_CANNOT_BE_CONSTANT)) {
        return std::nullopt;
    }
    const bool isProgram = IsIn(context, TOKEN_PROGRAM);
    return Say(isProgram ? QStringLiteral("constants stand in `VAR` or `VAR_GLOBAL`")
                         : QStringLiteral("constants stand in `VAR`"));
}

Maybe ConstantWithoutValue(const Context& context) {
    const Piece type = Near(context, -1);
    const Piece name = Near(context, -3);
    const bool isPlain = IsDeclaring(context) && Expects(context, TOKEN_ASSIGN) &&
                         Near(context, 0).is(TOKEN_SEMICOLON) && name.is(TOKEN_IDENTIFIER);
    if (!isPlain) {
        return std::nullopt;
    }
    const QString value =
        type.isSpelled("BOOL"_L1) ? QStringLiteral("TRUE") : QStringLiteral("1");
    return Say(QStringLiteral("a constant gets its value where it is declared, as in "
                              "`CONSTANT %1 : %2 := %3;`")
                   .arg(name.text, type.text, value));
}

Maybe ArgumentWithValue(const Context& context) {
    if (!IsError(context, TXT_THIS_VAIABLE_CANNOT_BE_INITIALIZED)) {
        return std::nullopt;
    }
    int end = context.here;
    while (!PieceAt(context, end).span.isEmpty() && !PieceAt(context, end).is(TOKEN_SEMICOLON)) {
        ++end;
    }
    const Span value = {Near(context, 0).span.begin, PieceAt(context, end - 1).span.end};
    return SayAndOffer(QStringLiteral("every call gives %1 its value: leave out the one here")
                           .arg(Code(Near(context, -3))),
                       {}, {TakeOut(context.source, value)});
}

// ---------------------------------------------------------------------------------------------
// Names
// ---------------------------------------------------------------------------------------------

bool IsName(const Piece& piece) {
    return !piece.text.isEmpty() && (piece.text.front().isLetter() || piece.text.front() == '_');
}

Maybe ReservedName(const Context& context) {
    const bool isName =
        IsErrorOneOf(context, {TXT_USING_RESERVED_WORD, TXT_PROGRAMNAME_EXPECTED_BUT,
                               TXT_FUNCTIONNAME_EXPECTED_BUT, TXT_PROCEDURENAME_EXPECTED_BUT});
    const Piece name = Near(context, 0);
    const bool isMissing = !IsDeclaring(context) && IsSectionBegin(name.code);
    const bool isDeclared = !IsDeclaring(context) || Near(context, 1).is(TOKEN_COLON);
    if (!isName || !IsName(name) || isMissing || !isDeclared) {
        return std::nullopt;
    }
    return Say(
        QStringLiteral("%1 is a word of the language in any spelling: choose another name, "
                       "such as `%2_1`")
            .arg(Code(name), name.text));
}

Maybe MissingUnitName(const Context& context) {
    if (!IsErrorOneOf(context, {TXT_PROGRAMNAME_EXPECTED_BUT, TXT_FUNCTIONNAME_EXPECTED_BUT,
                                TXT_PROCEDURENAME_EXPECTED_BUT}) ||
        !IsSectionBegin(Near(context, 0).code)) {
        return std::nullopt;
    }
    return Say(QStringLiteral("the name is missing after %1").arg(Code(Near(context, -1))),
               After(Near(context, -1)));
}

Maybe NameOfFunction(const Context& context) {
    const Piece name = Near(context, 0);
    const std::optional<Callee> callee = CalleeNamed(context, name.text);
    const bool isDeclared =
        IsError(context, TXT_USING_FUNCTION_NAME) && Near(context, 1).is(TOKEN_COLON);
    if (!callee || (!isDeclared && !IsError(context, TXT_DUPLICATE_FUNCTION_NAME))) {
        return std::nullopt;
    }
    const QString kind =
        callee->isFunction ? QStringLiteral("function") : QStringLiteral("function block");
    const QString which =
        callee->span.isEmpty()
            ? QStringLiteral("a built-in %1").arg(kind)
            : QStringLiteral("the %1 of line %2").arg(kind).arg(LineOf(context, callee->span));
    return Say(QStringLiteral("%1 is %2: choose another name, such as `%3_1`")
                   .arg(Code(name), which, name.text.toString()));
}

Maybe DeclaredTwice(const Context& context) {
    const NameFact* const name = VariableNamed(context, Near(context, 0).text);
    if (!IsError(context, TXT_DUPLICATE_VARIABLE_NAME) || !IsDeclaring(context) ||
        name == nullptr) {
        return std::nullopt;
    }
    return Say(QStringLiteral("%1 is declared on line %2 already; capital and small letters are "
                              "the same")
                   .arg(Code(Near(context, 0)))
                   .arg(LineOf(context, name->span)),
               name->span);
}

Maybe HyphenInName(const Context& context) {
    const bool touches =
        TouchesPrevious(context, context.here) && TouchesPrevious(context, context.here + 1);
    if (!Expects(context, TOKEN_COLON) || !IsDeclaring(context) || !touches ||
        !Near(context, 0).is(TOKEN_MINUS) || !Near(context, 1).is(TOKEN_IDENTIFIER)) {
        return std::nullopt;
    }
    return SayAndOffer(QStringLiteral("a name has no `-` in it: write `%1_%2`")
                           .arg(Near(context, -1).text, Near(context, 1).text),
                       {Near(context, -1).span.begin, Near(context, 1).span.end},
                       {InPlaceOf(Near(context, 0), QStringLiteral("_"))});
}

Maybe DigitBeforeName(const Context& context) {
    const Piece number = Near(context, 0);
    const bool isUnit =
        IsError(context, TXT_IDENTIFIER_EXPECTED_BUT_NUMBER_FOUND) && !IsDeclaring(context);
    const bool isVariable =
        IsDeclaring(context) && Expects(context, TOKEN_IDENTIFIER) && number.is(TOKEN_NUMBER);
    const bool isTouched =
        TouchesPrevious(context, context.here + 1) && Near(context, 1).is(TOKEN_IDENTIFIER);
    if ((!isUnit && !isVariable) || !isTouched) {
        return std::nullopt;
    }
    return SayAndOffer(QStringLiteral("a name begins with a letter or `_`: write `_%1%2`")
                           .arg(number.text, Near(context, 1).text),
                       {number.span.begin, Near(context, 1).span.end},
                       {PutInBefore(number, QStringLiteral("_"))});
}

Maybe LetterOfNoName(const Context& context) {
    const Piece letter = Near(context, 0);
    const bool isForeign = letter.is(TOKEN_UNKNOWN) && letter.text.front().isLetter();
    const bool touches =
        TouchesPrevious(context, context.here) || TouchesPrevious(context, context.here + 1);
    if (!isForeign || !touches) {
        return std::nullopt;
    }
    return Say(
        QStringLiteral("%1 is no letter of names; those are A to Z, a to z, `_`, А to Я and "
                       "а to я")
            .arg(Code(letter)));
}

// ---------------------------------------------------------------------------------------------
// Types
// ---------------------------------------------------------------------------------------------

// The type that is unknown or disabled; an empty piece if the error is about something else.
Piece RefusedType(const Context& context) {
    const std::optional<UnknownName> unknown = Unknown(context);
    const bool isUnknown = unknown && unknown->role == UnknownName::Role::Type;
    const bool isDisabled = IsErrorOneOf(
        context, {TXT_STRING_DISABLED_IN_CURRENT_VERTION, TXT_ARRAY_DISABLED_IN_CURRENT_VERTION});
    return isUnknown || isDisabled ? Near(context, 0) : Piece();
}

struct Replacement {
    QLatin1String type;
    QLatin1String text;
    QLatin1String certain = QLatin1String();  // a type that does for it, if one does
    QLatin1String offered = certain;          // the type that the text names, if that is one
};

constexpr QLatin1String NO_TIMES =
    "there are no times and dates: count in a `UDINT`, with `TICK` for a clock"_L1;
constexpr QLatin1String NO_TEXTS =
    "no variable holds a text: give each text a number, such as a `USINT`"_L1;
constexpr QLatin1String NO_STRUCTURES =
    "there are no structures: declare a variable for each part"_L1;
constexpr QLatin1String NO_POINTERS =
    "there are no pointers: pass a variable by reference, in `VAR_REF`"_L1;
constexpr QLatin1String NO_TIMERS =
    "there are no timers: remember `TICK` in a `UDINT := 0` and compare the difference"_L1;
constexpr QLatin1String NO_EDGES =
    "there are no edge detectors: remember the last value in a `BOOL := FALSE` and compare"_L1;
constexpr QLatin1String NO_COUNTERS = "there are no counters: count in a `UINT := 0`"_L1;

constexpr Replacement REPLACEMENTS[] = {
    {"BYTE"_L1, "there is no `BYTE`: use `USINT`, which has 8 bits"_L1, "USINT"_L1},
    {"WORD"_L1, "there is no `WORD`: use `UINT`, which has 16 bits"_L1, "UINT"_L1},
    {"DWORD"_L1, "there is no `DWORD`: use `UDINT`, which has 32 bits"_L1, "UDINT"_L1},
    {"LWORD"_L1, "there is no type of 64 bits: use two `UDINT`"_L1},
    {"LINT"_L1, "there is no integer of 64 bits: use `DINT`, or `LREAL` for larger values"_L1,
     "LREAL"_L1, ""_L1},
    {"ULINT"_L1, "there is no integer of 64 bits: use `UDINT`, or `LREAL` for larger values"_L1,
     "LREAL"_L1, ""_L1},
    {"BOOLEAN"_L1, "a truth value has the type `BOOL`"_L1, "BOOL"_L1},
    {"BIT"_L1, "a truth value has the type `BOOL`"_L1, "BOOL"_L1},
    {"INTEGER"_L1, "an integer of 16 bits has the type `INT`, one of 32 bits `DINT`"_L1,
     "DINT"_L1, ""_L1},
    {"LONG"_L1, "an integer of 32 bits has the type `DINT`"_L1, "DINT"_L1},
    {"SHORT"_L1, "an integer of 16 bits has the type `INT`"_L1, "INT"_L1},
    {"FLOAT"_L1, "a real number has the type `REAL`"_L1, "REAL"_L1},
    {"SINGLE"_L1, "a real number has the type `REAL`"_L1, "REAL"_L1},
    {"DOUBLE"_L1, "a real number of double precision has the type `LREAL`"_L1, "LREAL"_L1},
    {"INT8"_L1, "an integer of 8 bits has the type `SINT`"_L1, "SINT"_L1},
    {"INT16"_L1, "an integer of 16 bits has the type `INT`"_L1, "INT"_L1},
    {"INT32"_L1, "an integer of 32 bits has the type `DINT`"_L1, "DINT"_L1},
    {"UINT8"_L1, "an unsigned integer of 8 bits has the type `USINT`"_L1, "USINT"_L1},
    {"UINT16"_L1, "an unsigned integer of 16 bits has the type `UINT`"_L1, "UINT"_L1},
    {"UINT32"_L1, "an unsigned integer of 32 bits has the type `UDINT`"_L1, "UDINT"_L1},
};

constexpr Replacement TYPES_OF_TIME[] = {
    {"TIME"_L1, NO_TIMES},          {"LTIME"_L1, NO_TIMES},       {"DATE"_L1, NO_TIMES},
    {"TOD"_L1, NO_TIMES},           {"TIME_OF_DAY"_L1, NO_TIMES}, {"DT"_L1, NO_TIMES},
    {"DATE_AND_TIME"_L1, NO_TIMES}, {"LDATE"_L1, NO_TIMES},       {"LDT"_L1, NO_TIMES},
    {"LTOD"_L1, NO_TIMES},
};

constexpr Replacement TYPES_OF_TEXT[] = {
    {"STRING"_L1, NO_TEXTS},
    {"WSTRING"_L1, NO_TEXTS},
    {"CHAR"_L1, "a character is a number: use `USINT`"_L1, ""_L1, "USINT"_L1},
    {"WCHAR"_L1, "a character is a number: use `UINT`"_L1, ""_L1, "UINT"_L1},
};

constexpr Replacement TYPES_OF_PARTS[] = {
    {"ARRAY"_L1, "there are no arrays: declare a variable for each element"_L1},
    {"STRUCT"_L1, NO_STRUCTURES},
    {"UNION"_L1, NO_STRUCTURES},
    {"POINTER"_L1, NO_POINTERS},
    {"REF_TO"_L1, NO_POINTERS},
    {"REFERENCE"_L1, NO_POINTERS},
};

constexpr Replacement STANDARD_BLOCKS[] = {
    {"TON"_L1, NO_TIMERS},
    {"TOF"_L1, NO_TIMERS},
    {"TP"_L1, NO_TIMERS},
    {"RTC"_L1, NO_TIMERS},
    {"R_TRIG"_L1, NO_EDGES},
    {"F_TRIG"_L1, NO_EDGES},
    {"CTU"_L1, NO_COUNTERS},
    {"CTD"_L1, NO_COUNTERS},
    {"CTUD"_L1, NO_COUNTERS},

    {"SR"_L1, "there are no latches: write `q := set OR (q AND NOT reset);`"_L1},
    {"RS"_L1, "there are no latches: write `q := (set OR q) AND NOT reset;`"_L1},
};

Mend InPlaceOfType(const Piece& type, QLatin1String other) {
    return other.isEmpty() ? Mend() : Mend{InPlaceOf(type, other)};
}

template <std::size_t COUNT>
Maybe ReplacementIn(const Context& context, const Replacement (&rows)[COUNT]) {
    const Piece type = RefusedType(context);
    for (const Replacement& row : rows) {
        if (type.isSpelled(row.type)) {
            return SayAndMend(row.text, {}, InPlaceOfType(type, row.certain),
                              InPlaceOfType(type, row.offered));
        }
    }
    return std::nullopt;
}

Maybe TypeOfOtherDialects(const Context& context) {
    return ReplacementIn(context, REPLACEMENTS);
}

Maybe TypeOfTime(const Context& context) {
    return ReplacementIn(context, TYPES_OF_TIME);
}

Maybe TypeOfText(const Context& context) {
    return ReplacementIn(context, TYPES_OF_TEXT);
}

Maybe TypeOfParts(const Context& context) {
    return ReplacementIn(context, TYPES_OF_PARTS);
}

Maybe StandardBlock(const Context& context) {
    return ReplacementIn(context, STANDARD_BLOCKS);
}

Maybe InstanceOfBlock(const Context& context) {
    const Piece type = RefusedType(context);
    const std::optional<Callee> callee = CalleeNamed(context, type.text);
    if (type.span.isEmpty() || !callee || callee->isFunction) {
        return std::nullopt;
    }
    QStringList formals;
    for (const Formal& formal : callee->formals) {
        formals.append(formal.name);
    }
    return Say(QStringLiteral("function blocks have no instances: leave this declaration out and "
                              "call `%1(%2)` itself")
                   .arg(callee->name, formals.join(QStringLiteral(", "))));
}

// Makes a function block of a function up to its END_FUNCTION; nothing if that does not come.
Mend BlockOfFunction(const Context& context, const UnitFact& unit, const Piece& type) {
    int end = context.here;
    while (!PieceAt(context, end).span.isEmpty() && !IsUnitBegin(PieceAt(context, end).code) &&
           !PieceAt(context, end).is(TOKEN_END_FUNCTION)) {
        ++end;
    }
    const Span head = {unit.span.begin, type.span.end};
    return PieceAt(context, end).is(TOKEN_END_FUNCTION)
               ? Mend{{head,
                       QStringLiteral("FUNCTION_BLOCK ") + NameOf(context, unit).toString()},
                      InPlaceOf(PieceAt(context, end), TextOf(TOKEN_END_FUNCTION_BLOCK))}
               : Mend();
}

Maybe FunctionWithoutResult(const Context& context) {
    const Piece type = RefusedType(context);
    if (!type.isSpelled("VOID"_L1) || IsDeclaring(context)) {
        return std::nullopt;
    }
    const UnitFact& unit = *OpenUnit(context);
    return SayAndOffer(
        QStringLiteral("what has no result is a function block: write `FUNCTION_BLOCK %1`")
            .arg(NameOf(context, unit)),
        {}, BlockOfFunction(context, unit, type));
}

Maybe MisspeltType(const Context& context) {
    const Piece type = RefusedType(context);
    std::vector<QString> names;
    for (const typ& row : TypsTable) {
        if (row.typClass != TypClass::Text) {
            names.emplace_back(row.name);
        }
    }
    const QString name = MostLike(type.text, names);
    if (type.span.isEmpty() || name.isEmpty()) {
        return std::nullopt;
    }
    return SayAndOffer(QStringLiteral("did you mean `%1`?").arg(name), {},
                       {InPlaceOf(type, name)});
}

template <std::size_t COUNT>
QLatin1String TextIn(const Piece& type, const Replacement (&rows)[COUNT]) {
    for (const Replacement& row : rows) {
        if (type.isSpelled(row.type)) {
            return row.text;
        }
    }
    return {};
}

// What is to be said of a type that is none here; empty for any other.
QLatin1String AdviceOnForeignType(const Piece& type) {
    for (const QLatin1String text :
         {TextIn(type, REPLACEMENTS), TextIn(type, TYPES_OF_TIME), TextIn(type, TYPES_OF_TEXT),
          TextIn(type, TYPES_OF_PARTS), TextIn(type, STANDARD_BLOCKS)}) {
        if (!text.isEmpty()) {
            return text;
        }
    }
    return {};
}

Maybe SeveralNames(const Context& context) {
    const Piece type = TypeOfDeclaration(context);
    if (!IsDeclaring(context) || !Expects(context, TOKEN_COLON) ||
        !Near(context, 0).is(TOKEN_COMMA) || type.span.isEmpty()) {
        return std::nullopt;
    }
    QStringList each = {DeclarationOf(Near(context, -1), type)};
    for (int comma = 0; Near(context, comma).is(TOKEN_COMMA); comma += 2) {
        each.append(DeclarationOf(Near(context, comma + 1), type));
    }
    const QLatin1String advice = AdviceOnForeignType(type);
    if (!advice.isEmpty()) {
        return Say(QStringLiteral("each declaration has one name, and %1").arg(advice));
    }
    const QString all = each.join(u' ');
    const Piece end = PieceAt(context, IndexOf(context, type.span.end));
    return SayAndOffer(QStringLiteral("each declaration has one name: write `%1`").arg(all), {},
                       end.is(TOKEN_SEMICOLON)
                           ? Mend{{{Near(context, -1).span.begin, end.span.end}, all}}
                           : Mend());
}

// ---------------------------------------------------------------------------------------------
// Initial values
// ---------------------------------------------------------------------------------------------

// The name that the open declaration declares.
QString DeclaredName(const Context& context) {
    const Facts& facts = context.facts;
    const int name = facts.declarations[static_cast<std::size_t>(facts.open.declaration)].name;
    return name == NONE
               ? QString()
               : facts.textOf(facts.names[static_cast<std::size_t>(name)].text).toString();
}

Maybe NumberForTruth(const Context& context) {
    const Piece value = Near(context, 0);
    if (!IsDeclaring(context) || !Expects(context, TOKEN_TRUE) ||
        (value.text != QLatin1String("0") && value.text != QLatin1String("1"))) {
        return std::nullopt;
    }
    const Token literal = value.text == QLatin1String("1") ? TOKEN_TRUE : TOKEN_FALSE;
    return SayAndOffer(QStringLiteral("a `BOOL` is no number: write %1").arg(Code(literal)), {},
                       {InPlaceOf(value, TextOf(literal))});
}

Maybe TruthForNumber(const Context& context) {
    if (!IsDeclaring(context) || !Expects(context, TOKEN_NUMBER) ||
        !Near(context, 0).isOneOf({TOKEN_TRUE, TOKEN_FALSE})) {
        return std::nullopt;
    }
    return Say(QStringLiteral("%1 is a number: declare it as `%2 : BOOL`, or begin with 0 or 1")
                   .arg(Code(DeclaredName(context)), DeclaredName(context)));
}

bool IsOperator(const Piece& piece) {
    return IsComparison(piece) || IsLogical(piece) ||
           piece.isOneOf({TOKEN_PLUS, TOKEN_MINUS, TOKEN_MULTIPLY, TOKEN_DIVIDE, TOKEN_MOD,
                          TOKEN_POWER, TOKEN_SHL, TOKEN_SHR, TOKEN_ROL, TOKEN_ROR});
}

Maybe ComputedInitialValue(const Context& context) {
    const Piece found = Near(context, 0);
    const bool begins =
        ExpectsOneOf(context, {TOKEN_NUMBER, TOKEN_TRUE}) &&
        found.isOneOf({TOKEN_IDENTIFIER, TOKEN_LEFT_PARENTHESIS, TOKEN_NOT, TOKEN_TICK});
    const bool goesOn = Expects(context, TOKEN_SEMICOLON) && IsOperator(found) &&
                        Near(context, -1).isOneOf({TOKEN_NUMBER, TOKEN_TRUE, TOKEN_FALSE}) &&
                        !found.is(TOKEN_EQUAL);
    if (!IsDeclaring(context) || (!begins && !goesOn)) {
        return std::nullopt;
    }
    return Say(QStringLiteral("an initial value is a literal; assign this one in a statement, "
                              "`%1 := ...;`")
                   .arg(DeclaredName(context)));
}

}  // namespace

Rules RulesOfDeclarations() {
    return {{"address"_L1, Address},
            {"several-names"_L1, SeveralNames},
            {"type-before-name"_L1, TypeBeforeName},
            {"missing-colon"_L1, MissingColon},
            {"enumeration"_L1, Enumeration},
            {"range-of-type"_L1, RangeOfType},
            {"missing-type"_L1, MissingType},
            {"double-semicolon"_L1, MissingName},
            {"comment-before-name"_L1, CommentBeforeName},
            {"misplaced-constant"_L1, MisplacedConstant},
            {"constant-without-value"_L1, ConstantWithoutValue},
            {"argument-with-value"_L1, ArgumentWithValue},
            {"missing-unit-name"_L1, MissingUnitName},
            {"reserved-name"_L1, ReservedName},
            {"name-of-function"_L1, NameOfFunction},
            {"declared-twice"_L1, DeclaredTwice},
            {"hyphen-in-name"_L1, HyphenInName},
            {"digit-before-name"_L1, DigitBeforeName},
            {"letter-of-no-name"_L1, LetterOfNoName},
            {"type-of-other-dialects"_L1, TypeOfOtherDialects},
            {"type-of-time"_L1, TypeOfTime},
            {"type-of-text"_L1, TypeOfText},
            {"type-of-parts"_L1, TypeOfParts},
            {"standard-block"_L1, StandardBlock},
            {"instance-of-block"_L1, InstanceOfBlock},
            {"function-without-result"_L1, FunctionWithoutResult},
            {"misspelt-type"_L1, MisspeltType},
            {"number-for-truth"_L1, NumberForTruth},
            {"truth-for-number"_L1, TruthForNumber},
            {"computed-initial-value"_L1, ComputedInitialValue}};
}
