// What the machine keeps from cycle to cycle: the variables of all units and the objects of the
// engine, in the form that both ways to execute the code begin with and end with.
#pragma once

#include "machine/value.h"

#include <array>
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

using RegisterNumbers = std::array<qint64, 4>;

struct Memory {
    std::vector<Value> literals;
    std::vector<UnitCells> units;
    std::map<qint64, Cell> engineGlobals;
    std::map<RegisterNumbers, Cell> engineRegisters;

    // The variables of the program.
    Cells& program() { return units.back().ofCalls.front(); }
    const Cells& program() const { return units.back().ofCalls.front(); }
};
