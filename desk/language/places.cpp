#include "language/places.h"

#include "qyx_scanner.h"

#include <algorithm>

namespace {

// One that is left open goes to the end of the script.
bool IsIn(const Source& source, Span comment, int offset) {
    const bool isLine = source.text().midRef(comment.begin, 2) == QLatin1String("//");
    const bool isOpen = comment.isEmpty();
    return comment.begin + 1 < offset &&
           (offset < comment.end || (offset == comment.end && isLine) || isOpen);
}

bool IsInComment(const Model& model, int offset) {
    const std::vector<CommentFact>& comments = model.facts.comments;
    return std::any_of(comments.begin(), comments.end(), [&](const CommentFact& comment) {
        return IsIn(model.source, comment.span, offset);
    });
}

// The end of the last token or comment that ends at the offset or before.
int EndOfReadBefore(const Facts& facts, int offset) {
    int end = 0;
    for (const TokenFact& token : facts.tokens) {
        end = token.span.end <= offset ? std::max(end, token.span.end) : end;
    }
    for (const CommentFact& comment : facts.comments) {
        end = comment.span.end <= offset ? std::max(end, comment.span.end) : end;
    }
    return end;
}

// One that has no end on its line is no token.
bool IsInString(const Model& model, int offset) {
    const auto isAround = [offset](const TokenFact& token) {
        return token.code == TOKEN_STRING && token.span.begin < offset && offset < token.span.end;
    };
    const std::vector<TokenFact>& tokens = model.facts.tokens;
    if (std::any_of(tokens.begin(), tokens.end(), isAround)) {
        return true;
    }
    const QStringView before = model.source.text({EndOfReadBefore(model.facts, offset), offset});
    const qsizetype quote = before.lastIndexOf(u'\'');
    return quote >= 0 && !before.mid(quote).contains(u'\n');
}

bool IsOfWord(QChar character) {
    return IsAlphaOrDigitR(character);
}

}  // namespace

PlaceKind PlaceKindAt(const Model& model, int offset) {
    if (IsInComment(model, offset)) {
        return PlaceKind::Comment;
    }
    return IsInString(model, offset) ? PlaceKind::String : PlaceKind::Code;
}

Span WordAt(const Source& source, int offset) {
    const QString& text = source.text();
    Span word = {offset, offset};
    while (word.begin > 0 && IsOfWord(text[word.begin - 1])) {
        --word.begin;
    }
    while (word.end < text.size() && IsOfWord(text[word.end])) {
        ++word.end;
    }
    return word;
}
