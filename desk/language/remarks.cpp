#include "language/remarks.h"

#include <algorithm>

namespace {

// The text without its signs, line by line.
QStringList LinesOf(QStringView comment) {
    QString text = comment.toString();
    if (text.startsWith(QLatin1String("//"))) {
        text.remove(0, 2);
    } else {
        text.remove(0, 2);
        text.chop(text.endsWith(QLatin1String("*)")) ? 2 : 0);
    }
    QStringList lines = text.split(u'\n');
    for (QString& line : lines) {
        line = line.trimmed();
    }
    lines.removeAll(QString());
    return lines;
}

// What Markdown would take for marks is kept as it is written.
QString Escaped(const QString& line) {
    QString escaped;
    for (const QChar c : line) {
        const bool isMark = c.unicode() < ASCII_COUNT && (c.isPunct() || c.isSymbol());
        escaped += isMark ? QStringLiteral("\\") + c : QString(c);
    }
    return escaped;
}

bool IsBlank(QStringView text) {
    return text.trimmed().isEmpty();
}

// Whether nothing but blanks stands before it on its line.
bool IsAlone(const Model& model, Span comment) {
    const int begin = model.source.lineAt(model.source.placeOf(comment.begin).line).begin;
    return IsBlank(model.source.text({begin, comment.begin}));
}

QStringList LinesAbove(const Model& model, int begin) {
    QStringList lines;
    const std::vector<CommentFact>& comments = model.facts.comments;
    for (auto each = comments.rbegin(); each != comments.rend(); ++each) {
        if (each->span.end > begin) {
            continue;
        }
        const QStringView between = model.source.text({each->span.end, begin});
        if (!IsBlank(between) || between.count(u'\n') > 1 || !IsAlone(model, each->span)) {
            break;
        }
        lines = LinesOf(model.source.text(each->span)) + lines;
        begin = each->span.begin;
    }
    return lines;
}

QStringList LinesAfter(const Model& model, int end) {
    const std::vector<CommentFact>& comments = model.facts.comments;
    const auto next =
        std::find_if(comments.begin(), comments.end(),
                     [end](const CommentFact& each) { return each.span.begin >= end; });
    const bool isThere = next != comments.end() && !next->span.isEmpty();
    const QStringView between =
        isThere ? model.source.text({end, next->span.begin}) : QStringView();
    return isThere && IsBlank(between) && !between.contains(u'\n')
               ? LinesOf(model.source.text(next->span))
               : QStringList();
}

}  // namespace

QString RemarksOn(const Model& model, Span piece) {
    const QStringList above = LinesAbove(model, piece.begin);
    QStringList lines = above + LinesAfter(model, piece.end);
    std::transform(lines.begin(), lines.end(), lines.begin(), Escaped);
    return lines.join(QStringLiteral("  \n"));
}
