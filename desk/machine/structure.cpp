#include "machine/structure.h"

#include "machine/flow.h"

#include <QSet>

namespace {

QString Quoted(const QString& text) {
    return u'"' + Shown(text) + u'"';
}

// The word after the keyword.
QString FirstOperand(const Code& code, const Instruction& instruction) {
    return TextOf(WordsOf(code.items.item(instruction.item))[1]);
}

// "@level" without its mark and, of an element, its index.
QString NameIn(const QString& operand) {
    const int bracket = operand.indexOf(QLatin1Char('['));
    return operand.mid(1, bracket < 0 ? -1 : bracket - 1);
}

class Labels {
public:
    Labels(const Code& code, Findings& findings) : code_(code), findings_(findings) {}

    void check() {
        for (const CodeLabel& label : code_.labels) {
            checkDefinition(label);
        }
        for (std::size_t unit = 0; unit < code_.units.size(); ++unit) {
            checkJumps(static_cast<int>(unit));
        }
    }

private:
    const Code& code_;
    Findings& findings_;
    QHash<QString, int> items_;           // that define a label
    QSet<QPair<int, QString>> ownNames_;  // with their units

    void checkDefinition(const CodeLabel& label) {
        ownNames_.insert({label.unit, label.name});
        if (items_.contains(label.name)) {
            const QString text = QStringLiteral(
                "item %1 defines the label %2 too: the code does not tell which is meant");
            findings_.push_back({Level::Error, QStringLiteral("duplicate-label"),
                                 text.arg(items_.value(label.name)).arg(Quoted(label.name)),
                                 label.item});
        } else {
            items_.insert(label.name, label.item);
        }
    }

    void checkJumps(int unit) {
        const CodeUnit& own = code_.units[static_cast<std::size_t>(unit)];
        for (int index = own.begin; index < own.end; ++index) {
            const Instruction& jump = InstructionAt(code_, index);
            if (IsJump(jump.operation)) {
                checkJump(unit, jump);
            }
        }
    }

    void checkJump(int unit, const Instruction& jump) {
        const QString name = FirstOperand(code_, jump);
        if (jump.target == NOWHERE) {
            findings_.push_back({Level::Error, QStringLiteral("undefined-label"),
                                 QStringLiteral("there is no label %1").arg(Quoted(name)),
                                 jump.item});
        } else if (!ownNames_.contains({unit, name})) {
            tellOfOtherUnit(jump, name);
        }
    }

    void tellOfOtherUnit(const Instruction& jump, const QString& name) {
        if (jump.operation == Operation::Jump) {
            const QString text = QStringLiteral("a GOTO into another unit, to its label %1");
            findings_.push_back({Level::Warning, QStringLiteral("goto-into-unit"),
                                 text.arg(Quoted(name)), jump.item});
        } else {
            const QString text = QStringLiteral("the label %1 is in another unit");
            findings_.push_back({Level::Error, QStringLiteral("undefined-label"),
                                 text.arg(Quoted(name)), jump.item});
        }
    }
};

// ---------------------------------------------------------------------------------------------
// Units
// ---------------------------------------------------------------------------------------------

// What can be called has one name, whatever its letters.
void CheckUnitNames(const Code& code, Findings& findings) {
    QSet<QString> taken;
    for (const BuiltIn& builtIn : EngineBuiltIns()) {
        taken.insert(FoldedName(builtIn.name));
    }
    for (std::size_t index = 0; index + 1 < code.units.size(); ++index) {
        const CodeUnit& unit = code.units[index];
        const QString name = FoldedName(unit.name);
        if (taken.contains(name)) {
            findings.push_back(
                {Level::Error, QStringLiteral("duplicate-unit"),
                 QStringLiteral("there is a unit or built-in of that name already"),
                 unit.firstItem});
        }
        taken.insert(name);
    }
}

class UnitCheck {
public:
    UnitCheck(const Code& code, int unit, Findings& findings)
        : code_(code),
          index_(unit),
          unit_(code.units[static_cast<std::size_t>(unit)]),
          flow_(code, unit),
          findings_(findings) {}

    void check() {
        checkEnd();
        checkPrologue();
        for (int index = unit_.begin; index < unit_.end; ++index) {
            checkInstruction(index);
        }
        tellOfUndeclared();
    }

private:
    const Code& code_;
    int index_;
    const CodeUnit& unit_;
    Flow flow_;
    Findings& findings_;
    QHash<QString, int> undeclared_;  // the first item with each name, by the folded name
    struct Undeclared {
        QString name;
        int item;
        bool mayBeBool;
    };
    std::vector<Undeclared> inOrder_;

    const Instruction& at(int index) const { return InstructionAt(code_, index); }
    const Declaration& declarationOf(const CodeOperand& operand) const {
        return unit_.declarations[static_cast<std::size_t>(operand.index)];
    }
    int prologueEnd() const {
        return unit_.begin + 2 * static_cast<int>(unit_.parameters.size());
    }

    void tell(Level level, const char* id, const QString& message, int item) {
        findings_.push_back({level, QString::fromLatin1(id), message, item});
    }
    void fail(const char* id, const QString& message, int item) {
        tell(Level::Error, id, message, item);
    }

    void checkEnd() {
        if (code_.items.item(unit_.lastItem) != RETURN) {
            fail("no-return", QStringLiteral("the unit does not end with \"RET\""),
                 unit_.lastItem);
        }
    }

    // -----------------------------------------------------------------------------------------
    // Prologue and returns
    // -----------------------------------------------------------------------------------------

    // Parameters come off the stack from the last to the first.
    void checkPrologue() {
        int index = unit_.begin;
        for (auto each = unit_.parameters.rbegin(); each != unit_.parameters.rend(); ++each) {
            if (prologueEnd() > unit_.end || !takes(index, *each)) {
                const QString& name = unit_.declarations[static_cast<std::size_t>(*each)].name;
                const QString text = QStringLiteral("the parameter %1 is not taken here");
                fail("wrong-prologue", text.arg(Quoted(name)),
                     index < unit_.end ? at(index).item : unit_.lastItem);
                return;
            }
            index += 2;
        }
    }

    bool takes(int index, int parameter) const {
        const Instruction& pop = at(index);
        const Instruction& store = at(index + 1);
        const Section section = unit_.declarations[static_cast<std::size_t>(parameter)].section;
        const Operation expected =
            section == Section::Reference ? Operation::MoveAddress : Operation::Move;
        return pop.operation == Operation::Move && pop.from.kind == OperandKind::Pop &&
               pop.to.kind == OperandKind::Accumulator && store.operation == expected &&
               store.from.kind == OperandKind::Accumulator &&
               store.to.kind == OperandKind::Variable && store.to.index == parameter;
    }

    // A function loads its result directly before it returns.
    void checkReturn(int index) {
        const bool isLoaded = index > unit_.begin && at(index - 1).item + 1 == at(index).item &&
                              at(index - 1).operation == Operation::Move &&
                              at(index - 1).from.kind == OperandKind::Variable &&
                              at(index - 1).from.index == unit_.result;
        if (unit_.kind == UnitKind::Function && !isLoaded) {
            fail("result-not-loaded",
                 QStringLiteral("a function returns without \"MOV @RESULT #A0\""),
                 at(index).item);
        }
    }

    // -----------------------------------------------------------------------------------------
    // Instructions
    // -----------------------------------------------------------------------------------------

    void checkInstruction(int index) {
        const Instruction& instruction = at(index);
        checkOperand(index, instruction.from);
        checkOperand(index, instruction.to);
        if (instruction.operation == Operation::Return) {
            checkReturn(index);
        } else if (IsCall(instruction.operation)) {
            checkCall(index);
        } else if (instruction.operation == Operation::MoveAddress &&
                   instruction.from.kind == OperandKind::Accumulator && index >= prologueEnd()) {
            fail("wrong-prologue",
                 QStringLiteral("only the beginning of a unit binds parameters"),
                 instruction.item);
        }
    }

    void checkOperand(int index, const CodeOperand& operand) {
        switch (operand.kind) {
            case OperandKind::ElementByPop:
            case OperandKind::ElementByR1:
                fail("array-element", QStringLiteral("no declaration makes an array"),
                     at(index).item);
                break;
            case OperandKind::Variable:
            case OperandKind::Referred:
                checkVariable(index, operand);
                break;
            default:
                break;
        }
    }

    void checkVariable(int index, const CodeOperand& operand) {
        if (operand.index == NOWHERE || declarationOf(operand).isMissing) {
            noteUndeclared(index, operand);
            return;
        }
        const bool isReference = declarationOf(operand).section == Section::Reference;
        if (operand.kind == OperandKind::Referred && !isReference) {
            fail("not-a-reference",
                 QStringLiteral("\"^\" stands before a variable that is no VAR_REF"),
                 at(index).item);
        } else if (operand.kind == OperandKind::Variable && isReference && !mayBeByName(index)) {
            fail("reference-by-value",
                 QStringLiteral("a VAR_REF is reached with \"^\", but for the test and step of "
                                "FOR and for \"MOVA\""),
                 at(index).item);
        }
    }

    // A reference is addressed with "@" where it is bound or passed on, and where it controls a
    // loop.
    bool mayBeByName(int index) const {
        return at(index).operation == Operation::MoveAddress ||
               (at(index).from.kind == OperandKind::Accumulator
                    ? isStep(index - 1)
                    : isStep(index + 1) || isLoopTest(index + 1));
    }

    bool isStep(int index) const {
        const Operation operation = operationAt(index);
        return (operation == Operation::Add || operation == Operation::Subtract) &&
               at(index).from.kind == OperandKind::Literal;
    }

    bool isLoopTest(int index) const {
        const Operation comparison = operationAt(index + 1);
        return operationAt(index) == Operation::Move &&
               at(index).to.kind == OperandKind::Register0 &&
               (comparison == Operation::GreaterOrEqual ||
                comparison == Operation::LessOrEqual) &&
               at(index + 1).from.kind == OperandKind::Register0;
    }

    Operation operationAt(int index) const {
        const bool isInUnit = index >= unit_.begin && index < unit_.end;
        return isInUnit ? at(index).operation : Operation::Return;
    }

    // -----------------------------------------------------------------------------------------
    // Declarations
    // -----------------------------------------------------------------------------------------

    void noteUndeclared(int index, const CodeOperand& operand) {
        const std::vector<std::string_view> words = WordsOf(code_.items.item(at(index).item));
        const bool isSource = at(index).from.kind == operand.kind;
        const QString name = NameIn(TextOf(words[isSource ? 1 : 2]));
        if (!undeclared_.contains(FoldedName(name))) {
            const bool isTyped =
                operand.index == NOWHERE || declarationOf(operand).type != TYP_NONE;
            undeclared_.insert(FoldedName(name), at(index).item);
            inOrder_.push_back({name, at(index).item, isTyped});
        }
    }

    void tellOfUndeclared() {
        const bool isExplained =
            inOrder_.size() <= static_cast<std::size_t>(unit_.emptyDeclarations);
        for (const auto& [name, item, mayBeBool] : inOrder_) {
            if (isExplained && !mayBeBool) {
                fail(
                    "undeclared-variable",
                    QStringLiteral("%1 is not declared; an empty item stands where something was "
                                   "declared, but the code uses it as no BOOL")
                        .arg(Quoted(name)),
                    item);
            } else if (isExplained) {
                tell(Level::Warning, "missing-declaration",
                     QStringLiteral("%1 is not declared; an empty item stands where a BOOL with "
                                    "a value such as True was declared")
                         .arg(Quoted(name)),
                     item);
            } else {
                fail("undeclared-variable",
                     QStringLiteral("the unit declares no %1").arg(Quoted(name)), item);
            }
        }
    }

    // -----------------------------------------------------------------------------------------
    // Calls
    // -----------------------------------------------------------------------------------------

    void checkCall(int index) {
        const Instruction& call = at(index);
        const CallTarget target = TargetOf(code_, call);
        const QString name = FirstOperand(code_, call);
        if (!target.isKnown) {
            const bool isBuiltIn = call.operation == Operation::Execute;
            fail("unknown-callee",
                 (isBuiltIn ? QStringLiteral("there is no built-in %1")
                            : QStringLiteral("there is no function or function block %1"))
                     .arg(Quoted(name)),
                 call.item);
        } else if (call.operation == Operation::Call && call.target > index_) {
            fail("call-ahead",
                 QStringLiteral("%1 comes after this unit, which cannot call it")
                     .arg(Quoted(name)),
                 call.item);
        } else if (flow_.kindOfCall(index) == CallKind::DroppedWithoutValue) {
            tell(Level::Warning, "drop-without-value",
                 QStringLiteral("a function block calls itself as its first statement, and the "
                                "next item drops a value that nobody has pushed"),
                 call.item);
        } else if (target.result != TYP_NONE && !isResultUsed(index)) {
            fail("unused-result",
                 QStringLiteral("the result is neither used nor dropped by the next item"),
                 call.item);
        }
    }

    bool isResultUsed(int index) const {
        if (flow_.kindOfCall(index) == CallKind::Dropped) {
            return true;
        }
        const Instruction& next = index + 1 < unit_.end ? at(index + 1) : NO_INSTRUCTION;
        const Shape shape = FormOf(next.operation).shape;
        return next.from.kind == OperandKind::Accumulator || shape == Shape::Binary ||
               shape == Shape::Unary;
    }
};

}  // namespace

void CheckStructure(const Code& code, Findings& findings) {
    Labels(code, findings).check();
    CheckUnitNames(code, findings);
    for (std::size_t unit = 0; unit < code.units.size(); ++unit) {
        UnitCheck(code, static_cast<int>(unit), findings).check();
    }
}
