// What the compiler tells about one script.
//
// All records are plain numbers: places are offsets into the script's text, texts are pieces of
// it or of the two stores of texts, and records refer to each other by their index. So they pass
// through a pipe as they are.
#pragma once

#include "facts/source.h"

#include "qyx_observer.h"

#include <QByteArray>
#include <QString>

#include <string_view>
#include <vector>

constexpr int NONE = -1;  // the index of no record

struct TokenFact {
    Span span;
    Token code;
    Typ type;  // of a literal, else TYP_NONE
};

// A comment; one that is left open has an empty span at its begin.
struct CommentFact {
    Span span;
};

// A definition or the program, from its keyword to its END_ word.
struct UnitFact {
    Span span;   // of its keyword alone, if it has not ended
    Token kind;  // TOKEN_FUNCTION, TOKEN_FUNCTION_BLOCK or TOKEN_PROGRAM
    int name;    // index of its name, NONE before it has one
    bool isEnded;
};

enum class NameKind : unsigned char { Variable, Function, FunctionBlock, Program, Label };

struct NameFact {
    Span text;  // in `texts`: as it was declared
    Span span;  // where it was declared; empty for a built-in and for a label without definition
    NameKind kind;
    Token section;  // of a variable: the keyword of its section, TOKEN_RESULT for a result
    Typ type;       // of a variable, or what a function gives, else TYP_NONE
    bool isConstant;
    bool isReference;
    bool isBuiltIn;
    int unit;  // where it is declared, NONE for what every unit sees
};

enum class UseKind : unsigned char { Read, Write, Reference, Call, Goto };

struct UseFact {
    Span span;
    int name;
    UseKind kind;
};

// A declaration from its first token to its ";".
struct DeclarationFact {
    Span span;  // empty at its begin, if it has not ended
    int unit;
    int name;  // NONE while its variable is not known
    bool isEnded;
};

// A binary operation, or a NOT, with what the compiler takes for its operands: parentheses,
// signs, calls and other operations are part of them.
struct OperationFact {
    Span left;  // of NOT empty, at its begin
    Span op;
    Span right;
    Token code;     // of the operator
    Typ leftType;   // of NOT TYP_NONE
    Typ rightType;  // both as the compiler has them, in arithmetic with what stands before
    int statement;

    Span span() const { return {left.begin, right.end}; }
};

// A statement from its first token to its ";", or the ":" of a label.
struct StatementFact {
    Span span;   // empty at its begin, if it has not ended
    Token kind;  // the code of its first token
    int unit;
    int parent;  // the statement that holds it, or NONE
    bool isEnded;
};

// An item of target code, in the order of the code.
struct ItemFact {
    Span text;  // in `codes`
    int place;  // of the statement, the part of its head, or the declaration it is written for
    int statement;  // the statement, or NONE
};

struct MessageFact {
    bool isError;
    int constant;  // in the catalogue
    int place;     // where the message stands
    Place given;   // the same as the compiler says it; part of it is 0 where no character stands
    Span text;     // in `texts`
};

// What the error says beside its text.
struct ErrorFact {
    Span token;                   // the token at its place, as far as it was read
    std::vector<Token> expected;  // the tokens of which one was expected
    Typ current = TYP_NONE;       // the types that do not go together
    Typ next = TYP_NONE;
};

// What was going on where the compile ended.
struct OpenFact {
    int unit = NONE;
    int declaration = NONE;
    int statement = NONE;  // the innermost
    int part = NONE;       // the offset of the part of that statement
    bool inComment = false;
};

// What of a compile is collected.
enum class Records : unsigned char {
    All,
    ForLayout  // neither items nor uses of variables, which are most of what there is
};

struct Facts {
    std::vector<TokenFact> tokens;  // with an error, those after it too
    std::vector<CommentFact> comments;
    std::vector<UnitFact> units;
    std::vector<NameFact> names;
    std::vector<UseFact> uses;
    std::vector<DeclarationFact> declarations;
    std::vector<StatementFact> statements;
    std::vector<OperationFact> operations;
    std::vector<ItemFact> items;
    std::vector<MessageFact> messages;  // the error, if there is one, is the last
    ErrorFact error;
    OpenFact open;
    QString texts;     // of names and messages
    QByteArray codes;  // UTF-8, of items, each with a blank after it

    bool isCompiled() const { return messages.empty() || !messages.back().isError; }
    QStringView textOf(Span span) const {
        return QStringView(texts).mid(span.begin, span.length());
    }
    std::string_view codeOf(Span span) const {
        return {codes.constData() + span.begin, static_cast<std::size_t>(span.length())};
    }
};

// The token that begins at an offset; an empty span if none does.
Span TokenAt(const Facts& facts, int offset);

// The piece of the script that a message marks.
Span SpanOfMessage(const Facts& facts, const MessageFact& message);
