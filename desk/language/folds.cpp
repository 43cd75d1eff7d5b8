#include "language/folds.h"

#include "language/blocks.h"

#include <algorithm>

namespace {

bool IsOverLines(const Source& source, Span span) {
    return source.text(span).contains(u'\n');
}

// The line feed before an offset, if blanks alone stand between; else the offset.
int EndOfLineBefore(const Source& source, int offset) {
    int before = offset;
    while (before > 0 && source.text().at(before - 1).isSpace()) {
        --before;
        if (source.text().at(before) == u'\n') {
            return before;
        }
    }
    return offset;
}

bool IsFirstOnLine(const Source& source, int offset) {
    return EndOfLineBefore(source, offset) != offset ||
           source.text({0, offset}).trimmed().isEmpty();
}

void AddFold(const Source& source, Span span, bool isComment, std::vector<Fold>& folds) {
    const Span visible = {span.begin, span.end};
    if (IsOverLines(source, visible)) {
        folds.push_back({visible, isComment});
    }
}

// The line of the word that ends it stays in sight.
void AddBlocks(const Model& model, std::vector<Fold>& folds) {
    for (const Block& block : BlocksOf(model)) {
        const int end = EndOfLineBefore(model.source, block.end);
        AddFold(model.source, {block.span.begin, end}, false, folds);
    }
}

bool IsLineComment(const Source& source, const CommentFact& comment) {
    return source.text(comment.span).startsWith(u"//") &&
           IsFirstOnLine(source, comment.span.begin);
}

// Whether a comment stands alone on the line after another.
bool IsNextLine(const Source& source, const CommentFact& comment, const CommentFact& next) {
    const QStringView between = source.text({comment.span.end, next.span.begin});
    return IsLineComment(source, next) && between.trimmed().isEmpty() &&
           between.count(u'\n') == 1;
}

void AddComments(const Model& model, std::vector<Fold>& folds) {
    const Source& source = model.source;
    const std::vector<CommentFact>& comments = model.facts.comments;
    for (auto first = comments.begin(); first != comments.end();) {
        auto last = first;
        while (IsLineComment(source, *first) && std::next(last) != comments.end() &&
               IsNextLine(source, *last, *std::next(last))) {
            ++last;
        }
        AddFold(source, {first->span.begin, last->span.end}, true, folds);
        first = std::next(last);
    }
}

}  // namespace

std::vector<Fold> FoldsOf(const Model& model) {
    std::vector<Fold> folds;
    AddBlocks(model, folds);
    AddComments(model, folds);
    return folds;
}
