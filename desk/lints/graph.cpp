#include "lints/graph.h"

#include "lints/code.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

namespace {

// The items of the body of a unit.
struct Body {
    int unit;
    int begin;
    int end;
    bool isCertain = true;  // no jump has an uncertain target, none comes from another unit
};

struct Bodies {
    std::vector<Body> bodies;
    std::vector<int> bodyOf;                            // by item; NONE for declarations
    std::unordered_map<std::string_view, int> labels;  // the items
};

bool IsJump(Operation operation) {
    return operation == Operation::Jump || operation == Operation::JumpIfFalse ||
           operation == Operation::JumpIfTrue;
}

// ---------------------------------------------------------------------------------------------
// Bodies
// ---------------------------------------------------------------------------------------------

// The body begins at the label BODY: or MAIN:, of which the first item of a unit is neither.
int BeginOfBody(const Facts& facts, int begin, int end) {
    for (int item = begin + 1; item < end; ++item) {
        const std::string_view code = CodeAt(facts, item);
        if (code == "BODY:" || code == "MAIN:") {
            return item;
        }
    }
    return end;
}

// The items of a unit are written for places in it.
int EndOfUnit(const Facts& facts, const UnitFact& unit, int begin) {
    const auto after = std::find_if(
        facts.items.begin() + begin, facts.items.end(),
        [&](const ItemFact& item) { return item.place >= unit.span.end; });
    return static_cast<int>(after - facts.items.begin());
}

std::vector<Body> FindBodies(const Facts& facts) {
    std::vector<Body> bodies;
    int item = 0;
    for (std::size_t unit = 0; unit < facts.units.size(); ++unit) {
        const int end = EndOfUnit(facts, facts.units[unit], item);
        const int begin = BeginOfBody(facts, item, end);
        if (begin < end) {
            bodies.push_back({static_cast<int>(unit), begin, end});
        }
        item = end;
    }
    return bodies;
}

Body& BodyAt(Bodies& all, int item) {
    return all.bodies[static_cast<std::size_t>(all.bodyOf[static_cast<std::size_t>(item)])];
}

// ---------------------------------------------------------------------------------------------
// Labels
// ---------------------------------------------------------------------------------------------

// Each body has a label BODY: or MAIN: of its own; a script can have labels of these names too.
void AddLabel(const Facts& facts, Bodies& all, int item) {
    const auto added = all.labels.emplace(LabelIn(CodeAt(facts, item)), item);
    const bool isBeginOfBody = BodyAt(all, item).begin == item;
    if (!added.second && !isBeginOfBody) {
        BodyAt(all, item).isCertain = false;
        BodyAt(all, added.first->second).isCertain = false;
    }
}

// The item of the label that a jump goes to; NONE if there is none.
int TargetOf(const Facts& facts, const Bodies& all, int jump) {
    const auto found = all.labels.find(LabelIn(CodeAt(facts, jump)));
    return found == all.labels.end() ? NONE : found->second;
}

void CheckJump(const Facts& facts, Bodies& all, int item) {
    const int target = TargetOf(facts, all, item);
    if (target == NONE) {
        BodyAt(all, item).isCertain = false;
    } else if (BodyAt(all, target).unit != BodyAt(all, item).unit) {
        BodyAt(all, item).isCertain = false;
        BodyAt(all, target).isCertain = false;
    }
}

void FindLabels(const Facts& facts, Bodies& all) {
    for (const Body& body : all.bodies) {
        for (int item = body.begin; item < body.end; ++item) {
            if (OperationAt(facts, item) == Operation::Label) {
                AddLabel(facts, all, item);
            }
        }
    }
}

void CheckJumps(const Facts& facts, Bodies& all) {
    for (const Body& body : all.bodies) {
        for (int item = body.begin; item < body.end; ++item) {
            if (IsJump(OperationAt(facts, item))) {
                CheckJump(facts, all, item);
            }
        }
    }
}

Bodies BodiesOf(const Facts& facts) {
    Bodies all = {FindBodies(facts), std::vector<int>(facts.items.size(), NONE), {}};
    for (std::size_t body = 0; body < all.bodies.size(); ++body) {
        std::fill(all.bodyOf.begin() + all.bodies[body].begin,
                  all.bodyOf.begin() + all.bodies[body].end, static_cast<int>(body));
    }
    FindLabels(facts, all);
    CheckJumps(facts, all);
    return all;
}

// ---------------------------------------------------------------------------------------------
// Blocks
// ---------------------------------------------------------------------------------------------

bool EndsBlock(Operation operation) {
    return IsJump(operation) || operation == Operation::Return;
}

void DivideIntoBlocks(const Facts& facts, const Body& body, Graph& graph) {
    bool isNew = true;
    for (int item = body.begin; item < body.end; ++item) {
        const Operation operation = OperationAt(facts, item);
        if (isNew || operation == Operation::Label) {
            graph.blocks.push_back({item, item});
        }
        graph.blocks.back().end = item + 1;
        isNew = EndsBlock(operation);
    }
}

// What is known of a conditional jump.
enum class Known : unsigned char { Nothing, Jumps, Passes };

// A constant condition is "MOV 1 #A0", "EQ 1 #A0", "TST #A0" before the jump. That of an IF is
// taken for a switch of the author's, and so is WHILE FALSE.
Known WhatIsKnown(const Facts& facts, int jump) {
    const Token kind = StatementKindAt(facts, jump);
    const bool isConstant =
        CodeAt(facts, jump - 1) == "TST #A0" && CodeAt(facts, jump - 2) == "EQ 1 #A0";
    const bool isTrue = CodeAt(facts, jump - 3) == "MOV 1 #A0";
    if (!isConstant || OperationAt(facts, jump) != Operation::JumpIfFalse) {
        return Known::Nothing;
    }
    if (kind == TOKEN_REPEAT) {
        return isTrue ? Known::Passes : Known::Jumps;
    }
    return kind == TOKEN_WHILE && isTrue ? Known::Passes : Known::Nothing;
}

void ConnectBlock(const Facts& facts, const Bodies& all, Graph& graph, std::size_t index) {
    Block& block = graph.blocks[index];
    const int last = block.end - 1;
    const Operation operation = OperationAt(facts, last);
    const Known known = WhatIsKnown(facts, last);
    const bool passes = operation != Operation::Jump && operation != Operation::Return &&
                        known != Known::Jumps && index + 1 < graph.blocks.size();
    if (passes) {
        block.next[0] = static_cast<int>(index) + 1;
    }
    if (IsJump(operation) && known != Known::Passes) {
        block.next[1] = graph.blockOf(TargetOf(facts, all, last));
    }
}

void FindReached(Graph& graph) {
    std::vector<int> open = {0};
    graph.blocks.front().isReached = true;
    while (!open.empty()) {
        const Block& block = graph.blocks[static_cast<std::size_t>(open.back())];
        open.pop_back();
        for (const int next : block.next) {
            if (next != NONE && !graph.blocks[static_cast<std::size_t>(next)].isReached) {
                graph.blocks[static_cast<std::size_t>(next)].isReached = true;
                open.push_back(next);
            }
        }
    }
}

Graph GraphOf(const Facts& facts, const Bodies& all, const Body& body) {
    Graph graph = {body.unit, {}};
    DivideIntoBlocks(facts, body, graph);
    for (std::size_t block = 0; block < graph.blocks.size(); ++block) {
        ConnectBlock(facts, all, graph, block);
    }
    FindReached(graph);
    return graph;
}

}  // namespace

int Graph::blockOf(int item) const {
    const auto after =
        std::upper_bound(blocks.begin(), blocks.end(), item,
                         [](int at, const Block& block) { return at < block.begin; });
    return static_cast<int>(after - blocks.begin()) - 1;
}

std::vector<Graph> GraphsOf(const Facts& facts) {
    const Bodies all = BodiesOf(facts);
    std::vector<Graph> graphs;
    for (const Body& body : all.bodies) {
        if (body.isCertain) {
            graphs.push_back(GraphOf(facts, all, body));
        }
    }
    return graphs;
}

// A loop has one conditional jump to its exit, at its head, and one jump back, at its end: the
// way to the exit is moved from the first to the second.
Graph WithLoopsEntered(const Facts& facts, Graph graph) {
    std::unordered_map<int, int> exits;  // by the statement
    for (Block& block : graph.blocks) {
        const int last = block.end - 1;
        const Token kind = StatementKindAt(facts, last);
        if (kind != TOKEN_WHILE && kind != TOKEN_FOR) {
            continue;
        }
        const int statement = facts.items[static_cast<std::size_t>(last)].statement;
        if (OperationAt(facts, last) == Operation::JumpIfFalse) {
            exits[statement] = block.next[1];
            block.next[1] = NONE;
        } else if (OperationAt(facts, last) == Operation::Jump) {
            block.next[0] = exits[statement];
        }
    }
    return graph;
}
