#include "qyx_il.h"

#include "qyx_types.h"

#include <charconv>
#include <limits>

qint64 LabelCount = 1;

namespace {

constexpr std::size_t ELEMENT_PUNCTUATION_SIZE = 3;  // "[", "." and "]"

}  // namespace

std::size_t PartSize(const Operand& operand) {
    return 1 + operand.name.size() + PartSize(operand.index) + PartSize(operand.elementType) +
           ELEMENT_PUNCTUATION_SIZE;
}

char* PutPart(char* to, const Operand& operand) {
    to = PutPart(PutPart(to, operand.mark), operand.name);
    if (operand.index.isEmpty()) {
        return to;
    }
    to = PutPart(PutPart(to, '['), operand.index);
    to = PutPart(PutPart(to, '.'), operand.elementType);
    return PutPart(to, ']');
}

Operand OperandOf(const VarItem& variable, const Spelling& spelling) {
    if (spelling.row != NO_ROW) {
        return RESULT_OPERAND;
    }
    return {variable.isReference ? BY_REFERENCE : BY_VALUE, spelling.utf8};
}

Operand ElementOperand(const VarItem& array, const Spelling& spelling, QLatin1String index) {
    return {BY_VALUE, spelling.utf8, index, TypToShortStr(array.elementType)};
}

void EmitPush() {
    EmitStore(PUSH);
}

void EmitPop() {
    EmitLoad(POP);
}

void EmitPopToR0() {
    Emit(sMOV, POP, REGISTER_0);
}

void EmitPushFromR0() {
    Emit(sMOV, REGISTER_0, PUSH);
}

void EmitDrop() {
    Emit(sMOV, POP, NIL);
}

void EmitStackOperation(QLatin1String keyword) {
    Emit(keyword, POP, ACCUMULATOR);
}

void EmitR0Operation(QLatin1String keyword) {
    Emit(keyword, REGISTER_0, ACCUMULATOR);
}

void EmitNegate() {
    Emit(sSUB, '0', ACCUMULATOR);
}

void EmitTest() {
    Emit(sTST, ACCUMULATOR);
}

void EmitReturn() {
    WriteItem(sRET);
}

// ---------------------------------------------------------------------------------------------
// Code labels
// ---------------------------------------------------------------------------------------------

void GetNewLabel(Label& label) {
    label = {LabelCount};
    ++LabelCount;
}

// QUIRK(shared-label): the second label is shown, not reserved: whoever draws next gets it
// again. The numbers of all later labels follow from that, and they are part of the target
// code.
void GetNewLabelAndNextLabel(Label& label, Label& next) {
    GetNewLabel(label);
    next = {LabelCount};
}

namespace {

constexpr std::size_t LABEL_DIGITS = std::numeric_limits<qint64>::digits10 + 1;

}  // namespace

std::size_t PartSize(Label) {
    return PartSize(sLABEL) + LABEL_DIGITS;
}

char* PutPart(char* to, Label part) {
    to = PutPart(to, sLABEL);
    return std::to_chars(to, to + LABEL_DIGITS, part.number).ptr;
}

void PostPendingLabel(Label label) {
    if (!label.isEmpty()) {
        PostLabel(label);
    }
}
