// Choices that a seed decides.
#pragma once

#include <cstddef>
#include <random>

class Random {
public:
    explicit Random(unsigned seed) : engine_(seed) {}

    // A number from 0 up to `limit`, which is not 0 and not among them.
    std::size_t below(std::size_t limit) { return engine_() % limit; }
    bool oneIn(std::size_t count) { return below(count) == 0; }

    // One of the elements, of which there must be some.
    template <typename Elements>
    const auto& oneOf(const Elements& elements) {
        return elements[below(elements.size())];
    }

private:
    std::mt19937 engine_;
};
