// Code labels, and the labels of GOTO with their jumps.

#include "qyx_il.h"
#include "qyx_lists.h"
#include "qyx_loops.h"
#include "support.h"

namespace {

TEST(Labels, FirstLabelOfARunIsNumberOne) {
    LabelCount = 1;
    Label label;
    EXPECT_TRUE(label.isEmpty());
    GetNewLabel(label);
    EXPECT_EQ(label.number, 1);
    EXPECT_FALSE(label.isEmpty());
}

TEST(Labels, SecondLabelOfAPairIsDrawnNext) {
    LabelCount = 5;
    Label label;
    Label next;
    GetNewLabelAndNextLabel(label, next);
    EXPECT_EQ(label.number, 5);
    EXPECT_EQ(next.number, 6);
    GetNewLabel(label);
    EXPECT_EQ(label.number, 6);
}

// ---------------------------------------------------------------------------------------------
// Labels of GOTO
// ---------------------------------------------------------------------------------------------

class GoTo : public CompilerTest {
protected:
    // Compiles statements up to END_PROGRAM that see a variable of that name; their code.
    std::string compile(const std::string& statements, QStringView variable = u"other") const {
        ResetCompiler();
        openSource(statements + " END_PROGRAM");
        openOutput(OpenOutputCodeFile, "code");
        compileStatements(variable);
        return finishedCode();
    }

    // The screen holds the code before the error.
    void expectFailure(const std::string& statements, QStringView variable,
                       const std::string& error) const {
        SCOPED_TRACE(statements);
        ResetCompiler();
        ExpectFailure(
            [&] {
                openSource(statements + " END_PROGRAM");
                openOutput(OpenOutputCodeFile, "code");
                compileStatements(variable);
            },
            testing::EndsWith(error));
    }

private:
    static void compileStatements(QStringView variable) {
        VarsList variables;
        VarItem item;
        item.spelling = &SpellingOf(variable);
        item.type = TYP_INT;
        AddVarToVarsList(variables, item);
        LabelsList labels;
        int stackDepth = 0;
        Body body = {variables, labels, stackDepth, false};
        Scan();
        Statements(body, LoopLabels(), {TOKEN_END_PROGRAM});
        CheckLabelsInLabelsLists(labels);
    }
};

TEST_F(GoTo, LabelsAreOneInAnyCaseAndWrittenInUpperCase) {
    EXPECT_EQ(compile("GOTO Конец; Конец: GOTO КОНЕЦ; конец2: GOTO конец;"),
              "JMP КОНЕЦ КОНЕЦ: JMP КОНЕЦ КОНЕЦ2: JMP КОНЕЦ ");
    EXPECT_EQ(compile("end: GOTO END; GOTO eNd;"), "END: JMP END JMP END ");
}

TEST_F(GoTo, TheDotlessIIsAnI) {
    EXPECT_EQ(compile("ı: GOTO i;"), "I: JMP I ");
    EXPECT_EQ(compile("GOTO ı; I:"), "JMP I I: ");
    EXPECT_EQ(compile("Nıl: GOTO NIL; GOTO nil; GOTO nıL;"), "NIL: JMP NIL JMP NIL JMP NIL ");
    expectFailure("ı: i:", u"other", ErrorAt(1, 5, "The label is already defined: \"I\""));
    expectFailure("GOTO ı;", u"other",
                  ErrorAt(1, 9, "The label is referenced but not set: \"I\""));
}

TEST_F(GoTo, ALabelHasTheNameOfNoVariable) {
    const std::string error = ErrorAt(1, 2, "Duplicate variable name \"I\"");
    expectFailure("i:", u"I", error);
    expectFailure("I:", u"i", error);
    expectFailure("ı:", u"i", error);
    expectFailure("ı:", u"I", error);
    EXPECT_EQ(compile("ı: GOTO ı;", u"ı"), "I: JMP I ");
    EXPECT_EQ(compile("i: GOTO i;", u"ı"), "I: JMP I ");
}

TEST_F(GoTo, TheSpellingOfALabelIsThatOfItsCapitals) {
    for (uint unicode = 0; unicode < 0xFFFF; ++unicode) {
        const QString letter = QChar(unicode);
        if (IsAlphaR(letter[0])) {
            EXPECT_EQ(LabelSpelling(SpellingOf(letter)).identity,
                      SpellingOf(letter.toUpper()).identity)
                << Utf8(letter);
        }
    }
    EXPECT_EQ(&LabelSpelling(SpellingOf(u"nıl")), &SpellingOf(u"NIL"));
    EXPECT_EQ(&LabelSpelling(SpellingOf(u"nil")), &SpellingOf(u"nil"));
}

}  // namespace
