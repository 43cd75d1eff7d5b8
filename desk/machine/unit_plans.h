// What the units of a script have in common while they are lowered: the slots of all variables,
// and what callers need to know of each unit.
#pragma once

#include "machine/code.h"
#include "machine/memory.h"
#include "machine/profile.h"
#include "machine/register_code.h"

#include <map>
#include <set>
#include <vector>

// What is lowered, and by which choices and checks.
struct Lowered {
    const Code& code;
    const Profile& profile;
    const Checks& checks;
    bool isCounting;  // instructions, whether a check needs it or not
};

// What the callers of a unit need to know of it.
struct UnitPlan {
    bool isCallable = false;
    int body = 0;  // the instruction after those that take the parameters
    Target entry = 0;
    qint32 returnSlot = 0;
    std::vector<qint32> slots;  // of the declarations; of a reference: what holds the address
    qint32 firstLocal = 0;      // the locals have slots that follow each other
    qint32 firstInitial = 0;    // and so have their initial values
    std::vector<int> locals;
};

// What all units have in common.
class UnitPlans {
public:
    UnitPlans(const Lowered& lowered, Memory& bound);

    const Code& code;
    const Profile& profile;
    const Checks& checks;
    Memory& memory;
    RegisterCodeBuilder builder;
    std::vector<UnitPlan> plans;

    bool isOn(Check check) const { return checks.actionOf(check) != Action::Off; }
    bool mayBeUnset(qint32 slot) const { return unset_.count(slot) > 0; }
    bool isProgram(const CodeUnit& unit) const { return &unit == &code.units.back(); }

    // Sees to it that the engine object with those numbers is there.
    void addEngineObject(const EngineNumbers& numbers);
    // The type of what a variable means; an engine object may have another than the variable.
    Typ typeMeant(const CodeUnit& unit, int variable) const;

private:
    std::map<const Cell*, qint32> bound_;
    std::set<qint32> unset_;

    qint32 bind(Cell& cell);
    void noteUnset(const Cell& cell, qint32 slot);
    void bindEngine();
    UnitPlan planOf(std::size_t index);
    void bindProgram(UnitPlan& plan);
    void addLocals(UnitPlan& plan, const CodeUnit& unit, UnitCells& cells);
    void addInitials(UnitPlan& plan, const Cells& initial);
    // The instruction after those that take all parameters off the stack, the last one first;
    // NOWHERE if a parameter is not taken as the compiler does it.
    int bodyOf(const CodeUnit& unit) const;
    bool takesParameter(const CodeUnit& unit, int at, int parameter) const;
};
