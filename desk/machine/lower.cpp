#include "machine/lower.h"

#include "machine/conventions.h"
#include "machine/expressions.h"
#include "machine/liveness.h"
#include "machine/unit_plans.h"

#include <algorithm>
#include <iterator>

namespace {

using R = RegisterOperation;

// Of the stack, by one unit: so that it does not come to its end.
constexpr std::size_t MOST_ENTRIES = 200;

bool IsVariable(const CodeOperand& operand) {
    return operand.kind == OperandKind::Variable || operand.kind == OperandKind::Referred;
}

// The type of what a slot holds where ways of the code join.
struct Form {
    Typ type = TYP_NONE;
    Typ meant = TYP_NONE;

    bool operator==(const Form& other) const {
        return type == other.type && meant == other.meant;
    }
};

// A place where ways join. The first way that is found tells what holds there.
struct Join {
    Target place = 0;
    bool isReached = false;
    std::vector<Form> stack;
    Form accumulator;
    Form register0;
    Form flag;

    bool expectsAsMuchAs(const Join& other) const {
        return stack == other.stack && accumulator == other.accumulator &&
               register0 == other.register0 && flag == other.flag;
    }
};

class UnitLowering : private Expressions {
public:
    UnitLowering(UnitPlans& all, int unit)
        : Expressions(all.builder, all.profile.width),
          all_(all),
          unit_(all.code.units[static_cast<std::size_t>(unit)]),
          plan_(all.plans[static_cast<std::size_t>(unit)]),
          live_(FindLive(all.code, unit_)) {}

    void lower() {
        builder_.put(plan_.entry);
        if (!isInBody(plan_.body)) {
            giveUp();
            return;
        }
        findJoins();
        reach(plan_.body);
        while (!waiting_.empty()) {
            const int next = *waiting_.begin();
            begin(next);
            follow(next);
        }
    }

private:
    UnitPlans& all_;
    const CodeUnit& unit_;
    const UnitPlan& plan_;
    std::vector<Live> live_;
    std::map<int, Join> joins_;  // by the instruction
    std::set<int> waiting_;      // joins that are reached and not lowered

    int index_ = 0;           // of the instruction
    bool isEnded_ = false;    // nothing follows
    std::set<qint32> known_;  // slots that are known to be set
    std::vector<qint32> stackSlots_;
    qint32 accumulatorSlot_ = builder_.newSlot();
    qint32 register0Slot_ = builder_.newSlot();
    qint32 flagSlot_ = builder_.newSlot();

    const Instruction& instruction() const {
        return all_.code.instructions[static_cast<std::size_t>(index_)];
    }
    int item() const { return instruction().item; }
    const Live& liveAfter() const { return liveAt(index_ + 1); }
    const Live& liveAt(int index) const {
        return live_[static_cast<std::size_t>(index - unit_.begin)];
    }
    const Declaration& declaration(int index) const {
        return unit_.declarations[static_cast<std::size_t>(index)];
    }
    qint32 slotOfVariable(int index) const {
        return plan_.slots[static_cast<std::size_t>(index)];
    }
    bool isReference(int variable) const {
        return declaration(variable).section == Section::Reference;
    }

    // -----------------------------------------------------------------------------------------
    // The order of the code
    // -----------------------------------------------------------------------------------------

    void findJoins() {
        addJoin(plan_.body);
        for (int index = plan_.body; index < unit_.end; ++index) {
            const Instruction& jump = all_.code.instructions[static_cast<std::size_t>(index)];
            if (FormOf(jump.operation).shape == Shape::Jump && isInBody(jump.target)) {
                addJoin(jump.target);
            }
        }
    }

    bool isInBody(int index) const { return index >= plan_.body && index < unit_.end; }

    void addJoin(int index) {
        const auto [join, isNew] = joins_.try_emplace(index);
        if (isNew) {
            join->second.place = builder_.newTarget();
        }
    }

    // Code from a join on, until it ends or goes on in what is lowered already.
    void follow(int from) {
        isEnded_ = false;
        for (index_ = from; !isEnded_; ++index_) {
            try {
                if (index_ != from && joins_.count(index_) > 0) {
                    goOnAt(index_);
                }
                if (!isEnded_) {
                    step();
                }
            } catch (const Unusual&) {
                giveUp();
            }
        }
    }

    void giveUp() {
        builder_.end(R::GiveUp, 0);
        isEnded_ = true;
    }

    void goOnAt(int index) {
        const Target place = reach(index);
        if (builder_.isPlaced(place)) {
            builder_.jump(R::Jump, 0, 0, place);
            isEnded_ = true;
        } else {
            begin(index);
        }
    }

    // The state at a join, as its slots hold it.
    void begin(int index) {
        const Join& join = joins_.at(index);
        builder_.put(join.place);
        waiting_.erase(index);
        known_.clear();
        forget();
        for (std::size_t entry = 0; entry < join.stack.size(); ++entry) {
            held_.stack.push_back(joined(join.stack[entry], stackSlot(entry)));
        }
        held_.accumulator = joined(join.accumulator, accumulatorSlot_);
        held_.register0 = joined(join.register0, register0Slot_);
        held_.flag = joined(join.flag, flagSlot_);
    }

    int joined(const Form& form, qint32 slot) {
        if (form.type == TYP_NONE) {
            return UNKNOWN;
        }
        Node node;
        node.type = form.type;
        node.left = slot;
        node.limits = WIDEST;
        node.meant = form.meant;
        return add(node);
    }

    qint32 stackSlot(std::size_t entry) {
        while (stackSlots_.size() <= entry) {
            stackSlots_.push_back(builder_.newSlot());
        }
        return stackSlots_[entry];
    }

    // Makes the slots hold what is expected at a join.
    Target reach(int index) {
        if (!isInBody(index)) {
            throw Unusual();
        }
        const Live& live = liveAt(index);
        const Join found = foundFor(live);
        Join& join = joins_.at(index);
        if (join.isReached && !join.expectsAsMuchAs(found)) {
            throw Unusual();
        }
        if (!join.isReached) {
            const Target target = join.place;
            join = found;
            join.place = target;
            waiting_.insert(index);
        }
        settle(live);
        return join.place;
    }

    // What is held here of what is live at a join.
    Join foundFor(const Live& live) const {
        Join found;
        found.isReached = true;
        for (const int entry : held_.stack) {
            found.stack.push_back(formOf(entry, true));
        }
        found.accumulator = formOf(held_.accumulator, live.accumulator);
        found.register0 = formOf(held_.register0, live.register0);
        found.flag = formOf(held_.flag, live.flag);
        return found;
    }

    Form formOf(int index, bool isLive) const {
        return isLive && index != UNKNOWN ? Form{node(index).type, node(index).meant} : Form();
    }

    void settle(const Live& live) {
        for (std::size_t entry = 0; entry < held_.stack.size(); ++entry) {
            settleIn(stackSlot(entry), held_.stack[entry]);
        }
        if (live.accumulator) {
            settleIn(accumulatorSlot_, held_.accumulator);
        }
        if (live.register0) {
            settleIn(register0Slot_, held_.register0);
        }
        if (live.flag) {
            settleIn(flagSlot_, held_.flag);
        }
    }

    void settleIn(qint32 slot, int& entry) {
        if (entry == UNKNOWN ||
            (node(entry).kind == NodeKind::Slot && node(entry).left == slot)) {
            return;
        }
        save([slot](qint32 used) { return used == slot; });
        Node settled = node(entry);
        copyInto(slot, entry);
        settled.kind = NodeKind::Slot;
        settled.left = slot;
        entry = add(settled);
    }

    // -----------------------------------------------------------------------------------------
    // Nodes
    // -----------------------------------------------------------------------------------------

    // -----------------------------------------------------------------------------------------
    // Instructions
    // -----------------------------------------------------------------------------------------

    void step() {
        if (index_ >= unit_.end) {
            throw Unusual();
        }
        builder_.countItem();
        builder_.setItem(item());
        item_ = item();
        execute();
        const Live& live = liveAfter();
        held_.accumulator = live.accumulator ? held_.accumulator : UNKNOWN;
        held_.register0 = live.register0 ? held_.register0 : UNKNOWN;
        held_.flag = live.flag ? held_.flag : UNKNOWN;
    }

    void execute() {
        const Operation operation = instruction().operation;
        switch (FormOf(operation).shape) {
            case Shape::Move:
                operation == Operation::Move ? move() : moveAddress();
                return;
            case Shape::Binary:
                binary();
                return;
            case Shape::Unary:
                unary();
                return;
            case Shape::Jump:
                jump();
                return;
            case Shape::Call:
                operation == Operation::Call ? call() : executeBuiltIn();
                return;
            case Shape::Nothing:
                leave();
                return;
        }
    }

    void move() {
        const int moved = take(instruction().from);
        switch (instruction().to.kind) {
            case OperandKind::Accumulator:
                held_.accumulator = moved;
                return;
            case OperandKind::Register0:
                held_.register0 = moved;
                return;
            case OperandKind::Push:
                push(moved);
                return;
            case OperandKind::Nil:
                return;
            case OperandKind::Tick:
                setTick(moved);
                return;
            case OperandKind::Variable:
            case OperandKind::Referred:
                store(instruction().to.index, moved);
                return;
            default:
                throw Unusual();
        }
    }

    int take(const CodeOperand& from) {
        switch (from.kind) {
            case OperandKind::Accumulator:
                return held_.accumulator;
            case OperandKind::Register0:
                return held_.register0;
            case OperandKind::Pop:
                return pop();
            case OperandKind::Tick:
                return addFitting(builder_.code.tick, TYP_UDINT);
            case OperandKind::Variable:
            case OperandKind::Referred:
                return load(from.index);
            case OperandKind::Literal:
                return literal(all_.memory.literals[static_cast<std::size_t>(from.index)]);
            default:
                throw Unusual();
        }
    }

    int literal(const Value& value) {
        if (!IsNumber(value.type)) {
            throw Unusual();
        }
        return value.isReal() ? addReal(value.type, value.real)
                              : addWhole(value.type, value.whole);
    }

    void push(int pushed) {
        if (pushed == UNKNOWN || held_.stack.size() == MOST_ENTRIES) {
            throw Unusual();
        }
        held_.stack.push_back(pushed);
    }

    int pop() {
        if (held_.stack.empty()) {
            throw Unusual();
        }
        const int popped = held_.stack.back();
        held_.stack.pop_back();
        return popped;
    }

    void setTick(int set) {
        if (all_.profile.tickWrite == TickWrite::Counter) {
            assign(builder_.code.tick, TYP_UDINT, set, item());
        } else {
            assign(builder_.code.tickSetting, TYP_UDINT, set, item());
            builder_.emit(R::Copy, builder_.code.isTickSet, builder_.whole(1));
        }
    }

    // -----------------------------------------------------------------------------------------
    // Variables
    // -----------------------------------------------------------------------------------------

    int load(int variable) {
        if (variable == NOWHERE || !IsNumber(declaration(variable).type)) {
            throw Unusual();
        }
        const Typ type = declaration(variable).type;
        const qint32 slot = slotOfVariable(variable);
        if (isReference(variable)) {
            return loadReferred(slot, type);
        }
        needSet(slot);
        const Typ meant = all_.typeMeant(unit_, variable);
        const int loaded = addFitting(slot, meant);
        return meant == type ? loaded : fitted(type, loaded, item());
    }

    int loadReferred(qint32 address, Typ type) {
        if (builder_.code.hasUnset) {
            builder_.emit(R::NeedReferredSet, 0, address, 0, 0,
                          originOf(Check::UninitializedRead));
        }
        const qint32 slot = newTemporary();
        builder_.emit(R::LoadReferred, slot, address);
        return addFitting(slot, type);
    }

    // Each read is noted by itself, so one that was fine tells nothing of the next.
    void needSet(qint32 slot) {
        if (all_.mayBeUnset(slot) && known_.count(slot) == 0) {
            builder_.emit(R::NeedSet, 0, slot, 0, 0, originOf(Check::UninitializedRead));
        }
    }

    void markSet(qint32 slot) {
        if (all_.mayBeUnset(slot) && known_.insert(slot).second) {
            builder_.emit(R::MarkSet, 0, slot);
        }
    }

    void store(int variable, int stored) {
        if (variable == NOWHERE || !IsNumber(declaration(variable).type)) {
            throw Unusual();
        }
        const Typ type = declaration(variable).type;
        const qint32 slot = slotOfVariable(variable);
        if (isReference(variable)) {
            storeReferred(slot, fitted(type, stored, item()));
            return;
        }
        const Typ meant = all_.typeMeant(unit_, variable);
        assign(slot, meant, meant == type ? stored : fitted(type, stored, item()), item());
    }

    void storeReferred(qint32 address, int stored) {
        const qint32 slot = slotOf(stored);
        save([this](qint32 used) { return mayChange(used); });
        builder_.emit(R::StoreReferred, 0, address, slot);
        if (builder_.code.hasUnset) {
            builder_.emit(R::MarkReferredSet, 0, address);
        }
    }

    void assign(qint32 slot, Typ type, int stored, int storeItem) {
        held_.accumulator = liveAfter().accumulator ? held_.accumulator : UNKNOWN;
        storeIn(slot, type, stored, storeItem);
        markSet(slot);
    }

    // -----------------------------------------------------------------------------------------
    // Operations
    // -----------------------------------------------------------------------------------------

    void binary() {
        const int taken = take(instruction().from);
        const bool isStepDown = IsStepDown(all_.code, instruction());
        const int left = isStepDown ? held_.accumulator : taken;
        const int right = isStepDown ? taken : held_.accumulator;
        const Operation operation = instruction().operation;
        if (!IsNumber(node(left).type) || !IsNumber(node(right).type)) {
            throw Unusual();
        }
        const bool isMixed = node(left).isReal() != node(right).isReal();
        if (operation == Operation::Divide && isMixed && all_.isOn(Check::MixedDivision)) {
            raise(Check::MixedDivision);
        }
        held_.accumulator = UNKNOWN;
        held_.accumulator = operated(operation, left, right);
    }

    Origin originOf(Check check) const {
        Origin origin;
        origin.item = item();
        origin.check = check;
        return origin;
    }

    void raise(Check check) { builder_.emit(R::Note, 0, 0, 0, 0, originOf(check)); }

    void unary() {
        const int value = held_.accumulator;
        if (instruction().operation == Operation::Test) {
            held_.flag = truthOf(value);
        } else if (instruction().operation == Operation::Not) {
            held_.accumulator = negated(truthOf(value));
        } else {
            held_.accumulator = complement(value);
        }
    }

    // -----------------------------------------------------------------------------------------
    // Jumps
    // -----------------------------------------------------------------------------------------

    void jump() {
        const Operation operation = instruction().operation;
        if (operation == Operation::Jump) {
            builder_.jump(R::Jump, 0, 0, reach(instruction().target));
            isEnded_ = true;
            return;
        }
        node(held_.flag);
        const Target place = reach(instruction().target);
        branch(held_.flag, operation == Operation::JumpIfTrue, place);
    }

    void branch(int condition, bool isTaken, Target place) {
        const Node tested = node(condition);
        switch (tested.kind) {
            case NodeKind::Slot:
                branchBySlot(tested.left, isTaken, place);
                return;
            case NodeKind::Comparison:
                branchByComparison(tested, isTaken, place);
                return;
            case NodeKind::Not:
                branch(tested.left, !isTaken, place);
                return;
            case NodeKind::And:
                branchByBoth(tested, isTaken, place);
                return;
        }
    }

    // A flag is 1 or 0.
    void branchBySlot(qint32 slot, bool isTaken, Target place) {
        if (!builder_.isConstant(slot)) {
            builder_.jump(isTaken ? R::JumpIfNotEqual : R::JumpIfEqual, slot, builder_.whole(0),
                          place);
        } else if ((builder_.valueOf(slot).whole != 0) == isTaken) {
            builder_.jump(R::Jump, 0, 0, place);
        }
    }

    void branchByComparison(Node tested, bool isTaken, Target place) {
        if (!isTaken) {
            Invert(tested.comparison, tested.left, tested.right);
        }
        builder_.jump(JumpOf(tested.comparison), tested.left, tested.right, place);
    }

    void branchByBoth(const Node& tested, bool isTaken, Target place) {
        const Target over = builder_.newTarget();
        branch(tested.left, false, isTaken ? over : place);
        branch(tested.right, isTaken, place);
        builder_.put(over);
    }

    // -----------------------------------------------------------------------------------------
    // Calls
    // -----------------------------------------------------------------------------------------

    // "MOVA @x #A0"; parameters by reference are bound by who calls.
    void moveAddress() {
        const int variable = instruction().from.index;
        if (instruction().from.kind != OperandKind::Variable || variable == NOWHERE) {
            throw Unusual();
        }
        const qint32 slot = slotOfVariable(variable);
        Node address;
        address.type = TYP_ARRAY;
        address.left = isReference(variable) ? slot : builder_.whole(slot);
        address.limits = WIDEST;
        address.meant = all_.typeMeant(unit_, variable);
        held_.accumulator = add(address);
    }

    void call() {
        if (instruction().target == NOWHERE) {
            throw Unusual();
        }
        const UnitPlan& plan = all_.plans[static_cast<std::size_t>(instruction().target)];
        const CodeUnit& unit = all_.code.units[static_cast<std::size_t>(instruction().target)];
        if (!plan.isCallable || held_.stack.size() < unit.parameters.size()) {
            throw Unusual();
        }
        held_.accumulator = held_.register0 = held_.flag = UNKNOWN;
        passParameters(unit, plan);
        save([this](qint32 used) { return mayChange(used); });
        restoreLocals(unit, plan);
        builder_.call(plan.entry, plan.returnSlot);
        known_.clear();
        takeResult(unit, plan);
    }

    void passParameters(const CodeUnit& unit, const UnitPlan& plan) {
        int taking = unit.begin;
        for (std::size_t left = unit.parameters.size(); left-- > 0; taking += 2) {
            const int parameter = unit.parameters[left];
            const Declaration& declaration =
                unit.declarations[static_cast<std::size_t>(parameter)];
            const qint32 slot = plan.slots[static_cast<std::size_t>(parameter)];
            const int passed = pop();
            builder_.countItem();
            builder_.countItem();
            if (declaration.section == Section::Reference) {
                passAddress(slot, declaration.type, passed);
            } else {
                const auto store = static_cast<std::size_t>(taking) + 1;
                assign(slot, declaration.type, passed, all_.code.instructions[store].item);
            }
        }
    }

    void passAddress(qint32 slot, Typ type, int passed) {
        if (node(passed).type != TYP_ARRAY || node(passed).meant != type) {
            throw Unusual();
        }
        copyInto(slot, passed);
    }

    void restoreLocals(const CodeUnit& unit, const UnitPlan& plan) {
        constexpr std::size_t mostCopies = 3;
        if (all_.profile.locals == Locals::Retained) {
            return;
        }
        const std::vector<int> needed = localsRead(unit, plan);
        const qint32 initial = plan.firstInitial - plan.firstLocal;
        if (needed.size() > mostCopies) {
            builder_.emit(R::Restore, plan.firstLocal, plan.firstInitial,
                          static_cast<qint32>(plan.locals.size()));
        }
        for (const int local : needed) {
            const qint32 slot = plan.slots[static_cast<std::size_t>(local)];
            if (needed.size() <= mostCopies) {
                builder_.emit(R::Copy, slot, slot + initial);
            }
            if (all_.mayBeUnset(slot)) {
                builder_.emit(R::MarkUnset, 0, slot);
            }
        }
    }

    // The locals of a unit that it does not store before anything else is done with them.
    std::vector<int> localsRead(const CodeUnit& unit, const UnitPlan& plan) const {
        std::set<int> stored;
        std::set<int> read;
        for (int index = plan.body; index < unit.end; ++index) {
            const Instruction& next = all_.code.instructions[static_cast<std::size_t>(index)];
            const Shape shape = FormOf(next.operation).shape;
            if (shape == Shape::Jump || shape == Shape::Nothing) {
                break;
            }
            if (IsVariable(next.from) && stored.count(next.from.index) == 0) {
                read.insert(next.from.index);
            }
            if (IsVariable(next.to) && read.count(next.to.index) == 0) {
                stored.insert(next.to.index);
            }
        }
        std::vector<int> needed;
        std::copy_if(plan.locals.begin(), plan.locals.end(), std::back_inserter(needed),
                     [&stored](int local) { return stored.count(local) == 0; });
        return needed;
    }

    void takeResult(const CodeUnit& unit, const UnitPlan& plan) {
        if (unit.result == NOWHERE) {
            return;
        }
        const auto index = static_cast<std::size_t>(unit.result);
        const Typ type = unit.declarations[index].type;
        giveResult(IsNumber(type) ? addFitting(plan.slots[index], type) : UNKNOWN);
    }

    void giveResult(int result) {
        held_.accumulator = result;
        if (IsResultPushed(all_.code, all_.profile.callResult, index_ + 1)) {
            push(result);
        }
    }

    // The callers of a function find its value in the variable for the result.
    void leave() {
        const bool isProgram = all_.isProgram(unit_);
        if (!held_.stack.empty()) {
            leaveValues(isProgram);
        }
        if (!isProgram && unit_.result != NOWHERE) {
            const Node& value = node(held_.accumulator);
            const qint32 result = slotOfVariable(unit_.result);
            if (value.kind != NodeKind::Slot || value.left != result) {
                throw Unusual();
            }
        }
        builder_.end(isProgram ? R::End : R::Return, plan_.returnSlot);
        isEnded_ = true;
    }

    void leaveValues(bool isProgram) {
        const bool isKept = isProgram ? all_.profile.atEnd == StackAtEnd::Keep
                                      : all_.profile.atReturn == StackAtReturn::Keep;
        if (isKept) {
            throw Unusual();
        }
        raise(isProgram ? Check::StackLeftByProgram : Check::StackLeft);
    }

    void executeBuiltIn() {
        if (instruction().target == NOWHERE) {
            throw Unusual();
        }
        const BuiltIn& called = EngineBuiltIns()[static_cast<std::size_t>(instruction().target)];
        if (called.parameters.empty() || held_.stack.size() < called.parameters.size()) {
            throw Unusual();
        }
        const MathFunction function = FindMathFunction(called.name);
        const bool isPower = called.name == QLatin1String("pow");
        if (function == nullptr && !isPower) {
            addKnownObject(called);
        }
        const qint32 first = passArguments(called);
        const int result = function != nullptr ? mathematics(function, first)
                           : isPower ? emitBuiltIn(R::Power, first, first + 1, TYP_LREAL)
                                     : engineBuiltIn(called, first);
        if (called.result != TYP_NONE) {
            giveResult(result);
        }
    }

    int mathematics(MathFunction function, qint32 argument) {
        builder_.code.functions.push_back(function);
        const auto number = static_cast<qint32>(builder_.code.functions.size()) - 1;
        return emitBuiltIn(R::Math, argument, number, TYP_LREAL);
    }

    // An object whose numbers stand in the code.
    void addKnownObject(const BuiltIn& called) {
        EngineNumbers numbers;
        for (std::size_t index = 0; index < EngineNumbersOf(called); ++index) {
            const std::size_t left = called.parameters.size() - index;
            const int passed = held_.stack[held_.stack.size() - left];
            const Typ type = called.parameters[index];
            if (IsReal(type) || !isConstant(passed) || node(passed).isReal() ||
                !LimitsOf(type).holds(node(passed).limits)) {
                return;
            }
            numbers.push_back(node(passed).limits.least);
        }
        all_.addEngineObject(numbers);
    }

    // Each made to fit its type, in slots that follow each other; the last one is taken first.
    qint32 passArguments(const BuiltIn& called) {
        std::vector<qint32> slots(called.parameters.size());
        std::generate(slots.begin(), slots.end(), [this] { return builder_.newSlot(); });
        keepAsTemporaries(slots);
        for (std::size_t index = slots.size(); index-- > 0;) {
            const int passed = pop();
            if (!IsNumber(node(passed).type)) {
                throw Unusual();
            }
            fitInto(slots[index], called.parameters[index], passed, item());
        }
        return slots.front();
    }

    int emitBuiltIn(R operation, qint32 left, qint32 right, Typ type) {
        Origin origin;
        origin.item = item();
        const qint32 slot = newTemporary();
        builder_.emit(operation, slot, left, right, 0, origin);
        return addFitting(slot, type);
    }

    int engineBuiltIn(const BuiltIn& called, qint32 first) {
        if (called.result == TYP_NONE) {
            save([this](qint32 used) { return mayChange(used); });
            Origin origin;
            origin.item = item();
            builder_.emit(R::Engine, 0, first, instruction().target, 0, origin);
            return UNKNOWN;
        }
        return emitBuiltIn(R::Engine, first, instruction().target, called.result);
    }
};

}  // namespace

RegisterCode Lower(const Lowered& lowered, Memory& memory) {
    UnitPlans all(lowered, memory);
    for (std::size_t unit = 0; unit < all.plans.size(); ++unit) {
        if (all.plans[unit].isCallable || unit + 1 == all.plans.size()) {
            UnitLowering(all, static_cast<int>(unit)).lower();
        }
    }
    all.builder.code.begin = all.builder.placeOf(all.plans.back().entry);
    all.builder.finish();
    return std::move(all.builder.code);
}
