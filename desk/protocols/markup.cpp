#include "protocols/markup.h"

#include <QJsonArray>

#include <algorithm>

namespace {

// A character after a "\" stands for itself.
QString PlainLine(const QString& line) {
    QString plain;
    bool isItself = false;
    for (const QChar c : line) {
        const bool isMark = c == u'\\' || c == u'`';
        if (isItself || !isMark) {
            plain += c;
        }
        isItself = !isItself && c == u'\\';
    }
    while (plain.endsWith(u' ')) {
        plain.chop(1);
    }
    return plain;
}

bool TakesMarkdown(const Script& script, const QStringList& path) {
    QJsonValue formats = script.client;
    for (const QString& member : path) {
        formats = formats[member];
    }
    const QJsonArray all = formats.toArray();
    return all.isEmpty() || all.contains(QStringLiteral("markdown"));
}

}  // namespace

QString WithoutMarkup(const QString& markdown) {
    QStringList plain;
    bool isCode = false;
    for (const QString& line : markdown.split(u'\n')) {
        if (line.startsWith(QLatin1String("```"))) {
            isCode = !isCode;
        } else {
            plain.append(isCode ? line : PlainLine(line));
        }
    }
    return plain.join(u'\n');
}

QJsonObject MarkupOf(const Script& script, const QStringList& path, const QString& markdown) {
    const bool takes = TakesMarkdown(script, path);
    return {{QStringLiteral("kind"),
             takes ? QStringLiteral("markdown") : QStringLiteral("plaintext")},
            {QStringLiteral("value"), takes ? markdown : WithoutMarkup(markdown)}};
}
