#include "format/lines.h"

#include <algorithm>
#include <numeric>

namespace {

constexpr int TAB = 4;       // comments stand at multiples of it
constexpr int GAP = 2;       // the least number of blanks before them
constexpr int WIDEST = 120;  // what goes beyond stands for itself

using LineIterator = std::vector<LayoutLine>::iterator;
using Group = std::vector<LayoutLine*>;

void AppendBlanks(QString& text, int count) {
    text.resize(text.size() + std::max(count, 0), u' ');
}

// ---------------------------------------------------------------------------------------------
// Colons
// ---------------------------------------------------------------------------------------------

bool HasColumn(const LayoutLine& line) {
    return line.colon != NONE && line.colon <= WIDEST;
}

// Lines that go on move with the line that they go on from.
void AlignColons(LineIterator first, LineIterator last) {
    int width = 0;
    for (auto line = first; line != last; ++line) {
        width = HasColumn(*line) ? std::max(width, line->colon) : width;
    }
    int shift = 0;
    for (auto line = first; line != last; ++line) {
        if (line->isContinuation) {
            line->move(shift);
            continue;
        }
        shift = HasColumn(*line) ? width - line->colon : 0;
        line->widenGap(shift);
    }
}

// Whether the line belongs to the declarations above it: constants stand among constants.
bool GoesOn(const LayoutLine& line, const LayoutLine& first) {
    const bool isAmong = line.isComment || line.isContinuation ||
                         (line.colon != NONE && line.isConstant == first.isConstant);
    return isAmong && line.kind == LineKind::Declaration && !line.isBlankBefore;
}

void AlignAllColons(std::vector<LayoutLine>& lines) {
    for (auto first = lines.begin(); first != lines.end();) {
        auto last = std::next(first);
        while (first->colon != NONE && last != lines.end() && GoesOn(*last, *first)) {
            ++last;
        }
        AlignColons(first, last);
        first = last;
    }
}

// ---------------------------------------------------------------------------------------------
// Comments at the ends of lines
// ---------------------------------------------------------------------------------------------

int RoundedUp(int column) {
    return (column + TAB - 1) / TAB * TAB;
}

void AlignComments(const Group& group, int least) {
    int column = least;
    for (const LayoutLine* line : group) {
        const bool isAmong = line->end <= WIDEST;
        column = isAmong ? std::max(column, RoundedUp(line->end + GAP)) : column;
    }
    for (LayoutLine* line : group) {
        line->commentColumn = column;
    }
}

// Those of declarations stand below each other as far as no empty line comes between, those of
// statements on lines that follow each other.
class CommentGroups {
public:
    void take(LayoutLine& line) {
        if (line.isBlankBefore || line.kind != kind_ ||
            (isStatement() && line.comment.isEmpty())) {
            end();
        }
        kind_ = line.kind;
        const bool isAligned = isStatement() || kind_ == LineKind::Declaration;
        if (isAligned && !line.comment.isEmpty()) {
            group_.push_back(&line);
        }
    }

    void end() {
        AlignComments(group_, isStatement() ? 0 : LEAST_COMMENT_COLUMN);
        group_.clear();
    }

private:
    LineKind kind_ = LineKind::Structure;
    Group group_;

    bool isStatement() const { return kind_ == LineKind::Statement; }
};

// The text of a line, with the gap before its ":".
void AppendText(QString& text, QStringView line, int colon, int gap) {
    const int before = gap == 0 ? 0 : colon;
    text.append(line.data(), before);
    AppendBlanks(text, gap);
    text.append(line.data() + before, static_cast<int>(line.size()) - before);
}

void AppendLine(QString& text, const Layout& layout, const LayoutLine& line) {
    if (line.isBlankBefore) {
        text += u'\n';
    }
    AppendBlanks(text, line.indent);
    AppendText(text, QStringView(layout.text).mid(line.text.begin, line.text.length()),
               line.colon, line.gap);
    if (!line.comment.isEmpty()) {
        AppendBlanks(text, std::max(line.commentColumn - line.end, GAP));
        text += line.comment;
    }
    text += u'\n';
}

// About as much as the text of the layout takes.
int LengthOf(const Layout& layout) {
    return std::accumulate(layout.lines.begin(), layout.lines.end(), layout.text.size(),
                           [](int length, const LayoutLine& line) {
                               return length + line.indent + line.comment.size() + GAP;
                           });
}

}  // namespace

void Align(std::vector<LayoutLine>& lines) {
    AlignAllColons(lines);
    CommentGroups groups;
    for (LayoutLine& line : lines) {
        groups.take(line);
    }
    groups.end();
}

QString TextOf(const Layout& layout) {
    QString text;
    text.reserve(LengthOf(layout));
    for (const LayoutLine& line : layout.lines) {
        AppendLine(text, layout, line);
    }
    return text;
}
