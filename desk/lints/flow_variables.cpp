#include "lints/flow_variables.h"

#include <algorithm>

namespace {

// Where the variables are in the list of their unit, by name.
using Indexes = std::vector<int>;

FlowVariable& VariableOf(UnitFlow& unit, Indexes& indexes, int name) {
    int& index = indexes[static_cast<std::size_t>(name)];
    if (index == NONE) {
        index = static_cast<int>(unit.variables.size());
        unit.variables.push_back({name, {}});
    }
    return unit.variables[static_cast<std::size_t>(index)];
}

// The steps of a unit follow each other, and so do its blocks.
void AddSteps(UnitFlow& unit, Indexes& indexes, const std::vector<FlowStep>& steps) {
    auto step = std::lower_bound(steps.begin(), steps.end(), unit.graph.begin(),
                                 [](const FlowStep& one, int item) { return one.item < item; });
    int block = 0;
    for (; step != steps.end() && step->item < unit.graph.end(); ++step) {
        while (step->item >= unit.graph.blocks[static_cast<std::size_t>(block)].end) {
            ++block;
        }
        VariableOf(unit, indexes, step->name)
            .steps.push_back({step->kind, step->item, step->use, block});
    }
}

}  // namespace

std::vector<UnitFlow> UnitFlowsOf(const FlowCode& code) {
    const std::vector<FlowStep> steps = FlowStepsOf(code);
    Indexes indexes(code.facts.names.size(), NONE);
    std::vector<UnitFlow> units;
    for (FlowGraph& graph : FlowGraphsOf(code)) {
        units.push_back({std::move(graph), {}});
        AddSteps(units.back(), indexes, steps);
    }
    return units;
}
