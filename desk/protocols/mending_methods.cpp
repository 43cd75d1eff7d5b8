#include "protocols/mending_methods.h"

#include "format/layout.h"
#include "language/fixes.h"
#include "language/formatting.h"
#include "protocols/workspace_edit.h"

namespace {

const QString QUICK_FIX = QStringLiteral("quickfix");
const QString FIX_ALL = QStringLiteral("source.fixAll");
const QString FORMAT = QStringLiteral("source.format");

QJsonArray AskedKinds(const QJsonObject& params) {
    return params[QStringLiteral("context")].toObject()[QStringLiteral("only")].toArray();
}

// Whether a kind is asked for by its own name or one of those it is part of.
bool IsNamed(const QString& kind, const QJsonArray& asked) {
    return std::any_of(asked.begin(), asked.end(), [&kind](const QJsonValue& each) {
        return kind == each.toString() || kind.startsWith(each.toString() + u'.');
    });
}

bool IsOf(const Script& script, const Diagnostic& diagnostic, const QJsonObject& sent) {
    const Span span = script.lines.spanOf(sent[QStringLiteral("range")].toObject());
    return span.begin == diagnostic.span.begin && span.end == diagnostic.span.end &&
           sent[QStringLiteral("code")] == QJsonValue(diagnostic.id);
}

// Of the diagnostics that came with the request, those that stand for one of the script.
QJsonArray SentOf(const Script& script, const Diagnostic& diagnostic, const QJsonObject& params) {
    const QJsonObject context = params[QStringLiteral("context")].toObject();
    QJsonArray found;
    const QJsonArray diagnostics = context[QStringLiteral("diagnostics")].toArray();
    for (const QJsonValue& each : diagnostics) {
        if (IsOf(script, diagnostic, each.toObject())) {
            found.append(each);
        }
    }
    return found;
}

QJsonObject ActionOf(const Script& script, const Fix& fix, const QJsonObject& params) {
    return {{QStringLiteral("title"), fix.title},
            {QStringLiteral("kind"), QUICK_FIX},
            {QStringLiteral("diagnostics"), SentOf(script, *fix.diagnostic, params)},
            {QStringLiteral("edit"), WorkspaceEdit(script, TextEdits(script, fix.edits))}};
}

void AddQuickFixes(const Script& script, const QJsonObject& params, QJsonArray& actions) {
    const Span range = script.lines.spanOf(params[QStringLiteral("range")].toObject());
    for (const Fix& fix : MendsIn(script.model, range)) {
        QJsonObject action = ActionOf(script, fix, params);
        if (fix.isCertain) {
            action[QStringLiteral("isPreferred")] = true;
        }
        actions.append(action);
    }
    for (const Fix& fix : AllowancesIn(script.model, range)) {
        actions.append(ActionOf(script, fix, params));
    }
}

void AddFixAll(const Script& script, QJsonArray& actions) {
    const std::vector<Edit> mends = AllMends(script.model);
    if (!mends.empty()) {
        actions.append(QJsonObject{
            {QStringLiteral("title"), QStringLiteral("Mend all that is certain")},
            {QStringLiteral("kind"), FIX_ALL},
            {QStringLiteral("edit"), WorkspaceEdit(script, TextEdits(script, mends))}});
    }
}

void AddFormat(const Script& script, QJsonArray& actions) {
    if (!script.lines.ends().fault().isEmpty()) {
        return;
    }
    const Formatting formatting = FormattingOf(script.source(), DEFAULT_INDENT);
    if (!formatting.edits.empty()) {
        actions.append(QJsonObject{{QStringLiteral("title"), QStringLiteral("Format")},
                                   {QStringLiteral("kind"), FORMAT},
                                   {QStringLiteral("edit"),
                                    WorkspaceEdit(script, TextEdits(script, formatting.edits))}});
    }
}

}  // namespace

QJsonValue CodeActionMethod(const Script& script, const QJsonObject& params) {
    const QJsonArray asked = AskedKinds(params);
    QJsonArray actions;
    if (asked.isEmpty() || IsNamed(QUICK_FIX, asked)) {
        AddQuickFixes(script, params, actions);
    }
    if (IsNamed(FIX_ALL, asked)) {
        AddFixAll(script, actions);
    }
    if (IsNamed(FORMAT, asked)) {
        AddFormat(script, actions);
    }
    return actions;
}

QJsonValue CodeActionOptions() {
    return QJsonObject{
        {QStringLiteral("codeActionKinds"), QJsonArray{QUICK_FIX, FIX_ALL, FORMAT}}};
}
