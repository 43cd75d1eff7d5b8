// The types and global state that the units of the compiler share.
//
// The compiler makes one pass over one source: its state is global, is built while the source is
// read and lives until the process ends. Each global below tells its meaning, its one writer and
// its readers. What a unit offers to others stands in the unit's own header.
#pragma once

#include "qyx_names.h"
#include "qyx_tables.h"

#include <QChar>
#include <QString>
#include <QStringView>
#include <QVector>

#include <memory>
#include <vector>

// ---------------------------------------------------------------------------------------------
// Options (writer: the driver, from the command line; readers: qyx_files and the driver)
// ---------------------------------------------------------------------------------------------

extern bool flag_SaveListFile;        // -l: write the listing file
extern bool flag_ShowOnScreen;        // -s: copy the listing stream to standard output
extern bool flag_ShowInputFileLines;  // -i: echo the source lines into the listing
extern bool flag_ShowCommentedLines;  // -c: accepted; no output depends on it
extern bool flag_ShowMessages;        // -m: copy information and diagnostics into the listing
extern bool flag_ShowLinesNumber;     // -n: number the code lines of the listing
extern bool flag_SaveResFile;         // -r: write the result file
extern bool flag_SaveErrFile;         // -e: write the error file

// ---------------------------------------------------------------------------------------------
// Files (writer and reader: qyx_files, except where stated)
// ---------------------------------------------------------------------------------------------

// What a line of output is; it decides which outputs receive the line and in which form.
enum TWhatStr : unsigned char {
    WHAT_CODE = 0,                // an item of target code
    WHAT_INFORMATION = 1,         // the banner and the success line
    WHAT_COMMAND_LINE_ERROR = 2,  // a failure that the driver finds before it compiles
    WHAT_DIAGNOSTIC = 3,          // an error or a warning
    WHAT_CONSOLE = 4,             // standard output alone
    WHAT_SOURCE_ECHO = 5          // a source line repeated in the listing
};

class FileHandle;

// The source, null when closed; qyx_scanner takes runs of characters from it.
extern std::unique_ptr<FileHandle> g_InputCodeFileHandle;
extern std::unique_ptr<FileHandle> g_OutputCodeFileHandle;  // the code file, null when closed
extern std::unique_ptr<FileHandle> g_OutputListFileHandle;  // the listing, null when closed
extern std::unique_ptr<FileHandle> g_OutputResFileHandle;   // the result file, null when closed
extern std::unique_ptr<FileHandle> g_OutputErrFileHandle;   // the error file, null when closed
extern QString g_OutputCodeFileName;             // what the code file is called once it is whole
extern qint64 g_OutputCodeFileCurrentLineCount;  // code lines written so far

// Where each source line begins in the source text, and the number of lines; filled only when
// lines are to be echoed.
extern std::vector<int> g_InputCodeFileLinesList;
extern int g_InputCodeFileLineCount;
extern int g_InputCodeFileTmpLineCount;  // the line echoed last, -1 before the first

// ---------------------------------------------------------------------------------------------
// Scanner (writer: qyx_scanner, except where stated)
// ---------------------------------------------------------------------------------------------

// A place in the source, both parts 0-based; messages print them 1-based.
struct TokenPos {
    int line;
    int column;
};

// The begin of a token and the place just after it.
struct TokenPlace {
    TokenPos begin;
    TokenPos end;
};

// The character that Look holds at and after the end of the source.
//
// QUIRK(end-character): a source that holds this character, which Unicode reserves for such
// uses, ends there. Text after it was never compiled, so no program has come to need it.
constexpr ushort END_OF_INPUT = 0xFFFF;

extern QChar Look;                           // the look-ahead character; reader: main
extern int g_InputCodeFileCurrentLineCount;  // line of Look, 0-based; reader: qyx_files
extern int g_InputCodeFileCurrentPosCount;   // column of Look, 0-based; reader: qyx_files
extern bool IsCommentNow;                    // a comment of several lines is being skipped

// The current token. Every parser reads it; the scanner alone writes it.
//
// The texts are pieces of the source, or kept texts where the token's text differs from it
// (KeepText); either lives as long as the source.
struct ScannedToken {
    Token code = TOKEN_UNKNOWN;
    Typ type = TYP_NONE;                 // of a literal, as Scan returned it
    QStringView text;                    // upper case for a string or a type
    QStringView quoted;                  // what messages quote for it: its text, with exceptions
    const Spelling* spelling = nullptr;  // of a word, else null
    TokenPlace place = {{-1, -1}, {-1, -1}};
};
extern ScannedToken CurrentToken;

// Its fields by the names under which the parsers know them. The place of the identifier read
// last is only asked for while that is the current token.
inline const Token& TokenChar = CurrentToken.code;
inline const QStringView& TokenName = CurrentToken.quoted;
inline const Spelling* const& TokenSpelling = CurrentToken.spelling;
inline const TokenPos& TokenPosBeg = CurrentToken.place.begin;
inline const TokenPos& TokenPosEnd = CurrentToken.place.end;
inline const TokenPlace& IdentPlace = CurrentToken.place;

// ---------------------------------------------------------------------------------------------
// Code labels
// ---------------------------------------------------------------------------------------------

// A code label, "L" and a number; 0 is no label.
struct Label {
    qint64 number = 0;

    bool isEmpty() const { return number == 0; }
};

// Number of the next code label; starts at 1 and is never reset. Writer and reader: qyx_il.
extern qint64 LabelCount;

// ---------------------------------------------------------------------------------------------
// Symbols
// ---------------------------------------------------------------------------------------------

constexpr int ARRAY_BOUNDS_COUNT = 256;
constexpr int NOT_AN_ARRAY = -1;  // the dimensions and the size of a scalar

// The bounds of every scalar: all zero, one vector shared by all their records.
inline const QVector<qint64>& ScalarBounds() {
    static const QVector<qint64> bounds(ARRAY_BOUNDS_COUNT, 0);
    return bounds;
}

// A declared variable, argument, constant or function result.
struct VarItem {
    const Spelling* spelling = nullptr;  // as declared
    Typ type = TYP_NONE;
    bool isReference = false;        // held by reference, addressed through "^"
    bool isConstant = false;         // may not be assigned to
    bool isArray = false;            // no declaration makes arrays yet
    bool isInitialized = false;      // holds a value from the start
    bool mayBeUninitialized = true;  // until the first assignment
    int arrayDimensions = NOT_AN_ARRAY;
    qint64 arraySize = NOT_AN_ARRAY;  // for the engine's arrays; nothing reads it yet
    QVector<qint64> arrayBounds = ScalarBounds();  // the size of each dimension
    Typ elementType = TYP_NONE;
    bool isUsed = false;
    TokenPos declBegin = {-1, -1};
    TokenPos declEnd = {-1, -1};  // nothing reads it yet

    const QString& name() const { return spelling->text; }
};

constexpr bool IS_FUNCTION = true;
constexpr bool IS_FUNCTION_BLOCK = false;  // gives no result

// A user function, a function block or a built-in.
struct FunctionItem {
    const Spelling* spelling = nullptr;  // as declared
    std::vector<VarItem> arguments;      // the formal parameters in declaration order
    bool isFunction = IS_FUNCTION;
    Typ resultType = TYP_LREAL;
    bool isUsed = false;
    bool isBuiltIn = false;
    TokenPos declBegin = {-1, -1};
    TokenPos declEnd = {-1, -1};  // nothing reads it yet

    const QString& name() const { return spelling->text; }
};

// A user label, the target of GOTO.
struct LabelItem {
    const Spelling* spelling = nullptr;  // as first used
    QString name;                        // upper case
    bool isDefined = false;
    bool isReferenced = false;
};

using VarsList = NameList<VarItem>;
using FunctionList = NameList<FunctionItem>;
using LabelsList = NameList<LabelItem>;

// Built-ins first, then the user's definitions in source order. Writer: qyx_program, which lets
// qyx_functions add the built-ins and mark what is called; readers: scanner, calls, declarations.
extern FunctionList FunctionsList;

// The program's name as written. Writer: Header; reader: Epilog (both qyx_program).
extern QString ProgramName;
