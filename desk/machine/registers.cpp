#include "machine/registers.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr qint64 SLICE = 1 << 16;

float Single(double number) {
    return static_cast<float>(number);
}

}  // namespace

Registers::Registers(const Lowered& lowered, Memory& memory, Watch& watch, Arithmetic& arithmetic)
    : profile_(lowered.profile),
      watch_(watch),
      arithmetic_(arithmetic),
      code_(Lower(lowered, memory)) {
    isUnset_.resize(code_.hasUnset ? code_.slots.size() : 0);
}

bool Registers::cycle(const CycleState& state) {
    const qint64 limit =
        watch_.isOn(Check::ScanLimit) ? profile_.scanLimit : std::numeric_limits<qint64>::max();
    budget_ = limit;
    takeOver(state);
    notesBefore_.reset();
    const auto end = [this, &state, limit] {
        handOver(state);
        state.instructions += limit - budget_;
    };
    try {
        if (!execute()) {
            if (notesBefore_) {
                watch_.setNotes(*notesBefore_);
            }
            return false;
        }
    } catch (const Interruption&) {
        end();
        throw;
    }
    end();
    return true;
}

void Registers::takeOver(const CycleState& state) {
    Slot* const slots = code_.slots.data();
    for (const Binding& binding : code_.bindings) {
        slots[binding.slot] = SlotOf(binding.cell->value);
        if (code_.hasUnset) {
            isUnset_[static_cast<std::size_t>(binding.slot)] = binding.cell->isUnset ? 1 : 0;
        }
    }
    slots[code_.tick].whole = state.tick;
    slots[code_.isTickSet].whole = 0;
}

void Registers::handOver(const CycleState& state) {
    const Slot* const slots = code_.slots.data();
    for (const Binding& binding : code_.bindings) {
        binding.cell->value = ValueOf(binding.cell->type, slots[binding.slot]);
        if (code_.hasUnset) {
            binding.cell->isUnset = isUnset_[static_cast<std::size_t>(binding.slot)] != 0;
        }
    }
    state.tick = static_cast<quint32>(slots[code_.tick].whole);
    if (slots[code_.isTickSet].whole != 0) {
        state.tickSetting = static_cast<quint32>(slots[code_.tickSetting].whole);
    }
}

// Where a check ends the run this way ends too; the other one tells why.
bool Registers::execute() {
    try {
        return run();
    } catch (const RunStop&) {
        return false;
    }
}

// ---------------------------------------------------------------------------------------------
// What is not usual
// ---------------------------------------------------------------------------------------------

qint64 Registers::slice() {
    const qint64 taken = std::min(budget_, SLICE);
    budget_ -= taken;
    return taken;
}

// At the end of a slice: what is left with more of them, below 0 if the budget is used up.
Q_NEVER_INLINE qint64 Registers::more(int index, qint64 left) {
    try {
        watch_.endIfAsked(code_.origins[static_cast<std::size_t>(index)].item);
    } catch (const Interruption&) {
        budget_ += left;
        throw;
    }
    while (left < 0 && budget_ > 0) {
        left += slice();
    }
    return left;
}

void Registers::keepNotes() {
    if (!notesBefore_) {
        notesBefore_ = watch_.notes();
    }
}

// An instruction, by the operation and the store that it was lowered from.
Q_NEVER_INLINE void Registers::apply(int index) {
    const RegisterInstruction& instruction = code_.instructions[static_cast<std::size_t>(index)];
    const Origin& origin = code_.origins[static_cast<std::size_t>(index)];
    Slot* const slots = code_.slots.data();
    keepNotes();
    watch_.setItem(origin.item);
    Value value = ValueOf(origin.left, slots[instruction.left]);
    if (origin.operation == Operation::BitNot) {
        value = arithmetic_.bitNot(value);
    } else if (origin.operation != Operation::Move) {
        value = arithmetic_.apply(origin.operation, value,
                                  ValueOf(origin.right, slots[instruction.right]));
    }
    if (origin.stored != TYP_NONE) {
        watch_.setItem(origin.storeItem);
        value = arithmetic_.fit(origin.stored, value);
    }
    slots[instruction.to] = SlotOf(value);
}

void Registers::note(int index) {
    const Origin& origin = code_.origins[static_cast<std::size_t>(index)];
    keepNotes();
    watch_.setItem(origin.item);
    watch_.raise(origin.check, QString());
}

void Registers::applyMath(int index) {
    const RegisterInstruction& instruction = code_.instructions[static_cast<std::size_t>(index)];
    Slot* const slots = code_.slots.data();
    const double argument = slots[instruction.left].real;
    const MathFunction function = code_.functions[static_cast<std::size_t>(instruction.right)];
    giveReal(index, function(argument), std::isfinite(argument));
}

void Registers::applyPower(int index) {
    const RegisterInstruction& instruction = code_.instructions[static_cast<std::size_t>(index)];
    const Slot* const slots = code_.slots.data();
    const double base = slots[instruction.left].real;
    const double exponent = slots[instruction.right].real;
    giveReal(index, std::pow(base, exponent), std::isfinite(base) && std::isfinite(exponent));
}

void Registers::giveReal(int index, double result, bool areOperandsFinite) {
    const RegisterInstruction& instruction = code_.instructions[static_cast<std::size_t>(index)];
    if (!std::isfinite(result)) {
        keepNotes();
        watch_.setItem(code_.origins[static_cast<std::size_t>(index)].item);
        result = arithmetic_.realResult(result, areOperandsFinite).real;
    }
    code_.slots[static_cast<std::size_t>(instruction.to)].real = result;
}

// The object by its numbers; null if it is not known yet.
const Binding* Registers::engineObject(const RegisterInstruction& instruction) {
    const BuiltIn& called = EngineBuiltIns()[static_cast<std::size_t>(instruction.right)];
    EngineNumbers numbers;
    for (std::size_t index = 0; index < EngineNumbersOf(called); ++index) {
        const Slot* const arguments = code_.slots.data() + instruction.left;
        numbers.push_back(arguments[index].whole);
    }
    const auto found = code_.engineObjects.find(numbers);
    return found == code_.engineObjects.end() ? nullptr : &found->second;
}

// Executes a built-in that reads or writes an object; one that writes takes the value last. False
// if the object is not known.
bool Registers::useEngine(int index) {
    const RegisterInstruction& instruction = code_.instructions[static_cast<std::size_t>(index)];
    const BuiltIn& called = EngineBuiltIns()[static_cast<std::size_t>(instruction.right)];
    const Binding* const object = engineObject(instruction);
    if (object == nullptr) {
        isOutdated_ = true;
        return false;
    }
    keepNotes();
    watch_.setItem(code_.origins[static_cast<std::size_t>(index)].item);
    Slot* const slots = code_.slots.data();
    const Typ type = object->cell->type;
    if (called.result != TYP_NONE) {
        const Value value = ValueOf(type, slots[object->slot]);
        slots[instruction.to] = SlotOf(arithmetic_.fit(called.result, value));
        return true;
    }
    const std::size_t last = called.parameters.size() - 1;
    const Value value = ValueOf(called.parameters.back(), (slots + instruction.left)[last]);
    slots[object->slot] = SlotOf(arithmetic_.fit(type, value));
    return true;
}

// ---------------------------------------------------------------------------------------------
// What is usual
// ---------------------------------------------------------------------------------------------

// Each of these is the whole of an instruction; where the result is not usual `apply` gives it.
// False if the code gave up, or if the budget of instructions is used up.
//
// Each one jumps to the next by itself, which a processor foresees better than the one jump of a
// switch; labels as values are an extension that GCC and Clang share.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpedantic"

#define INDEX static_cast<int>(at - first)
#define TO slots[at->to]
#define LEFT slots[at->left]
#define RIGHT slots[at->right]
#define NEXT                                           \
    do {                                               \
        ++at;                                          \
        goto* labels[static_cast<int>(at->operation)]; \
    } while (false)
#define GO_TO(INSTRUCTION)                             \
    do {                                               \
        at = first + (INSTRUCTION);                    \
        goto* labels[static_cast<int>(at->operation)]; \
    } while (false)
// Stores the result, or applies the instruction if the result is not usual.
#define GIVE(FIELD, RESULT, IS_UNUSUAL) \
    do {                                \
        if (Q_UNLIKELY(IS_UNUSUAL)) {   \
            apply(INDEX);               \
        } else {                        \
            TO.FIELD = (RESULT);        \
        }                               \
        NEXT;                           \
    } while (false)
#define TRUTH(NAME, CONDITION)      \
    NAME:                           \
    TO.whole = (CONDITION) ? 1 : 0; \
    NEXT;
#define ARITHMETIC(NAME, FUNCTION)                                         \
    NAME : {                                                               \
        qint64 result = 0;                                                 \
        const bool isBeyond = FUNCTION(LEFT.whole, RIGHT.whole, &result);  \
        GIVE(whole, result, isBeyond);                                     \
    }                                                                      \
    NAME##Fit : {                                                          \
        qint64 result = 0;                                                 \
        const bool isBeyond = FUNCTION(LEFT.whole, RIGHT.whole, &result);  \
        GIVE(whole, result, isBeyond || !limits[at->extra].holds(result)); \
    }
#define DIVISION(NAME, OPERATOR)                               \
    NAME : {                                                   \
        const qint64 divisor = RIGHT.whole;                    \
        if (Q_UNLIKELY(divisor == 0 || divisor == -1)) {       \
            apply(INDEX);                                      \
            NEXT;                                              \
        }                                                      \
        const qint64 result = LEFT.whole OPERATOR divisor;     \
        GIVE(whole, result, !limits[at->extra].holds(result)); \
    }
#define REAL(NAME, OPERATOR)                                             \
    NAME##Real : {                                                       \
        const double result = LEFT.real OPERATOR RIGHT.real;             \
        GIVE(real, result, !std::isfinite(result));                      \
    }                                                                    \
    NAME##Single : {                                                     \
        const float result = Single(LEFT.real OPERATOR RIGHT.real);      \
        GIVE(real, static_cast<double>(result), !std::isfinite(result)); \
    }
// Counts what was executed, and ends the code if that is too much.
#define COUNT                     \
    left -= at->extra;            \
    if (Q_UNLIKELY(left < 0)) {   \
        left = more(INDEX, left); \
        if (left < 0) {           \
            return false;         \
        }                         \
    }
#define JUMP(NAME, CONDITION) \
    NAME:                     \
    COUNT                     \
    if (CONDITION) {          \
        GO_TO(at->to);        \
    }                         \
    NEXT;
#define LABEL(NAME) &&NAME,  // NOLINT(bugprone-macro-parentheses)

bool Registers::run() {
    static const void* const labels[] = {REGISTER_OPERATIONS(LABEL)};
    const RegisterInstruction* const first = code_.instructions.data();
    const RegisterInstruction* at = first + code_.begin;
    const Limits* const limits = code_.limits.data();
    Slot* const slots = code_.slots.data();
    quint8* const isUnset = isUnset_.data();
    qint64 left = slice();
    goto* labels[static_cast<int>(at->operation)];

Copy:
    TO = LEFT;
    NEXT;
Fit:
    GIVE(whole, LEFT.whole, !limits[at->extra].holds(LEFT.whole));
WholeToReal:
    TO.real = static_cast<double>(LEFT.whole);
    NEXT;
RealToWhole : {
    const double real = LEFT.real;
    const Limits& range = limits[at->extra];
    const bool isWithin =
        real >= static_cast<double>(range.least) && real <= static_cast<double>(range.greatest);
    const qint64 whole = isWithin ? static_cast<qint64>(real) : 0;
    GIVE(whole, whole, !isWithin || static_cast<double>(whole) != real);
}
RoundToSingle : {
    const float single = Single(LEFT.real);
    GIVE(real, static_cast<double>(single), !std::isfinite(single));
}
    ARITHMETIC(Add, __builtin_add_overflow)
    ARITHMETIC(Subtract, __builtin_sub_overflow)
    ARITHMETIC(Multiply, __builtin_mul_overflow)
    DIVISION(DivideFit, /)
    DIVISION(ModuloFit, %)
BitAnd:
    TO.whole = LEFT.whole & RIGHT.whole;
    NEXT;
BitOr:
    TO.whole = LEFT.whole | RIGHT.whole;
    NEXT;
BitXor:
    TO.whole = LEFT.whole ^ RIGHT.whole;
    NEXT;
    REAL(Add, +)
    REAL(Subtract, -)
    REAL(Multiply, *)
    REAL(Divide, /)
Apply:
    apply(INDEX);
    NEXT;
    TRUTH(IsEqual, LEFT.whole == RIGHT.whole)
    TRUTH(IsNotEqual, LEFT.whole != RIGHT.whole)
    TRUTH(IsLess, LEFT.whole < RIGHT.whole)
    TRUTH(IsLessOrEqual, LEFT.whole <= RIGHT.whole)
    TRUTH(IsEqualReal, LEFT.real == RIGHT.real)
    TRUTH(IsNotEqualReal, LEFT.real != RIGHT.real)
    TRUTH(IsLessReal, LEFT.real < RIGHT.real)
    TRUTH(IsLessOrEqualReal, LEFT.real <= RIGHT.real)
    TRUTH(IsNotLessReal, !(LEFT.real < RIGHT.real))
    TRUTH(IsNotLessOrEqualReal, !(LEFT.real <= RIGHT.real))
    TRUTH(And, (LEFT.whole & RIGHT.whole) != 0)
    JUMP(Jump, true)
    JUMP(JumpIfEqual, LEFT.whole == RIGHT.whole)
    JUMP(JumpIfNotEqual, LEFT.whole != RIGHT.whole)
    JUMP(JumpIfLess, LEFT.whole < RIGHT.whole)
    JUMP(JumpIfLessOrEqual, LEFT.whole <= RIGHT.whole)
    JUMP(JumpIfEqualReal, LEFT.real == RIGHT.real)
    JUMP(JumpIfNotEqualReal, LEFT.real != RIGHT.real)
    JUMP(JumpIfLessReal, LEFT.real < RIGHT.real)
    JUMP(JumpIfLessOrEqualReal, LEFT.real <= RIGHT.real)
    JUMP(JumpIfNotLessReal, !(LEFT.real < RIGHT.real))
    JUMP(JumpIfNotLessOrEqualReal, !(LEFT.real <= RIGHT.real))
Call:
    COUNT
    LEFT.whole = INDEX + 1;
    GO_TO(at->to);
Return:
    left -= at->extra;
    GO_TO(LEFT.whole);
Restore:
    std::copy_n(slots + at->left, at->right, slots + at->to);
    NEXT;
Math:
    applyMath(INDEX);
    NEXT;
Power:
    applyPower(INDEX);
    NEXT;
Engine:
    if (!useEngine(INDEX)) {
        return false;
    }
    NEXT;
LoadReferred:
    TO = slots[LEFT.whole];
    NEXT;
StoreReferred:
    slots[LEFT.whole] = RIGHT;
    NEXT;
NeedSet:
    if (Q_UNLIKELY(isUnset[at->left] != 0)) {
        note(INDEX);
    }
    NEXT;
MarkSet:
    isUnset[at->left] = 0;
    NEXT;
MarkUnset:
    isUnset[at->left] = 1;
    NEXT;
NeedReferredSet:
    if (Q_UNLIKELY(isUnset[LEFT.whole] != 0)) {
        note(INDEX);
    }
    NEXT;
MarkReferredSet:
    isUnset[LEFT.whole] = 0;
    NEXT;
Count:
    left -= at->extra;
    NEXT;
Note:
    note(INDEX);
    NEXT;
GiveUp:
    return false;
End:
    budget_ += left - at->extra;
    return budget_ >= 0;
}

#pragma GCC diagnostic pop
