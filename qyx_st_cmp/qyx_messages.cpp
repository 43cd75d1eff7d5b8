#include "qyx_messages.h"

#include "qyx_files.h"
#include "qyx_scanner.h"

#include <cstdlib>

namespace {

// Composes and writes "Error: Line L, Column C: text".
void Report(QLatin1String severity, TokenPos pos, const QString& text, bool force) {
    QString line;
    QString column;
    IntToStr(pos.line + 1, line, DECIMAL);
    IntToStr(pos.column + 1, column, DECIMAL);
    WriteToOutputFiles(StringsToString(severity, ": ", TXT_LINE, " ", line, ", ", TXT_POS, " ",
                                       column, ": ", text),
                       WHAT_DIAGNOSTIC, force);
}

void MatchName(QLatin1String nameExpectedBut) {
    if (TokenChar == TOKEN_IDENTIFIER) {
        return;
    }
    Abort(StringsToString(nameExpectedBut, " ", Quoted(TokenName), " ", TXT_FOUND), false);
}

}  // namespace

void Warning(const QString& text, bool force) {
    Warning(TokenPosBeg, text, force);
}

void Warning(TokenPos pos, const QString& text, bool force) {
    Report(TXT_WARNING, pos, text, force);
}

void Error(const QString& text, bool force) {
    Report(TXT_ERROR, TokenPosBeg, text, force);
}

void Fail() {
    CloseAllFiles();
    DeleteOutputCodeFile();
    std::exit(EXIT_FAILURE);
}

void Abort(const QString& text, bool force) {
    Error(text, force);
    Fail();
}

void Expected(const QString& what) {
    Abort(StringsToString(what, " ", TXT_EXPECTED), false);
}

void Undefined(QStringView name) {
    Abort(StringsToString(TXT_UNDEFINED_IDENTIFIER, " ", Quoted(name)), false);
}

void Unrecognized(QStringView name) {
    Abort(StringsToString(TXT_UNRECOGNIZED_KEYWORD, " ", Quoted(name)), false);
}

void MatchProgName() {
    MatchName(TXT_PROGRAMNAME_EXPECTED_BUT);
}

void MatchFuncName() {
    MatchName(TXT_FUNCTIONNAME_EXPECTED_BUT);
}

void MatchProcName() {
    MatchName(TXT_PROCEDURENAME_EXPECTED_BUT);
}

int NestingGuard::depth_ = 0;

NestingGuard::NestingGuard() {
    if (++depth_ > NESTING_LIMIT) {
        Abort(TXT_TOO_DEEP_NESTING, false);
    }
}

NestingGuard::~NestingGuard() {
    --depth_;
}
