// What is known of the values on the value stack.
#pragma once

#include "machine/knowledge.h"

#include <QHash>

#include <utility>
#include <vector>

// Stacks share what they have in common: each is its top value and the stack below, and equal
// stacks have the same number, so that two ways of control are compared at once.
class ValueStacks {
public:
    static constexpr int EMPTY = 0;

    ValueStacks();

    int push(int stack, KnownValue value);
    int below(int stack) const { return at(stack).below; }
    KnownValue top(int stack) const { return at(stack).value; }
    int height(int stack) const { return at(stack).height; }
    // Whether a REAL, or what may be one, is among the values.
    bool holdsReal(int stack) const { return at(stack).holdsReal; }

    // Values of which nothing is known.
    int unknown(int height);
    // The stack that two ways of the same height leave; what they do not share is Mixed.
    int merged(int one, int other);

private:
    struct Node {
        int below;
        KnownValue value;
        int height;
        bool holdsReal;
    };
    std::vector<Node> nodes_;
    QHash<QPair<int, int>, int> numbers_;  // by the stack below and the value
    std::vector<int> unknown_;             // by height
    std::vector<int> mixed_;

    const Node& at(int stack) const { return nodes_[static_cast<std::size_t>(stack)]; }
    int filled(std::vector<int>& known, KnownValue value, int height);
    bool isFilled(const std::vector<int>& known, int stack) const;
};
