// What the words of a script are, for editors that colour them.
#pragma once

#include "language/model.h"

// In the order of the protocol's legend, see protocols/writing_methods.
enum class Meaning : unsigned char {
    Comment,
    Function,  // and function blocks
    Label,
    Number,
    Operator,
    Parameter,
    Program,
    String,
    Type,
    Variable
};

struct Colour {
    Span span;  // within one line
    Meaning meaning;
    bool isDeclaration = false;
    bool isReadOnly = false;
    bool isWritten = false;
    bool isBuiltIn = false;
};

// In the order of the script, none overlapping another. Reserved words have none but those of
// operators.
std::vector<Colour> ColoursOf(const Model& model);
