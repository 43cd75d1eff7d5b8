// A line of a script with a mark under a piece of it.
#pragma once

#include "facts/source.h"

#include <QString>

// Text and mark fit under each other in a terminal, and both are of limited length: what is far
// from the mark is left out of a long line, with an ellipsis in its place.
struct Excerpt {
    int line;
    QString text;
    QString mark;  // at least one "^"
};

// The line in which the piece begins. A piece of several lines is marked to the end of that one.
Excerpt ExcerptOf(const Source& source, Span piece);
