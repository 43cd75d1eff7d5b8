#include "format/format.h"

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

constexpr QChar AFTER_EACH = u'\0';

// The text of the error, nothing if the script compiles.
QString ErrorOf(const Facts& facts) {
    return facts.isCompiled() ? QString() : facts.textOf(facts.messages.back().text).toString();
}

void AppendPart(QString& parts, QStringView part) {
    parts.append(part.data(), static_cast<int>(part.size()));
    parts.append(AFTER_EACH);
}

void AddMarks(const Source& source, const Facts& facts, ScriptContent& content) {
    content.tokens.reserve(source.text().size() + static_cast<int>(facts.tokens.size()));
    auto comment = facts.comments.begin();
    const auto addCommentsBefore = [&](int offset) {
        for (; comment != facts.comments.end() && comment->span.begin < offset; ++comment) {
            AppendPart(content.tokens, {});
            AppendPart(content.comments, source.text(comment->span));
        }
    };
    for (const TokenFact& token : facts.tokens) {
        if (token.code != TOKEN_SEMICOLON) {
            addCommentsBefore(token.span.begin);
            AppendPart(content.tokens, source.text(token.span));
        }
    }
    addCommentsBefore(source.text().size());
}

// An error may name a word, whose letters formatting makes capitals.
bool IsSameError(const QString& one, const QString& other) {
    return one.compare(other, Qt::CaseInsensitive) == 0;
}

// Names may have other capitals; the code tells whether they may.
bool HaveSameMarks(const ScriptContent& one, const ScriptContent& other) {
    return one.comments == other.comments && one.unread == other.unread &&
           (one.tokens == other.tokens ||
            one.tokens.compare(other.tokens, Qt::CaseInsensitive) == 0);
}

}  // namespace

// What stays when formatting ends the script with one line feed, whatever it ended with.
ScriptContent ContentOf(const Source& source, const Facts& facts) {
    ScriptContent content;
    content.error = ErrorOf(facts);
    content.code = facts.codes;
    AddMarks(source, facts, content);
    const int end = EndOfFormatted(source, facts);
    content.unread = QStringView(source.text()).mid(end).trimmed().toString();
    return content;
}

QString FaultOfFormatted(const ScriptContent& before, const Source& after,
                         const Facts& factsAfter, const FormatOptions& options) {
    const ScriptContent content = ContentOf(after, factsAfter);
    if (!IsSameError(before.error, content.error) || before.code != content.code) {
        return QStringLiteral("formatting would change the code");
    }
    if (!HaveSameMarks(before, content)) {
        return QStringLiteral("formatting would change a token or a comment");
    }
    if (Formatted(after, factsAfter, options.indent) != after.text()) {
        return QStringLiteral("formatting the result would change it again");
    }
    return {};
}
