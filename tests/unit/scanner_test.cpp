// The scanner: character classes, the table of tokens, every kind of token, comments, places,
// and the checks of the current token.

#include "qyx_scanner.h"

#include <algorithm>
#include <ostream>
#include <utility>
#include <vector>

#include "qyx_messages.h"
#include "support.h"

// ---------------------------------------------------------------------------------------------
// Character classes
// ---------------------------------------------------------------------------------------------

namespace {

// Taken before any test runs.
const TokenPos beginAtStart = TokenPosBeg;
const TokenPos endAtStart = TokenPosEnd;
const TokenPlace identAtStart = IdentPlace;

TEST(Start, NoTokenHasBeenRead) {
    EXPECT_EQ(Place(beginAtStart), "-1:-1");
    EXPECT_EQ(Place(endAtStart), "-1:-1");
    EXPECT_EQ(Place(identAtStart.begin), "-1:-1");
    EXPECT_EQ(Place(identAtStart.end), "-1:-1");
}

using Predicate = bool (*)(QChar);

// All characters of the basic plane of which the predicate holds.
QString MembersOf(Predicate predicate) {
    QString members;
    for (uint unicode = 0; unicode <= 0xFFFF; ++unicode) {
        if (predicate(QChar(unicode))) {
            members += QChar(unicode);
        }
    }
    return members;
}

QString Range(ushort first, ushort last) {
    QString range;
    for (uint unicode = first; unicode <= last; ++unicode) {
        range += QChar(unicode);
    }
    return range;
}

QString Sorted(QString characters) {
    std::sort(characters.begin(), characters.end());
    return characters;
}

const QString DIGITS = QStringLiteral("0123456789");
const QString LETTERS = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz") +
                        QStringLiteral(u"\u0131\u017F");  // their capitals are I and S
const QString CYRILLIC_LETTERS = Range(0x0410, 0x044F) +  // without the letters io
                                 Range(0x1C80, 0x1C86);   // old forms of VE to HARD SIGN
const QString SIMBOLS = QStringLiteral("!\"#$%&'*+-/:<=>?@^|~");

TEST(CharacterClasses, HoldExactlyTheirMembers) {
    const std::vector<std::pair<Predicate, QString>> classes = {
        {IsWhite, QStringLiteral("\t\n\r ")},
        {IsSemicolumn, QStringLiteral(";")},
        {IsAlpha, LETTERS},
        {IsAlphaR, LETTERS + CYRILLIC_LETTERS},
        {IsDigit, DIGITS},
        {IsHexDigit, DIGITS + QStringLiteral("ABCDEFabcdef")},
        {IsOctDigit, QStringLiteral("01234567")},
        {IsBinDigit, QStringLiteral("01")},
        {IsString, QStringLiteral("'")},
        {IsOperation, QStringLiteral("*+-/:<=>")},
        {IsSimbol, SIMBOLS},
        {IsAlphaOrDigit, LETTERS + DIGITS},
        {IsAlphaOrDigitR, LETTERS + CYRILLIC_LETTERS + DIGITS},
        {IsCharacter, LETTERS + DIGITS + SIMBOLS},
    };
    for (std::size_t i = 0; i < classes.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(Utf8(MembersOf(classes[i].first)), Utf8(Sorted(classes[i].second)));
    }
}

TEST(CharacterClasses, CyrillicLettersEndAtYaAndLeaveOutIo) {
    for (const int letter : {0x0410, 0x042F, 0x0430, 0x044F}) {
        EXPECT_TRUE(IsAlphaR(QChar(letter))) << letter;
        EXPECT_FALSE(IsAlpha(QChar(letter))) << letter;
    }
    for (const int other : {0x0401, 0x0451, 0x040F, 0x0450, 0x0462}) {
        EXPECT_FALSE(IsAlphaR(QChar(other))) << other;
    }
}

// ---------------------------------------------------------------------------------------------
// The table of tokens
// ---------------------------------------------------------------------------------------------

struct TokenRow {
    int code;
    const char* text;
};

constexpr std::array<TokenRow, 75> TOKENS = {{
    {2, "PROGRAM"},
    {3, "END_PROGRAM"},
    {4, ";"},
    {5, ":"},
    {6, "."},
    {7, ".."},
    {8, ","},
    {9, ":="},
    {10, "BREAK"},
    {11, "CONTINUE"},
    {12, "EXIT"},
    {13, "RESULT"},
    {17, "CONSTANT"},
    {18, "VAR"},
    {19, "VAR_INPUT"},
    {20, "VAR_OUTPUT"},
    {21, "VAR_GLOBAL"},
    {78, "VAR_ARG"},
    {79, "VAR_REF"},
    {22, "VAR_YXGLOBAL"},
    {23, "VAR_YXREGISTER"},
    {24, "END_VAR"},
    {25, "//"},
    {26, "(*"},
    {27, "*)"},
    {28, "+"},
    {29, "-"},
    {30, "*"},
    {31, "/"},
    {32, "MOD"},
    {33, "OR"},
    {34, "XOR"},
    {35, "AND"},
    {36, "NOT"},
    {38, "SHL"},
    {37, "SHR"},
    {39, "ROR"},
    {40, "ROL"},
    {41, "**"},
    {42, "GOTO"},
    {43, "TRUE"},
    {44, "FALSE"},
    {45, "="},
    {46, "<>"},
    {47, "<"},
    {48, ">"},
    {49, "<="},
    {50, ">="},
    {51, "("},
    {52, ")"},
    {53, "["},
    {54, "]"},
    {55, "IF"},
    {56, "THEN"},
    {57, "ELSIF"},
    {58, "ELSE"},
    {59, "END_IF"},
    {60, "FOR"},
    {61, "TO"},
    {62, "DOWNTO"},
    {63, "DO"},
    {64, "END_FOR"},
    {65, "REPEAT"},
    {66, "UNTIL"},
    {67, "END_REPEAT"},
    {68, "WHILE"},
    {69, "END_WHILE"},
    {70, "CASE"},
    {71, "OF"},
    {72, "END_CASE"},
    {73, "TICK"},
    {74, "FUNCTION"},
    {75, "END_FUNCTION"},
    {76, "FUNCTION_BLOCK"},
    {77, "END_FUNCTION_BLOCK"},
}};

// The text with every second character in lower case.
QString MixedCase(const QString& text) {
    QString mixed = text;
    for (int i = 0; i < mixed.size(); i += 2) {
        mixed[i] = mixed[i].toLower();
    }
    return mixed;
}

// What a name is told by is one record, so that names are compared as pointers.
TEST(Spellings, EachTextHasOne) {
    for (const QStringView text : {u"Level", u"LEVEL", u"Насос", u"насос", u"a", u"ж"}) {
        EXPECT_EQ(&SpellingOf(text), &SpellingOf(text.toString())) << Utf8(text);
    }
    EXPECT_NE(&SpellingOf(u"Насос"), &SpellingOf(u"насос"));
    EXPECT_EQ(SpellingOf(u"Насос").name, SpellingOf(u"насос").name);
    EXPECT_NE(SpellingOf(u"Насос").name, SpellingOf(u"Насосы").name);
}

TEST(Lookup, FindsEveryRowByItsTextInAnyCase) {
    for (std::size_t row = 0; row < TOKENS.size(); ++row) {
        const QString text = QLatin1String(TOKENS[row].text);
        SCOPED_TRACE(TOKENS[row].text);
        EXPECT_EQ(Lookup(text), static_cast<int>(row));
        EXPECT_EQ(Lookup(text.toLower()), static_cast<int>(row));
        EXPECT_EQ(Lookup(MixedCase(text)), static_cast<int>(row));
    }
}

TEST(Lookup, FindsEveryRowByItsCode) {
    for (std::size_t row = 0; row < TOKENS.size(); ++row) {
        EXPECT_EQ(Lookup(static_cast<Token>(TOKENS[row].code)), static_cast<int>(row));
        EXPECT_EQ(TokensTable[row].code, TOKENS[row].code);
        EXPECT_EQ(TokensTable[row].text, QLatin1String(TOKENS[row].text));
    }
}

TEST(Lookup, FindsNothingElse) {
    for (const QString& text :
         {QString(), QStringLiteral("WORD"), QStringLiteral("END"), QStringLiteral("BOOL"),
          QStringLiteral("IF "), QStringLiteral("=>"), QStringLiteral("...")}) {
        EXPECT_EQ(Lookup(text), -1) << Utf8(text);
    }
    for (const int code : {0, 1, 14, 15, 16}) {
        EXPECT_EQ(Lookup(static_cast<Token>(code)), -1) << code;
    }
}

// ---------------------------------------------------------------------------------------------
// Tokens
// ---------------------------------------------------------------------------------------------

struct Lexeme {
    int code;
    std::string text;
    int type = 0;
};

bool operator==(const Lexeme& a, const Lexeme& b) {
    return a.code == b.code && a.text == b.text && a.type == b.type;
}

std::ostream& operator<<(std::ostream& out, const Lexeme& lexeme) {
    return out << lexeme.code << " \"" << lexeme.text << "\" type " << lexeme.type;
}

using Lexemes = std::vector<Lexeme>;

class Scanner : public CompilerTest {
protected:
    static Lexeme scan(bool integerOnly = false, bool skipWhite = true) {
        const Typ type = Scan(TokenName, integerOnly, skipWhite);
        return {TokenChar, Utf8(TokenName), type};
    }

    // All tokens of a source that does not end in a comment.
    Lexemes scanAll(const std::string& source, bool integerOnly = false) const {
        ResetCompiler();
        openSource(source);
        Lexemes lexemes;
        while (Look != QChar(END_OF_INPUT)) {
            lexemes.push_back(scan(integerOnly));
        }
        return lexemes;
    }

    void expectFailureOf(const std::string& source, int column, const std::string& text) const {
        ResetCompiler();
        SCOPED_TRACE(source.substr(0, 40));
        openSource(source);
        ExpectFailure([] { scan(); }, ErrorAt(1, column, text));
    }
};

TEST_F(Scanner, ReadsEveryWordOfTheTableInAnyCaseAndKeepsTheCase) {
    for (const TokenRow& row : TOKENS) {
        const QString word = QLatin1String(row.text);
        if (!IsAlpha(word[0])) {
            continue;
        }
        const int type = row.code == 43 || row.code == 44 ? 1 : 0;
        for (const QString& text : {word, word.toLower(), MixedCase(word)}) {
            EXPECT_EQ(scanAll(Utf8(text)), (Lexemes{{row.code, Utf8(text), type}}));
        }
    }
}

TEST_F(Scanner, ReadsEveryOtherTextOfTheTable) {
    EXPECT_EQ(scanAll("; , ( ) [ ] : := + - * / ** = <> < > <= >="), (Lexemes{{4, ";"},
                                                                              {8, ","},
                                                                              {51, "("},
                                                                              {52, ")"},
                                                                              {53, "["},
                                                                              {54, "]"},
                                                                              {5, ":"},
                                                                              {9, ":="},
                                                                              {28, "+"},
                                                                              {29, "-"},
                                                                              {30, "*"},
                                                                              {31, "/"},
                                                                              {41, "**"},
                                                                              {45, "="},
                                                                              {46, "<>"},
                                                                              {47, "<"},
                                                                              {48, ">"},
                                                                              {49, "<="},
                                                                              {50, ">="}}));
    EXPECT_EQ(scanAll(". .. ...", true), (Lexemes{{6, "."}, {7, ".."}, {7, ".."}, {6, "."}}));
}

TEST_F(Scanner, TwoOperationCharactersMakeOneToken) {
    EXPECT_EQ(scanAll("<=-"), (Lexemes{{49, "<="}, {29, "-"}}));
    EXPECT_EQ(scanAll("a+-b"), (Lexemes{{15, "a"}, {1, "+-"}, {15, "b"}}));
    EXPECT_EQ(scanAll("=> =< :- - -"),
              (Lexemes{{1, "=>"}, {1, "=<"}, {1, ":-"}, {29, "-"}, {29, "-"}}));
    EXPECT_EQ(scanAll("*)"), (Lexemes{{30, "*"}, {52, ")"}}));
}

TEST_F(Scanner, OtherCharactersAreUnknownTokens) {
    EXPECT_EQ(scanAll("?!#$\"{ё"),
              (Lexemes{{1, "?"}, {1, "!"}, {1, "#"}, {1, "$"}, {1, "\""}, {1, "{"}, {1, "ё"}}));
}

TEST_F(Scanner, NamesKeepTheirCaseAndDoNotBeginWithADigit) {
    EXPECT_EQ(scanAll("x1 _a Счетчик_2 iF_"),
              (Lexemes{{15, "x1"}, {15, "_a"}, {15, "Счетчик_2"}, {15, "iF_"}}));
    EXPECT_EQ(scanAll("1x"), (Lexemes{{14, "1", 2}, {15, "x"}}));
    EXPECT_EQ(scanAll("Счётчик"), (Lexemes{{15, "Сч"}, {1, "ё"}, {15, "тчик"}}));
}

TEST_F(Scanner, NamesOfDeclaredFunctionsCarryTheCodesOfTheirKeywords) {
    FunctionItem function;
    function.name = QStringLiteral("Площадь");
    FunctionItem block;
    block.name = QStringLiteral("Pump");
    block.isFunction = false;
    openSource("ПЛОЩАДЬ pump pumps");
    FunctionsList.append(function);
    FunctionsList.append(block);
    EXPECT_EQ(scan(), (Lexeme{74, "ПЛОЩАДЬ"}));
    EXPECT_EQ(Place(IdentPlace.end), "0:7");
    EXPECT_EQ(scan(), (Lexeme{76, "pump"}));
    EXPECT_EQ(scan(), (Lexeme{15, "pumps"}));
}

TEST_F(Scanner, StringsAreUpperCaseAndHaveNoType) {
    EXPECT_EQ(scanAll("'abc' '' 'ж // (* x' y"),
              (Lexemes{{16, "ABC"}, {16, ""}, {16, "Ж // (* X"}, {15, "y"}}));
}

TEST_F(Scanner, UnterminatedStrings) {
    expectFailureOf("  'abc\n'", 3, "Unterminated string");
    expectFailureOf("'abc", 1, "Unterminated string");
    expectFailureOf("'", 1, "Unterminated string");
}

TEST_F(Scanner, OnlyPunctuationMayLeaveTheWhiteSpaceBehindIt) {
    openSource("( a + 1 'x' ; b");
    EXPECT_EQ(scan(false, false), (Lexeme{51, "("}));
    EXPECT_EQ(Look, QLatin1Char(' '));
    SkipWhite();
    for (const char next : {'+', '1', '\'', ';'}) {
        scan(false, false);
        EXPECT_EQ(Look, QLatin1Char(next));
    }
    EXPECT_EQ(scan(false, true), (Lexeme{4, ";"}));
    EXPECT_EQ(Look, QLatin1Char('b'));
}

TEST_F(Scanner, NothingComesBehindTheEndOfTheSource) {
    openSource(" x ");
    scan();
    ExpectFailure([] { scan(); }, ErrorAt(1, 2, "An unexpected end of input file"));
    ResetCompiler();
    openSource("");
    ExpectFailure([] { scan(); }, ErrorAt(0, 0, "An unexpected end of input file"));
}

// ---------------------------------------------------------------------------------------------
// Numbers
// ---------------------------------------------------------------------------------------------

struct Number {
    std::string source;
    int type;
    std::string text = source;
};

std::string Repeat(char c, std::size_t count) {
    return std::string(count, c);
}

class Numbers : public Scanner {
protected:
    void expectNumbers(const std::vector<Number>& numbers) const {
        for (const Number& number : numbers) {
            EXPECT_EQ(scanAll(number.source), (Lexemes{{14, number.text, number.type}}));
        }
    }
    void expectTooMuch(const std::string& source) const {
        expectFailureOf(source, 1, "Too much the constants");
    }
};

TEST_F(Numbers, DecimalTypesAtEveryThreshold) {
    expectNumbers({{"0", 2},
                   {"127", 2},
                   {"128", 3},
                   {"255", 3},
                   {"256", 4},
                   {"32767", 4},
                   {"32768", 5},
                   {"65535", 5},
                   {"65536", 6},
                   {"2147483647", 6},
                   {"2147483648", 7},
                   {"4294967295", 7},
                   {"000128", 3}});
    expectTooMuch("4294967296");
    expectTooMuch("9223372036854775807");
}

TEST_F(Numbers, DecimalsBeyond64BitsAreSintUpTo254Digits) {
    expectNumbers({{"99999999999999999999", 2}, {Repeat('9', 254), 2}});
    expectTooMuch(Repeat('9', 255));
    expectTooMuch(Repeat('0', 255));
}

TEST_F(Numbers, HexTypesAtEveryThreshold) {
    expectNumbers({{"16#0", 2},
                   {"16#7F", 2},
                   {"16#80", 3},
                   {"16#ff", 3, "16#FF"},
                   {"16#100", 4},
                   {"16#7FFF", 4},
                   {"16#8000", 5},
                   {"16#FfFf", 5, "16#FFFF"},
                   {"16#10000", 6},
                   {"16#7FFFFFFF", 6},
                   {"16#80000000", 7},
                   {"16#FFFFFFFF", 7},
                   {"16#" + Repeat('0', 249) + "80", 3}});
    expectTooMuch("16#100000000");
    expectTooMuch("16#7FFFFFFFFFFFFFFF");
    expectTooMuch("16#10000000000000000");
    expectTooMuch("16#" + Repeat('0', 252));
}

TEST_F(Numbers, OctalsAreTypedByTheirDigitsInBase16) {
    expectNumbers({{"8#0", 2},
                   {"8#77", 2},
                   {"8#100", 4},
                   {"8#377", 4},
                   {"8#7777", 4},
                   {"8#10000", 6},
                   {"8#77777777", 6},
                   {"8#" + Repeat('0', 249) + "100", 4}});
    expectTooMuch("8#100000000");
    expectTooMuch("8#" + Repeat('0', 253));
}

TEST_F(Numbers, BinaryTypesAtEveryThreshold) {
    const auto binary = [](int ones, int zeros) {
        return "2#" + Repeat('1', static_cast<std::size_t>(ones)) +
               Repeat('0', static_cast<std::size_t>(zeros));
    };
    expectNumbers({{binary(0, 1), 2},
                   {binary(7, 0), 2},
                   {binary(1, 7), 3},
                   {binary(8, 0), 3},
                   {binary(1, 8), 4},
                   {binary(15, 0), 4},
                   {binary(1, 15), 5},
                   {binary(16, 0), 5},
                   {binary(1, 16), 6},
                   {binary(31, 0), 6},
                   {binary(1, 31), 7},
                   {binary(32, 0), 7},
                   {binary(0, 32), 2}});
    expectTooMuch(binary(33, 0));
    expectTooMuch(binary(0, 33));
}

TEST_F(Numbers, RealsAndTheirTypes) {
    expectNumbers({{".5", 8, "0.5"},
                   {"5.", 8, "5.0"},
                   {"007.250", 8},
                   {"5.e3", 8, "5.0E3"},
                   {"1.5e+3", 8, "1.5E+3"},
                   {"1.5E-3", 8},
                   {"1.0e", 8, "1.0E"},
                   {"3.4e38", 8, "3.4E38"},
                   {"3.4000001e38", 9, "3.4000001E38"},
                   {"1.0e40", 9, "1.0E40"},
                   {"1.0E400", 9},
                   {"1." + Repeat('0', 252), 8}});
    expectTooMuch("1." + Repeat('0', 253));
    expectTooMuch("1.0E" + Repeat('0', 251));
    expectTooMuch(Repeat('1', 254) + '.');
}

TEST_F(Numbers, ADotEndsANumberWhereOnlyIntegersAreRead) {
    EXPECT_EQ(scanAll("1..5", true), (Lexemes{{14, "1", 2}, {7, ".."}, {14, "5", 2}}));
    EXPECT_EQ(scanAll("1.5", true), (Lexemes{{14, "1", 2}, {6, "."}, {14, "5", 2}}));
    EXPECT_EQ(scanAll("16#F.", true), (Lexemes{{14, "16#F", 2}, {6, "."}}));
    EXPECT_EQ(scanAll("1..5"), (Lexemes{{14, "1.0", 8}, {14, "0.5", 8}}));
    EXPECT_EQ(scanAll("."), (Lexemes{{14, "0.0", 8}}));
}

TEST_F(Numbers, EndAtTheFirstCharacterThatIsNoDigitOfTheirs) {
    EXPECT_EQ(scanAll("1e40"), (Lexemes{{14, "1", 2}, {15, "e40"}}));
    EXPECT_EQ(scanAll("16#1G"), (Lexemes{{14, "16#1", 2}, {15, "G"}}));
    EXPECT_EQ(scanAll("8#78"), (Lexemes{{14, "8#7", 2}, {14, "8", 2}}));
    EXPECT_EQ(scanAll("2#12"), (Lexemes{{14, "2#1", 2}, {14, "2", 2}}));
    EXPECT_EQ(scanAll("2#1.5"), (Lexemes{{14, "2#1", 2}, {14, "0.5", 8}}));
    EXPECT_EQ(scanAll("1 #"), (Lexemes{{14, "1", 2}, {1, "#"}}));
}

TEST_F(Numbers, OnlyThreePrefixesSelectABase) {
    for (const char* source : {"10#1", "016#1", "3#1", "82#1", "0#0"}) {
        expectFailureOf(source, 1, "Bad suffix on number");
    }
}

TEST_F(Numbers, APrefixNeedsADigitOfItsBase) {
    expectFailureOf("16#G", 1, "The HEX number was expected but 'G' found");
    expectFailureOf("8#8", 1, "The OCT number was expected but '8' found");
    expectFailureOf("2#2", 1, "The BIN number was expected but '2' found");
    expectFailureOf("  16# 1", 3, "The HEX number was expected but ' ' found");
}

// ---------------------------------------------------------------------------------------------
// Comments
// ---------------------------------------------------------------------------------------------

TEST_F(Scanner, CommentsAreSkipped) {
    EXPECT_EQ(scanAll("// c\n a //\n//// ' (*\nb"), (Lexemes{{15, "a"}, {15, "b"}}));
    EXPECT_EQ(scanAll("(* c *) a(**)b (*\n\n ' // *)c"),
              (Lexemes{{15, "a"}, {15, "b"}, {15, "c"}}));
    EXPECT_EQ(scanAll("/ /"), (Lexemes{{31, "/"}, {31, "/"}}));
    EXPECT_EQ(scanAll("( *"), (Lexemes{{51, "("}, {30, "*"}}));
}

TEST_F(Scanner, CommentsEndAtTheFirstStarAndParenthesis) {
    EXPECT_EQ(scanAll("(* a (* b *) c *)"), (Lexemes{{15, "c"}, {30, "*"}, {52, ")"}}));
    for (const char* comment : {"(***)", "(****)", "(* ***)", "(*)*)", "(*/*)", "(*-+*)", "(*:*)",
                                "(* + *)", "(*a*)", "(* ** ) * ) *\n) *)"}) {
        EXPECT_EQ(scanAll(std::string(comment) + "x"), (Lexemes{{15, "x"}})) << comment;
    }
}

TEST_F(Scanner, CommentsThatDoNotEnd) {
    const std::string text = "An unexpected end of input file";
    expectFailureOf("(* x", 1, text);
    expectFailureOf("(*", 1, text);
    expectFailureOf(" (*)", 2, text);
    expectFailureOf("(* * )", 1, text);
    expectFailureOf("// x", 3, text);
    expectFailureOf("//", 3, text);
}

TEST_F(Scanner, ACommentHidesTheTypeAndReadsWithFractions) {
    EXPECT_EQ(scanAll("(**)1 //\nTRUE 1.5"), (Lexemes{{14, "1"}, {43, "TRUE"}, {14, "1.5", 8}}));
    EXPECT_EQ(scanAll("1 (**) .5", true), (Lexemes{{14, "1", 2}, {14, "0.5"}}));
}

TEST_F(Scanner, ManyCommentsInARow) {
    std::string source;
    for (int i = 0; i < 100000; ++i) {
        source += "(**)//\n";
    }
    EXPECT_EQ(scanAll(source + "x"), (Lexemes{{15, "x"}}));
    EXPECT_EQ(Place(TokenPosBeg), "100000:0");
}

// ---------------------------------------------------------------------------------------------
// Places
// ---------------------------------------------------------------------------------------------

struct PlacedToken {
    std::string source;
    int ordinal;  // of the token in the source, from 1
    std::string begin;
    std::string end;
};

TEST_F(Scanner, TokensBeginAtTheirFirstCharacterAndEndBehindTheirLast) {
    const std::vector<PlacedToken> tokens = {
        {"abc", 1, "0:0", "0:3"},
        {"  abc  ", 1, "0:2", "0:5"},
        {"\n\n\tWHILE ", 1, "2:1", "2:6"},
        {"a b", 2, "0:2", "0:3"},
        {"a\n  Жё", 2, "1:2", "1:3"},
        {"12 ", 1, "0:0", "0:2"},
        {"16#FF ", 1, "0:0", "0:5"},
        {"8#7 ", 1, "0:0", "0:3"},
        {"2#101 ", 1, "0:0", "0:5"},
        {"1.5e+3 ", 1, "0:0", "0:6"},
        {".5 ", 1, "0:0", "0:2"},
        {"+ ", 1, "0:0", "0:1"},
        {":= ", 1, "0:0", "0:2"},
        {"=> ", 1, "0:0", "0:2"},
        {"( ", 1, "0:0", "0:1"},
        {"a;", 2, "0:1", "0:2"},
        {"(* c *) x", 1, "0:8", "0:9"},
        {"// c\nx", 1, "1:0", "1:1"},
        {"a\r\nb", 2, "1:0", "1:1"},
        {"a\n", 1, "0:0", "1:-1"},             // the place of the line feed
        {"\xEF\xBB\xBFx", 1, "0:0", "0:1"},    // a byte order mark takes no column
        {"\xFFx", 2, "0:1", "0:2"},            // an invalid byte is one character
        {"(*\U0001F600*)x", 1, "0:6", "0:7"},  // a character beyond the basic plane is two
    };
    for (const PlacedToken& token : tokens) {
        ResetCompiler();
        SCOPED_TRACE(token.source);
        openSource(token.source);
        for (int i = 0; i < token.ordinal; ++i) {
            scan();
        }
        EXPECT_EQ(Place(TokenPosBeg), token.begin);
        EXPECT_EQ(Place(TokenPosEnd), token.end);
    }
}

TEST_F(Scanner, StringsEndAtTheirClosingQuoteAndUnknownCharactersWhereTheyBegin) {
    openSource(" 'ab' '' ?");
    scan();
    EXPECT_EQ(Place(TokenPosBeg) + ' ' + Place(TokenPosEnd), "0:1 0:4");
    scan();
    EXPECT_EQ(Place(TokenPosBeg) + ' ' + Place(TokenPosEnd), "0:6 0:7");
    scan();
    EXPECT_EQ(Place(TokenPosBeg) + ' ' + Place(TokenPosEnd), "0:9 0:9");
}

TEST_F(Scanner, IdentPlaceIsThatOfTheLastIdentifier) {
    EXPECT_EQ(Place(IdentPlace.begin), "-1:-1");
    openSource("abc \n de IF 12 'x'");
    scan();
    EXPECT_EQ(Place(IdentPlace.begin) + ' ' + Place(IdentPlace.end), "0:0 0:3");
    for (int i = 0; i < 4; ++i) {
        scan();
        EXPECT_EQ(Place(IdentPlace.begin) + ' ' + Place(IdentPlace.end), "1:1 1:3");
    }
}

TEST_F(Scanner, ALineFeedStandsAtColumnMinusOneOfTheLineItOpens) {
    OpenInputCodeFile(writeFile("source.st", "a\n\nb"));
    std::vector<std::string> places;
    for (int i = 0; i < 6; ++i) {
        GetChar();
        places.push_back(
            Place({g_InputCodeFileCurrentLineCount, g_InputCodeFileCurrentPosCount}));
    }
    EXPECT_EQ(places, (std::vector<std::string>{"0:0", "1:-1", "2:-1", "2:0", "2:1", "2:2"}));
    EXPECT_EQ(Look, QChar(END_OF_INPUT));
}

TEST_F(Scanner, SkippingStopsAtTheFirstOtherCharacter) {
    openSource("x;; ; ;y");
    GetChar();
    SkipWhite();
    EXPECT_EQ(g_InputCodeFileCurrentPosCount, 1);
    SkipSemicolumn();
    EXPECT_EQ(g_InputCodeFileCurrentPosCount, 4);
    SkipSemicolumn();
    SkipSemicolumn();
    EXPECT_EQ(Look, QLatin1Char('y'));
}

// ---------------------------------------------------------------------------------------------
// Names and types where they must come
// ---------------------------------------------------------------------------------------------

TEST_F(Scanner, ScanNameReadsAnyWordAndConsultsNoFunctions) {
    FunctionItem function;
    function.name = QStringLiteral("имя");
    openSource("Имя While x ");
    FunctionsList.append(function);
    ScanName(TokenName, true);
    EXPECT_EQ(Utf8(TokenName), "Имя");
    EXPECT_EQ(TokenChar, TOKEN_IDENTIFIER);
    ScanName(TokenName, false);
    EXPECT_EQ(Utf8(TokenName), "While");
    EXPECT_EQ(TokenChar, TOKEN_WHILE);
    EXPECT_EQ(Place(IdentPlace.begin) + ' ' + Place(IdentPlace.end), "0:4 0:9");
    EXPECT_EQ(Look, QLatin1Char(' '));
}

TEST_F(Scanner, ScanNameRefusesWhatBeginsNoName) {
    const auto scanName = [] { ScanName(TokenName, true); };
    openSource("1x");
    ExpectFailure(scanName, ErrorAt(1, 1, "The identifier was expected but a number found"));
    ResetCompiler();
    openSource(" ;");
    ExpectFailure(scanName, ErrorAt(1, 2, "The identifier was expected but ';' found"));
    ResetCompiler();
    openSource("");
    ExpectFailure(scanName, ErrorAt(0, 0, "An unexpected end of input file"));
}

TEST_F(Scanner, AnErrorAtALineFeedShowsColumnZero) {
    OpenInputCodeFile(writeFile("source.st", "\n"));
    GetChar();
    ExpectFailure([] { ScanName(TokenName, true); },
                  ErrorAt(2, 0, "The identifier was expected but '\n' found"));
}

TEST_F(Scanner, GetTypeReadsLatinNamesInUpperCaseAndLeavesTheTokenAlone) {
    QString text = QStringLiteral("rest");
    openSource(" lReal_8 uintж ");
    TokenChar = TOKEN_COLON;
    GetType(text, true);
    EXPECT_EQ(Utf8(text), "LREAL_8");
    EXPECT_EQ(Place(TokenPosBeg) + ' ' + Place(TokenPosEnd), "0:1 0:8");
    EXPECT_EQ(Look, QLatin1Char('u'));
    GetType(text, false);
    EXPECT_EQ(Utf8(text), "UINT");
    EXPECT_EQ(Look, QChar(0x0436));
    EXPECT_EQ(TokenChar, TOKEN_COLON);
}

TEST_F(Scanner, GetTypeLeavesTheWhiteSpaceWhereAsked) {
    QString text;
    openSource("INT ;");
    GetType(text, false);
    EXPECT_EQ(Look, QLatin1Char(' '));
}

TEST_F(Scanner, GetTypeRefusesWhatBeginsNoLatinName) {
    const auto getType = [] {
        QString text;
        GetType(text, true);
    };
    openSource(" 8INT");
    ExpectFailure(getType, ErrorAt(1, 2, "The identifier was expected but a number found"));
    ResetCompiler();
    openSource("ЖINT");
    ExpectFailure(getType, ErrorAt(1, 1, "The identifier was expected but 'Ж' found"));
}

// ---------------------------------------------------------------------------------------------
// Matching the current token
// ---------------------------------------------------------------------------------------------

class Matching : public CompilerTest {
protected:
    Matching() {
        TokenChar = TOKEN_IDENTIFIER;
        TokenName = u"x";
        TokenPosBeg = {11, 4};
    }
    template <typename Action>
    static void expectFailure(const Action& match, const std::string& text) {
        ExpectFailure(match, ErrorAt(12, 5, text));
    }
};

TEST_F(Matching, PassesOnAnyOfTheGivenTokens) {
    Match(TOKEN_IDENTIFIER);
    Match(TOKEN_IDENTIFIER, "IF"_L1);
    Match(TOKEN_IDENTIFIER, TOKEN_TO);
    Match(TOKEN_TO, TOKEN_IDENTIFIER);
    Match(TOKEN_IDENTIFIER, TOKEN_TO, TOKEN_DO);
    Match(TOKEN_TO, TOKEN_IDENTIFIER, TOKEN_DO);
    Match(TOKEN_TO, TOKEN_DO, TOKEN_IDENTIFIER);
    EXPECT_EQ(TokenChar, TOKEN_IDENTIFIER);
    EXPECT_EQ(Utf8(TokenName), "x");
}

TEST_F(Matching, OneToken) {
    expectFailure([] { Match(TOKEN_THEN); }, "\"THEN\" expected but \"x\" found");
    expectFailure([] { Match(TOKEN_ASSIGN, "IF"_L1); }, "\":=\" expected but \"x\" found (IF)");
    expectFailure([] { Match(TOKEN_NUMBER); }, "Number expected but \"x\" found");
    expectFailure([] { Match(TOKEN_NUMBER, "IF"_L1); }, "Number expected but \"x\" found (IF)");
    expectFailure([] { Match(TOKEN_STRING); }, "An unrecognized keyword \"x\"");
    expectFailure([] { Match(TOKEN_UNKNOWN, "IF"_L1); }, "An unrecognized keyword \"x\" (IF)");
    TokenChar = TOKEN_IF;
    expectFailure([] { Match(TOKEN_IDENTIFIER); }, "Identifier expected but \"x\" found");
}

TEST_F(Matching, TwoTokens) {
    expectFailure([] { Match(TOKEN_TO, TOKEN_DOWNTO); },
                  "\"TO\" or \"DOWNTO\" expected but \"x\" found");
    expectFailure([] { Match(TOKEN_COMMA, TOKEN_COLON, "IF"_L1); },
                  "\",\" or \":\" expected but \"x\" found (IF)");
    expectFailure([] { Match(TOKEN_NUMBER, TOKEN_TO); }, "An unrecognized keyword \"x\"");
    expectFailure([] { Match(TOKEN_TO, TOKEN_STRING, "IF"_L1); },
                  "An unrecognized keyword \"x\" (IF)");
}

TEST_F(Matching, ThreeTokens) {
    expectFailure([] { Match(TOKEN_COMMA, TOKEN_DOT_DOT, TOKEN_COLON); },
                  "\",\" or \"..\" or \":\" expected but \"x\" found");
    expectFailure([] { Match(TOKEN_COMMA, TOKEN_DOT_DOT, TOKEN_COLON, "IF"_L1); },
                  "\",\" or \"..\" or \":\" expected but \"x\" found (IF)");
    expectFailure([] { Match(TOKEN_COMMA, TOKEN_COLON, TOKEN_NUMBER); },
                  "An unrecognized keyword \"x\"");
}

TEST_F(Matching, NamesOfUnits) {
    MatchProgName();
    MatchFuncName();
    MatchProcName();
    TokenChar = TOKEN_FUNCTION;
    expectFailure(MatchProgName, "The program name was expected but \"x\" found");
    expectFailure(MatchFuncName, "The function name was expected but \"x\" found");
    expectFailure(MatchProcName, "The procedure name was expected but \"x\" found");
}

TEST_F(Matching, WhatIsExpectedOrUnknown) {
    expectFailure([] { Expected(QStringLiteral("THEN")); }, "THEN expected");
    expectFailure([] { Undefined(u"y"); }, "Undefined Identifier \"y\"");
    expectFailure([] { Unrecognized(u"y"); }, "An unrecognized keyword \"y\"");
}

// ---------------------------------------------------------------------------------------------
// Values of number texts
// ---------------------------------------------------------------------------------------------

class Values : public CompilerTest {};

TEST_F(Values, OfEveryBase) {
    EXPECT_EQ(StrToInt64(QStringLiteral("0")), 0);
    EXPECT_EQ(StrToInt64(QStringLiteral("0042")), 42);
    EXPECT_EQ(StrToInt64(QStringLiteral("16#10")), 16);
    EXPECT_EQ(StrToInt64(QStringLiteral("8#377")), 255);
    EXPECT_EQ(StrToInt64(QStringLiteral("2#101")), 5);
    EXPECT_EQ(StrToInt64(QStringLiteral("9223372036854775807")), 9223372036854775807);
}

TEST_F(Values, TakeDigitsAndHashesAlone) {
    for (const QString& text :
         {QStringLiteral("16#1F"), QStringLiteral("1.5"), QStringLiteral("-1"),
          QStringLiteral(" 1"), QStringLiteral("12a")}) {
        ExpectFailure([&] { StrToInt64(text); }, ErrorAt(0, 0, "Bad suffix on number"));
    }
}

TEST_F(Values, BeyondTheirRange) {
    for (const QString& text :
         {QStringLiteral("9223372036854775808"), QStringLiteral("16#8000000000000000"),
          QStringLiteral("8#1000000000000000000000"), QString(255, '0'), QStringLiteral("1#0")}) {
        ExpectFailure([&] { StrToInt64(text); }, ErrorAt(0, 0, "Too much the constants"));
    }
}

TEST_F(Values, OfNoTextAtAll) {
    Look = QLatin1Char('?');
    ExpectFailure([] { StrToInt64(QString()); },
                  ErrorAt(0, 0, "The string was expected but '?' found"));
}

}  // namespace
