// Where in a script an offset lies.
#pragma once

#include "language/model.h"

enum class PlaceKind : unsigned char { Code, Comment, String };

// The end of a line comment is in the comment.
PlaceKind PlaceKindAt(const Model& model, int offset);

// The name, reserved word or number that the offset lies in, begins or ends; empty at the offset
// if none does.
Span WordAt(const Source& source, int offset);
