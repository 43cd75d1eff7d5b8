#include "format/line_edits.h"

#include <algorithm>

namespace {

bool IsInk(QChar character) {
    return !QStringView(u" \t\r\n;").contains(character);
}

bool IsBlank(QStringView line) {
    return std::none_of(line.begin(), line.end(), IsInk);
}

// Goes through both texts, and collects what differs.
class Comparison {
public:
    Comparison(const TextLines& before, const TextLines& after)
        : before_(before), after_(after) {}

    std::vector<LineChange> changes() {
        while (hasBefore() || hasAfter()) {
            if (isSame()) {
                endChange();
                ++at_.begin;
                ++at_.end;
                from_ = at_;
            } else {
                pass();
            }
        }
        endChange();
        return std::move(changes_);
    }

private:
    const TextLines& before_;
    const TextLines& after_;
    Span at_;    // the lines that are next, of either text
    Span from_;  // where what differs begins in either
    std::vector<LineChange> changes_;

    bool hasBefore() const { return at_.begin < before_.count(); }
    bool hasAfter() const { return at_.end < after_.count(); }

    // How far the first text is ahead.
    int lead() const { return before_.inkBefore(at_.begin) - after_.inkBefore(at_.end); }

    bool isSame() const {
        return hasBefore() && hasAfter() && lead() == 0 &&
               before_.at(at_.begin) == after_.at(at_.end);
    }

    // Passes the line that is behind the other; of two lines side by side that without text.
    void pass() {
        const bool isOneLeft = !hasBefore() || !hasAfter();
        const int ahead = isOneLeft ? (hasBefore() ? -1 : 1) : lead();
        const bool isBeforeBlank = ahead == 0 && IsBlank(before_.at(at_.begin));
        const bool isAfterBlank = ahead == 0 && IsBlank(after_.at(at_.end));
        const bool isTogether = isBeforeBlank == isAfterBlank;
        at_.begin += ahead < 0 || (ahead == 0 && (isTogether || isBeforeBlank)) ? 1 : 0;
        at_.end += ahead > 0 || (ahead == 0 && (isTogether || isAfterBlank)) ? 1 : 0;
    }

    void endChange() {
        if (from_.begin != at_.begin || from_.end != at_.end) {
            changes_.push_back({{from_.begin, at_.begin}, {from_.end, at_.end}});
        }
    }
};

}  // namespace

TextLines::TextLines(const QString& text) : text_(text) {
    int ink = 0;
    for (int begin = 0; begin < text.size();) {
        lines_.push_back({begin, ink});
        const int feed = text.indexOf(u'\n', begin);
        const int end = feed < 0 ? text.size() : feed + 1;
        ink += static_cast<int>(std::count_if(text.begin() + begin, text.begin() + end, IsInk));
        begin = end;
    }
}

Span TextLines::offsets(Span lines) const {
    const auto beginOf = [this](int line) {
        return line < count() ? lines_[static_cast<std::size_t>(line)].begin : text_.size();
    };
    return {beginOf(lines.begin), beginOf(lines.end)};
}

QStringView TextLines::text(Span lines) const {
    const Span span = offsets(lines);
    return QStringView(text_).mid(span.begin, span.length());
}

std::vector<LineChange> ChangesBetween(const TextLines& before, const TextLines& after) {
    return Comparison(before, after).changes();
}

std::vector<Edit> EditsBetween(const QString& before, const QString& after) {
    const TextLines linesBefore(before);
    const TextLines linesAfter(after);
    std::vector<Edit> edits;
    for (const LineChange& change : ChangesBetween(linesBefore, linesAfter)) {
        edits.push_back(
            {linesBefore.offsets(change.before), linesAfter.text(change.after).toString()});
    }
    return edits;
}
