// yxst: the desk beside the compiler. Each subcommand is a row of the table below.

#include "qyx_messages.h"
#include "subcommands.h"

#include <csignal>
#include <cstdio>
#include <iterator>
#include <map>

namespace {

struct Subcommand {
    const char* name;
    const char* description;
    Runner (*declare)(CLI::App& command);
};

constexpr Subcommand SUBCOMMANDS[] = {
    {"check", "Show all errors and warnings of scripts", DeclareCheck},
    {"facts", "Show what the compiler tells about a script, as JSON", DeclareFacts},
    {"explain", "Explain a message", DeclareExplain},
};

// The language has a version, which the banner tells, and the programs have theirs.
std::string Version() {
    const std::string commit =
#include "commit.inc"
        ;
    return "yxst " YXST_VERSION " (commit " + commit + ", Qt " + qVersion() + ")\n" +
           TXT_TRADEMARK.data();
}

// Standard output whose reader has left shows as a failed write, and a child that has as its end.
void PrepareProcess() {
    std::signal(SIGPIPE, SIG_IGN);
}

Status Run(int argc, char** argv) {
    CLI::App app("The desk beside yxstcmp, the compiler of Structured Text scripts", "yxst");
    app.set_version_flag("--version", Version(), "Show the versions of program and language");
    app.require_subcommand(1);
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

}  // namespace

int main(int argc, char** argv) {
    PrepareProcess();
    return FinishOutput(Run(argc, argv));
}
