#include "machine/code.h"

#include "qyx_functions.h"
#include "qyx_scanner.h"

#include <algorithm>

namespace {

constexpr std::size_t FIELDS_BEFORE_NUMBERS = 3;  // of a declaration: name, code, type

struct FixedOperand {
    QLatin1String text;
    OperandKind kind;
};

constexpr FixedOperand FIXED_OPERANDS[] = {
    {ACCUMULATOR, OperandKind::Accumulator},
    {REGISTER_0, OperandKind::Register0},
    {PUSH, OperandKind::Push},
    {POP, OperandKind::Pop},
    {NIL, OperandKind::Nil},
    {TICK, OperandKind::Tick},
};

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
    int item_ = 0;     // the number of the item read last
    int missing_ = 0;  // declarations of the unit that were added
    std::optional<CodeFault> fault_;
    QHash<QString, int> literals_;
    std::vector<QString> targets_;               // the name in each instruction that has one
    QHash<QString, int> labels_;                 // the instructions after them, by name
    QHash<QPair<int, QString>, int> ownLabels_;  // by unit and name
    QHash<QString, int> units_;                  // by name, without the program

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
        missing_ = 0;
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
        for (std::size_t index = FIELDS_BEFORE_NUMBERS; index < fields.size(); ++index) {
            declaration.numbers.push_back(literalOf(fields[index]));
        }
        checkDeclaration(declaration);
        checkPlace(declaration);
        add(std::move(declaration));
    }

    void checkDeclaration(const Declaration& declaration) {
        if (!IsName(declaration.name)) {
            fail(QStringLiteral("no name stands before the code of the section"));
        } else if (declaration.type == TYP_NONE) {
            fail(QStringLiteral("no type stands after the code of the section"));
        } else if (declaration.type >= TYP_STRING && !isResult(declaration)) {
            fail(QStringLiteral("no variable can have that type"));
        } else if (!hasValuesOfItsType(declaration)) {
            fail(QStringLiteral("that is no value for a declaration of this kind"));
        }
    }

    // The variable of a function that holds what it gives.
    bool isResult(const Declaration& declaration) {
        return unit().kind != UnitKind::Program && declaration.section == Section::Local &&
               declaration.name == sRESULT;
    }

    bool hasValuesOfItsType(const Declaration& declaration) {
        const bool isFilledLater = isParameter(declaration.section) || isResult(declaration);
        const bool isTruth = declaration.type == TYP_BOOL;
        return std::all_of(declaration.numbers.begin(), declaration.numbers.end(),
                           [=](const Literal& value) {
                               const bool isZero = value.text == "0"_L1;
                               const bool isOne = value.text == "1"_L1;
                               return value.type != TYP_STRING && (isZero || !isFilledLater) &&
                                      (isZero || isOne || !isTruth);
                           });
    }

    void checkPlace(const Declaration& declaration) {
        const bool isProgram = unit().kind == UnitKind::Program;
        const bool isPassed = isParameter(declaration.section);
        const bool isLocal = declaration.section == Section::Local;
        const std::size_t before = unit().declarations.size();
        const std::size_t results = unit().result == NOWHERE ? 0 : 1;
        if (isProgram ? isPassed : !isPassed && !isLocal) {
            fail(QStringLiteral("a section that this kind of unit does not have"));
        } else if (FoldedName(declaration.name) == FoldedName(sRESULT) &&
                   (!isResult(declaration) || before > 0)) {
            fail(QStringLiteral("RESULT is the first declaration of a function, and no other"));
        } else if (isPassed && before > unit().parameters.size() + results) {
            fail(QStringLiteral("a parameter is declared after a variable"));
        } else if (unit().variables.contains(FoldedName(declaration.name))) {
            fail(QStringLiteral("the unit declares that name twice"));
        }
    }

    void add(Declaration declaration) {
        const int index = static_cast<int>(unit().declarations.size());
        if (isResult(declaration)) {
            unit().kind = UnitKind::Function;
            unit().result = index;
        } else if (isParameter(declaration.section)) {
            unit().parameters.push_back(index);
        }
        unit().variables.insert(FoldedName(declaration.name), index);
        unit().declarations.push_back(std::move(declaration));
    }

    static bool isParameter(Section section) {
        return section == Section::Argument || section == Section::Reference;
    }

    // -----------------------------------------------------------------------------------------
    // Instructions
    // -----------------------------------------------------------------------------------------

    std::string_view itemAhead(int count) const {
        return item_ + count <= code_.items.count() ? code_.items.item(item_ + count)
                                                    : std::string_view();
    }

    static bool isDeclarationText(std::string_view item) {
        const std::vector<std::string_view> words = WordsOf(item);
        return words.size() > FIELDS_BEFORE_NUMBERS && FieldsOf(words[1]) == words.size() &&
               TypeOf(words[2]) != TYP_NONE;
    }

    // The division has told units apart; another one begins with an entry after a return.
    bool isAtUnit() const {
        const std::string_view second = itemAhead(2);
        const bool isEmpty = second.empty() && item_ + 2 <= code_.items.count();
        const bool isHead = second == BODY_ENTRY || isEmpty || isDeclarationText(second);
        const bool isProgram = next() == PROGRAM_ENTRY && itemAhead(3) == DECLARATIONS_ENTRY;
        return code_.items.item(item_) == RETURN && IsLabelText(next()) && (isHead || isProgram);
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
        if (form.shape == Shape::Jump || form.shape == Shape::Call) {
            target = TextOf(words[1]);
        } else if (form.shape == Shape::Unary) {
            instruction.to = operandOf(words[1]);
        } else if (form.shape != Shape::Nothing) {
            instruction.from = operandOf(words[1]);
            instruction.to = operandOf(words[2]);
        }
        if (!isForm(form.shape, instruction, target)) {
            fail(QStringLiteral("no instruction has these operands"));
        }
        code_.instructions.push_back(instruction);
        targets_.push_back(target);
    }

    // Which places can stand as the source and destination of each shape.
    bool isForm(Shape shape, const Instruction& instruction, const QString& target) const {
        const OperandKind from = instruction.from.kind;
        const OperandKind to = instruction.to.kind;
        switch (shape) {
            case Shape::Move:
                return instruction.operation == Operation::Move ? isMove(from, to)
                                                                : isAddressMove(from, to);
            case Shape::Binary:
                return to == OperandKind::Accumulator && isLeftOperand(instruction);
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

    // Any operation takes its left operand from the stack. Register 0 is compared, or added to
    // where an index is made; a sign, the step of a loop and a truth value have a number there.
    bool isLeftOperand(const Instruction& instruction) const {
        const Operation operation = instruction.operation;
        const bool isComparison = operation > Operation::Equal && operation < Operation::And;
        switch (instruction.from.kind) {
            case OperandKind::Pop:
                return true;
            case OperandKind::Register0:
                return isComparison || operation == Operation::Add;
            case OperandKind::Literal:
                return isLeftNumber(operation, instruction.from.index);
            default:
                return false;
        }
    }

    bool isLeftNumber(Operation operation, int literal) const {
        const Literal& number = code_.literals[static_cast<std::size_t>(literal)];
        if (number.type == TYP_STRING) {
            return false;
        }
        const bool isOne = number.text == "1"_L1;
        return operation == Operation::Subtract
                   ? isOne || number.text == "0"_L1
                   : isOne && (operation == Operation::Add || operation == Operation::Equal);
    }

    static bool isValue(OperandKind kind) {
        return kind == OperandKind::Variable || kind == OperandKind::Referred ||
               kind == OperandKind::Tick || kind == OperandKind::ElementByPop ||
               kind == OperandKind::ElementByR1;
    }

    // A move has the accumulator, or the stack and register 0, on one of its sides.
    static bool isMove(OperandKind from, OperandKind to) {
        switch (from) {
            case OperandKind::Accumulator:
                return isValue(to) || to == OperandKind::Push || to == OperandKind::Register0;
            case OperandKind::Pop:
                return to == OperandKind::Accumulator || to == OperandKind::Register0 ||
                       to == OperandKind::Nil;
            case OperandKind::Register0:
                return to == OperandKind::Push;
            default:
                return to == OperandKind::Accumulator &&
                       (isValue(from) || from == OperandKind::Literal);
        }
    }

    static bool isAddressMove(OperandKind from, OperandKind to) {
        return (from == OperandKind::Variable && to == OperandKind::Accumulator) ||
               (from == OperandKind::Accumulator && to == OperandKind::Variable);
    }

    // -----------------------------------------------------------------------------------------
    // Operands
    // -----------------------------------------------------------------------------------------

    CodeOperand operandOf(std::string_view word) {
        if (!word.empty() && (word[0] == BY_VALUE || word[0] == BY_REFERENCE)) {
            return variableOf(word);
        }
        for (const FixedOperand& fixed : FIXED_OPERANDS) {
            if (View(fixed.text) == word) {
                return {fixed.kind};
            }
        }
        if (!word.empty() && word[0] == '-') {
            fail(QStringLiteral("an operand has no sign"));
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
        const bool isHidden = missing_ < unit().emptyDeclarations && name != sRESULT;
        if (operand.index == NOWHERE && isHidden) {
            operand.index = addMissing(name);
        }
        return operand;
    }

    // An empty declaration has hidden the variable.
    int addMissing(const QString& name) {
        ++missing_;
        Declaration declaration = {name, Section::Local, TYP_BOOL, {Literal()}, item_};
        declaration.isMissing = true;
        add(std::move(declaration));
        return static_cast<int>(unit().declarations.size()) - 1;
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
            fail(QStringLiteral("\"%1\" is no operand and no number").arg(ShownText(word)));
        }
        return literal.value_or(Literal());
    }

    // -----------------------------------------------------------------------------------------
    // Jumps and calls
    // -----------------------------------------------------------------------------------------

    // A label belongs to its unit first; those of scripts are shared by all units. Of several
    // with one name the first one counts, and so it is with units.
    void resolve() {
        collectTargets();
        for (std::size_t unit = 0; unit < code_.units.size(); ++unit) {
            for (int index = code_.units[unit].begin; index < code_.units[unit].end; ++index) {
                const auto at = static_cast<std::size_t>(index);
                Instruction& instruction = code_.instructions[at];
                instruction.target =
                    targetOf(instruction.operation, static_cast<int>(unit), targets_[at]);
            }
        }
    }

    void collectTargets() {
        for (const CodeLabel& label : code_.labels) {
            insertFirst(labels_, label.name, label.instruction);
            insertFirst(ownLabels_, {label.unit, label.name}, label.instruction);
        }
        for (std::size_t index = 0; index + 1 < code_.units.size(); ++index) {
            insertFirst(units_, code_.units[index].name, static_cast<int>(index));
        }
    }

    template <typename Key>
    static void insertFirst(QHash<Key, int>& hash, const Key& key, int value) {
        if (!hash.contains(key)) {
            hash.insert(key, value);
        }
    }

    int targetOf(Operation operation, int unit, const QString& name) const {
        if (operation == Operation::Call) {
            return units_.value(name, NOWHERE);
        }
        if (operation == Operation::Execute) {
            return indexOfBuiltIn(name);
        }
        const bool isJump = FormOf(operation).shape == Shape::Jump;
        return isJump ? ownLabels_.value({unit, name}, labels_.value(name, NOWHERE)) : NOWHERE;
    }

    static int indexOfBuiltIn(const QString& name) {
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
