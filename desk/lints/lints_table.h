// The table of lints: each recognises scripts that compile and hardly do what was meant.
//
// A lint that is not sure stays silent: a finding that is none is worse than one that is missing.
#pragma once

#include "lints/subject.h"

#include <QLatin1String>

#include <vector>

struct Lint {
    QLatin1String id;
    std::vector<Diagnostic> (*find)(const Subject& subject);
};
using Lints = std::vector<Lint>;

// By what they are about.
Lints LintsOfStatements();    // EXIT, CASE, labels
Lints LintsOfDeclarations();  // names, constants, initial values
Lints LintsOfRanges();        // numbers that do not fit
Lints LintsOfExpressions();   // grouping, comparisons
Lints LintsOfConditions();    // what never changes
