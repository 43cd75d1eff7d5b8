// The layout of scripts, its proof, and how two layouts differ by lines.

#include "format/format.h"
#include "facts/compile.h"

#include "print_text.h"

#include <gtest/gtest.h>

namespace {

struct Script {
    Source source;
    Facts facts;
};

Script ScriptOf(const QString& text) {
    Script script = {Source(QStringLiteral("test"), text), Facts()};
    CompileResult result = CompileAndWait(script.source);
    EXPECT_TRUE(result.facts.has_value()) << result.failure.toStdString();
    script.facts = result.facts.value_or(Facts());
    return script;
}

constexpr FormatOptions BEFORE_ERROR = {DEFAULT_INDENT, true};

QString FormattedText(const QString& text) {
    const Script script = ScriptOf(text);
    return FormatScript(script.source, script.facts, BEFORE_ERROR).text.value_or(QString());
}

QString Frame(const QString& statements) {
    return QStringLiteral("PROGRAM P\nVAR\n    a : INT := 0;\nEND_VAR\n") + statements +
           QStringLiteral("END_PROGRAM\n");
}

// What comes of the statements of a script.
QString FormattedStatements(const QString& statements) {
    const QString text = FormattedText(Frame(statements));
    const QString head = Frame({}).chopped(int(sizeof "END_PROGRAM\n") - 1);
    EXPECT_TRUE(text.startsWith(head)) << text.toStdString();
    return text.mid(head.size()).chopped(int(sizeof "END_PROGRAM\n") - 1);
}

// ---------------------------------------------------------------------------------------------
// Layout
// ---------------------------------------------------------------------------------------------

TEST(Layout, SignsThatTouchWouldBeOneOperator) {
    EXPECT_EQ(FormattedStatements("a:=1- -2;"), "    a := 1 - -2;\n");
    EXPECT_EQ(FormattedStatements("a:=+ -a;"), "    a := + -a;\n");
    EXPECT_EQ(FormattedStatements("a:=2* (- 3);"), "    a := 2 * (-3);\n");
}

TEST(Layout, ACommentDoesNotTouchASign) {
    EXPECT_EQ(FormattedStatements("a:=- (*c*)a;"), "    a := - (*c*) a;\n");
    EXPECT_EQ(FormattedStatements("a:=a+ //c\na;"), "    a := a +    //c\n         a;\n");
    EXPECT_EQ(FormattedStatements("a:=((*c*)a(*d*));"), "    a := ((*c*) a (*d*));\n");
}

TEST(Layout, TheOnlyStatementOfALabelStaysBesideIt) {
    const QString head = "CASE a OF\n";
    const QString begin = "    CASE a OF\n";
    const QString end = "    END_CASE;\n";
    EXPECT_EQ(FormattedStatements(head + "1:a:=2;;END_CASE;"), begin + "    1:  a := 2;\n" + end);
    EXPECT_EQ(FormattedStatements(head + "1:\na:=2;END_CASE;"),
              begin + "    1:\n        a := 2;\n" + end);
    EXPECT_EQ(FormattedStatements(head + "1:a:=2;a:=3;END_CASE;"),
              begin + "    1:\n        a := 2;\n        a := 3;\n" + end);
    EXPECT_EQ(FormattedStatements(head + "1:l:a:=2;END_CASE;"),
              begin + "    1:\n    l:\n        a := 2;\n" + end);
}

TEST(Layout, LinesThatAreVeryWideStandForThemselves) {
    const QString sum = QStringLiteral(" + 1").repeated(100);
    EXPECT_EQ(FormattedStatements("a := 1; // b\na := 1" + sum + "; // c\na := 12; // d\n"),
              "    a := 1;     // b\n    a := 1" + sum + ";  // c\n    a := 12;    // d\n");
}

TEST(Layout, WithAnErrorTheRestStays) {
    EXPECT_EQ(FormattedStatements("a:=1; a:=2;\n\n a=3;a:=4;\n"),
              "    a := 1;\n    a := 2;\n\n a=3;a:=4;\n");
    EXPECT_EQ(FormattedText("PROGRAM P VAR a:INT;\n b:WORD;END_VAR"),
              "PROGRAM P\nVAR\n    a : INT;\n b:WORD;END_VAR");
    EXPECT_EQ(FormattedStatements("a:=1; (* open\n"), "    a := 1; (* open\n");
    EXPECT_EQ(FormattedText("what:is this"), "what:is this");
    EXPECT_EQ(FormattedText(""), "");
}

TEST(Layout, AScriptWithAnErrorHasNoneUnlessItIsAskedFor) {
    const Script script = ScriptOf("PROGRAM P x");
    const FormatResult result = FormatScript(script.source, script.facts, {});
    EXPECT_FALSE(result.text.has_value());
    EXPECT_FALSE(result.reason.isEmpty());
}

// ---------------------------------------------------------------------------------------------
// The proof
// ---------------------------------------------------------------------------------------------

QString FaultBetween(const QString& before, const QString& after) {
    const Script one = ScriptOf(before);
    const Script other = ScriptOf(after);
    return FaultOfFormatted(ContentOf(one.source, one.facts), other.source, other.facts, {});
}

const QString FINE = Frame("    a := 1;     // c\n");

TEST(Proof, NothingIsWrongWithALayout) {
    EXPECT_EQ(FaultBetween(Frame("a:=1;;// c\n"), FINE), "");
}

TEST(Proof, CodeCounts) {
    const QString fault = "formatting would change the code";
    EXPECT_EQ(FaultBetween(Frame("    a := 2;     // c\n"), FINE), fault);
    EXPECT_EQ(FaultBetween(Frame("    A := 1;     // c\n"), FINE), fault);
    EXPECT_EQ(FaultBetween(FINE, Frame("    a := 1;     // c\n    a := 1;\n")), fault);
    EXPECT_EQ(FaultBetween(FINE, Frame("    a := 1;     // c\n    a = 1;\n")), fault);
}

TEST(Proof, TokensAndCommentsCount) {
    const QString fault = "formatting would change a token or a comment";
    EXPECT_EQ(FaultBetween(Frame("    a := 1;     // C\n"), FINE), fault);
    EXPECT_EQ(FaultBetween(Frame("    a := 1;\n"), FINE), fault);
    EXPECT_EQ(FaultBetween(FINE, Frame("    a := 1;\n")), fault);
    EXPECT_EQ(FaultBetween(Frame("    // c\n    a := 1;\n"), FINE), fault);
    EXPECT_EQ(FaultBetween(Frame("    a := (1);   // c\n"), FINE), fault);
    EXPECT_EQ(FaultBetween(FINE + "rest", FINE), fault);
}

TEST(Proof, ItMustStay) {
    EXPECT_EQ(FaultBetween(FINE, Frame("    a := 1; // c\n")),
              "formatting the result would change it again");
}

// ---------------------------------------------------------------------------------------------
// Differences
// ---------------------------------------------------------------------------------------------

QString AppliedEdits(const QString& before, const std::vector<Edit>& all) {
    Edits edits;
    for (const Edit& edit : all) {
        edits.add(edit);
    }
    return edits.applyTo(before);
}

TEST(LineEdits, NoneWhereNothingDiffers) {
    EXPECT_TRUE(EditsBetween("a\n\nb\n", "a\n\nb\n").empty());
    EXPECT_TRUE(EditsBetween("", "").empty());
}

TEST(LineEdits, OneForEachGroupOfLines) {
    const QString before = "one\ntwo\n  three\nfour\nfive ; six\n\n\nseven\n";
    const QString after = "one\ntwo\n    three\nfour\nfive;\nsix\n\nseven\n";
    const std::vector<Edit> edits = EditsBetween(before, after);
    ASSERT_EQ(edits.size(), 3U);
    EXPECT_EQ(edits[0].span.begin, before.indexOf("  three"));
    EXPECT_EQ(edits[0].text, "    three\n");
    EXPECT_EQ(edits[1].text, "five;\nsix\n");
    EXPECT_EQ(edits[2].span.length(), 1);
    EXPECT_EQ(edits[2].text, "");
    EXPECT_EQ(AppliedEdits(before, edits), after);
}

TEST(LineEdits, RightForAnyTexts) {
    const QString texts[] = {"",     "a",     "a\n",     "a\n\n", "b\na\n",
                             "\n\n", "ab\nc", "a\nbc\n", ";\na\n"};
    for (const QString& before : texts) {
        for (const QString& after : texts) {
            EXPECT_EQ(AppliedEdits(before, EditsBetween(before, after)), after);
        }
    }
}

TEST(LineEdits, FollowALayout) {
    const QString before = Frame("a:=1;a:=2;\n    a := 3;\n\n\nIF a=1 THEN a:=4;END_IF;\n");
    const QString after = FormattedText(before);
    const std::vector<Edit> edits = EditsBetween(before, after);
    EXPECT_EQ(edits.size(), 2U);
    EXPECT_EQ(AppliedEdits(before, edits), after);
}

}  // namespace
