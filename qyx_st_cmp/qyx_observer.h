// What may look on while a script is compiled.
//
// The compiler tells an observer what it does at the places through which everything passes: the
// tokens, units, declarations, statements and names that it reads, the items and messages that it
// writes. There is none unless a tool sets one, and no output depends on it. All that is told can
// be read from the globals at that moment: the current token is the one that is meant, unless it
// is said otherwise, and Look stands after it and the white space that follows it.
#pragma once

#include "qyx_globals.h"

#include <QLatin1String>

#include <initializer_list>
#include <string_view>
#include <utility>

// How a statement or an expression uses a variable or a definition.
enum class NameUse : unsigned char { Read, Write, Reference, Call };

// What a message is: the constant of the catalogue that tells its kind, its place and its text.
struct Message {
    bool isError;  // else a warning
    QLatin1String constant;
    TokenPos pos;
    const QString& text;
};

class Observer {
public:
    Observer() = default;
    Observer(const Observer&) = delete;
    Observer& operator=(const Observer&) = delete;
    virtual ~Observer() = default;

    // A token was read.
    virtual void token() = 0;
    // The "//" or "(*" of a comment was read; then the comment was.
    virtual void commentBegun() = 0;
    virtual void commentEnded() = 0;

    // A definition or the program begins with its keyword, gets its name, ends with its END_
    // word.
    virtual void unitBegun() = 0;
    virtual void unitNamed() = 0;
    virtual void unitEnded() = 0;

    // A declaration begins with its first token and ends with its ";". In between its variable
    // becomes known. The result of a function has TOKEN_RESULT for its section and no declaration
    // of its own.
    virtual void declarationBegun() = 0;
    virtual void variableDeclared(const VarItem& variable, Token section) = 0;
    virtual void declarationEnded() = 0;

    // A statement begins with its first token and ends with its ";", a label with its ":".
    virtual void statementBegun() = 0;
    virtual void statementEnded() = 0;
    // The items that follow are written for the part of the statement, or of the unit, that
    // begins there.
    virtual void partBegun(TokenPos pos) = 0;

    // A variable, a function or a function block is used; the last token of that spelling.
    virtual void nameUsed(NameUse use, const Spelling& spelling) = 0;
    // A label is defined, or named by a GOTO; the token before the current one.
    virtual void labelDefined(const LabelItem& label) = 0;
    virtual void labelUsed(const LabelItem& label) = 0;

    // A binary operation or a NOT begins with its operator, the current token, and ends before
    // the current token. The types are those that the compiler has for the operands: to the type
    // of an operand of arithmetic belongs what stands before it in the expression. That on the
    // left of NOT is TYP_NONE.
    virtual void operationBegun(Typ left) = 0;
    virtual void operationEnded(Typ right) = 0;

    // An item of target code was written.
    virtual void itemWritten(std::string_view item) = 0;

    // The tokens of which one was expected, and the types that do not go together: told before
    // the error that follows from them.
    virtual void expected(std::initializer_list<Token> codes) = 0;
    virtual void typesRefused(Typ current, Typ next) = 0;
    // A message was given. After an error the run ends, unless the observer leaves by an
    // exception: then the compiler's state is that of the error.
    virtual void messageGiven(const Message& message) = 0;
};

// Who looks on, null for nobody. Writer: whoever runs the compiler; readers: all units.
extern Observer* g_Observer;

// Tells the observer, if there is one: Tell(&Observer::token).
template <typename... Parameters, typename... Arguments>
inline void Tell(void (Observer::*event)(Parameters...), Arguments&&... arguments) {
    if (Q_UNLIKELY(g_Observer != nullptr)) {
        (g_Observer->*event)(std::forward<Arguments>(arguments)...);
    }
}
