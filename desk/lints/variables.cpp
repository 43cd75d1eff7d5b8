#include "lints/variables.h"

#include <algorithm>

namespace {

// Where the variables are in the list of their unit, by name.
using Indexes = std::vector<int>;

Variable& VariableOf(UnitFlow& unit, Indexes& indexes, int name) {
    int& index = indexes[static_cast<std::size_t>(name)];
    if (index == NONE) {
        index = static_cast<int>(unit.variables.size());
        unit.variables.push_back({name, {}});
    }
    return unit.variables[static_cast<std::size_t>(index)];
}

// The steps of a unit follow each other, and so do its blocks.
void AddSteps(UnitFlow& unit, Indexes& indexes, const std::vector<Step>& steps) {
    auto step = std::lower_bound(steps.begin(), steps.end(), unit.graph.begin(),
                                 [](const Step& one, int item) { return one.item < item; });
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

std::vector<UnitFlow> UnitFlowsOf(const Code& code) {
    const std::vector<Step> steps = StepsOf(code);
    Indexes indexes(code.facts.names.size(), NONE);
    std::vector<UnitFlow> units;
    for (Graph& graph : GraphsOf(code)) {
        units.push_back({std::move(graph), {}});
        AddSteps(units.back(), indexes, steps);
    }
    return units;
}
