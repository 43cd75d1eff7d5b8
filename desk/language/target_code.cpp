#include "language/target_code.h"

#include "check/tokens.h"
#include "lints/subject.h"

#include <algorithm>

namespace {

constexpr int MOST_ITEMS = 24;

bool Holds(Span span, int offset) {
    return offset >= span.begin && offset < span.end;
}

// From a place to the last token that begins on its line.
Span RestOfLine(const Model& model, int place) {
    const Tokens tokens(model.source, model.facts);
    const int end = model.source.lineAt(model.source.placeOf(place).line).end;
    const int last = tokens.at(end) - 1;
    return {place, std::max(place, tokens.span(std::max(last, 0)).end)};
}

// The innermost that holds the offset, null if none does.
const StatementFact* StatementAround(const Model& model, int offset) {
    const std::vector<StatementFact>& all = model.facts.statements;
    const auto found =
        std::find_if(all.rbegin(), all.rend(),
                     [offset](const StatementFact& each) { return Holds(each.span, offset); });
    return found == all.rend() ? nullptr : &*found;
}

const DeclarationFact* DeclarationAround(const Model& model, int offset) {
    const std::vector<DeclarationFact>& all = model.facts.declarations;
    const auto after = std::upper_bound(
        all.begin(), all.end(), offset,
        [](int at, const DeclarationFact& each) { return at < each.span.begin; });
    return after != all.begin() && Holds(std::prev(after)->span, offset) ? &*std::prev(after)
                                                                         : nullptr;
}

Span PieceOfItem(const Model& model, const ItemFact& item) {
    const DeclarationFact* const declaration = DeclarationAround(model, item.place);
    if (declaration != nullptr) {
        return declaration->span;
    }
    const StatementFact* const statement =
        item.statement == NONE
            ? nullptr
            : &model.facts.statements[static_cast<std::size_t>(item.statement)];
    return statement == nullptr || IsCompoundBegin(statement->kind)
               ? RestOfLine(model, item.place)
               : statement->span;
}

}  // namespace

std::vector<CodeItem> CodeFor(const Model& model, Span piece) {
    std::vector<CodeItem> code;
    if (IsBroken(model)) {
        return code;
    }
    for (const ItemFact& item : model.facts.items) {
        if (Holds(piece, item.place)) {
            const std::string_view text = model.facts.codeOf(item.text);
            code.push_back({QString::fromUtf8(text.data(), static_cast<int>(text.size())),
                            PieceOfItem(model, item)});
        }
    }
    return code;
}

namespace {

Span Begin(Span span) {
    return {span.begin, span.begin + 1};
}

Span PieceOfAssign(const Model& model, Span token) {
    const StatementFact* const statement = StatementAround(model, token.begin);
    if (statement != nullptr) {
        return IsCompoundBegin(statement->kind) ? Begin(statement->span) : statement->span;
    }
    const DeclarationFact* const declaration = DeclarationAround(model, token.begin);
    return Begin(declaration == nullptr ? token : declaration->span);
}

}  // namespace

Span PieceOfToken(const Model& model, int token) {
    const Tokens tokens(model.source, model.facts);
    const Span span = tokens.span(token);
    if (tokens.is(token, TOKEN_ASSIGN)) {
        return PieceOfAssign(model, span);
    }
    const Subject subject(model.source, model.facts);
    const int statement = StatementAt(subject, span.begin);
    return statement == NONE ? Begin(span) : subject.statement(statement).span;
}

QString CodeText(const Model& model, int token) {
    const std::vector<CodeItem> code = CodeFor(model, PieceOfToken(model, token));
    if (code.empty()) {
        return QString();
    }
    QStringList lines;
    const int count = static_cast<int>(code.size());
    for (int index = 0; index < std::min(count, MOST_ITEMS); ++index) {
        lines.append(code[static_cast<std::size_t>(index)].text);
    }
    const QString more = count > MOST_ITEMS
                             ? QStringLiteral("\n%1 more items").arg(count - MOST_ITEMS)
                             : QString();
    return QStringLiteral("```text\n%1\n```%2").arg(lines.join(u'\n'), more);
}
