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

Code::Code(const Facts& ofFacts) : facts(ofFacts) {
    operations.reserve(facts.items.size());
    for (const ItemFact& item : facts.items) {
        operations.push_back(OperationOf(facts.codeOf(item.text)));
    }
}

std::string_view Code::text(int item) const {
    return item >= 0 && item < count()
               ? facts.codeOf(facts.items[static_cast<std::size_t>(item)].text)
               : std::string_view();
}

Token Code::kind(int item) const {
    const int index = statement(item);
    return index == NONE ? TOKEN_UNKNOWN
                         : facts.statements[static_cast<std::size_t>(index)].kind;
}

bool Code::isTestOfFor(int load) const {
    return text(load + 1) == "MOV $POP #R0";
}

bool Code::isStepOfFor(int loadOrStore) const {
    return IsStep(text(loadOrStore + 1)) || IsStep(text(loadOrStore - 1));
}
