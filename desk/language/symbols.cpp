#include "language/symbols.h"

#include "machine/code.h"

#include "qyx_types.h"

#include <QHash>

#include <algorithm>

namespace {

Span Union(Span one, Span other) {
    return {std::min(one.begin, other.begin), std::max(one.end, other.end)};
}

QString DetailOf(const NameFact& name) {
    const QString type = name.type == TYP_NONE ? QString() : QString(TypToStr(name.type));
    return name.kind == NameKind::Variable
               ? QString(TokensTable[Lookup(name.section)].text) + QStringLiteral(" : ") + type
               : type;
}

// What declares each name: the declaration of a variable, the statement that a label is.
std::vector<Span> RangesOfNames(const Model& model) {
    std::vector<Span> ranges;
    QHash<int, std::size_t> byBegin;
    for (std::size_t name = 0; name < model.facts.names.size(); ++name) {
        ranges.push_back(DeclaredAt(model, static_cast<int>(name)));
        byBegin.insert(ranges.back().begin, name);
    }
    for (const DeclarationFact& declaration : model.facts.declarations) {
        if (declaration.name != NONE && declaration.isEnded) {
            Span& range = ranges[static_cast<std::size_t>(declaration.name)];
            range = Union(declaration.span, range);
        }
    }
    for (const StatementFact& statement : model.facts.statements) {
        const auto label = byBegin.constFind(statement.span.begin);
        if (label != byBegin.constEnd() && !ranges[*label].isEmpty()) {
            ranges[*label] = Union(statement.span, ranges[*label]);
        }
    }
    return ranges;
}

Symbol SymbolOf(const Model& model, int name, Span range) {
    const NameFact& fact = NameOf(model, name);
    return {TextOfName(model, name),
            DetailOf(fact),
            fact.kind,
            fact.isConstant,
            range,
            DeclaredAt(model, name),
            {}};
}

Symbol UnitSymbol(const Model& model, int unit) {
    const UnitFact& fact = UnitOf(model, unit);
    const NameFact& name = NameOf(model, fact.name);
    const Span range = ExtentOfUnit(model, unit);
    const Span declared = DeclaredAt(model, fact.name);
    const QString keyword = QString(TokensTable[Lookup(fact.kind)].text);
    const QString type = DetailOf(name);
    return {TextOfName(model, fact.name),
            type.isEmpty() ? keyword : keyword + QStringLiteral(" : ") + type,
            name.kind,
            false,
            range,
            declared.isEmpty() ? Span{range.begin, range.begin} : declared,
            {}};
}

// The position of the symbol of each unit, NONE for one that has no name.
std::vector<int> AddUnits(const Model& model, std::vector<Symbol>& symbols) {
    std::vector<int> positions;
    const int count = static_cast<int>(model.facts.units.size());
    for (int unit = 0; unit < count; ++unit) {
        const bool hasName = UnitOf(model, unit).name != NONE;
        positions.push_back(hasName ? static_cast<int>(symbols.size()) : NONE);
        if (hasName) {
            symbols.push_back(UnitSymbol(model, unit));
        }
    }
    return positions;
}

bool IsBefore(const Symbol& one, const Symbol& other) {
    return one.selection.begin < other.selection.begin;
}

bool IsChild(const NameFact& name) {
    return (name.kind == NameKind::Variable && !IsResult(name)) || name.kind == NameKind::Label;
}

}  // namespace

std::vector<Symbol> SymbolsOf(const Model& model) {
    std::vector<Symbol> symbols;
    const std::vector<int> positions = AddUnits(model, symbols);
    const std::vector<Span> ranges = RangesOfNames(model);
    for (std::size_t name = 0; name < ranges.size(); ++name) {
        const NameFact& fact = model.facts.names[name];
        const Span declared = DeclaredAt(model, static_cast<int>(name));
        const int unit = declared.isEmpty() ? NONE : UnitAt(model, declared.begin);
        const int position = unit == NONE ? NONE : positions[static_cast<std::size_t>(unit)];
        if (position != NONE && IsChild(fact)) {
            symbols[static_cast<std::size_t>(position)].children.push_back(
                SymbolOf(model, static_cast<int>(name), ranges[name]));
        }
    }
    for (Symbol& symbol : symbols) {
        std::stable_sort(symbol.children.begin(), symbol.children.end(), IsBefore);
    }
    return symbols;
}

bool IsFoundBy(const QString& name, const QString& query) {
    const QString letters = FoldedName(query);
    const auto* next = letters.begin();
    for (const QChar letter : FoldedName(name)) {
        next += next != letters.end() && *next == letter ? 1 : 0;
    }
    return next == letters.end();
}
