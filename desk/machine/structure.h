// What must hold of target code whatever way control takes: labels, units, operands and calls.
#pragma once

#include "machine/code.h"
#include "machine/finding.h"

// Appends what is wrong.
void CheckStructure(const Code& code, Findings& findings);
