#include "check/tokens.h"

#include <QString>
#include <QStringList>

#include <algorithm>

namespace {

bool IsOneOf(Token code, std::initializer_list<Token> codes) {
    return std::find(codes.begin(), codes.end(), code) != codes.end();
}

struct Pair {
    Token begin;
    Token end;
};

constexpr Pair UNITS[] = {
    {TOKEN_FUNCTION, TOKEN_END_FUNCTION},
    {TOKEN_FUNCTION_BLOCK, TOKEN_END_FUNCTION_BLOCK},
    {TOKEN_PROGRAM, TOKEN_END_PROGRAM},
};

constexpr Pair COMPOUNDS[] = {
    {TOKEN_IF, TOKEN_END_IF},         {TOKEN_FOR, TOKEN_END_FOR},
    {TOKEN_WHILE, TOKEN_END_WHILE},   {TOKEN_CASE, TOKEN_END_CASE},
    {TOKEN_REPEAT, TOKEN_END_REPEAT},
};

template <std::size_t count>
bool HasBegin(const Pair (&pairs)[count], Token code) {
    return std::any_of(pairs, pairs + count, [code](const Pair& p) { return p.begin == code; });
}

template <std::size_t count>
bool HasEnd(const Pair (&pairs)[count], Token code) {
    return std::any_of(pairs, pairs + count, [code](const Pair& p) { return p.end == code; });
}

}  // namespace

Token Tokens::code(int index) const {
    if (!isThere(index)) {
        return TOKEN_UNKNOWN;
    }
    const Token code = tokens_[static_cast<std::size_t>(index)].code;
    const bool mayBeName = code == TOKEN_FUNCTION || code == TOKEN_FUNCTION_BLOCK;
    const bool isName = mayBeName && !isText(index, QString(TokensTable[Lookup(code)].text));
    return isName ? TOKEN_IDENTIFIER : code;
}

bool Tokens::isOneOf(int index, std::initializer_list<Token> wanted) const {
    return IsOneOf(code(index), wanted);
}

Span Tokens::span(int index) const {
    return isThere(index) ? tokens_[static_cast<std::size_t>(index)].span
                          : Span{source_.size(), source_.size()};
}

bool Tokens::isText(int index, QStringView wanted) const {
    return text(index).compare(wanted, Qt::CaseInsensitive) == 0;
}

bool Tokens::isFirstOnLine(int index) const {
    if (index == 0) {
        return true;
    }
    const int before = span(index - 1).end;
    return source_.text({before, span(index).begin}).contains(u'\n');
}

int Tokens::at(int offset) const {
    const auto found =
        std::lower_bound(tokens_.begin(), tokens_.end(), offset,
                         [](const TokenFact& token, int at) { return token.span.begin < at; });
    return static_cast<int>(found - tokens_.begin());
}

Typ Tokens::typeNamed(int index) const {
    const auto* const row =
        std::find_if(std::begin(TypsTable), std::end(TypsTable),
                     [&](const typ& each) { return isText(index, QString(each.name)); });
    return row == std::end(TypsTable) ? TYP_NONE : row->code;
}

bool IsUnitBegin(Token code) {
    return HasBegin(UNITS, code);
}

bool IsUnitEnd(Token code) {
    return HasEnd(UNITS, code);
}

bool IsSectionBegin(Token code) {
    return IsOneOf(code,
                   {TOKEN_VAR, TOKEN_VAR_INPUT, TOKEN_VAR_OUTPUT, TOKEN_VAR_GLOBAL, TOKEN_VAR_ARG,
                    TOKEN_VAR_REF, TOKEN_VAR_YXGLOBAL, TOKEN_VAR_YXREGISTER});
}

bool IsCompoundBegin(Token code) {
    return HasBegin(COMPOUNDS, code);
}

bool IsCompoundEnd(Token code) {
    return HasEnd(COMPOUNDS, code);
}

bool IsBranch(Token code) {
    return IsOneOf(code, {TOKEN_ELSIF, TOKEN_ELSE, TOKEN_UNTIL});
}

bool IsJump(Token code) {
    return IsOneOf(code, {TOKEN_EXIT, TOKEN_BREAK, TOKEN_CONTINUE, TOKEN_GOTO});
}

bool IsBoundary(Token code) {
    return IsUnitBegin(code) || IsUnitEnd(code) || IsSectionBegin(code) ||
           IsCompoundBegin(code) || IsCompoundEnd(code) || IsBranch(code) || IsJump(code) ||
           code == TOKEN_END_VAR;
}

Token EndOf(Token begin) {
    for (const Pair& pair : UNITS) {
        if (pair.begin == begin) {
            return pair.end;
        }
    }
    const auto* const pair = std::find_if(std::begin(COMPOUNDS), std::end(COMPOUNDS),
                                          [begin](const Pair& p) { return p.begin == begin; });
    return pair == std::end(COMPOUNDS) ? TOKEN_UNKNOWN : pair->end;
}

namespace {

// A type of numbers that other dialects have, and what holds the same values.
struct ForeignType {
    QLatin1String name;
    Typ type;
};

constexpr ForeignType FOREIGN_TYPES[] = {
    {"BYTE"_L1, TYP_USINT}, {"WORD"_L1, TYP_UINT},  {"DWORD"_L1, TYP_UDINT},
    {"LINT"_L1, TYP_LREAL}, {"TIME"_L1, TYP_UDINT},
};

Typ TypeNamed(const QString& name) {
    for (const typ& row : TypsTable) {
        if (name == row.name) {
            return row.code;
        }
    }
    for (const ForeignType& row : FOREIGN_TYPES) {
        if (name == row.name) {
            return row.type;
        }
    }
    return TYP_NONE;
}

}  // namespace

Conversion ConversionOf(QStringView name) {
    const QStringList parts = name.toString().toUpper().split(QStringLiteral("_TO_"));
    constexpr int two = 2;
    if (parts.size() != two) {
        return {TYP_NONE, TYP_NONE};
    }
    return {TypeNamed(parts.first()), TypeNamed(parts.last())};
}

bool IsWordForElse(QStringView name) {
    const QString word = name.toString().toUpper();
    return word == QLatin1String("OTHERS") || word == QLatin1String("OTHER") ||
           word == QLatin1String("OTHERWISE") || word == QLatin1String("DEFAULT");
}
