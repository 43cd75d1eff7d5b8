// What the code does with variables, step by step, and where in the script it is asked to.
#pragma once

#include "lints/flow_code.h"

#include <vector>

enum class FlowUse : unsigned char { Load, Store, Reference };

// An item that uses a variable.
struct FlowStep {
    FlowUse kind;
    int item;
    int name;  // of the variable
    int use;   // NONE for what no name in the statements asks for: parts of FOR, the result
};

// The steps of the statements of a script that compiles, and the loads of results, in the order
// of the code. None at all if code and uses do not fit together.
std::vector<FlowStep> FlowStepsOf(const FlowCode& code);
