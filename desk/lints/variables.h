// The variables of a unit and what it does with them.
#pragma once

#include "lints/graph.h"
#include "lints/steps.h"

#include <vector>

struct PlacedStep {
    StepKind kind;
    int item;
    int use;
    int block;
};

struct Variable {
    int name;
    std::vector<PlacedStep> steps;  // in the order of the code, at least one
};

// A unit and the variables that it uses, in the order in which it does.
struct UnitFlow {
    Graph graph;
    std::vector<Variable> variables;
};

std::vector<UnitFlow> UnitFlowsOf(const Code& code);
