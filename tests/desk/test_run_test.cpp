// Cases of tests as they are executed: what is put in, what is asked and when, how they fail.

#include "machine/test_run.h"
#include "machine/coverage.h"
#include "machine/test_skeleton.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <stdexcept>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// Counts its cycles, and adds what comes in.
const char COUNTER[] = R"(PROGRAM Counter
VAR_INPUT
    step : INT;
END_VAR
VAR
    count : INT := 0;
    sum : INT := 0;
    rest : INT := 0;
END_VAR
    count := count + 1;
    sum := sum + step;
    IF count = 5 THEN
        rest := 10 / (sum - 8);
    END_IF;
    IF sum > 100 THEN
        TICK := 7;
    END_IF;
END_PROGRAM
)";

Loaded LoadText(const char* script) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("p.st"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(script) < 0) {
        throw std::runtime_error("not written: " + path.toStdString());
    }
    file.close();
    return Load(path);
}

// What comes of the first case of a table.
CaseResult ResultOf(const QByteArray& table, TestSubject subject) {
    const TestText text = ReadTestText(table);
    subject.checks = text.preamble.checks;
    subject.tickStep = text.preamble.tickStep;
    const TestPlan plan = PlanTests(text, subject.code.program());
    if (text.fault || plan.fault) {
        throw std::runtime_error((text.fault ? text.fault : plan.fault)->message.toStdString());
    }
    return RunCase(subject, plan.cases.front());
}

CaseResult ResultOf(const QByteArray& rows) {
    TestSubject subject;
    subject.code = LoadText(COUNTER).code;
    return ResultOf("case, one\n" + rows, subject);
}

// "step? 3/4 at line 5" for what was got and expected, "" for a case that has passed.
std::string Failed(const CaseResult& result) {
    if (!result.failure) {
        return {};
    }
    QString text;
    for (const CellFailure& cell : result.failure->cells) {
        text += cell.column + u' ' + cell.got + u'/' + cell.expected + u' ';
    }
    if (result.failure->stop) {
        text += NameOf(result.failure->stop->check) + u' ';
    }
    return (text + QStringLiteral("line %1 cycle %2")
                       .arg(result.failure->line)
                       .arg(result.failure->cycle))
        .toStdString();
}

std::string FailedRows(const QByteArray& rows) {
    return Failed(ResultOf(rows));
}

// ---------------------------------------------------------------------------------------------
// What is put in and asked
// ---------------------------------------------------------------------------------------------

TEST(TestRun, WhatIsPutInStaysUntilItIsSetAgain) {
    EXPECT_EQ(FailedRows("cycles, step, sum?\n1, 2, 2\n2, , 6\n1, 1, 7\n"), "");
}

TEST(TestRun, InputsComeInBeforeEachCycle) {
    TestSubject subject;
    subject.code = LoadText(
                       "PROGRAM P\nVAR_INPUT\n a : INT;\nEND_VAR\nVAR\n b : INT := 0;\n"
                       "END_VAR\n b := b + a;\n a := 0;\nEND_PROGRAM\n")
                       .code;
    EXPECT_EQ(Failed(ResultOf("case, one\ncycles, a, b?\n2, 3, 6\n2, , 12\n", subject)), "");
    EXPECT_EQ(Failed(ResultOf("case, one\ncycles, b, b?\n2, 3, 3\n", subject)), "");
}

TEST(TestRun, AskedAfterTheLastCycle) {
    EXPECT_EQ(FailedRows("cycles, count?\n3, 3\n1, 4\n"), "");
    EXPECT_EQ(FailedRows("cycles, count?\n3, 2\n"), "count? 3/2 line 3 cycle 3");
}

TEST(TestRun, AskedInEachCycle) {
    EXPECT_EQ(FailedRows("cycles, count!\n3, 1..3\n"), "");
    EXPECT_EQ(FailedRows("cycles, count!\n4, 1..2\n"), "count! 3/1..2 line 3 cycle 3");
}

TEST(TestRun, AllThatFailsInACycleIsTold) {
    EXPECT_EQ(FailedRows("cycles, count?, sum?, rest?\n2, 9, 0, 9\n1, 9, 9, 9\n"),
              "count? 2/9 rest? 0/9 line 3 cycle 2");
}

TEST(TestRun, ARowWithALimitEndsAsSoonAsAllHolds) {
    const CaseResult result = ResultOf("cycles, count?, sum?\n<=9, >=2, 0\n1, 3, 0\n");
    EXPECT_EQ(Failed(result), "");
    EXPECT_EQ(result.cycles, 3);
    EXPECT_EQ(FailedRows("cycles, count?\n<=3, 4\n"), "count? 3/4 line 3 cycle 3");
    EXPECT_EQ(FailedRows("cycles, count?, sum!\n<=3, 4, 1\n"), "sum! 0/1 line 3 cycle 1");
}

TEST(TestRun, WhatIsForcedIsHeldUntilItIsReleased) {
    EXPECT_EQ(FailedRows("cycles, force count, count!\n3, 20, 20\n1, , 20\n"), "");
    EXPECT_EQ(FailedRows("cycles, force count, count?\n3, 2, 2\n1, -, 3\n"), "");
}

TEST(TestRun, OutputsCanBeSet) {
    EXPECT_EQ(FailedRows("cycles, count, count?\n1, 30, 31\n2, , 33\n"), "");
}

TEST(TestRun, TickIsWhatTheScriptHasSet) {
    EXPECT_EQ(FailedRows("cycles, step, TICK?\n1, 0, 7\n"), "TICK? nothing/7 line 3 cycle 1");
    EXPECT_EQ(FailedRows("cycles, step, TICK?\n1, 101, 7\n"), "");
}

TEST(TestRun, WithTheChoiceCounterTickIsTheCounter) {
    TestSubject subject;
    subject.code = LoadText(COUNTER).code;
    subject.profile.tickWrite = TickWrite::Counter;
    EXPECT_EQ(Failed(ResultOf("tick, 10\ncase, one\ncycles, TICK, TICK?\n2, 5, 25\n", subject)),
              "");
}

TEST(TestRun, EachCaseBeginsAnew) {
    TestSubject subject;
    subject.code = LoadText(COUNTER).code;
    const TestPlan plan =
        PlanTests(ReadTestText("case, one\ncycles, count?\n4, 4\ncase, two\n1, 1\n"),
                  subject.code.program());
    EXPECT_EQ(Failed(RunCase(subject, plan.cases[0])), "");
    EXPECT_EQ(Failed(RunCase(subject, plan.cases[1])), "");
}

// ---------------------------------------------------------------------------------------------
// How a case ends
// ---------------------------------------------------------------------------------------------

TEST(TestRun, ACheckThatStopsTheRunFailsTheCase) {
    EXPECT_EQ(FailedRows("cycles, step, count?\n3, 0, 3\n5, 2, 8\n1, , 9\n"), "");
    const CaseResult result = ResultOf("cycles, step, count?\n4, 2, 4\n4, 0, 8\n");
    EXPECT_EQ(Failed(result), "division-by-zero line 4 cycle 5");
    EXPECT_EQ(result.cycles, 4);
}

TEST(TestRun, NotesOfTheChecksAreKept) {
    const CaseResult result = ResultOf("cycles, step\n2, 30000\n");
    EXPECT_EQ(Failed(result), "");
    ASSERT_EQ(result.notes.size(), 1U);
    EXPECT_EQ(result.notes.begin()->first.first, Check::StoreOverflow);
    EXPECT_EQ(result.notes.begin()->second, 1);
}

TEST(TestRun, TheLastCyclesShowWhatHasFailedAndWhatHasChanged) {
    const CaseResult result =
        ResultOf("cycles, step, rest?, sum?, count?\n6, 0, , , \n1, 3, , 4, 7\n");
    const LastCycles& last = result.failure->last;
    EXPECT_EQ(Failed(result), "sum? 3/4 line 4 cycle 7");
    EXPECT_EQ(last.names.join(u' ').toStdString(), "sum step rest count");
    EXPECT_THAT(last.cycles, ElementsAre(3, 4, 5, 6, 7));
    EXPECT_EQ(last.values.front().join(u' ').toStdString(), "0 0 0 3");
    EXPECT_EQ(last.values.back().join(u' ').toStdString(), "3 3 -1 7");
}

// ---------------------------------------------------------------------------------------------
// Coverage
// ---------------------------------------------------------------------------------------------

// "12: 1/2 x5": on line 12 one of two statements was executed, five times.
std::vector<std::string> LinesOf(const Coverage& coverage) {
    std::vector<std::string> lines;
    for (const LineCoverage& line : coverage.lines) {
        lines.push_back(QStringLiteral("%1: %2/%3 x%4")
                            .arg(line.line)
                            .arg(line.executed)
                            .arg(line.statements)
                            .arg(line.count)
                            .toStdString());
    }
    return lines;
}

Coverage CoverageOfRows(const char* script, const QByteArray& rows) {
    const Loaded loaded = LoadText(script);
    TestSubject subject;
    subject.code = loaded.code;
    subject.isCounting = true;
    const CaseResult result = ResultOf("case, one\n" + rows, subject);
    return CoverageOf(loaded.source, *loaded.facts, loaded.code, result.executions);
}

TEST(TestCoverage, StatementsAreCountedOnTheirLines) {
    const Coverage coverage = CoverageOfRows(COUNTER, "cycles, step\n6, 1\n");
    EXPECT_THAT(LinesOf(coverage), ElementsAre("10: 1/1 x6", "11: 1/1 x6", "12: 1/1 x6",
                                               "13: 1/1 x1", "15: 1/1 x6", "16: 0/1 x0"));
    EXPECT_EQ(coverage.statements(), 6);
    EXPECT_EQ(coverage.executed(), 5);
}

TEST(TestCoverage, HeadsOfBranchesCountAsStatements) {
    const char script[] = R"(PROGRAM P
VAR
    n : INT := 0;
    i : INT := 0;
END_VAR
    n := n + 1; IF n > 9 THEN n := 0; END_IF;
    IF n = 1 THEN
        i := 1;
    ELSIF n = 2 THEN
        i := 2;
    ELSE
        i := 3;
    END_IF;
    FOR i := 1 TO 3 DO
        IF i > 5 THEN
            BREAK;
        END_IF;
    END_FOR;
    CASE n OF
    1:  i := 4;
    8:  i := 5;
    ELSE
        i := 6;
    END_CASE;
    REPEAT
        i := i + 1;
    UNTIL
        i > 5
    END_REPEAT;
END_PROGRAM
)";
    EXPECT_THAT(
        LinesOf(CoverageOfRows(script, "cycles, n?\n1, 1\n")),
        ElementsAre("6: 2/3 x1", "7: 1/1 x1", "8: 1/1 x1", "9: 0/1 x0", "10: 0/1 x0",
                    "12: 0/1 x0", "14: 1/1 x1", "15: 1/1 x3", "16: 0/1 x0", "19: 1/1 x1",
                    "20: 2/2 x1", "21: 0/2 x0", "23: 0/1 x0", "26: 1/1 x2", "27: 1/1 x2"));
}

TEST(TestCoverage, WithoutItNothingIsCounted) {
    EXPECT_THAT(ResultOf("cycles, step\n6, 1\n").executions, IsEmpty());
}

// ---------------------------------------------------------------------------------------------
// A table to begin with
// ---------------------------------------------------------------------------------------------

TEST(TestSkeleton, HasInputsAndOutputsAndPasses) {
    const char script[] = R"(PROGRAM P
VAR_INPUT
    level : REAL;
END_VAR
VAR_OUTPUT
    full : BOOL := FALSE;
    ratio : LREAL := 0.0;
END_VAR
VAR_YXGLOBAL
    asked : INT (1);
    told : INT (2);
    unused : INT (3);
END_VAR
    full := level >= 0.0;
    ratio := level / 0.0;
    told := asked + 5;
END_PROGRAM
)";
    const Loaded loaded = LoadText(script);
    const QString table = SkeletonOf(loaded.code, QStringLiteral("a, b.st"));
    const QString rows = table.mid(table.indexOf(QStringLiteral("script,")));
    EXPECT_EQ(rows.toStdString(),
              "script, \"a, b.st\"\n"
              "tick, 100\n"
              "\n"
              "case, the first cycle\n"
              "cycles, level, asked, full?, ratio?, told?\n"
              "1,      0.0,   0,     TRUE,  ,       5\n");
    TestSubject subject;
    subject.code = loaded.code;
    EXPECT_EQ(Failed(ResultOf(table.toUtf8(), subject)), "");
}

}  // namespace
