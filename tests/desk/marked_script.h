// Scripts with a place that is marked, and what an editor asks there.
#pragma once

#include "language/model.h"
#include "protocols/script.h"

struct MarkedScript {
    Script script;
    int offset;  // of the mark, which is no part of the script

    const Model& model() const { return script.model; }
    QJsonObject params() const {
        const QJsonObject document = {{QStringLiteral("uri"), script.uri}};
        return {{QStringLiteral("textDocument"), document},
                {QStringLiteral("position"), script.lines.positionOf(offset)}};
    }
    // A piece of the script as a range of the protocol.
    QString textOf(const QJsonValue& range) const {
        return script.source().text(script.lines.spanOf(range.toObject())).toString();
    }
};

inline Script OpenScript(const QString& text) {
    constexpr int enough = 20;
    const Source source(QStringLiteral("test.st"), CompiledText(text));
    return {QStringLiteral("file:///test.st"), 1, ModelOf(source, enough), LspLines(text)};
}

// The mark is the first "|".
inline MarkedScript Marked(const QString& text) {
    QString without = text;
    const int mark = without.indexOf(u'|');
    without.remove(mark, 1);
    const int returns = without.leftRef(mark).count(u'\r');
    return {OpenScript(without), mark - returns};
}
