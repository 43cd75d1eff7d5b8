// The vocabulary of the language: the codes of tokens and types and the tables of their texts.
//
// A new token is an enumerator and a row, a new type likewise (and a row of conversions,
// qyx_types). Tables count themselves.
#pragma once

#include "qyx_text.h"

#include <QStringView>

#include <algorithm>
#include <cstddef>
#include <iterator>

constexpr int NO_ROW = -1;  // of a word that stands in no table

// ---------------------------------------------------------------------------------------------
// Tokens
// ---------------------------------------------------------------------------------------------

// Token codes. The parsers compare against them; they are fixed.
enum Token : unsigned char {
    TOKEN_UNKNOWN = 1,  // a symbol or pair of symbols that is no token
    TOKEN_PROGRAM = 2,
    TOKEN_END_PROGRAM = 3,
    TOKEN_SEMICOLON = 4,
    TOKEN_COLON = 5,
    TOKEN_DOT = 6,
    TOKEN_DOT_DOT = 7,
    TOKEN_COMMA = 8,
    TOKEN_ASSIGN = 9,
    TOKEN_BREAK = 10,
    TOKEN_CONTINUE = 11,
    TOKEN_EXIT = 12,
    TOKEN_RESULT = 13,
    TOKEN_NUMBER = 14,      // given by the scanner, no row in TokensTable
    TOKEN_IDENTIFIER = 15,  // given by the scanner, no row in TokensTable
    TOKEN_STRING = 16,      // given by the scanner, no row in TokensTable
    TOKEN_CONSTANT = 17,
    TOKEN_VAR = 18,
    TOKEN_VAR_INPUT = 19,
    TOKEN_VAR_OUTPUT = 20,
    TOKEN_VAR_GLOBAL = 21,
    TOKEN_VAR_YXGLOBAL = 22,
    TOKEN_VAR_YXREGISTER = 23,
    TOKEN_END_VAR = 24,
    TOKEN_LINE_COMMENT = 25,
    TOKEN_COMMENT_BEGIN = 26,
    TOKEN_COMMENT_END = 27,
    TOKEN_PLUS = 28,
    TOKEN_MINUS = 29,
    TOKEN_MULTIPLY = 30,
    TOKEN_DIVIDE = 31,
    TOKEN_MOD = 32,
    TOKEN_OR = 33,
    TOKEN_XOR = 34,
    TOKEN_AND = 35,
    TOKEN_NOT = 36,
    TOKEN_SHR = 37,
    TOKEN_SHL = 38,
    TOKEN_ROR = 39,
    TOKEN_ROL = 40,
    TOKEN_POWER = 41,
    TOKEN_GOTO = 42,
    TOKEN_TRUE = 43,
    TOKEN_FALSE = 44,
    TOKEN_EQUAL = 45,
    TOKEN_NOT_EQUAL = 46,
    TOKEN_LESS = 47,
    TOKEN_GREATER = 48,
    TOKEN_LESS_OR_EQUAL = 49,
    TOKEN_GREATER_OR_EQUAL = 50,
    TOKEN_LEFT_PARENTHESIS = 51,
    TOKEN_RIGHT_PARENTHESIS = 52,
    TOKEN_LEFT_BRACKET = 53,
    TOKEN_RIGHT_BRACKET = 54,
    TOKEN_IF = 55,
    TOKEN_THEN = 56,
    TOKEN_ELSIF = 57,
    TOKEN_ELSE = 58,
    TOKEN_END_IF = 59,
    TOKEN_FOR = 60,
    TOKEN_TO = 61,
    TOKEN_DOWNTO = 62,
    TOKEN_DO = 63,
    TOKEN_END_FOR = 64,
    TOKEN_REPEAT = 65,
    TOKEN_UNTIL = 66,
    TOKEN_END_REPEAT = 67,
    TOKEN_WHILE = 68,
    TOKEN_END_WHILE = 69,
    TOKEN_CASE = 70,
    TOKEN_OF = 71,
    TOKEN_END_CASE = 72,
    TOKEN_TICK = 73,
    TOKEN_FUNCTION = 74,  // the keyword, and the name of a declared function
    TOKEN_END_FUNCTION = 75,
    TOKEN_FUNCTION_BLOCK = 76,  // the keyword, and the name of a declared function block
    TOKEN_END_FUNCTION_BLOCK = 77,
    TOKEN_VAR_ARG = 78,
    TOKEN_VAR_REF = 79
};

// A row of the table of reserved words and punctuation.
struct token {
    Token code;
    QLatin1String text;  // upper case
};

// QUIRK(token-codes): SHL has a higher code than SHR, and VAR_ARG and VAR_REF carry late codes
// among the sections. The codes are fixed.
// clang-format off
inline constexpr token TokensTable[] = {
    {TOKEN_PROGRAM, "PROGRAM"_L1},
    {TOKEN_END_PROGRAM, "END_PROGRAM"_L1},
    {TOKEN_SEMICOLON, ";"_L1},
    {TOKEN_COLON, ":"_L1},
    {TOKEN_DOT, "."_L1},
    {TOKEN_DOT_DOT, ".."_L1},
    {TOKEN_COMMA, ","_L1},
    {TOKEN_ASSIGN, ":="_L1},
    {TOKEN_BREAK, "BREAK"_L1},
    {TOKEN_CONTINUE, "CONTINUE"_L1},
    {TOKEN_EXIT, "EXIT"_L1},
    {TOKEN_RESULT, "RESULT"_L1},
    {TOKEN_CONSTANT, "CONSTANT"_L1},
    {TOKEN_VAR, "VAR"_L1},
    {TOKEN_VAR_INPUT, "VAR_INPUT"_L1},
    {TOKEN_VAR_OUTPUT, "VAR_OUTPUT"_L1},
    {TOKEN_VAR_GLOBAL, "VAR_GLOBAL"_L1},
    {TOKEN_VAR_ARG, "VAR_ARG"_L1},
    {TOKEN_VAR_REF, "VAR_REF"_L1},
    {TOKEN_VAR_YXGLOBAL, "VAR_YXGLOBAL"_L1},
    {TOKEN_VAR_YXREGISTER, "VAR_YXREGISTER"_L1},
    {TOKEN_END_VAR, "END_VAR"_L1},
    {TOKEN_LINE_COMMENT, "//"_L1},
    {TOKEN_COMMENT_BEGIN, "(*"_L1},
    {TOKEN_COMMENT_END, "*)"_L1},
    {TOKEN_PLUS, "+"_L1},
    {TOKEN_MINUS, "-"_L1},
    {TOKEN_MULTIPLY, "*"_L1},
    {TOKEN_DIVIDE, "/"_L1},
    {TOKEN_MOD, "MOD"_L1},
    {TOKEN_OR, "OR"_L1},
    {TOKEN_XOR, "XOR"_L1},
    {TOKEN_AND, "AND"_L1},
    {TOKEN_NOT, "NOT"_L1},
    {TOKEN_SHL, "SHL"_L1},
    {TOKEN_SHR, "SHR"_L1},
    {TOKEN_ROR, "ROR"_L1},
    {TOKEN_ROL, "ROL"_L1},
    {TOKEN_POWER, "**"_L1},
    {TOKEN_GOTO, "GOTO"_L1},
    {TOKEN_TRUE, "TRUE"_L1},
    {TOKEN_FALSE, "FALSE"_L1},
    {TOKEN_EQUAL, "="_L1},
    {TOKEN_NOT_EQUAL, "<>"_L1},
    {TOKEN_LESS, "<"_L1},
    {TOKEN_GREATER, ">"_L1},
    {TOKEN_LESS_OR_EQUAL, "<="_L1},
    {TOKEN_GREATER_OR_EQUAL, ">="_L1},
    {TOKEN_LEFT_PARENTHESIS, "("_L1},
    {TOKEN_RIGHT_PARENTHESIS, ")"_L1},
    {TOKEN_LEFT_BRACKET, "["_L1},
    {TOKEN_RIGHT_BRACKET, "]"_L1},
    {TOKEN_IF, "IF"_L1},
    {TOKEN_THEN, "THEN"_L1},
    {TOKEN_ELSIF, "ELSIF"_L1},
    {TOKEN_ELSE, "ELSE"_L1},
    {TOKEN_END_IF, "END_IF"_L1},
    {TOKEN_FOR, "FOR"_L1},
    {TOKEN_TO, "TO"_L1},
    {TOKEN_DOWNTO, "DOWNTO"_L1},
    {TOKEN_DO, "DO"_L1},
    {TOKEN_END_FOR, "END_FOR"_L1},
    {TOKEN_REPEAT, "REPEAT"_L1},
    {TOKEN_UNTIL, "UNTIL"_L1},
    {TOKEN_END_REPEAT, "END_REPEAT"_L1},
    {TOKEN_WHILE, "WHILE"_L1},
    {TOKEN_END_WHILE, "END_WHILE"_L1},
    {TOKEN_CASE, "CASE"_L1},
    {TOKEN_OF, "OF"_L1},
    {TOKEN_END_CASE, "END_CASE"_L1},
    {TOKEN_TICK, "TICK"_L1},
    {TOKEN_FUNCTION, "FUNCTION"_L1},
    {TOKEN_END_FUNCTION, "END_FUNCTION"_L1},
    {TOKEN_FUNCTION_BLOCK, "FUNCTION_BLOCK"_L1},
    {TOKEN_END_FUNCTION_BLOCK, "END_FUNCTION_BLOCK"_L1},
};
// clang-format on

constexpr int TOKENS_COUNT = std::size(TokensTable);

// One more than the highest code of a token.
constexpr std::size_t TokenCodesCount() {
    std::size_t count = 0;
    for (const token& row : TokensTable) {
        count = std::max<std::size_t>(count, row.code + 1U);
    }
    return count;
}
constexpr std::size_t TOKEN_CODES_COUNT = TokenCodesCount();

// The row of TokensTable with that code, NO_ROW if none.
int Lookup(Token code);

// The token of one or two characters that are no letters, TOKEN_UNKNOWN if they make up none.
Token PunctuationToken(QStringView text);

// ---------------------------------------------------------------------------------------------
// Types
// ---------------------------------------------------------------------------------------------

// Type codes. Their order is the widening order: a conversion results in the larger code.
enum Typ : unsigned char {
    TYP_NONE = 0,  // nothing seen yet
    TYP_BOOL = 1,
    TYP_SINT = 2,
    TYP_USINT = 3,
    TYP_INT = 4,
    TYP_UINT = 5,
    TYP_DINT = 6,
    TYP_UDINT = 7,
    TYP_REAL = 8,
    TYP_LREAL = 9,
    TYP_STRING = 10,
    TYP_ARRAY = 11
};

// What operators, conditions and FOR ask of a type.
enum class TypClass : unsigned char { Boolean, Ordinal, Real, Text };

// A row of the table of declared types.
struct typ {
    Typ code;
    TypClass typClass;
    QLatin1String name;       // the keyword, upper case
    QLatin1String shortName;  // the two letters that target code uses
};

// In the order of the codes, from 1 on.
// clang-format off
inline constexpr typ TypsTable[] = {
    {TYP_BOOL, TypClass::Boolean, "BOOL"_L1, "BL"_L1},
    {TYP_SINT, TypClass::Ordinal, "SINT"_L1, "SB"_L1},
    {TYP_USINT, TypClass::Ordinal, "USINT"_L1, "UB"_L1},
    {TYP_INT, TypClass::Ordinal, "INT"_L1, "SI"_L1},
    {TYP_UINT, TypClass::Ordinal, "UINT"_L1, "UI"_L1},
    {TYP_DINT, TypClass::Ordinal, "DINT"_L1, "SD"_L1},
    {TYP_UDINT, TypClass::Ordinal, "UDINT"_L1, "UD"_L1},
    {TYP_REAL, TypClass::Real, "REAL"_L1, "SR"_L1},
    {TYP_LREAL, TypClass::Real, "LREAL"_L1, "LR"_L1},
    {TYP_STRING, TypClass::Text, "STRING"_L1, "PS"_L1},
    {TYP_ARRAY, TypClass::Text, "ARRAY"_L1, "PA"_L1},
};
// clang-format on

constexpr int TYPS_COUNT = std::size(TypsTable);
constexpr std::size_t TYP_CODES_COUNT = TYPS_COUNT + 1;  // TYP_NONE among them

constexpr bool IsInOrderOfCodes() {
    for (std::size_t row = 0; row < std::size(TypsTable); ++row) {
        if (TypsTable[row].code != row + 1) {
            return false;
        }
    }
    return true;
}
static_assert(IsInOrderOfCodes(), "a row is found by its code");
