// Elements of arrays as values and as targets. No declaration makes arrays yet: the variables
// are made by hand.

#include "qyx_arithmetic.h"
#include "qyx_il.h"
#include "qyx_lists.h"
#include "qyx_loops.h"
#include "support.h"

namespace {

class Arrays : public CompilerTest {
protected:
    Arrays() {
        addScalar(u"i", TYP_INT);
        addScalar(u"Index", TYP_DINT);
        addScalar(u"flag", TYP_BOOL);
        addScalar(u"r", TYP_REAL);
        addArray(u"a", TYP_INT, {10});
        addArray(u"bits", TYP_BOOL, {8});
        addArray(u"Таблица", TYP_REAL, {4, 5});
        addArray(u"cube", TYP_UDINT, {4, 5, 6});
    }

    VarItem& addScalar(QStringView name, Typ type) {
        VarItem item;
        item.spelling = &SpellingOf(name);
        item.type = type;
        item.isInitialized = true;
        return AddVarToVarsList(vars_, item);
    }

    VarItem& addArray(QStringView name, Typ elementType, const QVector<qint64>& sizes) {
        VarItem item;
        item.spelling = &SpellingOf(name);
        item.type = TYP_ARRAY;
        item.isArray = true;
        item.elementType = elementType;
        item.arrayDimensions = sizes.size();
        item.arraySize = 1;
        for (int i = 0; i < sizes.size(); ++i) {
            item.arrayBounds[i] = sizes[i];
            item.arraySize *= sizes[i];
        }
        return AddVarToVarsList(vars_, item);
    }

    VarItem& variable(QStringView name) { return IsVarInVarsList(vars_, SpellingOf(name)); }

    // Compiles the source as a value; the type of the value and its code, item by item.
    std::string value(const std::string& source) {
        start(source);
        const Typ type = compileValue();
        EXPECT_EQ(TokenChar, TOKEN_SEMICOLON);
        return NameOf(type) + '\n' + finish();
    }

    // Compiles the source as a statement; its code, item by item.
    std::string statement(const std::string& source) {
        start(source);
        compileStatement();
        EXPECT_EQ(TokenChar, TOKEN_SEMICOLON);
        return finish();
    }

    // The screen holds the code in front of the error.
    void expectValueFailure(const std::string& source, int column, const std::string& text) {
        SCOPED_TRACE(source);
        start(source);
        ExpectFailure([this] { compileValue(); }, testing::EndsWith(ErrorAt(1, column, text)));
    }

    void expectStatementFailure(const std::string& source, int column, const std::string& text) {
        SCOPED_TRACE(source);
        start(source);
        ExpectFailure([this] { compileStatement(); },
                      testing::EndsWith(ErrorAt(1, column, text)));
    }

    void start(const std::string& source) const {
        ResetCompiler();
        openSource(source);
        openOutput(OpenOutputCodeFile, "code");
        flag_SaveListFile = true;
        openOutput(OpenOutputListFile, "list");
    }

    std::string finish() const {
        CloseAllFiles();
        return ContentOf(path("list"));
    }

    Typ compileValue() const {
        const Typ literal = Scan();
        return Expression(vars_, literal);
    }

    void compileStatement() const {
        LabelsList labels;
        int stackDepth = 0;
        Scan();
        Body body = {vars_, labels, stackDepth, false};
        Block(body, {});
    }

    VarsList vars_;
};

// ---------------------------------------------------------------------------------------------
// Values
// ---------------------------------------------------------------------------------------------

TEST_F(Arrays, OneIndexIsTakenFromTheStack) {
    EXPECT_EQ(value("a[i];"),
              "INT\n"
              "MOV @i #A0\n"
              "MOV #A0 $PUSH\n"
              "MOV @a[#POP.SI] #A0\n");
}

// The room that is kept for an item has no other check.
TEST_F(Arrays, OperandsFitTheRoomThatIsKeptForThem) {
    std::array<char, 64> room = {};
    const VarItem& array = variable(u"a");
    for (const Operand& operand :
         {OperandOf(array, SpellingOf(u"a")), RESULT_OPERAND,
          ElementOperand(array, SpellingOf(u"Таблица"), INDEX_ON_STACK)}) {
        EXPECT_LE(PutPart(room.data(), operand) - room.data(), PartSize(operand));
    }
}

TEST_F(Arrays, ReadingAnElementUsesTheArray) {
    EXPECT_FALSE(variable(u"a").isUsed);
    value("a[i];");
    EXPECT_TRUE(variable(u"a").isUsed);
    EXPECT_FALSE(variable(u"bits").isUsed);
}

TEST_F(Arrays, TwoIndicesAreFoldedIntoOne) {
    EXPECT_EQ(value("Таблица[Index, 3];"),
              "REAL\n"
              "MOV @Index #A0\n"
              "MOV #A0 $PUSH\n"
              "MOV 3 #A0\n"
              "MOV #A0 $PUSH\n"
              "MOV $POP #R0\n"
              "MOV 5 #A0\n"
              "MUL $POP #A0\n"
              "ADD #R0 #A0\n"
              "MOV #A0 #R0\n"
              "MOV @Таблица[#R1.SR] #A0\n");
}

TEST_F(Arrays, EachOfThreeIndicesStepsOverAllDimensionsAfterIt) {
    EXPECT_EQ(value("cube[1, i, 2];"),
              "UDINT\n"
              "MOV 1 #A0\n"
              "MOV #A0 $PUSH\n"
              "MOV @i #A0\n"
              "MOV #A0 $PUSH\n"
              "MOV 2 #A0\n"
              "MOV #A0 $PUSH\n"
              "MOV $POP #R0\n"
              "MOV 6 #A0\n"
              "MUL $POP #A0\n"
              "ADD #R0 #A0\n"
              "MOV #A0 #R0\n"
              "MOV 30 #A0\n"
              "MUL $POP #A0\n"
              "ADD #R0 #A0\n"
              "MOV #A0 #R0\n"
              "MOV @cube[#R1.UD] #A0\n");
}

TEST_F(Arrays, StepsMayExceed32Bits) {
    addArray(u"huge", TYP_SINT, {2, 3000000000, 3});
    EXPECT_THAT(value("huge[1, 1, 1];"), testing::HasSubstr("MOV 9000000000 #A0\n"));
}

TEST_F(Arrays, AnElementIsAnOperandLikeAnyOther) {
    EXPECT_EQ(value("r + a[1] * 2;"),
              "REAL\n"
              "MOV @r #A0\n"
              "MOV #A0 $PUSH\n"
              "MOV 1 #A0\n"
              "MOV #A0 $PUSH\n"
              "MOV @a[#POP.SI] #A0\n"
              "MOV #A0 $PUSH\n"
              "MOV 2 #A0\n"
              "MUL $POP #A0\n"
              "ADD $POP #A0\n");
    EXPECT_EQ(value("-a[1];"),
              "INT\n"
              "MOV 1 #A0\n"
              "MOV #A0 $PUSH\n"
              "MOV @a[#POP.SI] #A0\n"
              "SUB 0 #A0\n");
}

TEST_F(Arrays, AnIndexMayBeAnyIntegerExpression) {
    EXPECT_EQ(value("a[a[i] - 1];"),
              "INT\n"
              "MOV @i #A0\n"
              "MOV #A0 $PUSH\n"
              "MOV @a[#POP.SI] #A0\n"
              "MOV #A0 $PUSH\n"
              "MOV 1 #A0\n"
              "SUB $POP #A0\n"
              "MOV #A0 $PUSH\n"
              "MOV @a[#POP.SI] #A0\n");
    EXPECT_THAT(value("a[300];"), testing::StartsWith("INT\n"));
    EXPECT_THAT(value("a[TICK];"), testing::StartsWith("INT\n"));
}

TEST_F(Arrays, ABoolElementIsTurnedIntoACondition) {
    EXPECT_EQ(value("bits[2];"),
              "BOOL\n"
              "MOV 2 #A0\n"
              "MOV #A0 $PUSH\n"
              "MOV @bits[#POP.BL] #A0\n"
              "MOV #A0 $PUSH\n"
              "MOV #A0 $PUSH\n"
              "MOV 1 #A0\n"
              "EQ $POP #A0\n"
              "TST #A0\n"
              "MOV $POP #A0\n");
}

TEST_F(Arrays, AnElementTakesPartInBooleanExpressions) {
    start("a[i] > 5;");
    Scan();
    Label label;
    EXPECT_EQ(BoolExpression(vars_, TYP_NONE, label), TYP_BOOL);
    EXPECT_EQ(finish(),
              "MOV @i #A0\n"
              "MOV #A0 $PUSH\n"
              "MOV @a[#POP.SI] #A0\n"
              "MOV #A0 $PUSH\n"
              "MOV 5 #A0\n"
              "GT $POP #A0\n"
              "TST #A0\n");
}

TEST_F(Arrays, AnElementIsSpelledAsItIsUsedAndAddressedDirectly) {
    variable(u"Таблица").isReference = true;
    EXPECT_THAT(value("ТАБЛИЦА[1, 2];"), testing::EndsWith("MOV @ТАБЛИЦА[#R1.SR] #A0\n"));
}

TEST_F(Arrays, TheIndicesAreReadAsVariablesAre) {
    variable(u"i").mayBeUninitialized = true;
    start("a[I];");
    flag_ShowMessages = true;
    compileValue();
    EXPECT_TRUE(variable(u"i").isUsed);
    EXPECT_EQ(finish(),
              "MOV @I #A0\n"
              ";Warning: Line 1, Column 4: The variable \"I\" might not have been initialized\n"
              "MOV #A0 $PUSH\n"
              "MOV @a[#POP.SI] #A0\n");
}

TEST_F(Arrays, ValuesNeedAsManyIndicesAsThereAreDimensions) {
    const std::string text = "Incorrect size of the array";
    expectValueFailure("a[1, 2];", 7, text);
    expectValueFailure("Таблица[1];", 10, text);
    expectValueFailure("Таблица[1, 2, 3];", 16, text);
    expectValueFailure("cube[1, 2];", 10, text);
}

TEST_F(Arrays, ValuesNeedIntegerIndices) {
    const std::string text = "A ordinal type required";
    expectValueFailure("a[r];", 4, text);
    expectValueFailure("a[1.5];", 6, text);
    expectValueFailure("a[i + r];", 8, text);
    expectValueFailure("a[flag];", 7, text);
    expectValueFailure("a['x'];", 6, text);
    expectValueFailure("Таблица[1, r];", 13, text);
}

TEST_F(Arrays, OnlyArraysHaveElements) {
    expectValueFailure("i[1];", 2, "Array type required");
    expectValueFailure("nothing[1];", 8, "An unrecognized keyword \"nothing\"");
}

TEST_F(Arrays, TheBracketsOfValuesMustBeComplete) {
    expectValueFailure("a[1;", 4, "\"]\" expected but \";\" found");
    expectValueFailure("a[];", 3, "Number expected but \"]\" found");
}

// ---------------------------------------------------------------------------------------------
// Targets
// ---------------------------------------------------------------------------------------------

TEST_F(Arrays, TheIndexOfATargetWaitsOnTheStack) {
    EXPECT_EQ(statement("a[i] := 5;"),
              "MOV @i #A0\n"
              "MOV #A0 $PUSH\n"
              "MOV 5 #A0\n"
              "MOV #A0 @a[#POP.SI]\n");
}

TEST_F(Arrays, TwoIndicesOfATargetAreFoldedAndPushed) {
    EXPECT_EQ(statement("таблицА[1, Index] := r;"),
              "MOV 1 #A0\n"
              "MOV #A0 $PUSH\n"
              "MOV @Index #A0\n"
              "MOV #A0 $PUSH\n"
              "MOV $POP #R0\n"
              "MOV 5 #A0\n"
              "MUL $POP #A0\n"
              "ADD #R0 #A0\n"
              "MOV #A0 #R0\n"
              "MOV #R0 $PUSH\n"
              "MOV @r #A0\n"
              "MOV #A0 @таблицА[#POP.SR]\n");
}

TEST_F(Arrays, ThreeIndicesOfATargetAreFoldedAndPushed) {
    EXPECT_EQ(statement("cube[1, 2, 3] := a[4];"),
              "MOV 1 #A0\n"
              "MOV #A0 $PUSH\n"
              "MOV 2 #A0\n"
              "MOV #A0 $PUSH\n"
              "MOV 3 #A0\n"
              "MOV #A0 $PUSH\n"
              "MOV $POP #R0\n"
              "MOV 6 #A0\n"
              "MUL $POP #A0\n"
              "ADD #R0 #A0\n"
              "MOV #A0 #R0\n"
              "MOV 30 #A0\n"
              "MUL $POP #A0\n"
              "ADD #R0 #A0\n"
              "MOV #A0 #R0\n"
              "MOV #R0 $PUSH\n"
              "MOV 4 #A0\n"
              "MOV #A0 $PUSH\n"
              "MOV @a[#POP.SI] #A0\n"
              "MOV #A0 @cube[#POP.UD]\n");
}

TEST_F(Arrays, AnAssignmentMarksTheArray) {
    EXPECT_TRUE(variable(u"a").mayBeUninitialized);
    EXPECT_FALSE(variable(u"a").isUsed);
    statement("a[1] := 5;");
    EXPECT_FALSE(variable(u"a").mayBeUninitialized);
    EXPECT_TRUE(variable(u"a").isUsed);
}

TEST_F(Arrays, TheLabelOfAnOrIsPostedBeforeTheStore) {
    EXPECT_THAT(statement("bits[1] := bits[2] OR bits[3];"),
                testing::AllOf(testing::HasSubstr("JMPT L1\n"),
                               testing::EndsWith("MOV $POP #A0\n"
                                                 "L1:\n"
                                                 "MOV #A0 @bits[#POP.BL]\n")));
}

TEST_F(Arrays, TargetsNeedAsManyIndicesAsThereAreDimensions) {
    const std::string text = "Incorrect size of the array";
    expectStatementFailure("a[1, 2] := 0;", 7, text);
    expectStatementFailure("cube[1, 2] := 0;", 10, text);
    expectStatementFailure("Таблица[1, 2, 3] := 0;", 16, text);
}

TEST_F(Arrays, TargetsNeedIndicesThatConvertToDint) {
    expectStatementFailure("a[r] := 0;", 4, "A ordinal type required");
    expectStatementFailure("a[1.5] := 0;", 6, "A ordinal type required");
    expectStatementFailure("a[flag] := 0;", 7, "Incompatible types: \"DINT\" and \"BOOL\"");
    expectStatementFailure("a['x'] := 0;", 6, "Incompatible types: \"DINT\" and \"STRING\"");
}

TEST_F(Arrays, TargetsTakeWhatConvertsToTheirElements) {
    expectStatementFailure("bits[1] := 5;", 13, "Incompatible types: \"BOOL\" and \"SINT\"");
    expectStatementFailure("a[1] := flag;", 13, "Incompatible types: \"INT\" and \"BOOL\"");
}

TEST_F(Arrays, OnlyArraysThatAreNoConstantsAreTargets) {
    expectStatementFailure("i[1] := 0;", 2, "Array type required");
    expectStatementFailure("nothing[1] := 0;", 8, "An unrecognized keyword \"nothing\"");
    variable(u"a").isConstant = true;
    expectStatementFailure("a[1] := 0;", 6, "Left side cannot be assigned to");
}

TEST_F(Arrays, TheBracketsOfTargetsMustBeComplete) {
    expectStatementFailure("a[1 := 0;", 5, "\"]\" expected but \":=\" found");
    expectStatementFailure("a[1) := 0;", 4, "\"]\" expected but \")\" found");
}

}  // namespace
