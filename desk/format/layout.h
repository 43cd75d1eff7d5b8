// The layout of a script.
#pragma once

#include "facts/facts.h"

constexpr int DEFAULT_INDENT = 4;

// The script in its layout, with so many blanks for each level. What the compiler does not read
// stays as it is: what stands after the program, and with an error the statement that has it and
// all after that.
QString Formatted(const Source& source, const Facts& facts, int indent = DEFAULT_INDENT);

// The offset up to which a script is formatted.
int EndOfFormatted(const Source& source, const Facts& facts);
