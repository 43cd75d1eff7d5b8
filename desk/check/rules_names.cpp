// Names that mean nothing to the compiler, where they stand.

#include "check/rules_table.h"

#include "qyx_types.h"

#include <algorithm>

namespace {

using Maybe = std::optional<Help>;

bool BeginsOpenStatement(const Context& context, const Piece& word) {
    const StatementFact* const statement = OpenStatement(context);
    return statement != nullptr && !word.span.isEmpty() &&
           statement->span.begin == word.span.begin;
}

// ---------------------------------------------------------------------------------------------
// Words of other languages
// ---------------------------------------------------------------------------------------------

Maybe ElsifOfOtherLanguages(const Context& context) {
    const Piece word = UnknownWord(context);
    if (!word.isSpelledOneOf({"ELSEIF"_L1, "ELIF"_L1, "ELSE_IF"_L1, "ELIFF"_L1}) ||
        !BeginsOpenStatement(context, word)) {
        return std::nullopt;
    }
    return SayAndMend(QStringLiteral("did you mean `ELSIF`?"), word.span,
                      {{word.span, QStringLiteral("ELSIF")}});
}

// The word that ends a construct in place of another one, which may have two words or no ";".
Mend EndFor(const Context& context, const StatementFact& construct, const Piece& word) {
    const QString end = TextOf(EndOf(construct.kind));
    const Piece next = Near(context, 0);
    if (next.is(construct.kind) && Near(context, 1).is(TOKEN_SEMICOLON)) {
        return {{{word.span.begin, next.span.end}, end}};
    }
    const bool isAlone = IsFirstOnLine(context, context.here);
    return next.is(TOKEN_SEMICOLON) ? Mend{InPlaceOf(word, end)}
           : isAlone                ? Mend{InPlaceOf(word, end + u';')}
                                    : Mend();
}

Maybe EndOfOtherLanguages(const Context& context) {
    const Piece word = UnknownWord(context);
    const StatementFact* const construct = OpenConstruct(context);
    if (construct == nullptr || !BeginsOpenStatement(context, word) ||
        !word.isSpelledOneOf({"END"_L1, "FI"_L1, "ESAC"_L1, "OD"_L1, "DONE"_L1, "WEND"_L1,
                              "NEXT"_L1, "LOOP"_L1, "ENDDO"_L1, "END_DO"_L1, "ENDSWITCH"_L1,
                              "END_SWITCH"_L1})) {
        return std::nullopt;
    }
    const QString end = QString(TokensTable[Lookup(EndOf(construct->kind))].text);
    return SayAndMend(QStringLiteral("the %1 of line %2 ends with `%3;`")
                          .arg(Code(construct->kind))
                          .arg(LineOf(context, construct->span))
                          .arg(end),
                      word.span,
                      Near(context, 0).is(TOKEN_SEMICOLON) ? Mend{InPlaceOf(word, end)} : Mend(),
                      EndFor(context, *construct, word));
}

Maybe WordOfOtherLanguages(const Context& context) {
    const Piece word = UnknownWord(context);
    if (!BeginsOpenStatement(context, word)) {
        return std::nullopt;
    }
    if (word.isSpelled("BEGIN"_L1)) {
        return SayAndOffer(
            QStringLiteral("there is no `BEGIN`: statements follow `END_VAR` directly"),
            word.span, {TakeOut(context.source, word.span)});
    }
    if (word.isSpelledOneOf({"SWITCH"_L1, "SELECT"_L1})) {
        return Say(QStringLiteral("branches by number are written `CASE ... OF ... END_CASE;`"),
                   word.span);
    }
    return std::nullopt;
}

// ---------------------------------------------------------------------------------------------
// Functions of the standard
// ---------------------------------------------------------------------------------------------

struct Substitute {
    QLatin1String name;
    QLatin1String text;
    QLatin1String offered = QLatin1String();  // the function that does the same, if one does
};

constexpr QLatin1String WITH_IF =
    "it is not built in: choose the value with `IF`, or define a function of that name"_L1;
constexpr QLatin1String NO_TEXTS = "it is not built in, as no variable holds a text"_L1;

constexpr Substitute SUBSTITUTES[] = {
    {"ABS"_L1, "the absolute value is `fabs`"_L1, "fabs"_L1},
    {"LOG"_L1, "the logarithm to the base 10 is `log10`, the natural one `ln`"_L1},
    {"EXPT"_L1, "a power is written `a ** b` or `pow(a, b)`"_L1, "pow"_L1},
    {"POWER"_L1, "a power is written `a ** b` or `pow(a, b)`"_L1, "pow"_L1},
    {"TRUNC"_L1, "the part before the point is `floor`, of negative numbers `ceil`"_L1},
    {"SQR"_L1, "a square is written `a * a`, a square root `sqrt(a)`"_L1},
    {"ARCTAN"_L1, "the arc tangent is `atan`"_L1, "atan"_L1},
    {"MOVE"_L1, "a value is copied with `:=` alone"_L1},
    {"MIN"_L1, WITH_IF},
    {"MAX"_L1, WITH_IF},
    {"LIMIT"_L1, WITH_IF},
    {"SEL"_L1, WITH_IF},
    {"MUX"_L1, WITH_IF},
    {"LEN"_L1, NO_TEXTS},
    {"CONCAT"_L1, NO_TEXTS},
    {"LEFT"_L1, NO_TEXTS},
    {"RIGHT"_L1, NO_TEXTS},
    {"MID"_L1, NO_TEXTS},
    {"FIND"_L1, NO_TEXTS},
};

bool IsCalled(const Context& context, const Piece& word) {
    return word.is(TOKEN_IDENTIFIER) && Near(context, 0).is(TOKEN_LEFT_PARENTHESIS) &&
           Near(context, -1).span.begin == word.span.begin;
}

// Whether a value is to be stored under that name.
bool IsTarget(const Context& context, const Piece& word) {
    return Near(context, 0).is(TOKEN_ASSIGN) && Near(context, -1).span.begin == word.span.begin;
}

// ---------------------------------------------------------------------------------------------
// Names declared elsewhere
// ---------------------------------------------------------------------------------------------

// The definition of that name which begins after the error; an empty piece if there is none.
Piece DefinitionAfter(const Context& context, const Piece& name) {
    for (int index = context.here; !PieceAt(context, index).span.isEmpty(); ++index) {
        const Piece word = PieceAt(context, index + 1);
        if (PieceAt(context, index).isOneOf({TOKEN_FUNCTION, TOKEN_FUNCTION_BLOCK}) &&
            word.isSpelled(name.text)) {
            return word;
        }
    }
    return {};
}

Maybe DefinedBelow(const Context& context) {
    const Piece name = UnknownWord(context);
    const Piece definition = DefinitionAfter(context, name);
    if (!name.is(TOKEN_IDENTIFIER) || definition.span.isEmpty()) {
        return std::nullopt;
    }
    return Say(QStringLiteral("%1 is defined on line %2: move its definition above its first use")
                   .arg(Code(name))
                   .arg(LineOf(context, definition.span)),
               definition.span);
}

Maybe StandardFunction(const Context& context) {
    const Piece word = UnknownWord(context);
    for (const Substitute& row : SUBSTITUTES) {
        if (IsCalled(context, word) && word.isSpelled(row.name)) {
            return SayAndOffer(
                row.text, word.span,
                row.offered.isEmpty() ? Mend() : Mend{InPlaceOf(word, row.offered)});
        }
    }
    return std::nullopt;
}

Maybe ConversionFunction(const Context& context) {
    const Piece word = UnknownWord(context);
    const Conversion conversion =
        IsCalled(context, word) ? ConversionOf(word.text) : Conversion{TYP_NONE, TYP_NONE};
    if (conversion.from == TYP_NONE || conversion.to == TYP_NONE) {
        return std::nullopt;
    }
    if (conversion.from == TYP_BOOL) {
        return Say(QStringLiteral("there is no conversion of a `BOOL`: choose the number with "
                                  "`IF`"),
                   word.span);
    }
    if (conversion.to == TYP_BOOL) {
        return Say(QStringLiteral("there is no conversion to a `BOOL`: compare, as in `a <> 0`"),
                   word.span);
    }
    const bool isText = conversion.from == TYP_STRING || conversion.to == TYP_STRING;
    return isText ? std::nullopt
                  : Maybe(SayAndOffer(
                        QStringLiteral("a variable of any type of number takes any number: "
                                       "leave out %1")
                            .arg(Code(word)),
                        word.span, {InPlaceOf(word, QString())}));
}

// A variable of another unit.
struct Elsewhere {
    Span span;
    QString unit;
};

std::optional<Elsewhere> VariableAbove(const Context& context, const Piece& name) {
    const Facts& facts = context.facts;
    for (const NameFact& each : facts.names) {
        const bool isOther = each.kind == NameKind::Variable && each.unit != facts.open.unit;
        if (isOther && name.isSpelled(facts.textOf(each.text))) {
            const UnitFact& unit = facts.units[static_cast<std::size_t>(each.unit)];
            return Elsewhere{each.span, NameOf(context, unit).toString()};
        }
    }
    return std::nullopt;
}

// The pieces after the error are no more than words: a variable is declared where a name and a
// ":" stand within a section.
std::optional<Elsewhere> VariableBelow(const Context& context, const Piece& name) {
    QString unit;
    bool isSection = false;
    for (int index = context.here; !PieceAt(context, index).span.isEmpty(); ++index) {
        const Piece piece = PieceAt(context, index);
        const Piece next = PieceAt(context, index + 1);
        if (IsUnitBegin(piece.code)) {
            unit = next.text.toString();
        }
        isSection = (isSection || IsSectionBegin(piece.code)) && !piece.is(TOKEN_END_VAR);
        if (isSection && !unit.isEmpty() && piece.isSpelled(name.text) && next.is(TOKEN_COLON)) {
            return Elsewhere{piece.span, unit};
        }
    }
    return std::nullopt;
}

Maybe DeclaredElsewhere(const Context& context) {
    const Piece name = UnknownWord(context);
    std::optional<Elsewhere> variable = VariableAbove(context, name);
    if (!variable) {
        variable = VariableBelow(context, name);
    }
    if (!name.is(TOKEN_IDENTIFIER) || !variable) {
        return std::nullopt;
    }
    const QString advice = IsIn(context, TOKEN_PROGRAM)
                               ? QStringLiteral("the program sees variables of its own alone")
                               : QStringLiteral(
                                     "pass it in `VAR_ARG`, or in `VAR_REF` to change "
                                     "it");
    return Say(QStringLiteral("%1 is a variable of %2: %3")
                   .arg(Code(name), Code(variable->unit), advice),
               variable->span);
}

// ---------------------------------------------------------------------------------------------
// Misspelt names
// ---------------------------------------------------------------------------------------------

void AddVariables(const Context& context, std::vector<QString>& names) {
    const Facts& facts = context.facts;
    for (const NameFact& name : facts.names) {
        const bool isVisible = name.kind == NameKind::Variable && name.unit == facts.open.unit;
        if (isVisible && name.section != TOKEN_RESULT) {
            names.push_back(facts.textOf(name.text).toString());
        }
    }
}

void AddCallees(const Context& context, std::vector<QString>& names) {
    for (const UnitFact& unit : context.facts.units) {
        if (unit.kind != TOKEN_PROGRAM && unit.name != NONE) {
            names.push_back(NameOf(context, unit).toString());
        }
    }
    for (const Callee& callee : BuiltInCallees()) {
        names.push_back(callee.name);
    }
}

// Words that stand where a statement can begin.
void AddWords(const Context& context, std::vector<QString>& names) {
    for (const token& row : TokensTable) {
        const bool isResult = row.code == TOKEN_RESULT && IsIn(context, TOKEN_FUNCTION);
        if (IsBoundary(row.code) || row.code == TOKEN_TICK || isResult) {
            names.emplace_back(row.text);
        }
    }
}

bool IsWordOfLanguage(const QString& text) {
    return std::any_of(std::begin(TokensTable), std::end(TokensTable),
                       [&text](const token& row) { return text == row.text; });
}

Maybe Misspelt(const Context& context) {
    const Piece name = UnknownWord(context);
    if (!name.is(TOKEN_IDENTIFIER)) {
        return std::nullopt;
    }
    std::vector<QString> names;
    if (!IsCalled(context, name)) {
        AddVariables(context, names);
    }
    if (!IsTarget(context, name)) {
        AddCallees(context, names);
    }
    if (BeginsOpenStatement(context, name) && !IsTarget(context, name)) {
        AddWords(context, names);
    }
    const QString best = MostLike(name.text, names);
    if (best.isEmpty()) {
        return std::nullopt;
    }
    const Mend renamed = {InPlaceOf(name, best)};
    return SayAndMend(QStringLiteral("did you mean `%1`?").arg(best), name.span,
                      IsWordOfLanguage(best) ? renamed : Mend(), renamed);
}

// Words that may stand where the compiler expected others: an operator goes on with a value.
std::vector<QString> WordsThatFit(const Context& context) {
    std::vector<QString> names;
    for (const Token code : context.facts.error.expected) {
        const int row = Lookup(code);
        if (row != NO_ROW) {
            names.emplace_back(TokensTable[row].text);
        }
    }
    if (Expects(context, TOKEN_PROGRAM)) {
        names.insert(names.end(), {QStringLiteral("FUNCTION"), QStringLiteral("FUNCTION_BLOCK")});
    }
    if (CanEndValue(Near(context, -1)) && !IsDeclaring(context)) {
        names.insert(names.end(),
                     {QStringLiteral("AND"), QStringLiteral("XOR"), QStringLiteral("MOD"),
                      QStringLiteral("SHL"), QStringLiteral("SHR")});
    }
    return names;
}

Maybe MisspeltWord(const Context& context) {
    const Piece found = Near(context, 0);
    const QString word = MostLike(found.text, WordsThatFit(context));
    if (!found.is(TOKEN_IDENTIFIER) || word.isEmpty() ||
        VariableNamed(context, found.text) != nullptr) {
        return std::nullopt;
    }
    return SayAndOffer(QStringLiteral("did you mean `%1`?").arg(word), {},
                       {InPlaceOf(found, word)});
}

Maybe MisspeltEndOfSection(const Context& context) {
    const Piece word = Near(context, -1);
    const bool isLike = !MostLike(word.text, {QStringLiteral("END_VAR")}).isEmpty() ||
                        word.text.startsWith(QStringLiteral("END_VAR"), Qt::CaseInsensitive);
    if (!IsDeclaring(context) || !Expects(context, TOKEN_COLON) || !word.is(TOKEN_IDENTIFIER) ||
        !isLike) {
        return std::nullopt;
    }
    return SayAndOffer(QStringLiteral("every section ends with `END_VAR`"), word.span,
                       {InPlaceOf(word, QStringLiteral("END_VAR"))});
}

// ---------------------------------------------------------------------------------------------
// What is nowhere
// ---------------------------------------------------------------------------------------------

bool IsLabelWithoutPlace(const NameFact& name) {
    return name.kind == NameKind::Label && name.span.isEmpty();
}

std::vector<QString> DefinedLabels(const Facts& facts) {
    std::vector<QString> names;
    for (const NameFact& name : facts.names) {
        if (name.kind == NameKind::Label && !name.span.isEmpty()) {
            names.push_back(facts.textOf(name.text).toString());
        }
    }
    return names;
}

Maybe MissingLabel(const Context& context) {
    const Facts& facts = context.facts;
    const auto label = std::find_if(facts.names.begin(), facts.names.end(), IsLabelWithoutPlace);
    const auto index = static_cast<int>(label - facts.names.begin());
    const auto use = std::find_if(facts.uses.begin(), facts.uses.end(),
                                  [index](const UseFact& each) { return each.name == index; });
    if (!IsError(context, TXT_LABEL_REFERENCED_BUT_NOT_SET) || label == facts.names.end() ||
        use == facts.uses.end()) {
        return std::nullopt;
    }
    const QStringView name = context.source.text(use->span);
    const QString like = MostLike(name, DefinedLabels(facts));
    if (like.isEmpty()) {
        return Say(QStringLiteral("no label `%1:` stands anywhere for this `GOTO`").arg(name),
                   use->span);
    }
    return SayAndOffer(QStringLiteral("did you mean `%1`?").arg(like), use->span,
                       {{use->span, like}});
}

Maybe Undeclared(const Context& context) {
    const Piece name = UnknownWord(context);
    if (!name.is(TOKEN_IDENTIFIER) || IsTypeName(name)) {
        return std::nullopt;
    }
    const QString unit = Code(NameOf(context, *OpenUnit(context)));
    return Say(
        IsCalled(context, name)
            ? QStringLiteral("no function or function block %1 is built in or defined above")
                  .arg(Code(name))
            : QStringLiteral("%1 has no variable %2: declare it in a section, as in `%3 : INT;`")
                  .arg(unit, Code(name), name.text.toString()),
        name.span);
}

}  // namespace

Rules RulesOfNames() {
    return {{"elsif-of-other-languages"_L1, ElsifOfOtherLanguages},
            {"end-of-other-languages"_L1, EndOfOtherLanguages},
            {"word-of-other-languages"_L1, WordOfOtherLanguages},
            {"defined-below"_L1, DefinedBelow},
            {"standard-function"_L1, StandardFunction},
            {"conversion-function"_L1, ConversionFunction},
            {"declared-elsewhere"_L1, DeclaredElsewhere},
            {"misspelt-name"_L1, Misspelt},
            {"misspelt-word"_L1, MisspeltWord},
            {"misspelt-end-of-section"_L1, MisspeltEndOfSection},
            {"missing-label"_L1, MissingLabel},
            {"undeclared-name"_L1, Undeclared}};
}
