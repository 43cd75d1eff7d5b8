#include "lints/allow.h"

#include <QRegularExpression>

namespace {

// A comment that is being read.
struct Comment {
    QString text;
    int begin;  // in the script
    int line;

    Span spanOf(const QRegularExpressionMatch& piece) const {
        return {begin + piece.capturedStart(), begin + piece.capturedEnd()};
    }
};

bool IsLikeAnId(const QString& word) {
    static const QRegularExpression like(QStringLiteral("^[a-z]+(-[a-z]+)+$"));
    return like.match(word).hasMatch();
}

// Whether a word counts as an identifier, by what separates it from the one before.
bool IsMeantAsId(const QString& word, const QString& separator, const QSet<QString>& known) {
    return known.contains(word) || (separator.contains(u',') && IsLikeAnId(word));
}

// The identifiers from a place on.
void AddIds(const Comment& comment, int from, const QSet<QString>& known,
            std::vector<Allowance>& allowances) {
    static const QRegularExpression word(QStringLiteral(R"(\G(\s*,\s*|\s+)([\w-]+))"));
    auto words = word.globalMatch(comment.text, from);
    bool isFirst = true;
    while (words.hasNext()) {
        const QRegularExpressionMatch each = words.next();
        if (!isFirst && !IsMeantAsId(each.captured(2), each.captured(1), known)) {
            return;
        }
        isFirst = false;
        const Span span = {comment.begin + each.capturedStart(2),
                           comment.begin + each.capturedEnd(2)};
        allowances.push_back({each.captured(2), span, comment.line});
    }
}

// The marker in other letters or with blanks counts where an identifier follows.
void AddMisspelled(const Comment& comment, const QSet<QString>& known,
                   std::vector<Allowance>& allowances) {
    static const QRegularExpression like(
        QStringLiteral(R"((?<![\w:-])yxst\s*:\s*allow(?![\w:-])(?=\s+([\w-]+)))"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = like.match(comment.text);
    const QString id = match.captured(1).toLower();
    if (match.hasMatch() && (known.contains(id) || IsLikeAnId(id))) {
        allowances.push_back({QString(), comment.spanOf(match), comment.line, true});
    }
}

void AddAllowances(const Comment& comment, const QSet<QString>& known,
                   std::vector<Allowance>& allowances) {
    static const QRegularExpression marker(QStringLiteral(R"((?<![\w:-])yxst:allow(?![\w:-]))"));
    const QRegularExpressionMatch match = marker.match(comment.text);
    const std::size_t before = allowances.size();
    if (!match.hasMatch()) {
        AddMisspelled(comment, known, allowances);
        return;
    }
    AddIds(comment, match.capturedEnd(), known, allowances);
    if (allowances.size() == before) {
        allowances.push_back({QString(), comment.spanOf(match), comment.line});
    }
}

}  // namespace

std::vector<Allowance> AllowancesOf(const Subject& subject, const QSet<QString>& known) {
    std::vector<Allowance> allowances;
    for (const CommentFact& each : subject.facts.comments) {
        AddAllowances({subject.source.text(each.span).toString(), each.span.begin,
                       subject.lineOf(each.span.begin)},
                      known, allowances);
    }
    return allowances;
}
