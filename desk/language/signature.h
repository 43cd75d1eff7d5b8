// The call that is being written at a place.
#pragma once

#include "check/context.h"
#include "language/model.h"

#include <optional>

struct SignatureText {
    QString label;                 // "Limited(value : REAL, most : REAL) : REAL"
    std::vector<Span> parameters;  // in the label
};

// What the script or the manual calls each parameter, empty where it has no name.
QStringList NamesOfFormals(const Callee& callee);

SignatureText SignatureOf(const Callee& callee);

struct Signature {
    Callee callee;
    int parameter;  // that of the place, from 0; it may be one too many
};

// The innermost call of which the offset is between the parentheses, if what is called is
// built in, or defined by then. None in comments and strings.
std::optional<Signature> SignatureAt(const Model& model, int offset);
