#include "language/signature.h"

#include "explain/words.h"
#include "language/places.h"

#include "qyx_types.h"

#include <algorithm>

namespace {

QString TextOf(const Formal& formal, const QString& name) {
    const QString type = QString(TypToStr(formal.type));
    const QString reference = formal.isReference ? QStringLiteral("VAR_REF ") : QString();
    return name.isEmpty() ? type : reference + name + QStringLiteral(" : ") + type;
}

bool IsBuiltIn(const Callee& callee) {
    const std::vector<Callee>& all = BuiltInCallees();
    return std::any_of(all.begin(), all.end(),
                       [&callee](const Callee& each) { return each.name == callee.name; });
}

// Whether the script defines it before the offset. A mend defines what is unknown.
bool IsDefinedBefore(const Source& source, const Callee& callee, int offset) {
    return callee.span.begin < offset &&
           source.text(callee.span).compare(callee.name, Qt::CaseInsensitive) == 0;
}

// The nearest call; parentheses that only group are passed.
std::optional<CallPlace> InnermostCall(const Context& context, int index) {
    std::optional<CallPlace> call = CallAround(context, index);
    while (!call && index != NONE) {
        index = OpeningBefore(context, index);
        call = index == NONE ? std::nullopt : CallAround(context, index);
    }
    return call;
}

}  // namespace

QStringList NamesOfFormals(const Callee& callee) {
    const BuiltInRow* const row = BuiltInRowOf(callee.name);
    if (row != nullptr && !callee.formals.empty()) {
        return ParameterTexts(*row);
    }
    QStringList names;
    for (const Formal& formal : callee.formals) {
        names.append(formal.name);
    }
    return names;
}

SignatureText SignatureOf(const Callee& callee) {
    SignatureText text = {callee.name + u'(', {}};
    const QStringList names = NamesOfFormals(callee);
    for (const Formal& formal : callee.formals) {
        text.label += text.parameters.empty() ? QString() : QStringLiteral(", ");
        const int begin = text.label.size();
        text.label += TextOf(formal, names.value(static_cast<int>(text.parameters.size())));
        text.parameters.push_back({begin, text.label.size()});
    }
    text.label += u')';
    if (callee.isFunction) {
        text.label += QStringLiteral(" : ") + TypToStr(callee.type);
    }
    return text;
}

std::optional<Signature> SignatureAt(const Model& model, int offset) {
    if (PlaceKindAt(model, offset) != PlaceKind::Code) {
        return std::nullopt;
    }
    const Context context = ContextOf(model.source, model.facts);
    const std::optional<CallPlace> place = InnermostCall(context, IndexOf(context, offset));
    if (!place) {
        return std::nullopt;
    }
    const std::optional<Callee> callee = CalleeNamed(context, PieceAt(context, place->name).text);
    const bool isThere =
        callee && (IsBuiltIn(*callee) || IsDefinedBefore(model.source, *callee, offset));
    return isThere ? std::make_optional(Signature{*callee, place->parameter}) : std::nullopt;
}
