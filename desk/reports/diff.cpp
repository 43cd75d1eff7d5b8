#include "reports/diff.h"

#include "format/line_edits.h"
#include "reports/terminal_text.h"

#include <QStringList>

#include <algorithm>

namespace {

constexpr int CONTEXT = 3;  // lines before and after a change

constexpr const char* BOLD = "1";
constexpr const char* CYAN = "36";
constexpr const char* RED = "31";
constexpr const char* GREEN = "32";

class Diff {
public:
    Diff(const QString& before, const QString& after, bool hasColors)
        : before_(before), after_(after), hasColors_(hasColors) {}

    QString text(const QString& name) {
        const std::vector<LineChange> changes = ChangesBetween(before_, after_);
        if (!changes.empty()) {
            heading(QStringLiteral("--- ") + name);
            heading(QStringLiteral("+++ ") + name);
        }
        for (auto first = changes.begin(); first != changes.end();) {
            auto last = std::next(first);
            while (last != changes.end() && areNear(*std::prev(last), *last)) {
                ++last;
            }
            hunk(first, last);
            first = last;
        }
        return text_;
    }

private:
    using Change = std::vector<LineChange>::const_iterator;

    TextLines before_;
    TextLines after_;
    bool hasColors_;
    QString text_;

    static bool areNear(const LineChange& one, const LineChange& next) {
        return next.before.begin - one.before.end <= 2 * CONTEXT;
    }

    void paint(const char* color, const QString& text) {
        text_ += hasColors_ ? QStringLiteral("\033[%1m%2\033[0m").arg(QLatin1String(color), text)
                            : text;
    }

    void heading(const QString& text) {
        paint(BOLD, text);
        text_ += u'\n';
    }

    // The line before an empty range is what such a head names.
    static QString rangeText(int begin, int count) {
        return QStringLiteral("%1,%2").arg(count == 0 ? begin : begin + 1).arg(count);
    }

    void hunk(Change first, Change last) {
        const LineChange& end = *std::prev(last);
        const int ahead = std::min(CONTEXT, first->before.begin);
        const int behind = std::min(CONTEXT, before_.count() - end.before.end);
        const int begin = first->before.begin - ahead;
        const int beginAfter = first->after.begin - ahead;
        paint(CYAN, QStringLiteral("@@ -%1 +%2 @@")
                        .arg(rangeText(begin, end.before.end + behind - begin),
                             rangeText(beginAfter, end.after.end + behind - beginAfter)));
        text_ += u'\n';
        int from = begin;
        for (auto change = first; change != last; ++change) {
            lines(u' ', nullptr, before_, {from, change->before.begin});
            lines(u'-', RED, before_, change->before);
            lines(u'+', GREEN, after_, change->after);
            from = change->before.end;
        }
        lines(u' ', nullptr, before_, {from, end.before.end + behind});
    }

    void lines(QChar sign, const char* color, const TextLines& text, Span lines) {
        for (int number = lines.begin; number < lines.end; ++number) {
            line(sign, color, text.at(number));
        }
    }

    void line(QChar sign, const char* color, QStringView line) {
        const int end = lengthOfEnd(line);
        paint(color, sign + shownText(line.chopped(end)), color != nullptr);
        text_ += end == 0 ? QStringLiteral("\n\\ No newline at end of file\n")
                          : line.right(end).toString();
    }

    static int lengthOfEnd(QStringView line) {
        return line.endsWith(QLatin1String("\r\n")) ? 2 : line.endsWith(u'\n') ? 1 : 0;
    }

    void paint(const char* color, const QString& text, bool isPainted) {
        if (isPainted) {
            paint(color, text);
        } else {
            text_ += text;
        }
    }

    // Tabs are layout too.
    QString shownText(QStringView line) const {
        if (!hasColors_) {
            return line.toString();
        }
        QStringList parts;
        for (const QStringView part : line.split(u'\t')) {
            parts.append(Harmless(part));
        }
        return parts.join(u'\t');
    }
};

}  // namespace

QString UnifiedDiff(const QString& name, const QString& before, const QString& after,
                    bool hasColors) {
    return Diff(before, after, hasColors).text(name);
}
