// Tables of tests: what is read of them, and what is refused.

#include "machine/test_plan.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <limits>
#include <stdexcept>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// PROGRAM P with a variable of some types, and an object of the engine.
Code CodeOfProgram() {
    CodeResult read = ReadCode(
        "PROG: P VAR: flag VI BOOL 0 count VI INT 0 level VI REAL 0 total VO UDINT 0 "
        "g YVG INT 7 MAIN: RET ");
    EXPECT_FALSE(read.fault) << read.fault->message.toStdString();
    return std::move(read.code);
}

std::string TextOf(const std::optional<CsvFault>& fault) {
    return fault ? PlaceName(fault->place).toStdString() + ": " + fault->message.toStdString()
                 : std::string();
}

struct Read {
    TestText text;
    TestPlan plan;
    std::string fault;
};

Read ReadTable(const QByteArray& table) {
    Read read;
    read.text = ReadTestText(table);
    read.fault = TextOf(read.text.fault);
    Code code = CodeOfProgram();
    if (read.fault.empty()) {
        read.fault = TextOf(DeclareObjects(read.text.preamble, code.units.back()));
    }
    if (read.fault.empty()) {
        read.plan = PlanTests(read.text, code.program());
        read.fault = TextOf(read.plan.fault);
    }
    return read;
}

// A table with one case of one row below those columns.
QByteArray Row(const char* columns, const char* cells, const char* separator = ",") {
    QByteArray table =
        QByteArray("script, p.st\ncase, one\ncycles, ") + columns + "\n1, " + cells + "\n";
    return table.replace(',', separator);
}

// The only row of a table that is fine.
PlannedRow RowOf(const QByteArray& table) {
    Read read = ReadTable(table);
    EXPECT_EQ(read.fault, "") << table.toStdString();
    if (read.plan.cases.empty()) {
        throw std::runtime_error("no case: " + table.toStdString());
    }
    return read.plan.cases.front().rows.front();
}

// ---------------------------------------------------------------------------------------------
// What is above the cases
// ---------------------------------------------------------------------------------------------

const char PREAMBLE[] = R"(# A comment, with "quotes
SCRIPT, pump.st  # at the end of a line
tick, 50
engine, plant.txt
engine, overflow = saturate
check, real-to-int, stop
global, meter, DINT, 51
register, counter, uint, 1, 0, 201, 0

case, "start, then stop"
cycles, count, meter, counter?
1, 2, 3, 4
)";

TEST(TestTable, LinesAboveTheCases) {
    const Read read = ReadTable(PREAMBLE);
    const TestPreamble& preamble = read.text.preamble;
    EXPECT_EQ(read.fault, "");
    EXPECT_EQ(preamble.script, "pump.st");
    EXPECT_EQ(preamble.tickStep, 50U);
    EXPECT_EQ(preamble.engineFile, "plant.txt");
    EXPECT_THAT(preamble.choices, ElementsAre(QStringLiteral("overflow = saturate")));
    EXPECT_EQ(preamble.checks.actionOf(Check::RealToInt), Action::Stop);
    EXPECT_EQ(read.plan.cases.front().name, "start, then stop");
}

TEST(TestTable, ObjectsOfTheEngineAreVariables) {
    Code code = CodeOfProgram();
    const auto before = code.program().declarations.size();
    const TestText text = ReadTestText(PREAMBLE);
    EXPECT_FALSE(DeclareObjects(text.preamble, code.units.back()));
    const std::vector<Declaration>& all = code.program().declarations;
    ASSERT_EQ(all.size(), before + 2);
    EXPECT_EQ(all[before].type, TYP_DINT);
    EXPECT_EQ(all[before].section, Section::EngineGlobal);
    EXPECT_EQ(all[before].numbers.front().whole, 51);
    EXPECT_EQ(all[before + 1].section, Section::EngineRegister);
    EXPECT_EQ(all[before + 1].numbers[2].whole, 201);
}

TEST(TestTable, WithoutLinesTheDefaultsHold) {
    const Read read = ReadTable("case, one\ncycles, count?\n1, 0\n");
    EXPECT_EQ(read.fault, "");
    EXPECT_EQ(read.text.preamble.script, "");
    EXPECT_EQ(read.text.preamble.tickStep, 100U);
}

// ---------------------------------------------------------------------------------------------
// Rows
// ---------------------------------------------------------------------------------------------

TEST(TestTable, CyclesOfARow) {
    const PlannedRow fixed = RowOf("case, one\ncycles, count?\n50, 0\n");
    EXPECT_EQ(fixed.cycles, 50);
    EXPECT_FALSE(fixed.isAtMost);
    EXPECT_EQ(fixed.line, 3);
    const PlannedRow most = RowOf("case, one\ncycles, count?\n<= 5, 0\n");
    EXPECT_EQ(most.cycles, 5);
    EXPECT_TRUE(most.isAtMost);
}

TEST(TestTable, ColumnsSayWhatTheirCellsDo) {
    const PlannedRow row =
        RowOf(Row("count, force flag, total?, level!, TICK", "1, TRUE, 2, 3.0, 9"));
    ASSERT_EQ(row.settings.size(), 3U);
    EXPECT_EQ(row.settings[0].use, ColumnUse::Set);
    EXPECT_EQ(row.settings[1].use, ColumnUse::Force);
    EXPECT_FALSE(row.settings[1].isRelease);
    EXPECT_EQ(row.settings[2].setting.variable, TICK_VARIABLE);
    EXPECT_EQ(row.settings[2].setting.value.whole, 9);
    ASSERT_EQ(row.questions.size(), 2U);
    EXPECT_EQ(row.questions[0].use, ColumnUse::AskAtEnd);
    EXPECT_EQ(row.questions[1].use, ColumnUse::AskEachCycle);
    EXPECT_EQ(row.questions[1].column, "level!");
}

TEST(TestTable, AMinusReleases) {
    EXPECT_TRUE(RowOf(Row("force flag", "-")).settings.front().isRelease);
    EXPECT_EQ(RowOf(Row("force count", "-1")).settings.front().setting.value.whole, -1);
}

TEST(TestTable, EmptyCellsDoNothing) {
    const PlannedRow row = RowOf(Row("count, flag, total?, level?", ", 1, , "));
    EXPECT_EQ(row.settings.size(), 1U);
    EXPECT_THAT(row.questions, IsEmpty());
    EXPECT_EQ(row.variables.size(), 4U);
}

TEST(TestTable, ColumnsHoldForTheCasesBelow) {
    const Read read =
        ReadTable("case, one\ncycles, count?\n1, 0\ncase, two\n1, 5\ncycles, flag?\n2, TRUE\n");
    EXPECT_EQ(read.fault, "");
    ASSERT_EQ(read.plan.cases.size(), 2U);
    const std::vector<PlannedRow>& rows = read.plan.cases[1].rows;
    EXPECT_EQ(rows[0].questions.front().column, "count?");
    EXPECT_EQ(rows[1].questions.front().column, "flag?");
}

// ---------------------------------------------------------------------------------------------
// Cells
// ---------------------------------------------------------------------------------------------

struct Expected {
    const char* column;
    const char* cell;
    std::vector<double> holding;
    std::vector<double> failing;
};

Value ValueOf(Typ type, double number) {
    return type < TYP_REAL    ? WholeValue(type, static_cast<qint64>(number))
           : type == TYP_REAL ? RealValue(type, static_cast<double>(static_cast<float>(number)))
                              : RealValue(type, number);
}

bool HoldsFor(const TestQuestion& question, double number) {
    const std::vector<Condition>& conditions = question.conditions;
    return std::all_of(conditions.begin(), conditions.end(), [number](const Condition& each) {
        return Holds(each, ValueOf(each.setting.value.type, number));
    });
}

TEST(TestTable, FormsOfWhatIsExpected) {
    const std::vector<Expected> all = {
        {"count", "5", {5}, {4, 6, -5}},
        {"count", "-5", {-5}, {5, -4}},
        {"count", "16#FF", {255}, {16}},
        {"count", "1..5", {1, 3, 5}, {0, 6}},
        {"count", "-5..-1", {-5, -1}, {-6, 0}},
        {"count", ">5", {6}, {5}},
        {"count", ">=5", {5, 6}, {4}},
        {"count", "<5", {4}, {5}},
        {"count", "<= 5", {4, 5}, {6}},
        {"count", "<>0", {1, -1}, {0}},
        {"count", "100~2", {98, 102}, {97, 103}},
        {"level", "3", {3.0}, {3.1}},
        {"level", "0.1", {0.1}, {0.11}},
        {"level", "3.0~0.05", {2.96, 3.04}, {2.94, 3.06}},
        {"level", "1.1~0.1", {1.0, 1.2}, {0.9999, 1.2001}},
        {"level", ">2.5", {2.6}, {2.5}},
        {"level", "-1.5..2.5", {-1.5, 0, 2.5}, {-1.6, 2.6}},
        {"level", "1e3", {1000}, {1}},
        {"flag", "TRUE", {1}, {0}},
        {"flag", "false", {0}, {1}},
        {"flag", "1", {1}, {0}},
        {"flag", "<>0", {1}, {0}},
    };
    for (const Expected& each : all) {
        SCOPED_TRACE(each.cell);
        const QByteArray column = QByteArray(each.column) + "?";
        const TestQuestion question = RowOf(Row(column, each.cell)).questions.front();
        for (const double number : each.holding) {
            EXPECT_TRUE(HoldsFor(question, number)) << number;
        }
        for (const double number : each.failing) {
            EXPECT_FALSE(HoldsFor(question, number)) << number;
        }
    }
}

TEST(TestTable, NoNumberIsNothingButDifferent) {
    const double noNumber = std::numeric_limits<double>::quiet_NaN();
    for (const char* const cell : {"0", "0.0~1e30", "<5", ">5", "-1e30..1e30"}) {
        EXPECT_FALSE(HoldsFor(RowOf(Row("level?", cell)).questions.front(), noNumber)) << cell;
    }
    EXPECT_TRUE(HoldsFor(RowOf(Row("level?", "<>0")).questions.front(), noNumber));
}

TEST(TestTable, SpreadsheetsWriteTablesInManyWays) {
    const std::vector<QByteArray> tables = {
        "case, one\ncycles, level, count?\n2, 1.5, 3\n",
        "\xEF\xBB\xBF" + QByteArray("case,one\r\ncycles,level,count?\r\n2,1.5,3\r\n"),
        "case;one;;\ncycles;level;count?;\n2;1,5;3;\n",
        "case,one,,,\n,,,,\ncycles,level,count?,,\n2,1.5,3,,\n,,,,\n",
        "\"case\",\"one\"\n\"cycles\",\"level\",\"count?\"\n\"2\",\"1.5\",\"3\"",
        "\n# Ein Satz;\n\ncase;one\ncycles;level;count?\n2;1,5;3 # drei\n",
        "case, one\nCYCLES, Level, COUNT ?\n 2 ,\t1.5 , 3\n",
    };
    for (const QByteArray& table : tables) {
        SCOPED_TRACE(table.toStdString());
        const PlannedRow row = RowOf(table);
        EXPECT_EQ(row.cycles, 2);
        ASSERT_EQ(row.settings.size(), 1U);
        EXPECT_EQ(row.settings.front().setting.value.real, 1.5);
        ASSERT_EQ(row.questions.size(), 1U);
        EXPECT_EQ(row.questions.front().expected, "3");
    }
}

TEST(TestTable, DecimalCommasStandInAllForms) {
    for (const char* const cell : {"2,5", "<3,5", "1,5..3,5", "2,4~0,1"}) {
        const QByteArray table = QByteArray("case;one\ncycles;level?\n1;") + cell + "\n";
        EXPECT_TRUE(HoldsFor(RowOf(table).questions.front(), 2.5)) << cell;
    }
}

// ---------------------------------------------------------------------------------------------
// What is refused
// ---------------------------------------------------------------------------------------------

struct Refused {
    QByteArray table;
    const char* fault;
};

QByteArray Below(const char* line) {
    return QByteArray(line) + "\ncase, one\ncycles, count?\n1, 0\n";
}

void ExpectRefused(const std::vector<Refused>& all) {
    for (const Refused& each : all) {
        EXPECT_EQ(ReadTable(each.table).fault, each.fault) << each.table.toStdString();
    }
}

TEST(TestTable, WrongLinesAreRefused) {
    ExpectRefused({
        {"", "line 1, column 1: the table has no line \"case, NAME\""},
        {"script, p.st\n", "line 1, column 1: the table has no line \"case, NAME\""},
        {Below("scrpt, p.st"),
         "line 1, column 1: a line begins with script, tick, engine, check, global, register, "
         "case or cycles, not with \"scrpt\"; near it: script"},
        {Below("script"), "line 1, column 1: the line has the form \"script, FILE\""},
        {Below("script, a.st, b.st"), "line 1, column 1: the line has the form \"script, FILE\""},
        {Below("check, , note"),
         "line 1, column 1: the line has the form \"check, NAME, ACTION\""},
        {Below("script, a.st\nscript, b.st"),
         "line 2, column 1: the table has a line \"script\" already"},
        {Below("tick, -1"),
         "line 1, column 7: a whole number of ticks from 0 to 4294967295 is expected, not "
         "\"-1\""},
        {Below("tick, soon"),
         "line 1, column 7: a whole number of ticks from 0 to 4294967295 is expected, not "
         "\"soon\""},
        {Below("engine, overflow = soft"),
         "line 1, column 9: overflow is wrap, saturate or stop, not \"soft\""},
        {Below("engine, speed = 1"), "line 1, column 9: no choice has the key \"speed\""},
        {Below("check, real, note"), "line 1, column 8: no check has the name \"real\""},
        {Below("check, real-to-int, bark"),
         "line 1, column 8: a check is off, note or stop, not \"bark\""},
        {Below("global, 5x, INT, 3"), "line 1, column 9: a name is expected, not \"5x\""},
        {Below("global, x, WORD, 3"),
         "line 1, column 12: a type is expected, such as INT or REAL, not \"WORD\""},
        {Below("global, x, STRING, 3"),
         "line 1, column 12: a type is expected, such as INT or REAL, not \"STRING\""},
        {Below("global, x, INT, -3"),
         "line 1, column 17: the number of an object of the engine is expected, not \"-3\""},
        {Below("global, x, INT"),
         "line 1, column 1: the line has the form \"global, NAME, TYPE, NUMBER\""},
        {Below("global, Count, INT, 3"),
         "line 1, column 9: the program has a variable \"Count\" already"},
        {Below("global, x, INT, 7"), "line 1, column 9: this object has the name \"g\" already"},
        {Below("global, x, INT, 8\nglobal, y, INT, 8"),
         "line 2, column 9: this object has the name \"x\" already"},
        {"case, one\ncycles, count?\n1, 0\ntick, 5\n",
         "line 4, column 1: a line \"tick\" stands above the first case"},
    });
}

TEST(TestTable, WrongCasesAreRefused) {
    ExpectRefused({
        {"case, one\n", "line 1, column 1: the case has no rows"},
        {"case, one\ncase, two\ncycles, count?\n1, 0\n",
         "line 1, column 1: the case has no rows"},
        {"case, start, then stop\ncycles, count?\n1, 0\n",
         "line 1, column 1: the line has the form \"case, NAME\""},
        {"cycles, count?\ncase, one\n1, 0\n",
         "line 1, column 1: a line \"case, NAME\" stands above the columns"},
        {"case, one\n1, 0\n",
         "line 2, column 1: a line \"cycles, NAME, ...\" with the names of the columns stands "
         "above the rows"},
        {"case, one\ncycles, count?\n-1, 0\n",
         "line 3, column 1: a line begins with \"case\", \"cycles\", or a number of cycles such "
         "as 5 or <=5, not with \"-1\""},
        {"case, one\ncycles, count?\n, 0\n",
         "line 3, column 1: a line begins with \"case\", \"cycles\", or a number of cycles such "
         "as 5 or <=5, not with \"\""},
        {"case, one\ncycles, count?\n0, 0\n",
         "line 3, column 1: a number of cycles from 1 to 2147483647 is expected, or the most "
         "as <=5, not \"0\""},
        {"case, one\ncycles, count?\n<5, 0\n",
         "line 3, column 1: a number of cycles from 1 to 2147483647 is expected, or the most "
         "as <=5, not \"<5\""},
        {"case, one\ncycles, count?\n99999999999, 0\n",
         "line 3, column 1: a number of cycles from 1 to 2147483647 is expected, or the most "
         "as <=5, not \"99999999999\""},
        {"case, one\ncycles, count?, flag\n<=5, , 1\n",
         "line 3, column 1: a row with <=5 waits for what its cells of columns with ? say, and "
         "has none"},
        {"case, one\ncycles, count!\n<=5, 1\n",
         "line 3, column 1: a row with <=5 waits for what its cells of columns with ? say, and "
         "has none"},
        {"case, \"one\ncycles, count?\n1, 0\n",
         "line 1, column 7: the quotes that open here do not close"},
    });
}

TEST(TestTable, WrongColumnsAreRefused) {
    ExpectRefused({
        {Row("cuont?", "0"),
         "line 3, column 9: the program has no variable \"cuont\"; near it: count"},
        {Row("zzzzzz?", "0"), "line 3, column 9: the program has no variable \"zzzzzz\""},
        {Row("count?, Count?", "0"), "line 3, column 17: the columns have this one already"},
        {Row("count, force count", "0"), ""},
        {Row("a b", "0"),
         "line 3, column 9: a column is called \"name\", \"name?\", \"name!\" or \"force name\", "
         "not \"a b\""},
        {Row("count?, , flag", "0"),
         "line 3, column 17: a column is called \"name\", \"name?\", \"name!\" or "
         "\"force name\", not \"\""},
        {Row("force TICK", "0"), "line 3, column 9: TICK can be set, not forced"},
    });
}

TEST(TestTable, WrongCellsAreRefused) {
    ExpectRefused({
        {Row("count", "=1+1"),
         "line 4, column 4: a cell that begins with = is a formula for a spreadsheet; write the "
         "value alone"},
        {Row("count", "0, 1"), "line 4, column 7: there is no column for this cell"},
        {Row("count", "1.5"),
         "line 4, column 4: count is INT, so it takes a whole number from -32768 to 32767, not "
         "\"1.5\""},
        {Row("count?", "<40000"),
         "line 4, column 4: count is INT, so it takes a whole number from -32768 to 32767, not "
         "\"40000\""},
        {Row("count?", "5.."),
         "line 4, column 4: count is INT, so it takes a whole number from -32768 to 32767, not "
         "\"5..\""},
        {Row("count?", "5..1"),
         "line 4, column 4: the first number of a range is the smaller one"},
        {Row("count", "-"),
         "line 4, column 4: count is INT, so it takes a whole number from -32768 to 32767, not "
         "\"-\""},
        {Row("level?", "3.0~-1"),
         "line 4, column 4: the tolerance after ~ is a number from 0 on, not \"-1\""},
        {Row("count?", "3~0.5"),
         "line 4, column 4: the tolerance after ~ is a whole number from 0 on, not \"0.5\""},
        {Row("level", "1,5"), "line 4, column 6: there is no column for this cell"},
        {Row("flag?", "YES"),
         "line 4, column 4: flag is BOOL, so it takes TRUE or FALSE, not \"YES\""},
        {Row("TICK", "-1"),
         "line 4, column 4: TICK is UDINT, so it takes a whole number from 0 to 4294967295, not "
         "\"-1\""},
    });
}

}  // namespace
