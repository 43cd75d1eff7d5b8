// The ways that control takes through target code, and what instructions do to the value stack.
#pragma once

#include "machine/code.h"

#include <optional>
#include <vector>

constexpr Instruction NO_INSTRUCTION = {Operation::Return, {}, {}, NOWHERE, 0};

inline const Instruction& InstructionAt(const Code& code, int index) {
    return code.instructions[static_cast<std::size_t>(index)];
}

bool IsJump(Operation operation);
bool IsCall(Operation operation);
// "MOV $POP #NIL"
bool IsDrop(const Instruction& instruction);

// What a call leads to: a unit or a built-in.
struct CallTarget {
    bool isKnown = false;
    Typ result = TYP_NONE;  // TYP_NONE if it gives none
    const CodeUnit* unit = nullptr;
    const BuiltIn* builtIn = nullptr;

    int parameters() const;
};
CallTarget TargetOf(const Code& code, const Instruction& call);

// A call that is a statement has its result dropped by the next item, and counts as having pushed
// that result; of what is not there nobody knows whether it gives one. So does the call of itself
// that a function block makes as its first statement: the compiler writes the drop after it as
// well, although nothing is given.
enum class CallKind : unsigned char { Plain, Dropped, DroppedWithoutValue };

// How many values an instruction takes off the stack, and how many it puts there.
struct StackEffect {
    int taken = 0;
    int left = 0;
};

// The FOR and CASE statements around an instruction. Each keeps one value on the stack.
struct Surroundings {
    int loops = 0;
    int cases = 0;
    int innermost = NOWHERE;  // the instruction that the innermost one ends with

    int height() const { return loops + cases; }
};

// The flow within one unit. The code must outlive it.
class Flow {
public:
    Flow(const Code& code, int unit);

    CallKind kindOfCall(int instruction) const;
    StackEffect effectOf(int instruction) const;
    // How many values a call of what is not there takes, by what the code after it expects.
    int takenByUnknown(int call, int height) const;

    // A FOR reaches from its test to the drop of its bound, a CASE from its first branch to the
    // drop of its selector.
    const Surroundings& around(int instruction) const;

private:
    const Code& code_;
    const CodeUnit& unit_;
    int selfCall_;  // of the first statement, or NOWHERE
    std::vector<Surroundings> surroundings_;

    std::optional<int> heightDueAt(int index) const;
};
