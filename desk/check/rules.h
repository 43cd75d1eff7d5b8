// Reasons: what people who come from other dialects, or are in a hurry, have most likely meant.
#pragma once

#include "check/diagnostic.h"
#include "facts/facts.h"

#include <vector>

// The helps for the error that ended the compile, best first, usually one or none.
std::vector<Help> HelpsForError(const Source& source, const Facts& facts);

// The identifiers of all rules, in the order in which they are tried.
std::vector<QString> RuleIds();
