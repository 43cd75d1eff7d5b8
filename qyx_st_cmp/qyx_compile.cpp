#include "qyx_compile.h"

#include "qyx_messages.h"
#include "qyx_program.h"
#include "qyx_scanner.h"

namespace {

// The first character and the first token.
void Init() {
    GetChar();
    SkipWhite();
    Scan();
}

}  // namespace

// Script = Definitions Program
void Compile() {
    Init();
    LabelsList labels;
    int stackDepth = 0;
    DoFunctions(labels, stackDepth);
    DoProgram(labels, stackDepth);
    if (!IsEndOfInput(Look)) {
        Warning(TXT_UNEXPECTED_DATA_AFTER_END_PROGRAM, TXT_UNEXPECTED_DATA_AFTER_END_PROGRAM);
    }
}
