// Lints that follow the ways through a script: what each rule finds, and what it leaves alone.

#include "facts/compile.h"
#include "lints/flow.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <string>

namespace {

// What is found in a script, as "LINE:COLUMN id" in the order of the findings.
std::string Found(const QString& text) {
    const Source source(QStringLiteral("test"), text);
    const CompileResult result = CompileAndWait(source);
    if (!result.facts || !result.facts->isCompiled()) {
        return "does not compile";
    }
    QStringList found;
    for (const Diagnostic& diagnostic : FlowLints(source, *result.facts)) {
        const Place place = diagnostic.placeIn(source);
        EXPECT_EQ(diagnostic.level, Level::Warning);
        found.append(QStringLiteral("%1:%2 ").arg(place.line).arg(place.column) + diagnostic.id);
    }
    return found.join(QStringLiteral(", ")).toStdString();
}

std::string MessagesOf(const QString& text) {
    const Source source(QStringLiteral("test"), text);
    QStringList messages;
    for (const Diagnostic& diagnostic : FlowLints(source, *CompileAndWait(source).facts)) {
        messages.append(diagnostic.message);
    }
    return messages.join(QLatin1Char('\n')).toStdString();
}

// Scripts whose statements begin on line 2. Above them are a function block that changes what it
// gets by reference and one that does not.
constexpr const char* BLOCKS =
    "FUNCTION_BLOCK Set VAR_REF p : INT; END_VAR p := 5; END_FUNCTION_BLOCK "
    "FUNCTION_BLOCK Show VAR_ARG k : INT; END_VAR VAR_REF p : INT; END_VAR yxSetGV(k, p); "
    "END_FUNCTION_BLOCK "
    "FUNCTION_BLOCK SetSecond VAR_REF p : INT; END_VAR VAR_REF q : INT; END_VAR "
    "q := p; END_FUNCTION_BLOCK "
    "FUNCTION_BLOCK SetInner VAR_REF p : INT; END_VAR Set(p); END_FUNCTION_BLOCK "
    "FUNCTION Read : INT VAR_ARG k : INT; END_VAR RESULT := yxGetRegUINT(k, 0, 0, 0); "
    "END_FUNCTION ";
constexpr const char* LOCALS =
    "VAR_ARG a : INT; ok : BOOL; END_VAR VAR_REF r : INT; END_VAR "
    "VAR x : INT; y : INT; i : INT; kept : INT := 0; END_VAR\n";

QString Script(const char* unit, const char* head, const char* statements, const char* rest) {
    return QString::fromUtf8(BLOCKS) + QString::fromUtf8(unit) + QString::fromUtf8(head) +
           QString::fromUtf8(statements) + QString::fromUtf8(rest);
}

std::string FoundInFunction(const char* statements) {
    return Found(Script("FUNCTION F : INT ", LOCALS, statements,
                        "\nEND_FUNCTION PROGRAM P VAR n : INT := 0; END_VAR n := F(n, TRUE, n); "
                        "END_PROGRAM"));
}

std::string FoundInBlock(const char* statements) {
    return Found(Script("FUNCTION_BLOCK B ", LOCALS, statements,
                        "\nEND_FUNCTION_BLOCK PROGRAM P VAR n : INT := 0; END_VAR B(n, TRUE, n); "
                        "END_PROGRAM"));
}

std::string FoundInProgram(const char* statements) {
    return Found(Script("PROGRAM P ",
                        "VAR_INPUT a : INT; ok : BOOL; END_VAR VAR_OUTPUT r : INT; END_VAR "
                        "VAR_GLOBAL g : INT; END_VAR VAR_YXGLOBAL e : INT (1); END_VAR "
                        "VAR x : INT; y : INT; i : INT; kept : INT := 0; END_VAR\n",
                        statements, "\nEND_PROGRAM"));
}

// ---------------------------------------------------------------------------------------------
// unset-read
// ---------------------------------------------------------------------------------------------

TEST(UnsetRead, AWayAroundTheStore) {
    EXPECT_EQ(FoundInBlock("IF ok THEN x := 1; END_IF;\nr := x;"), "3:6 unset-read");
    EXPECT_EQ(FoundInBlock("CASE a OF 1: x := 1; 2: x := 2; END_CASE;\nr := x + x;"),
              "3:6 unset-read");
    EXPECT_EQ(FoundInBlock("IF (a = 1) OR ok THEN x := 1; END_IF;\nr := x;"), "3:6 unset-read");
}

TEST(UnsetRead, TheFirstReadIsReported) {
    EXPECT_EQ(FoundInBlock("IF ok THEN x := 1; END_IF;\nr := x; IF a > 1 THEN r := 0; END_IF;"
                           "r := r + x;"),
              "3:6 unset-read");
}

TEST(UnsetRead, EveryWaySets) {
    EXPECT_EQ(FoundInBlock("IF ok THEN x := 1; ELSE x := 2; END_IF; r := x;"), "");
    EXPECT_EQ(FoundInBlock("CASE a OF 1: x := 1; ELSE x := 2; END_CASE; r := x;"), "");
    EXPECT_EQ(FoundInBlock("IF ok THEN x := 1; ELSE EXIT; END_IF; r := x;"), "");
    EXPECT_EQ(FoundInBlock("REPEAT x := a; UNTIL x > 3 END_REPEAT; r := x;"), "");
    EXPECT_EQ(FoundInBlock("IF ok THEN kept := 1; END_IF; r := kept;"), "");
    EXPECT_EQ(FoundInBlock("IF ok THEN Set(x); ELSE x := 1; END_IF; r := x;"), "");
}

TEST(UnsetRead, StoresInOtherBranchesOnly) {
    EXPECT_EQ(FoundInBlock("IF ok THEN x := a; r := x;\nELSE r := x; END_IF;"),
              "3:11 unset-read");
    EXPECT_EQ(FoundInBlock("CASE a OF 1: x := a; r := x;\n2: r := x; END_CASE;"),
              "3:9 unset-read");
}

TEST(UnsetRead, ConditionsThatMayGoTogether) {
    EXPECT_EQ(FoundInBlock("IF ok THEN x := 1; END_IF; IF ok THEN r := x; END_IF;"), "");
    EXPECT_EQ(FoundInBlock("IF ok THEN x := 1; END_IF; IF NOT ok THEN r := 1; EXIT; END_IF;"
                           "r := x;"),
              "");
    EXPECT_EQ(
        FoundInBlock("IF ok THEN x := 1; END_IF; IF NOT ok OR (x > 1) THEN r := 1; END_IF;"), "");
    EXPECT_EQ(FoundInBlock("IF ok THEN x := 1; END_IF;"
                           "IF NOT ok THEN r := 0; ELSIF x > 1 THEN r := 1; END_IF;"),
              "");
    EXPECT_EQ(FoundInBlock("FOR i := 1 TO 3 DO IF i = 1 THEN x := 1; END_IF; r := x; END_FOR;"),
              "");
}

TEST(UnsetRead, AReferenceMaySet) {
    EXPECT_EQ(FoundInBlock("IF a = 9 THEN x := 1; EXIT; END_IF; IF ok THEN Set(x); END_IF;"
                           "IF ok THEN r := x; END_IF;"),
              "");
}

TEST(UnsetRead, AJumpThatLeavesWithAValue) {
    EXPECT_EQ(FoundInBlock("IF a = 1 THEN x := 1; END_IF; IF a = 2 THEN x := 2; r := x; EXIT; "
                           "END_IF;\nr := x;"),
              "3:6 unset-read");
}

TEST(UnsetRead, TheWayForksWithinTheBranch) {
    EXPECT_EQ(FoundInBlock("IF a > 1 THEN IF ok THEN x := 1; END_IF;\nr := x; END_IF;"),
              "3:6 unset-read");
    EXPECT_EQ(FoundInBlock("REPEAT IF ok THEN x := 1; END_IF;\nr := x; UNTIL ok END_REPEAT;"),
              "3:6 unset-read");
}

TEST(UnsetRead, LoopsRunOnce) {
    EXPECT_EQ(FoundInBlock("FOR i := 1 TO a DO x := i; END_FOR; r := x;"), "");
    EXPECT_EQ(FoundInBlock("kept := a; WHILE kept > 1 DO x := kept; kept := kept - 1; END_WHILE;"
                           "r := x;"),
              "");
    EXPECT_EQ(FoundInBlock("FOR i := 1 TO a DO IF i = 3 THEN x := i; BREAK; END_IF; END_FOR;\n"
                           "r := x;"),
              "3:6 unset-read");
}

TEST(UnsetRead, WhatTheCompilerTellsIsLeftToIt) {
    EXPECT_EQ(FoundInBlock("r := x; x := a; r := r + x;"), "");
    EXPECT_EQ(FoundInBlock("r := x;"), "");
}

TEST(UnsetRead, TheResult) {
    EXPECT_EQ(FoundInFunction("IF ok THEN RESULT := a + r; END_IF;"), "3:1 unset-read");
    EXPECT_EQ(FoundInFunction("IF ok THEN\nEXIT; END_IF; RESULT := a + r;"), "3:1 unset-read");
    EXPECT_EQ(FoundInFunction("RESULT := 0; IF ok THEN RESULT := a + r; END_IF;"), "");
    EXPECT_EQ(FoundInFunction("IF ok THEN RESULT := a; EXIT; END_IF; RESULT := r;"), "");
    EXPECT_EQ(FoundInFunction("r := a;"), "");
}

TEST(UnsetRead, ProgramsMayKeepTheirVariables) {
    EXPECT_EQ(FoundInProgram("IF ok THEN x := a; END_IF; r := x;"), "");
}

TEST(UnsetRead, AJumpBackMayHaveSet) {
    EXPECT_EQ(FoundInBlock("again: IF ok THEN x := a; END_IF; r := x;"
                           "IF r > 3 THEN GOTO again; END_IF;"),
              "");
}

TEST(UnsetRead, Messages) {
    EXPECT_EQ(MessagesOf(QStringLiteral(
                  "FUNCTION F : INT VAR_ARG a : INT; END_VAR VAR Val : INT; END_VAR "
                  "IF a = 0 THEN EXIT; END_IF;"
                  "IF a = 1 THEN VAL := 2; RESULT := val; ELSE RESULT := val; END_IF;"
                  "END_FUNCTION PROGRAM P VAR n : INT := 0; END_VAR n := F(n); END_PROGRAM")),
              "The function \"F\" ends here, but nothing sets \"RESULT\" before\n"
              "The variable \"Val\" is read here, but nothing sets it before");
}

// ---------------------------------------------------------------------------------------------
// unused-store
// ---------------------------------------------------------------------------------------------

TEST(UnusedStore, AnotherValueComesFirst) {
    EXPECT_EQ(FoundInProgram("x := a;\nx := a + 1; r := x;"), "2:1 unused-store");
    EXPECT_EQ(FoundInProgram("r := 1; r := 2;"), "2:1 unused-store");
    EXPECT_EQ(FoundInProgram("x := a; IF ok THEN x := 1; ELSE x := 2; END_IF; r := x;"),
              "2:1 unused-store");
    EXPECT_EQ(FoundInFunction("RESULT := a + r; RESULT := 1;"), "2:1 unused-store");
    EXPECT_EQ(FoundInProgram("i := 7; FOR i := 1 TO 3 DO r := r + i; END_FOR;"),
              "2:1 unused-store");
}

TEST(UnusedStore, AWayReads) {
    EXPECT_EQ(FoundInProgram("x := a; IF ok THEN x := 1; END_IF; r := x;"), "");
    EXPECT_EQ(FoundInProgram("x := a; x := x + 1; r := x;"), "");
    EXPECT_EQ(FoundInProgram("x := a; Show(1, x); x := 1; r := x;"), "");
    EXPECT_EQ(FoundInBlock("x := 0; REPEAT IF a > 1 THEN r := x; END_IF; x := a;"
                           "UNTIL ok END_REPEAT;"),
              "");
    EXPECT_EQ(FoundInProgram("x := a; WHILE x < 9 DO x := x + 1; END_WHILE;"), "");
    EXPECT_EQ(FoundInProgram("x := a; FOR i := 1 TO 3 DO r := x; x := i; END_FOR;"), "");
}

TEST(UnusedStore, DefaultsAreLeftAlone) {
    EXPECT_EQ(FoundInProgram("x := -1; IF ok THEN x := 1; ELSE x := 2; END_IF; r := x;"), "");
}

TEST(UnusedStore, WhatOthersSee) {
    EXPECT_EQ(FoundInProgram("x := a; kept := a; r := a;"), "");
    EXPECT_EQ(FoundInProgram("g := a; g := 1; e := a; e := 0;"), "");
    EXPECT_EQ(FoundInProgram("a := 1; a := 2; r := a;"), "");
    EXPECT_EQ(FoundInProgram("again: r := TICK; GOTO again;"), "");
    EXPECT_EQ(FoundInBlock("r := a; r := 1;"), "");
}

TEST(UnusedStore, TheEndOfADefinition) {
    EXPECT_EQ(FoundInBlock("x := a; r := x; x := a + 1;"), "2:17 unused-store");
    EXPECT_EQ(FoundInBlock("r := a; a := a + 1;"), "2:9 unused-store");
    EXPECT_EQ(FoundInBlock("IF ok THEN r := a; END_IF;\na := r + 1;"), "3:1 unused-store");
    EXPECT_EQ(FoundInBlock("kept := kept + a; r := kept;"), "");
    EXPECT_EQ(FoundInBlock("r := kept; kept := a;"), "");
}

TEST(UnusedStore, NeverReadIsToldOnce) {
    EXPECT_EQ(FoundInBlock("x := a;\nIF ok THEN x := 1; END_IF;"), "2:1 unused-store");
    EXPECT_EQ(FoundInProgram("x := a; IF ok THEN x := 1; END_IF;"), "");
}

TEST(UnusedStore, CallsAreMadeForWhatTheyDo) {
    EXPECT_EQ(FoundInBlock("x := Read(1);"), "");
    EXPECT_EQ(FoundInProgram("x := Read(1); x := Read(2); r := x;"), "");
    EXPECT_EQ(FoundInProgram("x := yxGetGV(1); x := a; r := x;"), "");
    EXPECT_EQ(FoundInProgram("x := sqrt(a); x := a; r := x;"), "2:1 unused-store");
}

TEST(UnusedStore, ADefinitionThatCallsItself) {
    EXPECT_EQ(Found(QStringLiteral(
                  "FUNCTION F : INT VAR_ARG a : INT; END_VAR VAR x : INT; END_VAR "
                  "x := a; IF a > 0 THEN RESULT := F(a - 1); END_IF; x := a * 2; RESULT := x;"
                  "END_FUNCTION PROGRAM P VAR n : INT := 0; END_VAR n := F(n); END_PROGRAM")),
              "");
}

TEST(UnusedStore, Messages) {
    EXPECT_EQ(MessagesOf(QStringLiteral(
                  "FUNCTION_BLOCK B VAR_ARG a : INT; END_VAR VAR x : INT; y : INT; END_VAR "
                  "y := a; x := a; x := 2; yxSetGV(1, x); a := 3 * a; END_FUNCTION_BLOCK "
                  "PROGRAM P VAR END_VAR B(1); END_PROGRAM")),
              "The variable \"y\" is assigned but never read\n"
              "The variable \"x\" gets another value before this one is read\n"
              "Nothing reads this value of the variable \"a\"");
}

// ---------------------------------------------------------------------------------------------
// unreachable-code
// ---------------------------------------------------------------------------------------------

TEST(UnreachableCode, AfterAJump) {
    EXPECT_EQ(FoundInProgram("EXIT;\nr := 1; IF ok THEN r := 2; END_IF; r := 3;"),
              "3:1 unreachable-code");
    EXPECT_EQ(FoundInProgram("WHILE ok DO BREAK;\nr := 1; END_WHILE;"), "3:1 unreachable-code");
    EXPECT_EQ(FoundInProgram("WHILE ok DO CONTINUE;\nr := 1; END_WHILE;"),
              "3:1 unreachable-code");
    EXPECT_EQ(FoundInProgram("GOTO out;\nr := 1; out: r := 2;"), "3:1 unreachable-code");
    EXPECT_EQ(FoundInProgram("EXIT;\nlater: r := 1;"), "3:1 unreachable-code");
}

TEST(UnreachableCode, AllBranchesLeave) {
    EXPECT_EQ(FoundInProgram("IF ok THEN EXIT; ELSE r := 1; EXIT; END_IF;\nr := 2;"),
              "3:1 unreachable-code");
    EXPECT_EQ(FoundInProgram("IF ok THEN EXIT; END_IF; r := 2;"), "");
}

TEST(UnreachableCode, LoopsWithoutEnd) {
    EXPECT_EQ(FoundInProgram("WHILE TRUE DO r := TICK; END_WHILE;\nr := 2;"),
              "3:1 unreachable-code");
    EXPECT_EQ(FoundInProgram("REPEAT r := TICK; UNTIL FALSE END_REPEAT;\nr := 2;"),
              "3:1 unreachable-code");
    EXPECT_EQ(FoundInProgram("WHILE TRUE DO IF ok THEN BREAK; END_IF; END_WHILE; r := 2;"), "");
}

TEST(UnreachableCode, SwitchesOfTheAuthor) {
    EXPECT_EQ(FoundInProgram("IF FALSE THEN r := 1; END_IF; WHILE FALSE DO r := 2; END_WHILE;"),
              "");
    EXPECT_EQ(FoundInProgram("IF TRUE THEN EXIT; END_IF; r := 1;"), "");
}

TEST(UnreachableCode, LabelsAreReached) {
    EXPECT_EQ(FoundInProgram("IF ok THEN GOTO more; END_IF; EXIT; more: r := 1;"), "");
    EXPECT_EQ(FoundInProgram("GOTO inner; WHILE ok DO inner: r := 1; END_WHILE;"), "");
}

TEST(UnreachableCode, EachRunIsToldOnce) {
    EXPECT_EQ(FoundInProgram("IF ok THEN GOTO more; END_IF; EXIT;\nr := 1; r := 2;"
                             "more: r := 3; EXIT;\nr := 4;"),
              "3:1 unreachable-code, 4:1 unreachable-code");
}

TEST(UnreachableCode, WhatIsReadThereHidesNoStore) {
    EXPECT_EQ(FoundInBlock("x := a; EXIT;\nr := x;"), "3:1 unreachable-code");
    EXPECT_EQ(FoundInProgram("EXIT;\nx := a; x := 1;"), "3:1 unreachable-code");
}

TEST(UnreachableCode, Messages) {
    EXPECT_EQ(MessagesOf(QStringLiteral("PROGRAM P VAR x : INT := 0; END_VAR "
                                        "IF x = 1 THEN exit; x := 2; END_IF;"
                                        "WHILE TRUE DO x := 3; END_WHILE; x := 4; END_PROGRAM")),
              "This statement is never reached: \"EXIT\" stands before it\n"
              "This statement is never reached");
}

// ---------------------------------------------------------------------------------------------
// loop-variable-changed
// ---------------------------------------------------------------------------------------------

TEST(LoopVariable, ChangedInTheBody) {
    EXPECT_EQ(FoundInProgram("FOR i := 1 TO 9 DO r := i;\ni := i + 1; END_FOR;"),
              "3:1 loop-variable-changed");
    EXPECT_EQ(FoundInProgram("FOR i := 1 TO 9 DO IF ok THEN\ni := 9; END_IF; END_FOR;"),
              "3:1 loop-variable-changed");
    EXPECT_EQ(FoundInProgram("FOR i := 1 TO 9 DO\nFOR i := 1 TO 3 DO r := i; END_FOR; END_FOR;"),
              "3:5 loop-variable-changed");
}

TEST(LoopVariable, ChangedByReference) {
    EXPECT_EQ(FoundInProgram("FOR i := 1 TO 9 DO\nSet(i); END_FOR;"),
              "3:5 loop-variable-changed");
    EXPECT_EQ(FoundInProgram("FOR i := 1 TO 9 DO\nSetInner(i); END_FOR;"),
              "3:10 loop-variable-changed");
    EXPECT_EQ(FoundInProgram("FOR i := 1 TO 9 DO\nSetSecond(y, i); END_FOR; y := 1;"),
              "3:14 loop-variable-changed");
    EXPECT_EQ(FoundInProgram("FOR i := 1 TO 9 DO Show(Read(i), i); SetSecond(i, y); END_FOR;"
                             "y := 1;"),
              "");
}

TEST(LoopVariable, ChangedOutsideOfTheBody) {
    EXPECT_EQ(FoundInProgram("FOR i := 1 TO 9 DO r := r + i; END_FOR; i := 3; Set(i);"), "");
    EXPECT_EQ(FoundInProgram("FOR i := 1 TO 9 DO FOR x := 1 TO i DO r := x; END_FOR; END_FOR;"
                             "FOR x := 1 TO 3 DO i := x; END_FOR;"),
              "");
    EXPECT_EQ(FoundInProgram("WHILE ok DO i := i + 1; FOR x := 1 TO i DO r := x; END_FOR; "
                             "END_WHILE;"),
              "");
}

TEST(LoopVariable, TheLoopIsLeftAtOnce) {
    EXPECT_EQ(FoundInProgram("FOR i := 1 TO 9 DO IF ok THEN i := 0; BREAK; END_IF; END_FOR;"),
              "");
    EXPECT_EQ(FoundInProgram("FOR i := 1 TO 9 DO IF ok THEN\ni := 0; r := 1; END_IF; END_FOR;"),
              "3:1 loop-variable-changed");
    EXPECT_EQ(FoundInProgram("FOR i := 1 TO 9 DO IF ok THEN i := 0; GOTO out; END_IF; END_FOR;"
                             "out: r := 1;"),
              "");
}

TEST(LoopVariable, AnotherLoopIsLeft) {
    EXPECT_EQ(
        FoundInProgram("FOR i := 1 TO 9 DO WHILE ok DO\ni := 0; BREAK; END_WHILE; END_FOR;"),
        "3:1 loop-variable-changed");
    EXPECT_EQ(FoundInProgram("FOR i := 1 TO 9 DO IF ok THEN\ni := 0; GOTO next; END_IF; r := i;"
                             "next: x := r; END_FOR;"),
              "3:1 loop-variable-changed");
}

// ---------------------------------------------------------------------------------------------
// All rules
// ---------------------------------------------------------------------------------------------

TEST(FlowLints, ScriptsWithErrorsHaveNone) {
    const Source source(
        QStringLiteral("test"),
        QStringLiteral("FUNCTION F : INT RESULT := 1; EXIT; RESULT := 2; END_FUNCTION "
                       "PROGRAM P VAR x : INT; END_VAR x := 1; x := TRUE;"));
    EXPECT_TRUE(FlowLints(source, *CompileAndWait(source).facts).empty());
}

// Where a label of another unit is jumped to, or two labels have one name, the ways are not
// known.
TEST(FlowLints, UncertainJumps) {
    EXPECT_EQ(
        Found(QStringLiteral(
            "FUNCTION_BLOCK B VAR_ARG a : INT; END_VAR EXIT; in: a := 1; END_FUNCTION_BLOCK "
            "FUNCTION_BLOCK C VAR_ARG a : INT; END_VAR\n"
            "yxSetGV(1, a); EXIT; a := 1; END_FUNCTION_BLOCK "
            "PROGRAM P VAR END_VAR B(1); C(1); GOTO in; B(2); END_PROGRAM")),
        "2:22 unreachable-code");
    EXPECT_EQ(
        Found(QStringLiteral("PROGRAM P VAR x : INT := 0; END_VAR "
                             "IF x = 1 THEN EXIT; x := 2; END_IF; L2: x := 3; END_PROGRAM")),
        "");
}

TEST(FlowLints, NamesOfTheCode) {
    EXPECT_EQ(Found(QStringLiteral(
                  "FUNCTION BODY : INT VAR_ARG BODY1 : INT; END_VAR RESULT := BODY1; EXIT;\n"
                  "RESULT := 1; END_FUNCTION PROGRAM MAIN VAR n : INT := 0; END_VAR "
                  "n := BODY(n); n := n + 1; EXIT;\nn := 2; END_PROGRAM")),
              "2:1 unreachable-code, 3:1 unreachable-code");
}

// The helps of a script, each with the place of its own if it has one.
std::string HelpsOf(const QString& text) {
    const Source source(QStringLiteral("test"), text);
    QStringList helps;
    for (const Diagnostic& diagnostic : FlowLints(source, *CompileAndWait(source).facts)) {
        for (const Help& help : diagnostic.helps) {
            const QString mark = source.text(help.span).toString();
            helps.append(help.text + (mark.isEmpty() ? mark : QStringLiteral(": ") + mark));
        }
    }
    return helps.join(QLatin1Char('\n')).toStdString();
}

TEST(FlowLints, Helps) {
    EXPECT_EQ(HelpsOf(QStringLiteral(
                  "FUNCTION F : INT VAR_ARG a : INT; END_VAR VAR x : INT; i : INT; END_VAR "
                  "IF a > 1 THEN x := 1; END_IF; yxSetGV(1, x); x := a; X := 2; yxSetGV(1, x);"
                  "FOR i := 1 TO 9 DO i := a; RESULT := 1; END_FOR; IF a > 2 THEN RESULT := 2; "
                  "END_IF; END_FUNCTION "
                  "FUNCTION G : INT VAR_ARG a : INT; END_VAR IF a > 1 THEN RESULT := 1; END_IF; "
                  "END_FUNCTION PROGRAM P VAR n : INT := 0; END_VAR n := F(n) + G(n); "
                  "END_PROGRAM")),
              "set it on every way, or give it an initial value\n"
              "the next value is set here: X\n"
              "`BREAK` leaves a loop; to count in another way write a `WHILE`\n"
              "set `RESULT` before the first condition");
}

// Groups of variables are looked at one after the other.
TEST(FlowLints, ManyVariables) {
    QString declarations;
    QString statements;
    QString reads;
    for (int i = 0; i < 200; ++i) {
        declarations += QStringLiteral("x%1 : INT;").arg(i);
        const char* const rest = i % 7 == 0 ? "ELSE x%1 := 2; END_IF;" : "END_IF;";
        statements += QStringLiteral("IF a > %1 THEN x%1 := 1;").arg(i);
        statements += QString::fromLatin1(rest).replace(QStringLiteral("%1"), QString::number(i));
        reads += QStringLiteral("\nyxSetGV(1, x%1);").arg(i);
    }
    const std::string found =
        Found(QStringLiteral("FUNCTION_BLOCK B VAR_ARG a : INT; END_VAR VAR %1 END_VAR %2%3"
                             "END_FUNCTION_BLOCK PROGRAM P VAR END_VAR B(1); END_PROGRAM")
                  .arg(declarations, statements, reads));
    EXPECT_EQ(QString::fromStdString(found).count(QStringLiteral(":12 unset-read")), 171);
}

}  // namespace
