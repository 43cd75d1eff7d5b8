// The comments that a script has for what it declares.
#pragma once

#include "language/names.h"

// What the comment says that follows a piece on its line, and the comments on the lines directly
// above it, as Markdown; empty if there is none.
QString RemarksOn(const Model& model, Span piece);
