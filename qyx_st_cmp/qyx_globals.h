// The types and global state that the units of the compiler share.
//
// The compiler makes one pass over one source: its state is global, is built while the source is
// read and lives until the process ends. Each global below tells its meaning, its one writer and
// its readers. What a unit offers to others stands in the unit's own header.
#pragma once

#include "qyx_names.h"

#include <QChar>
#include <QLatin1String>
#include <QString>
#include <QStringView>
#include <QVector>

#include <memory>
#include <vector>

// A text constant: "MOV"_L1.
constexpr QLatin1String operator""_L1(const char* characters, std::size_t size) {
    return QLatin1String(characters, static_cast<int>(size));
}

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
// Files (writer and reader: qyx_files, except where told)
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
extern QString g_OutputCodeFileName;          // kept so that a failure can delete it
extern int g_OutputCodeFileCurrentLineCount;  // code lines written so far

// Where each source line begins in the source text; filled only when lines are to be echoed.
extern std::vector<int> g_InputCodeFileLinesList;
extern int g_InputCodeFileTmpLineCount;  // the line echoed last, -1 before the first

// ---------------------------------------------------------------------------------------------
// Scanner (writer: qyx_scanner, except where told)
// ---------------------------------------------------------------------------------------------

// A place in the source, both parts 0-based; messages print them 1-based.
struct TokenPos {
    int line;
    int column;
};

// The begin of a token and the place just behind it.
struct TokenPlace {
    TokenPos begin;
    TokenPos end;
};

// Token codes. The parsers and TokensTable (qyx_lists) share them; the codes are fixed.
enum Token : unsigned char {
    TOKEN_UNKNOWN = 1,  // a symbol or pair of symbols that is no token
    TOKEN_PROGRAM = 2,
    TOKEN_END_PROGRAM = 3,
    TOKEN_SEMICOLON = 4,
    TOKEN_COLON = 5,
    TOKEN_DOT = 6,
    TOKEN_DOT_DOT = 7,
    TOKEN_COMMA = 8,
    TOKEN_ASSIGN = 9,
    TOKEN_BREAK = 10,
    TOKEN_CONTINUE = 11,
    TOKEN_EXIT = 12,
    TOKEN_RESULT = 13,
    TOKEN_NUMBER = 14,      // given by the scanner, no row in TokensTable
    TOKEN_IDENTIFIER = 15,  // given by the scanner, no row in TokensTable
    TOKEN_STRING = 16,      // given by the scanner, no row in TokensTable
    TOKEN_CONSTANT = 17,
    TOKEN_VAR = 18,
    TOKEN_VAR_INPUT = 19,
    TOKEN_VAR_OUTPUT = 20,
    TOKEN_VAR_GLOBAL = 21,
    TOKEN_VAR_YXGLOBAL = 22,
    TOKEN_VAR_YXREGISTER = 23,
    TOKEN_END_VAR = 24,
    TOKEN_LINE_COMMENT = 25,
    TOKEN_COMMENT_BEGIN = 26,
    TOKEN_COMMENT_END = 27,
    TOKEN_PLUS = 28,
    TOKEN_MINUS = 29,
    TOKEN_MULTIPLY = 30,
    TOKEN_DIVIDE = 31,
    TOKEN_MOD = 32,
    TOKEN_OR = 33,
    TOKEN_XOR = 34,
    TOKEN_AND = 35,
    TOKEN_NOT = 36,
    TOKEN_SHR = 37,
    TOKEN_SHL = 38,
    TOKEN_ROR = 39,
    TOKEN_ROL = 40,
    TOKEN_POWER = 41,
    TOKEN_GOTO = 42,
    TOKEN_TRUE = 43,
    TOKEN_FALSE = 44,
    TOKEN_EQUAL = 45,
    TOKEN_NOT_EQUAL = 46,
    TOKEN_LESS = 47,
    TOKEN_GREATER = 48,
    TOKEN_LESS_OR_EQUAL = 49,
    TOKEN_GREATER_OR_EQUAL = 50,
    TOKEN_LEFT_PARENTHESIS = 51,
    TOKEN_RIGHT_PARENTHESIS = 52,
    TOKEN_LEFT_BRACKET = 53,
    TOKEN_RIGHT_BRACKET = 54,
    TOKEN_IF = 55,
    TOKEN_THEN = 56,
    TOKEN_ELSIF = 57,
    TOKEN_ELSE = 58,
    TOKEN_END_IF = 59,
    TOKEN_FOR = 60,
    TOKEN_TO = 61,
    TOKEN_DOWNTO = 62,
    TOKEN_DO = 63,
    TOKEN_END_FOR = 64,
    TOKEN_REPEAT = 65,
    TOKEN_UNTIL = 66,
    TOKEN_END_REPEAT = 67,
    TOKEN_WHILE = 68,
    TOKEN_END_WHILE = 69,
    TOKEN_CASE = 70,
    TOKEN_OF = 71,
    TOKEN_END_CASE = 72,
    TOKEN_TICK = 73,
    TOKEN_FUNCTION = 74,  // the keyword, and the name of a declared function
    TOKEN_END_FUNCTION = 75,
    TOKEN_FUNCTION_BLOCK = 76,  // the keyword, and the name of a declared function block
    TOKEN_END_FUNCTION_BLOCK = 77,
    TOKEN_VAR_ARG = 78,
    TOKEN_VAR_REF = 79
};

// The character that Look holds at and behind the end of the source.
//
// QUIRK(end-character): a source that holds this character, which Unicode reserves for such
// uses, ends there. Text behind it was never compiled, so no program has come to need it.
constexpr ushort END_OF_INPUT = 0xFFFF;

extern QChar Look;                           // the look-ahead character; reader: main
extern int g_InputCodeFileCurrentLineCount;  // line of Look, 0-based; reader: qyx_files
extern int g_InputCodeFileCurrentPosCount;   // column of Look, 0-based; reader: qyx_files
extern TokenPos TokenPosBeg;                 // begin of the current token; reader: qyx_messages
extern TokenPos TokenPosEnd;                 // just behind the current token
extern TokenPlace IdentPlace;                // the last identifier; reader: qyx_program

// The current token. LabelDefinition (qyx_loops) ends a label by setting TokenChar to
// TOKEN_SEMICOLON. Every parser reads these, and qyx_messages quotes TokenName.
//
// TokenName is a piece of the source text, or a kept text where the token's text differs from it
// (KeepText); either lives as long as the source. TokenSpelling is set with every word.
extern Token TokenChar;
extern QStringView TokenName;
extern const Spelling* TokenSpelling;

// A code label, "L" and a number; 0 is no label.
struct Label {
    int number = 0;

    bool isEmpty() const { return number == 0; }
};

extern int LabelCount;  // number of the next code label; starts at 1 and is never reset

// ---------------------------------------------------------------------------------------------
// Types
// ---------------------------------------------------------------------------------------------

// Type codes. Their order is the widening order: a conversion results in the larger code.
enum Typ : unsigned char {
    TYP_NONE = 0,  // nothing seen yet
    TYP_BOOL = 1,
    TYP_SINT = 2,
    TYP_USINT = 3,
    TYP_INT = 4,
    TYP_UINT = 5,
    TYP_DINT = 6,
    TYP_UDINT = 7,
    TYP_REAL = 8,
    TYP_LREAL = 9,
    TYP_STRING = 10,
    TYP_ARRAY = 11
};

constexpr int TOKENS_COUNT = 75;
constexpr int TYPS_COUNT = TYP_ARRAY - TYP_BOOL + 1;

// A row of the table of reserved words and punctuation.
struct token {
    Token code;
    QLatin1String text;  // upper case
};

// A row of the table of declared types.
struct typ {
    Typ code;
    QLatin1String name;       // the keyword, upper case
    QLatin1String shortName;  // the two letters that target code uses
};

// Constant tables (qyx_lists), read by the scanner, the types, the messages of operators and the
// editors' word lists. TypsTable stands in the order of the type codes, from TYP_BOOL on.
extern const token TokensTable[TOKENS_COUNT];
extern const typ TypsTable[TYPS_COUNT];

// ---------------------------------------------------------------------------------------------
// Symbols
// ---------------------------------------------------------------------------------------------

constexpr int ARRAY_BOUNDS_COUNT = 256;
constexpr int NOT_AN_ARRAY = -1;  // the dimensions and the size of a scalar

// The bounds of every scalar: all zero, one vector shared by all their records.
const QVector<qint64>& ScalarBounds();

// A declared variable, argument, constant or function result.
struct VarItem {
    QString name;  // as declared
    Typ type = TYP_NONE;
    bool isReference = false;        // held by reference, addressed through "^"
    bool isConstant = false;         // may not be assigned to
    bool isArray = false;            // no declaration makes arrays yet
    bool isInitialized = false;      // holds a value from the start
    bool mayBeUninitialized = true;  // until the first assignment
    int arrayDimensions = NOT_AN_ARRAY;
    qint64 arraySize = NOT_AN_ARRAY;
    QVector<qint64> arrayBounds = ScalarBounds();  // the size of each dimension
    Typ elementType = TYP_NONE;
    bool isUsed = false;
    TokenPos declBegin = {-1, -1};
    TokenPos declEnd = {-1, -1};
};

constexpr bool IS_FUNCTION = true;
constexpr bool IS_FUNCTION_BLOCK = false;  // gives no result

// A user function, a function block or a built-in.
struct FunctionItem {
    QString name;                    // as declared
    std::vector<VarItem> arguments;  // the formal parameters in declaration order
    bool isFunction = IS_FUNCTION;
    Typ resultType = TYP_LREAL;
    bool isUsed = false;
    bool isBuiltIn = false;
    TokenPos declBegin = {-1, -1};
    TokenPos declEnd = {-1, -1};
};

// A user label, the target of GOTO.
struct LabelItem {
    QString name;  // upper case
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
