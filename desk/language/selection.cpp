#include "language/selection.h"

#include "check/tokens.h"
#include "language/blocks.h"

#include "qyx_scanner.h"

#include <algorithm>

namespace {

bool Holds(Span outer, Span inner) {
    return outer.begin <= inner.begin && outer.end >= inner.end;
}

// The one that the offset lies in or begins, and the one that ends there; empty ones if none do.
struct Neighbours {
    Span here;
    Span before;
};

template <typename Record>
Neighbours NeighboursAt(const std::vector<Record>& records, int offset) {
    Neighbours found = {{offset, offset}, {offset, offset}};
    for (const Record& record : records) {
        const bool isHere = record.span.begin <= offset && offset < record.span.end;
        found.here = isHere ? record.span : found.here;
        found.before = record.span.end == offset ? record.span : found.before;
    }
    return found;
}

bool IsWord(const Source& source, Span token) {
    return !token.isEmpty() && IsAlphaOrDigitR(source.text().at(token.begin));
}

// A word comes before a sign that begins where it ends, a token before a comment.
Span TokenOrCommentAt(const Model& model, int offset) {
    const Neighbours comments = NeighboursAt(model.facts.comments, offset);
    const Neighbours tokens = NeighboursAt(model.facts.tokens, offset);
    if (comments.here.begin < offset && !comments.here.isEmpty()) {
        return comments.here;
    }
    const bool isBefore = tokens.here.isEmpty() || (IsWord(model.source, tokens.before) &&
                                                    !IsWord(model.source, tokens.here));
    const Span token = isBefore ? tokens.before : tokens.here;
    const Span comment = comments.here.isEmpty() ? comments.before : comments.here;
    return token.isEmpty() ? comment : token;
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
