#include "machine/stacks.h"

namespace {

constexpr KnownValue MIXED = {Knowledge::Mixed, TYP_NONE};

int NumberOf(KnownValue value) {
    constexpr int types = TYP_CODES_COUNT;
    return static_cast<int>(value.known) * types + value.type;
}

bool MayBeReal(KnownValue value) {
    return value.type == TYP_REAL || value.known == Knowledge::Anything;
}

}  // namespace

ValueStacks::ValueStacks()
    : nodes_({{EMPTY, NOTHING, 0, false}}), unknown_({EMPTY}), mixed_({EMPTY}) {}

int ValueStacks::push(int stack, KnownValue value) {
    const QPair<int, int> key(stack, NumberOf(value));
    const auto known = numbers_.constFind(key);
    if (known != numbers_.constEnd()) {
        return *known;
    }
    const int number = static_cast<int>(nodes_.size());
    nodes_.push_back(
        {stack, value, at(stack).height + 1, at(stack).holdsReal || MayBeReal(value)});
    numbers_.insert(key, number);
    return number;
}

int ValueStacks::filled(std::vector<int>& known, KnownValue value, int height) {
    while (known.size() <= static_cast<std::size_t>(height)) {
        known.push_back(push(known.back(), value));
    }
    return known[static_cast<std::size_t>(height)];
}

bool ValueStacks::isFilled(const std::vector<int>& known, int stack) const {
    const auto height = static_cast<std::size_t>(at(stack).height);
    return height < known.size() && known[height] == stack;
}

int ValueStacks::unknown(int height) {
    return filled(unknown_, ANYTHING, height);
}

// Values that are compared one by one would cost as much as the stack is high at each meeting, so
// stacks that differ become unknown or mixed as wholes.
int ValueStacks::merged(int one, int other) {
    if (one == other) {
        return one;
    }
    const bool isMixed = isFilled(mixed_, one) || isFilled(mixed_, other);
    const bool isUnknown = isFilled(unknown_, one) || isFilled(unknown_, other);
    return isUnknown && !isMixed ? unknown(at(one).height)
                                 : filled(mixed_, MIXED, at(one).height);
}
