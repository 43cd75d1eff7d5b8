// What is to be executed as users name it: a script, a code file or a listing.
#pragma once

#include "facts/compile.h"
#include "facts/source.h"
#include "machine/code.h"

#include <optional>
#include <vector>

// A variable by the indices of its unit and its declaration.
struct UnitVariable {
    int unit;
    int variable;
};

struct Loaded {
    Source source;               // the script or the code as a text
    std::optional<Facts> facts;  // of a script
    Code code;                   // up to the fault, if there is one; none of a wrong script
    std::optional<CodeFault> fault;
    QString failure;  // why there is none of all this: a sentence without its full stop

    bool isScript() const { return facts.has_value(); }
    // Whether there is something to execute.
    bool isReady() const {
        return failure.isEmpty() && !fault && (!facts || facts->isCompiled());
    }
};

// Reads the file, or standard input for "-". A text is taken for target code if it begins as such
// code does, unless its file is called ".st".
Loaded Load(const QString& path);

// Whether a text begins with a label, as all target code does; listings may have lines before it.
bool IsTargetCode(const QString& text);

// Variables that the script gives no initial value, but for inputs, parameters, results and what
// is the engine's.
std::vector<UnitVariable> VariablesWithoutValue(const Facts& facts, const Code& code);

// The piece of the script that an item, by its number, was written for.
Span SpanOfItem(const Source& source, const Facts& facts, int item);
