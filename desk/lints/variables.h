// The variables of a unit and what it does with them.
#pragma once

#include "lints/graph.h"
#include "lints/spread.h"
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

// The variables that a unit uses, in the order in which it does; the steps are those of the
// script.
std::vector<Variable> VariablesOf(const Graph& graph, const std::vector<Step>& steps);

// Variables that are looked at together, each for a bit of a mask.
using Group = std::vector<const Variable*>;
std::vector<Group> GroupsOf(const std::vector<const Variable*>& variables);

inline Mask BitOf(std::size_t index) {
    return Mask(1) << index;
}
