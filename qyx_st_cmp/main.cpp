// The driver: command line, probes of the outputs, one compile, exit status.

#include "qyx_compile.h"
#include "qyx_files.h"
#include "qyx_messages.h"
#include "qyx_text.h"

#include <QElapsedTimer>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string_view>

#ifndef Q_OS_WIN
#include <fcntl.h>
#include <unistd.h>
#endif

#ifdef YXST_COVERAGE
extern "C" void __gcov_dump();
#endif

namespace {

// ---------------------------------------------------------------------------------------------
// The lines of the driver
// ---------------------------------------------------------------------------------------------

void Trademark() {
    WriteLn(TXT_TRADEMARK, WHAT_INFORMATION);
}

// "Build successful.  Elapsed time: 42 ms."
void Finish(qint64 elapsedMs) {
    QString milliseconds;
    Int64ToStr(elapsedMs, milliseconds);
    WriteLn(StringsToString(TXT_BUILD_SUCCESSFUL, "  Elapsed time: ", milliseconds, " ms."),
            WHAT_INFORMATION);
}

// Ends a run that cannot begin. No output file is open yet.
[[noreturn]] void ExitWith(QLatin1String text) {
    WriteToOutputFiles(text, WHAT_COMMAND_LINE_ERROR, true);
    CloseAllFiles();
    std::exit(EXIT_FAILURE);
}

[[noreturn]] void ArgumensError() {
    ExitWith(TXT_ARGUMENTS_ERROR);
}

[[noreturn]] void InputFileNameError() {
    ExitWith(TXT_INPUT_FILE_NOT_FOUND);
}

[[noreturn]] void OutputFileNameError() {
    ExitWith(TXT_OPEN_FAILED_ON_OUTPUT_FILE);
}

[[noreturn]] void OutputLSTFileNameError() {
    ExitWith(TXT_OPEN_FAILED_ON_OUTPUT_FILE_LST);
}

[[noreturn]] void OutputRESFileNameError() {
    ExitWith(TXT_OPEN_FAILED_ON_OUTPUT_FILE_RES);
}

[[noreturn]] void OutputERRFileNameError() {
    ExitWith(TXT_OPEN_FAILED_ON_OUTPUT_FILE_ERR);
}

// ---------------------------------------------------------------------------------------------
// The command line
// ---------------------------------------------------------------------------------------------

constexpr int INPUT_ARGUMENT = 1;
constexpr int OUTPUT_ARGUMENT = 2;
constexpr int FIRST_OPTION = 3;

struct Option {
    QLatin1String text;
    bool& flag;
};

constexpr std::array<Option, 8> OPTIONS = {{
    {"-l"_L1, flag_SaveListFile},
    {"-s"_L1, flag_ShowOnScreen},
    {"-i"_L1, flag_ShowInputFileLines},
    {"-c"_L1, flag_ShowCommentedLines},
    {"-m"_L1, flag_ShowMessages},
    {"-n"_L1, flag_ShowLinesNumber},
    {"-r"_L1, flag_SaveResFile},
    {"-e"_L1, flag_SaveErrFile},
}};

// A file beside the code file, made when its option is given.
struct SideFile {
    const bool& isWanted;
    QLatin1String suffix;
    void (*exitOnFailure)();
    void (*open)(const QString& name);
};

constexpr std::array<SideFile, 3> SIDE_FILES = {{
    {flag_SaveListFile, ".lst"_L1, OutputLSTFileNameError, OpenOutputListFile},
    {flag_SaveResFile, ".res"_L1, OutputRESFileNameError, OpenOutputResFile},
    {flag_SaveErrFile, ".err"_L1, OutputERRFileNameError, OpenOutputErrFile},
}};

// Names are the bytes that the user typed, whatever the locale: each is one character.
QString FileName(const char* argument) {
#ifdef Q_OS_WIN
    return QString::fromLocal8Bit(argument);
#else
    return QString::fromLatin1(argument);
#endif
}

// Sets the flag of an option. False for anything that is no option.
bool SetOption(QLatin1String argument) {
    for (const Option& option : OPTIONS) {
        if (argument == option.text) {
            option.flag = true;
            return true;
        }
    }
    return false;
}

// Sets the flags of all options. False if an argument is no option.
bool ReadOptions(int argc, char** argv) {
    bool areKnown = true;
    for (int i = FIRST_OPTION; i < argc; ++i) {
        areKnown = SetOption(QLatin1String(argv[i])) && areKnown;
    }
    return areKnown;
}

// Ends the run at the first side file that is wanted and whose name does not pass.
void CheckSideFiles(const QString& output, bool (*passes)(const QString& name)) {
    for (const SideFile& sideFile : SIDE_FILES) {
        const QString name = StringsToString(output, sideFile.suffix);
        if (sideFile.isWanted && !passes(name)) {
            sideFile.exitOnFailure();
        }
    }
}

// Refuses every output name that leads to the source, before anything is removed.
void CheckSourceIsKept(const QString& output) {
    const auto isOther = [](const QString& name) { return !IsInputCodeFile(name); };
    if (!isOther(output)) {
        OutputFileNameError();
    }
    CheckSideFiles(output, isOther);
}

// Probes that the outputs can be created and checks that the options are known: the message about
// a wrong option comes after that about the code file and before those about the side files.
void CheckOutputs(const QString& output, bool areOptionsKnown) {
    if (!FileCanExists(output)) {
        OutputFileNameError();
    }
    if (!areOptionsKnown) {
        ArgumensError();
    }
    CheckSideFiles(output, FileCanExists);
}

// Removes what older runs have left under the names of the outputs.
void RemoveOldOutputs(const QString& output) {
    if (!RemoveOldFile(output)) {
        OutputFileNameError();
    }
    CheckSideFiles(output, RemoveOldFile);
}

void OpenOutputs(const QString& output) {
    OpenOutputCodeFile(output);
    for (const SideFile& sideFile : SIDE_FILES) {
        if (sideFile.isWanted) {
            sideFile.open(StringsToString(output, sideFile.suffix));
        }
    }
}

// ---------------------------------------------------------------------------------------------
// The process
// ---------------------------------------------------------------------------------------------

constexpr std::size_t SCREEN_BLOCK_SIZE = std::size_t{64} * 1024;

// A standard stream that the caller closed must not lend its number to a file: what is meant for
// the screen would end up in that file.
void OccupyClosedStreams() {
#ifndef Q_OS_WIN
    int opened = 0;
    while (opened >= 0 && opened <= STDERR_FILENO) {
        opened = open("/dev/null", O_RDWR);
    }
    close(opened);
#endif
}

// A file-size limit then shows as a failed write, and a reader of the screen output may leave.
void IgnoreOutputSignals() {
#ifndef Q_OS_WIN
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
#endif
}

// A build that measures coverage notes what was reached, as nothing does so at an end by a signal
// or without the usual steps.
void NoteCoverage() {
#ifdef YXST_COVERAGE
    __gcov_dump();
#endif
}

// The run ends as if the signal were not handled, but leaves no code file that is not whole.
void EndBySignal(int signal) {
    DeleteOutputCodeFile();
    NoteCoverage();
    std::signal(signal, SIG_DFL);  // GCOVR_EXCL_LINE: the coverage is noted
    std::raise(signal);            // GCOVR_EXCL_LINE
}

// A signal that the caller has the process ignore stays ignored.
void HandleEndingSignals() {
#ifndef Q_OS_WIN
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction before = {};
        sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN) {
            std::signal(signal, EndBySignal);
        }
    }
#endif
}

void PrepareScreen() {
#ifdef Q_OS_WIN
    std::system("chcp 65001");
#endif
    std::setvbuf(stdout, nullptr, _IOFBF, SCREEN_BLOCK_SIZE);
}

// Ends a run that cannot get the memory it needs. Nothing here asks for more.
[[noreturn]] void EndWithoutMemory() noexcept {
    DeleteOutputCodeFile();
    std::fputc(';', stdout);
    std::fwrite(TXT_OUT_OF_MEMORY.data(), 1, TXT_OUT_OF_MEMORY.size(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
    NoteCoverage();
    std::_Exit(EXIT_FAILURE);  // GCOVR_EXCL_LINE: the coverage is noted
}

#if !defined(Q_OS_WIN) && !defined(YXST_SANITIZED)

// The memory of the stack is asked for when it is used; the want of it shows as a signal.
// Anything else that raises it ends the run as if it were not handled.
constexpr std::size_t STACK_SPAN = std::size_t{64} * 1024 * 1024;
const char* stackBegin = nullptr;

// GCOVR_EXCL_START: tests reach it, and it ends without noting what was reached
void EndIfWithoutStack(int signal, siginfo_t* info, void*) {
    const auto* const address = static_cast<const char*>(info->si_addr);
    if (address < stackBegin && static_cast<std::size_t>(stackBegin - address) < STACK_SPAN) {
        DeleteOutputCodeFile();
        constexpr std::string_view line = ";Out of memory\n";
        [[maybe_unused]] const ssize_t written = write(STDOUT_FILENO, line.data(), line.size());
        _exit(EXIT_FAILURE);
    }
    EndBySignal(signal);
}
// GCOVR_EXCL_STOP

void HandleWantOfStack(const char* begin) {
    constexpr std::size_t size = std::size_t{16} * 1024;
    static std::array<char, size> ownStack;
    const stack_t own = {ownStack.data(), 0, ownStack.size()};
    struct sigaction action = {};
    action.sa_sigaction = EndIfWithoutStack;
    action.sa_flags = SA_ONSTACK | SA_SIGINFO;
    stackBegin = begin;
    sigaltstack(&own, nullptr);
    sigaction(SIGSEGV, &action, nullptr);
}

#else

void HandleWantOfStack(const char*) {}

#endif

void PrepareProcess() {
    OccupyClosedStreams();
    IgnoreOutputSignals();
    HandleEndingSignals();
    PrepareScreen();
}

// yxstcmp INPUT OUTPUT { option }
void Run(int argc, char** argv) {
    QElapsedTimer timer;
    timer.start();
    if (argc <= OUTPUT_ARGUMENT) {
        ArgumensError();
    }
    const QString input = FileName(argv[INPUT_ARGUMENT]);
    if (!FileExists(input)) {
        InputFileNameError();
    }
    const QString output = FileName(argv[OUTPUT_ARGUMENT]);
    const bool areOptionsKnown = ReadOptions(argc, argv);
    ReadInputCodeFile(input);
    CheckSourceIsKept(output);
    CheckOutputs(output, areOptionsKnown);
    OpenInputCodeFile();
    RemoveOldOutputs(output);
    OpenOutputs(output);
    Trademark();
    Compile();
    FinishOutputCodeFile();
    Finish(timer.elapsed());
    CloseAllFiles();
    KeepOutputCodeFile();
}

}  // namespace

// Want of memory is found by an exception, which nothing else throws, or by its end where it may
// not pass.
int main(int argc, char** argv) {
    const char onStack = 0;
    HandleWantOfStack(&onStack);
    std::set_terminate(EndWithoutMemory);
    try {
        PrepareProcess();
        Run(argc, argv);
    } catch (...) {
        EndWithoutMemory();
    }
    return EXIT_SUCCESS;
}
