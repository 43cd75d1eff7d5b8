// What the fuzzer runs: one compile of one source, and a judgement of what it left behind.
//
//     yxst_fuzz_target ORACLE SOURCE FOLDER [option...]
//
// ORACLE is the path of oracle.py, the options are those of the compiler; without any, the bytes
// of SOURCE choose one of their 256 sets. The outputs go to FOLDER/outputs, which is made anew.
// No name holds a blank.
//
// The fuzzer keeps as a crash whatever ends by a signal: SIGUSR1 if the oracle finds anything
// wrong, which it then names, and SIGXCPU if the compile takes more than a second of processor
// time. That second does not depend on what else the machine does.

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

// The compiler's main(), renamed when it is compiled for this target.
int CompilerMain(int argc, char** argv);

namespace {

enum Argument { PROGRAM, ORACLE, SOURCE, FOLDER, FIRST_OPTION };

constexpr std::array<const char*, 8> OPTIONS = {"-l", "-s", "-i", "-c", "-m", "-n", "-r", "-e"};
constexpr std::size_t OPTION_SETS = 1U << OPTIONS.size();

constexpr rlim_t SECONDS_LIMIT = 1;

// What every output holds before a run: oracle.py can tell by it what was written.
constexpr std::array<const char*, 4> OUTPUTS = {"out", "out.lst", "out.res", "out.err"};
constexpr const char* OLD_CONTENT = "old";

struct Run {
    std::string source;
    std::string folder;  // of the outputs
    std::vector<std::string> options;
};

// ---------------------------------------------------------------------------------------------
// The oracle
// ---------------------------------------------------------------------------------------------

// The two ends of the conversation with it.
std::FILE* toOracle = nullptr;
std::FILE* fromOracle = nullptr;

[[noreturn]] void Fail(const char* what) {
    std::perror(what);
    std::abort();
}

// Becomes the oracle, with the two pipes as its standard input and output.
[[noreturn]] void RunOracle(const char* oracle, const char* folder, int input, int output) {
    dup2(input, STDIN_FILENO);
    dup2(output, STDOUT_FILENO);
    execlp("python3", "python3", oracle, "--serve", folder, nullptr);
    Fail("python3");
}

// One oracle serves all runs: it is started before the fuzzer makes its copies of this process.
void StartOracle(const char* oracle, const char* folder) {
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
        RunOracle(oracle, folder, requests[0], answers[1]);
    }
    close(requests[0]);
    close(answers[1]);
    toOracle = fdopen(requests[1], "w");
    fromOracle = fdopen(answers[0], "r");
}

// "PID STATUS SOURCE FOLDER option..."
std::string Question(int status, const Run& run) {
    std::string question = std::to_string(getpid()) + ' ' + std::to_string(status) + ' ' +
                           run.source + ' ' + run.folder;
    for (const std::string& option : run.options) {
        question += ' ' + option;
    }
    return question;
}

// Runs when the compiler exits, with its status. A run that the fuzzer killed may have left its
// answer in the pipe, so the answers carry the number of the process.
void Judge(int status, void* argument) {
    const std::string question = Question(status, *static_cast<Run*>(argument));
    std::fprintf(toOracle, "%s\n", question.c_str());
    std::fflush(toOracle);
    std::array<char, 4096> answer = {};
    char* verdict = nullptr;
    do {
        if (std::fgets(answer.data(), answer.size(), fromOracle) == nullptr) {
            Fail("oracle");
        }
    } while (std::strtol(answer.data(), &verdict, 10) != getpid());
    if (verdict[0] == ' ' && verdict[1] != '\n') {
        std::fprintf(stderr, "%s:%s", question.c_str(), verdict);
        std::raise(SIGUSR1);
    }
}

// ---------------------------------------------------------------------------------------------
// The run
// ---------------------------------------------------------------------------------------------

// The same for the same bytes. All is done within the library, so that the fuzzer takes no size
// of a source for something new.
std::vector<std::string> ChooseOptions(const char* source) {
    std::ostringstream bytes;
    bytes << std::ifstream(source, std::ios::binary).rdbuf();
    const std::size_t chosen = std::hash<std::string>()(bytes.str()) % OPTION_SETS;
    std::vector<std::string> options;
    for (std::size_t bit = 0; bit < OPTIONS.size(); ++bit) {
        if ((chosen >> bit & 1U) != 0) {
            options.emplace_back(OPTIONS[bit]);
        }
    }
    return options;
}

void MakeFolder(const std::string& folder) {
    std::filesystem::remove_all(folder);
    std::filesystem::create_directory(folder);
    for (const char* name : OUTPUTS) {
        std::ofstream(folder + '/' + name) << OLD_CONTENT;
    }
}

void LimitProcessorTime() {
    rlimit limit = {};
    getrlimit(RLIMIT_CPU, &limit);
    limit.rlim_cur = SECONDS_LIMIT;
    setrlimit(RLIMIT_CPU, &limit);
}

int Compile(const char* program, const Run& run) {
    std::vector<std::string> texts = {program, run.source, run.folder + '/' + OUTPUTS[0]};
    texts.insert(texts.end(), run.options.begin(), run.options.end());
    std::vector<char*> arguments(texts.size() + 1);
    std::transform(texts.begin(), texts.end(), arguments.begin(),
                   [](std::string& text) { return text.data(); });
    return CompilerMain(static_cast<int>(texts.size()), arguments.data());
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < FIRST_OPTION) {
        std::fputs("usage: yxst_fuzz_target ORACLE SOURCE FOLDER [option...]\n", stderr);
        return EXIT_FAILURE;
    }
    StartOracle(argv[ORACLE], argv[FOLDER]);
#ifdef __AFL_HAVE_MANUAL_CONTROL
    __AFL_INIT();
#endif
    static Run run = {
        argv[SOURCE], std::string(argv[FOLDER]) + "/outputs", {argv + FIRST_OPTION, argv + argc}};
    if (run.options.empty()) {
        run.options = ChooseOptions(argv[SOURCE]);
    }
    MakeFolder(run.folder);
    LimitProcessorTime();
    on_exit(Judge, &run);
    return Compile(argv[PROGRAM], run);
}
