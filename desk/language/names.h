// What the names of a script are, and where it has them.
#pragma once

#include "language/model.h"

#include <QStringView>

#include <optional>

// Whether two texts are one name to the compiler.
bool IsSameName(QStringView one, QStringView other);

enum class OccurrenceKind : unsigned char { Declaration, Read, Write, Reference, Call, Goto };

// A place where the script has a name.
struct Occurrence {
    Span span;
    int name;  // index of the NameFact
    OccurrenceKind kind;
};

// All of them, in the order of the script. In a piece that does not compile they are those of the
// names that can be meant there: the variables of the unit and what every unit sees.
std::vector<Occurrence> OccurrencesIn(const Model& model);

// Those of one name.
std::vector<Occurrence> OccurrencesOf(const Model& model, int name);

// The one that a token is.
std::optional<Occurrence> OccurrenceOfToken(const Model& model, int token);

// The one that an offset lies in, or at whose end it is.
std::optional<Occurrence> OccurrenceAt(const Model& model, int offset);

// The index of the token that an offset lies in, or NONE.
int TokenIndexAt(const Model& model, int offset);

// The index of the word or number that an offset lies in, or at whose end it is, or NONE.
int WordIndexAt(const Model& model, int offset);

// Where a name is declared; empty for a built-in, for a label that is not defined and for what
// the script itself does not have.
Span DeclaredAt(const Model& model, int name);

// The index of the unit that an offset lies in, NONE between units.
int UnitAt(const Model& model, int offset);

// From its first to its last word, or up to the next unit if it has not ended.
Span ExtentOfUnit(const Model& model, int unit);

// The parameters of a definition in their order, as indices of names.
std::vector<int> ParametersOf(const Model& model, int unit);

// The index of the unit that a name is the name of, or NONE.
int UnitNamed(const Model& model, int name);

// Whether the script has an error, so that the facts tell less than all of it.
bool IsBroken(const Model& model);

// Whether a piece of the script is not what was compiled.
bool IsChanged(const Model& model, Span span);

// Records by their index, and the text of a name.
const NameFact& NameOf(const Model& model, int name);
const UnitFact& UnitOf(const Model& model, int unit);
QString TextOfName(const Model& model, int name);

// Whether the name is the result of a function.
bool IsResult(const NameFact& name);
