#include "mutator.h"

#include "literals.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <numeric>
#include <utility>
#include <vector>

namespace {

constexpr int MOST_CHANGES = 8;
constexpr std::size_t LONGEST_RUN = 8;
constexpr std::size_t DEEPEST_NEST = 40;

// Operands are none of them: there are too many.
constexpr std::array<PieceKind, 4> MOVABLE_KINDS = {PieceKind::UNIT, PieceKind::SECTION,
                                                    PieceKind::DECLARATION, PieceKind::STATEMENT};

// How often an expression is wrapped: mostly once, at times past the limit of nesting.
constexpr std::array<std::size_t, 16> WRAP_COUNTS = {1, 1, 1, 1, 1, 1, 1,  1,
                                                     1, 1, 1, 2, 2, 3, 40, 4600};

// The tables do not tell which operators are prefixes.
constexpr std::array<std::string_view, 3> PREFIXES = {"NOT ", "-", "+"};

constexpr std::array<std::string_view, 12> COMMENTS = {
    "(* *)",     "(**)",     "(***)",     "(* a *)", "(* (* *)", "(* // *)",
    "(* 'a' *)", "(*\n\n*)", "(* ; ж *)", "// a\n",  "//\n",     "// (*\n"};

constexpr std::array<std::string_view, 8> BLANKS = {" ",    "\n",   "\r\n", "\t",
                                                    "  \n", "\n\n", "",     "\r"};

Tokens Concatenate(Tokens first, const Tokens& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

Tokens Slice(const Tokens& tokens, Run run) {
    return {tokens.begin() + static_cast<std::ptrdiff_t>(run.begin),
            tokens.begin() + static_cast<std::ptrdiff_t>(run.end)};
}

std::string Repeat(std::string_view text, std::size_t count) {
    std::string repeated;
    for (; count > 0; --count) {
        repeated += text;
    }
    return repeated;
}

char ToggleCase(char c) {
    const bool isLetter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    return isLetter ? static_cast<char>(c ^ ('a' - 'A')) : c;
}

bool IsBlank(const SourceToken& token) {
    return token.kind == TokenKind::BLANK;
}

auto HasKind(TokenKind kind) {
    return [kind](const SourceToken& token) { return token.kind == kind; };
}

bool OpensPart(const SourceToken& token) {
    return token.word != nullptr && token.word->closer != nullptr;
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// The choice of mutations
// ---------------------------------------------------------------------------------------------

struct Mutator::Weighted {
    Mutation mutation;
    std::size_t weight;
};

Mutator::Mutation Mutator::chooseMutation() {
    static constexpr std::array<Weighted, 20> MUTATIONS = {{
        {&Mutator::replaceWord, 3},      {&Mutator::replaceInfix, 4},
        {&Mutator::replaceNumber, 4},    {&Mutator::replaceString, 1},
        {&Mutator::replaceName, 4},      {&Mutator::replaceOperand, 4},
        {&Mutator::deleteTokens, 2},     {&Mutator::duplicateTokens, 1},
        {&Mutator::swapTokens, 1},       {&Mutator::deletePiece, 2},
        {&Mutator::swapPieces, 2},       {&Mutator::copyPiece, 6},
        {&Mutator::nestPiece, 4},        {&Mutator::wrapExpression, 4},
        {&Mutator::extendExpression, 4}, {&Mutator::insertComment, 2},
        {&Mutator::insertWord, 1},       {&Mutator::replaceBlank, 1},
        {&Mutator::insertBlank, 1},      {&Mutator::changeCase, 1},
    }};
    static const std::size_t sum = std::accumulate(
        MUTATIONS.begin(), MUTATIONS.end(), std::size_t{0},
        [](std::size_t total, const Weighted& row) { return total + row.weight; });
    std::size_t place = random_.below(sum);
    const auto* row = MUTATIONS.begin();
    while (place >= row->weight) {
        place -= row->weight;
        ++row;
    }
    return row->mutation;
}

// insertWord() can always be done.
void Mutator::mutateOnce() {
    while (!(this->*chooseMutation())()) {
    }
}

std::string Mutator::mutate(std::string_view source, std::string_view other,
                            std::size_t maxSize) {
    std::string text(source.substr(0, maxSize));
    tokens_ = read(text);
    other_ = read(other);
    int changes = 0;
    do {
        mutateOnce();
        std::string changed = Join(tokens_);
        if (changed.empty() || changed.size() > maxSize) {
            tokens_ = read(text);
        } else {
            text = std::move(changed);
        }
    } while (++changes < MOST_CHANGES && random_.oneIn(2));
    return text;
}

// ---------------------------------------------------------------------------------------------
// Single tokens
// ---------------------------------------------------------------------------------------------

bool Mutator::replaceWord() {
    return replaceToken(HasKind(TokenKind::WORD), [this](const SourceToken& token) {
        return random_.oneOf(words_.group(token.word->group));
    });
}

// A word mostly by a word, a sign by a sign.
bool Mutator::replaceInfix() {
    const auto isInfix = [this](const SourceToken& token) {
        return token.word != nullptr && words_.isInfix(*token.word);
    };
    return replaceToken(isInfix, [this](const SourceToken& token) {
        std::string infix = random_.oneOf(words_.infixes());
        while (words_.find(infix)->group != token.word->group && !random_.oneIn(4)) {
            infix = random_.oneOf(words_.infixes());
        }
        return infix;
    });
}

bool Mutator::replaceNumber() {
    return replaceToken(HasKind(TokenKind::NUMBER),
                        [this](const SourceToken&) { return MakeNumber(random_); });
}

bool Mutator::replaceString() {
    return replaceToken(HasKind(TokenKind::STRING),
                        [this](const SourceToken&) { return MakeString(random_); });
}

// Mostly by one that can stand there.
bool Mutator::replaceName() {
    const auto place = chooseToken(HasKind(TokenKind::NAME));
    if (!place) {
        return false;
    }
    const Outline here(tokens_);
    const Scope scope = here.scopeAt(*place);
    const Variable* const variable = scope.find(tokens_[*place].text);
    const bool isAny = variable == nullptr || random_.oneIn(4);
    const bool isCallee = here.isCalled(*place) && !random_.oneIn(4);
    replace({*place, *place + 1},
            read(isCallee ? chooseCallee(here, *place)
                          : chooseVariable(scope, isAny ? "" : variable->type)));
    return true;
}

bool Mutator::insertWord() {
    insert(random_.below(tokens_.size() + 1), read(random_.oneOf(words_.all())));
    return true;
}

bool Mutator::changeCase() {
    const auto place = chooseToken([](const SourceToken& token) {
        return token.kind == TokenKind::WORD || token.kind == TokenKind::NAME;
    });
    if (!place) {
        return false;
    }
    const bool isWhole = random_.oneIn(2);
    for (char& c : tokens_[*place].text) {
        c = isWhole || random_.oneIn(2) ? ToggleCase(c) : c;
    }
    return true;
}

// ---------------------------------------------------------------------------------------------
// Between tokens
// ---------------------------------------------------------------------------------------------

bool Mutator::insertComment() {
    insert(random_.below(tokens_.size() + 1), read(random_.oneOf(COMMENTS)));
    return true;
}

// By nothing too, which may join two tokens.
bool Mutator::replaceBlank() {
    const auto place = chooseToken(IsBlank);
    if (!place) {
        return false;
    }
    tokens_[*place].text = random_.oneOf(BLANKS);
    return true;
}

bool Mutator::insertBlank() {
    insert(random_.below(tokens_.size() + 1), read(random_.oneOf(BLANKS)));
    return true;
}

// ---------------------------------------------------------------------------------------------
// Runs of tokens, wherever they begin and end
// ---------------------------------------------------------------------------------------------

bool Mutator::deleteTokens() {
    if (tokens_.empty()) {
        return false;
    }
    replace(chooseRun(0), {});
    return true;
}

bool Mutator::duplicateTokens() {
    if (tokens_.empty()) {
        return false;
    }
    const Run run = chooseRun(0);
    const std::size_t place = random_.oneIn(2) ? run.end : random_.below(tokens_.size() + 1);
    insert(place, Slice(tokens_, run));
    return true;
}

bool Mutator::swapTokens() {
    if (tokens_.empty()) {
        return false;
    }
    const Run first = chooseRun(0);
    if (first.end == tokens_.size()) {
        return false;
    }
    swap(first, chooseRun(first.end));
    return true;
}

// ---------------------------------------------------------------------------------------------
// Pieces of the source
// ---------------------------------------------------------------------------------------------

bool Mutator::deletePiece() {
    const auto piece = chooseMovablePiece(Outline(tokens_));
    if (!piece) {
        return false;
    }
    replace(piece->run, {});
    return true;
}

bool Mutator::swapPieces() {
    const Outline here(tokens_);
    const auto first = chooseMovablePiece(here);
    if (!first) {
        return false;
    }
    const auto second = choose(here.piecesWithin({first->run.end, tokens_.size()}, first->kind));
    if (!second) {
        return false;
    }
    swap(first->run, *second);
    return true;
}

// Puts a piece of either source before or behind one of its kind.
bool Mutator::copyPiece() {
    const Outline here(tokens_);
    const Outline other(other_);
    const Outline& from = chooseOutline(here, other);
    const auto piece = chooseMovablePiece(from);
    const auto target = piece ? choose(here.piecesOf(piece->kind)) : std::nullopt;
    if (!target) {
        return false;
    }
    const std::size_t place = random_.oneIn(2) ? target->begin : target->end;
    insert(place, adapt(from, piece->run, here, place));
    return true;
}

// A statement without one of those that stand within it.
struct Mutator::Frame {
    Tokens head;
    Tokens tail;
};

std::optional<Mutator::Frame> Mutator::makeFrame(const Outline& from, const Outline& here,
                                                 std::size_t place) {
    const auto frame = choose(from.piecesOf(PieceKind::STATEMENT));
    if (!frame || !OpensPart(from.tokens()[frame->begin])) {
        return std::nullopt;
    }
    const auto body =
        choose(from.piecesWithin({frame->begin + 1, frame->end}, PieceKind::STATEMENT));
    if (!body) {
        return std::nullopt;
    }
    const Tokens adapted = adapt(from, *frame, here, place);
    return Frame{Slice(adapted, {0, body->begin - frame->begin}),
                 Slice(adapted, {body->end - frame->begin, adapted.size()})};
}

// Puts a statement into another one of either source, itself perhaps, and that in its place.
bool Mutator::nestPiece() {
    const Outline here(tokens_);
    const Outline other(other_);
    const auto statement = choose(here.piecesOf(PieceKind::STATEMENT));
    if (!statement) {
        return false;
    }
    const auto frame = makeFrame(chooseOutline(here, other), here, statement->begin);
    if (!frame) {
        return false;
    }
    Tokens nested = Slice(tokens_, *statement);
    const std::size_t depth = random_.oneIn(8) ? 1 + random_.below(DEEPEST_NEST) : 1;
    for (std::size_t level = 0; level < depth; ++level) {
        nested = Concatenate(Concatenate(frame->head, nested), frame->tail);
    }
    replace(*statement, nested);
    return true;
}

// ---------------------------------------------------------------------------------------------
// Expressions
// ---------------------------------------------------------------------------------------------

bool Mutator::replaceOperand() {
    const Outline here(tokens_);
    const auto expression = chooseExpression(here);
    if (!expression) {
        return false;
    }
    replace(*expression, makeOperand(here, expression->begin));
    return true;
}

// Into parentheses, behind a prefix, or as the parameter of a call.
bool Mutator::wrapExpression() {
    const Outline here(tokens_);
    const auto expression = chooseExpression(here);
    if (!expression) {
        return false;
    }
    const std::string head = makeHead(here, expression->begin);
    const std::size_t count = random_.oneOf(WRAP_COUNTS);
    const Tokens tail = head.back() == '(' ? read(Repeat(")", count)) : Tokens();
    const Tokens inner = Slice(tokens_, *expression);
    replace(*expression, Concatenate(Concatenate(read(Repeat(head, count)), inner), tail));
    return true;
}

std::string Mutator::makeHead(const Outline& here, std::size_t place) {
    switch (random_.below(4)) {
        case 0:
            return "(";
        case 1:
            return std::string(random_.oneOf(PREFIXES));
        case 2:
            return std::string(random_.oneOf(PREFIXES)) + '(';
        default:
            return chooseCallee(here, place) + '(';
    }
}

// "a" becomes "a + b".
bool Mutator::extendExpression() {
    const Outline here(tokens_);
    const auto operand = choose(here.piecesOf(PieceKind::OPERAND));
    if (!operand) {
        return false;
    }
    const Tokens infix = read(' ' + random_.oneOf(words_.infixes()) + ' ');
    insert(operand->end, Concatenate(infix, makeOperand(here, operand->end)));
    return true;
}

// An operand, and perhaps operators and operands behind it.
std::optional<Run> Mutator::chooseExpression(const Outline& here) {
    std::optional<Run> expression = choose(here.piecesOf(PieceKind::OPERAND));
    while (expression && random_.oneIn(2)) {
        const std::size_t end = nextOperandEnd(here, expression->end);
        if (end == expression->end) {
            break;
        }
        expression->end = end;
    }
    return expression;
}

// Behind the operator and the operand that follow on an operand which ends there, if they do.
std::size_t Mutator::nextOperandEnd(const Outline& here, std::size_t end) const {
    const SourceToken* const infix = here.after(end - 1);
    if (infix == nullptr || infix->word == nullptr || !words_.isInfix(*infix->word)) {
        return end;
    }
    const std::size_t begin = here.indexAfter(here.indexAfter(end - 1));
    const Runs operands = here.piecesOf(PieceKind::OPERAND);
    const auto next = std::find_if(operands.begin(), operands.end(),
                                   [&](const Run& operand) { return operand.begin == begin; });
    return next == operands.end() ? end : next->end;
}

Tokens Mutator::makeOperand(const Outline& here, std::size_t place) {
    if (random_.oneIn(16)) {
        return read(MakeString(random_));
    }
    if (random_.oneIn(3)) {
        return read(MakeNumber(random_));
    }
    if (random_.oneIn(2)) {
        return read(chooseVariable(here.scopeAt(place), ""));
    }
    const Outline other(other_);
    const Outline& from = chooseOutline(here, other);
    const auto operand = choose(from.piecesOf(PieceKind::OPERAND));
    return operand ? adapt(from, *operand, here, place) : read(MakeNumber(random_));
}

// A function that is built in, or declared before that place.
std::string Mutator::chooseCallee(const Outline& here, std::size_t place) {
    std::vector<std::string> own;
    for (std::size_t index = 0; index < place; ++index) {
        if (here.isUnit(index) && here.isDeclared(index)) {
            own.push_back(tokens_[index].text);
        }
    }
    const bool isBuiltIn = own.empty() || random_.oneIn(2);
    return random_.oneOf(isBuiltIn ? words_.group("functions") : own);
}

// ---------------------------------------------------------------------------------------------
// Names
// ---------------------------------------------------------------------------------------------

std::string Mutator::chooseVariable(const Scope& scope, const std::string& type) {
    const std::vector<std::string> names = scope.namesLike(type);
    return names.empty() ? "a" : random_.oneOf(names);
}

std::string Mutator::makeFreshName(const std::string& name, const Outline& here) {
    std::string fresh = name;
    while (here.hasName(fresh)) {
        fresh = name + std::to_string(random_.below(1000));
    }
    return fresh;
}

// What the run declares, with other names for those that `here` has already.
Mutator::Renamed Mutator::renameDeclared(const Outline& from, Run run, const Outline& here) {
    Renamed renamed;
    for (std::size_t index = run.begin; index < run.end; ++index) {
        if (from.isDeclared(index) || from.isUnit(index)) {
            const std::string& name = from.tokens()[index].text;
            renamed.emplace(Capitals(name), makeFreshName(name, here));
        }
    }
    return renamed;
}

// A run of `from` so that it can stand at that place of `here`: it declares no name a second
// time, and uses such names as are known there. It has as many tokens as before.
Tokens Mutator::adapt(const Outline& from, Run run, const Outline& here, std::size_t place) {
    Renamed renamed = renameDeclared(from, run, here);
    Tokens adapted = Slice(from.tokens(), run);
    for (std::size_t index = run.begin; index < run.end; ++index) {
        SourceToken& token = adapted[index - run.begin];
        if (token.kind == TokenKind::NAME) {
            const std::string name = Capitals(token.text);
            if (renamed.count(name) == 0) {
                renamed[name] = makeName(from, index, here, place);
            }
            token.text = renamed[name];
        }
    }
    return adapted;
}

// What to call at that place of `here` what `from` calls so: a callee, a variable of the same
// type, or the same if the name is known or is that of a label.
std::string Mutator::makeName(const Outline& from, std::size_t index, const Outline& here,
                              std::size_t place) {
    const std::string& name = from.tokens()[index].text;
    if (from.isCalled(index)) {
        return here.hasName(name) ? name : chooseCallee(here, place);
    }
    const Scope scope = here.scopeAt(place);
    const Scope scopeThere = from.scopeAt(index);
    const Variable* const variable = scopeThere.find(name);
    const bool isKnown = variable == nullptr || scope.find(name) != nullptr;
    return isKnown ? name : chooseVariable(scope, variable->type);
}

// ---------------------------------------------------------------------------------------------
// Places
// ---------------------------------------------------------------------------------------------

template <typename Predicate>
std::optional<std::size_t> Mutator::chooseToken(Predicate isSought) {
    std::vector<std::size_t> places;
    for (std::size_t index = 0; index < tokens_.size(); ++index) {
        if (isSought(tokens_[index])) {
            places.push_back(index);
        }
    }
    return places.empty() ? std::nullopt : std::optional(random_.oneOf(places));
}

std::optional<Run> Mutator::choose(const Runs& runs) {
    return runs.empty() ? std::nullopt : std::optional(random_.oneOf(runs));
}

// Each kind as often as the others.
std::optional<Piece> Mutator::chooseMovablePiece(const Outline& outline) {
    std::vector<PieceKind> kinds;
    std::copy_if(MOVABLE_KINDS.begin(), MOVABLE_KINDS.end(), std::back_inserter(kinds),
                 [&](PieceKind kind) { return !outline.piecesOf(kind).empty(); });
    if (kinds.empty()) {
        return std::nullopt;
    }
    const PieceKind kind = random_.oneOf(kinds);
    return Piece{kind, random_.oneOf(outline.piecesOf(kind))};
}

const Outline& Mutator::chooseOutline(const Outline& here, const Outline& other) {
    return random_.oneIn(2) ? here : other;
}

// Some tokens, from `begin` on, where at least one must stand.
Run Mutator::chooseRun(std::size_t begin) {
    begin += random_.below(tokens_.size() - begin);
    const std::size_t rest = tokens_.size() - begin;
    return {begin, begin + 1 + random_.below(std::min(rest, LONGEST_RUN))};
}

// ---------------------------------------------------------------------------------------------
// Changes
// ---------------------------------------------------------------------------------------------

template <typename Predicate, typename MakeText>
bool Mutator::replaceToken(Predicate isSought, MakeText makeText) {
    const auto place = chooseToken(isSought);
    if (!place) {
        return false;
    }
    replace({*place, *place + 1}, read(makeText(tokens_[*place])));
    return true;
}

// Blanks keep what is put there from growing together with its neighbours.
void Mutator::replace(Run run, const Tokens& tokens) {
    const Tokens blank = read(" ");
    Tokens changed = Slice(tokens_, {0, run.begin});
    if (!changed.empty() && !IsBlank(changed.back())) {
        changed = Concatenate(std::move(changed), blank);
    }
    changed = Concatenate(std::move(changed), tokens);
    if (run.end < tokens_.size() && !IsBlank(tokens_[run.end])) {
        changed = Concatenate(std::move(changed), blank);
    }
    tokens_ = Concatenate(std::move(changed), Slice(tokens_, {run.end, tokens_.size()}));
}

// The first one must end before the second one begins.
void Mutator::swap(Run first, Run second) {
    const Tokens between = Slice(tokens_, {first.end, second.begin});
    const Tokens changed = Concatenate(Slice(tokens_, second), between);
    replace({first.begin, second.end}, Concatenate(changed, Slice(tokens_, first)));
}
