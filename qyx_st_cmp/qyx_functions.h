// The built-in functions, and calls of functions and function blocks.
//
// A call pushes the actual parameters onto the value stack from first to last and then writes one
// call item, "EXEC <name>" for a built-in and "CAL <name>" for a user's definition.
#pragma once

#include "qyx_globals.h"

// Declares the built-ins, in their fixed order, in front of the user's definitions.
void AddBuildInFunctions(FunctionList& list);

// Compile a call; the callee's name is the current token. A wrong number or type of parameters
// ends the run.
// DoFunc: a function called as a statement; ";" is current on return.
// DoFunc1: a function called in an expression; returns the type of its result. The first token
// after the call is current on return.
// DoFuncBlock: a function block called as a statement; ";" is current on return.
void DoFunc(const VarsList& vars);
Typ DoFunc1(const VarsList& vars);
void DoFuncBlock(const VarsList& vars);
