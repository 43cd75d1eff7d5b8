// How facts about variables spread along the ways through a unit, 64 variables at a time.
#pragma once

#include "lints/graph.h"

#include <QtGlobal>

#include <vector>

using Mask = quint64;  // a bit for each variable
constexpr int MASK_BITS = 64;

// What a block does with what comes to it.
struct Transfer {
    Mask kill = 0;
    Mask make = 0;

    Mask after(Mask before) const { return (before & ~kill) | make; }
};

// Who passes something on to whom. From each block that is reached to those after it, or from
// those to it; from ends of the unit to its begin as well, as one call follows another.
enum class Direction : unsigned char { Forwards, Backwards, BackwardsThroughCalls };

struct Ways {
    bool isForwards;
    std::vector<std::vector<int>> to;  // by block
};

Ways WaysOf(const Graph& graph, Direction direction);

// What comes to each block: what it has from the start and what others pass on to it. A block is
// visited once, and once more at most for each bit.
std::vector<Mask> Spread(const Ways& ways, const std::vector<Transfer>& transfers,
                         std::vector<Mask> come);
