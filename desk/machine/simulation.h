// What instructions do to what is known of the machine.
#pragma once

#include "machine/finding.h"
#include "machine/flow.h"
#include "machine/stacks.h"

struct State {
    int stack = ValueStacks::EMPTY;
    KnownValue accumulator;
    KnownValue register0;
    bool isTested = false;  // the flag is that of a test that belongs to what follows

    bool operator==(const State& other) const {
        return stack == other.stack && accumulator == other.accumulator &&
               register0 == other.register0 && isTested == other.isTested;
    }
};

// Carries what is known over the instructions of one unit.
class Simulation {
public:
    Simulation(const Code& code, const CodeUnit& unit, const Flow& flow, ValueStacks& stacks)
        : code_(code), unit_(unit), flow_(flow), stacks_(stacks) {}

    // What is known after the instruction. What does not suit it is appended to the findings
    // if there are any to append to; it goes on as if nothing were known.
    State after(int instruction, const State& before, Findings* findings = nullptr);

    // What the caller has pushed where the unit begins.
    State atBegin();
    // Two ways that meet at the same height of the stack.
    State merged(const State& one, const State& other);

private:
    const Code& code_;
    const CodeUnit& unit_;
    const Flow& flow_;
    ValueStacks& stacks_;
    Findings* findings_ = nullptr;
    int item_ = 0;
    State now_;

    // What a call finds of its parameters on a stack.
    struct Arguments {
        int below;     // the stack without them
        int firstBad;  // the number of the parameter from 1, 0 if all suit
        Fit fit;
        bool isTooLow;
    };
    QHash<QPair<int, int>, Arguments> arguments_;  // by callee and stack

    void fail(const char* id, const QString& message);
    void tellOf(Fit fit, const QString& what);

    void run(int index, const Instruction& it);
    void move(const Instruction& it);
    void moveAddress(const Instruction& it);
    void binary(const Instruction& it);
    void call(int index, const Instruction& it);
    void leave(int index);

    KnownValue pop();
    KnownValue read(const KnownValue& place, const QString& name);
    KnownValue accumulator() { return read(now_.accumulator, QStringLiteral("the accumulator")); }
    KnownValue load(const CodeOperand& operand);
    KnownValue loadVariable(const CodeOperand& operand) const;
    KnownValue loadLiteral(const CodeOperand& operand) const;
    void store(const CodeOperand& operand, KnownValue value);
    void storeTyped(Typ type, KnownValue value);

    Arguments argumentsOf(const CallTarget& target, int stack);
    int belowUnknown(int index) const;
    static Fit fitOfParameter(const CallTarget& target, int parameter, KnownValue value);
};
