// What afl-fuzz needs of a mutator. A module that it loads has one.
#pragma once

#include <cstddef>
#include <istream>
#include <memory>
#include <string>
#include <string_view>

class AnyMutator {
public:
    AnyMutator() = default;
    AnyMutator(const AnyMutator&) = delete;
    AnyMutator& operator=(const AnyMutator&) = delete;
    virtual ~AnyMutator() = default;

    // The input with some changes, parts of the other one among them: at most maxSize bytes.
    virtual std::string mutate(std::string_view input, std::string_view other,
                               std::size_t maxSize) = 0;
};

// That of the module. Throws std::runtime_error if the dictionary is not one for it.
std::unique_ptr<AnyMutator> MakeMutator(std::istream& dictionary, unsigned seed);
