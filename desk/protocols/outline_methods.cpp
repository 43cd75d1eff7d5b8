#include "protocols/outline_methods.h"

#include "language/declarations.h"
#include "language/hints.h"
#include "language/symbols.h"
#include "language/target_code.h"
#include "protocols/markup.h"

namespace {

// ---------------------------------------------------------------------------------------------
// Symbols
// ---------------------------------------------------------------------------------------------

// The kinds of the protocol.
constexpr int SYMBOL_MODULE = 2;
constexpr int SYMBOL_FUNCTION = 12;
constexpr int SYMBOL_VARIABLE = 13;
constexpr int SYMBOL_CONSTANT = 14;
constexpr int SYMBOL_KEY = 20;

int KindOf(const Symbol& symbol) {
    switch (symbol.kind) {
        case NameKind::Program:
            return SYMBOL_MODULE;
        case NameKind::Variable:
            return symbol.isConstant ? SYMBOL_CONSTANT : SYMBOL_VARIABLE;
        case NameKind::Label:
            return SYMBOL_KEY;
        default:
            return SYMBOL_FUNCTION;
    }
}

QJsonObject DocumentSymbolOf(const Script& script, const Symbol& symbol) {
    QJsonObject json = {
        {QStringLiteral("name"), symbol.name},
        {QStringLiteral("kind"), KindOf(symbol)},
        {QStringLiteral("range"), script.lines.rangeOf(symbol.range)},
        {QStringLiteral("selectionRange"), script.lines.rangeOf(symbol.selection)}};
    if (!symbol.detail.isEmpty()) {
        json[QStringLiteral("detail")] = symbol.detail;
    }
    QJsonArray children;
    for (const Symbol& child : symbol.children) {
        children.append(DocumentSymbolOf(script, child));
    }
    if (!children.isEmpty()) {
        json[QStringLiteral("children")] = children;
    }
    return json;
}

QJsonObject SymbolInformation(const Script& script, const Symbol& symbol, const QString& within) {
    const QJsonObject location = {{QStringLiteral("uri"), script.uri},
                                  {QStringLiteral("range"), script.lines.rangeOf(symbol.range)}};
    QJsonObject json = {{QStringLiteral("name"), symbol.name},
                        {QStringLiteral("kind"), KindOf(symbol)},
                        {QStringLiteral("location"), location}};
    if (!within.isEmpty()) {
        json[QStringLiteral("containerName")] = within;
    }
    return json;
}

// Units and what is in them, side by side.
void AddFlat(const Script& script, const QString& query, QJsonArray& list) {
    const auto add = [&](const Symbol& symbol, const QString& within) {
        if (IsFoundBy(symbol.name, query)) {
            list.append(SymbolInformation(script, symbol, within));
        }
    };
    for (const Symbol& unit : SymbolsOf(script.model)) {
        add(unit, QString());
        for (const Symbol& child : unit.children) {
            add(child, unit.name);
        }
    }
}

bool TakesTrees(const Script& script) {
    return script.client[QStringLiteral("textDocument")]
        .toObject()[QStringLiteral("documentSymbol")]
        .toObject()[QStringLiteral("hierarchicalDocumentSymbolSupport")]
        .toBool();
}

}  // namespace

QJsonValue DocumentSymbolMethod(const Script& script, const QJsonObject& /*params*/) {
    QJsonArray symbols;
    if (!TakesTrees(script)) {
        AddFlat(script, QString(), symbols);
        return symbols;
    }
    for (const Symbol& unit : SymbolsOf(script.model)) {
        symbols.append(DocumentSymbolOf(script, unit));
    }
    return symbols;
}

QJsonArray WorkspaceSymbols(const std::vector<const Script*>& scripts, const QString& query) {
    QJsonArray symbols;
    for (const Script* const script : scripts) {
        AddFlat(*script, query, symbols);
    }
    return symbols;
}

QJsonValue WorkspaceSymbolMethod(const std::vector<const Script*>& scripts,
                                 const QJsonObject& params) {
    return WorkspaceSymbols(scripts, params[QStringLiteral("query")].toString());
}

// ---------------------------------------------------------------------------------------------
// Code
// ---------------------------------------------------------------------------------------------

QJsonValue CodeLensMethod(const Script& script, const QJsonObject& /*params*/) {
    QJsonArray lenses;
    for (const Symbol& unit : SymbolsOf(script.model)) {
        const QJsonObject range = script.lines.rangeOf(unit.selection);
        const QJsonObject command = {
            {QStringLiteral("title"), QStringLiteral("show code")},
            {QStringLiteral("command"), QStringLiteral("yxst.showCode")},
            {QStringLiteral("arguments"), QJsonArray{script.uri, range}}};
        lenses.append(
            QJsonObject{{QStringLiteral("range"), range}, {QStringLiteral("command"), command}});
    }
    return lenses;
}

QJsonValue CodeLensOptions() {
    return QJsonObject{{QStringLiteral("resolveProvider"), false}};
}

namespace {

// What the request is about: the units that the range touches, else the script.
Span WantedPiece(const Script& script, const QJsonObject& params) {
    const QJsonValue range = params[QStringLiteral("range")];
    Span wanted = {0, script.source().size() + 1};
    if (!range.isObject()) {
        return wanted;
    }
    const Span piece = script.lines.spanOf(range.toObject());
    wanted = piece;
    const int count = static_cast<int>(script.facts().units.size());
    for (int unit = 0; unit < count; ++unit) {
        const Span extent = ExtentOfUnit(script.model, unit);
        if (extent.begin <= piece.end && extent.end >= piece.begin) {
            wanted.begin = std::min(wanted.begin, extent.begin);
            wanted.end = std::max(wanted.end, extent.end);
        }
    }
    return wanted;
}

}  // namespace

QJsonValue CodeMethod(const Script& script, const QJsonObject& params) {
    QJsonArray items;
    for (const CodeItem& item : CodeFor(script.model, WantedPiece(script, params))) {
        items.append(QJsonObject{{QStringLiteral("text"), item.text},
                                 {QStringLiteral("range"), script.lines.rangeOf(item.piece)}});
    }
    return QJsonObject{{QStringLiteral("items"), items}};
}

// ---------------------------------------------------------------------------------------------
// Hints
// ---------------------------------------------------------------------------------------------

namespace {

// The kinds of the protocol.
constexpr int HINT_TYPE = 1;
constexpr int HINT_PARAMETER = 2;

QJsonObject HintOf(const Script& script, const Hint& hint) {
    QJsonObject json = {
        {QStringLiteral("position"), script.lines.positionOf(hint.offset)},
        {QStringLiteral("label"), hint.text},
        {QStringLiteral("kind"), hint.isParameter ? HINT_PARAMETER : HINT_TYPE},
        {QStringLiteral("paddingLeft"), !hint.isParameter && hint.text.startsWith(u'=')},
        {QStringLiteral("paddingRight"), hint.isParameter}};
    if (hint.name != NONE) {
        const QStringList formats = {QStringLiteral("textDocument"), QStringLiteral("hover"),
                                     QStringLiteral("contentFormat")};
        json[QStringLiteral("tooltip")] =
            MarkupOf(script, formats, NameText(script.model, hint.name));
    }
    return json;
}

}  // namespace

QJsonValue InlayHintMethod(const Script& script, const QJsonObject& params) {
    const Span piece = script.lines.spanOf(params[QStringLiteral("range")].toObject());
    QJsonArray hints;
    for (const Hint& hint : HintsIn(script.model, piece)) {
        hints.append(HintOf(script, hint));
    }
    return hints;
}
