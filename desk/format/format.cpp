#include "format/format.h"

#include <algorithm>

FormatResult FormatScript(const Source& source, const Facts& facts,
                          const FormatOptions& options) {
    if (!facts.isCompiled() && !options.isBeforeError) {
        return {std::nullopt, facts.textOf(facts.messages.back().text).toString()};
    }
    return {Formatted(source, facts, options.indent), QString()};
}

// ---------------------------------------------------------------------------------------------
// The proof
// ---------------------------------------------------------------------------------------------

namespace {

bool HaveSameCode(const Facts& before, const Facts& after) {
    return std::equal(before.items.begin(), before.items.end(), after.items.begin(),
                      after.items.end(), [&](const ItemFact& one, const ItemFact& other) {
                          return before.codeOf(one.text) == after.codeOf(other.text);
                      });
}

// The text of the error, nothing if the script compiles.
QStringView ErrorOf(const Facts& facts) {
    return facts.isCompiled() ? QStringView() : facts.textOf(facts.messages.back().text);
}

// A token or a comment.
struct Mark {
    QStringView text;
    bool isComment;
};

// What a script holds, in order. Semicolons are left out: the code tells what they end.
class Marks {
public:
    Marks(const Source& source, const Facts& facts) : source_(source), facts_(facts) {}

    // Nothing at the end.
    std::optional<Mark> next() {
        while (token_ < facts_.tokens.size() && facts_.tokens[token_].code == TOKEN_SEMICOLON) {
            ++token_;
        }
        const bool isComment =
            comment_ < facts_.comments.size() &&
            (token_ == facts_.tokens.size() ||
             facts_.comments[comment_].span.begin < facts_.tokens[token_].span.begin);
        if (isComment) {
            return Mark{source_.text(facts_.comments[comment_++].span), true};
        }
        return token_ < facts_.tokens.size()
                   ? std::optional(Mark{source_.text(facts_.tokens[token_++].span), false})
                   : std::nullopt;
    }

private:
    const Source& source_;
    const Facts& facts_;
    std::size_t token_ = 0;
    std::size_t comment_ = 0;
};

// Names may have other capitals; the code tells whether they may.
bool AreSame(const Mark& one, const Mark& other) {
    return one.isComment == other.isComment &&
           (one.text == other.text ||
            (!one.isComment && one.text.compare(other.text, Qt::CaseInsensitive) == 0));
}

bool HaveSameMarks(const Source& before, const Facts& factsBefore, const Source& after,
                   const Facts& factsAfter) {
    Marks ones(before, factsBefore);
    Marks others(after, factsAfter);
    for (;;) {
        const std::optional<Mark> one = ones.next();
        const std::optional<Mark> other = others.next();
        if (!one || !other) {
            return !one && !other;
        }
        if (!AreSame(*one, *other)) {
            return false;
        }
    }
}

// What is not formatted.
QStringView RestOf(const Source& source, const Facts& facts) {
    return QStringView(source.text()).mid(EndOfFormatted(facts)).trimmed();
}

}  // namespace

QString FaultOfFormatted(const Source& before, const Facts& factsBefore, const Source& after,
                         const Facts& factsAfter, const FormatOptions& options) {
    if (ErrorOf(factsBefore) != ErrorOf(factsAfter) || !HaveSameCode(factsBefore, factsAfter)) {
        return QStringLiteral("formatting would change the code");
    }
    if (!HaveSameMarks(before, factsBefore, after, factsAfter) ||
        RestOf(before, factsBefore) != RestOf(after, factsAfter)) {
        return QStringLiteral("formatting would change a token or a comment");
    }
    if (Formatted(after, factsAfter, options.indent) != after.text()) {
        return QStringLiteral("formatting the result would change it again");
    }
    return {};
}
