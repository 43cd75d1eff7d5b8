#include "qyx_scanner.h"

#include "qyx_files.h"
#include "qyx_il.h"
#include "qyx_lists.h"
#include "qyx_messages.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <initializer_list>
#include <limits>
#include <optional>

QChar Look;
int g_InputCodeFileCurrentLineCount = 0;
int g_InputCodeFileCurrentPosCount = -1;
TokenPos TokenPosBeg = {-1, -1};
TokenPos TokenPosEnd = {-1, -1};
TokenPlace IdentPlace = {{-1, -1}, {-1, -1}};
Token TokenChar = TOKEN_UNKNOWN;
QStringView TokenName;
const Spelling* TokenSpelling = nullptr;
int LabelCount = 1;

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

constexpr std::size_t ASCII_COUNT = 128;
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

// Where a line ends: no comment of one line and no string goes on behind it.
bool IsLineEnd(QChar c) {
    return c == QLatin1Char('\n') || IsEndOfInput(c);
}

TokenPos LookPlace() {
    return {g_InputCodeFileCurrentLineCount, g_InputCodeFileCurrentPosCount};
}

void StoreTokenBeg(TokenPos place) {
    TokenPosBeg = place;
    TokenPosEnd = place;
}

void StoreTokenEnd(TokenPos place) {
    TokenPosEnd = place;
}

// Takes Look and the characters behind it of which isIn holds, no line end among them, and
// advances behind them. Look itself is taken in any case.
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

// Takes Look, which stands directly behind the text, and returns both.
QStringView TakeBehind(QStringView text) {
    return {text.begin(), TakeOne().end()};
}

// Aborts with `expectedBut` '<Look>' found.
[[noreturn]] void AbortAtLook(QLatin1String expectedBut) {
    Abort(StringsToString(expectedBut, " '", Look, "' ", TXT_FOUND), false);
}

// ---------------------------------------------------------------------------------------------
// Comments
// ---------------------------------------------------------------------------------------------

// LineComment = "//" { ? any character but a line feed ? }
// Look stands behind the "//", white space not skipped.
void SkipLineComment() {
    StoreTokenBeg(LookPlace());
    if (!IsLineEnd(Look)) {
        TakeRun([](QChar c) { return !IsLineEnd(c); });
    }
    SkipWhite();
}

// A piece of a multi-line comment: characters that are no operators, or one or two that could
// make up "*)". Every "*" begins the pair anew, so that "**)" ends a comment as "*)" does.
QStringView GetEndComment() {
    if (!IsOperation(Look)) {
        TakeRun([](QChar c) { return !IsOperation(c) && !IsLineEnd(c); });
        return {};
    }
    QStringView pair = TakeOne();
    while (pair.size() < 2 && (IsOperation(Look) || Look == QLatin1Char(')'))) {
        const bool beginsAnew = Look == QLatin1Char('*');
        pair = beginsAnew ? TakeOne() : TakeBehind(pair);
    }
    StoreTokenEnd({g_InputCodeFileCurrentLineCount, g_InputCodeFileCurrentPosCount - 1});
    SkipWhite();
    return pair;
}

// Begins a token: echoes its line. Aborts at the end of the source.
void StartToken() {
    TypeInputCodeCurrentLine();
    if (IsEndOfInput(Look)) {
        Abort(TXT_UNEXPECTED_END_OF_INPUT_FILE, false);
    }
}

void ScanCommentPiece(QStringView& text) {
    StartToken();
    text = GetEndComment();
    TokenChar = text.isEmpty() ? TOKEN_UNKNOWN : PunctuationToken(text);
}

// BlockComment = "(*" { ? any character ? } "*)"
// Look stands on the "*" of "(*". Comments do not nest: "(*" within is comment text.
//
// QUIRK(quoted-comment-piece): the first piece goes to TokenName even where the token is being
// read into another text, so a message that quotes TokenName after such a comment quotes that
// piece. Messages are fixed.
void SkipMultiLinesComment(QStringView& text) {
    GetChar();
    SkipWhite();
    ScanCommentPiece(TokenName);
    while (TokenChar != TOKEN_COMMENT_END) {
        SkipWhite();
        ScanCommentPiece(text);
    }
    SkipWhite();
}

// Comment = LineComment | BlockComment
void SkipComment(Token code, QStringView& text) {
    if (code == TOKEN_LINE_COMMENT) {
        SkipLineComment();
    } else {
        SkipMultiLinesComment(text);
    }
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
        Abort(TXT_IDENTIFIER_EXPECTED_BUT_NUMBER_FOUND, false);
    }
    AbortAtLook(TXT_IDENTIFIER_EXPECTED_BUT);
}

// Name = Letter { Letter | Digit }
// It is kept as written.
QStringView GetNameR(bool skipWhite) {
    StoreTokenBeg(LookPlace());
    CheckNameBegin(IsAlphaR);
    const QStringView name = TakeRun(IsAlphaOrDigitR);
    StoreTokenEnd(LookPlace());
    TokenSpelling = &SpellingOf(name);
    const int row = TokenSpelling->row;
    TokenChar = row == NO_ROW ? TOKEN_IDENTIFIER : TokensTable[row].code;
    if (skipWhite) {
        SkipWhite();
    }
    return name;
}

// String = "'" { ? any character but an apostrophe and a line feed ? } "'"
// It is upper-cased.
QStringView GetString() {
    QString text;
    StoreTokenBeg(LookPlace());
    GetChar();
    while (!IsString(Look)) {
        if (IsLineEnd(Look)) {
            Abort(TXT_UNTERMINATED_STRING, false);
        }
        text += Look.toUpper();
        GetChar();
    }
    StoreTokenEnd(LookPlace());
    GetChar();
    SkipWhite();
    return KeepText(text);
}

// Operator = OperatorSign [ OperatorSign ]
//
// QUIRK(sign-pairs): two operation characters always make one token, so "a+-b" holds the
// unknown token "+-". A blank between them is the language's way to write two operators. The
// white space behind "//" is comment text and stays.
QStringView GetOperation() {
    StoreTokenBeg(LookPlace());
    QStringView text = TakeOne();
    if (IsOperation(Look)) {
        text = TakeBehind(text);
    }
    StoreTokenEnd(LookPlace());
    TokenChar = PunctuationToken(text);
    if (TokenChar != TOKEN_LINE_COMMENT) {
        SkipWhite();
    }
    return text;
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
constexpr std::array<Notation, 3> NOTATIONS = {{
    {"16#"_L1, 16, 16, NUMBER_LENGTH_LIMIT, IsHexDigit, TXT_HEX_NUMBER_EXPECTED_BUT},
    {"8#"_L1, 8, 16, NUMBER_LENGTH_LIMIT, IsOctDigit, TXT_OCT_NUMBER_EXPECTED_BUT},
    {"2#"_L1, 2, 2, BIN_DIGITS_LIMIT, IsBinDigit, TXT_BIN_NUMBER_EXPECTED_BUT},
}};

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
    Abort(TXT_TOO_MUCH_CONSTANT, false);
}

void AppendToNumber(QString& text, QChar c) {
    text += c;
    if (text.size() > NUMBER_LENGTH_LIMIT) {
        Abort(TXT_TOO_MUCH_CONSTANT, false);
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
    for (const Notation& notation : NOTATIONS) {
        if (text.startsWith(notation.prefix)) {
            return &notation;
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

// BasedNumber = "16#" HexDigit { HexDigit } | "8#" OctDigit { OctDigit }
//     | "2#" BinDigit { BinDigit }
// The prefix stands in the text already; Look stands behind it.
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
        Abort(TXT_TOO_MUCH_CONSTANT, false);
    }
    return TypeOfInteger(*value);
}

// Fraction = { Digit } [ "E" [ "+" | "-" ] { Digit } ]
// The integer part and "." stand in the text already. No digit behind the "." reads as "0".
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

// Digits followed by "#": the digits must be a base's own prefix, "016#" is none.
Typ GetNotation(QString& text) {
    AppendToNumber(text, Look);
    GetChar();
    const Notation* notation = NotationOf(text);
    if (notation == nullptr) {
        Abort(TXT_BAD_SUFFIX_ON_NUMBER, false);
    }
    return GetBasedDigit(*notation, text);
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
        Abort(TXT_TOO_MUCH_CONSTANT, false);
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
// With integerOnly a "." ends the number. Returns the type of the literal.
Typ GetDigit(QStringView& text, bool integerOnly) {
    StoreTokenBeg(LookPlace());
    text = TakeFirstDigits();
    const bool isBased = Look == QLatin1Char('#');
    const bool isFloat = Look == QLatin1Char('.') && !integerOnly;
    if (!isBased && !isFloat) {
        return GetInteger(text);
    }
    QString number = text.toString();
    const Typ type = isBased ? GetNotation(number) : GetFraction(number);
    text = KeepText(number);
    return type;
}

// ---------------------------------------------------------------------------------------------
// The next token
// ---------------------------------------------------------------------------------------------

// Gives the name of a declared function or function block the code of its keyword.
void ClassifyIdentifier() {
    IdentPlace = {TokenPosBeg, TokenPosEnd};
    const FunctionItem* function = FunctionsList.find(*TokenSpelling);
    if (function != nullptr) {
        TokenChar = function->isFunction ? TOKEN_FUNCTION : TOKEN_FUNCTION_BLOCK;
    }
}

Typ ScanWord(QStringView& text) {
    text = GetNameR(true);
    if (TokenChar == TOKEN_IDENTIFIER) {
        ClassifyIdentifier();
    }
    return TokenChar == TOKEN_TRUE || TokenChar == TOKEN_FALSE ? TYP_BOOL : TYP_NONE;
}

// Symbol = ".." | ? any other character ?
// Also the "(*" that begins a comment.
void ScanSymbol(QStringView& text, bool skipWhite) {
    StoreTokenBeg(LookPlace());
    const QChar first = Look;
    text = TakeOne();
    if (first == QLatin1Char('.') && Look == first) {
        text = TakeBehind(text);
    }
    if (first == QLatin1Char('(') && Look == QLatin1Char('*')) {
        TokenChar = TOKEN_COMMENT_BEGIN;
        return;
    }
    TokenChar = PunctuationToken(text);
    if (TokenChar != TOKEN_UNKNOWN) {
        StoreTokenEnd(LookPlace());
    }
    if (skipWhite) {
        SkipWhite();
    }
}

// Token = Name | String | Number | Operator | Symbol
// Also the beginning of a comment.
Typ ScanToken(QStringView& text, bool integerOnly, bool skipWhite) {
    StartToken();
    text = QStringView();
    if (IsAlphaR(Look)) {
        return ScanWord(text);
    }
    if (IsString(Look)) {
        text = GetString();
        TokenChar = TOKEN_STRING;
        return TYP_NONE;
    }
    if (IsDigit(Look) || (!integerOnly && Look == QLatin1Char('.'))) {
        const Typ type = GetDigit(text, integerOnly);
        TokenChar = TOKEN_NUMBER;
        return type;
    }
    if (IsOperation(Look)) {
        text = GetOperation();
    } else {
        ScanSymbol(text, skipWhite);
    }
    return TYP_NONE;
}

}  // namespace

// QUIRK(comment-loses-type): a token behind a comment is read with fractions allowed whatever
// the caller asked, and the type of a literal behind a comment is lost: the comment's own type,
// none, is returned. So a comment between an operator and its literal changes how the
// expression is typed. Existing programs were compiled so.
Typ Scan(QStringView& text, bool integerOnly, bool skipWhite) {
    const Typ type = ScanToken(text, integerOnly, skipWhite);
    if (!IsCommentBegin(TokenChar)) {
        return type;
    }
    do {
        SkipComment(TokenChar, text);
        ScanToken(text, false, true);
    } while (IsCommentBegin(TokenChar));
    return TYP_NONE;
}

Typ Scan() {
    return Scan(TokenName, false, true);
}

void ScanName(QStringView& text, bool skipWhite) {
    StartToken();
    text = GetNameR(skipWhite);
    IdentPlace = {TokenPosBeg, TokenPosEnd};
}

// Type = LatinLetter { LatinLetter | Digit }
// It is upper-cased.
void GetType(QString& text, bool skipWhite) {
    StoreTokenBeg(LookPlace());
    CheckNameBegin(IsAlpha);
    text = TakeRun(IsAlphaOrDigit).toString().toUpper();
    StoreTokenEnd(LookPlace());
    if (skipWhite) {
        SkipWhite();
    }
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

// Aborts with <alternatives> expected but "<current token>" found (<context>).
[[noreturn]] void AbortMismatch(const QString& alternatives, QLatin1String context) {
    const QString suffix = context.isEmpty() ? QString() : StringsToString(" (", context, ")");
    if (alternatives.isEmpty()) {
        Abort(StringsToString(TXT_UNRECOGNIZED_KEYWORD, " ", Quoted(TokenName), suffix), false);
    }
    Abort(StringsToString(alternatives, " ", TXT_EXPECTED_BUT, " ", Quoted(TokenName), " ",
                          TXT_FOUND, suffix),
          false);
}

// The alternatives joined by "or".
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

}  // namespace

void Match(Token code, QLatin1String context) {
    if (TokenChar != code) {
        AbortMismatch(TokenDescription(code), context);
    }
}

void Match(Token first, Token second, QLatin1String context) {
    if (TokenChar != first && TokenChar != second) {
        AbortMismatch(Alternatives({first, second}), context);
    }
}

void Match(Token first, Token second, Token third, QLatin1String context) {
    if (TokenChar != first && TokenChar != second && TokenChar != third) {
        AbortMismatch(Alternatives({first, second, third}), context);
    }
}

qint64 StrToInt64(QStringView text) {
    if (text.isEmpty()) {  // no number token is
        AbortAtLook(TXT_STRING_EXPECTED_BUT);
    }
    for (const QChar c : text) {
        if (!IsDigit(c) && c != QLatin1Char('#')) {
            Abort(TXT_BAD_SUFFIX_ON_NUMBER, false);
        }
    }
    const Notation* notation = NotationOf(text);
    const std::optional<qint64> value =
        notation == nullptr ? ValueOf(text, DECIMAL)
                            : ValueOf(text.mid(notation->prefix.size()), notation->base);
    if (!value) {
        Abort(TXT_TOO_MUCH_CONSTANT, false);
    }
    return *value;
}

// ---------------------------------------------------------------------------------------------
// Code labels
// ---------------------------------------------------------------------------------------------

void GetNewLabel(Label& label) {
    label = {LabelCount};
    ++LabelCount;
}

// QUIRK(shared-label): the second label is told, not reserved: whoever draws next gets it
// again. The numbers of all later labels follow from that, and they are part of the target
// code.
void GetNewLabelAndNextLabel(Label& label, Label& next) {
    GetNewLabel(label);
    next = {LabelCount};
}

std::size_t PartSize(Label) {
    return PartSize(sLABEL) + std::numeric_limits<int>::digits10 + 1;
}

char* PutPart(char* to, Label part) {
    to = PutPart(to, sLABEL);
    return std::to_chars(to, to + std::numeric_limits<int>::digits10 + 1, part.number).ptr;
}

void PostPendingLabel(Label label) {
    if (!label.isEmpty()) {
        PostLabel(label);
    }
}

// ---------------------------------------------------------------------------------------------
// Texts
// ---------------------------------------------------------------------------------------------

QString IntToStr(int value, QString& out, int base) {
    return Int64ToStr(value, out, base);
}

QString Int64ToStr(qint64 value, QString& out, int base) {
    out = QString::number(value, base);
    return out;
}

QString IntToStr(int value, QString& out, int width, int base) {
    out = QStringLiteral("%1").arg(value, width, base, QLatin1Char('0'));
    return out;
}

QString Quoted(QStringView text) {
    return StringsToString("\"", text, "\"");
}

QString Quoted(QLatin1String text) {
    return StringsToString("\"", text, "\"");
}

int StrCmp(QStringView a, QStringView b, bool ignoreCase) {
    return a.compare(b, ignoreCase ? Qt::CaseInsensitive : Qt::CaseSensitive);
}
