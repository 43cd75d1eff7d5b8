#include "machine/code.h"

#include "qyx_functions.h"
#include "qyx_scanner.h"

#include <algorithm>

namespace {

// Decodes the items of a text one after the other.
class Decoder {
public:
    explicit Decoder(Items items) : code_{std::move(items), {}, {}, {}, {}} {}

    CodeResult decode() {
        while (!fault_ && item_ < code_.items.count()) {
            readUnit();
        }
        if (!fault_ && (code_.units.empty() || code_.program().kind != UnitKind::Program)) {
            fail(QStringLiteral("the code holds no program"));
        }
        if (!fault_) {
            resolve();
        }
        return {std::move(code_), fault_};
    }

private:
    Code code_;
    int item_ = 0;  // the number of the item read last
    std::optional<CodeFault> fault_;
    QHash<QString, int> literals_;
    std::vector<QString> targets_;  // the name in each instruction that has one

    CodeUnit& unit() { return code_.units.back(); }
    std::string_view next() const {
        return item_ < code_.items.count() ? code_.items.item(item_ + 1) : std::string_view();
    }
    std::string_view take() { return code_.items.item(++item_); }

    void fail(const QString& message) {
        if (!fault_) {
            fault_ = CodeFault{item_, message};
        }
    }

    // -----------------------------------------------------------------------------------------
    // Units
    // -----------------------------------------------------------------------------------------

    void readUnit() {
        if (!code_.units.empty() && unit().kind == UnitKind::Program) {
            take();
            fail(QStringLiteral("something follows the program"));
            return;
        }
        code_.units.emplace_back();
        unit().firstItem = item_ + 1;
        const bool isProgram = readHead();
        readDeclarations(isProgram ? MAIN_ENTRY : BODY_ENTRY);
        unit().begin = static_cast<int>(code_.instructions.size());
        readInstructions();
        unit().end = static_cast<int>(code_.instructions.size());
        unit().lastItem = item_;
    }

    // A name that a script can give.
    void takeName(std::string_view text) {
        unit().name = TextOf(text);
        if (!IsName(unit().name)) {
            fail(QStringLiteral("no name"));
        }
    }

    // Whether the unit is the program: the division has seen to it that its items are there.
    bool readHead() {
        const std::string_view entry = take();
        const bool isProgram = entry == PROGRAM_ENTRY && item_ + 2 <= code_.items.count() &&
                               code_.items.item(item_ + 2) == DECLARATIONS_ENTRY;
        if (isProgram) {
            unit().kind = UnitKind::Program;
            takeName(take());
            take();
        } else {
            takeName(entry.substr(0, entry.size() - 1));
        }
        return isProgram;
    }

    void readDeclarations(std::string_view end) {
        while (!fault_ && next() != end) {
            const std::string_view text = take();
            if (text.empty()) {
                ++unit().emptyDeclarations;
            } else {
                readDeclaration(text);
            }
        }
        if (!fault_) {
            take();
        }
    }

    void readDeclaration(std::string_view text) {
        const std::vector<std::string_view> fields = WordsOf(text);
        Declaration declaration = {
            TextOf(fields[0]), SectionOf(fields[1]), TypeOf(fields[2]), {}, item_};
        for (std::size_t index = 3; index < fields.size(); ++index) {
            declaration.numbers.push_back(literalOf(fields[index]));
        }
        checkDeclaration(declaration);
        add(std::move(declaration));
    }

    void checkDeclaration(const Declaration& declaration) {
        const bool isResult = IsResult(declaration);
        if (!IsName(declaration.name)) {
            fail(QStringLiteral("no name stands before the code of the section"));
        } else if (declaration.type == TYP_NONE) {
            fail(QStringLiteral("no type stands after the code of the section"));
        } else if (declaration.type >= TYP_STRING && !isResult) {
            fail(QStringLiteral("no variable can have that type"));
        }
    }

    static bool IsResult(const Declaration& declaration) {
        return declaration.section == Section::Local && declaration.name == sRESULT;
    }

    void add(Declaration declaration) {
        const int index = static_cast<int>(unit().declarations.size());
        const bool isProgram = unit().kind == UnitKind::Program;
        const QString name = FoldedName(declaration.name);
        if (unit().variables.contains(name)) {
            fail(QStringLiteral("the unit declares that name twice"));
        } else if (IsResult(declaration) && !isProgram) {
            unit().kind = UnitKind::Function;
            unit().result = index;
        } else if (IsParameter(declaration.section)) {
            unit().parameters.push_back(index);
        }
        if (isProgram == IsParameter(declaration.section) &&
            declaration.section != Section::Local) {
            fail(QStringLiteral("a section that this kind of unit does not have"));
        }
        unit().variables.insert(name, index);
        unit().declarations.push_back(std::move(declaration));
    }

    static bool IsParameter(Section section) {
        return section == Section::Argument || section == Section::Reference;
    }

    // -----------------------------------------------------------------------------------------
    // Instructions
    // -----------------------------------------------------------------------------------------

    // The division has told units apart; another one begins with an entry after a return.
    bool isAtUnit() const {
        const bool isAfterReturn = code_.items.item(item_) == RETURN;
        const std::string_view second =
            item_ + 2 <= code_.items.count() ? code_.items.item(item_ + 2) : std::string_view();
        const std::vector<std::string_view> words = WordsOf(second);
        const bool isDeclaration = words.size() > 3 && FieldsOf(words[1]) == words.size() &&
                                   TypeOf(words[2]) != TYP_NONE;
        const bool isHead = second == BODY_ENTRY || second.empty() || isDeclaration;
        const bool isProgram = next() == PROGRAM_ENTRY && item_ + 3 <= code_.items.count() &&
                               code_.items.item(item_ + 3) == DECLARATIONS_ENTRY;
        return isAfterReturn && IsLabelText(next()) && (isHead || isProgram);
    }

    void readInstructions() {
        while (!fault_ && item_ < code_.items.count() && !isAtUnit()) {
            const std::string_view text = take();
            if (IsLabelText(text)) {
                readLabel(text.substr(0, text.size() - 1));
            } else {
                readInstruction(text);
            }
        }
    }

    void readLabel(std::string_view name) {
        const int here = static_cast<int>(code_.instructions.size());
        const int unit = static_cast<int>(code_.units.size()) - 1;
        code_.labels.push_back({TextOf(name), unit, here, item_});
        if (!IsName(code_.labels.back().name)) {
            fail(QStringLiteral("the label is no name"));
        }
    }

    void readInstruction(std::string_view text) {
        const std::vector<std::string_view> words = WordsOf(text);
        const InstructionForm& form = *FormOf(words[0]);
        Instruction instruction = {form.operation, {}, {}, NOWHERE, item_};
        QString target;
        switch (form.shape) {
            case Shape::Move:
            case Shape::Binary:
                instruction.from = operandOf(words[1]);
                instruction.to = operandOf(words[2]);
                break;
            case Shape::Unary:
                instruction.to = operandOf(words[1]);
                break;
            case Shape::Jump:
            case Shape::Call:
                target = TextOf(words[1]);
                break;
            case Shape::Nothing:
                break;
        }
        if (!IsForm(form.shape, instruction, target)) {
            fail(QStringLiteral("no instruction has these operands"));
        }
        code_.instructions.push_back(instruction);
        targets_.push_back(target);
    }

    // Which places can stand as the source and destination of each shape.
    static bool IsForm(Shape shape, const Instruction& instruction, const QString& target) {
        const OperandKind from = instruction.from.kind;
        const OperandKind to = instruction.to.kind;
        switch (shape) {
            case Shape::Move:
                return instruction.operation == Operation::Move ? IsMove(from, to)
                                                                : IsAddressMove(from, to);
            case Shape::Binary:
                return to == OperandKind::Accumulator &&
                       (from == OperandKind::Pop || from == OperandKind::Register0 ||
                        from == OperandKind::Literal);
            case Shape::Unary:
                return to == OperandKind::Accumulator;
            case Shape::Jump:
            case Shape::Call:
                return IsName(target);
            case Shape::Nothing:
                return true;
        }
        return false;
    }

    static bool IsValue(OperandKind kind) {
        return kind == OperandKind::Variable || kind == OperandKind::Referred ||
               kind == OperandKind::Tick || kind == OperandKind::ElementByPop ||
               kind == OperandKind::ElementByR1;
    }

    // A move has the accumulator, or the stack and register 0, on one of its sides.
    static bool IsMove(OperandKind from, OperandKind to) {
        switch (from) {
            case OperandKind::Accumulator:
                return IsValue(to) || to == OperandKind::Push || to == OperandKind::Register0;
            case OperandKind::Pop:
                return to == OperandKind::Accumulator || to == OperandKind::Register0 ||
                       to == OperandKind::Nil;
            case OperandKind::Register0:
                return to == OperandKind::Push;
            default:
                return to == OperandKind::Accumulator &&
                       (IsValue(from) || from == OperandKind::Literal);
        }
    }

    static bool IsAddressMove(OperandKind from, OperandKind to) {
        return (from == OperandKind::Variable && to == OperandKind::Accumulator) ||
               (from == OperandKind::Accumulator && to == OperandKind::Variable);
    }

    // -----------------------------------------------------------------------------------------
    // Operands
    // -----------------------------------------------------------------------------------------

    CodeOperand operandOf(std::string_view word) {
        static const QHash<QString, OperandKind> fixed = {
            {ACCUMULATOR, OperandKind::Accumulator},
            {REGISTER_0, OperandKind::Register0},
            {PUSH, OperandKind::Push},
            {POP, OperandKind::Pop},
            {NIL, OperandKind::Nil},
            {TICK, OperandKind::Tick},
        };
        if (!word.empty() && (word[0] == BY_VALUE || word[0] == BY_REFERENCE)) {
            return variableOf(word);
        }
        const auto found = fixed.find(TextOf(word));
        if (found != fixed.end()) {
            return {*found};
        }
        return {OperandKind::Literal, indexOfLiteral(word)};
    }

    CodeOperand variableOf(std::string_view word) {
        QString name = TextOf(word.substr(1));
        CodeOperand operand = {word[0] == BY_VALUE ? OperandKind::Variable
                                                   : OperandKind::Referred};
        const int bracket = name.indexOf(QLatin1Char('['));
        if (bracket >= 0) {
            const QString index = name.mid(bracket + 1);
            name.truncate(bracket);
            setElement(operand, index);
        }
        if (!IsName(name)) {
            fail(QStringLiteral("an operand names no variable"));
        }
        operand.index = unit().variable(name);
        return operand;
    }

    // "#POP.SI]" or "#R1.SI]"
    void setElement(CodeOperand& operand, const QString& index) {
        const bool isByPop = index.startsWith("#POP."_L1);
        const bool isByR1 = index.startsWith("#R1."_L1);
        const QByteArray letters = index.mid(index.indexOf(QLatin1Char('.')) + 1)
                                       .chopped(index.isEmpty() ? 0 : 1)
                                       .toUtf8();
        operand.element =
            TypeOfShort({letters.constData(), static_cast<std::size_t>(letters.size())});
        if (operand.kind != OperandKind::Variable || (!isByPop && !isByR1) ||
            !index.endsWith(QLatin1Char(']')) || operand.element == TYP_NONE) {
            fail(QStringLiteral("no element of an array is written so"));
        }
        operand.kind = isByPop ? OperandKind::ElementByPop : OperandKind::ElementByR1;
    }

    int indexOfLiteral(std::string_view word) {
        const QString text = TextOf(word);
        const auto known = literals_.find(text);
        if (known != literals_.end()) {
            return *known;
        }
        const int index = static_cast<int>(code_.literals.size());
        code_.literals.push_back(literalOf(word));
        literals_.insert(text, index);
        return index;
    }

    Literal literalOf(std::string_view word) {
        const std::optional<Literal> literal = ReadLiteral(word);
        if (!literal) {
            fail(QStringLiteral("\"%1\" is no operand and no number").arg(TextOf(word)));
        }
        return literal.value_or(Literal());
    }

    // -----------------------------------------------------------------------------------------
    // Jumps and calls
    // -----------------------------------------------------------------------------------------

    // A label belongs to its unit first; those of scripts are shared by all units. Of several
    // with one name the first one counts.
    void resolve() {
        QHash<QString, int> everywhere;
        QHash<QPair<int, QString>, int> inUnit;
        for (const CodeLabel& label : code_.labels) {
            everywhere.insert(label.name, everywhere.value(label.name, label.instruction));
            const QPair<int, QString> own(label.unit, label.name);
            inUnit.insert(own, inUnit.value(own, label.instruction));
        }
        QHash<QString, int> units;
        for (std::size_t index = 0; index + 1 < code_.units.size(); ++index) {
            units.insert(code_.units[index].name, static_cast<int>(index));
        }
        for (std::size_t index = 0; index < code_.instructions.size(); ++index) {
            Instruction& instruction = code_.instructions[index];
            const QString& name = targets_[index];
            const Shape shape = FormOf(instruction.operation).shape;
            if (shape == Shape::Jump) {
                const QPair<int, QString> own(code_.unitOf(static_cast<int>(index)), name);
                instruction.target = inUnit.value(own, everywhere.value(name, NOWHERE));
            } else if (instruction.operation == Operation::Call) {
                instruction.target = units.value(name, NOWHERE);
            } else if (instruction.operation == Operation::Execute) {
                instruction.target = IndexOfBuiltIn(name);
            }
        }
    }

    static int IndexOfBuiltIn(const QString& name) {
        const std::vector<BuiltIn>& all = EngineBuiltIns();
        const auto found = std::find_if(all.begin(), all.end(),
                                        [&name](const BuiltIn& row) { return row.name == name; });
        return found == all.end() ? NOWHERE : static_cast<int>(found - all.begin());
    }
};

std::vector<BuiltIn> ReadBuiltIns() {
    FunctionList list;
    AddBuildInFunctions(list);
    std::vector<BuiltIn> builtIns;
    for (const FunctionItem& item : list) {
        BuiltIn builtIn = {item.name(), {}, item.isFunction ? item.resultType : TYP_NONE};
        for (const VarItem& argument : item.arguments) {
            builtIn.parameters.push_back(argument.type);
        }
        builtIns.push_back(std::move(builtIn));
    }
    return builtIns;
}

}  // namespace

int CodeUnit::variable(const QString& spelling) const {
    return variables.value(FoldedName(spelling), NOWHERE);
}

int Code::unitOf(int instruction) const {
    const auto found =
        std::upper_bound(units.begin(), units.end(), instruction,
                         [](int sought, const CodeUnit& unit) { return sought < unit.end; });
    return static_cast<int>(found - units.begin());
}

CodeResult ReadCode(const QByteArray& text) {
    ItemsResult divided = DivideIntoItems(text);
    if (divided.fault) {
        return {{std::move(divided.items), {}, {}, {}, {}}, divided.fault};
    }
    return Decoder(std::move(divided.items)).decode();
}

const std::vector<BuiltIn>& EngineBuiltIns() {
    static const std::vector<BuiltIn> builtIns = ReadBuiltIns();
    return builtIns;
}

bool IsName(const QString& text) {
    return !text.isEmpty() && IsAlphaR(text[0]) &&
           std::all_of(text.begin(), text.end(), IsAlphaOrDigitR);
}

QString FoldedName(const QString& name) {
    QString folded = name;
    std::transform(folded.begin(), folded.end(), folded.begin(),
                   [](QChar c) { return c.toCaseFolded(); });
    return folded;
}

bool IsGeneratedLabel(const QString& name) {
    return name.size() > 1 && name.startsWith(sLABEL) && name[1] != QLatin1Char('0') &&
           std::all_of(name.begin() + 1, name.end(), [](QChar c) { return IsDigit(c); });
}
