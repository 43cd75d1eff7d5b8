// Executes register code.
#pragma once

#include "machine/arithmetic.h"
#include "machine/lower.h"
#include "machine/memory.h"
#include "machine/register_code.h"
#include "machine/watch.h"

#include <optional>
#include <vector>

// What a cycle works on beside the memory.
struct CycleState {
    quint32& tick;
    std::optional<quint32>& tickSetting;
    qint64& instructions;
};

// All that is given must outlive it.
class Registers {
public:
    Registers(const Lowered& lowered, Memory& memory, Watch& watch, Arithmetic& arithmetic);

    // Executes a cycle. False if it gave up: then everything is as it was before. Throws an
    // Interruption where the watch asks for one: then everything is as it was there.
    bool cycle(const CycleState& state);
    // Whether the code must be lowered anew, as an engine object was used that it did not know.
    bool isOutdated() const { return isOutdated_; }

private:
    const Profile& profile_;
    Watch& watch_;
    Arithmetic& arithmetic_;
    RegisterCode code_;
    std::vector<quint8> isUnset_;  // for each slot, if any may be
    std::optional<Notes> notesBefore_;
    bool isOutdated_ = false;
    qint64 budget_ = 0;  // of instructions; what is executed takes a slice of it after the other

    void takeOver(const CycleState& state);
    void handOver(const CycleState& state);
    bool execute();
    bool run();
    qint64 slice();
    qint64 more(int index, qint64 left);
    void keepNotes();
    void apply(int index);
    void note(int index);
    void applyMath(int index);
    void applyPower(int index);
    void giveReal(int index, double result, bool areOperandsFinite);
    const Binding* engineObject(const RegisterInstruction& instruction);
    bool useEngine(int index);
};
