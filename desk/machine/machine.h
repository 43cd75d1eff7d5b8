// The machine that executes target code, cycle by cycle.
//
// It executes an item at a time: what that gives is right by definition. Where it can it executes
// register code instead, which gives the same; a cycle in which that gives up is executed once
// more, an item at a time.
#pragma once

#include "machine/arithmetic.h"
#include "machine/code.h"
#include "machine/memory.h"
#include "machine/profile.h"
#include "machine/registers.h"
#include "machine/value.h"
#include "machine/watch.h"

#include <memory>
#include <optional>
#include <vector>

// Whatever code the reader accepts may be executed: what makes no sense ends the run with the
// check "unsound-code". The code must outlive the machine.
class Machine {
public:
    Machine(const Code& code, const Profile& profile, const Checks& checks);
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    // From now on all cycles are executed an item at a time.
    void setItemwise() { isItemwise_ = true; }
    // From now on instructions() need not be right, unless a check needs it.
    void setUncounted() { isCounting_ = false; }
    bool isCounting() const { return isCounting_; }
    // The cycles that were executed by register code.
    qint64 registerCycles() const { return registerCycles_; }

    // From now on a cycle ends, at a jump back or a call, once the flag is set; the flag must
    // outlive the machine.
    void setInterrupt(const std::atomic<bool>& flag) { watch_.setInterrupt(flag); }

    // Executes one cycle; false if the run has ended, then and before.
    bool cycle();
    const std::optional<RunStop>& stop() const { return stop_; }
    // Where a cycle was ended from outside; the variables hold what they held there.
    const std::optional<Interruption>& interruption() const { return interruption_; }
    const Notes& notes() const { return watch_.notes(); }
    qint64 cycles() const { return cycles_; }              // that were executed whole
    qint64 instructions() const { return instructions_; }  // that were executed

    // From now on counts how often each instruction is executed, an item at a time.
    void countExecutions() {
        executions_.assign(code_.instructions.size(), 0);
        setItemwise();
    }
    const std::vector<qint64>& executions() const { return executions_; }

    // The variables of the program, by the index of their declarations.
    Value value(int variable) const;
    // Stores a value of the variable's type.
    void set(int variable, const Value& value);
    // From now on the variable holds that value, whatever the code stores.
    void force(int variable, const Value& value);
    void release(int variable);
    // Variables that the script gives no initial value, by the indices of unit and declaration.
    void setUninitialized(int unit, int variable);

    quint32 tick() const { return tick_; }
    void setTick(quint32 tick) { tick_ = tick; }
    // What is added to the counter after each cycle.
    void setTickStep(quint32 step) { tickStep_ = step; }
    // What the code has set with `TICK := ...`, where that does not set the counter.
    const std::optional<quint32>& tickSetting() const { return tickSetting_; }

private:
    // A unit that is being executed.
    struct Frame {
        int unit;
        Cells* cells;
        int returnTo;           // an instruction, NOWHERE for the program
        std::size_t stackBase;  // the height of the stack below its parameters
    };
    const Code& code_;
    Profile profile_;
    Watch watch_;
    Arithmetic arithmetic_;
    std::optional<RunStop> stop_;
    std::optional<Interruption> interruption_;

    Memory memory_;

    std::vector<Frame> frames_;
    std::vector<Value> stack_;
    Value accumulator_;
    Value register0_;
    bool flag_ = false;
    int next_ = 0;  // the instruction to execute

    std::unique_ptr<Registers> registers_;
    bool isItemwise_ = false;
    bool isCounting_ = true;
    int forced_ = 0;            // variables
    qint64 registersFrom_ = 0;  // the cycle to use register code again
    qint64 pause_ = 1;          // cycles without it the next time that it gives up
    qint64 registerCycles_ = 0;

    quint32 tick_ = 0;
    quint32 tickStep_ = 0;
    std::optional<quint32> tickSetting_;
    qint64 cycles_ = 0;
    qint64 instructions_ = 0;
    std::vector<qint64> executions_;  // of each instruction; empty if they are not counted

    void prepare();
    Value literalValue(const Literal& literal) const;
    Cell initialCell(const Declaration& declaration);
    Cell& engineCell(const Declaration& declaration);
    void bindEngineVariables();
    Cell& programCell(int variable);
    const Cell& programCell(int variable) const;

    void beginCycle();
    bool executeRegisters();
    void execute();
    void step(const Instruction& instruction);
    void endCycle();
    void resetProgramVariables();
    Frame& frame() { return frames_.back(); }

    void move(const Instruction& instruction);
    void moveAddress(const Instruction& instruction);
    void binary(const Instruction& instruction);
    void jump(const Instruction& instruction);
    void call(const Instruction& instruction);
    void enter(int unit, int returnTo);
    void leave();
    void checkStackAtReturn(bool isProgram);
    void giveResult(bool hasResult);
    void executeBuiltIn(const Instruction& instruction);
    Value builtIn(int index, const std::vector<Value>& arguments);
    Value engineBuiltIn(const BuiltIn& called, const std::vector<Value>& arguments);

    void push(const Value& value);
    Value pop();
    Value take(const CodeOperand& from);
    void put(const CodeOperand& to, const Value& value);
    void writeTick(const Value& value);
    Cell& own(int index);
    Cell& meant(int index);
    Value load(const CodeOperand& operand);
    void store(Cell& cell, Typ type, const Value& value);
};
