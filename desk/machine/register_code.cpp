#include "machine/register_code.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

constexpr int MOST_COUNTED = std::numeric_limits<quint16>::max();
constexpr int NOT_PUT = -1;

RegisterOperation Shifted(RegisterOperation operation, RegisterOperation from,
                          RegisterOperation to) {
    return static_cast<RegisterOperation>(static_cast<int>(operation) - static_cast<int>(from) +
                                          static_cast<int>(to));
}

bool IsConditional(RegisterOperation operation) {
    return IsJump(operation) && operation != RegisterOperation::Jump;
}

// Of whole numbers, "a < b" and "b <= a" are the inverses of each other.
bool ChangesSides(RegisterOperation operation) {
    using R = RegisterOperation;
    return operation == R::IsLess || operation == R::IsLessOrEqual ||
           operation == R::JumpIfLess || operation == R::JumpIfLessOrEqual;
}

RegisterOperation InverseOf(RegisterOperation operation) {
    using R = RegisterOperation;
    constexpr std::pair<R, R> inverses[] = {
        {R::IsEqual, R::IsNotEqual},
        {R::IsLess, R::IsLessOrEqual},
        {R::IsEqualReal, R::IsNotEqualReal},
        {R::IsLessReal, R::IsNotLessReal},
        {R::IsLessOrEqualReal, R::IsNotLessOrEqualReal},
        {R::JumpIfEqual, R::JumpIfNotEqual},
        {R::JumpIfLess, R::JumpIfLessOrEqual},
        {R::JumpIfEqualReal, R::JumpIfNotEqualReal},
        {R::JumpIfLessReal, R::JumpIfNotLessReal},
        {R::JumpIfLessOrEqualReal, R::JumpIfNotLessOrEqualReal},
    };
    for (const auto& [one, other] : inverses) {
        if (operation == one || operation == other) {
            return operation == one ? other : one;
        }
    }
    return operation;
}

}  // namespace

void Invert(RegisterOperation& comparison, qint32& left, qint32& right) {
    if (ChangesSides(comparison)) {
        std::swap(left, right);
    }
    comparison = InverseOf(comparison);
}

RegisterOperation JumpOf(RegisterOperation comparison) {
    return Shifted(comparison, RegisterOperation::IsEqual, RegisterOperation::JumpIfEqual);
}

// ---------------------------------------------------------------------------------------------
// Slots
// ---------------------------------------------------------------------------------------------

qint32 RegisterCodeBuilder::newSlot() {
    code.slots.emplace_back();
    isConstant_.push_back(false);
    return static_cast<qint32>(code.slots.size()) - 1;
}

qint32 RegisterCodeBuilder::constant(Slot value, bool isReal) {
    const auto [known, isNew] = constants_.try_emplace({isReal, value.whole}, 0);
    if (isNew) {
        known->second = newSlot();
        code.slots.back() = value;
        isConstant_.back() = true;
    }
    return known->second;
}

qint32 RegisterCodeBuilder::whole(qint64 number) {
    Slot slot;
    slot.whole = number;
    return constant(slot, false);
}

qint32 RegisterCodeBuilder::real(double number) {
    Slot slot;
    slot.real = number;
    return constant(slot, true);
}

quint16 RegisterCodeBuilder::limits(const Limits& limits) {
    const auto known =
        std::find_if(code.limits.begin(), code.limits.end(), [&limits](const Limits& row) {
            return row.least == limits.least && row.greatest == limits.greatest;
        });
    const auto index = static_cast<quint16>(known - code.limits.begin());
    if (known == code.limits.end()) {
        code.limits.push_back(limits);
    }
    return index;
}

// ---------------------------------------------------------------------------------------------
// Instructions
// ---------------------------------------------------------------------------------------------

void RegisterCodeBuilder::emit(RegisterOperation operation, qint32 to, qint32 left, qint32 right,
                               quint16 extra, const Origin& origin) {
    code.instructions.push_back({operation, extra, to, left, right});
    code.origins.push_back(origin);
}

// What was executed since it was counted last.
quint16 RegisterCodeBuilder::takeCount() {
    for (; isCounting_ && counted_ > MOST_COUNTED; counted_ -= MOST_COUNTED) {
        emit(RegisterOperation::Count, 0, 0, 0, static_cast<quint16>(MOST_COUNTED));
    }
    const int counted = isCounting_ ? counted_ : 0;
    counted_ = 0;
    return static_cast<quint16>(counted);
}

// Where items are not counted, rounds and calls are.
quint16 RegisterCodeBuilder::takeCountOfRound() {
    const quint16 count = takeCount();
    return isCounting_ ? count : quint16(1);
}

void RegisterCodeBuilder::emitJump(RegisterOperation operation, qint32 left, qint32 right,
                                   quint16 count) {
    Origin origin;
    origin.item = item_;
    emit(operation, 0, left, right, count, origin);
}

void RegisterCodeBuilder::use(Target place) {
    uses_.emplace_back(here() - 1, place);
}

void RegisterCodeBuilder::jump(RegisterOperation operation, qint32 left, qint32 right,
                               Target place) {
    if (operation == RegisterOperation::Jump && isPlaced(place) && closeLoop(place)) {
        return;
    }
    const quint16 count = isPlaced(place) ? takeCountOfRound() : takeCount();
    emitJump(operation, left, right, count);
    use(place);
}

// A jump back to the condition of a loop tests it itself, so that a round has one jump.
bool RegisterCodeBuilder::closeLoop(Target place) {
    const int head = places_[place];
    if (head == here()) {
        return false;
    }
    const RegisterInstruction condition = code.instructions[static_cast<std::size_t>(head)];
    const int total = counted_ + condition.extra;
    const auto used =
        std::lower_bound(uses_.begin(), uses_.end(), std::make_pair(head, Target()));
    if (!IsConditional(condition.operation) || total > MOST_COUNTED) {
        return false;
    }
    const Target exit = used->second;
    const Target body = newTarget();
    places_[body] = head + 1;
    RegisterInstruction again = condition;
    Invert(again.operation, again.left, again.right);
    counted_ = isCounting_ ? total : 0;
    const quint16 count = takeCountOfRound();
    emitJump(again.operation, again.left, again.right, count);
    use(body);
    emit(RegisterOperation::Jump, 0);
    use(exit);
    return true;
}

void RegisterCodeBuilder::call(Target place, qint32 returnSlot) {
    const quint16 count = takeCountOfRound();
    emitJump(RegisterOperation::Call, returnSlot, 0, count);
    use(place);
}

void RegisterCodeBuilder::end(RegisterOperation operation, qint32 left) {
    const quint16 count = takeCount();
    emit(operation, 0, left, 0, count);
}

Target RegisterCodeBuilder::newTarget() {
    places_.push_back(NOT_PUT);
    return places_.size() - 1;
}

// Whether the code ends with a conditional jump to that place over a jump.
bool RegisterCodeBuilder::skipsJump(Target place) const {
    const std::size_t size = code.instructions.size();
    if (size < 2 || uses_.size() < 2) {
        return false;
    }
    const auto& [skipping, skipped] = uses_[uses_.size() - 2];
    return code.instructions[size - 1].operation == RegisterOperation::Jump &&
           IsConditional(code.instructions[size - 2].operation) && skipping == here() - 2 &&
           skipped == place && lastPut_ < here() - 1 &&
           (code.instructions[size - 1].extra == 0 || !isCounting_);
}

void RegisterCodeBuilder::put(Target place) {
    const quint16 count = takeCount();
    if (count > 0) {
        emit(RegisterOperation::Count, 0, 0, 0, count);
    } else if (skipsJump(place)) {
        const quint16 ofJump = last().extra;
        code.instructions.pop_back();
        code.origins.pop_back();
        Invert(last().operation, last().left, last().right);
        last().extra = std::max(last().extra, ofJump);
        uses_[uses_.size() - 2].second = uses_.back().second;
        uses_.pop_back();
    }
    places_[place] = here();
    lastPut_ = here();
}

void RegisterCodeBuilder::finish() {
    for (const auto& [instruction, place] : uses_) {
        code.instructions[static_cast<std::size_t>(instruction)].to = places_[place];
    }
    thread();
}

// A jump to a jump that counts nothing leads where that one does.
void RegisterCodeBuilder::thread() {
    for (RegisterInstruction& jump : code.instructions) {
        for (int most = 8; most > 0 && IsJump(jump.operation); --most) {
            const RegisterInstruction& next =
                code.instructions[static_cast<std::size_t>(jump.to)];
            if (next.operation != RegisterOperation::Jump || next.extra > 0) {
                break;
            }
            jump.to = next.to;
        }
    }
}
