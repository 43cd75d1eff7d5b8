// The ways through a unit, read from its target code.
#pragma once

#include "lints/flow_code.h"

#include <array>
#include <vector>

// Items that run one after the other, from the first to the last.
struct FlowBlock {
    int begin;
    int end;                                 // after the last item
    std::array<int, 2> next = {NONE, NONE};  // blocks; none of both leaves the unit
    bool isReached = false;

    bool isEnd() const { return next[0] == NONE && next[1] == NONE; }
};

// A unit whose jumps stay in it.
struct FlowGraph {
    int unit;
    std::vector<FlowBlock> blocks;  // in the order of the code, the first is entered by a call

    int begin() const { return blocks.front().begin; }
    int end() const { return blocks.back().end; }
    // The block of an item of the unit.
    int blockOf(int item) const;
};

// The graphs of a script that compiles; units whose jumps have no certain target are left out.
// A WHILE TRUE and an UNTIL of a constant are known to hold or not, other conditions are not.
std::vector<FlowGraph> FlowGraphsOf(const FlowCode& code);

// The same ways, but that the body of each FOR and WHILE is gone through before the loop ends
// by its condition.
FlowGraph WithLoopsEntered(const FlowCode& code, FlowGraph graph);
