// yxst facts FILE: what the compiler tells about one script.

#include "facts/compile.h"
#include "facts/input.h"
#include "reports/facts_json.h"
#include "subcommands.h"

namespace {

Status RunFacts(const QString& path) {
    const Input input = ReadInput(path);
    if (!input.source) {
        Complain(path + QStringLiteral(": ") + input.failure);
        return STATUS_FAILED;
    }
    const CompileResult result = CompileAndWait(*input.source);
    if (!result.facts) {
        Complain(path + QStringLiteral(": ") + result.failure);
        return STATUS_FAILED;
    }
    PrintFacts(*input.source, *result.facts);
    return result.facts->isCompiled() ? STATUS_FINE : STATUS_NOT_FINE;
}

}  // namespace

Runner DeclareFacts(CLI::App& command) {
    const auto path = std::make_shared<std::string>();
    command.add_option("FILE", *path, "The script; - is standard input")->required();
    return [path] { return RunFacts(QString::fromLocal8Bit(path->c_str())); };
}
