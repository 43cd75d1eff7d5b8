// yxst explain [ID | TEXT]: what the manual says about a message.

#include "explain/markdown.h"
#include "explain/search.h"
#include "options.h"
#include "subcommands.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace {

constexpr int USUAL_WIDTH = 80;
constexpr int LEAST_WIDTH = 20;

const QString FRAME_NOTE =
    QStringLiteral("Statements alone stand in this script, in place of its comment:");

struct Arguments {
    std::vector<std::string> words;
    ColorWish color = ColorWish::Auto;
};

// The width of the terminal that standard output is, else the usual one.
int TextWidth() {
    winsize size{};
    const bool isKnown = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isKnown ? std::max<int>(size.ws_col, LEAST_WIDTH) : USUAL_WIDTH;
}

QString ListedIds(const Entry& entry) {
    return QStringLiteral("[%1]\n").arg(entry.ids.join(QStringLiteral(", ")));
}

QStringList WithFrame(const Entry& entry) {
    if (entry.frame.isEmpty()) {
        return entry.body;
    }
    const QString fence = QStringLiteral("```");
    return entry.body + QStringList{FRAME_NOTE, fence} + entry.frame + QStringList{fence};
}

void PrintEntry(const Entry& entry, TextForm form) {
    Print(BoldText(entry.title, form) + ListedIds(entry) + '\n');
    Print(PlainText(WithFrame(entry), form));
}

void PrintEntries(const std::vector<Entry>& entries, TextForm form) {
    QString border;
    for (const Entry& entry : entries) {
        Print(border);
        PrintEntry(entry, form);
        border = '\n' + QString(form.width, '-') + QStringLiteral("\n\n");
    }
}

// Each identifier once, in the order of the pages, with the headings of its entries below it.
void PrintList(const std::vector<Entry>& entries, TextForm form) {
    QStringList ids;
    for (const Entry& entry : entries) {
        ids += entry.ids;
    }
    ids.removeDuplicates();
    for (const QString& id : ids) {
        Print(BoldText(id, form));
        for (const Entry& entry : entries) {
            Print(entry.ids.contains(id) ? "    " + TitleOf(entry) + '\n' : QString());
        }
    }
}

void ComplainOf(const QString& question, const QStringList& nearest) {
    const QString way = nearest.isEmpty()
                            ? QStringLiteral("\"yxst explain\" lists what there is")
                            : QStringLiteral("near it: ") + nearest.join(QStringLiteral(", "));
    Complain(QStringLiteral("nothing is known about \"%1\"; %2").arg(question, way));
}

QString Joined(const std::vector<std::string>& words) {
    QStringList texts;
    for (const std::string& word : words) {
        texts.append(QString::fromStdString(word));
    }
    return texts.join(' ');
}

Status Answer(const std::vector<Entry>& entries, const QString& question, TextForm form) {
    const std::vector<Entry> found = FindEntries(entries, question);
    if (found.empty()) {
        ComplainOf(question, NearestIds(entries, question));
        return STATUS_FAILED;
    }
    PrintEntries(found, form);
    return STATUS_FINE;
}

Status RunExplain(const Arguments& arguments) {
    const TextForm form{TextWidth(), HasColors(arguments.color, STDOUT_FILENO)};
    const std::vector<Entry> entries = EntriesOfManual();
    if (!arguments.words.empty()) {
        return Answer(entries, Joined(arguments.words), form);
    }
    PrintList(entries, form);
    return STATUS_FINE;
}

}  // namespace

Runner DeclareExplain(CLI::App& command) {
    const auto arguments = std::make_shared<Arguments>();
    command
        .add_option("MESSAGE", arguments->words,
                    "The identifier, the text or a part of it; none lists all messages")
        ->option_text(" ");
    AddColorOption(command, arguments->color);
    return [arguments] { return RunExplain(*arguments); };
}
