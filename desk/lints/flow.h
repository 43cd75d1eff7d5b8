// Lints that follow the ways through a script.
#pragma once

#include "check/diagnostic.h"
#include "facts/facts.h"

#include <vector>

// Warnings in the order of the script, each with the identifier of its rule; none for a script
// that does not compile. The time is that of the facts, and for N variables and B branches of a
// unit at most N / 64 * B * (levels of loops) more.
std::vector<Diagnostic> FlowLints(const Source& source, const Facts& facts);
