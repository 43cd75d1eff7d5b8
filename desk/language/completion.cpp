#include "language/completion.h"

#include "language/opening.h"
#include "language/places.h"
#include "language/signature.h"
#include "language/snippets.h"

#include "qyx_types.h"

#include <algorithm>

namespace {

// ---------------------------------------------------------------------------------------------
// Reserved words
// ---------------------------------------------------------------------------------------------

// RESULT is a variable; it is a word in the head of its function, which it may end.
bool IsWord(const token& row, bool isInHead) {
    return QChar(row.text.front()).isLetter() && (row.code != TOKEN_RESULT || isInHead);
}

bool IsInHeadOfFunction(const Facts& facts) {
    const int unit = facts.open.unit;
    const auto isResult = [unit](const NameFact& name) {
        return name.section == TOKEN_RESULT && name.unit == unit;
    };
    return unit != NONE && facts.units[static_cast<std::size_t>(unit)].kind == TOKEN_FUNCTION &&
           std::none_of(facts.names.begin(), facts.names.end(), isResult);
}

QStringList ReservedWords(bool isInHead) {
    QStringList words;
    for (const token& row : TokensTable) {
        if (IsWord(row, isInHead)) {
            words.append(QString(row.text));
        }
    }
    return words;
}

QStringList TypeNames() {
    QStringList names;
    for (const typ& row : TypsTable) {
        names.append(QString(row.name));
    }
    return names;
}

QString WordOf(Token code) {
    return QString(TokensTable[Lookup(code)].text);
}

// ---------------------------------------------------------------------------------------------
// What comes next
// ---------------------------------------------------------------------------------------------

enum class Next : unsigned char { Word, Type, Statement, Value, LoopVariable, Label, Reference };

// A type comes after the ":" of a declaration or of the head of a function.
bool IsType(const Opening& opening) {
    const Facts& facts = opening.facts;
    const int end = opening.before.size();
    const auto after =
        std::find_if(facts.tokens.begin(), facts.tokens.end(),
                     [end](const TokenFact& token) { return token.span.begin >= end; });
    return facts.open.statement == NONE && facts.open.unit != NONE &&
           after != facts.tokens.begin() && std::prev(after)->code == TOKEN_COLON;
}

Next NameThatComes(const Opening& opening) {
    const Token statement = opening.statement();
    return statement == TOKEN_FOR       ? Next::LoopVariable
           : statement == TOKEN_GOTO    ? Next::Label
           : statement == TOKEN_UNKNOWN ? Next::Word
                                        : Next::Reference;
}

// TICK is a statement's first word and a value, but stands nowhere else.
Next NextOf(const Opening& opening, const QStringList& words) {
    if (words.contains(WordOf(TOKEN_IF))) {
        return Next::Statement;
    }
    if (words.contains(WordOf(TOKEN_TICK))) {
        return Next::Value;
    }
    if (IsType(opening)) {
        return Next::Type;
    }
    return opening.expects(TOKEN_IDENTIFIER) ? NameThatComes(opening) : Next::Word;
}

// ---------------------------------------------------------------------------------------------
// Names
// ---------------------------------------------------------------------------------------------

bool IsOrdinal(Typ type) {
    return type != TYP_NONE && TypsTable[type - 1].typClass == TypClass::Ordinal;
}

// What the parameter of a call is that comes next, if it is passed by reference.
std::optional<Formal> ReferenceAt(const Opening& opening) {
    const Context context = ContextOf(opening.before, opening.facts);
    const std::optional<CallPlace> call = CallAround(context, context.here);
    const std::optional<Callee> callee =
        call ? CalleeNamed(context, PieceAt(context, call->name).text) : std::nullopt;
    const bool isThere =
        callee && static_cast<std::size_t>(call->parameter) < callee->formals.size();
    return isThere
               ? std::make_optional(callee->formals[static_cast<std::size_t>(call->parameter)])
               : std::nullopt;
}

bool Suits(const NameFact& variable, Next next, Typ referenceType) {
    switch (next) {
        case Next::Statement:
            return !variable.isConstant;
        case Next::LoopVariable:
            return !variable.isConstant && IsOrdinal(variable.type) &&
                   variable.section != TOKEN_RESULT;
        case Next::Reference:
            return variable.type == referenceType && !variable.isConstant &&
                   variable.section != TOKEN_RESULT;
        default:
            return next == Next::Value;
    }
}

QString DetailOf(const NameFact& variable) {
    const QString type = QString(TypToStr(variable.type));
    const QString constant = variable.isConstant ? QStringLiteral(" CONSTANT") : QString();
    return variable.section == TOKEN_RESULT
               ? type
               : type + QStringLiteral(", ") + WordOf(variable.section) + constant;
}

void AddVariables(const Opening& opening, Next next, std::vector<Proposal>& proposals) {
    const Facts& facts = opening.facts;
    const std::optional<Formal> formal =
        next == Next::Reference ? ReferenceAt(opening) : std::nullopt;
    const Typ type = formal ? formal->type : TYP_NONE;
    for (const NameFact& name : facts.names) {
        const QString text = facts.textOf(name.text).toString();
        const bool isVariable = name.kind == NameKind::Variable && name.unit == facts.open.unit;
        if (isVariable && !opening.putIn.contains(text) && Suits(name, next, type)) {
            proposals.push_back({ProposalKind::Variable, text, DetailOf(name), {}});
        }
    }
}

// The labels of the whole script, also those after the place.
void AddLabels(const Facts& facts, std::vector<Proposal>& proposals) {
    for (const NameFact& name : facts.names) {
        if (name.kind == NameKind::Label && !name.span.isEmpty()) {
            proposals.push_back(
                {ProposalKind::Label, facts.textOf(name.text).toString(), {}, {}});
        }
    }
}

// ---------------------------------------------------------------------------------------------
// Calls
// ---------------------------------------------------------------------------------------------

// "${2:value}": what stands in a gap may not hold the marks of snippets, and names do not.
QString GapOf(const Formal& formal, const QString& name, int number) {
    const QString text = name.isEmpty() ? QString(TypToStr(formal.type)) : name;
    return QStringLiteral("${%1:%2}").arg(number).arg(text);
}

QString CallSnippet(const Callee& callee) {
    const QStringList names = NamesOfFormals(callee);
    QStringList gaps;
    for (const Formal& formal : callee.formals) {
        gaps.append(GapOf(formal, names.value(gaps.size()), gaps.size() + 1));
    }
    return gaps.isEmpty() ? QString()
                          : callee.name + u'(' + gaps.join(QStringLiteral(", ")) + u')';
}

Proposal ProposalOf(const Callee& callee, ProposalKind kind) {
    return {kind, callee.name, SignatureOf(callee).label, CallSnippet(callee)};
}

// A function block has no value.
void AddCallees(const Opening& opening, Next next, std::vector<Proposal>& proposals) {
    const Context context = ContextOf(opening.before, opening.facts);
    const auto add = [&](const Callee& callee, ProposalKind kind) {
        if (callee.isFunction || next == Next::Statement) {
            proposals.push_back(ProposalOf(callee, kind));
        }
    };
    for (const UnitFact& unit : opening.facts.units) {
        const std::optional<Callee> callee = CalleeNamed(context, NameOf(context, unit));
        if (callee && unit.kind != TOKEN_PROGRAM && !opening.putIn.contains(callee->name)) {
            add(*callee, ProposalKind::Definition);
        }
    }
    for (const Callee& callee : BuiltInCallees()) {
        add(callee, ProposalKind::BuiltIn);
    }
}

// ---------------------------------------------------------------------------------------------
// Words
// ---------------------------------------------------------------------------------------------

void AddWords(const QStringList& words, ProposalKind kind, std::vector<Proposal>& proposals) {
    for (const QString& word : words) {
        proposals.push_back({kind, word, {}, {}});
    }
}

void AddSnippets(const QStringList& words, std::vector<Proposal>& proposals) {
    for (const Snippet& snippet : Snippets()) {
        if (words.contains(snippet.firstWord)) {
            proposals.push_back(
                {ProposalKind::Snippet, snippet.firstWord, snippet.name, snippet.body});
        }
    }
}

std::vector<Proposal> ProposalsOf(const Model& model, const Opening& opening) {
    const QStringList words =
        WordsThatMayStand(opening, ReservedWords(IsInHeadOfFunction(opening.facts)));
    const Next next = NextOf(opening, words);
    std::vector<Proposal> proposals;
    AddVariables(opening, next, proposals);
    if (next == Next::Label) {
        AddLabels(model.facts, proposals);
    }
    if (next == Next::Statement || next == Next::Value) {
        AddCallees(opening, next, proposals);
    }
    if (next == Next::Type) {
        AddWords(WordsThatMayStand(opening, TypeNames()), ProposalKind::Type, proposals);
    }
    AddSnippets(words, proposals);
    AddWords(words, ProposalKind::Word, proposals);
    return proposals;
}

bool IsInNumber(const Model& model, int offset) {
    const std::vector<TokenFact>& tokens = model.facts.tokens;
    return std::any_of(tokens.begin(), tokens.end(), [offset](const TokenFact& token) {
        return token.code == TOKEN_NUMBER && token.span.begin < offset &&
               offset <= token.span.end;
    });
}

}  // namespace

Proposals ProposalsAt(const Model& model, int offset) {
    const Span word = WordAt(model.source, offset);
    const bool isCode = PlaceKindAt(model, offset) == PlaceKind::Code;
    if (!isCode || IsInNumber(model, offset)) {  // the compiler need not be asked
        return {word, {}};
    }
    const std::optional<Opening> opening = OpeningAt(model, word.begin);
    return {word, opening ? ProposalsOf(model, *opening) : std::vector<Proposal>()};
}
