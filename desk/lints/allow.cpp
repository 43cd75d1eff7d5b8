#include "lints/allow.h"

#include <QRegularExpression>

namespace {

// What follows the identifiers is a reason for people.
void AddAllowances(const Subject& subject, const CommentFact& comment,
                   std::vector<Allowance>& allowances) {
    static const QRegularExpression head(
        QStringLiteral(R"((?<![\w:-])yxst:allow(?![\w:-])(?:\s+([\w-]+(?:\s*,\s*[\w-]+)*))?)"));
    static const QRegularExpression id(QStringLiteral(R"([\w-]+)"));
    const QString text = subject.source.text(comment.span).toString();
    const QRegularExpressionMatch match = head.match(text);
    if (!match.hasMatch()) {
        return;
    }
    const int line = subject.lineOf(comment.span.begin);
    const auto spanOf = [&comment](const QRegularExpressionMatch& piece, int from) {
        return Span{comment.span.begin + from + piece.capturedStart(),
                    comment.span.begin + from + piece.capturedEnd()};
    };
    if (match.captured(1).isEmpty()) {
        allowances.push_back({QString(), spanOf(match, 0), line});
    }
    auto ids = id.globalMatch(match.captured(1));
    while (ids.hasNext()) {
        const QRegularExpressionMatch each = ids.next();
        allowances.push_back({each.captured(), spanOf(each, match.capturedStart(1)), line});
    }
}

}  // namespace

std::vector<Allowance> AllowancesOf(const Subject& subject) {
    std::vector<Allowance> allowances;
    for (const CommentFact& comment : subject.facts.comments) {
        AddAllowances(subject, comment, allowances);
    }
    return allowances;
}
