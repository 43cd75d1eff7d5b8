#include "language/semantics.h"

#include "check/tokens.h"

#include <QHash>

#include <algorithm>

namespace {

Meaning MeaningOf(const NameFact& name) {
    switch (name.kind) {
        case NameKind::Function:
        case NameKind::FunctionBlock:
            return Meaning::Function;
        case NameKind::Program:
            return Meaning::Program;
        case NameKind::Label:
            return Meaning::Label;
        case NameKind::Variable:
            break;
    }
    const bool isParameter = name.section == TOKEN_VAR_ARG || name.section == TOKEN_VAR_REF;
    return isParameter ? Meaning::Parameter : Meaning::Variable;
}

Colour ColourOf(const NameFact& name, Span span) {
    const bool isBuiltIn = name.isBuiltIn || name.section == TOKEN_RESULT;
    return {span, MeaningOf(name), false, name.isConstant, false, isBuiltIn};
}

// The colours of names by where they stand.
using NameColours = QHash<int, Colour>;

void AddDeclarations(const Facts& facts, NameColours& colours) {
    for (const NameFact& name : facts.names) {
        if (!name.span.isEmpty() && name.section != TOKEN_RESULT) {
            Colour colour = ColourOf(name, name.span);
            colour.isDeclaration = true;
            colours.insert(name.span.begin, colour);
        }
    }
}

void AddUses(const Facts& facts, NameColours& colours) {
    for (const UseFact& use : facts.uses) {
        if (use.name != NONE) {
            Colour colour = ColourOf(facts.names[static_cast<std::size_t>(use.name)], use.span);
            colour.isWritten = use.kind == UseKind::Write;
            colours.insert(use.span.begin, colour);
        }
    }
}

bool IsOperator(Token code) {
    const bool isSign = code >= TOKEN_PLUS && code <= TOKEN_POWER;
    return isSign || code == TOKEN_ASSIGN ||
           (code >= TOKEN_EQUAL && code <= TOKEN_GREATER_OR_EQUAL);
}

// A token that names nothing which was declared; none where it has no colour.
std::optional<Meaning> MeaningOf(const Tokens& tokens, int index) {
    const Token code = tokens.code(index);
    if (code == TOKEN_NUMBER || code == TOKEN_STRING) {
        return code == TOKEN_NUMBER ? Meaning::Number : Meaning::String;
    }
    const bool isType = code == TOKEN_IDENTIFIER && tokens.typeNamed(index) != TYP_NONE;
    if (isType) {
        return Meaning::Type;
    }
    return IsOperator(code) ? std::make_optional(Meaning::Operator) : std::nullopt;
}

// TICK is a variable that the language declares.
bool IsTick(const Tokens& tokens, int index) {
    return tokens.is(index, TOKEN_TICK);
}

// A name is coloured where its span is that of the token: in a script that was mended, what was
// put in stands where another token may be.
void AddToken(const Tokens& tokens, int index, const NameColours& names,
              std::vector<Colour>& colours) {
    const Span span = tokens.span(index);
    const auto name = names.constFind(span.begin);
    if (name != names.constEnd() && name->span.end == span.end) {
        colours.push_back(*name);
    } else if (IsTick(tokens, index)) {
        colours.push_back({span, Meaning::Variable, false, false, false, true});
    } else if (const std::optional<Meaning> meaning = MeaningOf(tokens, index)) {
        colours.push_back({span, *meaning});
    }
}

// A comment, line by line.
void AddComment(const Source& source, Span comment, std::vector<Colour>& colours) {
    for (int begin = comment.begin; begin < comment.end;) {
        const int feed = source.text().indexOf(u'\n', begin);
        const int end = feed < 0 ? comment.end : std::min(feed, comment.end);
        if (!source.text({begin, end}).trimmed().isEmpty()) {
            colours.push_back({{begin, end}, Meaning::Comment});
        }
        begin = end + 1;
    }
}

}  // namespace

std::vector<Colour> ColoursOf(const Model& model) {
    NameColours names;
    AddDeclarations(model.facts, names);
    AddUses(model.facts, names);
    std::vector<Colour> colours;
    const Tokens tokens(model.source, model.facts);
    for (int index = 0; index < tokens.count(); ++index) {
        AddToken(tokens, index, names, colours);
    }
    for (const CommentFact& comment : model.facts.comments) {
        AddComment(model.source, comment.span, colours);
    }
    std::sort(colours.begin(), colours.end(),
              [](const Colour& a, const Colour& b) { return a.span.begin < b.span.begin; });
    return colours;
}
