// The way past an error: the smallest piece of the script that holds it, and a neutral text for
// it.
//
// The compiler stops at its first error. To find the next, the piece that holds the error is
// taken out and the rest is compiled again. A piece is a declaration, a statement, the condition
// or another part of a statement's head, the head of a unit; what is missing is put in. A repair
// is only proposed here: whether it was one, the next compile tells.
#pragma once

#include "check/edits.h"
#include "facts/facts.h"

// The smallest repair for the error that ended the compile.
Repair FindRepair(const Source& source, const Facts& facts);

// A repair that takes out more: the innermost statement that holds more than the piece, or all
// statements of the unit.
Repair FindLargerRepair(const Source& source, const Facts& facts, Span piece);
