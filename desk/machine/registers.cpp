#include "machine/registers.h"

#include "machine/lower.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace {

float Single(double number) {
    return static_cast<float>(number);
}

}  // namespace

Registers::Registers(const Code& code, const Profile& profile, Memory& memory, Watch& watch,
                     Arithmetic& arithmetic)
    : profile_(profile), memory_(memory), watch_(watch), arithmetic_(arithmetic),
      code_(Lower(code, profile, watch.checks(), memory)) {
    isUnset_.resize(code_.hasUnset ? code_.slots.size() : 0);
}

bool Registers::cycle(const CycleState& state) {
    const qint64 limit = watch_.isOn(Check::ScanLimit) ? profile_.scanLimit : 0;
    qint64 budget = limit;
    takeOver(state);
    notesBefore_.reset();
    if (!execute(budget)) {
        if (notesBefore_) {
            watch_.setNotes(*notesBefore_);
        }
        return false;
    }
    handOver(state);
    state.instructions += limit - budget;
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
bool Registers::execute(qint64& budget) {
    try {
        return run(budget);
    } catch (const Stop&) {
        return false;
    }
}

// ---------------------------------------------------------------------------------------------
// What is not usual
// ---------------------------------------------------------------------------------------------

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

Q_NEVER_INLINE void Registers::applyMath(int index, double result, bool areOperandsFinite) {
    keepNotes();
    watch_.setItem(code_.origins[static_cast<std::size_t>(index)].item);
    code_.slots[static_cast<std::size_t>(
                    code_.instructions[static_cast<std::size_t>(index)].to)]
        .real = arithmetic_.realResult(result, areOperandsFinite).real;
}

// The object by its numbers; null if it is not known yet.
const Binding* Registers::engineObject(const RegisterInstruction& instruction) {
    constexpr std::size_t registerNumbers = std::tuple_size_v<RegisterNumbers>;
    const BuiltIn& called = EngineBuiltIns()[static_cast<std::size_t>(instruction.right)];
    const Slot* const numbers = code_.slots.data() + instruction.left;
    if (called.parameters.size() < registerNumbers) {
        const auto found = code_.engineGlobals.find(numbers[0].whole);
        return found == code_.engineGlobals.end() ? nullptr : &found->second;
    }
    const auto found = code_.engineRegisters.find(
        {numbers[0].whole, numbers[1].whole, numbers[2].whole, numbers[3].whole});
    return found == code_.engineRegisters.end() ? nullptr : &found->second;
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

// Each case is the whole of an instruction; where the result is not usual `apply` gives it. False
// if the code gave up, or if the budget of instructions is used up.
bool Registers::run(qint64& budget) {
    const RegisterInstruction* const first = code_.instructions.data();
    const RegisterInstruction* next = first + code_.begin;
    const Limits* const limits = code_.limits.data();
    Slot* const slots = code_.slots.data();
    quint8* const isUnset = isUnset_.data();
    qint64 left = budget;

#define INDEX static_cast<int>(at - first)
#define TO slots[at->to]
#define LEFT slots[at->left]
#define RIGHT slots[at->right]
#define WHOLE(OPERATION, EXPRESSION)       \
    case RegisterOperation::OPERATION:     \
        TO.whole = (EXPRESSION) ? 1 : 0;   \
        break;
#define ARITHMETIC(OPERATION, FUNCTION)                                             \
    case RegisterOperation::OPERATION: {                                            \
        qint64 result = 0;                                                          \
        if (Q_UNLIKELY(FUNCTION(LEFT.whole, RIGHT.whole, &result))) {               \
            apply(INDEX);                                                           \
        } else {                                                                    \
            TO.whole = result;                                                      \
        }                                                                           \
        break;                                                                      \
    }                                                                               \
    case RegisterOperation::OPERATION##Fit: {                                       \
        qint64 result = 0;                                                          \
        const bool isBeyond = FUNCTION(LEFT.whole, RIGHT.whole, &result);           \
        if (Q_UNLIKELY(isBeyond || !limits[at->extra].holds(result))) {             \
            apply(INDEX);                                                           \
        } else {                                                                    \
            TO.whole = result;                                                      \
        }                                                                           \
        break;                                                                      \
    }
#define DIVISION(OPERATION, OPERATOR)                                               \
    case RegisterOperation::OPERATION: {                                            \
        const qint64 divisor = RIGHT.whole;                                         \
        if (Q_UNLIKELY(divisor == 0 || divisor == -1)) {                            \
            apply(INDEX);                                                           \
            break;                                                                  \
        }                                                                           \
        const qint64 result = LEFT.whole OPERATOR divisor;                          \
        if (Q_UNLIKELY(!limits[at->extra].holds(result))) {                         \
            apply(INDEX);                                                           \
        } else {                                                                    \
            TO.whole = result;                                                      \
        }                                                                           \
        break;                                                                      \
    }
#define REAL(OPERATION, OPERATOR)                                                   \
    case RegisterOperation::OPERATION##Real: {                                      \
        const double result = LEFT.real OPERATOR RIGHT.real;                        \
        if (Q_UNLIKELY(!std::isfinite(result))) {                                   \
            apply(INDEX);                                                           \
        } else {                                                                    \
            TO.real = result;                                                       \
        }                                                                           \
        break;                                                                      \
    }                                                                               \
    case RegisterOperation::OPERATION##Single: {                                    \
        const float result = Single(LEFT.real OPERATOR RIGHT.real);                 \
        if (Q_UNLIKELY(!std::isfinite(result))) {                                   \
            apply(INDEX);                                                           \
        } else {                                                                    \
            TO.real = static_cast<double>(result);                                  \
        }                                                                           \
        break;                                                                      \
    }
#define JUMP(OPERATION, CONDITION)                                                  \
    case RegisterOperation::OPERATION:                                              \
        left -= at->extra;                                                          \
        if (Q_UNLIKELY(left < 0)) {                                                 \
            return false;                                                           \
        }                                                                           \
        if (CONDITION) {                                                            \
            next = first + at->to;                                                  \
        }                                                                           \
        break;

    for (;;) {
        const RegisterInstruction* const at = next++;
        switch (at->operation) {
            case RegisterOperation::Copy:
                TO = LEFT;
                break;
            case RegisterOperation::Fit:
                if (Q_UNLIKELY(!limits[at->extra].holds(LEFT.whole))) {
                    apply(INDEX);
                } else {
                    TO = LEFT;
                }
                break;
            case RegisterOperation::WholeToReal:
                TO.real = static_cast<double>(LEFT.whole);
                break;
            case RegisterOperation::RealToWhole: {
                const double real = LEFT.real;
                const Limits& range = limits[at->extra];
                const bool isWithin = real >= static_cast<double>(range.least) &&
                                      real <= static_cast<double>(range.greatest);
                const qint64 whole = isWithin ? static_cast<qint64>(real) : 0;
                if (Q_UNLIKELY(!isWithin || static_cast<double>(whole) != real)) {
                    apply(INDEX);
                } else {
                    TO.whole = whole;
                }
                break;
            }
            case RegisterOperation::RoundToSingle: {
                const float single = Single(LEFT.real);
                if (Q_UNLIKELY(!std::isfinite(single))) {
                    apply(INDEX);
                } else {
                    TO.real = static_cast<double>(single);
                }
                break;
            }
            ARITHMETIC(Add, __builtin_add_overflow)
            ARITHMETIC(Subtract, __builtin_sub_overflow)
            ARITHMETIC(Multiply, __builtin_mul_overflow)
            DIVISION(DivideFit, /)
            DIVISION(ModuloFit, %)
            case RegisterOperation::BitAnd:
                TO.whole = LEFT.whole & RIGHT.whole;
                break;
            case RegisterOperation::BitOr:
                TO.whole = LEFT.whole | RIGHT.whole;
                break;
            case RegisterOperation::BitXor:
                TO.whole = LEFT.whole ^ RIGHT.whole;
                break;
            REAL(Add, +)
            REAL(Subtract, -)
            REAL(Multiply, *)
            REAL(Divide, /)
            case RegisterOperation::Apply:
                apply(INDEX);
                break;
            WHOLE(IsEqual, LEFT.whole == RIGHT.whole)
            WHOLE(IsNotEqual, LEFT.whole != RIGHT.whole)
            WHOLE(IsLess, LEFT.whole < RIGHT.whole)
            WHOLE(IsLessOrEqual, LEFT.whole <= RIGHT.whole)
            WHOLE(IsEqualReal, LEFT.real == RIGHT.real)
            WHOLE(IsNotEqualReal, LEFT.real != RIGHT.real)
            WHOLE(IsLessReal, LEFT.real < RIGHT.real)
            WHOLE(IsLessOrEqualReal, LEFT.real <= RIGHT.real)
            WHOLE(IsNotLessReal, !(LEFT.real < RIGHT.real))
            WHOLE(IsNotLessOrEqualReal, !(LEFT.real <= RIGHT.real))
            WHOLE(And, (LEFT.whole & RIGHT.whole) != 0)
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
            case RegisterOperation::Call:
                left -= at->extra;
                LEFT.whole = next - first;
                next = first + at->to;
                break;
            case RegisterOperation::Return:
                left -= at->extra;
                next = first + LEFT.whole;
                break;
            case RegisterOperation::Restore:
                std::copy_n(slots + at->left, at->right, slots + at->to);
                break;
            case RegisterOperation::Math: {
                const double argument = LEFT.real;
                const double result =
                    code_.functions[static_cast<std::size_t>(at->right)](argument);
                if (Q_UNLIKELY(!std::isfinite(result))) {
                    applyMath(INDEX, result, std::isfinite(argument));
                } else {
                    TO.real = result;
                }
                break;
            }
            case RegisterOperation::Power: {
                const double result = std::pow(LEFT.real, RIGHT.real);
                if (Q_UNLIKELY(!std::isfinite(result))) {
                    applyMath(INDEX, result, std::isfinite(LEFT.real) && std::isfinite(RIGHT.real));
                } else {
                    TO.real = result;
                }
                break;
            }
            case RegisterOperation::Engine:
                if (!useEngine(INDEX)) {
                    return false;
                }
                break;
            case RegisterOperation::LoadReferred:
                TO = slots[LEFT.whole];
                break;
            case RegisterOperation::StoreReferred:
                slots[LEFT.whole] = RIGHT;
                break;
            case RegisterOperation::NeedSet:
                if (isUnset[at->left] != 0) {
                    return false;
                }
                break;
            case RegisterOperation::MarkSet:
                isUnset[at->left] = 0;
                break;
            case RegisterOperation::MarkUnset:
                isUnset[at->left] = 1;
                break;
            case RegisterOperation::NeedReferredSet:
                if (isUnset[LEFT.whole] != 0) {
                    return false;
                }
                break;
            case RegisterOperation::MarkReferredSet:
                isUnset[LEFT.whole] = 0;
                break;
            case RegisterOperation::Count:
                left -= at->extra;
                break;
            case RegisterOperation::Note:
                note(INDEX);
                break;
            case RegisterOperation::GiveUp:
                return false;
            case RegisterOperation::End:
                budget = left - at->extra;
                return budget >= 0;
        }
    }
}
