// Statements.
//
// Every statement routine is entered with the statement's first token and returns with its ";" as
// the current token, matched and not consumed. The order in which the routines draw their code
// labels decides the numbers in the target code.
//
// The order of Scan and writing is output as well: with -i a Scan that reaches a new line echoes
// it into the listing. The jump of an IF or WHILE, and after it the label that its condition left
// pending, follow the token after THEN or DO. FOR writes its test before the token after DO is
// read, and its step before END_FOR is matched; CASE pushes its selector before OF is matched.
// The items that end a statement, jumps and labels, are written when its ";" has been matched.
// The type so far of an expression is that of the token that is current when it begins.
#pragma once

#include "qyx_globals.h"

#include <initializer_list>

// What all statements of one body share.
struct Body {
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
// begins no statement. The stack depth is afterwards what it was.
void Block(Body& body, const LoopLabels& loop);

// Compiles statements up to one of the tokens that end them, which is current on return.
void Statements(Body& body, const LoopLabels& loop, std::initializer_list<Token> ends);
