// Checks the mutator by itself, over sources of which the compiler accepts most:
//
//     yxst_mutator_check DICTIONARY FOLDER SOURCE...
//
// Tokens hold every byte of their source, no mutant is too large, and the same seed gives the
// same mutants. Then it compiles 10,000 mutants, in FOLDER, of the sources that are accepted, and
// prints how many of these the compiler accepts and how many get past the declarations of a
// unit. Too few of them, and any mutant that ends the compiler otherwise than with status 0 or 1,
// make it fail.

#include "mutator.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

// The compiler's main(), renamed when it is compiled for this target.
int CompilerMain(int argc, char** argv);

namespace {

enum Argument { PROGRAM, DICTIONARY, FOLDER, FIRST_SOURCE };

constexpr unsigned SEED = 1;
constexpr std::size_t MUTANTS = 10000;
constexpr std::size_t SMALL_MUTANTS = 1000;
constexpr std::size_t LARGEST_MUTANT = 32768;
constexpr std::array<std::size_t, 8> SIZE_LIMITS = {0, 1, 2, 3, 10, 100, 1000, 10000};

// In percent, with room below what the mutator reaches.
constexpr double LEAST_ACCEPTED = 30;
constexpr double LEAST_PAST_DECLARATIONS = 75;

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

// The mutant at that place in a series: each source in turn, with parts of the one behind it.
std::string MakeMutant(Mutator& mutator, const Texts& sources, std::size_t place,
                       std::size_t maxSize) {
    return mutator.mutate(sources[place % sources.size()], sources[(place + 1) % sources.size()],
                          maxSize);
}

// ---------------------------------------------------------------------------------------------
// What holds for every mutant
// ---------------------------------------------------------------------------------------------

void CheckTokens(const Words& words, const Texts& sources) {
    Mutator mutator(words, SEED);
    for (std::size_t place = 0; place < sources.size(); ++place) {
        const std::string mutant = MakeMutant(mutator, sources, place, LARGEST_MUTANT);
        Check(Join(Tokenize(sources[place], words)) == sources[place], "tokens of a source");
        Check(Join(Tokenize(mutant, words)) == mutant, "tokens of a mutant");
    }
}

void CheckSizes(const Words& words, const Texts& sources) {
    Mutator mutator(words, SEED);
    for (const std::size_t limit : SIZE_LIMITS) {
        for (std::size_t place = 0; place < sources.size(); ++place) {
            const std::string mutant = MakeMutant(mutator, sources, place, limit);
            Check(mutant.size() <= limit, "size of a mutant");
        }
    }
}

// What is left of one token must not be nothing, which the fuzzer could not run.
void CheckSmallest(const Words& words) {
    Mutator mutator(words, SEED);
    for (std::size_t count = 0; count < SMALL_MUTANTS; ++count) {
        Check(!mutator.mutate("a", "", LARGEST_MUTANT).empty(), "mutant of one token");
    }
}

Texts MakeMutants(const Words& words, const Texts& sources, unsigned seed) {
    Mutator mutator(words, seed);
    Texts mutants;
    for (std::size_t place = 0; place < sources.size(); ++place) {
        mutants.push_back(MakeMutant(mutator, sources, place, LARGEST_MUTANT));
    }
    return mutants;
}

void CheckSeeds(const Words& words, const Texts& sources) {
    const Texts mutants = MakeMutants(words, sources, SEED);
    Check(mutants == MakeMutants(words, sources, SEED), "the same mutants by the same seed");
    Check(mutants != MakeMutants(words, sources, SEED + 1), "other mutants by another seed");
}

// ---------------------------------------------------------------------------------------------
// What the compiler makes of mutants
// ---------------------------------------------------------------------------------------------

struct Result {
    bool isSound;
    bool isAccepted;
    bool isPastDeclarations;
};

int CompileInChild(const std::string& folder) {
    std::array<std::string, 4> texts = {"yxstcmp", folder + "/in.st", folder + "/out", "-l"};
    std::array<char*, texts.size() + 1> arguments = {};
    std::transform(texts.begin(), texts.end(), arguments.begin(),
                   [](std::string& text) { return text.data(); });
    int status = 0;
    const pid_t pid = fork();
    if (pid == 0) {
        std::exit(CompilerMain(texts.size(), arguments.data()));
    }
    waitpid(pid, &status, 0);
    return status;
}

// Before the first statement of a unit the listing shows an item for it.
Result Compile(const std::string& source, const std::string& folder) {
    std::ofstream(folder + "/in.st", std::ios::binary) << source;
    const int status = CompileInChild(folder);
    const std::string listing = ReadFile(folder + "/out.lst");
    const bool isExited = WIFEXITED(status) && WEXITSTATUS(status) <= 1;
    const bool hasStatements = listing.find("\nMAIN:\n") != std::string::npos ||
                               listing.find("\nBODY:\n") != std::string::npos;
    return {isExited, isExited && WEXITSTATUS(status) == 0, hasStatements};
}

Texts AcceptedOf(const Texts& sources, const std::string& folder) {
    Texts accepted;
    std::copy_if(sources.begin(), sources.end(), std::back_inserter(accepted),
                 [&](const std::string& source) { return Compile(source, folder).isAccepted; });
    return accepted;
}

void CheckShare(const char* what, std::size_t count, double least) {
    const double percent = 100.0 * static_cast<double>(count) / MUTANTS;
    std::printf("%s: %.1f %%\n", what, percent);
    Check(percent >= least, what);
}

void CheckShares(const Words& words, const Texts& sources, const std::string& folder) {
    Mutator mutator(words, SEED);
    std::size_t accepted = 0;
    std::size_t pastDeclarations = 0;
    for (std::size_t place = 0; place < MUTANTS; ++place) {
        const Result result =
            Compile(MakeMutant(mutator, sources, place, LARGEST_MUTANT), folder);
        Check(result.isSound, "status of the compiler");
        accepted += result.isAccepted ? 1 : 0;
        pastDeclarations += result.isPastDeclarations ? 1 : 0;
    }
    std::printf("%zu mutants of %zu sources\n", MUTANTS, sources.size());
    CheckShare("accepted", accepted, LEAST_ACCEPTED);
    CheckShare("past declarations", pastDeclarations, LEAST_PAST_DECLARATIONS);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc <= FIRST_SOURCE) {
        std::fputs("usage: yxst_mutator_check DICTIONARY FOLDER SOURCE...\n", stderr);
        return EXIT_FAILURE;
    }
    std::signal(SIGTERM, SIG_DFL);  // the runtime of the fuzzer makes a success of it
    std::ifstream dictionary(argv[DICTIONARY]);
    const Words words(dictionary);
    Texts sources;
    std::transform(argv + FIRST_SOURCE, argv + argc, std::back_inserter(sources), ReadFile);
    CheckTokens(words, sources);
    CheckSizes(words, sources);
    CheckSmallest(words);
    CheckSeeds(words, sources);
    CheckShares(words, AcceptedOf(sources, argv[FOLDER]), argv[FOLDER]);
    return hasFailed ? EXIT_FAILURE : EXIT_SUCCESS;
}
