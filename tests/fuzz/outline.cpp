#include "outline.h"

#include <algorithm>
#include <iterator>

namespace {

const Word* WordOf(const SourceToken* token) {
    return token == nullptr ? nullptr : token->word;
}

// Whether the second token closes what the first one opens.
bool IsPair(const SourceToken& opener, const SourceToken& closer) {
    if (IsSign(&opener, "(")) {
        return IsSign(&closer, ")");
    }
    return opener.word != nullptr && closer.word != nullptr && opener.word->closer == closer.word;
}

bool MayOpen(const SourceToken& token) {
    return IsSign(&token, "(") || (token.word != nullptr && token.word->closer != nullptr);
}

bool MayClose(const SourceToken& token) {
    return IsSign(&token, ")") || Closes(token.word);
}

bool IsLiteral(const SourceToken& token) {
    return token.kind == TokenKind::NUMBER || token.kind == TokenKind::STRING ||
           IsIn(token.word, "constants");
}

// What parameters may follow.
bool IsCallee(const SourceToken* token) {
    return token != nullptr && (token->kind == TokenKind::NAME || IsIn(token->word, "functions"));
}

bool IsVariable(const SourceToken& token) {
    return token.kind == TokenKind::NAME || IsIn(token.word, "variables");
}

}  // namespace

bool IsSign(const SourceToken* token, std::string_view text) {
    return token != nullptr && token->kind == TokenKind::SIGN && token->text == text;
}

Outline::Outline(const Tokens& tokens)
    : tokens_(tokens),
      closers_(tokens.size()),
      tails_(tokens.size()),
      isInSection_(tokens.size()) {
    matchAll();
    findTails();
    for (std::size_t index = 0; index < tokens_.size(); ++index) {
        if (IsSolid(tokens_[index])) {
            addPiecesAt(index);
        }
        if (tokens_[index].kind == TokenKind::NAME) {
            names_.insert(Capitals(tokens_[index].text));
        }
    }
}

// ---------------------------------------------------------------------------------------------
// What closes what
// ---------------------------------------------------------------------------------------------

void Outline::matchAll() {
    std::vector<std::size_t> opened;
    for (std::size_t index = 0; index < tokens_.size(); ++index) {
        if (MayOpen(tokens_[index])) {
            opened.push_back(index);
        } else if (MayClose(tokens_[index])) {
            match(opened, index);
        }
    }
}

// What was opened within and never closed is passed over.
void Outline::match(std::vector<std::size_t>& opened, std::size_t index) {
    const auto opener = std::find_if(opened.rbegin(), opened.rend(), [&](std::size_t place) {
        return IsPair(tokens_[place], tokens_[index]);
    });
    if (opener == opened.rend()) {
        return;
    }
    const std::size_t begin = *opener;
    closers_[begin] = index;
    opened.erase(std::prev(opener.base()), opened.end());
    if (OpensSection(tokens_[begin].word)) {
        std::fill(isInSection_.begin() + static_cast<std::ptrdiff_t>(begin) + 1,
                  isInSection_.begin() + static_cast<std::ptrdiff_t>(index), true);
    }
}

// ---------------------------------------------------------------------------------------------
// Neighbours
// ---------------------------------------------------------------------------------------------

std::size_t Outline::indexAfter(std::size_t index) const {
    do {
        ++index;
    } while (index < tokens_.size() && !IsSolid(tokens_[index]));
    return std::min(index, tokens_.size());
}

const SourceToken* Outline::after(std::size_t index) const {
    const std::size_t next = indexAfter(index);
    return next < tokens_.size() ? &tokens_[next] : nullptr;
}

const SourceToken* Outline::before(std::size_t index) const {
    while (index > 0) {
        --index;
        if (IsSolid(tokens_[index])) {
            return &tokens_[index];
        }
    }
    return nullptr;
}

// The place behind the token, or behind all that it opens.
std::size_t Outline::behindPart(std::size_t index) const {
    return (opens(index) ? closers_[index] : index) + 1;
}

// ---------------------------------------------------------------------------------------------
// Names
// ---------------------------------------------------------------------------------------------

bool Outline::isDeclared(std::size_t index) const {
    return tokens_[index].kind == TokenKind::NAME && IsSign(after(index), ":");
}

bool Outline::isUnit(std::size_t index) const {
    const Word* const previous = WordOf(before(index));
    return tokens_[index].kind == TokenKind::NAME && IsIn(previous, "units") && !Closes(previous);
}

bool Outline::isCalled(std::size_t index) const {
    return tokens_[index].kind == TokenKind::NAME && IsSign(after(index), "(");
}

Scope Outline::scopeAt(std::size_t index) const {
    Run run = {0, tokens_.size()};
    for (const Run& unit : piecesOf(PieceKind::UNIT)) {
        if (unit.begin <= index && index <= unit.end) {
            run = unit;
        }
    }
    Scope scope;
    for (std::size_t place = run.begin; place < run.end; ++place) {
        if (isInSection_[place] && isDeclared(place)) {
            const SourceToken* const type = after(indexAfter(place));
            scope.add({tokens_[place].text, type == nullptr ? "" : Capitals(type->text)});
        }
    }
    return scope;
}

const Variable* Scope::find(const std::string& name) const {
    const auto found = std::find_if(
        variables_.begin(), variables_.end(),
        [&](const Variable& variable) { return Capitals(variable.name) == Capitals(name); });
    return found == variables_.end() ? nullptr : &*found;
}

std::vector<std::string> Scope::namesLike(const std::string& type) const {
    std::vector<std::string> all;
    std::vector<std::string> ofType;
    for (const Variable& variable : variables_) {
        all.push_back(variable.name);
        if (variable.type == type) {
            ofType.push_back(variable.name);
        }
    }
    return ofType.empty() ? all : ofType;
}

// ---------------------------------------------------------------------------------------------
// Pieces
// ---------------------------------------------------------------------------------------------

void Outline::addPiecesAt(std::size_t index) {
    const Word* const word = tokens_[index].word;
    if (opens(index) && IsIn(word, "units")) {
        pieces_.push_back({PieceKind::UNIT, {index, behindPart(index)}});
    } else if (opens(index) && OpensSection(word)) {
        pieces_.push_back({PieceKind::SECTION, {index, behindPart(index)}});
    } else if (beginsDeclaration(index)) {
        pieces_.push_back({PieceKind::DECLARATION, {index, statementEnd(index)}});
    } else if (beginsStatement(index)) {
        pieces_.push_back({PieceKind::STATEMENT, {index, statementEnd(index)}});
    }
    if (isOperand(index)) {
        pieces_.push_back({PieceKind::OPERAND, {index, operandEnd(index)}});
    }
}

bool Outline::beginsDeclaration(std::size_t index) const {
    const SourceToken* const previous = before(index);
    return isInSection_[index] && (IsSign(previous, ";") || OpensSection(WordOf(previous)));
}

// Statements begin with a word that has a closer, with the target of an assignment, or behind
// what ends a statement or a section.
bool Outline::beginsStatement(std::size_t index) const {
    const SourceToken& token = tokens_[index];
    const SourceToken* const previous = before(index);
    if (isInSection_[index] || MayClose(token) || token.kind == TokenKind::SIGN) {
        return false;
    }
    const bool isBehindSection =
        Closes(WordOf(previous)) && IsIn(WordOf(previous), "declarations");
    return (token.word != nullptr && opens(index)) || isBehindSection || IsSign(previous, ";") ||
           isAssignment(index);
}

// The one at the beginning of a loop is none: another word of a statement follows, not ";".
bool Outline::isAssignment(std::size_t index) const {
    return IsVariable(tokens_[index]) && IsSign(after(index), ":=") &&
           !tails_[index].hasStatementWord;
}

std::size_t Outline::statementEnd(std::size_t index) const {
    return index < tokens_.size() ? tails_[index].end : tokens_.size();
}

// From the last token to the first, as each tail is that of a later token and a little more.
void Outline::findTails() {
    for (std::size_t index = tokens_.size(); index-- > 0;) {
        const SourceToken& token = tokens_[index];
        if (MayClose(token)) {
            tails_[index] = {index, false};
        } else if (IsSign(&token, ";")) {
            tails_[index] = {index + 1, false};
        } else {
            const std::size_t next = behindPart(index);
            const bool goesOn = next < tokens_.size() && tails_[next].hasStatementWord;
            tails_[index] = {statementEnd(next), goesOn || IsIn(token.word, "statements")};
        }
    }
}

// Not what is assigned or declared, no label and no bound of a range.
bool Outline::isOperand(std::size_t index) const {
    const SourceToken& token = tokens_[index];
    const SourceToken* const previous = before(index);
    const bool isGroup = IsSign(&token, "(") && opens(index) && !IsCallee(previous);
    if (!isGroup && !IsLiteral(token) && !IsVariable(token) && !IsCallee(&token)) {
        return false;
    }
    const SourceToken* const next = after(index);
    const bool isElsewhere = isInSection_[index] || IsIn(WordOf(previous), "units");
    return !isElsewhere && !IsSign(previous, ";") && !IsSign(next, ":=") && !IsSign(next, ":") &&
           !IsSign(next, "..") && !IsSign(previous, "..");
}

// Behind the parameters of a call.
std::size_t Outline::operandEnd(std::size_t index) const {
    const std::size_t next = indexAfter(index);
    const bool isCall = next < tokens_.size() && IsCallee(&tokens_[index]) &&
                        IsSign(&tokens_[next], "(") && opens(next);
    return behindPart(isCall ? next : index);
}

Runs Outline::piecesOf(PieceKind kind) const {
    return piecesWithin({0, tokens_.size()}, kind);
}

Runs Outline::piecesWithin(Run run, PieceKind kind) const {
    Runs found;
    for (const Piece& piece : pieces_) {
        const bool isWithin = piece.run.begin >= run.begin && piece.run.end <= run.end;
        if (piece.kind == kind && isWithin) {
            found.push_back(piece.run);
        }
    }
    return found;
}
