// Questions about the tokens of a script, by their index.
#pragma once

#include "facts/facts.h"

#include <initializer_list>

// The tokens that the compiler read, and after an error those after it. An index may lie beyond
// either end: there is TOKEN_UNKNOWN, with an empty text.
class Tokens {
public:
    Tokens(const Source& source, const Facts& facts) : source_(source), tokens_(facts.tokens) {}

    int count() const { return static_cast<int>(tokens_.size()); }
    bool isThere(int index) const { return index >= 0 && index < count(); }

    // The code; TOKEN_IDENTIFIER for the name of a definition, which the compiler gives the code
    // of a keyword.
    Token code(int index) const;
    bool is(int index, Token wanted) const { return code(index) == wanted; }
    bool isOneOf(int index, std::initializer_list<Token> wanted) const;
    Span span(int index) const;
    QStringView text(int index) const { return source_.text(span(index)); }
    bool isText(int index, QStringView wanted) const;  // whatever the case
    bool isFirstOnLine(int index) const;

    // The first token that begins at the offset or after it.
    int at(int offset) const;
    // The type that the token names, TYP_NONE if it names none.
    Typ typeNamed(int index) const;

private:
    const Source& source_;
    const std::vector<TokenFact>& tokens_;
};

// What the tokens are to the structure of a script.
bool IsUnitBegin(Token code);      // FUNCTION, FUNCTION_BLOCK, PROGRAM
bool IsUnitEnd(Token code);        // their END_ words
bool IsSectionBegin(Token code);   // VAR and its kin
bool IsCompoundBegin(Token code);  // IF, FOR, WHILE, REPEAT, CASE
bool IsCompoundEnd(Token code);    // their END_ words
bool IsBranch(Token code);         // ELSIF, ELSE, UNTIL
bool IsJump(Token code);           // EXIT, BREAK, CONTINUE, GOTO
// Whether no statement goes on after the token: a part of the structure, or another statement.
bool IsBoundary(Token code);

// The END_ word of a unit or a compound statement.
Token EndOf(Token begin);

// The two types in the name of a conversion, such as INT_TO_REAL, or those that stand for them
// here; TYP_NONE for what is none.
struct Conversion {
    Typ from;
    Typ to;
};
Conversion ConversionOf(QStringView name);

// Whether the name is what other languages write before the branch for all other values.
bool IsWordForElse(QStringView name);
