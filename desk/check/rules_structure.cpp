// Units, sections and compound statements: what is not begun, not ended or in the wrong place.

#include "check/rules_table.h"

namespace {

using Maybe = std::optional<Help>;

// ---------------------------------------------------------------------------------------------
// Compound statements
// ---------------------------------------------------------------------------------------------

// What a word such as END_IF or ELSE belongs to; TOKEN_UNKNOWN for any other word.
Token OwnerOf(const Piece& piece) {
    switch (piece.code) {
        case TOKEN_END_IF:
        case TOKEN_ELSE:
        case TOKEN_ELSIF:
            return TOKEN_IF;
        case TOKEN_END_FOR:
            return TOKEN_FOR;
        case TOKEN_END_WHILE:
            return TOKEN_WHILE;
        case TOKEN_END_CASE:
            return TOKEN_CASE;
        case TOKEN_END_REPEAT:
        case TOKEN_UNTIL:
            return TOKEN_REPEAT;
        default:
            return TOKEN_UNKNOWN;
    }
}

// Whether a word that ends something stands where a statement could.
bool IsEndAtStatement(const Context& context) {
    const Piece word = Near(context, 0);
    return OpenStatement(context) != nullptr && Expects(context, TOKEN_IDENTIFIER) &&
           (OwnerOf(word) != TOKEN_UNKNOWN || IsUnitEnd(word.code) || word.is(TOKEN_PROGRAM));
}

bool IsEndOfScript(const Context& context) {
    return IsError(context, TXT_UNEXPECTED_END_OF_INPUT_FILE) && !context.facts.open.inComment;
}

// The ELSE that stands on the line of an IF, directly before it; an empty piece if none does.
Piece ElseBefore(const Context& context, const StatementFact& statement) {
    const int index = IndexOf(context, statement.span.begin);
    const bool isThere = statement.kind == TOKEN_IF && PieceAt(context, index - 1).is(TOKEN_ELSE);
    return isThere && !IsFirstOnLine(context, index) ? PieceAt(context, index - 1) : Piece();
}

// The last ELSE IF within the construct, or the one that the construct itself stands after.
Piece ElseIfOf(const Context& context, const StatementFact& construct) {
    const auto parent = static_cast<int>(&construct - context.facts.statements.data());
    Piece found = ElseBefore(context, construct);
    for (const StatementFact& statement : context.facts.statements) {
        const Piece word = ElseBefore(context, statement);
        if (statement.parent == parent && statement.isEnded && word.is(TOKEN_ELSE)) {
            found = word;
        }
    }
    return found;
}

Maybe ElseIf(const Context& context) {
    const StatementFact* const construct = OpenConstruct(context);
    const bool isEnd = IsEndAtStatement(context) || IsEndOfScript(context);
    if (!isEnd || construct == nullptr || construct->kind != TOKEN_IF) {
        return std::nullopt;
    }
    const Piece word = ElseIfOf(context, *construct);
    if (word.span.isEmpty()) {
        return std::nullopt;
    }
    const int ifIndex = IndexOf(context, word.span.begin) + 1;
    const Span both = {word.span.begin, PieceAt(context, ifIndex).span.end};
    return SayAndOffer(
        QStringLiteral("`ELSE IF` begins one more `IF`, which needs an `END_IF` of its own: "
                       "write `ELSIF`"),
        both, {{both, QStringLiteral("ELSIF")}});
}

Maybe ElseAfterElse(const Context& context) {
    const StatementFact* const construct = OpenConstruct(context);
    const Piece word = Near(context, 0);
    if (!IsEndAtStatement(context) || construct == nullptr || construct->kind != TOKEN_IF ||
        !word.isOneOf({TOKEN_ELSE, TOKEN_ELSIF})) {
        return std::nullopt;
    }
    return Say(QStringLiteral("the `IF` of line %1 has its `ELSE` already, and nothing but "
                              "`END_IF` comes after that")
                   .arg(LineOf(context, construct->span)));
}

Maybe RepeatWithoutUntil(const Context& context) {
    const StatementFact* const construct = OpenConstruct(context);
    if (!IsEndAtStatement(context) || construct == nullptr || construct->kind != TOKEN_REPEAT ||
        !Near(context, 0).is(TOKEN_END_REPEAT)) {
        return std::nullopt;
    }
    return Say(
        QStringLiteral("a `REPEAT` ends with its condition: write `UNTIL condition "
                       "END_REPEAT;`"));
}

Maybe SemicolonBeforeEndRepeat(const Context& context) {
    if (!Expects(context, TOKEN_END_REPEAT) || !Near(context, 0).is(TOKEN_SEMICOLON) ||
        !Near(context, 1).is(TOKEN_END_REPEAT)) {
        return std::nullopt;
    }
    return SayAndOffer(QStringLiteral("no `;` stands between the condition and `END_REPEAT`"), {},
                       {InPlaceOf(Near(context, 0), QString())});
}

Help WithoutEnd(const Context& context, const StatementFact& construct) {
    return Say(QStringLiteral("the %1 of line %2 has no %3")
                   .arg(Code(construct.kind))
                   .arg(LineOf(context, construct.span))
                   .arg(Code(EndOf(construct.kind))),
               WordOf(construct));
}

// The word that the condition of a REPEAT lacks, before the ";" that may be there.
Mend EndOfRepeat(const Context& context) {
    const bool isEnded = Near(context, 0).is(TOKEN_SEMICOLON);
    return {PutInAfter(Near(context, -1),
                       isEnded ? QStringLiteral(" END_REPEAT") : QStringLiteral(" END_REPEAT;"))};
}

// An END_ word that ends something further out tells that the inner one is not ended.
bool EndsMore(const Context& context, const StatementFact& construct) {
    const Piece word = Near(context, 0);
    const bool endsOuter = OwnerOf(word) != TOKEN_UNKNOWN && OwnerOf(word) != construct.kind &&
                           IsOpen(context, OwnerOf(word));
    return IsEndAtStatement(context) && (endsOuter || OwnerOf(word) == TOKEN_UNKNOWN);
}

Maybe MissingEnd(const Context& context) {
    const StatementFact* const construct = OpenConstruct(context);
    if (construct == nullptr) {
        return std::nullopt;
    }
    const bool isRepeat =
        construct->kind == TOKEN_REPEAT && Expects(context, TOKEN_END_REPEAT) &&
        (Near(context, 0).is(TOKEN_SEMICOLON) || IsFirstOnLine(context, context.here));
    if (!isRepeat && !IsEndOfScript(context) && !EndsMore(context, *construct)) {
        return std::nullopt;
    }
    Help help = WithoutEnd(context, *construct);
    help.offer = isRepeat ? EndOfRepeat(context) : Mend();
    return help;
}

Maybe WrongEnd(const Context& context) {
    const StatementFact* const construct = OpenConstruct(context);
    const Piece word = Near(context, 0);
    if (!IsEndAtStatement(context) || construct == nullptr || OwnerOf(word) == construct->kind ||
        word.isOneOf({TOKEN_ELSE, TOKEN_ELSIF, TOKEN_UNTIL})) {
        return std::nullopt;
    }
    return SayAndOffer(QStringLiteral("the %1 of line %2 ends with %3, not with %4")
                           .arg(Code(construct->kind))
                           .arg(LineOf(context, construct->span))
                           .arg(Code(EndOf(construct->kind)), Code(word)),
                       {}, {InPlaceOf(word, TextOf(EndOf(construct->kind)))});
}

Maybe StrayEnd(const Context& context) {
    const Token owner = OwnerOf(Near(context, 0));
    if (!IsEndAtStatement(context) || owner == TOKEN_UNKNOWN || IsOpen(context, owner)) {
        return std::nullopt;
    }
    return Say(QStringLiteral("no %1 is open here that this %2 could belong to")
                   .arg(Code(owner), Code(Near(context, 0))));
}

// Whether the word stands after the error before a statement ends or a compound one begins.
bool IsInStatement(const Context& context, Token word) {
    int index = context.here;
    while (!PieceAt(context, index).span.isEmpty() && !PieceAt(context, index).is(word) &&
           !PieceAt(context, index)
                .isOneOf({TOKEN_SEMICOLON, TOKEN_IF, TOKEN_FOR, TOKEN_WHILE, TOKEN_CASE})) {
        ++index;
    }
    return PieceAt(context, index).is(word);
}

// The word that a compound statement asks for stands on the next line, or a wrong one here.
Maybe MissingWord(const Context& context, Token word) {
    const Piece found = Near(context, 0);
    const StatementFact* const construct = OpenConstruct(context);
    if (!Expects(context, word) || construct == nullptr) {
        return std::nullopt;
    }
    if (found.isOneOf({TOKEN_THEN, TOKEN_DO, TOKEN_OF})) {
        return SayAndOffer(QStringLiteral("the head of %1 ends with %2, not with %3")
                               .arg(Code(construct->kind), Code(word), Code(found)),
                           {}, {InPlaceOf(found, TextOf(word))});
    }
    const bool canFollow = CanBeginStatement(found) || found.is(TOKEN_NUMBER);
    if (!canFollow || !IsFirstOnLine(context, context.here) || !CanEndValue(Near(context, -1)) ||
        IsInStatement(context, word)) {
        return std::nullopt;
    }
    return SayAndOffer(QStringLiteral("%1 is missing at the end of the head of %2")
                           .arg(Code(word), Code(construct->kind)),
                       After(Near(context, -1)),
                       {PutInAfter(Near(context, -1), u' ' + TextOf(word))});
}

Maybe MissingThen(const Context& context) {
    return MissingWord(context, TOKEN_THEN);
}

Maybe MissingDo(const Context& context) {
    return MissingWord(context, TOKEN_DO);
}

Maybe MissingOf(const Context& context) {
    return MissingWord(context, TOKEN_OF);
}

// ---------------------------------------------------------------------------------------------
// The missing ";"
// ---------------------------------------------------------------------------------------------

bool CanEndStatement(const Piece& piece) {
    return CanEndValue(piece) || IsCompoundEnd(piece.code) ||
           piece.isOneOf({TOKEN_BREAK, TOKEN_CONTINUE, TOKEN_EXIT});
}

bool IsClosing(const Piece& piece) {
    return OwnerOf(piece) != TOKEN_UNKNOWN || IsUnitEnd(piece.code) || piece.is(TOKEN_END_VAR);
}

// A name begins a statement or a declaration if what follows it does so too.
bool BeginsNext(const Context& context) {
    const Piece word = Near(context, 0);
    const bool isNamed =
        Near(context, 1)
            .isOneOf({TOKEN_ASSIGN, TOKEN_COLON, TOKEN_EQUAL, TOKEN_LEFT_PARENTHESIS,
                      TOKEN_SEMICOLON, TOKEN_LEFT_BRACKET, TOKEN_COMMA});
    return word.is(TOKEN_IDENTIFIER) ? isNamed
                                     : CanBeginStatement(word) || word.is(TOKEN_CONSTANT);
}

// Whether the next branch of an open CASE begins.
bool IsLabelOnNextLine(const Context& context) {
    const bool isLabel =
        Near(context, 0).is(TOKEN_NUMBER) && Near(context, 1).isOneOf({TOKEN_COLON, TOKEN_COMMA});
    return isLabel && IsOpen(context, TOKEN_CASE) && IsFirstOnLine(context, context.here);
}

Maybe MissingSemicolon(const Context& context) {
    const bool isNextLine = IsFirstOnLine(context, context.here) && BeginsNext(context);
    const bool isAssignment = Near(context, 0).is(TOKEN_IDENTIFIER) &&
                              Near(context, 1).is(TOKEN_ASSIGN) &&
                              !TouchesPrevious(context, context.here);
    const bool isNext =
        isNextLine || isAssignment || IsClosing(Near(context, 0)) || IsLabelOnNextLine(context);
    if (!Expects(context, TOKEN_SEMICOLON) || !isNext || !CanEndStatement(Near(context, -1))) {
        return std::nullopt;
    }
    return SayAndOffer(QStringLiteral("a `;` is missing after %1").arg(Code(Near(context, -1))),
                       After(Near(context, -1)),
                       {PutInAfter(Near(context, -1), QStringLiteral(";"))});
}

// ---------------------------------------------------------------------------------------------
// Sections
// ---------------------------------------------------------------------------------------------

// The index of the word of the section that is open before a piece.
int SectionBefore(const Context& context, int index) {
    do {
        --index;
    } while (index >= 0 && !IsSectionBegin(PieceAt(context, index).code));
    return index;
}

QString NewLineOf(const Source& source) {
    const bool isOfTwo = source.text().contains(QLatin1String("\r\n"));
    return isOfTwo ? QStringLiteral("\r\n") : QStringLiteral("\n");
}

// A line of its own before a piece: after the one before it, if no comment follows that there.
Mend LineBefore(const Context& context, int index, const QString& text) {
    const Piece previous = PieceAt(context, index - 1);
    const Piece piece = PieceAt(context, index);
    const int end = context.source.lineAt(LineOf(context, previous.span)).end;
    const int begin = context.source.lineAt(LineOf(context, piece.span)).begin;
    const QString newLine = NewLineOf(context.source);
    if (context.source.text({previous.span.end, end}).trimmed().isEmpty()) {
        return {PutInAfter(previous, newLine + text)};
    }
    const QString indent = context.source.text({begin, piece.span.begin}).toString();
    return {
        PutInBefore(piece, text + newLine + (indent.trimmed().isEmpty() ? indent : QString()))};
}

// Whether END_VAR comes, after a piece, before the next section or the end of the unit.
bool IsSectionEnded(const Context& context, int index) {
    while (!PieceAt(context, index).span.isEmpty() && !IsUnitEnd(PieceAt(context, index).code) &&
           !IsSectionBegin(PieceAt(context, index).code)) {
        if (PieceAt(context, index).is(TOKEN_END_VAR)) {
            return true;
        }
        ++index;
    }
    return false;
}

// Whether what should be a declaration looks like something that stands after END_VAR.
bool IsAfterSection(const Context& context) {
    const Piece word = Near(context, 0);
    if (IsErrorOneOf(context, {TXT_USING_RESERVED_WORD, TXT_USING_FUNCTION_NAME})) {
        const bool canFollow =
            CanBeginStatement(word) || IsSectionBegin(word.code) || IsUnitEnd(word.code);
        return canFollow && !Near(context, 1).is(TOKEN_COLON);
    }
    if (IsError(context, TXT_DUPLICATE_VARIABLE_NAME)) {
        return Near(context, 1).isOneOf({TOKEN_ASSIGN, TOKEN_EQUAL, TOKEN_LEFT_BRACKET});
    }
    return Expects(context, TOKEN_COLON) && word.isOneOf({TOKEN_ASSIGN, TOKEN_LEFT_PARENTHESIS});
}

Maybe SectionWithoutEnd(const Context& context) {
    const int section = SectionBefore(context, context.here);
    if (!IsDeclaring(context) || !IsAfterSection(context) || section < 0 ||
        IsSectionEnded(context, context.here)) {
        return std::nullopt;
    }
    const Piece word = PieceAt(context, section);
    const int first = context.here - (Expects(context, TOKEN_COLON) ? 1 : 0);
    return SayAndOffer(QStringLiteral("the %1 of line %2 has no `END_VAR`")
                           .arg(Code(word))
                           .arg(LineOf(context, word.span)),
                       word.span, LineBefore(context, first, QStringLiteral("END_VAR")));
}

// What stands for a section of other dialects, in a program and in a definition.
struct ForeignSection {
    QLatin1String word;
    QLatin1String inProgram;
    QLatin1String inDefinition;
};

constexpr ForeignSection FOREIGN_SECTIONS[] = {
    {"VAR_TEMP"_L1, "`VAR`"_L1, "`VAR`"_L1},
    {"VAR_STAT"_L1, "`VAR`"_L1, "`VAR`"_L1},
    {"VAR_INST"_L1, "`VAR`"_L1, "`VAR`"_L1},
    {"VAR_IN_OUT"_L1, "`VAR_INPUT` or `VAR_OUTPUT`"_L1, "`VAR_REF`"_L1},
    {"VAR_EXTERNAL"_L1, "`VAR_GLOBAL`"_L1,
     "`VAR_REF`, as a definition sees no variable of the program"_L1},
    {"VAR_ACCESS"_L1, "`VAR_YXREGISTER`"_L1, "`VAR_REF`"_L1},
    {"VAR_CONFIG"_L1, "`VAR_YXREGISTER`"_L1, "`VAR_REF`"_L1},
};

// The code of an advice for a word, if it has one alone.
Mend InPlaceOfOnly(const Piece& word, QLatin1String advice) {
    const QStringList parts = QString(advice).split(u'`');
    constexpr int ofOneCode = 3;
    return parts.size() == ofOneCode ? Mend{InPlaceOf(word, parts.at(1))} : Mend();
}

// The word where a section could stand: after the head of a unit, or as its first statement.
Piece WordInPlaceOfSection(const Context& context) {
    const std::optional<UnknownName> unknown = Unknown(context);
    const bool isFirst = IsError(context, TXT_PROGRAM_MUST_START_WITH_DECLARATION_OF_VARIABLES);
    return isFirst ? Near(context, 0) : unknown ? PieceAt(context, unknown->index) : Piece();
}

Maybe SectionOfOtherDialects(const Context& context) {
    const Piece word = WordInPlaceOfSection(context);
    for (const ForeignSection& section : FOREIGN_SECTIONS) {
        if (word.isSpelled(section.word)) {
            const bool isProgram = IsIn(context, TOKEN_PROGRAM);
            const QLatin1String advice = isProgram ? section.inProgram : section.inDefinition;
            return SayAndOffer(
                QStringLiteral("there is no %1: use %2").arg(Code(word)).arg(advice), word.span,
                InPlaceOfOnly(word, advice));
        }
    }
    return std::nullopt;
}

Maybe SectionOfOtherUnit(const Context& context) {
    if (!IsError(context, TXT_DECLARATION_CANNOT_BE_HERE)) {
        return std::nullopt;
    }
    const Piece word = Near(context, 0);
    if (IsIn(context, TOKEN_PROGRAM)) {
        return SayAndOffer(
            QStringLiteral("a program is called by nobody: use `VAR_INPUT` in place of %1")
                .arg(Code(word)),
            {}, {InPlaceOf(word, QStringLiteral("VAR_INPUT"))});
    }
    if (word.is(TOKEN_VAR_INPUT)) {
        return SayAndOffer(QStringLiteral("parameters by value are declared in `VAR_ARG`"), {},
                           {InPlaceOf(word, QStringLiteral("VAR_ARG"))});
    }
    if (word.is(TOKEN_VAR_OUTPUT)) {
        return Say(
            QStringLiteral("what goes out of a definition is declared in `VAR_REF`, or is "
                           "the `RESULT` of a function"));
    }
    return Say(QStringLiteral("%1 stands in the program alone: pass its variables to %2 in "
                              "`VAR_ARG` or `VAR_REF`")
                   .arg(Code(word), Code(NameOf(context, *OpenUnit(context)))));
}

Maybe SectionAfterStatements(const Context& context) {
    if (!Expects(context, TOKEN_IDENTIFIER) || OpenStatement(context) == nullptr ||
        !IsSectionBegin(Near(context, 0).code) || OpenConstruct(context) != nullptr) {
        return std::nullopt;
    }
    return Say(QStringLiteral("all sections stand before the first statement of their unit"));
}

Maybe ArgumentsAfterVariables(const Context& context) {
    const int section = SectionBefore(context, context.here);
    if (!IsError(context, TXT_ARGUMENTS_MUST_BE_ON_TOP) || section < 0) {
        return std::nullopt;
    }
    return Say(QStringLiteral("move this %1 before the %2 of line %3")
                   .arg(Code(Near(context, 0)), Code(PieceAt(context, section)))
                   .arg(LineOf(context, PieceAt(context, section).span)));
}

Maybe QualifierOfSection(const Context& context) {
    const Piece word = Near(context, -1);
    if (!IsDeclaring(context) || !Expects(context, TOKEN_COLON) ||
        !IsSectionBegin(Near(context, -2).code) ||
        !word.isSpelledOneOf({"RETAIN"_L1, "NON_RETAIN"_L1, "PERSISTENT"_L1, "PUBLIC"_L1,
                              "PRIVATE"_L1, "PROTECTED"_L1, "INTERNAL"_L1})) {
        return std::nullopt;
    }
    return SayAndOffer(
        QStringLiteral("there is no %1: a section is its keyword alone").arg(Code(word)),
        word.span, {TakeOut(context.source, word.span)});
}

// ---------------------------------------------------------------------------------------------
// Units
// ---------------------------------------------------------------------------------------------

// A last line of the script.
Mend LineAtEnd(const Context& context, const QString& text) {
    const int end = context.source.size();
    const QString newLine = NewLineOf(context.source);
    const bool isNewLine = context.source.text().endsWith(u'\n');
    return {{{end, end}, (isNewLine ? QString() : newLine) + text + newLine}};
}

Help UnitWithoutEnd(const Context& context, const UnitFact& unit) {
    const bool isAtEnd = IsEndOfScript(context);
    return SayAndOffer(QStringLiteral("the %1 %2 of line %3 has no %4")
                           .arg(Code(unit.kind), Code(NameOf(context, unit)))
                           .arg(LineOf(context, unit.span))
                           .arg(Code(EndOf(unit.kind))),
                       PieceAt(context, IndexOf(context, unit.span.begin)).span,
                       isAtEnd ? LineAtEnd(context, TextOf(EndOf(unit.kind)))
                               : LineBefore(context, context.here, TextOf(EndOf(unit.kind))));
}

// Whether a unit begins where a statement could.
bool BeginsUnitAmongStatements(const Context& context) {
    const StatementFact* const statement = OpenStatement(context);
    return IsUnitBegin(Near(context, 0).code) && statement != nullptr &&
           statement->span.begin == Near(context, 0).span.begin;
}

// Whether the end of the program comes after the error: what begins there stands within it.
bool EndsLater(const Context& context, Token unitKind) {
    int index = context.here;
    while (!PieceAt(context, index).span.isEmpty() &&
           !PieceAt(context, index).is(EndOf(unitKind))) {
        ++index;
    }
    return unitKind == TOKEN_PROGRAM && PieceAt(context, index).is(TOKEN_END_PROGRAM);
}

Maybe MissingEndOfUnit(const Context& context) {
    const UnitFact* const unit = OpenUnit(context);
    if (unit == nullptr || unit->name == NONE || OpenConstruct(context) != nullptr) {
        return std::nullopt;
    }
    const bool begins = BeginsUnitAmongStatements(context) && !EndsLater(context, unit->kind);
    return begins || IsEndOfScript(context) ? Maybe(UnitWithoutEnd(context, *unit))
                                            : std::nullopt;
}

Maybe DefinitionWithinProgram(const Context& context) {
    if (!BeginsUnitAmongStatements(context) || !IsIn(context, TOKEN_PROGRAM) ||
        OpenConstruct(context) != nullptr) {
        return std::nullopt;
    }
    return Say(QStringLiteral("definitions stand before the program: move this %1 there")
                   .arg(Code(Near(context, 0))));
}

Maybe EndOfOtherUnit(const Context& context) {
    const UnitFact* const unit = OpenUnit(context);
    const Piece word = Near(context, 0);
    if (unit == nullptr || !IsEndAtStatement(context) || !IsUnitEnd(word.code)) {
        return std::nullopt;
    }
    return SayAndOffer(QStringLiteral("a %1 ends with %2, not with %3")
                           .arg(Code(unit->kind), Code(EndOf(unit->kind)), Code(word)),
                       {}, {InPlaceOf(word, TextOf(EndOf(unit->kind)))});
}

Maybe NoProgram(const Context& context) {
    if (!IsEndOfScript(context) || OpenUnit(context) != nullptr) {
        return std::nullopt;
    }
    return Say(
        QStringLiteral("the script has no `PROGRAM`; one stands at its end, from `PROGRAM "
                       "name` to `END_PROGRAM`"));
}

Maybe ProgramWithoutSection(const Context& context) {
    if (!IsError(context, TXT_PROGRAM_MUST_START_WITH_DECLARATION_OF_VARIABLES)) {
        return std::nullopt;
    }
    if (Near(context, 0).is(TOKEN_SEMICOLON)) {
        return SayAndOffer(QStringLiteral("no `;` follows the name of the program"), {},
                           {TakeOut(context.source, Near(context, 0).span)});
    }
    return SayAndOffer(
        QStringLiteral("a program has a section before its statements, if only an empty "
                       "one: write `VAR END_VAR`"),
        {}, LineBefore(context, context.here, QStringLiteral("VAR END_VAR")));
}

Maybe BodyWithoutSection(const Context& context) {
    const std::optional<UnknownName> unknown = Unknown(context);
    if (!unknown || unknown->role != UnknownName::Role::Section || OpenUnit(context) == nullptr ||
        !CanBeginStatement(Near(context, 0))) {
        return std::nullopt;
    }
    return SayAndOffer(
        QStringLiteral("a section stands before the statements of %1, if only an empty "
                       "one: write `VAR END_VAR`")
            .arg(Code(NameOf(context, *OpenUnit(context)))),
        {}, LineBefore(context, unknown->index, QStringLiteral("VAR END_VAR")));
}

Maybe BlockWithType(const Context& context) {
    const std::optional<UnknownName> unknown = Unknown(context);
    if (!unknown || !Near(context, 0).is(TOKEN_COLON) || !IsIn(context, TOKEN_FUNCTION_BLOCK)) {
        return std::nullopt;
    }
    return Say(
        QStringLiteral("a function block has no result: write `FUNCTION %1 : %2`, or leave "
                       "the type out")
            .arg(NameOf(context, *OpenUnit(context)), Near(context, 1).text));
}

Maybe FunctionWithoutType(const Context& context) {
    if (!IsIn(context, TOKEN_FUNCTION) || !Expects(context, TOKEN_COLON) ||
        IsDeclaring(context) || OpenStatement(context) != nullptr) {
        return std::nullopt;
    }
    const QStringView name = NameOf(context, *OpenUnit(context));
    return Say(
        QStringLiteral("a function has the type of its result, as in `FUNCTION %1 : REAL`; "
                       "without a result it is a `FUNCTION_BLOCK`")
            .arg(name),
        After(Near(context, -1)));
}

Maybe SemicolonAfterUnit(const Context& context) {
    if (!Expects(context, TOKEN_PROGRAM) || !Near(context, 0).is(TOKEN_SEMICOLON) ||
        !IsUnitEnd(Near(context, -1).code)) {
        return std::nullopt;
    }
    return SayAndMend(QStringLiteral("no `;` follows %1").arg(Code(Near(context, -1))), {},
                      {BlankOut(context.source, Near(context, 0).span)},
                      {TakeOut(context.source, Near(context, 0).span)});
}

Maybe SectionOutside(const Context& context) {
    if (!Expects(context, TOKEN_PROGRAM) || !IsSectionBegin(Near(context, 0).code)) {
        return std::nullopt;
    }
    return Say(QStringLiteral("a section stands within a program or definition: move this %1 "
                              "after `PROGRAM` and its name")
                   .arg(Code(Near(context, 0))));
}

// Up to END_TYPE, where that comes.
Span SpanOfTypes(const Context& context) {
    int index = context.here;
    while (!PieceAt(context, index).span.isEmpty() &&
           !PieceAt(context, index).isSpelled("END_TYPE"_L1)) {
        ++index;
    }
    return {Near(context, 0).span.begin, PieceAt(context, index).span.end};
}

QString AdviceOnEnumeration(const Context& context) {
    constexpr int first = 4;
    return QStringLiteral(
               "there are no enumerations: use `INT` for %1, and a constant for each "
               "name, as in `%2`; a label of `CASE` is the number itself")
        .arg(Code(Near(context, 1)), ConstantsOfEnumeration(context, context.here + first));
}

// What stands for the first type that is defined; empty if that cannot be told.
QString AdviceOnType(const Context& context) {
    const Piece type = Near(context, 3);
    if (!Near(context, 2).is(TOKEN_COLON)) {
        return QString();
    }
    if (type.is(TOKEN_LEFT_PARENTHESIS)) {
        return AdviceOnEnumeration(context);
    }
    if (type.isSpelled("STRUCT"_L1)) {
        return QStringLiteral(
                   "there are no structures: declare a variable for each part of each %1")
            .arg(Code(Near(context, 1)));
    }
    return IsTypeName(type) ? QStringLiteral("types have no other names: write %1 for %2")
                                  .arg(Code(type), Code(Near(context, 1)))
                            : QString();
}

Maybe TypeDefinition(const Context& context) {
    const QString advice = AdviceOnType(context);
    if (!Expects(context, TOKEN_PROGRAM) || !Near(context, 0).isSpelled("TYPE"_L1) ||
        advice.isEmpty() || SpanOfTypes(context).end <= Near(context, 0).span.end) {
        return std::nullopt;
    }
    return Say(advice, SpanOfTypes(context));
}

Maybe UnitOfOtherDialects(const Context& context) {
    const Piece word = Near(context, 0);
    if (!Expects(context, TOKEN_PROGRAM) ||
        !word.isSpelledOneOf({"TYPE"_L1, "CONFIGURATION"_L1, "RESOURCE"_L1, "TASK"_L1,
                              "NAMESPACE"_L1, "CLASS"_L1, "INTERFACE"_L1, "METHOD"_L1,
                              "LIBRARY"_L1, "USING"_L1, "ACTION"_L1})) {
        return std::nullopt;
    }
    return Say(QStringLiteral("there is no %1: a script is its functions and function blocks, "
                              "then one program")
                   .arg(Code(word)));
}

Maybe StatementOutside(const Context& context) {
    const bool isStatement = Near(context, 0).is(TOKEN_IDENTIFIER)
                                 ? Near(context, 1).is(TOKEN_ASSIGN)
                                 : CanBeginStatement(Near(context, 0));
    if (!Expects(context, TOKEN_PROGRAM) || !isStatement) {
        return std::nullopt;
    }
    return Say(
        QStringLiteral("statements stand within `PROGRAM name VAR END_VAR ... "
                       "END_PROGRAM`"));
}

}  // namespace

Rules RulesOfStructure() {
    return {{"else-if"_L1, ElseIf},
            {"else-after-else"_L1, ElseAfterElse},
            {"repeat-without-until"_L1, RepeatWithoutUntil},
            {"semicolon-before-end-repeat"_L1, SemicolonBeforeEndRepeat},
            {"missing-end"_L1, MissingEnd},
            {"wrong-end"_L1, WrongEnd},
            {"stray-end"_L1, StrayEnd},
            {"missing-then"_L1, MissingThen},
            {"missing-do"_L1, MissingDo},
            {"missing-of"_L1, MissingOf},
            {"missing-semicolon"_L1, MissingSemicolon},
            {"section-without-end"_L1, SectionWithoutEnd},
            {"section-of-other-dialects"_L1, SectionOfOtherDialects},
            {"section-of-other-unit"_L1, SectionOfOtherUnit},
            {"section-after-statements"_L1, SectionAfterStatements},
            {"arguments-after-variables"_L1, ArgumentsAfterVariables},
            {"qualifier-of-section"_L1, QualifierOfSection},
            {"missing-end-of-unit"_L1, MissingEndOfUnit},
            {"definition-within-program"_L1, DefinitionWithinProgram},
            {"end-of-other-unit"_L1, EndOfOtherUnit},
            {"no-program"_L1, NoProgram},
            {"program-without-section"_L1, ProgramWithoutSection},
            {"body-without-section"_L1, BodyWithoutSection},
            {"block-with-type"_L1, BlockWithType},
            {"function-without-type"_L1, FunctionWithoutType},
            {"semicolon-after-unit"_L1, SemicolonAfterUnit},
            {"section-outside"_L1, SectionOutside},
            {"type-definition"_L1, TypeDefinition},
            {"unit-of-other-dialects"_L1, UnitOfOtherDialects},
            {"statement-outside"_L1, StatementOutside}};
}
