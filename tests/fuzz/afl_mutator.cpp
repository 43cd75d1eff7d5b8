// A mutator as afl-fuzz loads it. The environment variable YXST_FUZZ_DICTIONARY names the
// fuzzer's dictionary.

#include "any_mutator.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <string>

namespace {

// Larger sources take longer and reach no more.
constexpr std::size_t LARGEST_MUTANT = 32768;

struct State {
    std::unique_ptr<AnyMutator> mutator;
    std::string mutant;
};

std::string_view TextOf(const std::uint8_t* bytes, std::size_t size) {
    return {reinterpret_cast<const char*>(bytes), bytes == nullptr ? 0 : size};
}

}  // namespace

// The names and the types are those of the interface.
// NOLINTBEGIN(readability-identifier-naming)
extern "C" {

void* afl_custom_init(void* afl, unsigned seed);
std::size_t afl_custom_fuzz(void* data, std::uint8_t* source, std::size_t sourceSize,
                            std::uint8_t** mutant, std::uint8_t* other, std::size_t otherSize,
                            std::size_t maxSize);
void afl_custom_deinit(void* data);

void* afl_custom_init(void*, unsigned seed) {
    const char* const name = std::getenv("YXST_FUZZ_DICTIONARY");
    std::ifstream dictionary(name == nullptr ? "" : name);
    try {
        return new State{MakeMutator(dictionary, seed), {}};
    } catch (const std::exception& error) {
        std::fprintf(stderr, "YXST_FUZZ_DICTIONARY: %s\n", error.what());
        return nullptr;
    }
}

std::size_t afl_custom_fuzz(void* data, std::uint8_t* source, std::size_t sourceSize,
                            std::uint8_t** mutant, std::uint8_t* other, std::size_t otherSize,
                            std::size_t maxSize) {
    auto& [mutator, text] = *static_cast<State*>(data);
    text = mutator->mutate(TextOf(source, sourceSize), TextOf(other, otherSize),
                           std::min(maxSize, LARGEST_MUTANT));
    *mutant = reinterpret_cast<std::uint8_t*>(text.data());
    return text.size();
}

void afl_custom_deinit(void* data) {
    delete static_cast<State*>(data);
}

}  // extern "C"
// NOLINTEND(readability-identifier-naming)
