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

// A help with what does what it says.
inline Help SayAndOffer(const QString& text, Span span, Mend offer) {
    return {QString(), text, span, {}, std::move(offer)};
}

// A help with what mends the slip, and what does what it says where that is another text.
inline Help SayAndMend(const QString& text, Span span, Mend mend, Mend offer) {
    return {QString(), text, span, std::move(mend), std::move(offer)};
}
inline Help SayAndMend(const QString& text, Span span, const Mend& mend) {
    return SayAndMend(text, span, mend, mend);
}

// The same for a slip of writing, which is one whatever the names around it mean.
inline Help SayOfText(const QString& text, Span span, Mend mend, Mend offer) {
    return {QString(), text, span, std::move(mend), std::move(offer), true};
}
inline Help SayOfText(const QString& text, Span span, const Mend& mend) {
    return SayOfText(text, span, mend, mend);
}

// A help with what leaves out the slip so that the rest compiles: not what the author wants.
inline Help SayAndLeaveOut(const QString& text, Span span, Mend mend) {
    return SayAndMend(text, span, std::move(mend), {});
}

// Single edits.
inline Edit InPlaceOf(const Piece& piece, const QString& text) {
    return {piece.span, text};
}
inline Edit PutInBefore(const Piece& piece, const QString& text) {
    return {{piece.span.begin, piece.span.begin}, text};
}
inline Edit PutInAfter(const Piece& piece, const QString& text) {
    return {{piece.span.end, piece.span.end}, text};
}
