#include "machine/engine_objects.h"

#include "machine/conventions.h"
#include "machine/flow.h"

#include "qyx_types.h"

#include <QStringList>

#include <algorithm>
#include <optional>

namespace {

bool IsVariable(const CodeOperand& operand) {
    return operand.kind == OperandKind::Variable && operand.index != NOWHERE;
}

EngineNumbers NumbersOf(const Declaration& declaration) {
    EngineNumbers numbers;
    for (const Literal& number : declaration.numbers) {
        numbers.push_back(number.whole);
    }
    return numbers;
}

// Walks through units and keeps count of the numbers on the stack, which is enough as long as
// they are pushed directly before the call that takes them.
class UseFinder {
public:
    explicit UseFinder(const Code& code) : code_(code) {}

    EngineUses find() {
        for (const CodeUnit& unit : code_.units) {
            stack_.clear();
            for (int index = unit.begin; index < unit.end; ++index) {
                follow(unit, InstructionAt(code_, index));
            }
        }
        return std::move(uses_);
    }

private:
    using Number = std::optional<qint64>;  // nothing where it is no number of the code

    const Code& code_;
    EngineUses uses_;
    std::vector<Number> stack_;
    Number accumulator_;

    Number pop() {
        const Number top = stack_.empty() ? Number() : stack_.back();
        stack_.resize(stack_.size() - (stack_.empty() ? 0 : 1));
        return top;
    }

    void follow(const CodeUnit& unit, const Instruction& it) {
        noteVariables(unit, it);
        if (it.operation == Operation::Execute && it.target != NOWHERE) {
            execute(EngineBuiltIns()[static_cast<std::size_t>(it.target)]);
        } else if (IsCall(it.operation)) {
            std::vector<Number>& stack = stack_;
            const auto taken = static_cast<std::size_t>(TargetOf(code_, it).parameters());
            stack.resize(stack.size() - std::min(taken, stack.size()));
            accumulator_.reset();
        } else {
            move(it);
        }
    }

    void move(const Instruction& it) {
        const Number moved = it.from.kind == OperandKind::Pop           ? pop()
                             : it.from.kind == OperandKind::Accumulator ? accumulator_
                             : it.from.kind == OperandKind::Literal     ? numberOf(it.from)
                                                                        : Number();
        if (it.operation != Operation::Move) {
            accumulator_.reset();
        } else if (it.to.kind == OperandKind::Push) {
            stack_.push_back(moved);
        } else if (it.to.kind == OperandKind::Accumulator) {
            accumulator_ = moved;
        }
    }

    Number numberOf(const CodeOperand& operand) const {
        const Literal& literal = code_.literals[static_cast<std::size_t>(operand.index)];
        return literal.type < TYP_REAL ? Number(literal.whole) : Number();
    }

    void noteVariables(const CodeUnit& unit, const Instruction& it) {
        const bool isAddress = it.operation == Operation::MoveAddress;
        if (IsVariable(it.from)) {
            note(unit, it.from.index, true, isAddress);
        }
        if (IsVariable(it.to)) {
            note(unit, it.to.index, false, true);
        }
    }

    void note(const CodeUnit& unit, int variable, bool isRead, bool isWritten) {
        const Declaration& declaration = unit.declarations[static_cast<std::size_t>(variable)];
        if (IsEngineObject(declaration)) {
            note(NumbersOf(declaration), {declaration.type, isRead, isWritten});
        }
    }

    void note(const EngineNumbers& numbers, const EngineUse& use) {
        EngineUse& known = uses_[numbers];
        known.type = known.type == TYP_NONE || known.type == use.type ? use.type : Typ(TYP_LREAL);
        known.isRead = known.isRead || use.isRead;
        known.isWritten = known.isWritten || use.isWritten;
    }

    // Those of mathematics have no numbers: their parameters are reals.
    void execute(const BuiltIn& called) {
        std::vector<Number> arguments(called.parameters.size());
        std::generate(arguments.rbegin(), arguments.rend(), [this] { return pop(); });
        accumulator_.reset();
        EngineNumbers numbers;
        const std::size_t count = std::min(EngineNumbersOf(called), arguments.size());
        for (std::size_t index = 0; index < count; ++index) {
            const Typ type = called.parameters[index];
            const Number& number = arguments[index];
            if (type >= TYP_REAL || !number || !RangeOf(type).holds(*number)) {
                return;
            }
            numbers.push_back(*number);
        }
        const bool isRead = called.result != TYP_NONE;
        note(numbers, {isRead ? called.result : called.parameters.back(), isRead, !isRead});
    }
};

Declaration DeclarationOf(const EngineNumbers& numbers, Typ type) {
    const bool isGlobal = numbers.size() == 1;
    QString name = isGlobal ? QStringLiteral("global") : QStringLiteral("register");
    Declaration declaration = {
        {}, isGlobal ? Section::EngineGlobal : Section::EngineRegister, type, {}, 0};
    for (const qint64 number : numbers) {
        name += u'_' + QString::number(number);
        Literal literal;
        literal.type = TYP_UDINT;
        literal.whole = number;
        declaration.numbers.push_back(literal);
    }
    declaration.name = name;
    return declaration;
}

bool IsNamed(const CodeUnit& program, const EngineNumbers& numbers) {
    return std::any_of(program.declarations.begin(), program.declarations.end(),
                       [&numbers](const Declaration& declaration) {
                           return IsEngineObject(declaration) &&
                                  NumbersOf(declaration) == numbers;
                       });
}

}  // namespace

EngineUses EngineUsesOf(const Code& code) {
    return UseFinder(code).find();
}

bool IsEngineObject(const Declaration& declaration) {
    return declaration.section == Section::EngineGlobal ||
           declaration.section == Section::EngineRegister;
}

EngineUse UseOf(const EngineUses& uses, const Declaration& declaration) {
    const auto found =
        IsEngineObject(declaration) ? uses.find(NumbersOf(declaration)) : uses.end();
    return found == uses.end() ? EngineUse() : found->second;
}

void NameEngineObjects(const EngineUses& uses, CodeUnit& program) {
    for (const auto& [numbers, use] : uses) {
        const Declaration declaration = DeclarationOf(numbers, use.type);
        if (!IsNamed(program, numbers) && program.variable(declaration.name) == NOWHERE) {
            program.variables.insert(FoldedName(declaration.name),
                                     static_cast<int>(program.declarations.size()));
            program.declarations.push_back(declaration);
        }
    }
}

bool IsNamedByNumber(const Declaration& declaration) {
    return IsEngineObject(declaration) && declaration.item == 0;
}

QString LineOfObject(const Declaration& object) {
    QStringList cells = {object.section == Section::EngineGlobal ? QStringLiteral("global")
                                                                 : QStringLiteral("register"),
                         object.name, QString(TypToStr(object.type))};
    for (const Literal& number : object.numbers) {
        cells.append(QString::number(number.whole));
    }
    return cells.join(QStringLiteral(", ")) + u'\n';
}
