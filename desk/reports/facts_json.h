// Facts as JSON, an interface for other tools: docs/manual/facts.md describes it.
#pragma once

#include "facts/facts.h"

// Writes the facts about a source to standard output.
void PrintFacts(const Source& source, const Facts& facts);
