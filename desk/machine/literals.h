// Numbers and strings as target code writes them.
#pragma once

#include "machine/code.h"

#include <optional>
#include <string_view>

// Reads a word: "250", "-250", "16#FF", "8#17", "2#101", "2.5", "2.5E-3", "'TEXT'". Nothing for a
// word that is none of these. A whole number that no integer type holds is an LREAL.
std::optional<Literal> ReadLiteral(std::string_view word);

// The smallest type that holds a whole number; TYP_LREAL if no integer type does.
Typ SmallestTypeOf(qint64 value);
