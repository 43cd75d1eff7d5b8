#include "protocols/workspace_edit.h"

QJsonArray TextEdits(const Script& script, const std::vector<Edit>& edits) {
    const LineEnds& ends = script.lines.ends();
    QJsonArray array;
    for (const Edit& edit : edits) {
        array.append(QJsonObject{{QStringLiteral("range"), script.lines.rangeOf(edit.span)},
                                 {QStringLiteral("newText"), ends.applied(edit.text)}});
    }
    return array;
}

QJsonObject WorkspaceEdit(const Script& script, const QJsonArray& edits) {
    const bool takesVersions = script.client[QStringLiteral("workspace")]
                                   .toObject()[QStringLiteral("workspaceEdit")]
                                   .toObject()[QStringLiteral("documentChanges")]
                                   .toBool();
    if (!takesVersions) {
        return {{QStringLiteral("changes"), QJsonObject{{script.uri, edits}}}};
    }
    const QJsonObject document = {{QStringLiteral("uri"), script.uri},
                                  {QStringLiteral("version"), script.version}};
    const QJsonObject change = {{QStringLiteral("textDocument"), document},
                                {QStringLiteral("edits"), edits}};
    return {{QStringLiteral("documentChanges"), QJsonArray{change}}};
}
