// Items of target code, as far as the flow of control and of values depends on them.
#pragma once

#include "facts/facts.h"

#include <string_view>
#include <vector>

enum class FlowKind : unsigned char {
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

FlowKind FlowKindOf(std::string_view item);

// The name of a label, or the label that a jump names.
std::string_view LabelInItem(std::string_view item);

// The items of a script. Those before the first and after the last are empty.
struct FlowCode {
    explicit FlowCode(const Facts& ofFacts);

    const Facts& facts;
    std::vector<FlowKind> operations;

    int count() const { return static_cast<int>(operations.size()); }
    std::string_view text(int item) const;
    FlowKind operation(int item) const { return operations[static_cast<std::size_t>(item)]; }

    // The statement that an item is written for, and the code of its first token; NONE and
    // TOKEN_UNKNOWN outside of statements.
    int statement(int item) const {
        return facts.items[static_cast<std::size_t>(item)].statement;
    }
    Token kind(int item) const;

    // What the compiler writes for a FOR beside its start: the load of the test, then load, step
    // and store of the variable.
    bool isTestOfFor(int load) const;
    bool isStepOfFor(int loadOrStore) const;
};
