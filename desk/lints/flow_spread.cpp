#include "lints/flow_spread.h"

#include <algorithm>

namespace {

constexpr std::size_t MASK_BITS = 64;

// A group of variables takes two visits of each block, and one more for each level of loops.
constexpr long long VISITS_PER_BLOCK = 300;

// A block on the way through the graph, and which of the next ones is to be gone to.
struct Stop {
    int block;
    std::size_t next;
};

// Goes to the next block that was not visited yet; false if there is none.
bool GoOn(const FlowGraph& graph, std::vector<bool>& isVisited, std::vector<Stop>& way) {
    const FlowBlock& block = graph.blocks[static_cast<std::size_t>(way.back().block)];
    while (way.back().next < block.next.size()) {
        const int next = block.next[way.back().next];
        ++way.back().next;
        if (next != NONE && !isVisited[static_cast<std::size_t>(next)]) {
            isVisited[static_cast<std::size_t>(next)] = true;
            way.push_back({next, 0});
            return true;
        }
    }
    return false;
}

// The blocks that can be reached, in the reverse of the order in which they are left for good.
std::vector<int> OrderOf(const FlowGraph& graph) {
    std::vector<int> order;
    std::vector<bool> isVisited(graph.blocks.size(), false);
    std::vector<Stop> way = {{0, 0}};
    isVisited.front() = true;
    while (!way.empty()) {
        if (!GoOn(graph, isVisited, way)) {
            order.push_back(way.back().block);
            way.pop_back();
        }
    }
    std::reverse(order.begin(), order.end());
    return order;
}

std::array<int, 2> NextPlaces(const FlowBlock& block, const std::vector<int>& places,
                              bool throughCalls) {
    std::array<int, 2> next = {NONE, NONE};
    for (std::size_t i = 0; i < next.size(); ++i) {
        next[i] = block.next[i] == NONE ? NONE : places[static_cast<std::size_t>(block.next[i])];
    }
    if (throughCalls && block.isEnd()) {
        next[0] = 0;
    }
    return next;
}

// Whether there are visits left for all blocks once more, which are then used.
bool UseVisits(FlowWays& ways) {
    const auto count = static_cast<long long>(ways.order.size());
    const bool areLeft = ways.visitsLeft >= count;
    ways.visitsLeft -= areLeft ? count : 0;
    return areLeft;
}

// Whether something went back to a block that had been visited in this round.
bool PassForwards(const FlowWays& ways, const std::vector<MaskTransfer>& transfers,
                  std::vector<VariableMask>& come) {
    bool isAgain = false;
    for (std::size_t place = 0; place < ways.order.size(); ++place) {
        const auto block = static_cast<std::size_t>(ways.order[place]);
        const VariableMask passed = transfers[block].after(come[block]);
        for (const int next : ways.next[place]) {
            if (next == NONE) {
                continue;
            }
            VariableMask& known =
                come[static_cast<std::size_t>(ways.order[static_cast<std::size_t>(next)])];
            isAgain = isAgain || (next <= static_cast<int>(place) && (passed & ~known) != 0);
            known |= passed;
        }
    }
    return isAgain;
}

// Whether something more came to a block.
bool PassBackwards(const FlowWays& ways, const std::vector<MaskTransfer>& transfers,
                   std::vector<VariableMask>& come) {
    bool isMore = false;
    for (std::size_t place = ways.order.size(); place-- > 0;) {
        VariableMask& known = come[static_cast<std::size_t>(ways.order[place])];
        VariableMask found = known;
        for (const int next : ways.next[place]) {
            if (next != NONE) {
                const auto block =
                    static_cast<std::size_t>(ways.order[static_cast<std::size_t>(next)]);
                found |= transfers[block].after(come[block]);
            }
        }
        isMore = isMore || found != known;
        known = found;
    }
    return isMore;
}

}  // namespace

std::vector<VariableGroup> GroupsOf(const std::vector<const FlowVariable*>& variables) {
    std::vector<VariableGroup> groups;
    for (const FlowVariable* variable : variables) {
        if (groups.empty() || groups.back().size() == MASK_BITS) {
            groups.emplace_back();
        }
        groups.back().push_back(variable);
    }
    return groups;
}

FlowWays WaysOf(const FlowGraph& graph, bool throughCalls) {
    FlowWays ways = {OrderOf(graph), {}, 0};
    std::vector<int> places(graph.blocks.size(), NONE);
    for (std::size_t place = 0; place < ways.order.size(); ++place) {
        places[static_cast<std::size_t>(ways.order[place])] = static_cast<int>(place);
    }
    for (const int block : ways.order) {
        ways.next.push_back(
            NextPlaces(graph.blocks[static_cast<std::size_t>(block)], places, throughCalls));
    }
    ways.visitsLeft = static_cast<long long>(ways.order.size()) * VISITS_PER_BLOCK;
    return ways;
}

std::vector<VariableMask> SpreadForwards(FlowWays& ways,
                                         const std::vector<MaskTransfer>& transfers,
                                         std::vector<VariableMask> come) {
    bool isAgain = true;
    while (isAgain) {
        if (!UseVisits(ways)) {
            return {};
        }
        isAgain = PassForwards(ways, transfers, come);
    }
    return come;
}

std::vector<VariableMask> SpreadBackwards(FlowWays& ways,
                                          const std::vector<MaskTransfer>& transfers,
                                          std::vector<VariableMask> come) {
    bool isMore = true;
    while (isMore) {
        if (!UseVisits(ways)) {
            return {};
        }
        isMore = PassBackwards(ways, transfers, come);
    }
    return come;
}
