// How often names are looked up: once for each word of the source.
//
// The linker leads the calls of SpellingOf from other units here. Those within qyx_names, which
// keep the texts of strings and numbers, are not counted.

#include <QRegularExpression>

#include "qyx_functions.h"
#include "qyx_names.h"
#include "qyx_program.h"
#include "qyx_scanner.h"
#include "support.h"

const Spelling& RealSpellingOf(QStringView text) __asm__("__real__Z10SpellingOf11QStringView");
const Spelling& CountedSpellingOf(QStringView text) __asm__("__wrap__Z10SpellingOf11QStringView");

namespace {

int lookups = 0;

}  // namespace

const Spelling& CountedSpellingOf(QStringView text) {
    ++lookups;
    return RealSpellingOf(text);
}

namespace {

// Every kind of section, definition, statement, expression and type, with words in upper, lower
// and mixed case; words in comments and strings, and numbers with letters, are no words.
const char* const SOURCE = R"(
// A comment of one line WHILE (* x
FUNCTION Площадь : LREAL
VAR_ARG ширина : REAL; Height : real; END_VAR;
VAR_REF Сумма : DINT; END_VAR
VAR Local : INT := -3; END_VAR
    Local := Local + 1;
    Сумма := сумма + Local;
    RESULT := ширина * HEIGHT;
    IF local > 5 THEN EXIT; END_IF;
    result := Result + 1;
END_FUNCTION

function twice : dint
var_arg Value : dint; end_var
    result := value shl 1;
    exit;
end_function

FUNCTION_BLOCK Pump
VAR_ARG Level : USINT; END_VAR
VAR Old : BOOL := FALSE; END_VAR
    Old := NOT Old;
    IF Level > 3 THEN EXIT; END_IF;
END_FUNCTION_BLOCK

function_block empty
end_function_block

(* A comment of several lines: IF x THEN
   y := 'z'; END_IF; **)
PROGRAM Главная
VAR
    CONSTANT Limit : UINT := 16#FFFF;
    i : INT; sum : DINT := 2#101; flag : BOOL := True;
END_VAR;
var lower : sint := 8#17; REAL1 : LREAL := 1.5e3; mixed : LReal; END_VAR
VAR_INPUT Вход : UDINT; END_VAR
VAR_OUTPUT Out : BOOL := TRUE; END_VAR
VAR_GLOBAL Shared : REAL := +2.5; CONSTANT on : bool := true; END_VAR
VAR_YXGLOBAL Engine : REAL (5); END_VAR
VAR_YXREGISTER Register : USINT (1, 2, 3, 4); END_VAR
    Начало: start: again :
    i := 16#1F + 2 * -3 MOD 4 - LIMIT;
    sum := twice(sum) + twice ( Twice(1) ) ** 2;
    flag := NOT flag AND ((i > 3) XOR (i <= 2)) OR (sum <> 16#E);
    out := flag = TRUE; Flag := on;
    Sum := sum SHL 2 SHR 1 ROL 3 ROR 4;
    REAL1 := cos(Real1) + SIN(1.0E5) / pow(2.0, mixed) + площадь(Shared, Engine, Sum);
    lower := 5; i := -lower + TICK; TICK := 100; tick := Вход; mixed := .5;
    pump(Register); PUMP ( 3 ); empty; yxSetGV(1, Real1); twice(4);
    IF flag THEN i := 1; ELSIF i = 2 THEN i := 3; ELSIF out THEN ; ELSE i := 4; END_IF;
    FOR i := 1 TO 10 DO IF i = 5 THEN BREAK; END_IF; CONTINUE; END_FOR;
    for I := 10 downto 1 do break; end_for;
    WHILE i < 10 DO i := i + 1; continue; END_WHILE;
    REPEAT i := i - 1; UNTIL i = 0 END_REPEAT;
    CASE i OF
        1, 2: sum := 1;
        -5..-3, 16#10..16#19: Sum := 2; GOTO Начало;
    ELSE
        case sum of 3: goto START; end_case;
    END_CASE;
    GOTO again; goto НАЧАЛО; GoTo Again;
    EXIT;
END_PROGRAM
)";

// A definition of each kind. It is compiled first: the name of the result variable is looked up
// once in a process.
const char* const FIRST_SOURCE =
    "FUNCTION f : INT RESULT := 1; END_FUNCTION\n"
    "FUNCTION_BLOCK b END_FUNCTION_BLOCK\n"
    "PROGRAM p VAR x : INT; END_VAR x := f; b; END_PROGRAM ";

class Lookups : public CompilerTest {
protected:
    // The lookups that the compiling of the source takes, those of the built-ins included.
    int lookupsOf(const std::string& source) const {
        ResetCompiler();
        lookups = 0;
        openSource(source);
        openOutput(OpenOutputCodeFile, "code");
        flag_ShowOnScreen = true;  // a source that does not compile shows why
        compile();
        return lookups;
    }

    // The names, keywords and types of the source, as many times as they stand in it.
    static int wordsOf(const char* source) {
        QString text = QString::fromUtf8(source);
        text.remove(QRegularExpression(QStringLiteral(R"(//[^\n]*|\(\*.*?\*\)|'[^']*')"),
                                       QRegularExpression::DotMatchesEverythingOption));
        const QRegularExpression word(QStringLiteral(R"((?<![\w#.])[^\W\d]\w*)"),
                                      QRegularExpression::UseUnicodePropertiesOption);
        return text.count(word);
    }

private:
    static void compile() {
        LabelsList labels;
        int stackDepth = 0;
        Scan();
        DoFunctions(labels, stackDepth);
        DoProgram(labels, stackDepth);
    }
};

int LookupsOfBuiltIns() {
    lookups = 0;
    FunctionList list;
    AddBuildInFunctions(list);
    return lookups;
}

TEST_F(Lookups, SpellingOfIsCalledOnceForEachWordOfTheSource) {
    EXPECT_GT(LookupsOfBuiltIns(), 27);
    lookupsOf(FIRST_SOURCE);
    EXPECT_EQ(lookupsOf(FIRST_SOURCE) - LookupsOfBuiltIns(), wordsOf(FIRST_SOURCE));
    EXPECT_EQ(lookupsOf(SOURCE) - LookupsOfBuiltIns(), wordsOf(SOURCE));
    EXPECT_GT(wordsOf(SOURCE), 200);
}

// A label with a dotless i is known under another spelling.
TEST_F(Lookups, ALabelWithADotlessIIsLookedUpTwice) {
    const char* const source = "PROGRAM p VAR x : INT; END_VAR ı: GOTO i; GOTO ı; END_PROGRAM ";
    EXPECT_EQ(lookupsOf(source) - LookupsOfBuiltIns(), wordsOf(source) + 2);
}

}  // namespace
