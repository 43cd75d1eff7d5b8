#include "protocols/writing_methods.h"

#include "explain/words.h"
#include "language/completion.h"
#include "language/folds.h"
#include "language/selection.h"
#include "language/semantics.h"
#include "language/signature.h"
#include "protocols/markup.h"

#include <QJsonArray>

#include <algorithm>

namespace {

// Where a client tells what it takes.
const QStringList COMPLETION_ITEM = {QStringLiteral("textDocument"), QStringLiteral("completion"),
                                     QStringLiteral("completionItem")};
const QStringList SIGNATURE = {QStringLiteral("textDocument"), QStringLiteral("signatureHelp"),
                               QStringLiteral("signatureInformation")};

int OffsetOf(const Script& script, const QJsonObject& params) {
    return script.lines.offsetOf(params[QStringLiteral("position")].toObject());
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Completion
// ---------------------------------------------------------------------------------------------

namespace {

// The protocol's kinds of completion.
enum class ItemKind : unsigned char {
    Function = 3,
    Variable = 6,
    Keyword = 14,
    Snippet = 15,
    Reference = 18,
    TypeParameter = 25
};

ItemKind KindOf(ProposalKind kind) {
    switch (kind) {
        case ProposalKind::Variable:
            return ItemKind::Variable;
        case ProposalKind::Label:
            return ItemKind::Reference;
        case ProposalKind::Definition:
        case ProposalKind::BuiltIn:
            return ItemKind::Function;
        case ProposalKind::Type:
            return ItemKind::TypeParameter;
        case ProposalKind::Snippet:
            return ItemKind::Snippet;
        case ProposalKind::Word:
            break;
    }
    return ItemKind::Keyword;
}

// What an editor compares with what has been typed, which may do so letter by letter: the typed
// letters in the case that they have.
QString FilterOf(const QString& name, const QString& typed) {
    const bool begins = name.toCaseFolded().startsWith(typed.toCaseFolded());
    return begins ? typed + name.mid(typed.size()) : name;
}

QJsonObject ItemOf(const Script& script, const Proposal& proposal, Span word, bool isSnippet) {
    const QString typed = script.source().text(word).toString();
    const QString& text = isSnippet ? proposal.snippet : proposal.name;
    QJsonObject item = {
        {QStringLiteral("label"), proposal.name},
        {QStringLiteral("kind"), static_cast<int>(KindOf(proposal.kind))},
        {QStringLiteral("sortText"),
         QString::number(static_cast<int>(proposal.kind)) + proposal.name.toCaseFolded()},
        {QStringLiteral("filterText"), FilterOf(proposal.name, typed)},
        {QStringLiteral("textEdit"),
         QJsonObject{{QStringLiteral("range"), script.lines.rangeOf(word)},
                     {QStringLiteral("newText"), text}}}};
    constexpr int snippetFormat = 2;
    if (isSnippet) {
        item[QStringLiteral("insertTextFormat")] = snippetFormat;
    }
    if (!proposal.detail.isEmpty()) {
        item[QStringLiteral("detail")] = proposal.detail;
    }
    return item;
}

// What the manual says of a built-in, in a format that the client names at the end of the path.
void AddDocumentation(const Script& script, const QStringList& path, const QString& name,
                      QJsonObject& object) {
    if (const BuiltInRow* const row = BuiltInRowOf(name)) {
        object[QStringLiteral("documentation")] = MarkupOf(
            script, path + QStringList{QStringLiteral("documentationFormat")}, row->text);
    }
}

// A call has its parentheses already where one comes next.
bool IsBeforeParenthesis(const Script& script, Span word) {
    return script.source().text().midRef(word.end).trimmed().startsWith(u'(');
}

bool TakesSnippets(const Script& script) {
    QJsonValue value = script.client;
    for (const QString& member : COMPLETION_ITEM) {
        value = value[member];
    }
    return value[QLatin1String("snippetSupport")].toBool();
}

}  // namespace

QJsonValue CompletionMethod(const Script& script, const QJsonObject& params) {
    const Proposals found = ProposalsAt(script.model, OffsetOf(script, params));
    const bool isCalled = IsBeforeParenthesis(script, found.word);
    const bool takesSnippets = TakesSnippets(script);
    QJsonArray items;
    for (const Proposal& proposal : found.proposals) {
        const bool isSnippet = proposal.kind == ProposalKind::Snippet;
        if (isSnippet && !takesSnippets) {
            continue;
        }
        const bool hasGaps = !proposal.snippet.isEmpty() && takesSnippets;
        QJsonObject item = ItemOf(script, proposal, found.word, hasGaps && !isCalled);
        AddDocumentation(script, COMPLETION_ITEM, proposal.name, item);
        items.append(item);
    }
    return items;
}

// Nothing is asked for while signs are typed: words come up by themselves.
QJsonValue CompletionOptions() {
    return QJsonObject();
}

// ---------------------------------------------------------------------------------------------
// Signatures
// ---------------------------------------------------------------------------------------------

namespace {

QJsonObject ParameterOf(Span span) {
    return {{QStringLiteral("label"), QJsonArray{span.begin, span.end}}};
}

QJsonObject InformationOf(const Script& script, const Callee& callee) {
    const SignatureText text = SignatureOf(callee);
    QJsonArray parameters;
    for (const Span& span : text.parameters) {
        parameters.append(ParameterOf(span));
    }
    QJsonObject information = {{QStringLiteral("label"), text.label},
                               {QStringLiteral("parameters"), parameters}};
    AddDocumentation(script, SIGNATURE, callee.name, information);
    return information;
}

}  // namespace

QJsonValue SignatureHelpMethod(const Script& script, const QJsonObject& params) {
    const std::optional<Signature> signature =
        SignatureAt(script.model, OffsetOf(script, params));
    if (!signature) {
        return QJsonValue::Null;
    }
    return QJsonObject{
        {QStringLiteral("signatures"), QJsonArray{InformationOf(script, signature->callee)}},
        {QStringLiteral("activeSignature"), 0},
        {QStringLiteral("activeParameter"), signature->parameter}};
}

QJsonValue SignatureHelpOptions() {
    return QJsonObject{{QStringLiteral("triggerCharacters"),
                        QJsonArray{QStringLiteral("("), QStringLiteral(",")}},
                       {QStringLiteral("retriggerCharacters"), QJsonArray{QStringLiteral(")")}}};
}

// ---------------------------------------------------------------------------------------------
// Folds and selections
// ---------------------------------------------------------------------------------------------

namespace {

int LineOf(const Script& script, int offset) {
    return script.lines.positionOf(offset)[QStringLiteral("line")].toInt();
}

}  // namespace

QJsonValue FoldingRangeMethod(const Script& script, const QJsonObject& /*params*/) {
    QJsonArray ranges;
    for (const Fold& fold : FoldsOf(script.model)) {
        QJsonObject range = {{QStringLiteral("startLine"), LineOf(script, fold.span.begin)},
                             {QStringLiteral("endLine"), LineOf(script, fold.span.end)}};
        if (fold.isComment) {
            range[QStringLiteral("kind")] = QStringLiteral("comment");
        }
        ranges.append(range);
    }
    return ranges;
}

namespace {

QJsonObject SelectionRangeOf(const Script& script, const std::vector<Span>& spans) {
    QJsonObject range;
    for (auto span = spans.rbegin(); span != spans.rend(); ++span) {
        QJsonObject inner = {{QStringLiteral("range"), script.lines.rangeOf(*span)}};
        if (!range.isEmpty()) {
            inner[QStringLiteral("parent")] = range;
        }
        range = inner;
    }
    return range;
}

}  // namespace

QJsonValue SelectionRangeMethod(const Script& script, const QJsonObject& params) {
    QJsonArray ranges;
    const QJsonArray positions = params[QStringLiteral("positions")].toArray();
    for (const QJsonValue& position : positions) {
        const int offset = script.lines.offsetOf(position.toObject());
        ranges.append(SelectionRangeOf(script, SelectionsAt(script.model, offset)));
    }
    return ranges;
}

// ---------------------------------------------------------------------------------------------
// Semantic tokens
// ---------------------------------------------------------------------------------------------

namespace {

// In the order of Meaning.
const char* const TOKEN_TYPES[] = {"comment",   "function",  "label",  "number", "operator",
                                   "parameter", "namespace", "string", "type",   "variable"};
static_assert(std::size(TOKEN_TYPES) == static_cast<std::size_t>(Meaning::Variable) + 1);

// A bit for each, from the lowest on, as ModifiersOf() has them.
const char* const TOKEN_MODIFIERS[] = {"declaration", "readonly", "modification",
                                       "defaultLibrary"};

int ModifiersOf(const Colour& colour) {
    const bool bits[] = {colour.isDeclaration, colour.isReadOnly, colour.isWritten,
                         colour.isBuiltIn};
    static_assert(std::size(bits) == std::size(TOKEN_MODIFIERS));
    int modifiers = 0;
    for (std::size_t bit = 0; bit < std::size(bits); ++bit) {
        modifiers |= static_cast<int>(bits[bit]) << bit;
    }
    return modifiers;
}

template <std::size_t count>
QJsonArray NamesOf(const char* const (&names)[count]) {
    QJsonArray array;
    for (const char* name : names) {
        array.append(QLatin1String(name));
    }
    return array;
}

// Each as five numbers: lines and characters after the one before, length, type, modifiers.
QJsonObject Encoded(const Script& script, const std::vector<Colour>& colours) {
    QJsonArray data;
    int line = 0;
    int character = 0;
    for (const Colour& colour : colours) {
        const QJsonObject position = script.lines.positionOf(colour.span.begin);
        const int lines = position[QStringLiteral("line")].toInt() - line;
        line += lines;
        const int at = position[QStringLiteral("character")].toInt();
        data.append(lines);
        data.append(lines == 0 ? at - character : at);
        data.append(colour.span.length());
        data.append(static_cast<int>(colour.meaning));
        data.append(ModifiersOf(colour));
        character = at;
    }
    return {{QStringLiteral("data"), data}};
}

}  // namespace

QJsonValue SemanticTokensMethod(const Script& script, const QJsonObject& /*params*/) {
    return Encoded(script, ColoursOf(script.model));
}

QJsonValue SemanticTokensRangeMethod(const Script& script, const QJsonObject& params) {
    const Span range = script.lines.spanOf(params[QStringLiteral("range")].toObject());
    std::vector<Colour> colours = ColoursOf(script.model);
    colours.erase(std::remove_if(colours.begin(), colours.end(),
                                 [range](const Colour& colour) {
                                     return colour.span.end <= range.begin ||
                                            colour.span.begin >= range.end;
                                 }),
                  colours.end());
    return Encoded(script, colours);
}

QJsonValue SemanticTokensOptions() {
    return QJsonObject{
        {QStringLiteral("legend"),
         QJsonObject{{QStringLiteral("tokenTypes"), NamesOf(TOKEN_TYPES)},
                     {QStringLiteral("tokenModifiers"), NamesOf(TOKEN_MODIFIERS)}}},
        {QStringLiteral("full"), true},
        {QStringLiteral("range"), true}};
}
