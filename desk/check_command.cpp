// yxst check PATH...: all errors and warnings of scripts.

#include "check/check_files.h"
#include "facts/input.h"
#include "subcommands.h"

#include <QThread>

namespace {

struct CheckArguments {
    std::vector<std::string> paths;
    CheckOptions options = {QThread::idealThreadCount()};
    bool isWarningError = false;
    bool isQuiet = false;
};

Status RunCheck(const CheckArguments& arguments) {
    QStringList paths;
    for (const std::string& path : arguments.paths) {
        paths.append(QString::fromLocal8Bit(path.c_str()));
    }
    const FoundFiles found = FindFiles(paths, {QStringLiteral("st")});
    Status status = STATUS_FINE;
    for (const QString& failure : found.failures) {
        Complain(failure);
        status = STATUS_FAILED;
    }
    CheckFiles(found.files, arguments.options, [&](const CheckedFile& file) {
        if (!file.report) {
            Complain(file.path + QStringLiteral(": ") + file.failure);
            status = STATUS_FAILED;
            return;
        }
        for (const Diagnostic& d : file.report->diagnostics) {
            const Place p = file.report->source.placeOf(d.span.begin);
            Print(QStringLiteral("%1:%2:%3: %4: %5 [%6]\n")
                      .arg(file.path)
                      .arg(p.line)
                      .arg(p.column)
                      .arg(d.level == Level::Error     ? "error"
                           : d.level == Level::Warning ? "warning"
                                                       : "note")
                      .arg(d.message, d.id));
            if (d.level == Level::Error && status == STATUS_FINE) {
                status = STATUS_NOT_FINE;
            }
        }
    });
    return status;
}

}  // namespace

Runner DeclareCheck(CLI::App& command) {
    const auto arguments = std::make_shared<CheckArguments>();
    command
        .add_option("PATH", arguments->paths,
                    "Scripts, or folders with scripts; - is standard input")
        ->required();
    command.add_option("--max-errors", arguments->options.maxErrors, "Errors shown of a script")
        ->check(CLI::PositiveNumber);
    command.add_option("--jobs,-j", arguments->options.jobs, "Scripts checked at the same time")
        ->check(CLI::PositiveNumber);
    return [arguments] { return RunCheck(*arguments); };
}
