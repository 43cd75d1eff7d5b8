// Numbers and strings as target code writes them.
#pragma once

#include "qyx_tables.h"

#include <QString>

#include <optional>
#include <string_view>

// A number or a string in the code.
struct Literal {
    Typ type = TYP_NONE;  // the smallest that holds it, TYP_STRING for a string
    qint64 whole = 0;     // the value of one of the integer types
    double real = 0.0;    // the value of one of the real types
    QString text;         // as it stands in the code, a string without its quotes
};

// Reads a word: "250", "-250", "16#FF", "8#17", "2#101", "2.5", "2.5E-3", "'TEXT'". Nothing for a
// word that is none of these. A whole number that no integer type holds is an LREAL.
std::optional<Literal> ReadLiteral(std::string_view word);

// The smallest type that holds a whole number; TYP_LREAL if no integer type does.
Typ SmallestTypeOf(qint64 value);
