// The rules that follow the ways through a script.
#pragma once

#include "check/diagnostic.h"
#include "lints/flow_layout.h"
#include "lints/flow_variables.h"

#include <vector>

// A script that compiles and what was read from its code.
struct FlowScript {
    const Source& source;
    const Facts& facts;
    FlowCode code;
    FlowLayout layout;
    std::vector<UnitFlow> units;

    const ItemFact& item(int index) const { return facts.items[static_cast<std::size_t>(index)]; }
    const NameFact& name(int index) const { return facts.names[static_cast<std::size_t>(index)]; }
    const UseFact& use(int index) const { return facts.uses[static_cast<std::size_t>(index)]; }
    const UnitFact& unit(int index) const { return facts.units[static_cast<std::size_t>(index)]; }
    const StatementFact& statement(int index) const {
        return facts.statements[static_cast<std::size_t>(index)];
    }
};

// Each appends what it finds, in any order.
void FindUnsetReads(const FlowScript& script, std::vector<Diagnostic>& found);
void FindUnusedStores(const FlowScript& script, std::vector<Diagnostic>& found);
void FindUnreachableCode(const FlowScript& script, std::vector<Diagnostic>& found);
void FindChangedLoopVariables(const FlowScript& script, std::vector<Diagnostic>& found);

// The text of a name in the quotes of a message.
inline QString Quoted(const FlowScript& script, int name) {
    return QLatin1Char('"') + script.facts.textOf(script.name(name).text).toString() +
           QLatin1Char('"');
}

inline Diagnostic FlowWarning(const char* id, const QString& message, Span span) {
    return {Level::Warning, QString::fromLatin1(id), message, span, {}, std::nullopt};
}

// The same with a help, which may be about another place.
inline Diagnostic FlowWarning(const char* id, const QString& message, Span span,
                              const QString& help, Span helpSpan = {}) {
    return {Level::Warning, QString::fromLatin1(id),       message,
            span,           {{QString(), help, helpSpan}}, std::nullopt};
}
