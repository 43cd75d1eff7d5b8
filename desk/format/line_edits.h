// How two layouts of a script differ, by lines.
#pragma once

#include "check/edits.h"

#include <QString>

#include <vector>

// A text divided into lines, each with its line feed.
class TextLines {
public:
    explicit TextLines(const QString& text);

    int count() const { return static_cast<int>(lines_.size()); }
    QStringView at(int line) const { return text({line, line + 1}); }
    // Several lines: the first and the one after the last.
    QStringView text(Span lines) const;
    Span offsets(Span lines) const;
    // How many characters that count stand before a line: white space and semicolons do not.
    int inkBefore(int line) const { return lines_[static_cast<std::size_t>(line)].inkBefore; }

private:
    struct Line {
        int begin;
        int inkBefore;
    };

    const QString& text_;
    std::vector<Line> lines_;
};

// Lines of one text and those of the other that stand in their place, first and one after the
// last; either may be empty.
struct LineChange {
    Span before;
    Span after;
};

// All that differs, in order. Lines are taken for the same if as many characters stand before
// them. So it takes linear time, and is the least for texts that differ in their layout alone;
// for any others it is correct.
std::vector<LineChange> ChangesBetween(const TextLines& before, const TextLines& after);

// What leads from one text to the other, an edit for each group of lines that differ.
std::vector<Edit> EditsBetween(const QString& before, const QString& after);
