#include "lints/spread.h"

#include <deque>

namespace {

void AddWay(Ways& ways, int from, int to) {
    ways.to[static_cast<std::size_t>(ways.isForwards ? from : to)].push_back(ways.isForwards ? to
                                                                                           : from);
}

// Blocks that are to be visited, each at most once at a time.
struct Queue {
    std::deque<int> blocks;
    std::vector<bool> isIn;
};

void Add(Queue& queue, int block) {
    if (!queue.isIn[static_cast<std::size_t>(block)]) {
        queue.isIn[static_cast<std::size_t>(block)] = true;
        queue.blocks.push_back(block);
    }
}

int Take(Queue& queue) {
    const int block = queue.blocks.front();
    queue.blocks.pop_front();
    queue.isIn[static_cast<std::size_t>(block)] = false;
    return block;
}

// All blocks, those first that pass on to others rather than the other way round.
Queue QueueOf(const Ways& ways) {
    const int count = static_cast<int>(ways.to.size());
    Queue queue = {{}, std::vector<bool>(ways.to.size(), false)};
    for (int block = 0; block < count; ++block) {
        Add(queue, ways.isForwards ? block : count - 1 - block);
    }
    return queue;
}

}  // namespace

Ways WaysOf(const Graph& graph, Direction direction) {
    Ways ways = {direction == Direction::Forwards,
                 std::vector<std::vector<int>>(graph.blocks.size())};
    for (std::size_t index = 0; index < graph.blocks.size(); ++index) {
        const Block& block = graph.blocks[index];
        for (const int next : block.next) {
            if (block.isReached && next != NONE) {
                AddWay(ways, static_cast<int>(index), next);
            }
        }
        if (direction == Direction::BackwardsThroughCalls && block.isReached && block.isEnd()) {
            AddWay(ways, static_cast<int>(index), 0);
        }
    }
    return ways;
}

std::vector<Mask> Spread(const Ways& ways, const std::vector<Transfer>& transfers,
                         std::vector<Mask> come) {
    Queue queue = QueueOf(ways);
    while (!queue.blocks.empty()) {
        const auto block = static_cast<std::size_t>(Take(queue));
        const Mask passed = transfers[block].after(come[block]);
        for (const int to : ways.to[block]) {
            Mask& known = come[static_cast<std::size_t>(to)];
            if ((passed & ~known) != 0) {
                known |= passed;
                Add(queue, to);
            }
        }
    }
    return come;
}
