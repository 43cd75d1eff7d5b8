// yxst verify FILE.yx...: proves of target code that it is sound.

#include "facts/input.h"
#include "machine/verifier.h"
#include "options.h"
#include "reports/code_report.h"
#include "reports/make_report.h"
#include "subcommands.h"

#include <QFileInfo>

#include <unistd.h>

#include <algorithm>
#include <map>

namespace {

struct VerifyArguments {
    std::vector<std::string> files;
    std::string listing;
    std::string script;
    ReportOptions report;
    ColorWish color = ColorWish::Auto;
    bool isWarningError = false;
};

QString TextOf(const std::string& argument) {
    return QString::fromLocal8Bit(argument.c_str());
}

// What is wrong with a code, be it that it cannot be read.
Findings FindingsOf(const CodeResult& result) {
    if (result.fault) {
        return {{Level::Error, QStringLiteral("no-target-code"), result.fault->message,
                 result.fault->item}};
    }
    return Verify(result.code).findings;
}

// A code under proof, with what was given beside it.
class CodeFile {
public:
    CodeFile(const VerifyArguments& arguments, QString path)
        : arguments_(arguments), path_(std::move(path)) {}

    // Nothing if a file or the call is wrong; then a complaint has been made.
    std::optional<FileReport> verify() {
        const InputBytes input = ReadInputBytes(path_);
        if (!input.bytes) {
            return complain(path_, input.failure);
        }
        result_ = ReadCode(*input.bytes);
        const Findings findings = FindingsOf(result_);
        isDamaged_ = std::any_of(findings.begin(), findings.end(), [](const Finding& finding) {
            return finding.level == Level::Error;
        });
        ItemPlaces places = PlacesInCode(NameOfInput(path_), *input.bytes, items());
        if (!findAsked(places)) {
            return std::nullopt;
        }
        if (!findings.empty()) {
            findBeside(places);
        }
        return ReportOf(findings, items(), places);
    }

private:
    const VerifyArguments& arguments_;
    QString path_;
    CodeResult result_;
    bool isDamaged_ = false;  // sound code is that of its script, and not of one that is like it

    const Items& items() const { return result_.code.items; }

    static std::optional<FileReport> complain(const QString& path, const QString& failure) {
        Complain(path + QStringLiteral(": ") + failure);
        return std::nullopt;
    }

    // In the listing or the script that the call names.
    bool findAsked(ItemPlaces& places) const {
        if (!arguments_.listing.empty()) {
            return findInListing(TextOf(arguments_.listing), places);
        }
        return arguments_.script.empty() || findInScript(TextOf(arguments_.script), places);
    }

    bool findInListing(const QString& path, ItemPlaces& places) const {
        const InputBytes input = ReadInputBytes(path);
        if (!input.bytes) {
            return complain(path, input.failure).has_value();
        }
        const std::optional<ItemPlaces> found =
            PlacesInListing(NameOfInput(path), *input.bytes, items());
        if (found) {
            places = *found;
            return true;
        }
        return takeRemarks(RemarksOfListing(NameOfInput(path), *input.bytes, items()), places) ||
               complain(path, QStringLiteral("is no listing of this code")).has_value();
    }

    bool findInScript(const QString& path, ItemPlaces& places) const {
        const Input input = ReadInput(path);
        if (!input.source) {
            return complain(path, input.failure).has_value();
        }
        const ScriptPlaces found = PlacesInScript(*input.source, items());
        if (!take(found, places)) {
            const QString other = QStringLiteral("does not compile to this code");
            return complain(path, found.failure.isEmpty() ? other : found.failure).has_value();
        }
        return true;
    }

    bool take(const ScriptPlaces& found, ItemPlaces& places) const {
        if (found.places) {
            places = *found.places;
        }
        return found.places || takeRemarks(found.remarks, places);
    }

    // False if there are none to take.
    bool takeRemarks(const std::vector<QString>& remarks, ItemPlaces& places) const {
        const bool isTaken = isDamaged_ && !remarks.empty();
        if (isTaken) {
            places.remarks = remarks;
        }
        return isTaken;
    }

    // "pump.st" beside "pump.yx" and "pump.yx.lst", if it is the script of this code, else a
    // listing beside the code.
    void findBeside(ItemPlaces& places) const {
        const bool isAsked = !arguments_.listing.empty() || !arguments_.script.empty();
        if (isAsked || path_ == QLatin1String(STANDARD_INPUT)) {
            return;
        }
        const QFileInfo file(path_);
        const QString folder = path_.contains(u'/') ? file.path() + u'/' : QString();
        const QString script = folder + file.baseName() + QStringLiteral(".st");
        const QString listing = path_ + QStringLiteral(".lst");
        if (!(QFileInfo(script).isFile() && takeScript(script, places)) &&
            QFileInfo(listing).isFile()) {
            takeListing(listing, places);
        }
    }

    bool takeScript(const QString& path, ItemPlaces& places) const {
        const Input input = ReadInput(path);
        return input.source && take(PlacesInScript(*input.source, items()), places);
    }

    void takeListing(const QString& path, ItemPlaces& places) const {
        const InputBytes input = ReadInputBytes(path);
        if (input.bytes) {
            takeRemarks(RemarksOfListing(path, *input.bytes, items()), places);
        }
    }
};

Status RunVerify(VerifyArguments arguments) {
    const bool isForOne = !arguments.listing.empty() || !arguments.script.empty();
    if (isForOne && arguments.files.size() > 1) {
        Complain(QStringLiteral("a listing or a script belongs to one file alone"));
        return STATUS_FAILED;
    }
    arguments.report.hasColors = HasColors(arguments.color, STDOUT_FILENO);
    const std::unique_ptr<Report> report = MakeReport(arguments.report);
    report->begin();
    Summary summary;
    bool hasFailed = false;
    for (const QString& path : ListOf(arguments.files)) {
        std::optional<FileReport> file = CodeFile(arguments, path).verify();
        hasFailed = hasFailed || !file;
        if (file) {
            if (arguments.isWarningError) {
                MakeWarningsErrors(*file);
            }
            report->file(*file);
            summary.add(*file);
        }
    }
    report->end(summary);
    return hasFailed ? STATUS_FAILED : summary.errors > 0 ? STATUS_NOT_FINE : STATUS_FINE;
}

}  // namespace

Runner DeclareVerify(CLI::App& command) {
    const auto arguments = std::make_shared<VerifyArguments>();
    const std::map<std::string, ReportFormat> formats = {
        {"human", ReportFormat::Human}, {"gcc", ReportFormat::Gcc}, {"json", ReportFormat::Json}};
    command.add_option("FILE", arguments->files, "Code files or listings; - is standard input")
        ->required();
    CLI::Option* const listing = command
                                     .add_option("--listing", arguments->listing,
                                                 "A listing of the code, whose lines are shown")
                                     ->option_text("LISTING");
    command
        .add_option("--script", arguments->script,
                    "The script of the code; by itself the one beside it")
        ->option_text("SCRIPT")
        ->excludes(listing);
    AddChoiceOption(command, "--format", arguments->report.format, formats, "FORMAT",
                    "How it is shown: human, gcc or json");
    command.add_flag("--werror", arguments->isWarningError, "Warnings are errors");
    command.add_flag("--quiet", arguments->report.isQuiet, "No summary");
    AddColorOption(command, arguments->color);
    return [arguments] { return RunVerify(*arguments); };
}
