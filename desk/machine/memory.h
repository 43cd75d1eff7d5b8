// What the machine keeps from cycle to cycle: the variables of all units and the objects of the
// engine, in the form that both ways to execute the code begin with and end with.
#pragma once

#include "machine/value.h"

#include <deque>
#include <map>
#include <vector>

// A variable while the code is executed.
struct Cell {
    Value value;
    Typ type = TYP_NONE;
    bool isForced = false;     // stores leave it as it is
    bool isUnset = false;      // nothing was stored, and the script gives no initial value
    Cell* referred = nullptr;  // what it means: the variable of a caller, an engine object
};

using Cells = std::vector<Cell>;

// The variables of a unit: those of each call of it that may go on at the same time.
struct UnitCells {
    Cells initial;
    std::deque<Cells> ofCalls;  // never shrinks, so that no address dangles
    std::size_t active = 0;
};

// The numbers by which an object of the engine is known: one of a global, four of a register.
using EngineNumbers = std::vector<qint64>;

struct Memory {
    std::vector<Value> literals;
    std::vector<UnitCells> units;
    std::map<EngineNumbers, Cell> engineObjects;

    // The object with those numbers, an LREAL if it is not there yet.
    Cell& engineObject(const EngineNumbers& numbers) {
        Cell fresh;
        fresh.type = TYP_LREAL;
        fresh.value = RealValue(TYP_LREAL, 0.0);
        return engineObjects.try_emplace(numbers, fresh).first->second;
    }

    // The variables of the program.
    Cells& program() { return units.back().ofCalls.front(); }
    const Cells& program() const { return units.back().ofCalls.front(); }
};
