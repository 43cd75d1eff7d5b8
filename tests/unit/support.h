// What the unit tests share: a compiler in its initial state, sources and files in a directory of
// their own, and the check that something ends the run.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>

#include <ostream>
#include <string>

#include "qyx_files.h"
#include "qyx_globals.h"
#include "qyx_scanner.h"
#include "qyx_types.h"
#include "screen_capture.h"

// Brings the global state back to that of a process that has just started.
inline void ResetCompiler() {
    CloseAllFiles();
    DeleteOutputCodeFile();
    for (bool* flag : {&flag_SaveListFile, &flag_ShowOnScreen, &flag_ShowInputFileLines,
                       &flag_ShowCommentedLines, &flag_ShowMessages, &flag_ShowLinesNumber,
                       &flag_SaveResFile, &flag_SaveErrFile}) {
        *flag = false;
    }
    g_OutputCodeFileName.clear();
    g_OutputCodeFileCurrentLineCount = 0;
    g_InputCodeFileTmpLineCount = -1;
    g_InputCodeFileCurrentLineCount = 0;
    g_InputCodeFileCurrentPosCount = -1;
    Look = QChar();
    IsCommentNow = false;
    CurrentToken = ScannedToken();
    LabelCount = 1;
    FunctionsList.clear();
    ProgramName.clear();
}

inline std::string ContentOf(const QString& name) {
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "<no such file>";
}

inline std::string Utf8(QStringView text) {
    return text.toUtf8().toStdString();
}

// The name of a type, in the texts of tests and in what failures print.
inline std::string NameOf(Typ type) {
    return type == TYP_NONE ? "none" : Utf8(QString(TypToStr(type)));
}

// The text of a token in the table, or the name of its kind.
inline std::string NameOf(Token code) {
    switch (code) {
        case TOKEN_UNKNOWN:
            return "unknown";
        case TOKEN_NUMBER:
            return "number";
        case TOKEN_IDENTIFIER:
            return "identifier";
        case TOKEN_STRING:
            return "string";
        default:
            return Lookup(code) == NO_ROW ? "none" : TokensTable[Lookup(code)].text.data();
    }
}

// GoogleTest prints the values of failed comparisons with these.
inline void PrintTo(Typ type, std::ostream* out) {
    *out << NameOf(type);
}
inline void PrintTo(Token code, std::ostream* out) {
    *out << NameOf(code);
}

// The text with every second character in lower case.
inline QString MixedCase(const QString& text) {
    QString mixed = text;
    for (int i = 0; i < mixed.size(); i += 2) {
        mixed[i] = mixed[i].toLower();
    }
    return mixed;
}

// A place as "line:column", both 0-based.
inline std::string Place(TokenPos place) {
    return std::to_string(place.line) + ':' + std::to_string(place.column);
}

// The line of an error as the screen shows it; line and column are 1-based.
inline std::string ErrorAt(int line, int column, const std::string& text) {
    return "Error: Line " + std::to_string(line) + ", Column " + std::to_string(column) + ": " +
           text + '\n';
}

// Checks that the action ends the process with status 1 and that exactly this reaches the
// screen. The action runs in a process of its own: files that it writes can be read afterwards.
template <typename Action>
void ExpectFailure(const Action& action, const testing::Matcher<const std::string&>& screen) {
    const auto run = [&action] {
        dup2(STDERR_FILENO, STDOUT_FILENO);
        flag_ShowOnScreen = true;
        action();
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(EXIT_FAILURE), screen);
}

// Each test starts with a compiler in its initial state and leaves one.
class CompilerTest : public testing::Test {
public:
    CompilerTest(const CompilerTest&) = delete;
    CompilerTest& operator=(const CompilerTest&) = delete;

protected:
    CompilerTest() { ResetCompiler(); }
    ~CompilerTest() override { ResetCompiler(); }

    // A file in a directory that is gone after the test.
    QString path(const char* name) const { return directory_.filePath(QLatin1String(name)); }

    QString writeFile(const char* name, const std::string& content) const {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArray::fromStdString(content));
        return file.fileName();
    }

    // Opens an output in place of an old one.
    void openOutput(void (*open)(const QString&), const char* name) const {
        EXPECT_TRUE(RemoveOldFile(path(name)));
        open(path(name));
    }

    // Ends the outputs; what the code file holds.
    std::string finishedCode() const {
        FinishOutputCodeFile();
        CloseAllFiles();
        return ContentOf(path("code"));
    }

    void readSource(const std::string& source) const {
        ReadInputCodeFile(writeFile("source.st", source));
        OpenInputCodeFile();
    }

    // Opens a source and reads up to its first character that is not white.
    void openSource(const std::string& source) const {
        readSource(source);
        GetChar();
        SkipWhite();
    }

private:
    QTemporaryDir directory_;
};
