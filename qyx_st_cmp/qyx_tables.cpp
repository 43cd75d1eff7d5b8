#include "qyx_tables.h"

#include <array>

namespace {

using RowsByCode = std::array<int, TOKEN_CODES_COUNT>;

constexpr RowsByCode MakeRowsByCode() {
    RowsByCode rows = {};
    for (int& row : rows) {
        row = NO_ROW;
    }
    for (int row = 0; row < TOKENS_COUNT; ++row) {
        rows[TokensTable[row].code] = row;
    }
    return rows;
}

constexpr RowsByCode ROWS_BY_CODE = MakeRowsByCode();

// Token codes by the first character and the second, which is 0 where there is none.
using PunctuationTable = std::array<std::array<Token, ASCII_COUNT>, ASCII_COUNT>;

constexpr PunctuationTable MakePunctuationTable() {
    PunctuationTable table = {};
    for (auto& tokens : table) {
        for (Token& code : tokens) {
            code = TOKEN_UNKNOWN;
        }
    }
    for (const token& row : TokensTable) {
        if (row.text.size() <= 2) {
            const auto first = static_cast<unsigned char>(row.text.data()[0]);
            const auto second = static_cast<unsigned char>(row.text.data()[1]);
            table[first][second] = row.code;
        }
    }
    return table;
}

constexpr PunctuationTable PUNCTUATION = MakePunctuationTable();

}  // namespace

int Lookup(Token code) {
    return ROWS_BY_CODE[code];
}

Token PunctuationToken(QStringView text) {
    const std::size_t first = text[0].unicode();
    const std::size_t second = text.size() > 1 ? text[1].unicode() : 0;
    const bool isAscii = first < ASCII_COUNT && second < ASCII_COUNT;
    return isAscii ? PUNCTUATION[first][second] : TOKEN_UNKNOWN;
}
