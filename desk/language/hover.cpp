#include "language/hover.h"

#include "check/tokens.h"
#include "explain/words.h"
#include "language/declarations.h"
#include "language/literals.h"
#include "language/operations.h"
#include "language/target_code.h"

namespace {

QString TypeText(const Model& model, int token) {
    const Tokens tokens(model.source, model.facts);
    const QString name = tokens.text(token).toString().toUpper();
    return QStringLiteral("```st\n%1\n```\n%2").arg(name, ValuesOfType(name));
}

// A call that is a statement has its code shown too.
QString NameTextAt(const Model& model, const Occurrence& occurrence, int token) {
    const QString text = NameText(model, occurrence.name);
    const QString code =
        occurrence.kind == OccurrenceKind::Call ? CodeText(model, token) : QString();
    return code.isEmpty() ? text : text + QStringLiteral("\n\n") + code;
}

QString TextOfToken(const Model& model, int token) {
    const Tokens tokens(model.source, model.facts);
    const std::optional<Occurrence> occurrence = OccurrenceOfToken(model, token);
    if (occurrence) {
        return NameTextAt(model, *occurrence, token);
    }
    if (IsLiteral(tokens.code(token))) {
        return LiteralText(model, token);
    }
    const OperationFact* const operation = OperationAt(model, token);
    if (operation != nullptr) {
        return OperationText(model, *operation);
    }
    // The compiler has not come to each call of a script with an error.
    if (const BuiltInRow* const row = BuiltInRowOf(tokens.text(token))) {
        return NameText(*row);
    }
    return tokens.typeNamed(token) != TYP_NONE ? TypeText(model, token) : CodeText(model, token);
}

}  // namespace

std::optional<Hover> HoverAt(const Model& model, int offset) {
    const int within = TokenIndexAt(model, offset);
    const int token = within == NONE ? WordIndexAt(model, offset) : within;
    const QString text = token == NONE ? QString() : TextOfToken(model, token);
    return text.isEmpty()
               ? std::nullopt
               : std::optional(Hover{text, Tokens(model.source, model.facts).span(token)});
}
