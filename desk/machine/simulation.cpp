#include "machine/simulation.h"

#include <algorithm>

namespace {

// A hidden declaration is that of a BOOL.
Typ TypeOfUndeclared(const CodeUnit& unit) {
    return unit.emptyDeclarations > 0 ? TYP_BOOL : TYP_NONE;
}

Typ TypeOfVariable(const CodeUnit& unit, const CodeOperand& operand) {
    return operand.index == NOWHERE
               ? TypeOfUndeclared(unit)
               : unit.declarations[static_cast<std::size_t>(operand.index)].type;
}

KnownValue ValueIn(Typ type) {
    return type == TYP_NONE ? ANYTHING : ValueOf(type);
}

KnownValue AddressOf(Typ type) {
    return type == TYP_NONE ? ANYTHING : KnownValue{Knowledge::Address, type};
}

QString TextOf(KnownValue value) {
    switch (value.known) {
        case Knowledge::Address:
            return QStringLiteral("the address of %1").arg(TypToStr(value.type));
        case Knowledge::Anything:
            return QStringLiteral("a value");
        default:
            return QString(TypToStr(value.type));
    }
}

// The flag belongs to what follows as long as the value that was tested is only fetched or
// changed in its place.
bool KeepsTest(const Instruction& it) {
    if (it.operation == Operation::Move) {
        return it.from.kind == OperandKind::Register0 ||
               (it.from.kind == OperandKind::Pop && it.to.kind == OperandKind::Accumulator);
    }
    return it.operation != Operation::MoveAddress && !IsCall(it.operation);
}

}  // namespace

State Simulation::after(int instruction, const State& before, Findings* findings) {
    const Instruction& it = InstructionAt(code_, instruction);
    findings_ = findings;
    item_ = it.item;
    now_ = before;
    run(instruction, it);
    now_.isTested = it.operation == Operation::Test || (now_.isTested && KeepsTest(it));
    return now_;
}

State Simulation::atBegin() {
    State state;
    for (const int parameter : unit_.parameters) {
        const Declaration& declared = unit_.declarations[static_cast<std::size_t>(parameter)];
        const bool isReference = declared.section == Section::Reference;
        state.stack = stacks_.push(
            state.stack, isReference ? AddressOf(declared.type) : ValueOf(declared.type));
    }
    return state;
}

State Simulation::merged(const State& one, const State& other) {
    return {stacks_.merged(one.stack, other.stack), Merged(one.accumulator, other.accumulator),
            Merged(one.register0, other.register0), one.isTested && other.isTested};
}

void Simulation::fail(const char* id, const QString& message) {
    if (findings_ != nullptr) {
        findings_->push_back({Level::Error, QString::fromLatin1(id), message, item_});
    }
}

void Simulation::tellOf(Fit fit, const QString& what) {
    if (fit == Fit::Wrong) {
        fail("wrong-type", what);
    } else if (fit != Fit::Fine && findings_ != nullptr) {
        const bool isUntyped = fit == Fit::Untyped;
        findings_->push_back(
            {Level::Warning,
             isUntyped ? QStringLiteral("number-without-type") : QStringLiteral("signed-string"),
             what, item_});
    }
}

void Simulation::run(int index, const Instruction& it) {
    switch (FormOf(it.operation).shape) {
        case Shape::Move:
            it.operation == Operation::Move ? move(it) : moveAddress(it);
            break;
        case Shape::Binary:
            binary(it);
            break;
        case Shape::Unary: {
            const KnownValue operand = accumulator();
            const OperationOutcome outcome = UnaryOutcome(it.operation, operand);
            tellOf(outcome.fit,
                   QStringLiteral("the operation does not take %1").arg(TextOf(operand)));
            now_.accumulator = outcome.result;
            break;
        }
        case Shape::Jump:
            if (it.operation != Operation::Jump && !now_.isTested) {
                fail("jump-without-test",
                     QStringLiteral("no \"TST #A0\" stands before this jump"));
            }
            break;
        case Shape::Call:
            call(index, it);
            break;
        case Shape::Nothing:
            leave(index);
            break;
    }
}

// ---------------------------------------------------------------------------------------------
// Moves
// ---------------------------------------------------------------------------------------------

KnownValue Simulation::pop() {
    if (now_.stack == ValueStacks::EMPTY) {
        fail("stack-too-low", QStringLiteral("the value stack is empty here"));
        return ANYTHING;
    }
    const KnownValue value = stacks_.top(now_.stack);
    now_.stack = stacks_.below(now_.stack);
    return value;
}

KnownValue Simulation::read(const KnownValue& place, const QString& name) {
    if (place.known == Knowledge::Nothing) {
        fail("no-value", QStringLiteral("%1 holds no value here").arg(name));
    } else if (place.known == Knowledge::Mixed) {
        fail("no-value", QStringLiteral("%1 holds values of different types, by the way that "
                                        "leads here")
                             .arg(name));
    }
    return place.isThere() ? place : ANYTHING;
}

KnownValue Simulation::loadVariable(const CodeOperand& operand) const {
    return ValueIn(TypeOfVariable(unit_, operand));
}

KnownValue Simulation::loadLiteral(const CodeOperand& operand) const {
    const Literal& literal = code_.literals[static_cast<std::size_t>(operand.index)];
    if (literal.type == TYP_STRING) {
        return ValueOf(TYP_STRING);
    }
    const bool isTruth = literal.text == "0"_L1 || literal.text == "1"_L1;
    return {isTruth ? Knowledge::Truth : Knowledge::Number, literal.type};
}

KnownValue Simulation::load(const CodeOperand& operand) {
    switch (operand.kind) {
        case OperandKind::Accumulator:
            return accumulator();
        case OperandKind::Register0:
            return read(now_.register0, QStringLiteral("#R0"));
        case OperandKind::Pop:
            return pop();
        case OperandKind::Tick:
            return ValueOf(TYP_UDINT);
        case OperandKind::Variable:
        case OperandKind::Referred:
            return loadVariable(operand);
        case OperandKind::Literal:
            return loadLiteral(operand);
        case OperandKind::ElementByPop:
            pop();
            return ValueOf(operand.element);
        default:
            return ValueOf(operand.element);
    }
}

void Simulation::storeTyped(Typ type, KnownValue value) {
    if (type != TYP_NONE) {
        tellOf(FitOfStore(type, value),
               QStringLiteral("%1 is stored as %2").arg(TextOf(value), TypToStr(type)));
    }
}

void Simulation::store(const CodeOperand& operand, KnownValue value) {
    switch (operand.kind) {
        case OperandKind::Accumulator:
            now_.accumulator = value;
            break;
        case OperandKind::Register0:
            now_.register0 = value;
            break;
        case OperandKind::Push:
            now_.stack = stacks_.push(now_.stack, value);
            break;
        case OperandKind::Tick:
            storeTyped(TYP_UDINT, value);
            break;
        case OperandKind::Variable:
        case OperandKind::Referred:
            storeTyped(TypeOfVariable(unit_, operand), value);
            break;
        case OperandKind::ElementByPop:
            pop();
            storeTyped(operand.element, value);
            break;
        default:
            break;
    }
}

void Simulation::move(const Instruction& it) {
    store(it.to, load(it.from));
}

void Simulation::moveAddress(const Instruction& it) {
    if (it.from.kind == OperandKind::Variable) {
        now_.accumulator = AddressOf(TypeOfVariable(unit_, it.from));
        return;
    }
    const KnownValue bound = accumulator();
    const KnownValue expected = AddressOf(TypeOfVariable(unit_, it.to));
    if (bound != expected && bound != ANYTHING && expected != ANYTHING) {
        tellOf(
            Fit::Wrong,
            QStringLiteral("%1 is bound where %2 is due").arg(TextOf(bound), TextOf(expected)));
    }
}

// ---------------------------------------------------------------------------------------------
// Operations, calls, returns
// ---------------------------------------------------------------------------------------------

void Simulation::binary(const Instruction& it) {
    const KnownValue right = accumulator();
    if (it.from.kind == OperandKind::Literal) {
        const bool isZero = loadLiteral(it.from).known == Knowledge::Truth &&
                            code_.literals[static_cast<std::size_t>(it.from.index)].whole == 0;
        const OperationOutcome outcome = NumberOutcome(it.operation, isZero, right);
        tellOf(outcome.fit, QStringLiteral("the operation does not take %1").arg(TextOf(right)));
        now_.accumulator = outcome.result;
        return;
    }
    const KnownValue popped = load(it.from);
    const KnownValue left = popped.isThere() ? popped : read(popped, QStringLiteral("the stack"));
    const bool isInReal = stacks_.holdsReal(now_.stack);
    const OperationOutcome outcome = BinaryOutcome(it.operation, left, right, isInReal);
    tellOf(
        outcome.fit,
        QStringLiteral("the operation does not take %1 and %2").arg(TextOf(left), TextOf(right)));
    now_.accumulator = outcome.result;
}

Fit Simulation::fitOfParameter(const CallTarget& target, int parameter, KnownValue value) {
    const auto index = static_cast<std::size_t>(parameter);
    if (target.builtIn != nullptr) {
        return FitOfArgument(target.builtIn->parameters[index], value);
    }
    const auto declaration = static_cast<std::size_t>(target.unit->parameters[index]);
    const Declaration& formal = target.unit->declarations[declaration];
    if (formal.section != Section::Reference) {
        return FitOfArgument(formal.type, value);
    }
    return value == AddressOf(formal.type) || value == ANYTHING ? Fit::Fine : Fit::Wrong;
}

// The last parameter is on top.
Simulation::Arguments Simulation::argumentsOf(const CallTarget& target, int stack) {
    Arguments arguments = {stack, 0, Fit::Fine, false};
    for (int each = target.parameters(); each > 0; --each) {
        if (arguments.below == ValueStacks::EMPTY) {
            arguments.isTooLow = true;
            return arguments;
        }
        const Fit fit = fitOfParameter(target, each - 1, stacks_.top(arguments.below));
        if (fit > arguments.fit) {
            arguments.firstBad = each;
            arguments.fit = fit;
        }
        arguments.below = stacks_.below(arguments.below);
    }
    return arguments;
}

int Simulation::belowUnknown(int index) const {
    int stack = now_.stack;
    for (int left = flow_.takenByUnknown(index, stacks_.height(stack)); left > 0; --left) {
        stack = stacks_.below(stack);
    }
    return stack;
}

void Simulation::call(int index, const Instruction& it) {
    const CallTarget target = TargetOf(code_, it);
    const bool isBuiltIn = it.operation == Operation::Execute;
    const QPair<int, int> key(isBuiltIn ? -2 - it.target : it.target, now_.stack);
    if (!arguments_.contains(key)) {
        arguments_.insert(key, argumentsOf(target, now_.stack));
    }
    const Arguments arguments = arguments_.value(key);
    if (arguments.isTooLow) {
        fail("stack-too-low",
             QStringLiteral("the call takes %1 values, and the value stack holds %2")
                 .arg(target.parameters())
                 .arg(stacks_.height(now_.stack)));
    }
    tellOf(
        arguments.fit,
        QStringLiteral("the value of parameter %1 is not of its type").arg(arguments.firstBad));
    now_.stack = target.isKnown ? arguments.below : belowUnknown(index);
    now_.accumulator = target.result != TYP_NONE ? ValueOf(target.result)
                       : target.isKnown          ? NOTHING
                                                 : ANYTHING;
    now_.register0 = NOTHING;
    if (flow_.kindOfCall(index) != CallKind::Plain) {
        now_.stack = stacks_.push(now_.stack, ValueIn(target.result));
    }
}

// EXIT leaves the selectors of the CASE statements around it.
void Simulation::leave(int index) {
    const int height = stacks_.height(now_.stack);
    const int selectors = flow_.around(index).cases;
    if (height != selectors) {
        fail("stack-not-empty",
             QStringLiteral("the unit returns with %1 values on the value stack").arg(height));
    } else if (height > 0 && findings_ != nullptr) {
        findings_->push_back({Level::Warning, QStringLiteral("exit-in-case"),
                              QStringLiteral("EXIT inside CASE leaves the selector on the value "
                                             "stack"),
                              item_});
    }
}
