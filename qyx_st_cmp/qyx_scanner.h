// The scanner: characters, comments, tokens, code labels and the small text utilities.
//
// One character of look-ahead (Look) decides which reader runs; one current token (TokenChar,
// TokenName) is all that the parsers see. Every reader that meets a character it cannot use ends
// the run through Abort.
#pragma once

#include "qyx_files.h"
#include "qyx_globals.h"

#include <cstring>
#include <type_traits>

// ---------------------------------------------------------------------------------------------
// Characters
// ---------------------------------------------------------------------------------------------

// Advances Look by one character and its place with it.
void GetChar();
// Skips blanks, tabs and line ends.
void SkipWhite();
// Skips semicolons, then white space.
void SkipSemicolumn();

bool IsEndOfInput(QChar c);
bool IsWhite(QChar c);
bool IsSemicolumn(QChar c);  // ";"
bool IsAlpha(QChar c);       // a Latin letter or "_"
bool IsAlphaR(QChar c);      // a Latin or Cyrillic letter or "_"
bool IsDigit(QChar c);
bool IsHexDigit(QChar c);
bool IsOctDigit(QChar c);
bool IsBinDigit(QChar c);
bool IsString(QChar c);         // the quote of strings
bool IsOperation(QChar c);      // a character of which operators are made
bool IsSimbol(QChar c);         // a sign that is no bracket, separator or apostrophe
bool IsAlphaOrDigit(QChar c);   // IsAlpha or IsDigit
bool IsAlphaOrDigitR(QChar c);  // IsAlphaR or IsDigit
bool IsCharacter(QChar c);      // IsAlphaOrDigit or IsSimbol

// ---------------------------------------------------------------------------------------------
// Tokens
// ---------------------------------------------------------------------------------------------

// The row of TokensTable with that text, whatever its case, or with that code; -1 if none.
int Lookup(QStringView text);
int Lookup(Token code);

// Reads the next token into TokenChar and its text into `text`; comments before it are skipped.
// Returns the type of a numeric literal, TYP_BOOL for TRUE and FALSE, else TYP_NONE. With
// integerOnly a "." ends a number. skipWhite: also skip the white space behind punctuation; all
// other tokens skip it anyway. Aborts at the end of the source.
Typ Scan(QStringView& text, bool integerOnly, bool skipWhite);

// Scan into TokenName with fractions allowed, as nearly every parser does.
Typ Scan();

// Reads a name, reserved words included, where a name must come.
void ScanName(QStringView& text, bool skipWhite);

// Reads a type name, upper-cased. TokenChar stays as it is.
void GetType(QString& text, bool skipWhite);

// Abort unless the current token is (one of) the given; they do not advance. A context that is
// not empty ends the message in parentheses.
void Match(Token code, QLatin1String context = QLatin1String());
void Match(Token first, Token second, QLatin1String context = QLatin1String());
void Match(Token first, Token second, Token third, QLatin1String context = QLatin1String());

// The value of the text of a number token. Aborts on anything but digits and "#", and on values
// beyond 64 bits.
qint64 StrToInt64(QStringView text);

// ---------------------------------------------------------------------------------------------
// Code labels
// ---------------------------------------------------------------------------------------------

// Draws the next label.
void GetNewLabel(Label& label);

// Draws the next label and tells the one after it without drawing it.
void GetNewLabelAndNextLabel(Label& label, Label& next);

// A label as a part of an item, "L" and its number.
std::size_t PartSize(Label part);
char* PutPart(char* to, Label part);

// Writes the item "<label>:".
template <typename Text>
void PostLabel(const Text& label) {
    WriteItem(label, ':');
}

// Posts the label of short-circuit jumps if an expression has drawn one.
void PostPendingLabel(Label label);

// ---------------------------------------------------------------------------------------------
// Texts
// ---------------------------------------------------------------------------------------------

constexpr int DECIMAL = 10;

// The value as text in that base; with a width it is filled with zeros from the left, never cut.
// Digits above 9 are lower-case letters. `out` receives what is returned.
QString IntToStr(int value, QString& out, int base);
QString Int64ToStr(qint64 value, QString& out, int base);
QString IntToStr(int value, QString& out, int width, int base);

// The text between double quotes, as messages name things.
QString Quoted(QStringView text);
QString Quoted(QLatin1String text);

// Compares two texts: negative, 0 or positive.
int StrCmp(QStringView a, QStringView b, bool ignoreCase);

inline int LengthOf(QChar) {
    return 1;
}
inline int LengthOf(const char* part) {
    return static_cast<int>(std::strlen(part));
}
template <typename Text>
int LengthOf(const Text& part) {
    return static_cast<int>(part.size());
}

// Joins the parts (strings, string literals, characters) in order with nothing between them.
template <typename... Parts>
QString StringsToString(const Parts&... parts) {
    QString joined;
    joined.reserve((LengthOf(parts) + ...));
    const auto append = [&joined](const auto& part) {
        if constexpr (std::is_convertible_v<decltype(part), const char*>) {
            joined += QLatin1String(part);
        } else if constexpr (std::is_same_v<decltype(part), const QStringView&>) {
            joined.append(part.data(), static_cast<int>(part.size()));
        } else {
            joined += part;
        }
    };
    (append(parts), ...);
    return joined;
}
