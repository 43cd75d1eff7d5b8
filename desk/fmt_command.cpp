// yxst fmt PATH...: scripts in their layout.

#include "facts/catalogue.h"
#include "facts/input.h"
#include "format/format_files.h"
#include "options.h"
#include "reports/diff.h"
#include "reports/formats.h"
#include "reports/progress.h"
#include "reports/terminal_text.h"
#include "reports/whole_file.h"
#include "subcommands.h"

#include <QFileInfo>
#include <QThread>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

namespace {

struct FmtArguments {
    std::vector<std::string> paths;
    std::vector<std::string> suffixes = {"st"};
    std::string stdinName;
    FormatFilesOptions options = {QThread::idealThreadCount()};
    ColorWish color = ColorWish::Auto;
    bool isCheck = false;
    bool isDiff = false;
};

constexpr int MOST_INDENT = 8;

// ---------------------------------------------------------------------------------------------
// Writing
// ---------------------------------------------------------------------------------------------

// Gives the file the owner and the mode of another. Where it cannot have the owner, nobody gets
// the rights of that by running it.
void GiveBack(const QByteArray& name, const struct stat& before) {
    struct stat after = {};
    const bool isOwned = stat(name.constData(), &after) == 0 && after.st_uid == before.st_uid &&
                         after.st_gid == before.st_gid;
    const bool isGiven = isOwned || chown(name.constData(), before.st_uid, before.st_gid) == 0;
    chmod(name.constData(), before.st_mode & (isGiven ? ALLPERMS : ACCESSPERMS));
}

// Puts the bytes in the place of the file, whose mode, owner and symbolic links stay.
bool Replace(const QString& path, const QByteArray& bytes) {
    const QString own = QFileInfo(path).canonicalFilePath();
    struct stat before = {};
    const QByteArray name = QFile::encodeName(own);
    const bool isKnown = stat(name.constData(), &before) == 0;
    WholeFile file(own);
    file.write({bytes.constData(), static_cast<std::size_t>(bytes.size())});
    const bool isWritten = isKnown && file.finish();
    if (isWritten) {
        GiveBack(name, before);
    }
    return isWritten;
}

// Why it could not be: the new file is made in the folder of the old one.
QString WhyNotReplaced(const QString& path) {
    const QString folder = QFileInfo(QFileInfo(path).canonicalFilePath()).path();
    const QString reason = QStringLiteral("cannot be written");
    return QFileInfo(folder).isWritable()
               ? reason
               : reason + QStringLiteral(", because its folder %1 cannot be").arg(folder);
}

// ---------------------------------------------------------------------------------------------
// Files as they are done
// ---------------------------------------------------------------------------------------------

// With its byte order mark, which the conversion drops.
QString TextAsItIs(const QByteArray& bytes) {
    const QString text = QString::fromUtf8(bytes);
    return bytes.startsWith("\xEF\xBB\xBF") ? QChar(QChar::ByteOrderMark) + text : text;
}

class Formatter {
public:
    Formatter(const FmtArguments& arguments, int files)
        : arguments_(arguments),
          hasColors_(HasColors(arguments.color, STDOUT_FILENO)),
          progress_(files) {}

    void take(const FormattedFile& file) {
        progress_.hide();
        if (!file.failure.isEmpty()) {
            fail(file.source.name().isEmpty() ? file.path : file.source.name(), file.failure);
        } else {
            tellError(file);
            deliver(file);
        }
        progress_.show(++done_);
    }

    void fail(const QString& path, const QString& failure) {
        fail(path + QStringLiteral(": ") + failure);
    }

    void fail(const QString& failure) {
        Complain(failure);
        hasFailed_ = true;
    }

    Status end() {
        progress_.hide();
        return hasFailed_ ? STATUS_FAILED : isFine_ ? STATUS_FINE : STATUS_NOT_FINE;
    }

private:
    const FmtArguments& arguments_;
    bool hasColors_;
    Progress progress_;
    int done_ = 0;
    bool hasFailed_ = false;
    bool isFine_ = true;

    // An editor that names its text gets what could be formatted, and the message beside it.
    void tellError(const FormattedFile& file) {
        if (!file.error) {
            return;
        }
        const QString text = PlaceText(file.source, file.error->place) +
                             QStringLiteral(" error: ") + Harmless(file.error->text) +
                             QStringLiteral(" [") + IdOf(file.error->constant) +
                             QStringLiteral("]\n");
        std::fputs(text.toStdString().c_str(), stderr);
        isFine_ = isFine_ && file.result;
    }

    void deliver(const FormattedFile& file) {
        if (!file.result) {
            return;
        }
        const bool isChanged = *file.result != file.bytes;
        isFine_ = isFine_ && !(isChanged && arguments_.isCheck);
        if (arguments_.isDiff) {
            showDiff(file);
        } else if (arguments_.isCheck) {
            Print(isChanged ? file.source.name() + u'\n' : QString());
        } else if (file.path == QLatin1String(STANDARD_INPUT)) {
            Print({file.result->constData(), static_cast<std::size_t>(file.result->size())});
        } else if (isChanged && !Replace(file.path, *file.result)) {
            fail(file.path, WhyNotReplaced(file.path));
        }
    }

    void showDiff(const FormattedFile& file) const {
        Print(UnifiedDiff(file.source.name(), TextAsItIs(file.bytes), TextAsItIs(*file.result),
                          hasColors_));
    }
};

Status RunFmt(FmtArguments arguments) {
    QStringList paths = ListOf(arguments.paths);
    arguments.options.stdinName = TextOfArgument(arguments.stdinName);
    arguments.options.format.isBeforeError = !arguments.stdinName.empty();
    if (paths.isEmpty() && arguments.options.format.isBeforeError) {
        paths.append(QString::fromLatin1(STANDARD_INPUT));
    }
    const FoundFiles found = FindFiles(paths, ListOf(arguments.suffixes));
    Formatter formatter(arguments, found.files.size());
    for (const QString& failure : found.failures) {
        formatter.fail(failure);
    }
    FormatFiles(found.files, arguments.options,
                [&formatter](const FormattedFile& file) { formatter.take(file); });
    return formatter.end();
}

Status RunIfComplete(const FmtArguments& arguments) {
    const bool isStandardInput =
        arguments.paths.empty() || arguments.paths == std::vector<std::string>{STANDARD_INPUT};
    if (arguments.paths.empty() && arguments.stdinName.empty()) {
        Complain(QStringLiteral("no PATH is given; - is standard input"));
        return STATUS_FAILED;
    }
    if (!arguments.stdinName.empty() && !isStandardInput) {
        Complain(QStringLiteral("--stdin-name is for standard input alone"));
        return STATUS_FAILED;
    }
    return RunFmt(arguments);
}

}  // namespace

Runner DeclareFmt(CLI::App& command) {
    const auto arguments = std::make_shared<FmtArguments>();
    command.add_option("PATH", arguments->paths,
                       "Scripts, or folders of them; - is standard input");
    command.add_flag("--check", arguments->isCheck,
                     "Name the files that would change and write none");
    command.add_flag("--diff", arguments->isDiff, "Show what would change and write nothing");
    command
        .add_option(
            "--stdin-name", arguments->stdinName,
            "Standard input is the script of that name, as in an editor: format it as far "
            "as it has no error")
        ->option_text("NAME");
    command.add_option("--indent", arguments->options.format.indent, "Blanks for each level, 4")
        ->option_text("N")
        ->check(CLI::Range(1, MOST_INDENT));
    AddCountOption(command, "--jobs", arguments->options.jobs,
                   "Scripts formatted at the same time; as many as there are processors");
    command
        .add_option("--suffix", arguments->suffixes,
                    "Files in folders that are scripts, st; may be given several times")
        ->option_text("SUFFIX")
        ->allow_extra_args(false);
    AddColorOption(command, arguments->color);
    return [arguments] { return RunIfComplete(*arguments); };
}
