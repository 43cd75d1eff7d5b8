// The objects of the engine that code reads and writes, by a declaration or by their numbers.
#pragma once

#include "machine/code.h"
#include "machine/memory.h"

#include <map>

// What code does with an object.
struct EngineUse {
    Typ type = TYP_NONE;  // that it is read and written with; LREAL where there are several
    bool isRead = false;
    bool isWritten = false;
};

// By the numbers of the objects, as far as they stand in the code.
using EngineUses = std::map<EngineNumbers, EngineUse>;
EngineUses EngineUsesOf(const Code& code);

bool IsEngineObject(const Declaration& declaration);
// What is done with the object of a declaration, nothing with what is no object.
EngineUse UseOf(const EngineUses& uses, const Declaration& declaration);

// Adds the objects that have no name to the variables of the program: "global_61",
// "register_1_0_201_0". They hold what they would hold without.
void NameEngineObjects(const EngineUses& uses, CodeUnit& program);
// Whether the object has its name from there, or from a table.
bool IsNamedByNumber(const Declaration& declaration);

// The line of a test that gives an object its name: "global, global_61, LREAL, 61".
QString LineOfObject(const Declaration& object);
