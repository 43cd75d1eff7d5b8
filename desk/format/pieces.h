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

struct LayoutPiece {
    Span span;
    QStringView text;  // as it is to be written
    Token code = TOKEN_UNKNOWN;
    bool isComment = false;
    bool isLineComment = false;
    bool hasLineBefore = false;   // whether the script has a new line before it
    bool hasBlankBefore = false;  // whether it has an empty line there
    bool leadsToken = false;      // of a comment: the next token follows on its line

    // Of a token that begins a line.
    bool beginsLine = false;
    bool joinsLabel = false;  // the only statement of its CASE label, on the line of that
    bool closes = false;      // it ends what the lines above it are within
    bool outdents = false;    // ELSE, a label and the like: one level outside of those lines
    bool isConstant = false;  // of the declaration of a constant
    LineKind kind = LineKind::Structure;
    int level = 0;

    // Of any token.
    bool opens = false;  // nothing follows on its line, not even an empty line
    bool endsUnit = false;
    bool isBinary = false;        // an operator with two operands
    bool isUnary = false;         // a sign
    bool isInExpression = false;  // of a statement, where "(" after a name begins parameters
};

using LayoutPieces = std::vector<LayoutPiece>;

// The pieces up to an offset of the script. Semicolons that end nothing are left out. Texts are
// pieces of the source and the facts, which must outlive them.
LayoutPieces PiecesOf(const Source& source, const Facts& facts, int end);
