#include "lints/flow_graph.h"

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
    std::vector<int> bodyOf;                           // by item; NONE for declarations
    std::unordered_map<std::string_view, int> labels;  // the items
};

bool IsJump(FlowKind operation) {
    return operation == FlowKind::Jump || operation == FlowKind::JumpIfFalse ||
           operation == FlowKind::JumpIfTrue;
}

// ---------------------------------------------------------------------------------------------
// Bodies
// ---------------------------------------------------------------------------------------------

// The body begins at the label BODY: or MAIN:, of which the first item of a unit is neither.
int BeginOfBody(const FlowCode& code, int begin, int end) {
    for (int item = begin + 1; item < end; ++item) {
        if (code.text(item) == "BODY:" || code.text(item) == "MAIN:") {
            return item;
        }
    }
    return end;
}

// The items of a unit are written for places in it.
int EndOfUnit(const FlowCode& code, const UnitFact& unit, int begin) {
    const auto after =
        std::find_if(code.facts.items.begin() + begin, code.facts.items.end(),
                     [&](const ItemFact& item) { return item.place >= unit.span.end; });
    return static_cast<int>(after - code.facts.items.begin());
}

std::vector<Body> FindBodies(const FlowCode& code) {
    std::vector<Body> bodies;
    int item = 0;
    for (std::size_t unit = 0; unit < code.facts.units.size(); ++unit) {
        const int end = EndOfUnit(code, code.facts.units[unit], item);
        const int begin = BeginOfBody(code, item, end);
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
void AddLabel(const FlowCode& code, Bodies& all, int item) {
    const auto added = all.labels.emplace(LabelInItem(code.text(item)), item);
    const bool isBeginOfBody = BodyAt(all, item).begin == item;
    if (!added.second && !isBeginOfBody) {
        BodyAt(all, item).isCertain = false;
        BodyAt(all, added.first->second).isCertain = false;
    }
}

// The item of the label that a jump goes to; NONE if there is none.
int TargetOf(const FlowCode& code, const Bodies& all, int jump) {
    const auto found = all.labels.find(LabelInItem(code.text(jump)));
    return found == all.labels.end() ? NONE : found->second;
}

void CheckJump(const FlowCode& code, Bodies& all, int item) {
    const int target = TargetOf(code, all, item);
    if (target == NONE) {
        BodyAt(all, item).isCertain = false;
    } else if (BodyAt(all, target).unit != BodyAt(all, item).unit) {
        BodyAt(all, item).isCertain = false;
        BodyAt(all, target).isCertain = false;
    }
}

void FindLabels(const FlowCode& code, Bodies& all) {
    for (const Body& body : all.bodies) {
        for (int item = body.begin; item < body.end; ++item) {
            if (code.operation(item) == FlowKind::Label) {
                AddLabel(code, all, item);
            }
        }
    }
}

void CheckJumps(const FlowCode& code, Bodies& all) {
    for (const Body& body : all.bodies) {
        for (int item = body.begin; item < body.end; ++item) {
            if (IsJump(code.operation(item))) {
                CheckJump(code, all, item);
            }
        }
    }
}

Bodies BodiesOf(const FlowCode& code) {
    Bodies all = {FindBodies(code), std::vector<int>(code.facts.items.size(), NONE), {}};
    for (std::size_t body = 0; body < all.bodies.size(); ++body) {
        std::fill(all.bodyOf.begin() + all.bodies[body].begin,
                  all.bodyOf.begin() + all.bodies[body].end, static_cast<int>(body));
    }
    FindLabels(code, all);
    CheckJumps(code, all);
    return all;
}

// ---------------------------------------------------------------------------------------------
// Blocks
// ---------------------------------------------------------------------------------------------

bool EndsBlock(FlowKind operation) {
    return IsJump(operation) || operation == FlowKind::Return;
}

void DivideIntoBlocks(const FlowCode& code, const Body& body, FlowGraph& graph) {
    bool isNew = true;
    for (int item = body.begin; item < body.end; ++item) {
        const FlowKind operation = code.operation(item);
        if (isNew || operation == FlowKind::Label) {
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
Known WhatIsKnown(const FlowCode& code, int jump) {
    const Token kind = code.kind(jump);
    const bool isConstant = code.text(jump - 1) == "TST #A0" && code.text(jump - 2) == "EQ 1 #A0";
    const bool isTrue = code.text(jump - 3) == "MOV 1 #A0";
    if (!isConstant || code.operation(jump) != FlowKind::JumpIfFalse) {
        return Known::Nothing;
    }
    if (kind == TOKEN_REPEAT) {
        return isTrue ? Known::Passes : Known::Jumps;
    }
    return kind == TOKEN_WHILE && isTrue ? Known::Passes : Known::Nothing;
}

void ConnectBlock(const FlowCode& code, const Bodies& all, FlowGraph& graph, std::size_t index) {
    FlowBlock& block = graph.blocks[index];
    const int last = block.end - 1;
    const FlowKind operation = code.operation(last);
    const Known known = WhatIsKnown(code, last);
    const bool passes = operation != FlowKind::Jump && operation != FlowKind::Return &&
                        known != Known::Jumps && index + 1 < graph.blocks.size();
    if (passes) {
        block.next[0] = static_cast<int>(index) + 1;
    }
    if (IsJump(operation) && known != Known::Passes) {
        block.next[1] = graph.blockOf(TargetOf(code, all, last));
    }
}

void FindReached(FlowGraph& graph) {
    std::vector<int> open = {0};
    graph.blocks.front().isReached = true;
    while (!open.empty()) {
        const FlowBlock& block = graph.blocks[static_cast<std::size_t>(open.back())];
        open.pop_back();
        for (const int next : block.next) {
            if (next != NONE && !graph.blocks[static_cast<std::size_t>(next)].isReached) {
                graph.blocks[static_cast<std::size_t>(next)].isReached = true;
                open.push_back(next);
            }
        }
    }
}

FlowGraph GraphOf(const FlowCode& code, const Bodies& all, const Body& body) {
    FlowGraph graph = {body.unit, {}};
    DivideIntoBlocks(code, body, graph);
    for (std::size_t block = 0; block < graph.blocks.size(); ++block) {
        ConnectBlock(code, all, graph, block);
    }
    FindReached(graph);
    return graph;
}

}  // namespace

int FlowGraph::blockOf(int item) const {
    const auto after =
        std::upper_bound(blocks.begin(), blocks.end(), item,
                         [](int at, const FlowBlock& block) { return at < block.begin; });
    return static_cast<int>(after - blocks.begin()) - 1;
}

std::vector<FlowGraph> FlowGraphsOf(const FlowCode& code) {
    const Bodies all = BodiesOf(code);
    std::vector<FlowGraph> graphs;
    for (const Body& body : all.bodies) {
        if (body.isCertain) {
            graphs.push_back(GraphOf(code, all, body));
        }
    }
    return graphs;
}

// A loop has one conditional jump to its exit, at its head, and one jump back, at its end: the
// way to the exit is moved from the first to the second.
FlowGraph WithLoopsEntered(const FlowCode& code, FlowGraph graph) {
    std::unordered_map<int, int> exits;  // by the statement
    for (FlowBlock& block : graph.blocks) {
        const int last = block.end - 1;
        const Token kind = code.kind(last);
        if (kind != TOKEN_WHILE && kind != TOKEN_FOR) {
            continue;
        }
        const int statement = code.statement(last);
        if (code.operation(last) == FlowKind::JumpIfFalse) {
            exits[statement] = block.next[1];
            block.next[1] = NONE;
        } else if (code.operation(last) == FlowKind::Jump) {
            block.next[0] = exits[statement];
        }
    }
    return graph;
}
