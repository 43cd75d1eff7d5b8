#include "lints/flow_code.h"

namespace {

bool StartsWith(std::string_view text, std::string_view begin) {
    return text.substr(0, begin.size()) == begin;
}

bool IsVariable(std::string_view operand) {
    return StartsWith(operand, "@") || StartsWith(operand, "^");
}

// "MOV @name #A0" and "MOV #A0 @name"
FlowKind FlowKindOfMove(std::string_view operands) {
    constexpr std::string_view FROM_ACCUMULATOR = "#A0 ";
    if (IsVariable(operands)) {
        return FlowKind::Load;
    }
    const bool isStore = StartsWith(operands, FROM_ACCUMULATOR) &&
                         IsVariable(operands.substr(FROM_ACCUMULATOR.size()));
    return isStore ? FlowKind::Store : FlowKind::Other;
}

// Begins of items and what they mean; "MOV " stands apart.
struct Begin {
    std::string_view text;
    FlowKind operation;
};

constexpr Begin BEGINS[] = {{"JMP ", FlowKind::Jump},        {"JMPF ", FlowKind::JumpIfFalse},
                            {"JMPT ", FlowKind::JumpIfTrue}, {"RET", FlowKind::Return},
                            {"MOVA @", FlowKind::Address},   {"CAL ", FlowKind::Call},
                            {"EXEC yx", FlowKind::Call}};

bool IsStep(std::string_view item) {
    return item == "ADD 1 #A0" || item == "SUB 1 #A0";
}

}  // namespace

FlowKind FlowKindOf(std::string_view item) {
    constexpr std::string_view MOVE = "MOV ";
    if (!item.empty() && item.back() == ':') {
        return FlowKind::Label;
    }
    if (StartsWith(item, MOVE)) {
        return FlowKindOfMove(item.substr(MOVE.size()));
    }
    for (const Begin& begin : BEGINS) {
        if (StartsWith(item, begin.text)) {
            return begin.operation;
        }
    }
    return FlowKind::Other;
}

std::string_view LabelInItem(std::string_view item) {
    const std::size_t blank = item.find(' ');
    return blank == std::string_view::npos ? item.substr(0, item.size() - 1)
                                           : item.substr(blank + 1);
}

FlowCode::FlowCode(const Facts& ofFacts) : facts(ofFacts) {
    operations.reserve(facts.items.size());
    for (const ItemFact& item : facts.items) {
        operations.push_back(FlowKindOf(facts.codeOf(item.text)));
    }
}

std::string_view FlowCode::text(int item) const {
    return item >= 0 && item < count()
               ? facts.codeOf(facts.items[static_cast<std::size_t>(item)].text)
               : std::string_view();
}

Token FlowCode::kind(int item) const {
    const int index = statement(item);
    return index == NONE ? TOKEN_UNKNOWN : facts.statements[static_cast<std::size_t>(index)].kind;
}

bool FlowCode::isTestOfFor(int load) const {
    return text(load + 1) == "MOV $POP #R0";
}

bool FlowCode::isStepOfFor(int loadOrStore) const {
    return IsStep(text(loadOrStore + 1)) || IsStep(text(loadOrStore - 1));
}
