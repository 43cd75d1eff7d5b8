// Expressions: arithmetic, bitwise, relational and Boolean.
//
// Each level of the grammar is a function that compiles one operand of its level, writes the
// target code at once and returns the type of the value that the code leaves in the accumulator.
// It takes the variables that the expression sees and the type so far: what the tokens before
// have settled, or where nothing is settled the type of the literal that is current, TYP_NONE for
// none. A BOOL result is returned as it is; any other is merged into the type so far.
// The current token is the first of the expression on entry and the first after it on return.
//
// The order of Scan and writing is output: a Scan that reaches a new line echoes it into the
// listing, before the items that are written next. A number, a string and TICK are loaded before
// the token after them is read; a name, TRUE, FALSE and a number after "-" when it has been read;
// an operator's item follows the first token after its right operand. A pending label is posted
// once the value is checked: of a statement's value, a condition and parentheses when the token
// that ends them has been matched, of a parameter, a right operand of AND or XOR and the selector
// of CASE before. A Scan or Match between an expression and its PostPendingLabel is no accident.
#pragma once

#include "qyx_globals.h"

// A whole expression. The "true" jumps of a short-circuit OR go to `label`, the pending label: an
// empty one is filled with a new one when the first OR needs it, and then the caller posts it
// where the expression's value is due, after what it checks of the value; a caller's own label is
// posted by the caller at its own place.
Typ BoolExpression(const VarsList& vars, Typ type, Label& label);

// A numeric expression: no comparison and no Boolean operator outside parentheses.
Typ Expression(const VarsList& vars, Typ type);

// ---------------------------------------------------------------------------------------------
// Array elements, as values here and as targets of assignments
// ---------------------------------------------------------------------------------------------

// Compiles "[" and the indices and leaves them on the value stack; the token after the last
// index is current then. Aborts on an index that is no integer and on a wrong number of indices.
// With asDInt each index is converted to DINT first.
void ArrayIndices(const VarsList& vars, const VarItem& array, bool asDInt);

// Folds the indices on the value stack into one linear index, left in #A0 and #R0.
void EmitLinearIndex(const VarItem& array);
