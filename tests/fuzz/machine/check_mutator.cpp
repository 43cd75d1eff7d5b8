// Checks the mutator of the machine's inputs by itself:
//
//     yxst_machine_mutator_check DICTIONARY INPUT...
//
// No mutant is too large, and the same seed gives the same mutants. Then it judges 10,000 mutants
// of the inputs and prints how many hold code that is read, that is sound, that is executed by
// register code, and how many a table of tests that is executed. Too few of them make it fail.

#include "judge.h"
#include "mutator.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

enum Argument { PROGRAM, DICTIONARY, FIRST_INPUT };

constexpr unsigned SEED = 1;
constexpr std::size_t MUTANTS = 10000;
constexpr std::size_t LARGEST_MUTANT = 8192;
constexpr std::size_t SIZE_LIMITS[] = {0, 1, 4, 10, 100, 1000, LARGEST_MUTANT};

// In percent, with room below what the mutator reaches.
constexpr double LEAST_READ = 55;
constexpr double LEAST_SOUND = 35;

using Texts = std::vector<std::string>;

bool hasFailed = false;

void Check(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "FAILED: %s\n", what);
        hasFailed = true;
    }
}

std::string ReadFile(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// The mutants of a seed: each input in turn, with parts of the one after it.
class Mutants {
public:
    Mutants(const std::string& dictionary, const Texts& inputs, unsigned seed)
        : file_(dictionary), mutator_(file_, seed), inputs_(inputs) {}

    std::string next(std::size_t maxSize) {
        const std::string& input = inputs_[at_++ % inputs_.size()];
        return mutator_.mutate(input, inputs_[at_ % inputs_.size()], maxSize);
    }

private:
    std::ifstream file_;
    MachineMutator mutator_;
    const Texts& inputs_;
    std::size_t at_ = 0;
};

void CheckMutants(const std::string& dictionary, const Texts& inputs) {
    Mutants one(dictionary, inputs, SEED);
    Mutants same(dictionary, inputs, SEED);
    for (std::size_t count = 0; count < inputs.size(); ++count) {
        Check(JoinInput(SplitInput(inputs[count])) == inputs[count], "parts of an input");
        for (const std::size_t limit : SIZE_LIMITS) {
            const std::string mutant = one.next(limit);
            Check(mutant.size() <= limit, "size of a mutant");
            Check(mutant == same.next(limit), "mutants of one seed");
        }
    }
}

void CheckJudged(const std::string& dictionary, const Texts& inputs) {
    Mutants mutants(dictionary, inputs, SEED);
    int read = 0;
    int sound = 0;
    int byRegisters = 0;
    int tables = 0;
    for (std::size_t count = 0; count < MUTANTS; ++count) {
        try {
            const Judged judged = Judge(mutants.next(LARGEST_MUTANT));
            read += judged.isRead ? 1 : 0;
            sound += judged.isSound ? 1 : 0;
            byRegisters += judged.registerCycles > 0 ? 1 : 0;
            tables += judged.tables;
        } catch (const Unsound& found) {
            Check(false, found.what.toUtf8().constData());
        }
    }
    const auto percent = [](int part) { return 100.0 * part / static_cast<double>(MUTANTS); };
    std::printf(
        "%zu mutants: %.1f %% read, %.1f %% sound, %.1f %% by register code, "
        "%.1f %% with a table\n",
        MUTANTS, percent(read), percent(sound), percent(byRegisters), percent(tables));
    Check(percent(read) >= LEAST_READ && percent(sound) >= LEAST_SOUND, "too few are sound");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc <= FIRST_INPUT) {
        std::fputs("usage: yxst_machine_mutator_check DICTIONARY INPUT...\n", stderr);
        return EXIT_FAILURE;
    }
    Texts inputs;
    for (int at = FIRST_INPUT; at < argc; ++at) {
        inputs.push_back(ReadFile(argv[at]));
    }
    CheckMutants(argv[DICTIONARY], inputs);
    CheckJudged(argv[DICTIONARY], inputs);
    return hasFailed ? EXIT_FAILURE : EXIT_SUCCESS;
}
