// The variables of a unit and what it does with them.
#pragma once

#include "lints/flow_graph.h"
#include "lints/flow_steps.h"

#include <vector>

struct PlacedUse {
    FlowUse kind;
    int item;
    int use;
    int block;
};

struct FlowVariable {
    int name;
    std::vector<PlacedUse> steps;  // in the order of the code, at least one
};

// A unit and the variables that it uses, in the order in which it does.
struct UnitFlow {
    FlowGraph graph;
    std::vector<FlowVariable> variables;
};

std::vector<UnitFlow> UnitFlowsOf(const FlowCode& code);
