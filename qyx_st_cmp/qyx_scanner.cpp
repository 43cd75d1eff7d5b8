#include "qyx_scanner.h"

#include "qyx_files.h"
#include "qyx_messages.h"
#include "qyx_observer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <initializer_list>
#include <optional>

QChar Look;
int g_InputCodeFileCurrentLineCount = 0;
int g_InputCodeFileCurrentPosCount = -1;
bool IsCommentNow = false;
ScannedToken CurrentToken;

// ---------------------------------------------------------------------------------------------
// Character classes
// ---------------------------------------------------------------------------------------------

namespace {

enum CharacterClass : unsigned {
    CLASS_WHITE = 1U << 0U,
    CLASS_ALPHA = 1U << 1U,
    CLASS_DIGIT = 1U << 2U,
    CLASS_HEX_DIGIT = 1U << 3U,
    CLASS_OCT_DIGIT = 1U << 4U,
    CLASS_BIN_DIGIT = 1U << 5U,
    CLASS_OPERATION = 1U << 6U,
    CLASS_SIMBOL = 1U << 7U
};

using ClassTable = std::array<unsigned, ASCII_COUNT>;

constexpr void AddClass(ClassTable& table, const char* characters, unsigned characterClass) {
    for (; *characters != '\0'; ++characters) {
        table[static_cast<std::size_t>(*characters)] |= characterClass;
    }
}

constexpr ClassTable MakeClassTable() {
    ClassTable table = {};
    AddClass(table, "\t\n\r ", CLASS_WHITE);
    AddClass(table, "ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz", CLASS_ALPHA);
    AddClass(table, "0123456789", CLASS_DIGIT);
    AddClass(table, "0123456789ABCDEFabcdef", CLASS_HEX_DIGIT);
    AddClass(table, "01234567", CLASS_OCT_DIGIT);
    AddClass(table, "01", CLASS_BIN_DIGIT);
    AddClass(table, "*+-/:<=>", CLASS_OPERATION);
    AddClass(table, "!\"#$%&'*+-/:<=>?@^|~", CLASS_SIMBOL);
    return table;
}

constexpr ClassTable CLASSES = MakeClassTable();

constexpr ushort CYRILLIC_CAPITAL_A = 0x0410;
constexpr ushort CYRILLIC_CAPITAL_YA = 0x042F;
constexpr QLatin1Char QUOTE('\'');

bool HasClass(QChar c, unsigned characterClass) {
    return c.unicode() < ASCII_COUNT && (CLASSES[c.unicode()] & characterClass) != 0;
}

}  // namespace

// White = ? a blank, a tab or a line feed ?
bool IsWhite(QChar c) {
    return HasClass(c, CLASS_WHITE);
}

bool IsSemicolumn(QChar c) {
    return c == QLatin1Char(';');
}

// LatinLetter = ? a letter whose capital is one of "A" to "Z" ? | "_"
// A few letters outside ASCII have a Latin capital; they count as that capital does.
bool IsAlpha(QChar c) {
    return HasClass(c.unicode() < ASCII_COUNT ? c : c.toUpper(), CLASS_ALPHA);
}

// Letter = LatinLetter | ? a letter whose capital is one of "А" to "Я", not "Ё" ?
bool IsAlphaR(QChar c) {
    if (c.unicode() < ASCII_COUNT) {
        return HasClass(c, CLASS_ALPHA);
    }
    const ushort capital = c.toUpper().unicode();
    return (capital >= CYRILLIC_CAPITAL_A && capital <= CYRILLIC_CAPITAL_YA) || IsAlpha(c);
}

// Digit = "0" | "1" | "2" | "3" | "4" | "5" | "6" | "7" | "8" | "9"
bool IsDigit(QChar c) {
    return HasClass(c, CLASS_DIGIT);
}

// HexDigit = Digit | "A" | "B" | "C" | "D" | "E" | "F"
bool IsHexDigit(QChar c) {
    return HasClass(c, CLASS_HEX_DIGIT);
}

// OctDigit = "0" | "1" | "2" | "3" | "4" | "5" | "6" | "7"
bool IsOctDigit(QChar c) {
    return HasClass(c, CLASS_OCT_DIGIT);
}

// BinDigit = "0" | "1"
bool IsBinDigit(QChar c) {
    return HasClass(c, CLASS_BIN_DIGIT);
}

bool IsString(QChar c) {
    return c == QUOTE;
}

// OperatorSign = "*" | "+" | "-" | "/" | ":" | "<" | "=" | ">"
bool IsOperation(QChar c) {
    return HasClass(c, CLASS_OPERATION);
}

bool IsSimbol(QChar c) {
    return HasClass(c, CLASS_SIMBOL);
}

bool IsAlphaOrDigit(QChar c) {
    return HasClass(c, CLASS_ALPHA | CLASS_DIGIT) || IsAlpha(c);
}

bool IsAlphaOrDigitR(QChar c) {
    return HasClass(c, CLASS_ALPHA | CLASS_DIGIT) || IsAlphaR(c);
}

bool IsCharacter(QChar c) {
    return IsAlphaOrDigit(c) || IsSimbol(c);
}

// ---------------------------------------------------------------------------------------------
// The look-ahead character
// ---------------------------------------------------------------------------------------------

// A line feed stands at column -1 of the line that it opens, so that every line begins at 0.
void GetChar() {
    Look = QChar(static_cast<ushort>(ReadCharFromInputCodeFile()));
    ++g_InputCodeFileCurrentPosCount;
    if (Look == QLatin1Char('\n')) {
        g_InputCodeFileCurrentPosCount = -1;
        ++g_InputCodeFileCurrentLineCount;
    }
}

void SkipWhite() {
    while (IsWhite(Look)) {
        GetChar();
    }
}

void SkipSemicolumn() {
    while (IsSemicolumn(Look)) {
        GetChar();
    }
    SkipWhite();
}

bool IsEndOfInput(QChar c) {
    return c == QChar(END_OF_INPUT);
}

namespace {

// Where a line ends: no comment of one line and no string goes on after it.
bool IsLineEnd(QChar c) {
    return c == QLatin1Char('\n') || IsEndOfInput(c);
}

TokenPos LookPlace() {
    return {g_InputCodeFileCurrentLineCount, g_InputCodeFileCurrentPosCount};
}

void StoreTokenBeg(TokenPos place) {
    CurrentToken.place = {place, place};
}

void StoreTokenEnd(TokenPos place) {
    CurrentToken.place.end = place;
}

// Takes Look and the characters after it of which isIn holds, no line end among them, and
// advances past them. Look itself is taken in any case.
template <typename Predicate>
QStringView TakeRun(Predicate isIn) {
    const QStringView run = g_InputCodeFileHandle->takeRun(isIn);
    g_InputCodeFileCurrentPosCount += static_cast<int>(run.size()) - 1;
    GetChar();
    return run;
}

QStringView TakeOne() {
    return TakeRun([](QChar) { return false; });
}

// Takes Look, which stands directly after the text, and returns both.
QStringView TakeAfter(QStringView text) {
    return {text.begin(), TakeOne().end()};
}

// Aborts with `expectedBut` '<Look>' found.
[[noreturn]] void AbortAtLook(QLatin1String expectedBut) {
    Abort(expectedBut, StringsToString(expectedBut, " '", Look, "' ", TXT_FOUND));
}

// ---------------------------------------------------------------------------------------------
// Comments
// ---------------------------------------------------------------------------------------------

// LineComment = "//" { ? any character but a line feed ? }
// Look stands after the "//", white space not skipped.
void SkipLineComment() {
    StoreTokenBeg(LookPlace());
    if (!IsLineEnd(Look)) {
        TakeRun([](QChar c) { return !IsLineEnd(c); });
    }
    SkipWhite();
}

// A piece of a multi-line comment: characters that are no operators, or one or two that could
// make up "*)". Every "*" begins the pair anew, so that "**)" ends a comment as "*)" does.
void GetEndComment() {
    CurrentToken.code = TOKEN_UNKNOWN;
    CurrentToken.text = QStringView();
    if (!IsOperation(Look)) {
        TakeRun([](QChar c) { return !IsOperation(c) && !IsLineEnd(c); });
        return;
    }
    QStringView pair = TakeOne();
    while (pair.size() < 2 && (IsOperation(Look) || Look == QLatin1Char(')'))) {
        const bool beginsAnew = Look == QLatin1Char('*');
        pair = beginsAnew ? TakeOne() : TakeAfter(pair);
    }
    StoreTokenEnd({g_InputCodeFileCurrentLineCount, g_InputCodeFileCurrentPosCount - 1});
    SkipWhite();
    CurrentToken.text = pair;
    CurrentToken.code = PunctuationToken(pair);
}

void ScanToken(bool integerOnly, bool skipWhite);

// BlockComment = "(*" { ? any character ? } "*)"
// Look stands on the "*" of "(*". Comments do not nest: "(*" within is comment text. The comment
// is read piece by piece, as tokens of its own kind.
//
// QUIRK(quoted-comment-piece): messages quote the first piece as the token before, so one about a
// declared name after such a comment quotes that piece. Messages are fixed.
void SkipMultiLinesComment() {
    GetChar();
    SkipWhite();
    IsCommentNow = true;
    ScanToken(false, true);
    CurrentToken.quoted = CurrentToken.text;
    while (TokenChar != TOKEN_COMMENT_END) {
        SkipWhite();
        ScanToken(false, true);
    }
    SkipWhite();
    IsCommentNow = false;
}

// Comment = LineComment | BlockComment
void SkipComment(Token code) {
    Tell(&Observer::commentBegun);
    if (code == TOKEN_LINE_COMMENT) {
        SkipLineComment();
    } else {
        SkipMultiLinesComment();
    }
    Tell(&Observer::commentEnded);
}

bool IsCommentBegin(Token code) {
    return code == TOKEN_LINE_COMMENT || code == TOKEN_COMMENT_BEGIN;
}

// ---------------------------------------------------------------------------------------------
// Names and strings
// ---------------------------------------------------------------------------------------------

// Aborts unless Look can begin a name.
void CheckNameBegin(bool (*isBegin)(QChar)) {
    if (isBegin(Look)) {
        return;
    }
    if (IsDigit(Look)) {
        Abort(TXT_IDENTIFIER_EXPECTED_BUT_NUMBER_FOUND);
    }
    AbortAtLook(TXT_IDENTIFIER_EXPECTED_BUT);
}

// Name = Letter { Letter | Digit }
// It is kept as written.
void GetNameR(bool skipWhite) {
    StoreTokenBeg(LookPlace());
    CheckNameBegin(IsAlphaR);
    const QStringView name = TakeRun(IsAlphaOrDigitR);
    StoreTokenEnd(LookPlace());
    const Spelling& spelling = SpellingOf(name);
    CurrentToken.text = name;
    CurrentToken.spelling = &spelling;
    CurrentToken.code =
        spelling.row == NO_ROW ? TOKEN_IDENTIFIER : TokensTable[spelling.row].code;
    if (skipWhite) {
        SkipWhite();
    }
}

// String = "'" { ? any character but an apostrophe and a line feed ? } "'"
// It is upper-cased.
void GetString() {
    QString text;
    StoreTokenBeg(LookPlace());
    GetChar();
    while (!IsString(Look)) {
        if (IsLineEnd(Look)) {
            Abort(TXT_UNTERMINATED_STRING);
        }
        text += Look.toUpper();
        GetChar();
    }
    StoreTokenEnd(LookPlace());
    GetChar();
    SkipWhite();
    CurrentToken.text = KeepText(text);
    CurrentToken.code = TOKEN_STRING;
}

// Operator = OperatorSign [ OperatorSign ]
//
// QUIRK(sign-pairs): two operation characters always make one token, so "a+-b" holds the unknown
// token "+-". A blank between them is the language's way to write two operators.
//
// The white space after "//" is comment text and stays.
void GetOperation() {
    StoreTokenBeg(LookPlace());
    QStringView text = TakeOne();
    if (IsOperation(Look)) {
        text = TakeAfter(text);
    }
    StoreTokenEnd(LookPlace());
    CurrentToken.text = text;
    CurrentToken.code = PunctuationToken(text);
    if (TokenChar != TOKEN_LINE_COMMENT) {
        SkipWhite();
    }
}

// ---------------------------------------------------------------------------------------------
// Numbers
// ---------------------------------------------------------------------------------------------

constexpr int NUMBER_LENGTH_LIMIT = 254;
constexpr int BIN_DIGITS_LIMIT = 32;
constexpr qint64 LITERAL_LIMIT = 0xFFFFFFFF;
constexpr double REAL_LIMIT = 3.4e+38;

// The notations with a base, by the prefix that selects them.
struct Notation {
    QLatin1String prefix;
    int base;
    int typingBase;  // base of the value that chooses the literal's type
    int digitsLimit;
    bool (*isDigit)(QChar);
    QLatin1String digitExpectedBut;
};

// QUIRK(octal-types): an octal literal is typed by its digits read in base 16, so 8#377 is an
// INT and not a USINT. Programs in the field rely on the types that follow; the value itself is
// read in base 8.
constexpr Notation HEX_NOTATION = {
    "16#"_L1, 16, 16, NUMBER_LENGTH_LIMIT, IsHexDigit, TXT_HEX_NUMBER_EXPECTED_BUT};
constexpr Notation OCT_NOTATION = {
    "8#"_L1, 8, 16, NUMBER_LENGTH_LIMIT, IsOctDigit, TXT_OCT_NUMBER_EXPECTED_BUT};
constexpr Notation BIN_NOTATION = {"2#"_L1,          2,          2,
                                   BIN_DIGITS_LIMIT, IsBinDigit, TXT_BIN_NUMBER_EXPECTED_BUT};

// The integer types by the largest literal that each takes.
struct LiteralRange {
    qint64 limit;
    Typ type;
};
constexpr std::array<LiteralRange, 6> LITERAL_RANGES = {{
    {0x7F, TYP_SINT},
    {0xFF, TYP_USINT},
    {0x7FFF, TYP_INT},
    {0xFFFF, TYP_UINT},
    {0x7FFFFFFF, TYP_DINT},
    {LITERAL_LIMIT, TYP_UDINT},
}};

Typ TypeOfInteger(qint64 value) {
    for (const LiteralRange& range : LITERAL_RANGES) {
        if (value <= range.limit) {
            return range.type;
        }
    }
    Abort(TXT_TOO_MUCH_CONSTANT);
}

void AppendToNumber(QString& text, QChar c) {
    text += c;
    if (text.size() > NUMBER_LENGTH_LIMIT) {
        Abort(TXT_TOO_MUCH_CONSTANT);
    }
}

void TakeDigits(QString& text, bool (*isDigit)(QChar)) {
    while (isDigit(Look)) {
        AppendToNumber(text, Look.toUpper());
        GetChar();
    }
}

// The notation whose prefix, the only "#" being at its end, begins the text, or null.
const Notation* NotationOf(QStringView text) {
    for (const Notation* notation : {&HEX_NOTATION, &OCT_NOTATION, &BIN_NOTATION}) {
        if (text.startsWith(notation->prefix)) {
            return notation;
        }
    }
    return nullptr;
}

// The value of digits in that base, if it fits 64 bits.
std::optional<qint64> ValueOf(QStringView digits, int base) {
    std::array<char, NUMBER_LENGTH_LIMIT> text;
    if (digits.size() > NUMBER_LENGTH_LIMIT) {
        return std::nullopt;
    }
    const char* const textEnd = std::transform(digits.begin(), digits.end(), text.data(),
                                               [](QChar c) { return c.toLatin1(); });
    qint64 value = 0;
    const auto [end, error] = std::from_chars(text.data(), textEnd, value, base);
    const bool isInRange = error == std::errc() && end == textEnd;
    return isInRange ? std::optional(value) : std::nullopt;
}

// The digits of a based number. The prefix stands in the text already; Look stands after it.
Typ GetBasedDigit(const Notation& notation, QString& text) {
    if (!notation.isDigit(Look)) {
        AbortAtLook(notation.digitExpectedBut);
    }
    TakeDigits(text, notation.isDigit);
    StoreTokenEnd(LookPlace());
    SkipWhite();
    const QStringView digits = QStringView(text).mid(notation.prefix.size());
    const std::optional<qint64> value = ValueOf(digits, notation.typingBase);
    if (!value || digits.size() > notation.digitsLimit) {
        Abort(TXT_TOO_MUCH_CONSTANT);
    }
    return TypeOfInteger(*value);
}

// Fraction = { Digit } [ "E" [ "+" | "-" ] { Digit } ]
// The integer part and "." stand in the text already. No digit after the "." reads as "0".
Typ GetFloatDigit(QString& text) {
    if (!IsDigit(Look)) {
        AppendToNumber(text, QLatin1Char('0'));
    }
    TakeDigits(text, IsDigit);
    if (Look.toUpper() == QLatin1Char('E')) {
        AppendToNumber(text, QLatin1Char('E'));
        GetChar();
        if (Look == QLatin1Char('+') || Look == QLatin1Char('-')) {
            AppendToNumber(text, Look);
            GetChar();
        }
        TakeDigits(text, IsDigit);
    }
    StoreTokenEnd(LookPlace());
    SkipWhite();
    return text.toDouble() <= REAL_LIMIT ? TYP_REAL : TYP_LREAL;
}

// BasedNumber = "16#" HexDigit { HexDigit } | "8#" OctDigit { OctDigit }
//     | "2#" BinDigit { BinDigit }
Typ GetHexDigit(QString& text) {
    return GetBasedDigit(HEX_NOTATION, text);
}

Typ GetOctDigit(QString& text) {
    return GetBasedDigit(OCT_NOTATION, text);
}

Typ GetBinDigit(QString& text) {
    return GetBasedDigit(BIN_NOTATION, text);
}

// Digits followed by "#": the digits must be a base's own prefix, "016#" is none.
Typ GetNotation(QString& text) {
    AppendToNumber(text, Look);
    GetChar();
    if (text == HEX_NOTATION.prefix) {
        return GetHexDigit(text);
    }
    if (text == OCT_NOTATION.prefix) {
        return GetOctDigit(text);
    }
    if (text == BIN_NOTATION.prefix) {
        return GetBinDigit(text);
    }
    Abort(TXT_BAD_SUFFIX_ON_NUMBER);
}

// Digits alone.
// QUIRK(digits-over-64-bits): digits that exceed 64 bits count as the value 0 and so as a SINT;
// only their number is limited. Programs in the field rely on the type.
Typ GetInteger(QStringView digits) {
    StoreTokenEnd(LookPlace());
    SkipWhite();
    return TypeOfInteger(ValueOf(digits, DECIMAL).value_or(0));
}

// The digits that begin a number, none before ".5".
QStringView TakeFirstDigits() {
    if (!IsDigit(Look)) {
        return {};
    }
    int count = 0;
    const QStringView digits =
        TakeRun([&count](QChar c) { return ++count < NUMBER_LENGTH_LIMIT && IsDigit(c); });
    if (IsDigit(Look)) {
        Abort(TXT_TOO_MUCH_CONSTANT);
    }
    return digits;
}

// Real = { Digit } "." Fraction
// Look is the ".".
Typ GetFraction(QString& text) {
    if (text.isEmpty()) {
        AppendToNumber(text, QLatin1Char('0'));
    }
    AppendToNumber(text, Look);
    GetChar();
    return GetFloatDigit(text);
}

// Number = Integer | Real
// Integer = Digit { Digit } | BasedNumber
// With integerOnly a "." ends the number.
void GetDigit(bool integerOnly) {
    StoreTokenBeg(LookPlace());
    CurrentToken.code = TOKEN_NUMBER;
    CurrentToken.text = TakeFirstDigits();
    const bool isBased = Look == QLatin1Char('#');
    const bool isFloat = Look == QLatin1Char('.') && !integerOnly;
    if (!isBased && !isFloat) {
        CurrentToken.type = GetInteger(CurrentToken.text);
        return;
    }
    QString number = CurrentToken.text.toString();
    CurrentToken.type = isBased ? GetNotation(number) : GetFraction(number);
    CurrentToken.text = KeepText(number);
}

// ---------------------------------------------------------------------------------------------
// The next token
// ---------------------------------------------------------------------------------------------

// Gives the name of a declared function or function block the code of its keyword.
void ClassifyIdentifier() {
    const FunctionItem* function = FunctionsList.find(*TokenSpelling);
    if (function != nullptr) {
        CurrentToken.code = function->isFunction ? TOKEN_FUNCTION : TOKEN_FUNCTION_BLOCK;
    }
}

void GetWord() {
    GetNameR(true);
    if (TokenChar == TOKEN_IDENTIFIER) {
        ClassifyIdentifier();
    } else if (TokenChar == TOKEN_TRUE || TokenChar == TOKEN_FALSE) {
        CurrentToken.type = TYP_BOOL;
    }
}

// Symbol = ".." | ? any other character ?
// Also the "(*" that begins a comment.
void GetSymbol(bool skipWhite) {
    StoreTokenBeg(LookPlace());
    const QChar first = Look;
    CurrentToken.text = TakeOne();
    if (first == QLatin1Char('.') && Look == first) {
        CurrentToken.text = TakeAfter(CurrentToken.text);
    }
    if (first == QLatin1Char('(') && Look == QLatin1Char('*')) {
        CurrentToken.code = TOKEN_COMMENT_BEGIN;
        return;
    }
    CurrentToken.code = PunctuationToken(CurrentToken.text);
    if (TokenChar != TOKEN_UNKNOWN) {
        StoreTokenEnd(LookPlace());
    }
    if (skipWhite) {
        SkipWhite();
    }
}

// Begins a token: echoes its line and clears what not every token has. Aborts at the end of the
// source.
void StartToken() {
    TypeInputCodeCurrentLine();
    if (IsEndOfInput(Look)) {
        Abort(TXT_UNEXPECTED_END_OF_INPUT_FILE);
    }
    CurrentToken.type = TYP_NONE;
    CurrentToken.spelling = nullptr;
}

// Token = Name | String | Number | Operator | Symbol
// Also the beginning of a comment, and within one its next piece.
void ScanToken(bool integerOnly, bool skipWhite) {
    StartToken();
    if (IsComment()) {
        GetEndComment();
    } else if (IsAlphaR(Look)) {
        GetWord();
    } else if (IsString(Look)) {
        GetString();
    } else if (IsDigit(Look) || (!integerOnly && Look == QLatin1Char('.'))) {
        GetDigit(integerOnly);
    } else if (IsOperation(Look)) {
        GetOperation();
    } else {
        GetSymbol(skipWhite);
    }
}

// Skips the comment that is current and all that follow it, up to the next token.
//
// QUIRK(comment-loses-type): a token after a comment is read with fractions allowed whatever the
// caller asked, and the type of a literal after a comment is lost: the comment's own type, none,
// stands for it. So a comment between an operator and its literal changes how the expression is
// typed. Existing programs were compiled so.
void ScanAfterComments() {
    do {
        SkipComment(TokenChar);
        ScanToken(false, true);
    } while (IsCommentBegin(TokenChar));
    CurrentToken.type = TYP_NONE;
}

// The next token that is no comment.
void ScanSolidToken(bool integerOnly, bool skipWhite) {
    ScanToken(integerOnly, skipWhite);
    if (IsCommentBegin(TokenChar)) {
        ScanAfterComments();
    }
    Tell(&Observer::token);
}

}  // namespace

bool IsComment() {
    return IsCommentNow;
}

int Lookup(QStringView text) {
    return SpellingOf(text).row;
}

Typ Scan(bool integerOnly, bool skipWhite) {
    ScanSolidToken(integerOnly, skipWhite);
    CurrentToken.quoted = CurrentToken.text;
    return CurrentToken.type;
}

Typ ScanDeclared() {
    ScanSolidToken(false, true);
    return CurrentToken.type;
}

void ScanName() {
    StartToken();
    GetNameR(false);
    CurrentToken.quoted = CurrentToken.text;
    Tell(&Observer::token);
}

// Type = LatinLetter { LatinLetter | Digit }
// It is upper-cased.
void GetType() {
    StoreTokenBeg(LookPlace());
    CheckNameBegin(IsAlpha);
    CurrentToken.spelling = &SpellingOf(TakeRun(IsAlphaOrDigit).toString().toUpper());
    CurrentToken.text = TokenSpelling->text;
    StoreTokenEnd(LookPlace());
    SkipWhite();
    Tell(&Observer::token);
}

void CountAsSemicolumn() {
    CurrentToken.code = TOKEN_SEMICOLON;
}

// ---------------------------------------------------------------------------------------------
// Matching the current token
// ---------------------------------------------------------------------------------------------

namespace {

// What a message calls a token: its text in quotes, or the name of its kind; empty for neither.
QString TokenDescription(Token code) {
    if (code == TOKEN_NUMBER) {
        return TXT_NUMBER;
    }
    if (code == TOKEN_IDENTIFIER) {
        return TXT_IDENTIFIER;
    }
    const int row = Lookup(code);
    return row == NO_ROW ? QString() : Quoted(TokensTable[row].text);
}

// The alternatives joined by "or"; empty if one of them is no row of the table.
QString Alternatives(std::initializer_list<Token> codes) {
    QString joined;
    for (const Token code : codes) {
        if (Lookup(code) == NO_ROW) {
            return QString();
        }
        if (!joined.isEmpty()) {
            joined += StringsToString(" ", TXT_OR, " ");
        }
        joined += TokenDescription(code);
    }
    return joined;
}

// Aborts with <alternatives> expected but "<current token>" found (<context>).
[[noreturn]] void AbortMismatch(std::initializer_list<Token> codes, QLatin1String context) {
    Tell(&Observer::expected, codes);
    const QString alternatives =
        codes.size() == 1 ? TokenDescription(*codes.begin()) : Alternatives(codes);
    const QString suffix = context.isEmpty() ? QString() : StringsToString(" (", context, ")");
    if (alternatives.isEmpty()) {
        Abort(TXT_UNRECOGNIZED_KEYWORD,
              StringsToString(TXT_UNRECOGNIZED_KEYWORD, " ", Quoted(TokenName), suffix));
    }
    Abort(TXT_EXPECTED_BUT, StringsToString(alternatives, " ", TXT_EXPECTED_BUT, " ",
                                            Quoted(TokenName), " ", TXT_FOUND, suffix));
}

}  // namespace

void Match(Token code, QLatin1String context) {
    if (TokenChar != code) {
        AbortMismatch({code}, context);
    }
}

void Match(Token first, Token second, QLatin1String context) {
    if (TokenChar != first && TokenChar != second) {
        AbortMismatch({first, second}, context);
    }
}

void Match(Token first, Token second, Token third, QLatin1String context) {
    if (TokenChar != first && TokenChar != second && TokenChar != third) {
        AbortMismatch({first, second, third}, context);
    }
}

namespace {

void MatchName(QLatin1String nameExpectedBut) {
    if (TokenChar != TOKEN_IDENTIFIER) {
        Abort(nameExpectedBut,
              StringsToString(nameExpectedBut, " ", Quoted(TokenName), " ", TXT_FOUND));
    }
}

}  // namespace

void MatchProgName() {
    MatchName(TXT_PROGRAMNAME_EXPECTED_BUT);
}

void MatchFuncName() {
    MatchName(TXT_FUNCTIONNAME_EXPECTED_BUT);
}

void MatchProcName() {
    MatchName(TXT_PROCEDURENAME_EXPECTED_BUT);
}

Typ MatchAndScan(Token code) {
    Match(code);
    return Scan();
}

Typ ScanAndMatch(Token code) {
    const Typ type = Scan();
    Match(code);
    return type;
}

qint64 StrToInt64(QStringView text) {
    if (text.isEmpty()) {  // no number token is
        AbortAtLook(TXT_STRING_EXPECTED_BUT);
    }
    for (const QChar c : text) {
        if (!IsDigit(c) && c != QLatin1Char('#')) {
            Abort(TXT_BAD_SUFFIX_ON_NUMBER);
        }
    }
    const Notation* notation = NotationOf(text);
    const std::optional<qint64> value =
        notation == nullptr ? ValueOf(text, DECIMAL)
                            : ValueOf(text.mid(notation->prefix.size()), notation->base);
    if (!value) {
        Abort(TXT_TOO_MUCH_CONSTANT);
    }
    return *value;
}
