// yxst check PATH...: all errors and warnings of scripts, with their reasons.

#include "check/check_files.h"
#include "facts/input.h"
#include "lints/lints.h"
#include "options.h"
#include "reports/make_report.h"
#include "reports/progress.h"
#include "subcommands.h"

#include <QThread>

#include <unistd.h>

#include <algorithm>
#include <map>

namespace {

struct CheckArguments {
    std::vector<std::string> paths;
    std::vector<std::string> suffixes = {"st"};
    CheckOptions options = {QThread::idealThreadCount()};
    std::vector<std::string> disabled;
    ReportOptions report;
    ColorWish color = ColorWish::Auto;
    bool isWarningError = false;
};

// Reports the files as they are handed over, and keeps count.
class Reporter {
public:
    Reporter(const CheckArguments& arguments, int files)
        : isWarningError_(arguments.isWarningError),
          report_(MakeReport(arguments.report)),
          progress_(files) {
        report_->begin();
    }

    void take(CheckedFile file) {
        progress_.hide();
        tell(std::move(file));
        progress_.show(++done_);
    }

    void fail(const QString& failure) {
        Complain(failure);
        hasFailed_ = true;
    }

    Status end() {
        progress_.hide();
        report_->end(summary_);
        return hasFailed_ ? STATUS_FAILED : summary_.errors > 0 ? STATUS_NOT_FINE : STATUS_FINE;
    }

private:
    bool isWarningError_;
    std::unique_ptr<Report> report_;
    Progress progress_;
    Summary summary_;
    int done_ = 0;
    bool hasFailed_ = false;

    void tell(CheckedFile file) {
        if (!file.report) {
            fail(file.path + QStringLiteral(": ") + file.failure);
            return;
        }
        if (isWarningError_) {
            MakeWarningsErrors(*file.report);
        }
        report_->file(*file.report);
        summary_.add(*file.report);
    }
};

// Identifiers as they are meant, whatever their letters and the blanks around them.
QStringList IdsOf(const std::vector<std::string>& arguments) {
    QStringList ids = ListOf(arguments);
    for (QString& id : ids) {
        id = id.trimmed().toLower();
    }
    return ids;
}

// Whether all of them are lints; what is none is told.
bool AreLints(const QStringList& ids) {
    for (const QString& id : ids) {
        if (!LintIds().contains(id)) {
            const QString nearest = NearestLint(id);
            Complain(QStringLiteral("there is no lint \"%1\"").arg(id) +
                     (nearest.isEmpty() ? QString() : QStringLiteral("; the nearest is ")) +
                     nearest);
            return false;
        }
    }
    return true;
}

Status RunCheck(CheckArguments arguments) {
    const QStringList disabled = IdsOf(arguments.disabled);
    if (!AreLints(disabled)) {
        return STATUS_FAILED;
    }
    arguments.options.findMore = [disabled](const Source& source, const Facts& facts) {
        return FindLints(source, facts, disabled);
    };
    arguments.report.hasColors = HasColors(arguments.color, STDOUT_FILENO);
    const FoundFiles found = FindFiles(ListOf(arguments.paths), ListOf(arguments.suffixes));
    Reporter reporter(arguments, found.files.size());
    for (const QString& failure : found.failures) {
        reporter.fail(failure);
    }
    CheckFiles(found.files, arguments.options,
               [&reporter](const CheckedFile& file) { reporter.take(file); });
    return reporter.end();
}

}  // namespace

Runner DeclareCheck(CLI::App& command) {
    const auto arguments = std::make_shared<CheckArguments>();
    const std::map<std::string, ReportFormat> formats(std::begin(REPORT_FORMATS),
                                                      std::end(REPORT_FORMATS));
    command
        .add_option("PATH", arguments->paths, "Scripts, or folders of them; - is standard input")
        ->required();
    AddChoiceOption(command, "--format", arguments->report.format, formats, "FORMAT",
                    "How it is shown: human, gcc, json, sarif or github");
    AddCountOption(command, "--max-errors", arguments->options.maxErrors,
                   "Errors shown of a script, 50");
    command.add_flag("--werror", arguments->isWarningError, "Warnings are errors");
    command.add_option("--disable", arguments->disabled, "Lints to be left out, by identifier")
        ->option_text("ID,...")
        ->delimiter(',')
        ->allow_extra_args(false);
    command.add_flag("--quiet", arguments->report.isQuiet, "No summary");
    AddCountOption(command, "--jobs", arguments->options.jobs,
                   "Scripts checked at the same time; as many as there are processors");
    command
        .add_option("--suffix", arguments->suffixes,
                    "Files in folders that are scripts, st; may be given several times")
        ->option_text("SUFFIX")
        ->allow_extra_args(false);
    AddColorOption(command, arguments->color);
    return [arguments] { return RunCheck(*arguments); };
}
