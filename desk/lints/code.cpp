#include "lints/code.h"

namespace {

bool StartsWith(std::string_view text, std::string_view begin) {
    return text.substr(0, begin.size()) == begin;
}

bool IsVariable(std::string_view operand) {
    return StartsWith(operand, "@") || StartsWith(operand, "^");
}

// "MOV @name #A0" and "MOV #A0 @name"
Operation OperationOfMove(std::string_view operands) {
    constexpr std::string_view FROM_ACCUMULATOR = "#A0 ";
    if (IsVariable(operands)) {
        return Operation::Load;
    }
    const bool isStore = StartsWith(operands, FROM_ACCUMULATOR) &&
                         IsVariable(operands.substr(FROM_ACCUMULATOR.size()));
    return isStore ? Operation::Store : Operation::Other;
}

// Begins of items and what they mean; "MOV " stands apart.
struct Begin {
    std::string_view text;
    Operation operation;
};

constexpr Begin BEGINS[] = {
    {"JMP ", Operation::Jump},        {"JMPF ", Operation::JumpIfFalse},
    {"JMPT ", Operation::JumpIfTrue}, {"RET", Operation::Return},
    {"MOVA @", Operation::Address},   {"CAL ", Operation::Call},
    {"EXEC yx", Operation::Call}};

bool IsStep(std::string_view item) {
    return item == "ADD 1 #A0" || item == "SUB 1 #A0";
}

}  // namespace

Operation OperationOf(std::string_view item) {
    constexpr std::string_view MOVE = "MOV ";
    if (!item.empty() && item.back() == ':') {
        return Operation::Label;
    }
    if (StartsWith(item, MOVE)) {
        return OperationOfMove(item.substr(MOVE.size()));
    }
    for (const Begin& begin : BEGINS) {
        if (StartsWith(item, begin.text)) {
            return begin.operation;
        }
    }
    return Operation::Other;
}

std::string_view LabelIn(std::string_view item) {
    const std::size_t blank = item.find(' ');
    return blank == std::string_view::npos ? item.substr(0, item.size() - 1)
                                           : item.substr(blank + 1);
}

std::string_view CodeAt(const Facts& facts, int item) {
    const bool isThere = item >= 0 && item < static_cast<int>(facts.items.size());
    return isThere ? facts.codeOf(facts.items[static_cast<std::size_t>(item)].text)
                   : std::string_view();
}

Operation OperationAt(const Facts& facts, int item) {
    return OperationOf(CodeAt(facts, item));
}

bool IsTestOfFor(const Facts& facts, int load) {
    return CodeAt(facts, load + 1) == "MOV $POP #R0";
}

bool IsStepOfFor(const Facts& facts, int loadOrStore) {
    return IsStep(CodeAt(facts, loadOrStore + 1)) || IsStep(CodeAt(facts, loadOrStore - 1));
}

Token StatementKindAt(const Facts& facts, int item) {
    const int statement = facts.items[static_cast<std::size_t>(item)].statement;
    return statement == NONE ? TOKEN_UNKNOWN
                             : facts.statements[static_cast<std::size_t>(statement)].kind;
}
