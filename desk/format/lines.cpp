#include "format/lines.h"

#include <algorithm>

namespace {

constexpr int TAB = 4;       // comments stand at multiples of it
constexpr int GAP = 2;       // the least number of blanks before them
constexpr int WIDEST = 120;  // what goes beyond stands for itself

using Group = std::vector<LayoutLine*>;

QString Blanks(int count) {
    return QString(std::max(count, 0), u' ');
}

// ---------------------------------------------------------------------------------------------
// Colons
// ---------------------------------------------------------------------------------------------

bool HasColumn(const LayoutLine& line) {
    return line.colon != NONE && line.colon <= WIDEST;
}

// Lines that go on move with the line that they go on from.
void AlignColons(LayoutLines::iterator first, LayoutLines::iterator last) {
    int width = 0;
    for (auto line = first; line != last; ++line) {
        width = HasColumn(*line) ? std::max(width, line->colon) : width;
    }
    int shift = 0;
    for (auto line = first; line != last; ++line) {
        if (line->isContinuation) {
            line->indent += shift;
            continue;
        }
        shift = HasColumn(*line) ? width - line->colon : 0;
        if (shift > 0) {
            line->text.insert(line->colon, Blanks(shift));
        }
    }
}

// Whether the line belongs to the declarations above it: constants stand among constants.
bool GoesOn(const LayoutLine& line, const LayoutLine& first) {
    const bool isAmong = line.isComment || line.isContinuation ||
                         (line.colon != NONE && line.isConstant == first.isConstant);
    return isAmong && line.kind == LineKind::Declaration && !line.isBlankBefore;
}

void AlignAllColons(LayoutLines& lines) {
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
        const int end = line->end();
        column = end <= WIDEST ? std::max(column, RoundedUp(end + GAP)) : column;
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

void AppendLine(QString& text, const LayoutLine& line) {
    if (line.isBlankBefore) {
        text += u'\n';
    }
    text += Blanks(line.indent);
    text += line.text;
    if (!line.comment.isEmpty()) {
        text += Blanks(std::max(line.commentColumn - line.end(), GAP));
        text += line.comment;
    }
    text += u'\n';
}

}  // namespace

void Align(LayoutLines& lines) {
    AlignAllColons(lines);
    CommentGroups groups;
    for (LayoutLine& line : lines) {
        groups.take(line);
    }
    groups.end();
}

QString TextOf(const LayoutLines& lines) {
    QString text;
    for (const LayoutLine& line : lines) {
        AppendLine(text, line);
    }
    return text;
}
