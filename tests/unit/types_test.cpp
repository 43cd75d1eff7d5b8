// Type codes: names, classes and the conversion of every type to every other.

#include "qyx_types.h"

#include <map>
#include <sstream>
#include <vector>

#include "support.h"

namespace {

Typ TypOf(std::size_t code) {
    return static_cast<Typ>(code);
}

class Types : public CompilerTest {};

struct TypeRow {
    Typ type;
    const char* name;
    const char* shortName;
    bool isBoolean;
    bool isOrdinal;
    bool isDigit;
};

constexpr std::array<TypeRow, TYP_CODES_COUNT> TYPES = {{
    {TYP_NONE, "", "", false, true, true},
    {TYP_BOOL, "BOOL", "BL", true, false, false},
    {TYP_SINT, "SINT", "SB", false, true, true},
    {TYP_USINT, "USINT", "UB", false, true, true},
    {TYP_INT, "INT", "SI", false, true, true},
    {TYP_UINT, "UINT", "UI", false, true, true},
    {TYP_DINT, "DINT", "SD", false, true, true},
    {TYP_UDINT, "UDINT", "UD", false, true, true},
    {TYP_REAL, "REAL", "SR", false, false, true},
    {TYP_LREAL, "LREAL", "LR", false, false, true},
    {TYP_STRING, "STRING", "PS", false, false, false},
    {TYP_ARRAY, "ARRAY", "PA", false, false, false},
}};

TEST_F(Types, NamesOfEveryCode) {
    for (std::size_t code = 0; code < TYPES.size(); ++code) {
        const TypeRow& row = TYPES[code];
        EXPECT_EQ(row.type, TypOf(code));
        EXPECT_EQ(TypToStr(row.type), QLatin1String(row.name));
        EXPECT_EQ(TypToShortStr(row.type), QLatin1String(row.shortName)) << row.name;
    }
}

TEST_F(Types, CodesBeyondTheTableHaveNoNameAndNoClass) {
    const Typ beyond = TypOf(TYP_CODES_COUNT);
    EXPECT_TRUE(TypToStr(beyond).isEmpty());
    EXPECT_TRUE(TypToShortStr(beyond).isEmpty());
    EXPECT_FALSE(IsTypBoolean(beyond) || IsTypOrdinal(beyond) || IsTypDigit(beyond));
}

TEST_F(Types, ClassesOfEveryCode) {
    for (const TypeRow& row : TYPES) {
        SCOPED_TRACE(NameOf(row.type));
        EXPECT_EQ(IsTypBoolean(row.type), row.isBoolean);
        EXPECT_EQ(IsTypOrdinal(row.type), row.isOrdinal);
        EXPECT_EQ(IsTypDigit(row.type), row.isDigit);
    }
}

// ---------------------------------------------------------------------------------------------
// Conversion
// ---------------------------------------------------------------------------------------------

// The resulting type by the current type (row) and the next type (column); -: they do not
// combine.
constexpr const char* NOT_STRICT = R"(
        none   BOOL  SINT  USINT  INT   UINT  DINT  UDINT  REAL  LREAL  STRING  ARRAY
none    none   BOOL  SINT  USINT  INT   UINT  DINT  UDINT  REAL  LREAL  STRING  ARRAY
BOOL    -      BOOL  -     -      -     -     -     -      -     -      -       -
SINT    SINT   -     SINT  USINT  INT   UINT  DINT  UDINT  REAL  LREAL  -       -
USINT   SINT   -     SINT  USINT  INT   UINT  DINT  UDINT  REAL  LREAL  -       -
INT     INT    -     INT   INT    INT   UINT  DINT  UDINT  REAL  LREAL  -       -
UINT    UINT   -     UINT  UINT   UINT  UINT  DINT  UDINT  REAL  LREAL  -       -
DINT    DINT   -     DINT  DINT   DINT  DINT  DINT  UDINT  REAL  LREAL  -       -
UDINT   UDINT  -     UDINT UDINT  UDINT UDINT UDINT UDINT  REAL  LREAL  -       -
REAL    REAL   REAL  REAL  REAL   REAL  REAL  REAL  REAL   REAL  LREAL  -       -
LREAL   LREAL  -     LREAL LREAL  LREAL LREAL LREAL LREAL  LREAL LREAL  -       -
STRING  -      -     -     -      -     -     -     -      -     -      STRING  -
ARRAY   -      -     -     -      -     -     -     -      -     -      -       -
)";

constexpr const char* STRICT = R"(
        none   BOOL  SINT  USINT  INT   UINT  DINT  UDINT  REAL  LREAL  STRING  ARRAY
none    none   BOOL  SINT  USINT  INT   UINT  DINT  UDINT  REAL  LREAL  STRING  ARRAY
BOOL    -      BOOL  -     -      -     -     -     -      -     -      -       -
SINT    SINT   -     SINT  USINT  INT   UINT  DINT  UDINT  -     -      -       -
USINT   SINT   -     SINT  USINT  INT   UINT  DINT  UDINT  -     -      -       -
INT     INT    -     INT   INT    INT   UINT  DINT  UDINT  -     -      -       -
UINT    UINT   -     UINT  UINT   UINT  UINT  DINT  UDINT  -     -      -       -
DINT    DINT   -     DINT  DINT   DINT  DINT  DINT  UDINT  -     -      -       -
UDINT   UDINT  -     UDINT UDINT  UDINT UDINT UDINT UDINT  -     -      -       -
REAL    REAL   REAL  REAL  REAL   REAL  REAL  REAL  REAL   REAL  LREAL  -       -
LREAL   LREAL  -     LREAL LREAL  LREAL LREAL LREAL LREAL  LREAL LREAL  -       -
STRING  -      -     -     -      -     -     -     -      -     -      STRING  -
ARRAY   -      -     -     -      -     -     -     -      -     -      -       -
)";

const std::string REFUSED = "-";

std::vector<std::string> WordsOf(const std::string& line) {
    std::istringstream in(line);
    std::vector<std::string> words;
    for (std::string word; in >> word;) {
        words.push_back(word);
    }
    return words;
}

// The name of the resulting type by the names of the current and the next type.
using Conversions = std::map<std::string, std::map<std::string, std::string>>;

Conversions ConversionsOf(const std::string& table) {
    std::istringstream lines(table.substr(1));
    std::string line;
    std::getline(lines, line);
    const std::vector<std::string> nextTypes = WordsOf(line);
    Conversions conversions;
    while (std::getline(lines, line)) {
        const std::vector<std::string> results = WordsOf(line);
        for (std::size_t i = 0; i < nextTypes.size(); ++i) {
            conversions[results.at(0)][nextTypes[i]] = results.at(i + 1);
        }
    }
    return conversions;
}

// A refusal calls a USINT by the name of SINT, and no type by none.
std::string Refusal(Typ current, Typ next) {
    const Typ named = current == TYP_USINT ? TYP_SINT : current;
    return "Incompatible types: \"" + NameOf(named) + "\" and \"" +
           (next == TYP_NONE ? "" : NameOf(next)) + '"';
}

void CheckConversion(Typ current, Typ next, bool strict, const std::string& expected) {
    SCOPED_TRACE(NameOf(current) + " and " + NameOf(next));
    const auto convert = [=] { return ConvertTyp(current, next, strict); };
    if (expected == REFUSED) {
        ExpectFailure(convert, ErrorAt(0, 0, Refusal(current, next)));
    } else {
        EXPECT_EQ(NameOf(convert()), expected);
    }
}

void CheckConversions(const char* table, bool strict) {
    const Conversions conversions = ConversionsOf(table);
    flag_ShowOnScreen = true;  // a refusal that is not expected ends the process
    for (const TypeRow& current : TYPES) {
        for (const TypeRow& next : TYPES) {
            CheckConversion(current.type, next.type, strict,
                            conversions.at(NameOf(current.type)).at(NameOf(next.type)));
        }
    }
}

TEST_F(Types, ConversionOfEveryPair) {
    CheckConversions(NOT_STRICT, false);
}

TEST_F(Types, StrictConversionOfEveryPair) {
    CheckConversions(STRICT, true);
}

TEST_F(Types, ConversionIsNotStrictUnlessAsked) {
    EXPECT_EQ(ConvertTyp(TYP_INT, TYP_REAL), TYP_REAL);
}

TEST_F(Types, RefusalStandsAtTheCurrentToken) {
    CurrentToken.place.begin = {11, 4};
    ExpectFailure([] { ConvertTyp(TYP_BOOL, TYP_INT, false); },
                  std::string("Error: Line 12, Column 5: "
                              "Incompatible types: \"BOOL\" and \"INT\"\n"));
}

}  // namespace
