// How operators take their operands.
#pragma once

#include "language/names.h"

// The operation whose operator a token is, null if it is none or not what was compiled.
const OperationFact* OperationAt(const Model& model, int token);

// The operation in one line, each operation in it in parentheses, and so are signs before a
// power. What is long is cut.
QString GroupedText(const Model& model, const OperationFact& operation);

// The same with the types of the operands, in Markdown.
QString OperationText(const Model& model, const OperationFact& operation);
