// The table of rules: each recognises one slip and tells the way out.
//
// A help must be true wherever its rule fires; a rule that is not sure stays silent. The rows are
// tried in order, and the first that fires is the help.
#pragma once

#include "check/context.h"
#include "check/diagnostic.h"

#include "qyx_messages.h"

#include <optional>
#include <utility>
#include <vector>

struct Rule {
    QLatin1String id;
    std::optional<Help> (*help)(const Context& context);
};
using Rules = std::vector<Rule>;

// By what they are about, in the order in which they are tried.
Rules RulesOfText();          // comments, strings, literals
Rules RulesOfStructure();     // units, sections, what is not ended
Rules RulesOfDeclarations();  // names, types, initial values
Rules RulesOfStatements();    // assignments, loops, CASE, calls
Rules RulesOfOperators();     // signs, conditions, types that do not go together
Rules RulesOfNames();         // what is not known here

using Mend = std::vector<Edit>;

// A help, at the place of the error or at one of its own.
inline Help Say(const QString& text, Span span = {}) {
    return {QString(), text, span};
}

// A help with what mends the slip.
inline Help SayAndMend(const QString& text, Span span, Mend mend) {
    return {QString(), text, span, std::move(mend)};
}

// The same for a slip of writing, which is one whatever the names around it mean.
inline Help SayOfText(const QString& text, Span span, Mend mend) {
    return {QString(), text, span, std::move(mend), true};
}
