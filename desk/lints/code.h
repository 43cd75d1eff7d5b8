// Items of target code, as far as the flow of control and of values depends on them.
#pragma once

#include "facts/facts.h"

#include <string_view>

enum class Operation : unsigned char {
    Other,
    Label,
    Jump,
    JumpIfFalse,
    JumpIfTrue,
    Return,
    Load,     // of a variable
    Store,    // into a variable
    Address,  // of a variable, for a parameter by reference
    Call      // of a definition, or of a built-in that reaches objects of the engine
};

Operation OperationOf(std::string_view item);

// The name of a label, or the label that a jump names.
std::string_view LabelIn(std::string_view item);

// The operation and the text of an item; an index beyond both ends gives an empty item.
std::string_view CodeAt(const Facts& facts, int item);
Operation OperationAt(const Facts& facts, int item);

// What the compiler writes for a FOR beside its start: the load of the test, then load, step and
// store of the variable.
bool IsTestOfFor(const Facts& facts, int load);
bool IsStepOfFor(const Facts& facts, int loadOrStore);

// The kind of the statement that an item is written for, TOKEN_UNKNOWN outside of statements.
Token StatementKindAt(const Facts& facts, int item);
