// Names and values that users give, and tables of inputs.

#include "machine/inputs.h"
#include "machine/load.h"

#include <gtest/gtest.h>

#include <cmath>
#include <iterator>

namespace {

const QByteArray CODE =
    "PROG: P VAR: level VI REAL 0 start VI BOOL 0 total V UINT 0 lamp VO BOOL 0 MAIN: "
    "MOV @total #A0 MOV #A0 $PUSH MOV 1 #A0 ADD $POP #A0 MOV #A0 @total "
    "MOV 7.0 #A0 MOV #A0 @level RET ";

class InputsTest : public testing::Test {
protected:
    Code code = ReadCode(CODE).code;
    const CodeUnit& program = code.program();

    std::string faultOf(const QByteArray& table) const {
        return ReadInputs(table, program).fault.toStdString();
    }
    std::string settingFault(const char* text) const {
        Setting setting;
        return ReadSetting(program, text, setting).toStdString();
    }
    bool holds(const char* text, const Value& value) const {
        Condition condition;
        EXPECT_EQ(ReadCondition(program, text, condition), QString());
        return Holds(condition, value);
    }
};

TEST_F(InputsTest, SettingsHaveAVariableAndAValue) {
    Setting setting;
    EXPECT_EQ(ReadSetting(program, "TOTAL = 16#FF", setting), QString());
    EXPECT_EQ(setting.variable, 2);
    EXPECT_EQ(setting.value.whole, 255);
    EXPECT_EQ(ReadSetting(program, "level=-1e-3", setting), QString());
    EXPECT_FLOAT_EQ(static_cast<float>(setting.value.real), -0.001F);
}

TEST_F(InputsTest, WrongSettingsAreRefused) {
    EXPECT_EQ(settingFault("levle=1"), "the program has no variable \"levle\"; near it: level");
    EXPECT_EQ(settingFault("quite_other=1"), "the program has no variable \"quite_other\"");
    EXPECT_EQ(settingFault("total"), "NAME=VALUE is expected, not \"total\"");
    EXPECT_EQ(settingFault("total=65536"),
              "total is UINT, so it takes a whole number from 0 to 65535, not \"65536\"");
    EXPECT_EQ(settingFault("total=1.5"),
              "total is UINT, so it takes a whole number from 0 to 65535, not \"1.5\"");
    EXPECT_EQ(settingFault("start=2"), "start is BOOL, so it takes TRUE or FALSE, not \"2\"");
    for (const char* const text :
         {"level=1,5", "level=inf", "level=nan", "level='A'", "level="}) {
        EXPECT_NE(settingFault(text), "") << text;
    }
}

TEST_F(InputsTest, ConditionsCompare) {
    const Value five = WholeValue(TYP_UINT, 5);
    EXPECT_TRUE(holds("total=5", five));
    EXPECT_FALSE(holds("total<>5", five));
    EXPECT_TRUE(holds("total>=5", five));
    EXPECT_TRUE(holds("total <= 5", five));
    EXPECT_FALSE(holds("total<5", five));
    EXPECT_TRUE(holds("total>4", five));
    EXPECT_TRUE(holds("level<0.5", RealValue(TYP_REAL, 0.25)));
    EXPECT_FALSE(holds("level=0.5", RealValue(TYP_REAL, std::nan(""))));
    EXPECT_TRUE(holds("level<>0.5", RealValue(TYP_REAL, std::nan(""))));
}

TEST_F(InputsTest, TablesAreRead) {
    const InputsResult result = ReadInputs("Cycles,START,level\n5,1,\n10,,2.5\n", program);
    EXPECT_EQ(result.fault, QString());
    ASSERT_EQ(result.inputs.rows.size(), 2U);
    EXPECT_EQ(result.inputs.cycles(), 15);
    EXPECT_EQ(result.inputs.rows[0].settings.size(), 1U);
    EXPECT_EQ(result.inputs.rows[1].settings[0].value.real, 2.5);
}

TEST_F(InputsTest, SemicolonsAllowDecimalCommas) {
    const InputsResult result = ReadInputs("cycles;level\n1;2,5\n1;3.5\n", program);
    EXPECT_EQ(result.fault, QString());
    EXPECT_EQ(result.inputs.rows[0].settings[0].value.real, 2.5);
    EXPECT_EQ(result.inputs.rows[1].settings[0].value.real, 3.5);
}

TEST_F(InputsTest, WrongTablesAreRefusedWithThePlace) {
    EXPECT_EQ(faultOf(""),
              "line 1, column 1: the table has no row with the names of its columns");
    EXPECT_EQ(faultOf("level\n1\n"),
              "line 1, column 1: the first column is \"cycles\", not \"level\"");
    EXPECT_EQ(faultOf("cycles,levle\n"),
              "line 1, column 8: the program has no variable \"levle\"; near it: level");
    EXPECT_EQ(faultOf("cycles,level,LEVEL\n"),
              "line 1, column 14: \"LEVEL\" has a column already");
    EXPECT_EQ(faultOf("cycles,level\n1,2\n0,2\n"),
              "line 3, column 1: a number of cycles from 1 to 2147483647 is expected, not \"0\"");
    EXPECT_EQ(faultOf("cycles,start\n1, yes\n"),
              "line 2, column 4: start is BOOL, so it takes TRUE or FALSE, not \"yes\"");
    EXPECT_EQ(faultOf("cycles,start\n1,1,1\n"),
              "line 2, column 5: the row has more cells than there are columns");
    EXPECT_EQ(faultOf("cycles,start\n1,\"1\n"),
              "line 2, column 3: the quotes that open here do not close");
}

// The program stores 7.0 in its input, and counts in a variable of its own.
TEST_F(InputsTest, InputsAreHeldOtherVariablesAreSetOnce) {
    const Inputs inputs =
        ReadInputs("cycles,level,total\n2,1.5,10\n1,,\n1,2.5,\n", program).inputs;
    Machine machine(code, Profile(), Checks());
    InputFeed feed(inputs, program);
    const double levels[] = {1.5, 1.5, 1.5, 2.5, 2.5};
    const int totals[] = {11, 12, 13, 14, 15};
    const std::size_t given[] = {2, 0, 0, 1, 0};
    for (std::size_t cycle = 0; cycle < std::size(levels); ++cycle) {
        EXPECT_EQ(feed.feed(machine).size(), given[cycle]) << cycle;
        EXPECT_EQ(machine.value(0).real, levels[cycle]) << cycle;
        machine.cycle();
        EXPECT_EQ(machine.value(2).whole, totals[cycle]) << cycle;
    }
}

TEST(Load, TargetCodeIsKnownByItsBegin) {
    for (const char* const code :
         {"PROG: P VAR: MAIN: RET ", "PROG:\nP\n", "0001\tPROG:\n",
          ";Line 1: \"PROGRAM P\"\n;x\n0001\tAdd:\n", "Add: BODY: RET "}) {
        EXPECT_TRUE(IsTargetCode(QString::fromUtf8(code))) << code;
    }
    for (const char* const script :
         {"", "PROGRAM P\nEND_PROGRAM", "(* A: *) PROGRAM", "// PROG:\n", ": P", "\n; x"}) {
        EXPECT_FALSE(IsTargetCode(QString::fromUtf8(script))) << script;
    }
}

}  // namespace
