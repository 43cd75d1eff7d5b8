// Statements.
//
// Every statement routine is entered with the statement's first token and returns with its ";" as
// the current token, matched and not consumed. The order in which the routines draw their code
// labels decides the numbers in the target code.
#pragma once

#include "qyx_globals.h"

// What all statements of one body share.
struct Body {
    const FunctionList& functions;
    const VarsList& variables;
    LabelsList& labels;
    int& stackDepth;  // values that enclosing statements keep on the engine's value stack
    bool inFunction;  // the body of a function, which leaves its result when it returns
};

// Where BREAK and CONTINUE jump; empty outside a loop.
struct LoopLabels {
    Label breakLabel;
    Label continueLabel;
};

// Compiles one statement, or none at a ";"; ";" is current on return. Aborts on anything that
// begins no statement.
void Block(const Body& body, const LoopLabels& loop);
