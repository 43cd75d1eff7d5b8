// The parts of a source that the mutations move about as wholes. The source need not be correct:
// what cannot be told apart is left out.
#pragma once

#include "tokens.h"

#include <cstddef>
#include <set>
#include <string>
#include <vector>

enum class PieceKind { UNIT, SECTION, DECLARATION, STATEMENT, OPERAND };

// The tokens from `begin` up to `end`, which does not belong to it.
struct Run {
    std::size_t begin;
    std::size_t end;
};

using Runs = std::vector<Run>;

struct Piece {
    PieceKind kind;
    Run run;
};

struct Variable {
    std::string name;
    std::string type;
};

// The variables that are declared in one unit.
class Scope {
public:
    void add(Variable variable) { variables_.push_back(std::move(variable)); }

    // The one of that name, else null.
    const Variable* find(const std::string& name) const;
    // The names of those of that type; of all of them if there is none.
    std::vector<std::string> namesLike(const std::string& type) const;

private:
    std::vector<Variable> variables_;
};

// Of tokens that live on and do not change.
class Outline {
public:
    explicit Outline(const Tokens& tokens);

    const Tokens& tokens() const { return tokens_; }

    Runs piecesOf(PieceKind kind) const;
    Runs piecesWithin(Run run, PieceKind kind) const;

    // Whether the name stands anywhere in the source.
    bool hasName(const std::string& name) const { return names_.count(Capitals(name)) != 0; }
    // What the unit around that place declares; outside of units, what all of them declare.
    Scope scopeAt(std::size_t index) const;
    // What the token is, if it is a name.
    bool isDeclared(std::size_t index) const;  // here, as a variable, a function or a label
    bool isUnit(std::size_t index) const;  // of a program, a function or a function block, here
    bool isCalled(std::size_t index) const;

    // The next token behind, or before, that is neither blank nor comment; null at the edge.
    const SourceToken* after(std::size_t index) const;
    const SourceToken* before(std::size_t index) const;
    // Its place; the number of tokens at the edge.
    std::size_t indexAfter(std::size_t index) const;

private:
    // What follows on a token up to the end of its statement: behind the ";", or before what
    // closes the part around it.
    struct Tail {
        std::size_t end;
        bool hasStatementWord;
    };

    void matchAll();
    void match(std::vector<std::size_t>& opened, std::size_t index);
    void findTails();
    void addPiecesAt(std::size_t index);
    bool beginsStatement(std::size_t index) const;
    bool isAssignment(std::size_t index) const;
    bool beginsDeclaration(std::size_t index) const;
    bool isOperand(std::size_t index) const;
    bool opens(std::size_t index) const { return closers_[index] != 0; }
    std::size_t behindPart(std::size_t index) const;
    std::size_t statementEnd(std::size_t index) const;
    std::size_t operandEnd(std::size_t index) const;

    const Tokens& tokens_;
    std::vector<std::size_t> closers_;  // the place of the token that closes this one, else 0
    std::vector<Tail> tails_;
    std::vector<bool> isInSection_;
    std::set<std::string> names_;  // in capitals
    std::vector<Piece> pieces_;
};

bool IsSign(const SourceToken* token, std::string_view text);
