// yxst explain [ID | TEXT]: what the manual says about a message.

#include "explain/markdown.h"
#include "explain/search.h"
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
    ColorWish colors = ColorWish::Auto;
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
    const QString way = nearest.isEmpty() ? QStringLiteral("\"yxst explain\" lists what there is")
                                          : QStringLiteral("did you mean ") +
                                                nearest.join(QStringLiteral(" or "));
    Complain(QStringLiteral("nothing is known about \"%1\"; %2").arg(question, way));
}

Status RunExplain(const Arguments& arguments) {
    const TextForm form{TextWidth(), HasColors(arguments.colors, STDOUT_FILENO)};
    const std::vector<Entry> entries = EntriesOfManual();
    if (arguments.words.empty()) {
        PrintList(entries, form);
        return STATUS_FINE;
    }
    QStringList words;
    for (const std::string& word : arguments.words) {
        words.append(QString::fromStdString(word));
    }
    const QString question = words.join(' ');
    const std::vector<Entry> found = FindEntries(entries, question);
    if (found.empty()) {
        ComplainOf(question, NearestIds(entries, question));
        return STATUS_FAILED;
    }
    PrintEntries(found, form);
    return STATUS_FINE;
}

}  // namespace

Runner DeclareExplain(CLI::App& command) {
    const auto arguments = std::make_shared<Arguments>();
    command.add_option("MESSAGE", arguments->words,
                       "The identifier, the text or a part of it; none lists all messages");
    const std::map<std::string, ColorWish> wishes = {
        {"auto", ColorWish::Auto}, {"always", ColorWish::Always}, {"never", ColorWish::Never}};
    command.add_option("--color", arguments->colors, "auto, always or never")
        ->option_text("WHEN")
        ->transform(CLI::Transformer(wishes));
    return [arguments] { return RunExplain(*arguments); };
}
