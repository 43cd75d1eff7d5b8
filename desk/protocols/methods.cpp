#include "protocols/methods.h"

#include "protocols/formatting_methods.h"
#include "protocols/mending_methods.h"
#include "protocols/navigation_methods.h"
#include "protocols/outline_methods.h"
#include "protocols/writing_methods.h"

#include <algorithm>
#include <iterator>

namespace {

// A row about one script: {"textDocument/hover", Hover, nullptr, "hoverProvider", nullptr}.
constexpr Method METHODS[] = {
    {"textDocument/hover", HoverMethod, nullptr, "hoverProvider", nullptr},
    {"textDocument/definition", DefinitionMethod, nullptr, "definitionProvider", nullptr},
    {"textDocument/declaration", DefinitionMethod, nullptr, "declarationProvider", nullptr},
    {"textDocument/references", ReferencesMethod, nullptr, "referencesProvider", nullptr},
    {"textDocument/documentHighlight", DocumentHighlightMethod, nullptr,
     "documentHighlightProvider", nullptr},
    {"textDocument/prepareRename", PrepareRenameMethod, nullptr, nullptr, nullptr},
    {"textDocument/rename", RenameMethod, nullptr, "renameProvider", RenameOptions},
    {"textDocument/documentSymbol", DocumentSymbolMethod, nullptr, "documentSymbolProvider",
     nullptr},
    {"workspace/symbol", nullptr, WorkspaceSymbolMethod, "workspaceSymbolProvider", nullptr},
    {"textDocument/codeLens", CodeLensMethod, nullptr, "codeLensProvider", CodeLensOptions},
    {"textDocument/inlayHint", InlayHintMethod, nullptr, "inlayHintProvider", nullptr},
    {"textDocument/completion", CompletionMethod, nullptr, "completionProvider",
     CompletionOptions},
    {"textDocument/signatureHelp", SignatureHelpMethod, nullptr, "signatureHelpProvider",
     SignatureHelpOptions},
    {"textDocument/foldingRange", FoldingRangeMethod, nullptr, "foldingRangeProvider", nullptr},
    {"textDocument/selectionRange", SelectionRangeMethod, nullptr, "selectionRangeProvider",
     nullptr},
    {"textDocument/semanticTokens/full", SemanticTokensMethod, nullptr, "semanticTokensProvider",
     SemanticTokensOptions},
    {"textDocument/semanticTokens/range", SemanticTokensRangeMethod, nullptr, nullptr, nullptr},
    {"textDocument/codeAction", CodeActionMethod, nullptr, "codeActionProvider",
     CodeActionOptions},
    {"textDocument/formatting", FormattingMethod, nullptr, "documentFormattingProvider", nullptr},
    {"textDocument/rangeFormatting", RangeFormattingMethod, nullptr,
     "documentRangeFormattingProvider", nullptr},
    {"textDocument/onTypeFormatting", OnTypeFormattingMethod, nullptr,
     "documentOnTypeFormattingProvider", OnTypeFormattingOptions},
    {"yxst/code", CodeMethod, nullptr, nullptr, nullptr},
};

}  // namespace

const Method* MethodNamed(const QString& name) {
    const auto* const found = std::find_if(
        std::begin(METHODS), std::end(METHODS),
        [&name](const Method& method) { return name == QLatin1String(method.name); });
    return found == std::end(METHODS) ? nullptr : found;
}

QJsonObject MethodCapabilities() {
    QJsonObject capabilities;
    for (const Method& method : METHODS) {
        if (method.capability != nullptr) {
            capabilities[QLatin1String(method.capability)] =
                method.options == nullptr ? QJsonValue(true) : method.options();
        }
    }
    return capabilities;
}
