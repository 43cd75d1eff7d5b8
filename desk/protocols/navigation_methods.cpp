#include "protocols/navigation_methods.h"

#include "language/hover.h"
#include "language/rename.h"
#include "protocols/markup.h"
#include "protocols/workspace_edit.h"

#include <QJsonArray>

namespace {

int OffsetOf(const Script& script, const QJsonObject& params) {
    return script.lines.offsetOf(params[QStringLiteral("position")].toObject());
}

QJsonObject LocationOf(const Script& script, Span span) {
    return {{QStringLiteral("uri"), script.uri},
            {QStringLiteral("range"), script.lines.rangeOf(span)}};
}

std::vector<Occurrence> OccurrencesOfNameAt(const Script& script, const QJsonObject& params) {
    const std::optional<Occurrence> at = OccurrenceAt(script.model, OffsetOf(script, params));
    return at ? OccurrencesOf(script.model, at->name) : std::vector<Occurrence>();
}

}  // namespace

QJsonValue HoverMethod(const Script& script, const QJsonObject& params) {
    const std::optional<Hover> hover = HoverAt(script.model, OffsetOf(script, params));
    if (!hover) {
        return QJsonValue::Null;
    }
    const QStringList formats = {QStringLiteral("textDocument"), QStringLiteral("hover"),
                                 QStringLiteral("contentFormat")};
    return QJsonObject{{QStringLiteral("contents"), MarkupOf(script, formats, hover->markdown)},
                       {QStringLiteral("range"), script.lines.rangeOf(hover->span)}};
}

QJsonValue DefinitionMethod(const Script& script, const QJsonObject& params) {
    const std::optional<Occurrence> at = OccurrenceAt(script.model, OffsetOf(script, params));
    const Span span = at ? DeclaredAt(script.model, at->name) : Span();
    return span.isEmpty() ? QJsonValue(QJsonValue::Null) : LocationOf(script, span);
}

// The name of a function is where its result is declared too.
QJsonValue ReferencesMethod(const Script& script, const QJsonObject& params) {
    const bool hasDeclaration = params[QStringLiteral("context")]
                                    .toObject()[QStringLiteral("includeDeclaration")]
                                    .toBool();
    QJsonArray locations;
    for (const Occurrence& each : OccurrencesOfNameAt(script, params)) {
        if (hasDeclaration || each.kind != OccurrenceKind::Declaration) {
            locations.append(LocationOf(script, each.span));
        }
    }
    return locations;
}

namespace {

// The kinds of the protocol.
constexpr int HIGHLIGHT_TEXT = 1;
constexpr int HIGHLIGHT_READ = 2;
constexpr int HIGHLIGHT_WRITE = 3;

int HighlightOf(OccurrenceKind kind) {
    switch (kind) {
        case OccurrenceKind::Read:
            return HIGHLIGHT_READ;
        case OccurrenceKind::Write:
        case OccurrenceKind::Reference:
            return HIGHLIGHT_WRITE;
        default:
            return HIGHLIGHT_TEXT;
    }
}

}  // namespace

// What is passed by reference may be written.
QJsonValue DocumentHighlightMethod(const Script& script, const QJsonObject& params) {
    QJsonArray highlights;
    for (const Occurrence& each : OccurrencesOfNameAt(script, params)) {
        highlights.append(QJsonObject{{QStringLiteral("range"), script.lines.rangeOf(each.span)},
                                      {QStringLiteral("kind"), HighlightOf(each.kind)}});
    }
    return highlights;
}

// The range alone: Qt Creator 9 loses a placeholder and asks for an empty name.
QJsonValue PrepareRenameMethod(const Script& script, const QJsonObject& params) {
    const RenameTarget target = RenameTargetAt(script.model, OffsetOf(script, params));
    if (target.name == NONE) {
        return QJsonValue::Null;
    }
    if (!target.refusal.isEmpty()) {
        throw RequestFailed{target.refusal};
    }
    return script.lines.rangeOf(target.span);
}

QJsonValue RenameMethod(const Script& script, const QJsonObject& params) {
    const QString name = params[QStringLiteral("newName")].toString();
    const Renaming renaming = RenameTo(script.model, OffsetOf(script, params), name);
    if (!renaming.refusal.isEmpty()) {
        throw RequestFailed{renaming.refusal};
    }
    std::vector<Edit> edits;
    for (const Span place : renaming.places) {
        edits.push_back({place, name});
    }
    return WorkspaceEdit(script, TextEdits(script, edits));
}

QJsonValue RenameOptions() {
    return QJsonObject{{QStringLiteral("prepareProvider"), true}};
}
