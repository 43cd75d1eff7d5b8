#include "machine/unit_plans.h"

#include "machine/conventions.h"

#include <algorithm>

namespace {

// So that calls within each other do not come to their end.
constexpr std::size_t MOST_UNITS = 4000;

bool IsParameter(const Declaration& declaration) {
    return declaration.section == Section::Argument || declaration.section == Section::Reference;
}

// What a variable of the program means: itself or an engine object.
Cell& Meant(Cell& cell) {
    return cell.referred == nullptr ? cell : *cell.referred;
}

// Units that may call themselves, by whatever way, are not callable.
class RecursionFinder {
public:
    explicit RecursionFinder(UnitPlans& all) : all_(all), marks_(all.code.units.size()) {}

    void find() {
        for (std::size_t unit = 0; unit < marks_.size() && marks_.size() < MOST_UNITS; ++unit) {
            visit(static_cast<int>(unit));
        }
    }

private:
    enum class Mark : unsigned char { New, Open, Done };

    UnitPlans& all_;
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

UnitPlans::UnitPlans(const Lowered& lowered, Memory& bound)
    : code(lowered.code),
      profile(lowered.profile),
      checks(lowered.checks),
      memory(bound),
      builder(lowered.isCounting || isOn(Check::ScanLimit)) {
    builder.code.tick = builder.newSlot();
    builder.code.tickSetting = builder.newSlot();
    builder.code.isTickSet = builder.newSlot();
    bindEngine();
    for (std::size_t unit = 0; unit < code.units.size(); ++unit) {
        plans.push_back(planOf(unit));
    }
    builder.code.hasUnset = !unset_.empty();
    RecursionFinder(*this).find();
}

void UnitPlans::addEngineObject(const EngineNumbers& numbers) {
    Cell& cell = memory.engineObject(numbers);
    builder.code.engineObjects[numbers] = {&cell, bind(cell)};
}

Typ UnitPlans::typeMeant(const CodeUnit& unit, int variable) const {
    const auto index = static_cast<std::size_t>(variable);
    return isProgram(unit) ? Meant(memory.program()[index]).type : unit.declarations[index].type;
}

qint32 UnitPlans::bind(Cell& cell) {
    const auto [known, isNew] = bound_.try_emplace(&cell, 0);
    if (isNew) {
        known->second = builder.newSlot();
        builder.code.bindings.push_back({&cell, known->second});
        noteUnset(cell, known->second);
    }
    return known->second;
}

void UnitPlans::noteUnset(const Cell& cell, qint32 slot) {
    if (cell.isUnset && isOn(Check::UninitializedRead)) {
        unset_.insert(slot);
    }
}

void UnitPlans::bindEngine() {
    for (auto& [numbers, cell] : memory.engineObjects) {
        builder.code.engineObjects[numbers] = {&cell, bind(cell)};
    }
}

UnitPlan UnitPlans::planOf(std::size_t index) {
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

void UnitPlans::bindProgram(UnitPlan& plan) {
    Cells& cells = memory.program();
    for (std::size_t index = 0; index < cells.size(); ++index) {
        plan.slots[index] = bind(Meant(cells[index]));
        noteUnset(memory.units.back().initial[index], plan.slots[index]);
    }
}

void UnitPlans::addLocals(UnitPlan& plan, const CodeUnit& unit, UnitCells& cells) {
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
        plan.slots[index] = isRetained ? bind(cells.ofCalls.front()[index]) : builder.newSlot();
        noteUnset(cells.initial[index], plan.slots[index]);
    }
    plan.firstLocal =
        plan.locals.empty() ? 0 : plan.slots[static_cast<std::size_t>(plan.locals.front())];
    addInitials(plan, cells.initial);
}

void UnitPlans::addInitials(UnitPlan& plan, const Cells& initial) {
    for (const int local : plan.locals) {
        const Value& value = initial[static_cast<std::size_t>(local)].value;
        const qint32 slot = builder.newSlot();
        builder.code.slots.back() = SlotOf(value);
        plan.firstInitial = local == plan.locals.front() ? slot : plan.firstInitial;
    }
}

int UnitPlans::bodyOf(const CodeUnit& unit) const {
    int next = unit.begin;
    for (std::size_t left = unit.parameters.size(); left-- > 0; next += 2) {
        if (next + 2 > unit.end || !takesParameter(unit, next, unit.parameters[left])) {
            return NOWHERE;
        }
    }
    return next;
}

bool UnitPlans::takesParameter(const CodeUnit& unit, int at, int parameter) const {
    const Instruction& pop = code.instructions[static_cast<std::size_t>(at)];
    const Instruction& put = code.instructions[static_cast<std::size_t>(at) + 1];
    const Declaration& declaration = unit.declarations[static_cast<std::size_t>(parameter)];
    const bool isReference = declaration.section == Section::Reference;
    return pop.operation == Operation::Move && pop.from.kind == OperandKind::Pop &&
           pop.to.kind == OperandKind::Accumulator && put.to.index == parameter &&
           put.operation == (isReference ? Operation::MoveAddress : Operation::Move) &&
           put.from.kind == OperandKind::Accumulator && put.to.kind == OperandKind::Variable;
}
