// Where the code of statements begins and ends, and what decides whether it runs.
#pragma once

#include "lints/flow_code.h"

#include <vector>

// The code of a statement.
struct StatementItems {
    int begin = NONE;   // its first item
    int last = NONE;    // its last item
    int branch = NONE;  // the first item of the run of statements that it stands in
};

struct FlowLayout {
    std::vector<StatementItems> statements;
    // By item, where what it is a part of begins: all from there to the item runs whenever the
    // first of it does, unless a jump of the script leaves it. That is a branch, the right side
    // of an OR, or the body of the unit.
    std::vector<int> regions;

    const StatementItems& of(int statement) const {
        return statements[static_cast<std::size_t>(statement)];
    }
};

FlowLayout FlowLayoutOf(const FlowCode& code);
