// What can be known of a value before the code runs, and which operations take it.
#pragma once

#include "machine/forms.h"

enum class Knowledge : unsigned char {
    Typed,        // a value of a type
    Number,       // one that is made of numbers in the code alone
    Truth,        // the number 0 or 1 as the code has it, which stands for FALSE and TRUE too
    RealOrTruth,  // a real number of the code with a BOOL: a REAL, or a BOOL if the compiler has
                  // forgotten the type of the number
    Address,      // of a variable of a type
    Anything,     // a value that the code tells nothing about
    Mixed,        // values of different types, by the way that leads here
    Nothing,      // no value
};

struct KnownValue {
    Knowledge known = Knowledge::Nothing;
    Typ type = TYP_NONE;

    bool operator==(const KnownValue& other) const {
        return known == other.known && type == other.type;
    }
    bool operator!=(const KnownValue& other) const { return !(*this == other); }
    // A value, of a type or not.
    bool isThere() const { return known < Knowledge::Mixed; }
};

constexpr KnownValue ANYTHING = {Knowledge::Anything, TYP_NONE};
constexpr KnownValue NOTHING = {Knowledge::Nothing, TYP_NONE};
inline KnownValue ValueOf(Typ type) {
    return {Knowledge::Typed, type};
}

// What is known where two ways meet.
KnownValue Merged(KnownValue one, KnownValue other);

// How well operands suit an operation.
enum class Fit : unsigned char {
    Fine,
    // A number of the code is of a type that does not suit. The compiler lets it pass where a
    // comment before the number has made it forget the type.
    Untyped,
    SignedString,  // a string with a sign, which the compiler lets pass
    Wrong,
};

struct OperationOutcome {
    Fit fit;
    KnownValue result;
};

// `isInReal`: a REAL waits on the stack. Where one stands on the left, the compiler takes a BOOL
// for a number.
OperationOutcome BinaryOutcome(Operation operation, KnownValue left, KnownValue right,
                               bool isInReal);
OperationOutcome UnaryOutcome(Operation operation, KnownValue operand);
// "SUB 0 #A0", "ADD 1 #A0", "SUB 1 #A0", "EQ 1 #A0"
OperationOutcome NumberOutcome(Operation operation, bool isZero, KnownValue right);

// Whether a variable of the type takes a value, and whether a parameter by value does.
Fit FitOfStore(Typ target, KnownValue value);
Fit FitOfArgument(Typ formal, KnownValue value);
