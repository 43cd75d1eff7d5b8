// What a script consists of for its layout: tokens and comments in their order, each with what
// its place in the structure of the script asks for.
#pragma once

#include "facts/facts.h"

#include <cstddef>

// What a line is about that a piece begins.
enum class LineKind : unsigned char {
    Structure,  // head of a unit, section, branch or loop, and what ends it
    Declaration,
    Statement,  // one that holds no others
    CaseLabel
};

// There are many, so they are small; what is empty (= {}) holds zeros alone.
struct LayoutPiece {
    Span span;
    QStringView text;  // as it is to be written
    Token code;        // of a comment TOKEN_UNKNOWN
    bool isComment : 1;
    bool isLineComment : 1;
    bool hasLineBefore : 1;   // whether the script has a new line before it
    bool hasBlankBefore : 1;  // whether it has an empty line there
    bool leadsToken : 1;      // of a comment: the next token follows on its line

    // Of a token that begins a line.
    bool beginsLine : 1;
    bool joinsLabel : 1;  // the only statement of its CASE label, on the line of that
    bool closes : 1;      // it ends what the lines above it are within
    bool outdents : 1;    // ELSE, a label and the like: one level outside of those lines
    bool isConstant : 1;  // of the declaration of a constant

    // Of any token.
    bool opens : 1;  // nothing follows on its line, not even an empty line
    bool endsUnit : 1;
    bool isBinary : 1;        // an operator with two operands
    bool isUnary : 1;         // a sign
    bool isInExpression : 1;  // of a statement, where "(" after a name begins parameters

    LineKind kind;  // these two of a token that begins a line
    short level;
};

using LayoutPieces = std::vector<LayoutPiece>;

// The pieces up to an offset of the script, of which the last is a token. Semicolons that end
// nothing are left out. Texts are pieces of the source and the facts, which must outlive them.
LayoutPieces PiecesOf(const Source& source, const Facts& facts, int end);
