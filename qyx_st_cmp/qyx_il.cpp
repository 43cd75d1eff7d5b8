#include "qyx_il.h"

Operand OperandOf(const VarItem& variable, const QString& name) {
    return {variable.isReference ? BY_REFERENCE : BY_VALUE, name};
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
