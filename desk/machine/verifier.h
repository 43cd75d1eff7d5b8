// Proves that target code is sound, whoever made it.
//
// Sound code has no finding of level Error. Then, whatever the variables hold:
//
// - every operand is declared, every jump and call leads somewhere, and control never runs past
//   the end of a unit;
// - every instruction finds values of types that it takes, with what Proven tells;
// - the value stack has one height at each instruction, counted from the unit's own values, is
//   never popped below them and is empty at the end of the unit.
//
// A warning tells of one of the liberties that the language takes itself. All but "unreached-
// code" weaken what is promised: where isExact() is false, the stack may be higher or lower than
// Proven says (exit-in-case, goto-changes-stack, goto-into-unit, drop-without-value), or a value
// may be of another type (missing-declaration, number-without-type, signed-string), so that one
// who executes the code has to look at each step.
#pragma once

#include "machine/code.h"
#include "machine/finding.h"

#include <vector>

// What holds before an instruction whenever control reaches it.
struct Proven {
    // The values on the stack that the unit, or its caller for it, has pushed since it began: the
    // parameters before they are taken. A call that the next item drops the result of counts as
    // having pushed that result.
    int height = 0;
    // The type of the value there, of an address that of its variable; TYP_NONE where ways with
    // different types meet or nothing is known. A number of the code has the smallest type that
    // holds it, and a truth value may be the number 0 or 1.
    Typ accumulator = TYP_NONE;
    Typ register0 = TYP_NONE;
    Typ popped = TYP_NONE;   // of the value that the instruction takes as "$POP"
    bool isReached = false;  // by a way from the begin of a unit; else the rest promises nothing
};

struct Proof {
    Findings findings;                 // in the order of the items
    std::vector<Proven> instructions;  // one for each of the code

    bool isSound() const;
    // Sound, and no liberty is taken: what is proven holds exactly.
    bool isExact() const;
};

// The code must have been decoded without a fault. Time and memory are linear in its size.
Proof Verify(const Code& code);
