// Target code, by the pieces of the script that it is written for. A broken script has none.
#pragma once

#include "language/names.h"

struct CodeItem {
    QString text;
    Span piece;  // the statement or declaration, else the rest of the line of what it belongs to
};

// The items that are written for places in a piece of the script, in the order of the code.
std::vector<CodeItem> CodeFor(const Model& model, Span piece);

// The piece whose code is that of a token: a statement for its first token and its ":=", a
// declaration for its ":=", else what begins with the token.
Span PieceOfToken(const Model& model, int token);

// The code of a token as a block of Markdown, cut where it is long; empty if it has none.
QString CodeText(const Model& model, int token);
