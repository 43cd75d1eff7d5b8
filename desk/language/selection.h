// What is selected when a selection grows.
#pragma once

#include "language/model.h"

// The pieces of the script that hold an offset, from the innermost on, each within the next: the
// token, the operations it is in, calls and parentheses, the statements, the declaration and the
// section, the unit, the whole script.
std::vector<Span> SelectionsAt(const Model& model, int offset);
