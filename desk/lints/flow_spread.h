// How facts about variables spread along the ways through a unit, 64 variables at a time.
#pragma once

#include "lints/flow_variables.h"

#include <QtGlobal>

#include <array>
#include <vector>

using VariableMask = quint64;  // a bit for each variable

inline VariableMask BitOf(std::size_t index) {
    return VariableMask(1) << index;
}

// Variables that are looked at together.
using VariableGroup = std::vector<const FlowVariable*>;
std::vector<VariableGroup> GroupsOf(const std::vector<const FlowVariable*>& variables);

// What a block does with what comes to it.
struct MaskTransfer {
    VariableMask kill = 0;
    VariableMask make = 0;

    VariableMask after(VariableMask before) const { return (before & ~kill) | make; }
};

// The blocks that can be reached, each before those after it but for loops.
struct FlowWays {
    std::vector<int> order;                // the blocks
    std::vector<std::array<int, 2>> next;  // by place in the order, places or NONE
    long long visitsLeft;                  // of blocks, so that the time stays in proportion
};

// The ends of the unit can lead to its begin, as one call follows another.
FlowWays WaysOf(const FlowGraph& graph, bool throughCalls);

// What comes to each block that is reached: what it has from the start, and what those before it
// pass on. Nothing at all if there are no visits left.
std::vector<VariableMask> SpreadForwards(FlowWays& ways,
                                         const std::vector<MaskTransfer>& transfers,
                                         std::vector<VariableMask> come);

// What comes to each block from those after it.
std::vector<VariableMask> SpreadBackwards(FlowWays& ways,
                                          const std::vector<MaskTransfer>& transfers,
                                          std::vector<VariableMask> come);
