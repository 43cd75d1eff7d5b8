#include "qyx_messages.h"

#include "qyx_files.h"
#include "qyx_observer.h"

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

void Warning(QLatin1String constant, const QString& text, bool force) {
    Warning(constant, TokenPosBeg, text, force);
}

void Warning(QLatin1String constant, TokenPos pos, const QString& text, bool force) {
    Report(TXT_WARNING, pos, text, force);
    Tell(&Observer::messageGiven, Message{false, constant, pos, text});
}

void Error(QLatin1String constant, const QString& text, bool force) {
    Report(TXT_ERROR, TokenPosBeg, text, force);
    Tell(&Observer::messageGiven, Message{true, constant, TokenPosBeg, text});
}

void Fail() {
    CloseAllFiles();
    DeleteOutputCodeFile();
    std::exit(EXIT_FAILURE);
}

void Abort(QLatin1String constant, bool force) {
    Abort(constant, QString(constant), force);
}

void Abort(QLatin1String constant, const QString& text, bool force) {
    Error(constant, text, force);
    Fail();
}

void Expected(const QString& what) {
    Abort(TXT_EXPECTED, StringsToString(what, " ", TXT_EXPECTED));
}

void Undefined(QStringView name) {
    Abort(TXT_UNDEFINED_IDENTIFIER, StringsToString(TXT_UNDEFINED_IDENTIFIER, " ", Quoted(name)));
}

void Unrecognized(QStringView name) {
    Abort(TXT_UNRECOGNIZED_KEYWORD, StringsToString(TXT_UNRECOGNIZED_KEYWORD, " ", Quoted(name)));
}
