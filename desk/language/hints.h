// What an editor shows between the words of a script.
#pragma once

#include "language/names.h"

struct Hint {
    int offset;
    QString text;
    bool isParameter;  // before an actual parameter; else after a literal
    int name;          // of the parameter, NONE for those of built-ins and for literals
};

// The names of parameters in calls, the types of literals that are not those of the signed
// integers or REAL, and the values of numbers with a base; those in a piece of the script, in
// its order.
std::vector<Hint> HintsIn(const Model& model, Span piece);
