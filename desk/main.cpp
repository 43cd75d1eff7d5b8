// yxst: the desk beside the compiler. Each subcommand is a row of the table below.

#include "qyx_messages.h"
#include "subcommands.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <map>
#include <new>
#include <stdexcept>

namespace {

struct Subcommand {
    const char* name;
    const char* description;
    Runner (*declare)(CLI::App& command);
};

constexpr Subcommand SUBCOMMANDS[] = {
    {"check", "Show all errors and warnings of scripts", DeclareCheck},
    {"fmt", "Lay out scripts", DeclareFmt},
    {"run", "Execute a script or target code", DeclareRun},
    {"test", "Execute the tests of scripts", DeclareTest},
    {"facts", "Show what the compiler tells about a script, as JSON", DeclareFacts},
    {"verify", "Prove that target code is sound", DeclareVerify},
    {"explain", "Explain a message", DeclareExplain},
    {"lsp", "Serve editors, by the language server protocol", DeclareLsp},
};

// The programs have the version of the package, the language has one of its own, which the
// compiler's first line tells.
std::string Version() {
    const std::string commit =
#include "commit.inc"
        ;
    return "yxst and yxstcmp " YXST_VERSION " (commit " + commit + ", Qt " + qVersion() +
           ")\nThe compiler's first line has the version of the language: " +
           TXT_TRADEMARK.data();
}

// What is opened later must not take the place of a standard stream that is closed, and what goes
// to one that is closed must fail.
void OccupyClosedStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0) {
            open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

// Standard output whose reader has left, or that has reached its limit, shows as a failed write.
void PrepareProcess() {
    OccupyClosedStreams();
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

bool IsSubcommand(const char* word) {
    return std::any_of(
        std::begin(SUBCOMMANDS), std::end(SUBCOMMANDS),
        [word](const Subcommand& row) { return std::strcmp(row.name, word) == 0; });
}

Status Run(int argc, char** argv) {
    if (argc > 1 && argv[1][0] != '-' && !IsSubcommand(argv[1])) {
        Complain(QStringLiteral("%1 is no subcommand; yxst --help shows those there are")
                     .arg(QString::fromLocal8Bit(argv[1])));
        return STATUS_FAILED;
    }
    CLI::App app("The desk beside yxstcmp, the compiler of Structured Text scripts", "yxst");
    app.set_version_flag("--version", Version(), "Show the versions of program and language");
    app.require_subcommand(1);
    app.failure_message([](const CLI::App*, const CLI::Error& error) {
        return std::string("yxst: ") + error.what() +
               ".\nRun with --help for more information.\n";
    });
    std::map<const CLI::App*, Runner> runners;
    for (const Subcommand& row : SUBCOMMANDS) {
        CLI::App* const command = app.add_subcommand(row.name, row.description);
        runners[command] = row.declare(*command);
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& end) {
        return app.exit(end, std::cout, std::cerr) == 0 ? STATUS_FINE : STATUS_FAILED;
    }
    return runners[app.get_subcommands().front()]();
}

int FailWithoutMemory() {
    std::fputs("yxst: out of memory.\n", stderr);
    return STATUS_FAILED;
}

}  // namespace

int main(int argc, char** argv) {
    PrepareProcess();
    try {
        return FinishOutput(Run(argc, argv));
    } catch (const std::bad_alloc&) {
        return FailWithoutMemory();
    } catch (const std::length_error&) {
        return FailWithoutMemory();
    }
}
