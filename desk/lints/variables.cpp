#include "lints/variables.h"

#include <algorithm>
#include <unordered_map>

std::vector<Variable> VariablesOf(const Graph& graph, const std::vector<Step>& steps) {
    std::vector<Variable> variables;
    std::unordered_map<int, std::size_t> indexes;  // by name
    auto step = std::lower_bound(steps.begin(), steps.end(), graph.begin(),
                                 [](const Step& one, int item) { return one.item < item; });
    for (; step != steps.end() && step->item < graph.end(); ++step) {
        const auto added = indexes.emplace(step->name, variables.size());
        if (added.second) {
            variables.push_back({step->name, {}});
        }
        variables[added.first->second].steps.push_back(
            {step->kind, step->item, step->use, graph.blockOf(step->item)});
    }
    return variables;
}

std::vector<Group> GroupsOf(const std::vector<const Variable*>& variables) {
    std::vector<Group> groups;
    for (const Variable* variable : variables) {
        if (groups.empty() || groups.back().size() == MASK_BITS) {
            groups.emplace_back();
        }
        groups.back().push_back(variable);
    }
    return groups;
}
