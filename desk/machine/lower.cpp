#include "machine/lower.h"

#include "machine/conventions.h"
#include "machine/liveness.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

namespace {

using R = RegisterOperation;

constexpr int UNKNOWN = -1;
// So that neither the calls within each other nor the values on the stack come to an end.
constexpr std::size_t MOST_UNITS = 4000;
constexpr std::size_t MOST_ENTRIES = 200;  // of the stack, by one unit

constexpr Limits WIDEST = {std::numeric_limits<qint64>::min(),
                           std::numeric_limits<qint64>::max()};
constexpr Limits TRUTH = {0, 1};

// Thrown where register code cannot go on.
struct Unusual {};

Limits LimitsOf(Typ type) {
    return {RangeOf(type).least, RangeOf(type).greatest};
}

bool IsReal(Typ type) {
    return type == TYP_REAL || type == TYP_LREAL;
}

bool IsNumber(Typ type) {
    return type > TYP_NONE && type < TYP_STRING;
}

bool IsVariable(const CodeOperand& operand) {
    return operand.kind == OperandKind::Variable || operand.kind == OperandKind::Referred;
}

bool IsParameter(const Declaration& declaration) {
    return declaration.section == Section::Argument || declaration.section == Section::Reference;
}

// What a variable of the program means: itself or an engine object.
Cell& Meant(Cell& cell) {
    return cell.referred == nullptr ? cell : *cell.referred;
}

// What the accumulator, an entry of the stack and so on are known to hold.
enum class NodeKind : unsigned char {
    Slot,        // the value of the slot `left`
    Comparison,  // of two slots
    And,         // of two nodes
    Not,         // of a node
};

struct Node {
    NodeKind kind = NodeKind::Slot;
    Typ type = TYP_BOOL;
    R comparison = R::IsEqual;
    qint32 left = 0;
    qint32 right = 0;
    Limits limits = TRUTH;  // of a whole number
    bool isSingle = false;  // a real that has 32 bits
    Typ meant = TYP_NONE;   // the type of the variable that an address leads to
    int size = 1;           // the nodes that it is made of

    bool isReal() const { return IsReal(type); }
};

// What the machine holds at a point of the code, by nodes.
struct State {
    int accumulator = UNKNOWN;
    int register0 = UNKNOWN;
    int flag = UNKNOWN;
    std::vector<int> stack;
};

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

// What the callers of a unit need to know of it.
struct UnitPlan {
    bool isCallable = false;
    int body = 0;  // the instruction after those that take the parameters
    Target entry = 0;
    qint32 returnSlot = 0;
    std::vector<qint32> slots;  // of the declarations; of a reference: what holds the address
    qint32 firstLocal = 0;      // the locals have slots that follow each other
    qint32 firstInitial = 0;    // and so have their initial values
    std::vector<int> locals;
};

// What all units have in common.
class Surroundings {
public:
    Surroundings(const Code& lowered, const Profile& chosen, const Checks& set, Memory& bound)
        : code(lowered),
          profile(chosen),
          checks(set),
          memory(bound),
          builder(isOn(Check::ScanLimit)) {
        builder.code.tick = builder.newSlot();
        builder.code.tickSetting = builder.newSlot();
        builder.code.isTickSet = builder.newSlot();
        bindEngine();
        for (std::size_t unit = 0; unit < code.units.size(); ++unit) {
            plans.push_back(planOf(unit));
        }
        builder.code.hasUnset = !unset_.empty();
    }

    const Code& code;
    const Profile& profile;
    const Checks& checks;
    Memory& memory;
    RegisterCodeBuilder builder;
    std::vector<UnitPlan> plans;

    bool isOn(Check check) const { return checks.actionOf(check) != Action::Off; }
    bool mayBeUnset(qint32 slot) const { return unset_.count(slot) > 0; }
    bool isProgram(const CodeUnit& unit) const { return &unit == &code.units.back(); }

    // Sees to it that the engine object with those numbers is there.
    void addEngineObject(const EngineNumbers& numbers) {
        Cell& cell = memory.engineObject(numbers);
        builder.code.engineObjects[numbers] = {&cell, bind(cell)};
    }

    // The type of what a variable means; an engine object may have another than the variable.
    Typ typeMeant(const CodeUnit& unit, int variable) const {
        const auto index = static_cast<std::size_t>(variable);
        return isProgram(unit) ? Meant(memory.program()[index]).type
                               : unit.declarations[index].type;
    }

private:
    std::map<const Cell*, qint32> bound_;
    std::set<qint32> unset_;

    qint32 bind(Cell& cell) {
        const auto [known, isNew] = bound_.try_emplace(&cell, 0);
        if (isNew) {
            known->second = builder.newSlot();
            builder.code.bindings.push_back({&cell, known->second});
            noteUnset(cell, known->second);
        }
        return known->second;
    }

    void noteUnset(const Cell& cell, qint32 slot) {
        if (cell.isUnset && isOn(Check::UninitializedRead)) {
            unset_.insert(slot);
        }
    }

    void bindEngine() {
        for (auto& [numbers, cell] : memory.engineObjects) {
            builder.code.engineObjects[numbers] = {&cell, bind(cell)};
        }
    }

    UnitPlan planOf(std::size_t index) {
        const CodeUnit& unit = code.units[index];
        UnitPlan plan;
        plan.entry = builder.newTarget();
        plan.returnSlot = builder.newSlot();
        plan.slots.assign(unit.declarations.size(), 0);
        if (isProgram(unit)) {
            plan.body = unit.begin;
            bindProgram(plan);
        } else {
            plan.body = bodyOf(unit);
            plan.isCallable = plan.body != NOWHERE && code.units.size() < MOST_UNITS;
            addLocals(plan, unit, memory.units[index]);
        }
        return plan;
    }

    void bindProgram(UnitPlan& plan) {
        Cells& cells = memory.program();
        for (std::size_t index = 0; index < cells.size(); ++index) {
            plan.slots[index] = bind(Meant(cells[index]));
            noteUnset(memory.units.back().initial[index], plan.slots[index]);
        }
    }

    void addLocals(UnitPlan& plan, const CodeUnit& unit, UnitCells& cells) {
        const bool isRetained = profile.locals == Locals::Retained;
        for (std::size_t index = 0; index < unit.declarations.size(); ++index) {
            if (IsParameter(unit.declarations[index])) {
                plan.slots[index] =
                    isRetained && unit.declarations[index].section == Section::Argument
                        ? bind(cells.ofCalls.front()[index])
                        : builder.newSlot();
            } else {
                plan.locals.push_back(static_cast<int>(index));
            }
        }
        for (const int local : plan.locals) {
            const auto index = static_cast<std::size_t>(local);
            plan.slots[index] =
                isRetained ? bind(cells.ofCalls.front()[index]) : builder.newSlot();
            noteUnset(cells.initial[index], plan.slots[index]);
        }
        plan.firstLocal =
            plan.locals.empty() ? 0 : plan.slots[static_cast<std::size_t>(plan.locals.front())];
        addInitials(plan, cells.initial);
    }

    void addInitials(UnitPlan& plan, const Cells& initial) {
        for (const int local : plan.locals) {
            const Value& value = initial[static_cast<std::size_t>(local)].value;
            const qint32 slot = builder.newSlot();
            builder.code.slots.back() = SlotOf(value);
            plan.firstInitial = local == plan.locals.front() ? slot : plan.firstInitial;
        }
    }

    // The instruction after those that take all parameters off the stack, the last one first;
    // NOWHERE if a parameter is not taken as the compiler does it.
    int bodyOf(const CodeUnit& unit) const {
        int next = unit.begin;
        for (std::size_t left = unit.parameters.size(); left-- > 0; next += 2) {
            if (next + 2 > unit.end || !takesParameter(unit, next, unit.parameters[left])) {
                return NOWHERE;
            }
        }
        return next;
    }

    bool takesParameter(const CodeUnit& unit, int at, int parameter) const {
        const Instruction& pop = code.instructions[static_cast<std::size_t>(at)];
        const Instruction& put = code.instructions[static_cast<std::size_t>(at) + 1];
        const Declaration& declaration = unit.declarations[static_cast<std::size_t>(parameter)];
        const bool isReference = declaration.section == Section::Reference;
        return pop.operation == Operation::Move && pop.from.kind == OperandKind::Pop &&
               pop.to.kind == OperandKind::Accumulator && put.to.index == parameter &&
               put.operation == (isReference ? Operation::MoveAddress : Operation::Move) &&
               put.from.kind == OperandKind::Accumulator && put.to.kind == OperandKind::Variable;
    }
};

// ---------------------------------------------------------------------------------------------
// A unit
// ---------------------------------------------------------------------------------------------

class UnitLowering {
public:
    UnitLowering(Surroundings& all, int unit)
        : all_(all),
          builder_(all.builder),
          unit_(all.code.units[static_cast<std::size_t>(unit)]),
          plan_(all.plans[static_cast<std::size_t>(unit)]),
          live_(FindLive(all.code, unit_)) {}

    void lower() {
        builder_.put(plan_.entry);
        findJoins();
        reach(plan_.body);
        while (!waiting_.empty()) {
            const int next = *waiting_.begin();
            begin(next);
            follow(next);
        }
    }

private:
    Surroundings& all_;
    RegisterCodeBuilder& builder_;
    const CodeUnit& unit_;
    const UnitPlan& plan_;
    std::vector<Live> live_;
    std::map<int, Join> joins_;  // by the instruction
    std::set<int> waiting_;      // joins that are reached and not lowered

    std::vector<Node> nodes_;
    State state_;
    int index_ = 0;           // of the instruction
    bool isEnded_ = false;    // nothing follows
    std::set<qint32> known_;  // slots that are known to be set
    std::vector<qint32> temporaries_;
    std::size_t temporariesUsed_ = 0;
    std::set<qint32> allTemporaries_;
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
        nodes_.clear();
        temporariesUsed_ = 0;
        lastOperation_ = UNKNOWN;
        state_ = State();
        for (std::size_t entry = 0; entry < join.stack.size(); ++entry) {
            state_.stack.push_back(joined(join.stack[entry], stackSlot(entry)));
        }
        state_.accumulator = joined(join.accumulator, accumulatorSlot_);
        state_.register0 = joined(join.register0, register0Slot_);
        state_.flag = joined(join.flag, flagSlot_);
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
        Join& join = joins_.at(index);
        const Live& live = liveAt(index);
        Join found;
        for (const int entry : state_.stack) {
            found.stack.push_back(formOf(entry, true));
        }
        found.accumulator = formOf(state_.accumulator, live.accumulator);
        found.register0 = formOf(state_.register0, live.register0);
        found.flag = formOf(state_.flag, live.flag);
        if (join.isReached && !join.expectsAsMuchAs(found)) {
            throw Unusual();
        }
        if (!join.isReached) {
            found.place = join.place;
            found.isReached = true;
            join = found;
            waiting_.insert(index);
        }
        settle(live);
        return join.place;
    }

    Form formOf(int node, bool isLive) const {
        if (!isLive || node == UNKNOWN) {
            return {};
        }
        const Node& known = nodes_[static_cast<std::size_t>(node)];
        return {known.type, known.meant};
    }

    void settle(const Live& live) {
        for (std::size_t entry = 0; entry < state_.stack.size(); ++entry) {
            settleIn(stackSlot(entry), state_.stack[entry]);
        }
        if (live.accumulator) {
            settleIn(accumulatorSlot_, state_.accumulator);
        }
        if (live.register0) {
            settleIn(register0Slot_, state_.register0);
        }
        if (live.flag) {
            settleIn(flagSlot_, state_.flag);
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

    int add(const Node& node) {
        nodes_.push_back(node);
        return static_cast<int>(nodes_.size()) - 1;
    }

    const Node& node(int index) const {
        if (index == UNKNOWN) {
            throw Unusual();
        }
        return nodes_[static_cast<std::size_t>(index)];
    }

    int addValue(qint32 slot, Typ type, const Limits& limits, bool isSingle = false) {
        Node value;
        value.type = type;
        value.left = slot;
        value.limits = limits;
        value.isSingle = isSingle;
        return add(value);
    }

    // A value that fits its type.
    int addFitting(qint32 slot, Typ type) {
        if (!IsNumber(type)) {
            throw Unusual();
        }
        return addValue(slot, type, IsReal(type) ? WIDEST : LimitsOf(type), type == TYP_REAL);
    }

    int addWhole(Typ type, qint64 number) {
        return addValue(builder_.whole(number), type, {number, number});
    }

    int addReal(Typ type, double number) {
        return addValue(builder_.real(number), type, WIDEST,
                        static_cast<double>(static_cast<float>(number)) == number);
    }

    int addComparison(R comparison, qint32 left, qint32 right) {
        Node compared;
        compared.kind = NodeKind::Comparison;
        compared.comparison = comparison;
        compared.left = left;
        compared.right = right;
        return add(compared);
    }

    bool isConstant(int index) const {
        return node(index).kind == NodeKind::Slot && builder_.isConstant(node(index).left);
    }

    qint32 newTemporary() {
        if (temporariesUsed_ == temporaries_.size()) {
            temporaries_.push_back(builder_.newSlot());
            allTemporaries_.insert(temporaries_.back());
        }
        return temporaries_[temporariesUsed_++];
    }
    bool isTemporary(qint32 slot) const { return allTemporaries_.count(slot) > 0; }

    template <typename Predicate>
    bool uses(int index, Predicate isMeant) const {
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

    // Copies what depends on those slots into temporaries, before they change. Whether there was
    // anything.
    template <typename Predicate>
    bool save(Predicate isMeant) {
        const std::size_t before = temporariesUsed_;
        for (int* const entry : entries()) {
            if (*entry != UNKNOWN && uses(*entry, isMeant)) {
                intoTemporary(*entry);
            }
        }
        return temporariesUsed_ != before;
    }

    std::vector<int*> entries() {
        std::vector<int*> all = {&state_.accumulator, &state_.register0, &state_.flag};
        for (int& entry : state_.stack) {
            all.push_back(&entry);
        }
        return all;
    }

    // All that holds the node holds a temporary afterwards.
    qint32 intoTemporary(int index) {
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

    qint32 slotOf(int index) {
        return node(index).kind == NodeKind::Slot ? node(index).left : intoTemporary(index);
    }

    void copyInto(qint32 slot, int index) {
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

    // -----------------------------------------------------------------------------------------
    // Instructions
    // -----------------------------------------------------------------------------------------

    void step() {
        if (index_ >= unit_.end) {
            throw Unusual();
        }
        builder_.countItem();
        execute();
        const Live& live = liveAfter();
        state_.accumulator = live.accumulator ? state_.accumulator : UNKNOWN;
        state_.register0 = live.register0 ? state_.register0 : UNKNOWN;
        state_.flag = live.flag ? state_.flag : UNKNOWN;
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
                state_.accumulator = moved;
                return;
            case OperandKind::Register0:
                state_.register0 = moved;
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
                return state_.accumulator;
            case OperandKind::Register0:
                return state_.register0;
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
        if (pushed == UNKNOWN || state_.stack.size() == MOST_ENTRIES) {
            throw Unusual();
        }
        state_.stack.push_back(pushed);
    }

    int pop() {
        if (state_.stack.empty()) {
            throw Unusual();
        }
        const int popped = state_.stack.back();
        state_.stack.pop_back();
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
            builder_.emit(R::NeedReferredSet, 0, address);
        }
        const qint32 slot = newTemporary();
        builder_.emit(R::LoadReferred, slot, address);
        return addFitting(slot, type);
    }

    void needSet(qint32 slot) {
        if (all_.mayBeUnset(slot) && known_.insert(slot).second) {
            builder_.emit(R::NeedSet, 0, slot);
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

    // Whether others than the instruction that is lowered may change the slot.
    bool mayChange(qint32 slot) const { return !builder_.isConstant(slot) && !isTemporary(slot); }

    // Stores a value, made to fit, in a slot that is no temporary.
    void assign(qint32 slot, Typ type, int stored, int storeItem) {
        if (!IsNumber(node(stored).type)) {
            throw Unusual();
        }
        state_.accumulator = liveAfter().accumulator ? state_.accumulator : UNKNOWN;
        const bool isSaved = save([slot](qint32 used) { return used == slot; });
        if (isSaved || !redirect(slot, type, stored, storeItem)) {
            fitInto(slot, type, stored, storeItem);
        }
        markSet(slot);
    }

    // Makes the last instruction give its result to the variable instead of a temporary that is
    // used for nothing else.
    bool redirect(qint32 slot, Typ type, int stored, int storeItem) {
        const Node& value = node(stored);
        const bool isLast = value.kind == NodeKind::Slot && isTemporary(value.left) &&
                            builder_.here() - 1 == lastOperation_ &&
                            builder_.last().to == value.left;
        if (!isLast || isUsed(value.left) || !canStore(value, type)) {
            return false;
        }
        builder_.last().to = slot;
        Origin& origin = builder_.lastOrigin();
        origin.stored = type;
        origin.storeItem = storeItem;
        return true;
    }

    int lastOperation_ = UNKNOWN;  // where the last arithmetic instruction lies

    bool isUsed(qint32 slot) {
        const std::vector<int*> all = entries();
        return std::any_of(all.begin(), all.end(), [this, slot](const int* entry) {
            return *entry != UNKNOWN &&
                   uses(*entry, [slot](qint32 used) { return used == slot; });
        });
    }

    // Whether the last instruction can make its result fit the type; then it does.
    bool canStore(const Node& value, Typ type) {
        RegisterInstruction& last = builder_.last();
        if (last.operation == R::Apply) {
            return true;
        }
        if (value.isReal()) {
            const bool isSingle = type == TYP_REAL && last.operation <= R::DivideReal;
            const bool isDone = type == TYP_LREAL || (type == TYP_REAL && value.isSingle);
            last.operation =
                isSingle ? shifted(last.operation, R::AddReal, R::AddSingle) : last.operation;
            return isSingle || isDone;
        }
        if (IsReal(type)) {
            return false;
        }
        return LimitsOf(type).holds(value.limits) || narrow(last, LimitsOf(type));
    }

    static R shifted(R operation, R from, R to) {
        return static_cast<R>(static_cast<int>(operation) - static_cast<int>(from) +
                              static_cast<int>(to));
    }

    bool narrow(RegisterInstruction& last, const Limits& limits) {
        Limits both = limits;
        if (last.operation >= R::Add && last.operation <= R::Multiply) {
            last.operation = shifted(last.operation, R::Add, R::AddFit);
        } else if (last.operation >= R::AddFit && last.operation <= R::ModuloFit) {
            const Limits& before = builder_.code.limits[last.extra];
            both = {std::max(limits.least, before.least),
                    std::min(limits.greatest, before.greatest)};
        } else {
            return false;
        }
        last.extra = builder_.limits(both);
        return true;
    }

    // A node for the value made to fit a type.
    int fitted(Typ type, int index, int storeItem) {
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

    void fitInto(qint32 slot, Typ type, int index, int storeItem) {
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
            builder_.emit(R::Fit, slot, slotOf(index), 0, builder_.limits(LimitsOf(type)),
                          origin);
        }
    }

    void fitReal(qint32 slot, Typ type, int index, Origin& origin) {
        const bool isSingle = node(index).isReal() && node(index).isSingle;
        const qint32 real = asReal(index);
        if (type == TYP_LREAL || isSingle) {
            builder_.emit(R::Copy, slot, real);
        } else {
            origin.left = TYP_LREAL;
            builder_.emit(R::RoundToSingle, slot, real, 0, 0, origin);
        }
    }

    // A slot that holds the number as a real.
    qint32 asReal(int index) {
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

    // -----------------------------------------------------------------------------------------
    // Operations
    // -----------------------------------------------------------------------------------------

    void binary() {
        const int taken = take(instruction().from);
        const bool isStepDown = IsStepDown(all_.code, instruction());
        const int left = isStepDown ? state_.accumulator : taken;
        const int right = isStepDown ? taken : state_.accumulator;
        const Operation operation = instruction().operation;
        if (!IsNumber(node(left).type) || !IsNumber(node(right).type)) {
            throw Unusual();
        }
        const bool isMixed = node(left).isReal() != node(right).isReal();
        if (operation == Operation::Divide && isMixed && all_.isOn(Check::MixedDivision)) {
            raise(Check::MixedDivision);
        }
        state_.accumulator = UNKNOWN;
        state_.accumulator = operated(operation, left, right);
    }

    void raise(Check check) {
        Origin origin;
        origin.item = item();
        origin.check = check;
        builder_.emit(R::Note, 0, 0, 0, 0, origin);
    }

    int operated(Operation operation, int left, int right) {
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

    int combined(Operation operation, int left, int right) {
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

    // The same truth; what is made of many others is worked out first, once for all uses.
    int small(int index) {
        constexpr int mostNodes = 16;
        return node(index).size > mostNodes ? addValue(intoTemporary(index), TYP_BOOL, TRUTH)
                                            : index;
    }

    // A node that is 1 or 0.
    int truthOf(int index) {
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

    int negated(int index) {
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

    // "a > b" is "b < a".
    static bool changesSides(Operation operation) {
        return operation == Operation::Greater || operation == Operation::GreaterOrEqual;
    }

    static R comparisonOf(Operation operation) {
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

    int comparedWholes(Operation operation, int left, int right) {
        if (changesSides(operation)) {
            std::swap(left, right);
        }
        const R comparison = comparisonOf(operation);
        if (isConstant(left) && isConstant(right)) {
            return addWhole(TYP_BOOL, holds(comparison, left, right) ? 1 : 0);
        }
        const qint32 slot = slotOf(left);
        return addComparison(comparison, slot, slotOf(right));
    }

    bool holds(R comparison, int left, int right) const {
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

    int comparedReals(Operation operation, int left, int right) {
        if (changesSides(operation)) {
            std::swap(left, right);
        }
        const qint32 slot = asReal(left);
        return addComparison(shifted(comparisonOf(operation), R::IsEqual, R::IsEqualReal), slot,
                             asReal(right));
    }

    Origin originOf(Operation operation, Typ left, Typ right) const {
        Origin origin;
        origin.operation = operation;
        origin.left = left;
        origin.right = right;
        origin.item = item();
        return origin;
    }

    int emitOperation(R done, qint32 left, qint32 right, const Origin& origin, quint16 limits) {
        const qint32 slot = newTemporary();
        lastOperation_ = builder_.here();
        builder_.emit(done, slot, left, right, limits, origin);
        return slot;
    }

    int reals(Operation operation, int left, int right) {
        const Typ type = std::max(node(left).type, node(right).type);
        const Origin origin =
            originOf(operation, node(left).isReal() ? node(left).type : TYP_REAL,
                     node(right).isReal() ? node(right).type : TYP_REAL);
        const qint32 leftSlot = asReal(left);
        const qint32 rightSlot = asReal(right);
        const bool isSingle = all_.profile.width == Width::Typed && type == TYP_REAL;
        const qint32 slot =
            emitOperation(realOperation(operation, isSingle), leftSlot, rightSlot, origin, 0);
        return addValue(slot, type, WIDEST, isSingle);
    }

    static R realOperation(Operation operation, bool isSingle) {
        if (operation < Operation::Add || operation > Operation::Divide) {
            return R::Apply;
        }
        return static_cast<R>(static_cast<int>(isSingle ? R::AddSingle : R::AddReal) +
                              static_cast<int>(operation) - static_cast<int>(Operation::Add));
    }

    int wholes(Operation operation, int left, int right) {
        const Typ type = std::max(node(left).type, node(right).type);
        const bool isTyped = all_.profile.width == Width::Typed;
        const Limits limits = resultLimits(operation, node(left).limits, node(right).limits);
        const bool isShift =
            operation >= Operation::ShiftLeft && operation <= Operation::RotateRight;
        const Limits wanted = isTyped && !isShift ? LimitsOf(type) : WIDEST;
        if (limits.least == limits.greatest && wanted.holds(limits) && isConstant(left) &&
            isConstant(right)) {
            return addWhole(type, limits.least);
        }
        const Origin origin = originOf(operation, node(left).type, node(right).type);
        const qint32 leftSlot = slotOf(left);
        const qint32 rightSlot = slotOf(right);
        const R done = wholeOperation(operation, isTyped && !wanted.holds(limits), isTyped);
        const qint32 slot =
            emitOperation(done, leftSlot, rightSlot, origin, builder_.limits(wanted));
        return addValue(slot, type, wanted.holds(limits) ? limits : wanted);
    }

    static R wholeOperation(Operation operation, bool isNarrowed, bool isTyped) {
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
    static Limits resultLimits(Operation operation, const Limits& left, const Limits& right) {
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
            result = {left.least < 0 ? 1 - right.least : 0,
                      left.greatest > 0 ? right.least - 1 : 0};
        }
        return isBeyond ? WIDEST : result;
    }

    void unary() {
        const int value = state_.accumulator;
        if (instruction().operation == Operation::Test) {
            state_.flag = truthOf(value);
        } else if (instruction().operation == Operation::Not) {
            state_.accumulator = negated(truthOf(value));
        } else {
            state_.accumulator = complement(value);
        }
    }

    int complement(int index) {
        const Typ type = node(index).type;
        if (type < TYP_SINT || type > TYP_UDINT) {
            throw Unusual();
        }
        const qint32 value = slotOf(index);
        const qint32 slot =
            emitOperation(R::Apply, value, value, originOf(Operation::BitNot, type, type), 0);
        return addValue(slot, type, WIDEST);
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
        node(state_.flag);
        const Target place = reach(instruction().target);
        branch(state_.flag, operation == Operation::JumpIfTrue, place);
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
        state_.accumulator = add(address);
    }

    void call() {
        if (instruction().target == NOWHERE) {
            throw Unusual();
        }
        const UnitPlan& plan = all_.plans[static_cast<std::size_t>(instruction().target)];
        const CodeUnit& unit = all_.code.units[static_cast<std::size_t>(instruction().target)];
        if (!plan.isCallable || state_.stack.size() < unit.parameters.size()) {
            throw Unusual();
        }
        state_.accumulator = state_.register0 = state_.flag = UNKNOWN;
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
        state_.accumulator = result;
        if (IsResultPushed(all_.code, all_.profile.callResult, index_ + 1)) {
            push(result);
        }
    }

    // The callers of a function find its value in the variable for the result.
    void leave() {
        const bool isProgram = all_.isProgram(unit_);
        if (!state_.stack.empty()) {
            leaveValues(isProgram);
        }
        if (!isProgram && unit_.result != NOWHERE) {
            const Node& value = node(state_.accumulator);
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
        if (called.parameters.empty() || state_.stack.size() < called.parameters.size()) {
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
            const int passed = state_.stack[state_.stack.size() - left];
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
        allTemporaries_.insert(slots.begin(), slots.end());
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

// ---------------------------------------------------------------------------------------------
// All units
// ---------------------------------------------------------------------------------------------

// Units that may call themselves, by whatever way, are not callable.
class RecursionFinder {
public:
    explicit RecursionFinder(Surroundings& all) : all_(all), marks_(all.code.units.size()) {}

    void find() {
        for (std::size_t unit = 0; unit < marks_.size() && marks_.size() < MOST_UNITS; ++unit) {
            visit(static_cast<int>(unit));
        }
    }

private:
    enum class Mark : unsigned char { New, Open, Done };

    Surroundings& all_;
    std::vector<Mark> marks_;

    void visit(int unit) {
        Mark& mark = marks_[static_cast<std::size_t>(unit)];
        if (mark == Mark::Open) {
            all_.plans[static_cast<std::size_t>(unit)].isCallable = false;
            return;
        }
        if (mark == Mark::Done) {
            return;
        }
        mark = Mark::Open;
        const CodeUnit& visited = all_.code.units[static_cast<std::size_t>(unit)];
        for (int index = visited.begin; index < visited.end; ++index) {
            const Instruction& call = all_.code.instructions[static_cast<std::size_t>(index)];
            if (call.operation == Operation::Call && call.target != NOWHERE) {
                visit(call.target);
            }
        }
        mark = Mark::Done;
    }
};

}  // namespace

RegisterCode Lower(const Code& code, const Profile& profile, const Checks& checks,
                   Memory& memory) {
    Surroundings all(code, profile, checks, memory);
    RecursionFinder(all).find();
    for (std::size_t unit = 0; unit < code.units.size(); ++unit) {
        if (all.plans[unit].isCallable || unit + 1 == code.units.size()) {
            UnitLowering(all, static_cast<int>(unit)).lower();
        }
    }
    all.builder.code.begin = all.builder.placeOf(all.plans.back().entry);
    all.builder.finish();
    return std::move(all.builder.code);
}
