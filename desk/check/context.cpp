#include "check/context.h"

#include "explain/distance.h"
#include "facts/catalogue.h"

#include "qyx_functions.h"
#include "qyx_messages.h"
#include "qyx_types.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>

bool Piece::isOneOf(std::initializer_list<Token> codes) const {
    return std::any_of(codes.begin(), codes.end(), [this](Token each) { return is(each); });
}

bool Piece::isSpelled(QStringView other) const {
    return text.compare(other, Qt::CaseInsensitive) == 0;
}

bool Piece::isSpelled(QLatin1String other) const {
    return text.compare(other, Qt::CaseInsensitive) == 0;
}

bool Piece::isSpelledOneOf(std::initializer_list<QLatin1String> others) const {
    return std::any_of(others.begin(), others.end(),
                       [this](QLatin1String each) { return isSpelled(each); });
}

namespace {

// The reserved words FUNCTION and FUNCTION_BLOCK share their codes with names, and the name of a
// type has the code of the ":" before it.
Token CodeOf(const TokenFact& token, QStringView text) {
    const bool isWord = !text.startsWith(QLatin1Char(':'));
    if (token.code == TOKEN_COLON && isWord) {
        return TOKEN_IDENTIFIER;
    }
    if (token.code != TOKEN_FUNCTION && token.code != TOKEN_FUNCTION_BLOCK) {
        return token.code;
    }
    const QLatin1String keyword = TokensTable[Lookup(token.code)].text;
    return text.compare(keyword, Qt::CaseInsensitive) == 0 ? token.code : TOKEN_IDENTIFIER;
}

std::vector<Piece> PiecesOf(const Source& source, const Facts& facts) {
    std::vector<Piece> pieces;
    pieces.reserve(facts.tokens.size() + 1);
    for (const TokenFact& token : facts.tokens) {
        if (!token.span.isEmpty()) {
            const QStringView text = source.text(token.span);
            pieces.push_back({CodeOf(token, text), token.span, text});
        }
    }
    return pieces;
}

}  // namespace

// What could not be read to its end is no token, and gets a piece of its own.
Context ContextOf(const Source& source, const Facts& facts) {
    std::vector<Piece> pieces = PiecesOf(source, facts);
    const Span error = {std::max(facts.error.token.begin, 0),
                        std::min(facts.error.token.end, source.size())};
    auto at =
        std::lower_bound(pieces.begin(), pieces.end(), error.begin,
                         [](const Piece& piece, int begin) { return piece.span.begin < begin; });
    if (at == pieces.end() || at->span.begin != error.begin) {
        at = pieces.insert(at, {TOKEN_UNKNOWN, error, source.text(error)});
    }
    const auto here = static_cast<int>(at - pieces.begin());
    return {source, facts, std::move(pieces), here};
}

// ---------------------------------------------------------------------------------------------
// The error
// ---------------------------------------------------------------------------------------------

bool IsError(const Context& context, QLatin1String constant) {
    return context.facts.messages.back().constant == ConstantOf(constant);
}

bool IsErrorOneOf(const Context& context, std::initializer_list<QLatin1String> constants) {
    return std::any_of(constants.begin(), constants.end(),
                       [&](QLatin1String each) { return IsError(context, each); });
}

bool Expects(const Context& context, Token code) {
    const std::vector<Token>& expected = context.facts.error.expected;
    return std::find(expected.begin(), expected.end(), code) != expected.end();
}

bool ExpectsOneOf(const Context& context, std::initializer_list<Token> codes) {
    return std::any_of(codes.begin(), codes.end(),
                       [&](Token each) { return Expects(context, each); });
}

// ---------------------------------------------------------------------------------------------
// Pieces
// ---------------------------------------------------------------------------------------------

Piece PieceAt(const Context& context, int index) {
    const bool isThere = index >= 0 && index < static_cast<int>(context.pieces.size());
    return isThere ? context.pieces[static_cast<std::size_t>(index)] : Piece();
}

Piece Near(const Context& context, int distance) {
    return PieceAt(context, context.here + distance);
}

int IndexOf(const Context& context, int offset) {
    const auto found =
        std::lower_bound(context.pieces.begin(), context.pieces.end(), offset,
                         [](const Piece& piece, int begin) { return piece.span.begin < begin; });
    return static_cast<int>(found - context.pieces.begin());
}

bool IsFirstOnLine(const Context& context, int index) {
    const Piece previous = PieceAt(context, index - 1);
    return previous.span.isEmpty() ||
           LineOf(context, previous.span) != LineOf(context, PieceAt(context, index).span);
}

bool TouchesPrevious(const Context& context, int index) {
    const Piece previous = PieceAt(context, index - 1);
    return !previous.span.isEmpty() && previous.span.end == PieceAt(context, index).span.begin;
}

QString RunFrom(const Context& context, int index) {
    QString run = PieceAt(context, index).text.toString();
    while (TouchesPrevious(context, ++index) &&
           PieceAt(context, index).isOneOf({TOKEN_IDENTIFIER, TOKEN_NUMBER})) {
        run += PieceAt(context, index).text;
    }
    return run;
}

bool CanEndValue(const Piece& piece) {
    return piece.isOneOf({TOKEN_IDENTIFIER, TOKEN_NUMBER, TOKEN_STRING, TOKEN_TRUE, TOKEN_FALSE,
                          TOKEN_TICK, TOKEN_RESULT, TOKEN_RIGHT_PARENTHESIS,
                          TOKEN_RIGHT_BRACKET});
}

bool CanBeginStatement(const Piece& piece) {
    return piece.isOneOf({TOKEN_IDENTIFIER, TOKEN_RESULT, TOKEN_TICK, TOKEN_IF, TOKEN_FOR,
                          TOKEN_WHILE, TOKEN_REPEAT, TOKEN_CASE, TOKEN_BREAK, TOKEN_CONTINUE,
                          TOKEN_EXIT, TOKEN_GOTO});
}

bool IsComparison(const Piece& piece) {
    return piece.isOneOf({TOKEN_EQUAL, TOKEN_NOT_EQUAL, TOKEN_LESS, TOKEN_GREATER,
                          TOKEN_LESS_OR_EQUAL, TOKEN_GREATER_OR_EQUAL});
}

bool IsLogical(const Piece& piece) {
    return piece.isOneOf({TOKEN_AND, TOKEN_OR, TOKEN_XOR});
}

bool IsTypeName(const Piece& piece) {
    return std::any_of(std::begin(TypsTable), std::end(TypsTable),
                       [&](const typ& row) { return piece.isSpelled(row.name); });
}

Span After(const Piece& piece) {
    return {piece.span.end, piece.span.end + 1};
}

int LineOf(const Context& context, Span span) {
    return context.source.placeOf(span.begin).line;
}

QString Code(QStringView text) {
    return QLatin1Char('`') + text.toString() + QLatin1Char('`');
}

QString Code(const Piece& piece) {
    return Code(piece.text);
}

QString TextOf(Token code) {
    return TokensTable[Lookup(code)].text;
}

QString Code(Token code) {
    return Code(TextOf(code));
}

QString ConstantsOfEnumeration(const Context& context, int index) {
    const QString form = QStringLiteral("CONSTANT %1 : INT := %2;");
    const QString first = form.arg(PieceAt(context, index).text.toString()).arg(0);
    QStringList constants;
    for (; PieceAt(context, index).is(TOKEN_IDENTIFIER); index += 2) {
        constants.append(form.arg(PieceAt(context, index).text.toString()).arg(constants.size()));
        if (!PieceAt(context, index + 1).is(TOKEN_COMMA)) {
            break;
        }
    }
    const bool isPlain = PieceAt(context, index + 1).is(TOKEN_RIGHT_PARENTHESIS);
    return isPlain ? constants.join(u' ') : first;
}

// ---------------------------------------------------------------------------------------------
// What is open
// ---------------------------------------------------------------------------------------------

bool IsDeclaring(const Context& context) {
    return context.facts.open.declaration != NONE;
}

const UnitFact* OpenUnit(const Context& context) {
    const int unit = context.facts.open.unit;
    return unit == NONE ? nullptr : &context.facts.units[static_cast<std::size_t>(unit)];
}

bool IsIn(const Context& context, Token unitKind) {
    const UnitFact* const unit = OpenUnit(context);
    return unit != nullptr && unit->kind == unitKind;
}

QStringView NameOf(const Context& context, const UnitFact& unit) {
    const Facts& facts = context.facts;
    return unit.name == NONE
               ? QStringView()
               : facts.textOf(facts.names[static_cast<std::size_t>(unit.name)].text);
}

namespace {

const StatementFact* StatementOf(const Context& context, int index) {
    return index == NONE ? nullptr : &context.facts.statements[static_cast<std::size_t>(index)];
}

}  // namespace

const StatementFact* OpenStatement(const Context& context, int level) {
    const StatementFact* statement = StatementOf(context, context.facts.open.statement);
    while (statement != nullptr && level-- > 0) {
        statement = StatementOf(context, statement->parent);
    }
    return statement;
}

const StatementFact* OpenConstruct(const Context& context, int level) {
    const StatementFact* statement = OpenStatement(context);
    while (statement != nullptr && (!IsCompoundBegin(statement->kind) || level-- > 0)) {
        statement = StatementOf(context, statement->parent);
    }
    return statement;
}

bool IsOpen(const Context& context, Token constructKind) {
    int level = 0;
    const StatementFact* construct = OpenConstruct(context);
    while (construct != nullptr && construct->kind != constructKind) {
        construct = OpenConstruct(context, ++level);
    }
    return construct != nullptr;
}

Span WordOf(const StatementFact& statement) {
    const int length = TokensTable[Lookup(statement.kind)].text.size();
    return {statement.span.begin, statement.span.begin + length};
}

// ---------------------------------------------------------------------------------------------
// Names
// ---------------------------------------------------------------------------------------------

// A type is refused while it is the current token, and so are the variable of a FOR and one that
// is passed by reference; any other name when the token after it has been read.
std::optional<UnknownName> Unknown(const Context& context) {
    using Role = UnknownName::Role;
    if (!IsError(context, TXT_UNRECOGNIZED_KEYWORD) || !context.facts.error.expected.empty()) {
        return std::nullopt;
    }
    const int here = context.here;
    if (context.facts.open.statement == NONE) {
        const bool isType = Near(context, -1).is(TOKEN_COLON);
        return UnknownName{here, isType ? Role::Type : Role::Section};
    }
    const bool isBefore = Near(context, -1).isOneOf({TOKEN_IDENTIFIER, TOKEN_RESULT});
    return UnknownName{isBefore ? here - 1 : here, Role::Variable};
}

Piece UnknownWord(const Context& context) {
    const std::optional<UnknownName> unknown = Unknown(context);
    const bool isVariable = unknown && unknown->role == UnknownName::Role::Variable;
    return isVariable ? PieceAt(context, unknown->index) : Piece();
}

const NameFact* VariableNamed(const Context& context, QStringView name) {
    const Facts& facts = context.facts;
    const auto found =
        std::find_if(facts.names.begin(), facts.names.end(), [&](const NameFact& each) {
            return each.kind == NameKind::Variable && each.unit == facts.open.unit &&
                   facts.textOf(each.text).compare(name, Qt::CaseInsensitive) == 0;
        });
    return found == facts.names.end() ? nullptr : &*found;
}

namespace {

Callee BuiltInOf(const FunctionItem& function) {
    const Typ type = function.isFunction ? function.resultType : TYP_NONE;
    Callee callee = {function.name(), function.isFunction, {}, {}, type};
    for (const VarItem& argument : function.arguments) {
        callee.formals.push_back({QString(), argument.type, false});
    }
    return callee;
}

std::vector<Callee> MakeBuiltIns() {
    FunctionList list;
    AddBuildInFunctions(list);
    std::vector<Callee> callees;
    for (const FunctionItem& function : list) {
        callees.push_back(BuiltInOf(function));
    }
    return callees;
}

bool IsArgument(const NameFact& name, int unit) {
    return name.kind == NameKind::Variable && name.unit == unit &&
           (name.section == TOKEN_VAR_ARG || name.section == TOKEN_VAR_REF);
}

Callee DefinitionOf(const Facts& facts, int unit) {
    const UnitFact& fact = facts.units[static_cast<std::size_t>(unit)];
    const NameFact& own = facts.names[static_cast<std::size_t>(fact.name)];
    Callee callee = {
        facts.textOf(own.text).toString(), fact.kind == TOKEN_FUNCTION, {}, own.span, own.type};
    for (const NameFact& name : facts.names) {
        if (IsArgument(name, unit)) {
            callee.formals.push_back(
                {facts.textOf(name.text).toString(), name.type, name.isReference});
        }
    }
    return callee;
}

}  // namespace

const std::vector<Callee>& BuiltInCallees() {
    static const std::vector<Callee> builtIns = MakeBuiltIns();
    return builtIns;
}

std::optional<Callee> CalleeNamed(const Context& context, QStringView name) {
    const std::vector<UnitFact>& units = context.facts.units;
    for (std::size_t unit = 0; unit < units.size(); ++unit) {
        const bool isProgram = units[unit].kind == TOKEN_PROGRAM;
        const QStringView own = NameOf(context, units[unit]);
        if (!isProgram && own.compare(name, Qt::CaseInsensitive) == 0 && !own.isEmpty()) {
            return DefinitionOf(context.facts, static_cast<int>(unit));
        }
    }
    for (const Callee& callee : BuiltInCallees()) {
        if (QStringView(callee.name).compare(name, Qt::CaseInsensitive) == 0) {
            return callee;
        }
    }
    return std::nullopt;
}

namespace {

bool EndsSearch(const Piece& piece) {
    return piece.span.isEmpty() ||
           piece.isOneOf({TOKEN_SEMICOLON, TOKEN_THEN, TOKEN_DO, TOKEN_OF, TOKEN_END_VAR});
}

}  // namespace

int OpeningBefore(const Context& context, int index) {
    int depth = 0;
    for (--index; !EndsSearch(PieceAt(context, index)); --index) {
        const Piece piece = PieceAt(context, index);
        if (piece.is(TOKEN_RIGHT_PARENTHESIS)) {
            ++depth;
        } else if (piece.is(TOKEN_LEFT_PARENTHESIS) && depth-- == 0) {
            return index;
        }
    }
    return NONE;
}

namespace {

// The commas between an opening parenthesis and a piece that belong to that parenthesis.
int CommasBetween(const Context& context, int opening, int index) {
    int depth = 0;
    int commas = 0;
    for (int each = opening + 1; each < index; ++each) {
        const Piece piece = PieceAt(context, each);
        depth += piece.is(TOKEN_LEFT_PARENTHESIS) ? 1 : 0;
        depth -= piece.is(TOKEN_RIGHT_PARENTHESIS) ? 1 : 0;
        commas += piece.is(TOKEN_COMMA) && depth == 0 ? 1 : 0;
    }
    return commas;
}

}  // namespace

std::optional<CallPlace> CallAround(const Context& context, int index) {
    const int opening = OpeningBefore(context, index);
    if (opening == NONE || !PieceAt(context, opening - 1).is(TOKEN_IDENTIFIER)) {
        return std::nullopt;
    }
    return CallPlace{opening - 1, CommasBetween(context, opening, index)};
}

// ---------------------------------------------------------------------------------------------
// Likeness
// ---------------------------------------------------------------------------------------------

namespace {

// Whether two neighbouring letters change places, and that is all.
bool IsOneExchange(const QString& one, const QString& other) {
    const auto [first, second] =
        std::mismatch(one.begin(), one.end(), other.begin(), other.end());
    const bool hasTwo = one.end() - first >= 2 && other.end() - second >= 2;
    return one.size() == other.size() && hasTwo && first[0] == second[1] &&
           first[1] == second[0] && std::equal(first + 2, one.end(), second + 2);
}

int DistanceBetween(const QString& one, const QString& other) {
    return IsOneExchange(one, other) ? 1 : EditDistance(one, other);
}

// How much two names may differ: short ones are soon like any other.
int LimitFor(qsizetype size) {
    constexpr int noneBelow = 3;
    constexpr int oneBelow = 5;
    return size < noneBelow ? 0 : size < oneBelow ? 1 : 2;
}

}  // namespace

QString MostLike(QStringView name, const std::vector<QString>& names) {
    const QString folded = name.toString().toCaseFolded();
    int least = LimitFor(name.size()) + 1;
    QString best;
    for (const QString& each : names) {
        const bool isNear = std::abs(each.size() - folded.size()) < least;
        const int distance = isNear ? DistanceBetween(folded, each.toCaseFolded()) : least;
        if (distance < least) {
            least = distance;
            best = each;
        }
    }
    return best;
}
