// The scanner: characters, comments, tokens, and the checks of the current token.
//
// One character of look-ahead (Look) decides which reader runs; each reader takes its characters
// and fills the record of the current token (CurrentToken), which is all that the parsers see.
// Every reader that meets a character it cannot use ends the run through Abort.
#pragma once

#include "qyx_globals.h"
#include "qyx_text.h"

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

// The row of TokensTable with that text, whatever its case; NO_ROW if none.
int Lookup(QStringView text);

// Whether a comment of several lines is being skipped.
bool IsComment();

// Reads the next token; comments before it are skipped. Returns the type of a numeric literal,
// TYP_BOOL for TRUE and FALSE, else TYP_NONE. With integerOnly a "." ends a number. skipWhite:
// also skip the white space after punctuation; all other tokens skip it anyway. Aborts at the
// end of the source.
Typ Scan(bool integerOnly = false, bool skipWhite = true);

// Scan where a declaration may begin: messages go on quoting the token before.
Typ ScanDeclared();

// Reads a name, reserved words included, where a name must come. The white space after it stays.
void ScanName();

// Reads a type name. TokenChar stays as it is.
void GetType();

// Makes the current token count as the ";" that ends a statement.
void CountAsSemicolumn();

// Abort unless the current token is (one of) the given; they do not advance. A context that is
// not empty ends the message in parentheses.
void Match(Token code, QLatin1String context = QLatin1String());
void Match(Token first, Token second, QLatin1String context = QLatin1String());
void Match(Token first, Token second, Token third, QLatin1String context = QLatin1String());

// Abort unless the current token is an identifier: a program's, a function's or a function
// block's name must stand here.
void MatchProgName();
void MatchFuncName();
void MatchProcName();

// Match, then Scan; and Scan, then Match. They return what Scan does.
Typ MatchAndScan(Token code);
Typ ScanAndMatch(Token code);

// The value of the text of a number token. Aborts on anything but digits and "#", and on values
// beyond 64 bits.
qint64 StrToInt64(QStringView text);
