// The vocabulary: the codes of tokens and types and the tables of their texts.

#include "qyx_tables.h"

#include "support.h"

namespace {

// ---------------------------------------------------------------------------------------------
// Tokens
// ---------------------------------------------------------------------------------------------

struct TokenRow {
    Token code;
    int number;
    const char* text;
};

constexpr std::array<TokenRow, 75> TOKENS = {{
    {TOKEN_PROGRAM, 2, "PROGRAM"},
    {TOKEN_END_PROGRAM, 3, "END_PROGRAM"},
    {TOKEN_SEMICOLON, 4, ";"},
    {TOKEN_COLON, 5, ":"},
    {TOKEN_DOT, 6, "."},
    {TOKEN_DOT_DOT, 7, ".."},
    {TOKEN_COMMA, 8, ","},
    {TOKEN_ASSIGN, 9, ":="},
    {TOKEN_BREAK, 10, "BREAK"},
    {TOKEN_CONTINUE, 11, "CONTINUE"},
    {TOKEN_EXIT, 12, "EXIT"},
    {TOKEN_RESULT, 13, "RESULT"},
    {TOKEN_CONSTANT, 17, "CONSTANT"},
    {TOKEN_VAR, 18, "VAR"},
    {TOKEN_VAR_INPUT, 19, "VAR_INPUT"},
    {TOKEN_VAR_OUTPUT, 20, "VAR_OUTPUT"},
    {TOKEN_VAR_GLOBAL, 21, "VAR_GLOBAL"},
    {TOKEN_VAR_ARG, 78, "VAR_ARG"},
    {TOKEN_VAR_REF, 79, "VAR_REF"},
    {TOKEN_VAR_YXGLOBAL, 22, "VAR_YXGLOBAL"},
    {TOKEN_VAR_YXREGISTER, 23, "VAR_YXREGISTER"},
    {TOKEN_END_VAR, 24, "END_VAR"},
    {TOKEN_LINE_COMMENT, 25, "//"},
    {TOKEN_COMMENT_BEGIN, 26, "(*"},
    {TOKEN_COMMENT_END, 27, "*)"},
    {TOKEN_PLUS, 28, "+"},
    {TOKEN_MINUS, 29, "-"},
    {TOKEN_MULTIPLY, 30, "*"},
    {TOKEN_DIVIDE, 31, "/"},
    {TOKEN_MOD, 32, "MOD"},
    {TOKEN_OR, 33, "OR"},
    {TOKEN_XOR, 34, "XOR"},
    {TOKEN_AND, 35, "AND"},
    {TOKEN_NOT, 36, "NOT"},
    {TOKEN_SHL, 38, "SHL"},
    {TOKEN_SHR, 37, "SHR"},
    {TOKEN_ROR, 39, "ROR"},
    {TOKEN_ROL, 40, "ROL"},
    {TOKEN_POWER, 41, "**"},
    {TOKEN_GOTO, 42, "GOTO"},
    {TOKEN_TRUE, 43, "TRUE"},
    {TOKEN_FALSE, 44, "FALSE"},
    {TOKEN_EQUAL, 45, "="},
    {TOKEN_NOT_EQUAL, 46, "<>"},
    {TOKEN_LESS, 47, "<"},
    {TOKEN_GREATER, 48, ">"},
    {TOKEN_LESS_OR_EQUAL, 49, "<="},
    {TOKEN_GREATER_OR_EQUAL, 50, ">="},
    {TOKEN_LEFT_PARENTHESIS, 51, "("},
    {TOKEN_RIGHT_PARENTHESIS, 52, ")"},
    {TOKEN_LEFT_BRACKET, 53, "["},
    {TOKEN_RIGHT_BRACKET, 54, "]"},
    {TOKEN_IF, 55, "IF"},
    {TOKEN_THEN, 56, "THEN"},
    {TOKEN_ELSIF, 57, "ELSIF"},
    {TOKEN_ELSE, 58, "ELSE"},
    {TOKEN_END_IF, 59, "END_IF"},
    {TOKEN_FOR, 60, "FOR"},
    {TOKEN_TO, 61, "TO"},
    {TOKEN_DOWNTO, 62, "DOWNTO"},
    {TOKEN_DO, 63, "DO"},
    {TOKEN_END_FOR, 64, "END_FOR"},
    {TOKEN_REPEAT, 65, "REPEAT"},
    {TOKEN_UNTIL, 66, "UNTIL"},
    {TOKEN_END_REPEAT, 67, "END_REPEAT"},
    {TOKEN_WHILE, 68, "WHILE"},
    {TOKEN_END_WHILE, 69, "END_WHILE"},
    {TOKEN_CASE, 70, "CASE"},
    {TOKEN_OF, 71, "OF"},
    {TOKEN_END_CASE, 72, "END_CASE"},
    {TOKEN_TICK, 73, "TICK"},
    {TOKEN_FUNCTION, 74, "FUNCTION"},
    {TOKEN_END_FUNCTION, 75, "END_FUNCTION"},
    {TOKEN_FUNCTION_BLOCK, 76, "FUNCTION_BLOCK"},
    {TOKEN_END_FUNCTION_BLOCK, 77, "END_FUNCTION_BLOCK"},
}};

TEST(Tokens, EveryRowHasItsCodeAndItsText) {
    ASSERT_EQ(TOKENS_COUNT, static_cast<int>(TOKENS.size()));
    for (std::size_t row = 0; row < TOKENS.size(); ++row) {
        EXPECT_EQ(TokensTable[row].code, TOKENS[row].code);
        EXPECT_EQ(static_cast<int>(TokensTable[row].code), TOKENS[row].number);
        EXPECT_EQ(TokensTable[row].text, QLatin1String(TOKENS[row].text));
    }
}

TEST(Tokens, AreFoundByTheirCodes) {
    for (std::size_t row = 0; row < TOKENS.size(); ++row) {
        EXPECT_EQ(Lookup(TOKENS[row].code), static_cast<int>(row)) << TOKENS[row].text;
    }
    for (const Token code :
         {Token{0}, TOKEN_UNKNOWN, TOKEN_NUMBER, TOKEN_IDENTIFIER, TOKEN_STRING}) {
        EXPECT_EQ(Lookup(code), NO_ROW) << NameOf(code);
    }
}

TEST(Tokens, OfKindsWithoutTextHaveTheirCodesToo) {
    EXPECT_EQ(static_cast<int>(TOKEN_UNKNOWN), 1);
    EXPECT_EQ(static_cast<int>(TOKEN_NUMBER), 14);
    EXPECT_EQ(static_cast<int>(TOKEN_IDENTIFIER), 15);
    EXPECT_EQ(static_cast<int>(TOKEN_STRING), 16);
}

TEST(Tokens, ThereIsRoomForEveryCode) {
    EXPECT_EQ(TOKEN_CODES_COUNT, TOKEN_VAR_REF + 1U);
}

// The row of punctuation with that text, TOKEN_UNKNOWN if none.
Token PunctuationNamed(const QString& text) {
    for (const TokenRow& row : TOKENS) {
        if (text == QLatin1String(row.text) && !IsAlpha(text[0])) {
            return row.code;
        }
    }
    return TOKEN_UNKNOWN;
}

QString AsciiText(int first, int second) {
    QString text = QChar(first);
    if (second != 0) {
        text += QChar(second);
    }
    return text;
}

TEST(Tokens, PunctuationIsFoundByEveryOneAndTwoCharacters) {
    for (int first = 1; first <= 0x7F; ++first) {
        for (int second = 0; second <= 0x7F; ++second) {
            const QString text = AsciiText(first, second);
            if (!IsAlpha(text[0])) {
                ASSERT_EQ(PunctuationToken(text), PunctuationNamed(text)) << Utf8(text);
            }
        }
    }
}

TEST(Tokens, NoPunctuationLiesOutsideAscii) {
    for (const QStringView text : {u"\u00A0", u"Ж", u"Ж=", u"=Ж", u"\uFFFE", u"\u013A"}) {
        EXPECT_EQ(PunctuationToken(text), TOKEN_UNKNOWN) << Utf8(text);
    }
}

// ---------------------------------------------------------------------------------------------
// Types
// ---------------------------------------------------------------------------------------------

struct TypRow {
    Typ code;
    int number;
    const char* name;
    const char* shortName;
    TypClass typClass;
};

constexpr std::array<TypRow, 11> TYPES = {{
    {TYP_BOOL, 1, "BOOL", "BL", TypClass::Boolean},
    {TYP_SINT, 2, "SINT", "SB", TypClass::Ordinal},
    {TYP_USINT, 3, "USINT", "UB", TypClass::Ordinal},
    {TYP_INT, 4, "INT", "SI", TypClass::Ordinal},
    {TYP_UINT, 5, "UINT", "UI", TypClass::Ordinal},
    {TYP_DINT, 6, "DINT", "SD", TypClass::Ordinal},
    {TYP_UDINT, 7, "UDINT", "UD", TypClass::Ordinal},
    {TYP_REAL, 8, "REAL", "SR", TypClass::Real},
    {TYP_LREAL, 9, "LREAL", "LR", TypClass::Real},
    {TYP_STRING, 10, "STRING", "PS", TypClass::Text},
    {TYP_ARRAY, 11, "ARRAY", "PA", TypClass::Text},
}};

TEST(TypeTable, EveryRowHasItsCodeItsNamesAndItsClass) {
    ASSERT_EQ(TYPS_COUNT, static_cast<int>(TYPES.size()));
    EXPECT_EQ(TYP_CODES_COUNT, TYPES.size() + 1);
    EXPECT_EQ(static_cast<int>(TYP_NONE), 0);
    for (std::size_t row = 0; row < TYPES.size(); ++row) {
        EXPECT_EQ(TypsTable[row].code, TYPES[row].code);
        EXPECT_EQ(static_cast<int>(TypsTable[row].code), TYPES[row].number);
        EXPECT_EQ(TypsTable[row].name, QLatin1String(TYPES[row].name));
        EXPECT_EQ(TypsTable[row].shortName, QLatin1String(TYPES[row].shortName));
        EXPECT_EQ(TypsTable[row].typClass, TYPES[row].typClass) << TYPES[row].name;
    }
}

}  // namespace
