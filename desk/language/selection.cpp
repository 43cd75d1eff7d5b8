#include "language/selection.h"

#include "check/tokens.h"
#include "language/blocks.h"
#include "language/places.h"

#include <algorithm>

namespace {

bool Holds(Span outer, Span inner) {
    return outer.begin <= inner.begin && outer.end >= inner.end;
}

// The one that the offset lies in or begins, else the one that ends there.
template <typename Record>
Span PieceAt(const std::vector<Record>& records, int offset) {
    Span found = {offset, offset};
    for (const Record& record : records) {
        const bool isIn = record.span.begin <= offset && offset < record.span.end;
        if (isIn || (record.span.end == offset && found.isEmpty())) {
            found = record.span;
        }
    }
    return found;
}

// A word comes before a sign that begins where it ends, a token before a comment.
Span TokenOrCommentAt(const Model& model, int offset) {
    const Span word = WordAt(model.source, offset);
    const Span comment = PieceAt(model.facts.comments, offset);
    const bool isInComment = comment.begin < offset && offset < comment.end;
    const Span token = PieceAt(model.facts.tokens, word.isEmpty() ? offset : word.begin);
    return isInComment || token.isEmpty() ? comment : token;
}

// Parentheses with what is between them, and with the name before them.
void AddParentheses(const Model& model, std::vector<Span>& spans) {
    const Tokens tokens(model.source, model.facts);
    std::vector<int> open;
    for (int index = 0; index < tokens.count(); ++index) {
        if (tokens.is(index, TOKEN_LEFT_PARENTHESIS)) {
            open.push_back(index);
        } else if (tokens.is(index, TOKEN_RIGHT_PARENTHESIS) && !open.empty()) {
            const int begin = open.back();
            open.pop_back();
            spans.push_back({tokens.span(begin).end, tokens.span(index).begin});
            spans.push_back({tokens.span(begin).begin, tokens.span(index).end});
            const int name = tokens.is(begin - 1, TOKEN_IDENTIFIER) ? begin - 1 : begin;
            spans.push_back({tokens.span(name).begin, tokens.span(index).end});
        }
    }
}

template <typename Record>
void AddSpans(const std::vector<Record>& records, std::vector<Span>& spans) {
    for (const Record& record : records) {
        spans.push_back(record.span);
    }
}

void AddOperations(const Facts& facts, std::vector<Span>& spans) {
    for (const OperationFact& operation : facts.operations) {
        spans.push_back(operation.left);
        spans.push_back(operation.right);
        spans.push_back(operation.span());
    }
}

std::vector<Span> AllSpans(const Model& model) {
    std::vector<Span> spans = {{0, model.source.size()}};
    AddParentheses(model, spans);
    AddOperations(model.facts, spans);
    AddSpans(model.facts.statements, spans);
    AddSpans(model.facts.declarations, spans);
    AddSpans(model.facts.units, spans);
    AddSpans(BlocksOf(model), spans);
    return spans;
}

}  // namespace

std::vector<Span> SelectionsAt(const Model& model, int offset) {
    std::vector<Span> all = AllSpans(model);
    std::stable_sort(all.begin(), all.end(),
                     [](Span a, Span b) { return a.length() < b.length(); });
    std::vector<Span> chain = {TokenOrCommentAt(model, offset)};
    for (const Span& each : all) {
        if (Holds(each, chain.back()) && each.length() > chain.back().length()) {
            chain.push_back(each);
        }
    }
    return chain;
}
