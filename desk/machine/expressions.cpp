#include "machine/expressions.h"

#include <algorithm>

namespace {

using R = RegisterOperation;

R Shifted(R operation, R from, R to) {
    return static_cast<R>(static_cast<int>(operation) - static_cast<int>(from) +
                          static_cast<int>(to));
}

// "a > b" is "b < a".
bool ChangesSides(Operation operation) {
    return operation == Operation::Greater || operation == Operation::GreaterOrEqual;
}

R ComparisonOf(Operation operation) {
    switch (operation) {
        case Operation::Equal:
            return R::IsEqual;
        case Operation::NotEqual:
            return R::IsNotEqual;
        case Operation::Less:
        case Operation::Greater:
            return R::IsLess;
        default:
            return R::IsLessOrEqual;
    }
}

R RealOperation(Operation operation, bool isSingle) {
    if (operation < Operation::Add || operation > Operation::Divide) {
        return R::Apply;
    }
    return static_cast<R>(static_cast<int>(isSingle ? R::AddSingle : R::AddReal) +
                          static_cast<int>(operation) - static_cast<int>(Operation::Add));
}

R WholeOperation(Operation operation, bool isNarrowed, bool isTyped) {
    switch (operation) {
        case Operation::Add:
            return isNarrowed ? R::AddFit : R::Add;
        case Operation::Subtract:
            return isNarrowed ? R::SubtractFit : R::Subtract;
        case Operation::Multiply:
            return isNarrowed ? R::MultiplyFit : R::Multiply;
        case Operation::Divide:
            return R::DivideFit;
        case Operation::Modulo:
            return R::ModuloFit;
        case Operation::BitAnd:
            return isTyped ? R::Apply : R::BitAnd;
        case Operation::BitOr:
            return isTyped ? R::Apply : R::BitOr;
        case Operation::BitXor:
            return isTyped ? R::Apply : R::BitXor;
        default:
            return R::Apply;
    }
}

// Between which numbers the result lies if nothing comes up.
Limits ResultLimits(Operation operation, const Limits& left, const Limits& right) {
    Limits result = WIDEST;
    bool isBeyond = true;
    if (operation == Operation::Add) {
        isBeyond = __builtin_add_overflow(left.least, right.least, &result.least) ||
                   __builtin_add_overflow(left.greatest, right.greatest, &result.greatest);
    } else if (operation == Operation::Subtract) {
        isBeyond = __builtin_sub_overflow(left.least, right.greatest, &result.least) ||
                   __builtin_sub_overflow(left.greatest, right.least, &result.greatest);
    } else if (operation == Operation::Modulo && right.least == right.greatest &&
               right.least > 0) {
        isBeyond = false;
        result = {left.least < 0 ? 1 - right.least : 0, left.greatest > 0 ? right.least - 1 : 0};
    }
    return isBeyond ? WIDEST : result;
}

}  // namespace

int Expressions::add(const Node& node) {
    nodes_.push_back(node);
    return static_cast<int>(nodes_.size()) - 1;
}

const Node& Expressions::node(int index) const {
    if (index == UNKNOWN) {
        throw Unusual();
    }
    return nodes_[static_cast<std::size_t>(index)];
}

int Expressions::addValue(qint32 slot, Typ type, const Limits& limits, bool isSingle) {
    Node value;
    value.type = type;
    value.left = slot;
    value.limits = limits;
    value.isSingle = isSingle;
    return add(value);
}

int Expressions::addFitting(qint32 slot, Typ type) {
    if (!IsNumber(type)) {
        throw Unusual();
    }
    return addValue(slot, type, IsReal(type) ? WIDEST : LimitsOf(type), type == TYP_REAL);
}

int Expressions::addWhole(Typ type, qint64 number) {
    return addValue(builder_.whole(number), type, {number, number});
}

int Expressions::addReal(Typ type, double number) {
    return addValue(builder_.real(number), type, WIDEST,
                    static_cast<double>(static_cast<float>(number)) == number);
}

void Expressions::keepAsTemporaries(const std::vector<qint32>& slots) {
    allTemporaries_.insert(slots.begin(), slots.end());
}

int Expressions::addComparison(R comparison, qint32 left, qint32 right) {
    Node compared;
    compared.kind = NodeKind::Comparison;
    compared.comparison = comparison;
    compared.left = left;
    compared.right = right;
    return add(compared);
}

bool Expressions::isConstant(int index) const {
    return node(index).kind == NodeKind::Slot && builder_.isConstant(node(index).left);
}

qint32 Expressions::newTemporary() {
    if (temporariesUsed_ == temporaries_.size()) {
        temporaries_.push_back(builder_.newSlot());
        allTemporaries_.insert(temporaries_.back());
    }
    return temporaries_[temporariesUsed_++];
}

void Expressions::forget() {
    nodes_.clear();
    temporariesUsed_ = 0;
    lastOperation_ = UNKNOWN;
    held_ = HeldValues();
}

bool Expressions::isTemporary(qint32 slot) const {
    return allTemporaries_.count(slot) > 0;
}

bool Expressions::uses(int index, const SlotTest& isMeant) const {
    const Node& used = node(index);
    switch (used.kind) {
        case NodeKind::Slot:
            return isMeant(used.left);
        case NodeKind::Comparison:
            return isMeant(used.left) || isMeant(used.right);
        case NodeKind::And:
            return uses(used.left, isMeant) || uses(used.right, isMeant);
        case NodeKind::Not:
            return uses(used.left, isMeant);
    }
    return false;
}

bool Expressions::save(const SlotTest& isMeant) {
    const std::size_t before = temporariesUsed_;
    for (int* const entry : entries()) {
        if (*entry != UNKNOWN && uses(*entry, isMeant)) {
            intoTemporary(*entry);
        }
    }
    return temporariesUsed_ != before;
}

std::vector<int*> Expressions::entries() {
    std::vector<int*> all = {&held_.accumulator, &held_.register0, &held_.flag};
    for (int& entry : held_.stack) {
        all.push_back(&entry);
    }
    return all;
}

qint32 Expressions::intoTemporary(int index) {
    const qint32 slot = newTemporary();
    copyInto(slot, index);
    Node copied = node(index);
    copied.kind = NodeKind::Slot;
    copied.left = slot;
    const int copy = add(copied);
    for (int* const entry : entries()) {
        *entry = *entry == index ? copy : *entry;
    }
    return slot;
}

qint32 Expressions::slotOf(int index) {
    return node(index).kind == NodeKind::Slot ? node(index).left : intoTemporary(index);
}

void Expressions::copyInto(qint32 slot, int index) {
    const Node copied = node(index);
    switch (copied.kind) {
        case NodeKind::Slot:
            builder_.emit(R::Copy, slot, copied.left);
            return;
        case NodeKind::Comparison:
            builder_.emit(copied.comparison, slot, copied.left, copied.right);
            return;
        case NodeKind::And: {
            const qint32 left = slotOf(copied.left);
            builder_.emit(R::And, slot, left, slotOf(copied.right));
            return;
        }
        case NodeKind::Not:
            builder_.emit(R::IsEqual, slot, slotOf(copied.left), builder_.whole(0));
            return;
    }
}

bool Expressions::mayChange(qint32 slot) const {
    return !builder_.isConstant(slot) && !isTemporary(slot);
}

void Expressions::storeIn(qint32 slot, Typ type, int stored, int storeItem) {
    if (!IsNumber(node(stored).type)) {
        throw Unusual();
    }
    const bool isSaved = save([slot](qint32 used) { return used == slot; });
    if (isSaved || !redirect(slot, type, stored, storeItem)) {
        fitInto(slot, type, stored, storeItem);
    }
}

bool Expressions::redirect(qint32 slot, Typ type, int stored, int storeItem) {
    const Node& value = node(stored);
    const bool isLast = value.kind == NodeKind::Slot && isTemporary(value.left) &&
                        builder_.here() - 1 == lastOperation_ && builder_.last().to == value.left;
    if (!isLast || isUsed(value.left) || !canStore(value, type)) {
        return false;
    }
    builder_.last().to = slot;
    Origin& origin = builder_.lastOrigin();
    origin.stored = type;
    origin.storeItem = storeItem;
    return true;
}

bool Expressions::isUsed(qint32 slot) {
    const std::vector<int*> all = entries();
    return std::any_of(all.begin(), all.end(), [this, slot](const int* entry) {
        return *entry != UNKNOWN && uses(*entry, [slot](qint32 used) { return used == slot; });
    });
}

bool Expressions::canStore(const Node& value, Typ type) {
    RegisterInstruction& last = builder_.last();
    if (last.operation == R::Apply) {
        return true;
    }
    if (value.isReal()) {
        const bool isSingle = type == TYP_REAL && last.operation <= R::DivideReal;
        const bool isDone = type == TYP_LREAL || (type == TYP_REAL && value.isSingle);
        last.operation =
            isSingle ? Shifted(last.operation, R::AddReal, R::AddSingle) : last.operation;
        return isSingle || isDone;
    }
    if (IsReal(type)) {
        return false;
    }
    return LimitsOf(type).holds(value.limits) || narrow(last, LimitsOf(type));
}

bool Expressions::narrow(RegisterInstruction& last, const Limits& limits) {
    Limits both = limits;
    if (last.operation >= R::Add && last.operation <= R::Multiply) {
        last.operation = Shifted(last.operation, R::Add, R::AddFit);
    } else if (last.operation >= R::AddFit && last.operation <= R::ModuloFit) {
        const Limits& before = builder_.code.limits[last.extra];
        both = {std::max(limits.least, before.least), std::min(limits.greatest, before.greatest)};
    } else {
        return false;
    }
    last.extra = builder_.limits(both);
    return true;
}

int Expressions::fitted(Typ type, int index, int storeItem) {
    const Node& value = node(index);
    if (!IsNumber(value.type)) {
        throw Unusual();
    }
    const bool isDone = IsReal(type) ? value.type == type && value.isReal() &&
                                           (type == TYP_LREAL || value.isSingle)
                                     : !value.isReal() && LimitsOf(type).holds(value.limits);
    if (isDone) {
        Node same = value;
        same.type = type;
        return add(same);
    }
    const qint32 slot = newTemporary();
    fitInto(slot, type, index, storeItem);
    return addFitting(slot, type);
}

void Expressions::fitInto(qint32 slot, Typ type, int index, int storeItem) {
    const Node value = node(index);
    Origin origin;
    origin.left = value.type;
    origin.stored = type;
    origin.storeItem = storeItem;
    if (IsReal(type)) {
        fitReal(slot, type, index, origin);
    } else if (value.isReal()) {
        builder_.emit(R::RealToWhole, slot, slotOf(index), 0, builder_.limits(LimitsOf(type)),
                      origin);
    } else if (LimitsOf(type).holds(value.limits)) {
        copyInto(slot, index);
    } else {
        builder_.emit(R::Fit, slot, slotOf(index), 0, builder_.limits(LimitsOf(type)), origin);
    }
}

void Expressions::fitReal(qint32 slot, Typ type, int index, Origin& origin) {
    const bool isSingle = node(index).isReal() && node(index).isSingle;
    const qint32 real = asReal(index);
    if (type == TYP_LREAL || isSingle) {
        builder_.emit(R::Copy, slot, real);
    } else {
        origin.left = TYP_LREAL;
        builder_.emit(R::RoundToSingle, slot, real, 0, 0, origin);
    }
}

qint32 Expressions::asReal(int index) {
    if (node(index).isReal()) {
        return slotOf(index);
    }
    if (isConstant(index)) {
        return builder_.real(static_cast<double>(builder_.valueOf(node(index).left).whole));
    }
    const qint32 whole = slotOf(index);
    const qint32 slot = newTemporary();
    builder_.emit(R::WholeToReal, slot, whole);
    return slot;
}

int Expressions::operated(Operation operation, int left, int right) {
    const bool isReal = node(left).isReal() || node(right).isReal();
    if (operation == Operation::And || operation == Operation::Xor) {
        return combined(operation, truthOf(left), truthOf(right));
    }
    if (operation >= Operation::Equal && operation <= Operation::GreaterOrEqual) {
        return isReal ? comparedReals(operation, left, right)
                      : comparedWholes(operation, left, right);
    }
    if (isReal && operation >= Operation::BitAnd && operation <= Operation::RotateRight) {
        throw Unusual();
    }
    return isReal ? reals(operation, left, right) : wholes(operation, left, right);
}

int Expressions::combined(Operation operation, int left, int right) {
    if (operation == Operation::Xor) {
        const qint32 slot = slotOf(left);
        return addComparison(R::IsNotEqual, slot, slotOf(right));
    }
    Node both;
    both.kind = NodeKind::And;
    both.left = small(left);
    both.right = small(right);
    both.size = node(both.left).size + node(both.right).size + 1;
    return add(both);
}

int Expressions::small(int index) {
    constexpr int mostNodes = 16;
    return node(index).size > mostNodes ? addValue(intoTemporary(index), TYP_BOOL, TRUTH) : index;
}

int Expressions::truthOf(int index) {
    const Node& value = node(index);
    if (!IsNumber(value.type)) {
        throw Unusual();
    }
    if (value.isReal()) {
        return addComparison(R::IsNotEqualReal, slotOf(index), builder_.real(0.0));
    }
    if (TRUTH.holds(value.limits)) {
        return index;
    }
    return addComparison(R::IsNotEqual, slotOf(index), builder_.whole(0));
}

int Expressions::negated(int index) {
    Node value = node(index);
    if (value.kind == NodeKind::Comparison) {
        Invert(value.comparison, value.left, value.right);
        return add(value);
    }
    if (value.kind == NodeKind::Slot) {
        return addComparison(R::IsEqual, value.left, builder_.whole(0));
    }
    value.kind = NodeKind::Not;
    value.left = index;
    return add(value);
}

int Expressions::comparedWholes(Operation operation, int left, int right) {
    if (ChangesSides(operation)) {
        std::swap(left, right);
    }
    const R comparison = ComparisonOf(operation);
    if (isConstant(left) && isConstant(right)) {
        return addWhole(TYP_BOOL, holds(comparison, left, right) ? 1 : 0);
    }
    const qint32 slot = slotOf(left);
    return addComparison(comparison, slot, slotOf(right));
}

bool Expressions::holds(R comparison, int left, int right) const {
    const qint64 one = builder_.valueOf(node(left).left).whole;
    const qint64 other = builder_.valueOf(node(right).left).whole;
    switch (comparison) {
        case R::IsEqual:
            return one == other;
        case R::IsNotEqual:
            return one != other;
        case R::IsLess:
            return one < other;
        default:
            return one <= other;
    }
}

int Expressions::comparedReals(Operation operation, int left, int right) {
    if (ChangesSides(operation)) {
        std::swap(left, right);
    }
    const qint32 slot = asReal(left);
    return addComparison(Shifted(ComparisonOf(operation), R::IsEqual, R::IsEqualReal), slot,
                         asReal(right));
}

Origin Expressions::originOf(Operation operation, Typ left, Typ right) const {
    Origin origin;
    origin.operation = operation;
    origin.left = left;
    origin.right = right;
    origin.item = item_;
    return origin;
}

int Expressions::emitOperation(R done, qint32 left, qint32 right, const Origin& origin,
                               quint16 limits) {
    const qint32 slot = newTemporary();
    lastOperation_ = builder_.here();
    builder_.emit(done, slot, left, right, limits, origin);
    return slot;
}

int Expressions::reals(Operation operation, int left, int right) {
    const Typ type = std::max(node(left).type, node(right).type);
    const Origin origin = originOf(operation, node(left).isReal() ? node(left).type : TYP_REAL,
                                   node(right).isReal() ? node(right).type : TYP_REAL);
    const qint32 leftSlot = asReal(left);
    const qint32 rightSlot = asReal(right);
    const bool isSingle = isTyped_ && type == TYP_REAL;
    const qint32 slot =
        emitOperation(RealOperation(operation, isSingle), leftSlot, rightSlot, origin, 0);
    return addValue(slot, type, WIDEST, isSingle);
}

int Expressions::wholes(Operation operation, int left, int right) {
    const Typ type = std::max(node(left).type, node(right).type);
    const Limits limits = ResultLimits(operation, node(left).limits, node(right).limits);
    const bool isShift = operation >= Operation::ShiftLeft && operation <= Operation::RotateRight;
    const Limits wanted = isTyped_ && !isShift ? LimitsOf(type) : WIDEST;
    if (limits.least == limits.greatest && wanted.holds(limits) && isConstant(left) &&
        isConstant(right)) {
        return addWhole(type, limits.least);
    }
    const Origin origin = originOf(operation, node(left).type, node(right).type);
    const qint32 leftSlot = slotOf(left);
    const qint32 rightSlot = slotOf(right);
    const R done = WholeOperation(operation, isTyped_ && !wanted.holds(limits), isTyped_);
    const qint32 slot = emitOperation(done, leftSlot, rightSlot, origin, builder_.limits(wanted));
    return addValue(slot, type, wanted.holds(limits) ? limits : wanted);
}

int Expressions::complement(int index) {
    const Typ type = node(index).type;
    if (type < TYP_SINT || type > TYP_UDINT) {
        throw Unusual();
    }
    const qint32 value = slotOf(index);
    const qint32 slot =
        emitOperation(R::Apply, value, value, originOf(Operation::BitNot, type, type), 0);
    return addValue(slot, type, WIDEST);
}
