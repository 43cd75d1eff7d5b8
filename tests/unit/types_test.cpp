// Type codes: names, classes and the conversion of every type to every other.

#include "qyx_types.h"

#include "support.h"

namespace {

constexpr std::size_t CODES_COUNT = 12;

Typ TypOf(std::size_t code) {
    return static_cast<Typ>(code);
}

class Types : public CompilerTest {};

struct TypeRow {
    int code;
    const char* name;
    const char* shortName;
    bool isBoolean;
    bool isOrdinal;
    bool isDigit;
};

constexpr std::array<TypeRow, CODES_COUNT> TYPES = {{
    {0, "", "", false, true, true},
    {1, "BOOL", "BL", true, false, false},
    {2, "SINT", "SB", false, true, true},
    {3, "USINT", "UB", false, true, true},
    {4, "INT", "SI", false, true, true},
    {5, "UINT", "UI", false, true, true},
    {6, "DINT", "SD", false, true, true},
    {7, "UDINT", "UD", false, true, true},
    {8, "REAL", "SR", false, false, true},
    {9, "LREAL", "LR", false, false, true},
    {10, "STRING", "PS", false, false, false},
    {11, "ARRAY", "PA", false, false, false},
}};

TEST_F(Types, NamesOfEveryCode) {
    for (std::size_t code = 0; code < CODES_COUNT; ++code) {
        SCOPED_TRACE(code);
        EXPECT_EQ(TYPES[code].code, static_cast<int>(code));
        EXPECT_EQ(TypToStr(TypOf(code)), QLatin1String(TYPES[code].name));
        EXPECT_EQ(TypToShortStr(TypOf(code)), QLatin1String(TYPES[code].shortName));
    }
}

TEST_F(Types, CodesBeyondTheTableHaveNoName) {
    EXPECT_TRUE(TypToStr(TypOf(CODES_COUNT)).isEmpty());
    EXPECT_TRUE(TypToShortStr(TypOf(CODES_COUNT)).isEmpty());
}

TEST_F(Types, ClassesOfEveryCode) {
    for (std::size_t code = 0; code < CODES_COUNT; ++code) {
        SCOPED_TRACE(TYPES[code].name);
        EXPECT_EQ(IsTypBoolean(TypOf(code)), TYPES[code].isBoolean);
        EXPECT_EQ(IsTypOrdinal(TypOf(code)), TYPES[code].isOrdinal);
        EXPECT_EQ(IsTypDigit(TypOf(code)), TYPES[code].isDigit);
    }
}

// ---------------------------------------------------------------------------------------------
// Conversion
// ---------------------------------------------------------------------------------------------

// The resulting code by the current type (row) and the next type (column); X: they do not
// combine.
constexpr int X = -1;
using ConversionTable = std::array<std::array<int, CODES_COUNT>, CODES_COUNT>;

constexpr ConversionTable NOT_STRICT = {{
    {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11},  // no type
    {X, 1, X, X, X, X, X, X, X, X, X, X},    // BOOL
    {2, X, 2, 3, 4, 5, 6, 7, 8, 9, X, X},    // SINT
    {2, X, 2, 3, 4, 5, 6, 7, 8, 9, X, X},    // USINT
    {4, X, 4, 4, 4, 5, 6, 7, 8, 9, X, X},    // INT
    {5, X, 5, 5, 5, 5, 6, 7, 8, 9, X, X},    // UINT
    {6, X, 6, 6, 6, 6, 6, 7, 8, 9, X, X},    // DINT
    {7, X, 7, 7, 7, 7, 7, 7, 8, 9, X, X},    // UDINT
    {8, 8, 8, 8, 8, 8, 8, 8, 8, 9, X, X},    // REAL
    {9, X, 9, 9, 9, 9, 9, 9, 9, 9, X, X},    // LREAL
    {X, X, X, X, X, X, X, X, X, X, 10, X},   // STRING
    {X, X, X, X, X, X, X, X, X, X, X, X},    // ARRAY
}};

constexpr ConversionTable STRICT = {{
    {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11},  // no type
    {X, 1, X, X, X, X, X, X, X, X, X, X},    // BOOL
    {2, X, 2, 3, 4, 5, 6, 7, X, X, X, X},    // SINT
    {2, X, 2, 3, 4, 5, 6, 7, X, X, X, X},    // USINT
    {4, X, 4, 4, 4, 5, 6, 7, X, X, X, X},    // INT
    {5, X, 5, 5, 5, 5, 6, 7, X, X, X, X},    // UINT
    {6, X, 6, 6, 6, 6, 6, 7, X, X, X, X},    // DINT
    {7, X, 7, 7, 7, 7, 7, 7, X, X, X, X},    // UDINT
    {8, 8, 8, 8, 8, 8, 8, 8, 8, 9, X, X},    // REAL
    {9, X, 9, 9, 9, 9, 9, 9, 9, 9, X, X},    // LREAL
    {X, X, X, X, X, X, X, X, X, X, 10, X},   // STRING
    {X, X, X, X, X, X, X, X, X, X, X, X},    // ARRAY
}};

// What a refusal calls the current type: a USINT goes by the name of SINT.
constexpr std::array<const char*, CODES_COUNT> NAMES_IN_REFUSALS = {
    "",     "BOOL",  "SINT", "SINT",  "INT",    "UINT",
    "DINT", "UDINT", "REAL", "LREAL", "STRING", "ARRAY",
};

std::string Refusal(std::size_t current, std::size_t next) {
    return std::string("Incompatible types: \"") + NAMES_IN_REFUSALS.at(current) + "\" and \"" +
           TYPES.at(next).name + '"';
}

void CheckConversions(const ConversionTable& table, bool strict) {
    for (std::size_t current = 0; current < CODES_COUNT; ++current) {
        for (std::size_t next = 0; next < CODES_COUNT; ++next) {
            SCOPED_TRACE(std::to_string(current) + " and " + std::to_string(next));
            const auto convert = [&] { return ConvertTyp(TypOf(current), TypOf(next), strict); };
            if (table[current][next] == X) {
                ExpectFailure(convert, ErrorAt(0, 0, Refusal(current, next)));
            } else {
                EXPECT_EQ(static_cast<int>(convert()), table[current][next]);
            }
        }
    }
}

TEST_F(Types, ConversionOfEveryPair) {
    CheckConversions(NOT_STRICT, false);
}

TEST_F(Types, StrictConversionOfEveryPair) {
    CheckConversions(STRICT, true);
}

TEST_F(Types, RefusalStandsAtTheCurrentToken) {
    TokenPosBeg = {11, 4};
    ExpectFailure([] { ConvertTyp(TYP_BOOL, TYP_INT, false); },
                  std::string("Error: Line 12, Column 5: "
                              "Incompatible types: \"BOOL\" and \"INT\"\n"));
}

}  // namespace
