// What the fuzzer runs: one compile of one source, and a judgement of what it left behind.
//
//     yxst_fuzz_target ORACLE SOURCE OUTPUT [option...]
//
// ORACLE is the path of oracle.py, the rest are the arguments of the compiler. Ends by SIGABRT if
// the oracle finds anything wrong, so that the fuzzer keeps the source as a crash. The names hold
// no blanks.

#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>

// The compiler's main(), renamed when it is compiled for this target.
int CompilerMain(int argc, char** argv);

namespace {

constexpr int SOURCE_ARGUMENT = 2;
constexpr int OUTPUT_ARGUMENT = 3;

// The two ends of the conversation with the oracle.
std::FILE* toOracle = nullptr;
std::FILE* fromOracle = nullptr;

[[noreturn]] void Fail(const char* what) {
    std::perror(what);
    std::abort();
}

// Becomes the oracle, with the two pipes as its standard input and output.
[[noreturn]] void RunOracle(const char* oracle, int input, int output) {
    dup2(input, STDIN_FILENO);
    dup2(output, STDOUT_FILENO);
    execlp("python3", "python3", oracle, "--serve", nullptr);
    Fail("python3");
}

// One oracle serves all runs: it is started before the fuzzer makes its copies of this process.
void StartOracle(const char* oracle) {
    std::array<int, 2> requests = {};
    std::array<int, 2> answers = {};
    if (pipe(requests.data()) != 0 || pipe(answers.data()) != 0) {
        Fail("pipe");
    }
    const pid_t pid = fork();
    if (pid < 0) {
        Fail("fork");
    }
    if (pid == 0) {
        close(requests[1]);
        close(answers[0]);
        RunOracle(oracle, requests[0], answers[1]);
    }
    close(requests[0]);
    close(answers[1]);
    toOracle = fdopen(requests[1], "w");
    fromOracle = fdopen(answers[0], "r");
}

// Runs when the compiler exits, with its status. A run that the fuzzer killed may have left its
// answer in the pipe, so the answers carry the number of the process.
void Judge(int status, void* argument) {
    const auto* const argv = static_cast<char**>(argument);
    std::fprintf(toOracle, "%d %d %s %s\n", static_cast<int>(getpid()), status,
                 argv[SOURCE_ARGUMENT], argv[OUTPUT_ARGUMENT]);
    std::fflush(toOracle);
    std::array<char, 4096> answer = {};
    char* verdict = nullptr;
    do {
        if (std::fgets(answer.data(), answer.size(), fromOracle) == nullptr) {
            Fail("oracle");
        }
    } while (std::strtol(answer.data(), &verdict, 10) != getpid());
    if (verdict[0] == ' ' && verdict[1] != '\n') {
        std::fputs(verdict, stderr);
        std::abort();
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc <= OUTPUT_ARGUMENT) {
        std::fputs("usage: yxst_fuzz_target ORACLE SOURCE OUTPUT [option...]\n", stderr);
        return EXIT_FAILURE;
    }
    StartOracle(argv[1]);
#ifdef __AFL_HAVE_MANUAL_CONTROL
    __AFL_INIT();
#endif
    on_exit(Judge, argv);
    return CompilerMain(argc - 1, argv + 1);
}
