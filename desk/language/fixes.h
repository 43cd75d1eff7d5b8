// What mends a script, by its diagnostics.
#pragma once

#include "language/model.h"

struct Fix {
    QString title;
    const Diagnostic* diagnostic;  // that it removes, of the model
    std::vector<Edit> edits;       // of the script, none within another
    bool isCertain = false;        // whether it mends for certain
};

// What the helps say, for each diagnostic that has some of its text in the range, where nobody
// has to choose.
std::vector<Fix> MendsIn(const Model& model, Span range);

// Comments that allow what lints have found there, each proved by a compile: the code stays the
// same and the finding goes.
std::vector<Fix> AllowancesIn(const Model& model, Span range);

// All that the helps say of the script for certain, as far as it can be done at once.
std::vector<Edit> AllMends(const Model& model);
