// The layout of a script in an editor. What is changed is proved by a compile: it leaves the code
// as it is. A script with an error is formatted before the statement that has it.
#pragma once

#include "check/edits.h"

#include <vector>

struct Formatting {
    std::vector<Edit> edits;  // of whole lines
    QString reason;           // a sentence without its full stop, where there can be no edits
};

Formatting FormattingOf(const Source& source, int indent);

// The same of the lines that have some of a range; without edits where those cannot be formatted
// alone.
std::vector<Edit> FormattingIn(const Source& source, Span range, int indent);

// The lines of the statement or declaration that ends with the `;` before the offset.
std::vector<Edit> FormattingOfEnded(const Source& source, int offset, int indent);
