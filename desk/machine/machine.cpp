#include "machine/machine.h"

#include "machine/conventions.h"

#include "qyx_text.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr std::size_t MOST_CALLS = 10'000;      // within each other
constexpr std::size_t MOST_VALUES = 1'000'000;  // on the stack

Value ZeroOf(Typ type) {
    return type == TYP_REAL || type == TYP_LREAL ? RealValue(type, 0.0) : WholeValue(type, 0);
}

Value AddressOf(Cell& cell) {
    Value value;
    value.type = TYP_ARRAY;
    value.address = &cell;
    return value;
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Before the first cycle
// ---------------------------------------------------------------------------------------------

Machine::Machine(const Code& code, const Profile& profile, const Checks& checks)
    : code_(code), profile_(profile), watch_(checks), arithmetic_(profile_, watch_) {
    prepare();
}

void Machine::prepare() {
    for (const Literal& literal : code_.literals) {
        memory_.literals.push_back(arithmetic_.literal(literalValue(literal)));
    }
    for (const CodeUnit& unit : code_.units) {
        UnitCells& cells = memory_.units.emplace_back();
        for (const Declaration& declaration : unit.declarations) {
            cells.initial.push_back(initialCell(declaration));
        }
        cells.ofCalls.push_back(cells.initial);
    }
    bindEngineVariables();
}

// A string is known by where it stands among the literals.
Value Machine::literalValue(const Literal& literal) const {
    if (literal.type == TYP_STRING) {
        return WholeValue(TYP_STRING, &literal - code_.literals.data());
    }
    return literal.type < TYP_REAL ? WholeValue(literal.type, literal.whole)
                                   : RealValue(literal.type, literal.real);
}

// A value that ends the run leaves 0; there is a cell for each variable in any case.
Cell Machine::initialCell(const Declaration& declaration) {
    watch_.setItem(declaration.item);
    Cell cell;
    cell.type = declaration.type;
    cell.value = ZeroOf(declaration.type);
    const bool isEngine = declaration.section == Section::EngineGlobal ||
                          declaration.section == Section::EngineRegister;
    if (declaration.type < TYP_STRING) {
        const Value given = isEngine ? Value() : literalValue(declaration.numbers.front());
        try {
            cell.value = arithmetic_.fit(declaration.type, given);
        } catch (const RunStop& stop) {
            stop_ = stop_ ? stop_ : stop;
        }
    }
    return cell;
}

// The object of an engine variable; the first declaration gives it its type.
Cell& Machine::engineCell(const Declaration& declaration) {
    EngineNumbers numbers;
    for (const Literal& number : declaration.numbers) {
        numbers.push_back(number.whole);
    }
    return memory_.engineObjects.try_emplace(numbers, initialCell(declaration)).first->second;
}

void Machine::bindEngineVariables() {
    Cells& cells = memory_.program();
    const std::vector<Declaration>& declarations = code_.program().declarations;
    for (std::size_t index = 0; index < declarations.size(); ++index) {
        if (declarations[index].section >= Section::EngineGlobal) {
            cells[index].referred = &engineCell(declarations[index]);
        }
    }
}

// ---------------------------------------------------------------------------------------------
// Variables as others see them
// ---------------------------------------------------------------------------------------------

const Cell& Machine::programCell(int variable) const {
    const Cell& cell = memory_.program()[static_cast<std::size_t>(variable)];
    return cell.referred == nullptr ? cell : *cell.referred;
}

Cell& Machine::programCell(int variable) {
    return const_cast<Cell&>(std::as_const(*this).programCell(variable));
}

Value Machine::value(int variable) const {
    return programCell(variable).value;
}

void Machine::set(int variable, const Value& value) {
    Cell& cell = programCell(variable);
    cell.isUnset = false;
    if (!cell.isForced) {
        cell.value = value;
    }
}

void Machine::force(int variable, const Value& value) {
    release(variable);
    set(variable, value);
    programCell(variable).isForced = true;
    ++forced_;
}

void Machine::release(int variable) {
    Cell& cell = programCell(variable);
    forced_ -= cell.isForced ? 1 : 0;
    cell.isForced = false;
}

void Machine::setUninitialized(int unit, int variable) {
    registers_.reset();
    UnitCells& cells = memory_.units[static_cast<std::size_t>(unit)];
    const auto index = static_cast<std::size_t>(variable);
    cells.initial[index].isUnset = true;
    for (Cells& ofCall : cells.ofCalls) {
        ofCall[index].isUnset = true;
    }
}

// ---------------------------------------------------------------------------------------------
// A cycle
// ---------------------------------------------------------------------------------------------

bool Machine::cycle() {
    if (stop_ || interruption_) {
        return false;
    }
    try {
        beginCycle();
        if (!executeRegisters()) {
            execute();
        }
        endCycle();
    } catch (const RunStop& stop) {
        stop_ = stop;
    } catch (const Interruption& interruption) {
        interruption_ = interruption;
    }
    return !stop_ && !interruption_;
}

void Machine::beginCycle() {
    if (profile_.programVariables == ProgramVariables::Initial && cycles_ > 0) {
        resetProgramVariables();
    }
    frames_.clear();
    for (UnitCells& cells : memory_.units) {
        cells.active = 0;
    }
    const int program = static_cast<int>(code_.units.size()) - 1;
    frames_.push_back({program, &memory_.program(), NOWHERE, stack_.size()});
    next_ = code_.program().begin;
}

void Machine::resetProgramVariables() {
    Cells& cells = memory_.program();
    for (std::size_t index = 0; index < cells.size(); ++index) {
        const bool isLocal = code_.program().declarations[index].section == Section::Local;
        if (isLocal && !cells[index].isForced) {
            cells[index] = memory_.units.back().initial[index];
        }
    }
}

// False if register code is not used or gave up, and the cycle must be executed otherwise. After
// that it is not used for a while, which grows as long as it gives up each time.
bool Machine::executeRegisters() {
    constexpr qint64 longestPause = 64;
    if (isItemwise_ || forced_ > 0 || cycles_ < registersFrom_ || !stack_.empty()) {
        return false;
    }
    if (!registers_) {
        registers_ = std::make_unique<Registers>(
            Lowered{code_, profile_, watch_.checks(), isCounting_}, memory_, watch_, arithmetic_);
    }
    const bool isDone = registers_->cycle({tick_, tickSetting_, instructions_});
    if (isDone) {
        ++registerCycles_;
        pause_ = 1;
        return true;
    }
    registersFrom_ = cycles_ + pause_;
    pause_ = std::min(2 * pause_, longestPause);
    if (registers_->isOutdated()) {
        registers_.reset();
    }
    return false;
}

void Machine::execute() {
    const qint64 begin = instructions_;
    while (next_ != NOWHERE) {
        if (next_ >= code_.units[static_cast<std::size_t>(frame().unit)].end) {
            watch_.stop(Check::UnsoundCode, QStringLiteral("the unit does not end with RET"));
        }
        const Instruction& instruction = code_.instructions[static_cast<std::size_t>(next_)];
        watch_.setItem(instruction.item);
        if (instructions_ - begin == profile_.scanLimit) {
            watch_.raise(Check::ScanLimit,
                         QStringLiteral("the cycle takes more than %1 instructions")
                             .arg(profile_.scanLimit));
        }
        ++instructions_;
        if (!executions_.empty()) {
            ++executions_[static_cast<std::size_t>(next_)];
        }
        ++next_;
        step(instruction);
    }
}

void Machine::step(const Instruction& instruction) {
    switch (FormOf(instruction.operation).shape) {
        case Shape::Move:
            instruction.operation == Operation::Move ? move(instruction)
                                                     : moveAddress(instruction);
            return;
        case Shape::Binary:
            binary(instruction);
            return;
        case Shape::Unary:
            if (instruction.operation == Operation::Test) {
                flag_ = accumulator_.isTrue();
            } else {
                accumulator_ = instruction.operation == Operation::Not
                                   ? TruthValue(!accumulator_.isTrue())
                                   : arithmetic_.bitNot(accumulator_);
            }
            return;
        case Shape::Jump:
            jump(instruction);
            return;
        case Shape::Call:
            instruction.operation == Operation::Call ? call(instruction)
                                                     : executeBuiltIn(instruction);
            return;
        case Shape::Nothing:
            leave();
            return;
    }
}

void Machine::endCycle() {
    if (profile_.atEnd == StackAtEnd::Clear) {
        stack_.clear();
    }
    tick_ += tickStep_;
    ++cycles_;
}

// ---------------------------------------------------------------------------------------------
// Values
// ---------------------------------------------------------------------------------------------

void Machine::push(const Value& value) {
    if (stack_.size() == MOST_VALUES) {
        watch_.stop(Check::StackLeft,
                    QStringLiteral("the stack holds %1 values").arg(MOST_VALUES));
    }
    stack_.push_back(value);
}

Value Machine::pop() {
    if (stack_.size() <= frame().stackBase) {
        watch_.raise(Check::StackEmpty,
                     QStringLiteral("a value is taken off that the unit has not put there"));
    }
    if (stack_.empty()) {
        return Value();
    }
    const Value value = stack_.back();
    stack_.pop_back();
    return value;
}

Cell& Machine::own(int index) {
    if (index == NOWHERE) {
        watch_.stop(Check::UnsoundCode, QStringLiteral("the variable is not declared"));
    }
    return (*frame().cells)[static_cast<std::size_t>(index)];
}

Cell& Machine::meant(int index) {
    Cell& cell = own(index);
    return cell.referred == nullptr ? cell : *cell.referred;
}

// An engine object may have another type than the variable that means it.
Value Machine::load(const CodeOperand& operand) {
    const Typ type = own(operand.index).type;
    const Cell& cell = meant(operand.index);
    if (cell.isUnset) {
        watch_.raise(Check::UninitializedRead,
                     QStringLiteral("the variable is read before it has a value"));
    }
    return cell.type == type ? cell.value : arithmetic_.fit(type, cell.value);
}

void Machine::store(Cell& cell, Typ type, const Value& value) {
    const Value fitting = arithmetic_.fit(type, value);
    cell.isUnset = false;
    if (!cell.isForced) {
        cell.value = cell.type == type ? fitting : arithmetic_.fit(cell.type, fitting);
    }
}

Value Machine::take(const CodeOperand& from) {
    switch (from.kind) {
        case OperandKind::Accumulator:
            return accumulator_;
        case OperandKind::Register0:
            return register0_;
        case OperandKind::Pop:
            return pop();
        case OperandKind::Tick:
            return WholeValue(TYP_UDINT, tick_);
        case OperandKind::Variable:
        case OperandKind::Referred:
            return load(from);
        case OperandKind::Literal:
            return memory_.literals[static_cast<std::size_t>(from.index)];
        default:
            watch_.stop(Check::UnsoundCode, QStringLiteral("no variable is an array"));
    }
}

void Machine::put(const CodeOperand& to, const Value& value) {
    switch (to.kind) {
        case OperandKind::Accumulator:
            accumulator_ = value;
            return;
        case OperandKind::Register0:
            register0_ = value;
            return;
        case OperandKind::Push:
            push(value);
            return;
        case OperandKind::Nil:
            return;
        case OperandKind::Tick:
            writeTick(value);
            return;
        case OperandKind::Variable:
        case OperandKind::Referred:
            store(meant(to.index), own(to.index).type, value);
            return;
        default:
            watch_.stop(Check::UnsoundCode, QStringLiteral("no variable is an array"));
    }
}

void Machine::writeTick(const Value& value) {
    const auto ticks = static_cast<quint32>(arithmetic_.fit(TYP_UDINT, value).whole);
    if (profile_.tickWrite == TickWrite::Counter) {
        tick_ = ticks;
    } else {
        tickSetting_ = ticks;
    }
}

// ---------------------------------------------------------------------------------------------
// Instructions
// ---------------------------------------------------------------------------------------------

void Machine::move(const Instruction& instruction) {
    put(instruction.to, take(instruction.from));
}

// "MOVA @x #A0" takes the address of what the name means, "MOVA #A0 @x" binds the parameter.
void Machine::moveAddress(const Instruction& instruction) {
    if (instruction.from.kind == OperandKind::Variable) {
        accumulator_ = AddressOf(meant(instruction.from.index));
        return;
    }
    if (accumulator_.type != TYP_ARRAY || accumulator_.address == nullptr) {
        watch_.stop(Check::UnsoundCode, QStringLiteral("the accumulator holds no address"));
    }
    own(instruction.to.index).referred = accumulator_.address;
}

void Machine::binary(const Instruction& instruction) {
    if (IsStepDown(code_, instruction)) {
        accumulator_ =
            arithmetic_.apply(Operation::Subtract, accumulator_, take(instruction.from));
        return;
    }
    const Value left = take(instruction.from);
    const bool isDivision = instruction.operation == Operation::Divide;
    if (isDivision && left.isReal() != accumulator_.isReal()) {
        watch_.raise(Check::MixedDivision,
                     QStringLiteral("a whole number and a real are divided"));
    }
    accumulator_ = arithmetic_.apply(instruction.operation, left, accumulator_);
}

void Machine::jump(const Instruction& instruction) {
    const bool isTaken = instruction.operation == Operation::Jump ||
                         flag_ == (instruction.operation == Operation::JumpIfTrue);
    if (!isTaken) {
        return;
    }
    const CodeUnit& unit = code_.units[static_cast<std::size_t>(frame().unit)];
    if (instruction.target < unit.begin || instruction.target >= unit.end) {
        watch_.stop(Check::UnsoundCode, QStringLiteral("the jump leaves its unit"));
    }
    if (instruction.target < next_) {
        watch_.endIfAsked(instruction.item);
    }
    next_ = instruction.target;
}

// ---------------------------------------------------------------------------------------------
// Calls
// ---------------------------------------------------------------------------------------------

void Machine::call(const Instruction& instruction) {
    watch_.endIfAsked(instruction.item);
    if (instruction.target == NOWHERE) {
        watch_.stop(Check::UnsoundCode, QStringLiteral("no unit has that name"));
    }
    if (memory_.units[static_cast<std::size_t>(instruction.target)].active > 0) {
        watch_.raise(Check::Recursion, QStringLiteral("the unit has not ended"));
    }
    if (frames_.size() > MOST_CALLS) {
        watch_.stop(Check::Recursion,
                    QStringLiteral("%1 calls are within each other").arg(MOST_CALLS));
    }
    enter(instruction.target, next_);
}

void Machine::enter(int unit, int returnTo) {
    const CodeUnit& entered = code_.units[static_cast<std::size_t>(unit)];
    UnitCells& cells = memory_.units[static_cast<std::size_t>(unit)];
    const bool isRetained = profile_.locals == Locals::Retained;
    const std::size_t index = isRetained ? 0 : cells.active;
    ++cells.active;
    if (index == cells.ofCalls.size()) {
        cells.ofCalls.push_back(cells.initial);
    } else if (!isRetained) {
        cells.ofCalls[index] = cells.initial;
    }
    const std::size_t parameters = entered.parameters.size();
    const std::size_t base = stack_.size() < parameters ? 0 : stack_.size() - parameters;
    frames_.push_back({unit, &cells.ofCalls[index], returnTo, std::max(base, frame().stackBase)});
    next_ = entered.begin;
}

void Machine::leave() {
    const Frame left = frame();
    const bool isProgram = left.returnTo == NOWHERE;
    checkStackAtReturn(isProgram);
    frames_.pop_back();
    next_ = left.returnTo;
    if (!isProgram) {
        --memory_.units[static_cast<std::size_t>(left.unit)].active;
        giveResult(code_.units[static_cast<std::size_t>(left.unit)].result != NOWHERE);
    }
}

void Machine::checkStackAtReturn(bool isProgram) {
    const std::size_t base = frame().stackBase;
    if (stack_.size() <= base) {
        return;
    }
    watch_.raise(isProgram ? Check::StackLeftByProgram : Check::StackLeft,
                 QStringLiteral("%1 values are left on the stack").arg(stack_.size() - base));
    if (!isProgram && profile_.atReturn == StackAtReturn::Restore) {
        stack_.resize(base);
    }
}

// After a call: the result is in the accumulator, and on the stack too where that is the choice.
void Machine::giveResult(bool hasResult) {
    if (hasResult && IsResultPushed(code_, profile_.callResult, next_)) {
        push(accumulator_);
    }
}

void Machine::executeBuiltIn(const Instruction& instruction) {
    if (instruction.target == NOWHERE) {
        watch_.stop(Check::UnsoundCode, QStringLiteral("no built-in has that name"));
    }
    const BuiltIn& called = EngineBuiltIns()[static_cast<std::size_t>(instruction.target)];
    std::vector<Value> arguments(called.parameters.size());
    for (std::size_t index = arguments.size(); index-- > 0;) {
        arguments[index] = arithmetic_.fit(called.parameters[index], pop());
    }
    const Value result = builtIn(instruction.target, arguments);
    if (called.result != TYP_NONE) {
        accumulator_ = result;
    }
    giveResult(called.result != TYP_NONE);
}

Value Machine::builtIn(int index, const std::vector<Value>& arguments) {
    const BuiltIn& called = EngineBuiltIns()[static_cast<std::size_t>(index)];
    const double first = arguments[0].asReal();
    if (const MathFunction math = FindMathFunction(called.name)) {
        return arithmetic_.realResult(math(first), std::isfinite(first));
    }
    if (called.name == "pow"_L1) {
        const double second = arguments[1].real;
        return arithmetic_.realResult(std::pow(first, second),
                                      std::isfinite(first) && std::isfinite(second));
    }
    return engineBuiltIn(called, arguments);
}

// What reads or writes an engine object; one that writes takes the value last.
Value Machine::engineBuiltIn(const BuiltIn& called, const std::vector<Value>& arguments) {
    EngineNumbers numbers;
    for (std::size_t index = 0; index < EngineNumbersOf(called); ++index) {
        numbers.push_back(arguments[index].whole);
    }
    Cell& cell = memory_.engineObject(numbers);
    if (called.result != TYP_NONE) {
        return arithmetic_.fit(called.result, cell.value);
    }
    store(cell, called.parameters.back(), arguments.back());
    return Value();
}
