// How instructions are meant where their form does not tell, and what the built-ins of the
// mathematical library are: for all that execute or translate the code.
#pragma once

#include "machine/code.h"
#include "machine/profile.h"

// "SUB 1 #A0" takes 1 off the accumulator, so that DOWNTO counts down; by the order of operands
// it would be the other way round.
bool IsStepDown(const Code& code, const Instruction& instruction);

// Whether the result of a call is on the stack too; `next` is the instruction after the call.
bool IsResultPushed(const Code& code, CallResult choice, int next);

using MathFunction = double (*)(double);

// The function of one real with that name, null if no built-in is one.
MathFunction FindMathFunction(const QString& name);

// How many of the first arguments of a built-in tell the engine object that it reads or writes.
std::size_t EngineNumbersOf(const BuiltIn& builtIn);
