#include "qyx_messages.h"

#include "qyx_files.h"

#include <cstdlib>

namespace {

// Composes and writes "Error: Line L, Column C: text".
void Report(QLatin1String severity, TokenPos pos, const QString& text, bool force) {
    if (!force && !AreDiagnosticsTaken()) {
        WriteToOutputFiles(QString(), WHAT_DIAGNOSTIC, false);
        return;
    }
    QString line;
    QString column;
    IntToStr(pos.line + 1, line);
    IntToStr(pos.column + 1, column);
    WriteToOutputFiles(StringsToString(severity, ": ", TXT_LINE, " ", line, ", ", TXT_POS, " ",
                                       column, ": ", text),
                       WHAT_DIAGNOSTIC, force);
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
    Abort(StringsToString(what, " ", TXT_EXPECTED));
}

void Undefined(QStringView name) {
    Abort(StringsToString(TXT_UNDEFINED_IDENTIFIER, " ", Quoted(name)));
}

void Unrecognized(QStringView name) {
    Abort(StringsToString(TXT_UNRECOGNIZED_KEYWORD, " ", Quoted(name)));
}
