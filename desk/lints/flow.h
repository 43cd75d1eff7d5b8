// Lints that follow the ways through a script.
#pragma once

#include "check/diagnostic.h"
#include "facts/facts.h"

#include <vector>

// Warnings in the order of the script, each with the identifier of its rule; none for a script
// that does not compile. The time is in proportion to the size of the script: whatever the number
// of variables, no unit is gone through more than 300 times by a rule.
std::vector<Diagnostic> FlowLints(const Source& source, const Facts& facts);
