// The scanner: character classes, every kind of token, comments, places, and the checks of the
// current token.

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
// Tokens
// ---------------------------------------------------------------------------------------------

struct Lexeme {
    Token code;
    std::string text;
    Typ type = TYP_NONE;
};

bool operator==(const Lexeme& a, const Lexeme& b) {
    return a.code == b.code && a.text == b.text && a.type == b.type;
}

std::ostream& operator<<(std::ostream& out, const Lexeme& lexeme) {
    return out << NameOf(lexeme.code) << " \"" << lexeme.text << "\" type "
               << NameOf(lexeme.type);
}

using Lexemes = std::vector<Lexeme>;

class Scanner : public CompilerTest {
protected:
    static Lexeme scan(bool integerOnly = false, bool skipWhite = true) {
        const Typ type = Scan(integerOnly, skipWhite);
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
    for (const token& row : TokensTable) {
        const QString word = row.text;
        if (!IsAlpha(word[0])) {
            continue;
        }
        const bool isLiteral = row.code == TOKEN_TRUE || row.code == TOKEN_FALSE;
        const Typ type = isLiteral ? TYP_BOOL : TYP_NONE;
        for (const QString& text : {word, word.toLower(), MixedCase(word)}) {
            EXPECT_EQ(scanAll(Utf8(text)), (Lexemes{{row.code, Utf8(text), type}}));
        }
    }
}

TEST_F(Scanner, ReadsEveryOtherTextOfTheTable) {
    EXPECT_EQ(scanAll("; , ( ) [ ] : := + - * / ** = <> < > <= >="),
              (Lexemes{{TOKEN_SEMICOLON, ";"},
                       {TOKEN_COMMA, ","},
                       {TOKEN_LEFT_PARENTHESIS, "("},
                       {TOKEN_RIGHT_PARENTHESIS, ")"},
                       {TOKEN_LEFT_BRACKET, "["},
                       {TOKEN_RIGHT_BRACKET, "]"},
                       {TOKEN_COLON, ":"},
                       {TOKEN_ASSIGN, ":="},
                       {TOKEN_PLUS, "+"},
                       {TOKEN_MINUS, "-"},
                       {TOKEN_MULTIPLY, "*"},
                       {TOKEN_DIVIDE, "/"},
                       {TOKEN_POWER, "**"},
                       {TOKEN_EQUAL, "="},
                       {TOKEN_NOT_EQUAL, "<>"},
                       {TOKEN_LESS, "<"},
                       {TOKEN_GREATER, ">"},
                       {TOKEN_LESS_OR_EQUAL, "<="},
                       {TOKEN_GREATER_OR_EQUAL, ">="}}));
    EXPECT_EQ(
        scanAll(". .. ...", true),
        (Lexemes{
            {TOKEN_DOT, "."}, {TOKEN_DOT_DOT, ".."}, {TOKEN_DOT_DOT, ".."}, {TOKEN_DOT, "."}}));
}

TEST_F(Scanner, TwoOperationCharactersMakeOneToken) {
    EXPECT_EQ(scanAll("<=-"), (Lexemes{{TOKEN_LESS_OR_EQUAL, "<="}, {TOKEN_MINUS, "-"}}));
    EXPECT_EQ(scanAll("a+-b"),
              (Lexemes{{TOKEN_IDENTIFIER, "a"}, {TOKEN_UNKNOWN, "+-"}, {TOKEN_IDENTIFIER, "b"}}));
    EXPECT_EQ(scanAll("=> =< :- - -"), (Lexemes{{TOKEN_UNKNOWN, "=>"},
                                                {TOKEN_UNKNOWN, "=<"},
                                                {TOKEN_UNKNOWN, ":-"},
                                                {TOKEN_MINUS, "-"},
                                                {TOKEN_MINUS, "-"}}));
    EXPECT_EQ(scanAll("*)"), (Lexemes{{TOKEN_MULTIPLY, "*"}, {TOKEN_RIGHT_PARENTHESIS, ")"}}));
}

TEST_F(Scanner, OtherCharactersAreUnknownTokens) {
    EXPECT_EQ(scanAll("?!#$\"{ё"), (Lexemes{{TOKEN_UNKNOWN, "?"},
                                            {TOKEN_UNKNOWN, "!"},
                                            {TOKEN_UNKNOWN, "#"},
                                            {TOKEN_UNKNOWN, "$"},
                                            {TOKEN_UNKNOWN, "\""},
                                            {TOKEN_UNKNOWN, "{"},
                                            {TOKEN_UNKNOWN, "ё"}}));
}

TEST_F(Scanner, NamesKeepTheirCaseAndDoNotBeginWithADigit) {
    EXPECT_EQ(scanAll("x1 _a Счетчик_2 iF_"), (Lexemes{{TOKEN_IDENTIFIER, "x1"},
                                                       {TOKEN_IDENTIFIER, "_a"},
                                                       {TOKEN_IDENTIFIER, "Счетчик_2"},
                                                       {TOKEN_IDENTIFIER, "iF_"}}));
    EXPECT_EQ(scanAll("1x"), (Lexemes{{TOKEN_NUMBER, "1", TYP_SINT}, {TOKEN_IDENTIFIER, "x"}}));
    EXPECT_EQ(
        scanAll("Счётчик"),
        (Lexemes{{TOKEN_IDENTIFIER, "Сч"}, {TOKEN_UNKNOWN, "ё"}, {TOKEN_IDENTIFIER, "тчик"}}));
}

TEST_F(Scanner, NamesOfDeclaredFunctionsCarryTheCodesOfTheirKeywords) {
    FunctionItem function;
    function.spelling = &SpellingOf(u"Площадь");
    FunctionItem block;
    block.spelling = &SpellingOf(u"Pump");
    block.isFunction = false;
    openSource("ПЛОЩАДЬ pump pumps");
    FunctionsList.append(function);
    FunctionsList.append(block);
    EXPECT_EQ(scan(), (Lexeme{TOKEN_FUNCTION, "ПЛОЩАДЬ"}));
    EXPECT_EQ(Place(IdentPlace.end), "0:7");
    EXPECT_EQ(scan(), (Lexeme{TOKEN_FUNCTION_BLOCK, "pump"}));
    EXPECT_EQ(scan(), (Lexeme{TOKEN_IDENTIFIER, "pumps"}));
}

TEST_F(Scanner, WordsAloneHaveASpelling) {
    openSource("While Насос 1 'x' := ; level");
    for (const QStringView word : {u"While", u"Насос"}) {
        scan();
        EXPECT_EQ(TokenSpelling, &SpellingOf(word)) << Utf8(word);
    }
    for (int i = 0; i < 4; ++i) {
        scan();
        EXPECT_EQ(TokenSpelling, nullptr) << Utf8(TokenName);
    }
    scan();
    EXPECT_EQ(TokenSpelling, &SpellingOf(u"level"));
}

TEST_F(Scanner, TheRecordKeepsTheTypeThatScanReturned) {
    openSource("300 x TRUE 1.5 (**) 2");
    for (const Typ type : {TYP_INT, TYP_NONE, TYP_BOOL, TYP_REAL, TYP_NONE}) {
        EXPECT_EQ(Scan(), type);
        EXPECT_EQ(CurrentToken.type, type);
    }
}

TEST_F(Scanner, MessagesQuoteTheTokenBeforeADeclaredOne) {
    openSource("VAR CONSTANT x : (* + c *) y ;");
    EXPECT_EQ(scan(), (Lexeme{TOKEN_VAR, "VAR"}));
    for (const Token code : {TOKEN_CONSTANT, TOKEN_IDENTIFIER}) {
        EXPECT_EQ(ScanDeclared(), TYP_NONE);
        EXPECT_EQ(TokenChar, code);
        EXPECT_EQ(Utf8(TokenName), "VAR");
    }
    EXPECT_EQ(Utf8(CurrentToken.text), "x");
    EXPECT_EQ(scan(), (Lexeme{TOKEN_COLON, ":"}));
    ScanDeclared();
    EXPECT_EQ(Utf8(CurrentToken.text), "y");
    EXPECT_EQ(Utf8(TokenName), "+");
}

TEST_F(Scanner, ATokenMayBeMadeToCountAsASemicolon) {
    openSource("a :");
    scan();
    scan();
    CountAsSemicolumn();
    EXPECT_EQ(TokenChar, TOKEN_SEMICOLON);
    EXPECT_EQ(Utf8(TokenName), ":");
}

TEST_F(Scanner, StringsAreUpperCaseAndHaveNoType) {
    EXPECT_EQ(scanAll("'abc' '' 'ж // (* x' y"), (Lexemes{{TOKEN_STRING, "ABC"},
                                                          {TOKEN_STRING, ""},
                                                          {TOKEN_STRING, "Ж // (* X"},
                                                          {TOKEN_IDENTIFIER, "y"}}));
}

TEST_F(Scanner, UnterminatedStrings) {
    expectFailureOf("  'abc\n'", 3, "Unterminated string");
    expectFailureOf("'abc", 1, "Unterminated string");
    expectFailureOf("'", 1, "Unterminated string");
}

TEST_F(Scanner, OnlyPunctuationMayLeaveTheWhiteSpaceAfterIt) {
    openSource("( a + 1 'x' ; b");
    EXPECT_EQ(scan(false, false), (Lexeme{TOKEN_LEFT_PARENTHESIS, "("}));
    EXPECT_EQ(Look, QLatin1Char(' '));
    SkipWhite();
    for (const char next : {'+', '1', '\'', ';'}) {
        scan(false, false);
        EXPECT_EQ(Look, QLatin1Char(next));
    }
    EXPECT_EQ(scan(false, true), (Lexeme{TOKEN_SEMICOLON, ";"}));
    EXPECT_EQ(Look, QLatin1Char('b'));
}

TEST_F(Scanner, NothingComesAfterTheEndOfTheSource) {
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
    Typ type;
    std::string text = source;
};

std::string Repeat(char c, std::size_t count) {
    return std::string(count, c);
}

class Numbers : public Scanner {
protected:
    void expectNumbers(const std::vector<Number>& numbers) const {
        for (const Number& number : numbers) {
            EXPECT_EQ(scanAll(number.source),
                      (Lexemes{{TOKEN_NUMBER, number.text, number.type}}));
        }
    }
    void expectTooMuch(const std::string& source) const {
        expectFailureOf(source, 1, "Too much the constants");
    }
};

TEST_F(Numbers, DecimalTypesAtEveryThreshold) {
    expectNumbers({{"0", TYP_SINT},
                   {"127", TYP_SINT},
                   {"128", TYP_USINT},
                   {"255", TYP_USINT},
                   {"256", TYP_INT},
                   {"32767", TYP_INT},
                   {"32768", TYP_UINT},
                   {"65535", TYP_UINT},
                   {"65536", TYP_DINT},
                   {"2147483647", TYP_DINT},
                   {"2147483648", TYP_UDINT},
                   {"4294967295", TYP_UDINT},
                   {"000128", TYP_USINT}});
    expectTooMuch("4294967296");
    expectTooMuch("9223372036854775807");
}

TEST_F(Numbers, DecimalsBeyond64BitsAreSintUpTo254Digits) {
    expectNumbers({{"99999999999999999999", TYP_SINT}, {Repeat('9', 254), TYP_SINT}});
    expectTooMuch(Repeat('9', 255));
    expectTooMuch(Repeat('0', 255));
}

TEST_F(Numbers, HexTypesAtEveryThreshold) {
    expectNumbers({{"16#0", TYP_SINT},
                   {"16#7F", TYP_SINT},
                   {"16#80", TYP_USINT},
                   {"16#ff", TYP_USINT, "16#FF"},
                   {"16#100", TYP_INT},
                   {"16#7FFF", TYP_INT},
                   {"16#8000", TYP_UINT},
                   {"16#FfFf", TYP_UINT, "16#FFFF"},
                   {"16#10000", TYP_DINT},
                   {"16#7FFFFFFF", TYP_DINT},
                   {"16#80000000", TYP_UDINT},
                   {"16#FFFFFFFF", TYP_UDINT},
                   {"16#" + Repeat('0', 249) + "80", TYP_USINT}});
    expectTooMuch("16#100000000");
    expectTooMuch("16#7FFFFFFFFFFFFFFF");
    expectTooMuch("16#10000000000000000");
    expectTooMuch("16#" + Repeat('0', 252));
}

TEST_F(Numbers, OctalsAreTypedByTheirDigitsInBase16) {
    expectNumbers({{"8#0", TYP_SINT},
                   {"8#77", TYP_SINT},
                   {"8#100", TYP_INT},
                   {"8#377", TYP_INT},
                   {"8#7777", TYP_INT},
                   {"8#10000", TYP_DINT},
                   {"8#77777777", TYP_DINT},
                   {"8#" + Repeat('0', 249) + "100", TYP_INT}});
    expectTooMuch("8#100000000");
    expectTooMuch("8#" + Repeat('0', 253));
}

TEST_F(Numbers, BinaryTypesAtEveryThreshold) {
    const auto binary = [](int ones, int zeros) {
        return "2#" + Repeat('1', static_cast<std::size_t>(ones)) +
               Repeat('0', static_cast<std::size_t>(zeros));
    };
    expectNumbers({{binary(0, 1), TYP_SINT},
                   {binary(7, 0), TYP_SINT},
                   {binary(1, 7), TYP_USINT},
                   {binary(8, 0), TYP_USINT},
                   {binary(1, 8), TYP_INT},
                   {binary(15, 0), TYP_INT},
                   {binary(1, 15), TYP_UINT},
                   {binary(16, 0), TYP_UINT},
                   {binary(1, 16), TYP_DINT},
                   {binary(31, 0), TYP_DINT},
                   {binary(1, 31), TYP_UDINT},
                   {binary(32, 0), TYP_UDINT},
                   {binary(0, 32), TYP_SINT}});
    expectTooMuch(binary(33, 0));
    expectTooMuch(binary(0, 33));
}

TEST_F(Numbers, RealsAndTheirTypes) {
    expectNumbers({{".5", TYP_REAL, "0.5"},
                   {"5.", TYP_REAL, "5.0"},
                   {"007.250", TYP_REAL},
                   {"5.e3", TYP_REAL, "5.0E3"},
                   {"1.5e+3", TYP_REAL, "1.5E+3"},
                   {"1.5E-3", TYP_REAL},
                   {"1.0e", TYP_REAL, "1.0E"},
                   {"3.4e38", TYP_REAL, "3.4E38"},
                   {"3.4000001e38", TYP_LREAL, "3.4000001E38"},
                   {"1.0e40", TYP_LREAL, "1.0E40"},
                   {"1.0E400", TYP_LREAL},
                   {"1." + Repeat('0', 252), TYP_REAL}});
    expectTooMuch("1." + Repeat('0', 253));
    expectTooMuch("1.0E" + Repeat('0', 251));
    expectTooMuch(Repeat('1', 254) + '.');
}

TEST_F(Numbers, ADotEndsANumberWhereOnlyIntegersAreRead) {
    EXPECT_EQ(scanAll("1..5", true), (Lexemes{{TOKEN_NUMBER, "1", TYP_SINT},
                                              {TOKEN_DOT_DOT, ".."},
                                              {TOKEN_NUMBER, "5", TYP_SINT}}));
    EXPECT_EQ(scanAll("1.5", true), (Lexemes{{TOKEN_NUMBER, "1", TYP_SINT},
                                             {TOKEN_DOT, "."},
                                             {TOKEN_NUMBER, "5", TYP_SINT}}));
    EXPECT_EQ(scanAll("16#F.", true),
              (Lexemes{{TOKEN_NUMBER, "16#F", TYP_SINT}, {TOKEN_DOT, "."}}));
    EXPECT_EQ(scanAll("1..5"),
              (Lexemes{{TOKEN_NUMBER, "1.0", TYP_REAL}, {TOKEN_NUMBER, "0.5", TYP_REAL}}));
    EXPECT_EQ(scanAll("."), (Lexemes{{TOKEN_NUMBER, "0.0", TYP_REAL}}));
}

TEST_F(Numbers, EndAtTheFirstCharacterThatIsNoDigitOfTheirs) {
    EXPECT_EQ(scanAll("1e40"),
              (Lexemes{{TOKEN_NUMBER, "1", TYP_SINT}, {TOKEN_IDENTIFIER, "e40"}}));
    EXPECT_EQ(scanAll("16#1G"),
              (Lexemes{{TOKEN_NUMBER, "16#1", TYP_SINT}, {TOKEN_IDENTIFIER, "G"}}));
    EXPECT_EQ(scanAll("8#78"),
              (Lexemes{{TOKEN_NUMBER, "8#7", TYP_SINT}, {TOKEN_NUMBER, "8", TYP_SINT}}));
    EXPECT_EQ(scanAll("2#12"),
              (Lexemes{{TOKEN_NUMBER, "2#1", TYP_SINT}, {TOKEN_NUMBER, "2", TYP_SINT}}));
    EXPECT_EQ(scanAll("2#1.5"),
              (Lexemes{{TOKEN_NUMBER, "2#1", TYP_SINT}, {TOKEN_NUMBER, "0.5", TYP_REAL}}));
    EXPECT_EQ(scanAll("1 #"), (Lexemes{{TOKEN_NUMBER, "1", TYP_SINT}, {TOKEN_UNKNOWN, "#"}}));
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
    EXPECT_EQ(scanAll("// c\n a //\n//// ' (*\nb"),
              (Lexemes{{TOKEN_IDENTIFIER, "a"}, {TOKEN_IDENTIFIER, "b"}}));
    EXPECT_EQ(
        scanAll("(* c *) a(**)b (*\n\n ' // *)c"),
        (Lexemes{{TOKEN_IDENTIFIER, "a"}, {TOKEN_IDENTIFIER, "b"}, {TOKEN_IDENTIFIER, "c"}}));
    EXPECT_EQ(scanAll("/ /"), (Lexemes{{TOKEN_DIVIDE, "/"}, {TOKEN_DIVIDE, "/"}}));
    EXPECT_EQ(scanAll("( *"), (Lexemes{{TOKEN_LEFT_PARENTHESIS, "("}, {TOKEN_MULTIPLY, "*"}}));
}

TEST_F(Scanner, CommentsEndAtTheFirstStarAndParenthesis) {
    EXPECT_EQ(scanAll("(* a (* b *) c *)"), (Lexemes{{TOKEN_IDENTIFIER, "c"},
                                                     {TOKEN_MULTIPLY, "*"},
                                                     {TOKEN_RIGHT_PARENTHESIS, ")"}}));
    for (const char* comment : {"(***)", "(****)", "(* ***)", "(*)*)", "(*/*)", "(*-+*)", "(*:*)",
                                "(* + *)", "(*a*)", "(* ** ) * ) *\n) *)"}) {
        EXPECT_EQ(scanAll(std::string(comment) + "x"), (Lexemes{{TOKEN_IDENTIFIER, "x"}}))
            << comment;
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
    EXPECT_EQ(
        scanAll("(**)1 //\nTRUE 1.5"),
        (Lexemes{{TOKEN_NUMBER, "1"}, {TOKEN_TRUE, "TRUE"}, {TOKEN_NUMBER, "1.5", TYP_REAL}}));
    EXPECT_EQ(scanAll("1 (**) .5", true),
              (Lexemes{{TOKEN_NUMBER, "1", TYP_SINT}, {TOKEN_NUMBER, "0.5"}}));
}

TEST_F(Scanner, ManyCommentsInARow) {
    std::string source;
    for (int i = 0; i < 100000; ++i) {
        source += "(**)//\n";
    }
    EXPECT_EQ(scanAll(source + "x"), (Lexemes{{TOKEN_IDENTIFIER, "x"}}));
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

TEST_F(Scanner, TokensBeginAtTheirFirstCharacterAndEndAfterTheirLast) {
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

TEST_F(Scanner, IdentPlaceIsThatOfTheCurrentIdentifier) {
    EXPECT_EQ(Place(IdentPlace.begin), "-1:-1");
    openSource("abc \n de IF");
    scan();
    EXPECT_EQ(Place(IdentPlace.begin) + ' ' + Place(IdentPlace.end), "0:0 0:3");
    scan();
    EXPECT_EQ(Place(IdentPlace.begin) + ' ' + Place(IdentPlace.end), "1:1 1:3");
}

TEST_F(Scanner, ALineFeedStandsAtColumnMinusOneOfTheLineItOpens) {
    readSource("a\n\nb");
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
    function.spelling = &SpellingOf(u"имя");
    openSource("Имя While x ");
    FunctionsList.append(function);
    ScanName();
    EXPECT_EQ(Utf8(TokenName), "Имя");
    EXPECT_EQ(TokenChar, TOKEN_IDENTIFIER);
    EXPECT_EQ(TokenSpelling, &SpellingOf(u"Имя"));
    EXPECT_EQ(Look, QLatin1Char(' '));
    SkipWhite();
    ScanName();
    EXPECT_EQ(Utf8(TokenName), "While");
    EXPECT_EQ(TokenChar, TOKEN_WHILE);
    EXPECT_EQ(Place(IdentPlace.begin) + ' ' + Place(IdentPlace.end), "0:4 0:9");
    EXPECT_EQ(Look, QLatin1Char(' '));
}

TEST_F(Scanner, ScanNameRefusesWhatBeginsNoName) {
    openSource("1x");
    ExpectFailure(ScanName, ErrorAt(1, 1, "The identifier was expected but a number found"));
    ResetCompiler();
    openSource(" ;");
    ExpectFailure(ScanName, ErrorAt(1, 2, "The identifier was expected but ';' found"));
    ResetCompiler();
    openSource("");
    ExpectFailure(ScanName, ErrorAt(0, 0, "An unexpected end of input file"));
}

TEST_F(Scanner, AnErrorAtALineFeedShowsColumnZero) {
    readSource("\n");
    GetChar();
    ExpectFailure(ScanName, ErrorAt(2, 0, "The identifier was expected but '\n' found"));
}

TEST_F(Scanner, GetTypeReadsLatinNamesInUpperCaseAndLeavesTheTokenAlone) {
    openSource(" lReal_8 uintж ");
    CurrentToken.code = TOKEN_COLON;
    CurrentToken.quoted = u"rest";
    GetType();
    EXPECT_EQ(Utf8(CurrentToken.text), "LREAL_8");
    EXPECT_EQ(TokenSpelling, &SpellingOf(u"LREAL_8"));
    EXPECT_EQ(Place(TokenPosBeg) + ' ' + Place(TokenPosEnd), "0:1 0:8");
    EXPECT_EQ(Look, QLatin1Char('u'));
    GetType();
    EXPECT_EQ(Utf8(CurrentToken.text), "UINT");
    EXPECT_EQ(Look, QChar(0x0436));
    EXPECT_EQ(TokenChar, TOKEN_COLON);
    EXPECT_EQ(Utf8(TokenName), "rest");
}

// The capital of the dotless i is I, so a type is found where the name of a variable differs.
TEST_F(Scanner, GetTypeTakesTheCapitalsOfItsLetters) {
    openSource("d\u0131nt");
    GetType();
    EXPECT_EQ(TokenSpelling, &SpellingOf(u"DINT"));
}

TEST_F(Scanner, GetTypeRefusesWhatBeginsNoLatinName) {
    openSource(" 8INT");
    ExpectFailure(GetType, ErrorAt(1, 2, "The identifier was expected but a number found"));
    ResetCompiler();
    openSource("ЖINT");
    ExpectFailure(GetType, ErrorAt(1, 1, "The identifier was expected but 'Ж' found"));
}

// ---------------------------------------------------------------------------------------------
// Matching the current token
// ---------------------------------------------------------------------------------------------

class Matching : public CompilerTest {
protected:
    Matching() {
        CurrentToken.code = TOKEN_IDENTIFIER;
        CurrentToken.quoted = u"x";
        CurrentToken.place.begin = {11, 4};
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
    CurrentToken.code = TOKEN_IF;
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

TEST_F(Matching, GoesOnBeforeOrAfter) {
    openSource("1.5 IF 300");
    EXPECT_EQ(MatchAndScan(TOKEN_IDENTIFIER), TYP_REAL);
    EXPECT_EQ(ScanAndMatch(TOKEN_IF), TYP_NONE);
    EXPECT_EQ(ScanAndMatch(TOKEN_NUMBER), TYP_INT);
    ExpectFailure([] { MatchAndScan(TOKEN_IF); },
                  ErrorAt(1, 8, "\"IF\" expected but \"300\" found"));
}

TEST_F(Matching, IsOfTheTokenThatWasScanned) {
    openSource("IF");
    ExpectFailure([] { ScanAndMatch(TOKEN_THEN); },
                  ErrorAt(1, 1, "\"THEN\" expected but \"IF\" found"));
}

TEST_F(Matching, NamesOfUnits) {
    MatchProgName();
    MatchFuncName();
    MatchProcName();
    CurrentToken.code = TOKEN_FUNCTION;
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
