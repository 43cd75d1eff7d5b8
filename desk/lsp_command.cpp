// yxst lsp: serves editors over standard input and standard output.

#include "protocols/server_loop.h"
#include "subcommands.h"

namespace {

Status RunLsp() {
    const ServerEnd end = ServeLanguage();
    if (!end.fault.isEmpty()) {
        Complain(end.fault);
        return STATUS_FAILED;
    }
    return end.isAsAgreed ? STATUS_FINE : STATUS_NOT_FINE;
}

}  // namespace

Runner DeclareLsp(CLI::App& command) {
    command.footer("Editors start it and speak the language server protocol with it.");
    command.add_flag("--stdio",
                     "Accepted, without effect: it speaks by standard input and standard output");
    return RunLsp;
}
