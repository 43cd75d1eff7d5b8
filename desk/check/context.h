// What the rules ask about the place where a compile ended with an error.
//
// The tokens around the error are pieces: those that the compiler had read, the one at the error,
// and those after it. The codes of pieces are those of their texts, so that a name is an
// identifier whatever it names.
#pragma once

#include "check/tokens.h"
#include "facts/facts.h"

#include <QLatin1String>

#include <initializer_list>
#include <optional>
#include <vector>

struct Piece {
    Token code = TOKEN_UNKNOWN;
    Span span;
    QStringView text;

    bool is(Token other) const { return code == other && !span.isEmpty(); }
    bool isOneOf(std::initializer_list<Token> codes) const;
    // Whether it is that text, capital and small letters being the same.
    bool isSpelled(QStringView other) const;
    bool isSpelled(QLatin1String other) const;
    bool isSpelledOneOf(std::initializer_list<QLatin1String> others) const;
};

// It holds for as long as its source and facts.
struct Context {
    const Source& source;
    const Facts& facts;
    std::vector<Piece> pieces;
    int here;  // the index of the piece at the error
};

Context ContextOf(const Source& source, const Facts& facts);

// ---------------------------------------------------------------------------------------------
// The error
// ---------------------------------------------------------------------------------------------

// Whether the error is of the kind that a constant of the catalogue tells.
bool IsError(const Context& context, QLatin1String constant);
bool IsErrorOneOf(const Context& context, std::initializer_list<QLatin1String> constants);

// Whether the compiler asked for that token, perhaps for others as well.
bool Expects(const Context& context, Token code);
bool ExpectsOneOf(const Context& context, std::initializer_list<Token> codes);

// ---------------------------------------------------------------------------------------------
// Pieces
// ---------------------------------------------------------------------------------------------

// The piece of an index, empty beyond the ends.
Piece PieceAt(const Context& context, int index);

// The piece that many after the error, or before it for a negative number.
Piece Near(const Context& context, int distance);

// The index of the piece that begins at an offset of the source, or of the next one.
int IndexOf(const Context& context, int offset);

// Whether no piece stands before it on its line.
bool IsFirstOnLine(const Context& context, int index);

// Whether it stands directly after the piece before it, nothing in between.
bool TouchesPrevious(const Context& context, int index);

// The names and numbers that touch each other, from that piece on, as one text.
QString RunFrom(const Context& context, int index);

// Whether a value may end, or a statement or declaration begin, with that piece.
bool CanEndValue(const Piece& piece);
bool CanBeginStatement(const Piece& piece);

bool IsComparison(const Piece& piece);
bool IsLogical(const Piece& piece);  // AND, OR, XOR

bool IsTypeName(const Piece& piece);

// The place directly after a piece, one character.
Span After(const Piece& piece);

int LineOf(const Context& context, Span span);

// A text in backticks.
QString Code(QStringView text);
QString Code(const Piece& piece);
QString TextOf(Token code);
QString Code(Token code);  // its text as a reserved word or punctuation

// A constant for each name of an enumeration, from the piece after its "("; for the first alone
// if one has a number of its own.
QString ConstantsOfEnumeration(const Context& context, int index);

// ---------------------------------------------------------------------------------------------
// What is open
// ---------------------------------------------------------------------------------------------

bool IsDeclaring(const Context& context);

// The unit that is open, or null.
const UnitFact* OpenUnit(const Context& context);

// Whether that is the unit's kind; false outside of units.
bool IsIn(const Context& context, Token unitKind);

// The name of a unit, empty before it has one.
QStringView NameOf(const Context& context, const UnitFact& unit);

// The statement that is open, innermost first; null beyond the last.
const StatementFact* OpenStatement(const Context& context, int level = 0);

// The innermost IF, CASE or loop that is open, after so many others; null if there is none.
const StatementFact* OpenConstruct(const Context& context, int level = 0);

bool IsOpen(const Context& context, Token constructKind);

// The piece of the statement's first word.
Span WordOf(const StatementFact& statement);

// ---------------------------------------------------------------------------------------------
// Names
// ---------------------------------------------------------------------------------------------

// The name that means nothing to the compiler, by the index of its piece.
struct UnknownName {
    enum class Role : unsigned char { Variable, Type, Section };
    int index;
    Role role;
};
std::optional<UnknownName> Unknown(const Context& context);

// The piece of a name that is unknown as a variable or a callee; an empty one if it is none.
Piece UnknownWord(const Context& context);

// The variable of that name in the open unit, or null.
const NameFact* VariableNamed(const Context& context, QStringView name);

// What can be called.
struct Formal {
    QString name;  // empty for that of a built-in
    Typ type;
    bool isReference;
};
struct Callee {
    QString name;
    bool isFunction;
    std::vector<Formal> formals;
    Span span;  // where it is defined, empty for a built-in
    Typ type;   // of its result, TYP_NONE for a function block
};
const std::vector<Callee>& BuiltInCallees();
std::optional<Callee> CalleeNamed(const Context& context, QStringView name);

// The call in whose parentheses a piece stands.
struct CallPlace {
    int name;       // index of the callee's name
    int parameter;  // which one the piece stands in, from 0
};
std::optional<CallPlace> CallAround(const Context& context, int index);

// The index of the parenthesis that opens what is closed before `index` or still open there;
// NONE if there is none in the statement.
int OpeningBefore(const Context& context, int index);

// The name among these that is most like another, if one is.
QString MostLike(QStringView name, const std::vector<QString>& names);
