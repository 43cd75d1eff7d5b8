// What an editor shows of the place under the pointer.
#pragma once

#include "language/names.h"

struct Hover {
    QString markdown;
    Span span;  // what it is about
};

// Of a name its declaration and what it is; of a literal its type and value; of an operator how
// its operands are grouped; of a type its values; of a keyword and of ":=" the target code.
std::optional<Hover> HoverAt(const Model& model, int offset);
