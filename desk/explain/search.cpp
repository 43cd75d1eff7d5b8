#include "explain/search.h"

#include "explain/distance.h"

#include <QRegularExpression>

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

// ---------------------------------------------------------------------------------------------
// Questions
// ---------------------------------------------------------------------------------------------

// What is asked for, as an identifier and as the text of a message; never empty.
struct Question {
    QString id;
    QString text;
};

// Quotes do not count: a shell takes those away that are not quoted themselves.
QString WithoutQuotes(QString text) {
    return text.remove('"').remove('\'');
}

// "path:6:12: error: text [id]" gives the identifier itself.
QString AskedId(const QString& line) {
    static const QRegularExpression atEnd(QStringLiteral(R"(\[([\w-]+)\]$)"));
    const QRegularExpressionMatch match = atEnd.match(line);
    const QString id = match.hasMatch() ? match.captured(1) : line;
    return id.toLower().replace('_', '-');
}

// The message without what stands before and after it in a line of output.
QString AskedText(QString line) {
    static const QRegularExpression front(
        QStringLiteral("^(?:.*?(?:error|warning): line \\d+, column \\d+: |"
                       ".*?:\\d+:\\d+: (?:error|warning): |;)"),
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression back(QStringLiteral(" \\[[\\w-]+\\]$"));
    return WithoutQuotes(line.remove(front).remove(back).simplified());
}

Question QuestionOf(const QString& words) {
    const QString line = words.trimmed().section('\n', 0, 0);
    return {AskedId(line), AskedText(line)};
}

// ---------------------------------------------------------------------------------------------
// Headings as patterns
//
// A pattern is what stands around that which varies, from the begin of a text to its end.
// ---------------------------------------------------------------------------------------------

QStringList PatternOf(const QString& title) {
    static const QRegularExpression variable(QStringLiteral(R"(\b[B-Z]\b)"));
    return WithoutQuotes(title).split(variable);
}

int FixedLength(const QStringList& pattern) {
    int length = 0;
    for (const QString& piece : pattern) {
        length += piece.trimmed().size();
    }
    return length;
}

// Whether the text begins and ends with the outer pieces and has the others in between, in order.
bool Fits(const QStringList& pattern, const QString& text) {
    const QString& first = pattern.front();
    const QString& last = pattern.back();
    if (pattern.size() == 1) {
        return text.compare(first, Qt::CaseInsensitive) == 0;
    }
    int at = first.size();
    const int end = text.size() - last.size();
    for (int piece = 1; piece + 1 < pattern.size() && at >= 0; ++piece) {
        const int found = text.indexOf(pattern[piece], at, Qt::CaseInsensitive);
        at = found < 0 ? text.size() + 1 : found + pattern[piece].size();
    }
    return at <= end && text.startsWith(first, Qt::CaseInsensitive) &&
           text.endsWith(last, Qt::CaseInsensitive);
}

// ---------------------------------------------------------------------------------------------
// How well an entry fits
// ---------------------------------------------------------------------------------------------

constexpr int NOT_AT_ALL = 0;

using Score = int (*)(const Entry& entry, const Question& question);

int ById(const Entry& entry, const Question& question) {
    return entry.ids.contains(question.id) ? 1 : NOT_AT_ALL;
}

int ScoreOf(const QString& title, const QString& text) {
    const QStringList pattern = PatternOf(title);
    return Fits(pattern, text) ? FixedLength(pattern) : NOT_AT_ALL;
}

// Of several headings that fit, the one that says most is right: `"X" or "Y" expected` is.
int ByText(const Entry& entry, const Question& question) {
    return ScoreOf(TitleOf(entry), question.text);
}

// Some of the words that follow each other in the heading; what varies may fit half of the
// question at most.
int ByWords(const Entry& entry, const Question& question) {
    const QStringList words = TitleOf(entry).split(' ');
    int best = NOT_AT_ALL;
    for (int begin = 0; begin < words.size(); ++begin) {
        for (int count = 1; begin + count <= words.size(); ++count) {
            const QString part = words.mid(begin, count).join(' ');
            best = std::max(best, ScoreOf(part, question.text));
        }
    }
    return 2 * best < question.text.size() ? NOT_AT_ALL : best;
}

int ByPiece(const Entry& entry, const Question& question) {
    const QString title = WithoutQuotes(TitleOf(entry));
    return title.contains(question.text, Qt::CaseInsensitive) ? 1 : NOT_AT_ALL;
}

// What comes first counts, if it finds anything: a part of a text is that of a message before it
// is that of the title of a reason.
struct Search {
    Score score;
    bool amongMessages;
};
constexpr Search SEARCHES[] = {
    {ById, true},    {ById, false},   {ByText, true},   {ByText, false},
    {ByWords, true}, {ByPiece, true}, {ByWords, false}, {ByPiece, false},
};

std::vector<Entry> BestOf(const std::vector<Entry>& entries, const Question& question,
                          const Search& search) {
    std::vector<Entry> found;
    int best = NOT_AT_ALL + 1;
    for (const Entry& entry : entries) {
        const bool isAmong = entry.isMessage == search.amongMessages;
        const int current = isAmong ? search.score(entry, question) : NOT_AT_ALL;
        if (current > best) {
            found.clear();
            best = current;
        }
        if (current == best) {
            found.push_back(entry);
        }
    }
    return found;
}

// ---------------------------------------------------------------------------------------------
// Identifiers that are near
// ---------------------------------------------------------------------------------------------

constexpr int MOST_SUGGESTIONS = 3;
constexpr int FAR = 1000;

// FAR unless two characters of three are right.
int DistanceOf(const QString& id, const QString& asked) {
    if (id.contains(asked)) {
        return 0;
    }
    const int limit = id.size() / 3;
    if (std::abs(id.size() - asked.size()) > limit) {
        return FAR;
    }
    const int distance = EditDistance(id, asked);
    return distance > limit ? FAR : distance;
}

QString AsId(const QString& text) {
    static const QRegularExpression others(QStringLiteral("[^a-z0-9]+"));
    return text.toLower().split(others, Qt::SkipEmptyParts).join('-');
}

}  // namespace

QString TitleOf(const Entry& entry) {
    return QString(entry.title).remove('`');
}

std::vector<Entry> FindEntries(const std::vector<Entry>& entries, const QString& question) {
    const Question asked = QuestionOf(question);
    std::vector<Entry> found;
    for (const Search& search : SEARCHES) {
        if (found.empty() && !asked.text.isEmpty()) {
            found = BestOf(entries, asked, search);
        }
    }
    // A line of yxst check has both: of the entries of its identifier one has its text.
    const std::vector<Entry> withText = BestOf(found, asked, {ByText, true});
    return withText.empty() ? found : withText;
}

QStringList NearestIds(const std::vector<Entry>& entries, const QString& question) {
    const QString asked = AsId(question);
    if (asked.isEmpty()) {
        return {};
    }
    std::vector<std::pair<int, QString>> near;
    for (const Entry& entry : entries) {
        for (const QString& id : entry.ids) {
            near.emplace_back(DistanceOf(id, asked), id);
        }
    }
    std::sort(near.begin(), near.end());
    near.erase(std::unique(near.begin(), near.end()), near.end());
    QStringList ids;
    for (const auto& [distance, id] : near) {
        if (distance < FAR && ids.size() < MOST_SUGGESTIONS) {
            ids.append(id);
        }
    }
    return ids;
}
