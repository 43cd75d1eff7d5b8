#include "lints/case_ranges.h"

#include "lints/literals.h"

namespace {

// The token after a bound, which begins at a token.
int EndOfBound(const Subject& subject, int begin) {
    return begin + (subject.tokens.is(begin, TOKEN_MINUS) ? 2 : 1);
}

CaseRange RangeAt(const Subject& subject, int begin) {
    const int end = EndOfBound(subject, begin);
    const double low = SignedNumber(subject, begin, end)->value;
    const Span first = {subject.tokens.span(begin).begin, subject.tokens.span(end - 1).end};
    if (!subject.tokens.is(end, TOKEN_DOT_DOT)) {
        return {first, low, low};
    }
    const int endOfHigh = EndOfBound(subject, end + 1);
    return {{first.begin, subject.tokens.span(endOfHigh - 1).end},
            low,
            SignedNumber(subject, end + 1, endOfHigh)->value};
}

}  // namespace

// The CASE has items for each label, and some more for the last one of a branch after those of
// the branch.
std::map<int, std::vector<CaseRange>> RangesOfCases(const Subject& subject) {
    std::map<int, std::vector<CaseRange>> cases;
    for (const ItemFact& item : subject.facts.items) {
        if (item.statement == NONE || subject.statement(item.statement).kind != TOKEN_CASE) {
            continue;
        }
        std::vector<CaseRange>& ranges = cases[item.statement];
        const bool isNew = ranges.empty() || ranges.back().span.begin < item.place;
        const int token = subject.tokens.at(item.place);
        if (isNew && subject.tokens.isOneOf(token, {TOKEN_NUMBER, TOKEN_MINUS})) {
            ranges.push_back(RangeAt(subject, token));
        }
    }
    return cases;
}
