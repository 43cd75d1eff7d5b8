// Whether a renamed script means the same.
#pragma once

#include "facts/facts.h"

// What is different between the two scripts.
struct NameChange {
    int name;  // its index, in both
    QString from;
    QString to;
};

// Whether two scripts that compile have the same names but for that one, use them in the same
// way and have the same code but for that name.
bool IsSameButForName(const Facts& before, const Facts& after, const NameChange& change);
