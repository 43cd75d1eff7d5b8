// How facts about variables spread along the ways through a unit, 64 variables at a time.
#pragma once

#include "lints/variables.h"

#include <QtGlobal>

#include <array>
#include <vector>

using Mask = quint64;  // a bit for each variable

inline Mask BitOf(std::size_t index) {
    return Mask(1) << index;
}

// Variables that are looked at together.
using Group = std::vector<const Variable*>;
std::vector<Group> GroupsOf(const std::vector<const Variable*>& variables);

// What a block does with what comes to it.
struct Transfer {
    Mask kill = 0;
    Mask make = 0;

    Mask after(Mask before) const { return (before & ~kill) | make; }
};

// The blocks that can be reached, each before those after it but for loops.
struct Ways {
    std::vector<int> order;                // the blocks
    std::vector<std::array<int, 2>> next;  // by place in the order, places or NONE
    long long visitsLeft;                  // of blocks, so that the time stays in proportion
};

// The ends of the unit can lead to its begin, as one call follows another.
Ways WaysOf(const Graph& graph, bool throughCalls);

// What comes to each block that is reached: what it has from the start, and what those before it
// pass on. Nothing at all if there are no visits left.
std::vector<Mask> SpreadForwards(Ways& ways, const std::vector<Transfer>& transfers,
                                 std::vector<Mask> come);

// What comes to each block from those after it.
std::vector<Mask> SpreadBackwards(Ways& ways, const std::vector<Transfer>& transfers,
                                  std::vector<Mask> come);
