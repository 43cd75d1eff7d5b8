// Register code: three-address instructions with static types on slots of 8 bytes, which target
// code is lowered to so that it runs fast.
//
// Register code holds what is usual. Where something else comes up it gives up, and the machine
// executes the cycle once more from its beginning, an item at a time.
#pragma once

#include "machine/conventions.h"
#include "machine/forms.h"
#include "machine/memory.h"
#include "machine/profile.h"

#include <map>
#include <vector>

union Slot {
    qint64 whole = 0;
    double real;
};

inline Slot SlotOf(const Value& value) {
    Slot slot;
    if (value.isReal()) {
        slot.real = value.real;
    } else {
        slot.whole = value.whole;
    }
    return slot;
}
inline Value ValueOf(Typ type, Slot slot) {
    const bool isReal = type == TYP_REAL || type == TYP_LREAL;
    return isReal ? RealValue(type, slot.real) : WholeValue(type, slot.whole);
}

// Each operation and what it does, by X(NAME); `to`, `left` and `right` are slots unless it is
// said otherwise.
// clang-format off
#define REGISTER_OPERATIONS(X)                                                                  \
    /* `to` becomes what is made of `left` and `right`. */                                      \
    X(Copy)                                                                                     \
    X(Fit)          /* a whole number, within the limits */                                     \
    X(WholeToReal)                                                                              \
    X(RealToWhole)  /* within the limits */                                                     \
    X(RoundToSingle)                                                                            \
    X(Add) X(Subtract) X(Multiply)          /* whole numbers of 64 bits */                      \
    X(AddFit) X(SubtractFit) X(MultiplyFit) /* the result is within the limits */               \
    X(DivideFit) X(ModuloFit)                                                                   \
    X(BitAnd) X(BitOr) X(BitXor)                                                                \
    X(AddReal) X(SubtractReal) X(MultiplyReal) X(DivideReal)                                    \
    X(AddSingle) X(SubtractSingle) X(MultiplySingle) X(DivideSingle) /* rounded to 32 bits */   \
    X(Apply)        /* any operation, by Arithmetic */                                          \
    /* `to` becomes 1 or 0. */                                                                  \
    X(IsEqual) X(IsNotEqual) X(IsLess) X(IsLessOrEqual)                                         \
    X(IsEqualReal) X(IsNotEqualReal) X(IsLessReal) X(IsLessOrEqualReal)                         \
    X(IsNotLessReal) X(IsNotLessOrEqualReal)                                                    \
    X(And)          /* of two that are 1 or 0 */                                                \
    /* The instruction `to` is next if the comparison holds. */                                 \
    X(Jump)                                                                                     \
    X(JumpIfEqual) X(JumpIfNotEqual) X(JumpIfLess) X(JumpIfLessOrEqual)                         \
    X(JumpIfEqualReal) X(JumpIfNotEqualReal) X(JumpIfLessReal) X(JumpIfLessOrEqualReal)         \
    X(JumpIfNotLessReal) X(JumpIfNotLessOrEqualReal)                                            \
    /* Calls */                                                                                 \
    X(Call)         /* the unit at the instruction `to`; `left` keeps where to return */        \
    X(Return)       /* to where `left` tells */                                                 \
    X(Restore)      /* `right` slots from `to` on become those from `left` on */                \
    X(Math)         /* the function `right` of the library, of `left` */                        \
    X(Power)        /* of the library */                                                        \
    X(Engine)       /* the built-in `right`, with its arguments from `left` on */               \
    /* Parameters by reference: `left` holds the number of the slot that is meant. */           \
    X(LoadReferred)                                                                             \
    X(StoreReferred) /* `right` */                                                              \
    /* Variables that may be unset */                                                           \
    X(NeedSet) X(MarkSet) X(MarkUnset) X(NeedReferredSet) X(MarkReferredSet)                    \
    /* The end of a cycle, and what leads there */                                              \
    X(Count)        /* the instructions that were executed */                                   \
    X(Note)         /* raises a check */                                                        \
    X(GiveUp)                                                                                   \
    X(End)
// clang-format on

#define ENUMERATOR(NAME) NAME,
enum class RegisterOperation : quint16 { REGISTER_OPERATIONS(ENUMERATOR) };
#undef ENUMERATOR

struct RegisterInstruction {
    RegisterOperation operation;
    // Of an operation: the number of its limits; of a jump or call: the instructions to count.
    quint16 extra;
    qint32 to;
    qint32 left;
    qint32 right;
};

// What an instruction was lowered from, for what is not usual.
struct Origin {
    Operation operation = Operation::Move;  // Move: the left operand itself
    Typ left = TYP_NONE;
    Typ right = TYP_NONE;
    Typ stored = TYP_NONE;  // the type that the result is made to fit
    int item = 0;
    int storeItem = 0;
    Check check = Check::UnsoundCode;  // to raise
};

struct Limits {
    qint64 least;
    qint64 greatest;

    bool holds(qint64 number) const { return number >= least && number <= greatest; }
    bool holds(const Limits& other) const { return holds(other.least) && holds(other.greatest); }
};

// A cell that has a slot while register code runs.
struct Binding {
    Cell* cell;
    qint32 slot;
};

struct RegisterCode {
    std::vector<RegisterInstruction> instructions;
    std::vector<Origin> origins;  // of each instruction
    std::vector<Limits> limits;
    std::vector<Slot> slots;  // as they are when a cycle begins, but for what is bound
    std::vector<MathFunction> functions;
    std::vector<Binding> bindings;
    std::map<EngineNumbers, Binding> engineObjects;
    bool hasUnset = false;  // whether a variable may be unset
    int begin = 0;          // the first instruction of the program
    qint32 tick = 0;        // the slots of the counter and of what `TICK := ...` sets
    qint32 tickSetting = 0;
    qint32 isTickSet = 0;
};

inline bool IsJump(RegisterOperation operation) {
    return operation >= RegisterOperation::Jump &&
           operation <= RegisterOperation::JumpIfNotLessOrEqualReal;
}

// Makes a comparison or a conditional jump one that holds where it did not.
void Invert(RegisterOperation& comparison, qint32& left, qint32& right);
// The jump that a comparison makes.
RegisterOperation JumpOf(RegisterOperation comparison);

// A place in register code that jumps lead to, known by its number before it is put.
using Target = std::size_t;

// Puts register code together.
class RegisterCodeBuilder {
public:
    explicit RegisterCodeBuilder(bool isCounting) : isCounting_(isCounting) {}

    RegisterCode code;

    qint32 newSlot();
    qint32 constant(Slot value, bool isReal);
    qint32 whole(qint64 number);
    qint32 real(double number);
    bool isConstant(qint32 slot) const { return isConstant_[static_cast<std::size_t>(slot)]; }
    const Slot& valueOf(qint32 slot) const { return code.slots[static_cast<std::size_t>(slot)]; }
    quint16 limits(const Limits& limits);

    int here() const { return static_cast<int>(code.instructions.size()); }
    void emit(RegisterOperation operation, qint32 to, qint32 left = 0, qint32 right = 0,
              quint16 extra = 0, const Origin& origin = {});
    RegisterInstruction& last() { return code.instructions.back(); }
    Origin& lastOrigin() { return code.origins.back(); }

    // An instruction of target code that is executed where the code is.
    void countItem() { ++counted_; }
    // The item that jumps and calls stem from, until the next one is told.
    void setItem(int item) { item_ = item; }
    // Jumps and calls, which count what was executed before. Whatever is endless counts on.
    void jump(RegisterOperation operation, qint32 left, qint32 right, Target place);
    void call(Target place, qint32 returnSlot);
    void end(RegisterOperation operation, qint32 left);

    Target newTarget();
    bool isPlaced(Target place) const { return places_[place] >= 0; }
    int placeOf(Target place) const { return places_[place]; }
    void put(Target place);
    // Once all places are put.
    void finish();

private:
    bool isCounting_;
    int counted_ = 0;
    int item_ = 0;
    std::vector<bool> isConstant_;
    std::map<std::pair<bool, qint64>, qint32> constants_;
    std::vector<int> places_;                   // where each lies, -1 if it is not put yet
    std::vector<std::pair<int, Target>> uses_;  // of places, by instructions
    int lastPut_ = -1;

    quint16 takeCount();
    quint16 takeCountOfRound();
    void emitJump(RegisterOperation operation, qint32 left, qint32 right, quint16 count);
    bool skipsJump(Target place) const;
    bool closeLoop(Target place);
    void use(Target place);
    void thread();
};
