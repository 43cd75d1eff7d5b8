#include "facts/facts.h"

#include <algorithm>

Span TokenAt(const Facts& facts, int offset) {
    const auto found =
        std::lower_bound(facts.tokens.begin(), facts.tokens.end(), offset,
                         [](const TokenFact& token, int at) { return token.span.begin < at; });
    const bool isThere = found != facts.tokens.end() && found->span.begin == offset;
    return isThere ? found->span : Span{offset, offset};
}

Span SpanOfMessage(const Facts& facts, const MessageFact& message) {
    return message.isError ? facts.error.token : TokenAt(facts, message.place);
}
