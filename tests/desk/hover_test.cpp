// What an editor shows of the place under the pointer.

#include "language/hover.h"

#include "check/context.h"
#include "explain/words.h"
#include "marked_script.h"

#include "qyx_types.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace {

// The text at the mark, empty if there is none.
std::string HoverOf(const char* text) {
    const MarkedScript marked = Marked(QString::fromUtf8(text));
    const std::optional<Hover> hover = HoverAt(marked.model(), marked.offset);
    return hover ? hover->markdown.toStdString() : std::string();
}

// What the hover is about.
std::string SpanOfHover(const char* text) {
    const MarkedScript marked = Marked(QString::fromUtf8(text));
    const std::optional<Hover> hover = HoverAt(marked.model(), marked.offset);
    return hover ? marked.script.source().text(hover->span).toString().toStdString()
                 : std::string();
}

TEST(Hover, VariablesShowTheirDeclarationAndRole) {
    EXPECT_EQ(HoverOf("PROGRAM P VAR_INPUT a  :  INT ; END_VAR VAR b : INT := 1; END_VAR\n"
                      "b := |a; END_PROGRAM"),
              "```st\na : INT ;\n```\n\nInput of program `P` (`VAR_INPUT`)");
    EXPECT_EQ(HoverOf("PROGRAM P VAR CONSTANT |most : REAL := -2.5; END_VAR ; END_PROGRAM"),
              "```st\nCONSTANT most : REAL := -2.5;\n```\n\nConstant of program `P` (`VAR`)");
    EXPECT_EQ(HoverOf("FUNCTION_BLOCK B VAR_REF x : INT; END_VAR |X := 1; END_FUNCTION_BLOCK\n"
                      "PROGRAM P VAR END_VAR END_PROGRAM"),
              "```st\nx : INT;\n```\n\nParameter by reference of function block `B` (`VAR_REF`)");
}

TEST(Hover, EverySectionHasItsRole) {
    const char* const form = "PROGRAM P %1 |a : INT %2; END_VAR ; END_PROGRAM";
    const std::vector<std::array<const char*, 3>> roles = {
        {"VAR", "", "Variable"},
        {"VAR_OUTPUT", "", "Output"},
        {"VAR_GLOBAL", "", "Global variable"},
        {"VAR_YXGLOBAL", "(1)", "Engine global"},
        {"VAR_YXREGISTER", "(1, 2, 3, 4)", "Engine register"}};
    for (const auto& [section, numbers, role] : roles) {
        const QString text =
            QString(QLatin1String(form)).arg(QLatin1String(section), QLatin1String(numbers));
        EXPECT_NE(HoverOf(text.toUtf8()).find(std::string("\n") + role + " of program"),
                  std::string::npos)
            << section;
    }
}

TEST(Hover, CommentsOnADeclarationAreShown) {
    EXPECT_EQ(HoverOf("PROGRAM P VAR\n"
                      "  (* not this *)\n\n"
                      "  // how *full*\n"
                      "  (* it\n     is *)\n"
                      "  a : INT;  // percent\n"
                      "  // nor this\n"
                      "END_VAR\n|a := 1; END_PROGRAM"),
              "```st\na : INT;\n```\n\nVariable of program `P` (`VAR`)\n\n"
              "how \\*full\\*  \nit  \nis  \npercent");
    EXPECT_EQ(HoverOf("PROGRAM P VAR b : INT; // of b\n a : INT; END_VAR |a := 1; END_PROGRAM"),
              "```st\na : INT;\n```\n\nVariable of program `P` (`VAR`)");
}

constexpr const char* MEAN =
    "// the mean\n"
    "FUNCTION Mean : REAL\nVAR_ARG a : REAL; b : REAL; END_VAR VAR_REF c : INT; END_VAR\n"
    "VAR d : INT; END_VAR RESULT := a + b; END_FUNCTION\n";

TEST(Hover, DefinitionsShowTheirParameters) {
    EXPECT_EQ(HoverOf((std::string(MEAN) + "PROGRAM P VAR x : INT := 1; END_VAR\n"
                                           "x := |mean(1, 2, x); END_PROGRAM")
                          .c_str()),
              "```st\nFUNCTION Mean : REAL\nVAR_ARG\n    a : REAL;\n    b : REAL;\nEND_VAR\n"
              "VAR_REF\n    c : INT;\nEND_VAR\n```\n\nthe mean");
    EXPECT_EQ(HoverOf("PROGRAM |P VAR END_VAR END_PROGRAM"), "```st\nPROGRAM P\n```");
    EXPECT_EQ(HoverOf("FUNCTION F : INT |RESULT := 1; END_FUNCTION PROGRAM P VAR END_VAR "
                      "END_PROGRAM"),
              "```st\nRESULT : INT\n```\n\nResult of function `F`");
}

TEST(Hover, ACallThatIsAStatementShowsItsCode) {
    EXPECT_EQ(HoverOf("PROGRAM P VAR END_VAR |yxSetGV(3, 1.5); END_PROGRAM"),
              "```st\nyxSetGV(UINT number, LREAL value)\n```\n\n"
              "Built-in function block: writes an engine global\n\n"
              "```text\nMOV 3 #A0\nMOV #A0 $PUSH\nMOV 1.5 #A0\nMOV #A0 $PUSH\nEXEC yxSetGV\n```");
    EXPECT_EQ(HoverOf("PROGRAM P VAR x : LREAL; END_VAR x := |SIN(1); END_PROGRAM"),
              "```st\nsin(LREAL) : LREAL\n```\n\nBuilt-in function: sine");
}

TEST(Hover, LabelsTellTheirUnit) {
    EXPECT_EQ(HoverOf("PROGRAM P VAR END_VAR Again: GOTO |again; END_PROGRAM"),
              "```st\nAgain:\n```\n\nLabel in program `P`");
}

TEST(Hover, LiteralsShowTypeAndValue) {
    const auto literal = [](const char* text) {
        return HoverOf(
            (std::string("PROGRAM P VAR x : LREAL; END_VAR x := |") + text + "; END_PROGRAM")
                .c_str());
    };
    EXPECT_EQ(literal("16#1f"), "```st\n16#1f\n```\nSINT  \n= `31` = `2#11111`");
    EXPECT_EQ(literal("8#17"), "```st\n8#17\n```\nSINT  \n= `15` = `16#F` = `2#1111`");
    EXPECT_EQ(literal("200"), "```st\n200\n```\nUSINT  \n= `16#C8` = `2#11001000`");
    EXPECT_EQ(literal("2.5"), "```st\n2.5\n```\nREAL");
    EXPECT_EQ(literal("(* no *) 7"), "");
    EXPECT_EQ(HoverOf("PROGRAM P VAR x : LREAL; END_VAR x := (* no *) |7; END_PROGRAM"),
              "```st\n7\n```\nno type: the comment before it takes it away  \n"
              "= `16#7` = `2#111`");
    EXPECT_EQ(HoverOf("PROGRAM P VAR x : BOOL; END_VAR x := |true; END_PROGRAM"),
              "```st\ntrue\n```\nBOOL");
    EXPECT_EQ(HoverOf("FUNCTION F : STRING RESULT := 'a|b'; END_FUNCTION PROGRAM P VAR END_VAR "
                      "END_PROGRAM"),
              "```st\n'ab'\n```\nSTRING");
}

std::string HoverOfOperation(const char* expression) {
    return HoverOf((std::string("PROGRAM P VAR a : INT := 1; b : REAL := 1.0; c : BOOL := TRUE; "
                                "x : LREAL; y : BOOL; END_VAR ") +
                    expression + " END_PROGRAM")
                       .c_str());
}

TEST(Hover, OperatorsShowHowTheirOperandsAreGrouped) {
    EXPECT_EQ(HoverOfOperation("x := a |/ a * 2;"),
              "```st\na / (a * 2)\n```\nleft `INT`, right `INT`");
    EXPECT_EQ(HoverOfOperation("x := a / a |* 2;"), "```st\na * 2\n```\nleft `INT`, right `INT`");
    EXPECT_EQ(HoverOfOperation("x := b |- a / (a MOD 3 - 2) - 1;"),
              "```st\nb - (a / ((a MOD 3) - 2))\n```\nleft `REAL`, right `REAL`");
    EXPECT_EQ(HoverOfOperation("x := -a |** 2;"),
              "```st\n(-a) ** 2\n```\nleft `INT`, right `INT`");
    EXPECT_EQ(HoverOfOperation("y := |not a = 1;"), "```st\nNOT (a = 1)\n```\noperand `BOOL`");
    EXPECT_EQ(HoverOfOperation("y := c |AND c OR c;"),
              "```st\nc AND (c OR c)\n```\nleft `BOOL`, right `BOOL`");
}

TEST(Hover, OperatorsInAPieceThatDoesNotCompileShowNothing) {
    EXPECT_EQ(HoverOfOperation("y := a > 0 |AND a > 0;"), "");
    EXPECT_EQ(HoverOfOperation("y := a |> 0 AND a > 0;"), "");
    EXPECT_EQ(HoverOfOperation("x := ; y := a |> 0;"),
              "```st\na > 0\n```\nleft `INT`, right `SINT`");
}

TEST(Hover, LongOperandsAreCut) {
    std::string sum = "a";
    for (int term = 0; term < 100; ++term) {
        sum += " + a";
    }
    const std::string shown = HoverOfOperation(("x := " + sum + " |- 1;").c_str());
    EXPECT_NE(shown.find("..."), std::string::npos);
    EXPECT_LT(shown.size(), 200U);
}

TEST(Hover, TypesShowTheirValues) {
    EXPECT_EQ(HoverOf("PROGRAM P VAR a : u|int; END_VAR a := 1; END_PROGRAM"),
              "```st\nUINT\n```\ninteger, 16 bits, unsigned");
}

TEST(Hover, KeywordsAndAssignmentsShowTheirCode) {
    const char* const loop =
        "PROGRAM P VAR a : INT := 1; END_VAR IF a = 1 THEN a := 2; "
        "ELSE a := 3; END_IF; END_PROGRAM";
    const auto at = [loop](const char* word) {
        QString text = QString::fromLatin1(loop);
        return HoverOf(text.insert(text.indexOf(QLatin1String(word)), u'|').toUtf8());
    };
    EXPECT_EQ(at(":= 2"), "```text\nMOV 2 #A0\nMOV #A0 @a\n```");
    EXPECT_EQ(at(":= 1"), "```text\na V INT 1\n```");
    EXPECT_EQ(at("IF"),
              "```text\nMOV @a #A0\nMOV #A0 $PUSH\nMOV 1 #A0\nEQ $POP #A0\nTST #A0\nJMPF L2\n"
              "MOV 2 #A0\nMOV #A0 @a\nJMP L1\nL2:\nMOV 3 #A0\nMOV #A0 @a\nL1:\n```");
    EXPECT_EQ(at("ELSE"), "```text\nL2:\n```");
    EXPECT_EQ(at("END_IF"), "```text\nL1:\n```");
    EXPECT_EQ(at("PROGRAM"), "```text\nPROG:\nP\nVAR:\nMAIN:\n```");
    EXPECT_EQ(at("END_PROGRAM"), "```text\nRET\n```");
    EXPECT_EQ(at("THEN"), "");
}

TEST(Hover, LongCodeIsCut) {
    std::string body;
    for (int line = 0; line < 30; ++line) {
        body += "b := 1; ";
    }
    const std::string shown =
        HoverOf(("PROGRAM P VAR a : BOOL := TRUE; b : INT; END_VAR |WHILE a DO b := 1; " + body +
                 "END_WHILE; END_PROGRAM")
                    .c_str());
    EXPECT_EQ(std::count(shown.begin(), shown.end(), '\n'), 26);
    EXPECT_EQ(shown.substr(shown.size() - 17), "```\n49 more items");
}

TEST(Hover, NothingIsShownOfCommentsAndBlanks) {
    EXPECT_EQ(HoverOf("PROGRAM P VAR a : INT; END_VAR (* a| *) a := 1; END_PROGRAM"), "");
    EXPECT_EQ(HoverOf("PROGRAM P VAR a : INT; END_VAR   |  a := 1; END_PROGRAM"), "");
    EXPECT_EQ(HoverOf("|"), "");
    EXPECT_EQ(HoverOf("  |"), "");
    EXPECT_EQ(HoverOf("// a|"), "");
}

TEST(Hover, TheWordBeforeThePointerCountsWhereNoTokenIsUnderIt) {
    EXPECT_EQ(SpanOfHover("PROGRAM P VAR a : INT; END_VAR a| := 1; END_PROGRAM"), "a");
    EXPECT_EQ(SpanOfHover("PROGRAM P VAR a : INT; END_VAR a|:= 1; END_PROGRAM"), ":=");
    EXPECT_EQ(SpanOfHover("PROGRAM P VAR a : INT; END_VAR a := 1; END_PROGRAM|"), "END_PROGRAM");
}

TEST(Hover, EveryBuiltInHasItsRow) {
    for (const Callee& callee : BuiltInCallees()) {
        const BuiltInRow* const row = BuiltInRowOf(callee.name);
        ASSERT_NE(row, nullptr) << callee.name.toStdString();
        EXPECT_EQ(row->name, callee.name);
        EXPECT_FALSE(row->text.isEmpty());
        EXPECT_EQ(row->result == QLatin1String("none"), !callee.isFunction);
        EXPECT_EQ(ParameterTexts(*row).size(), static_cast<int>(callee.formals.size()))
            << callee.name.toStdString();
    }
    EXPECT_EQ(BuiltInRows().size(), BuiltInCallees().size());
    EXPECT_EQ(BuiltInRowOf(QStringLiteral("none")), nullptr);
}

TEST(Hover, EveryTypeHasItsRow) {
    for (const typ& row : TypsTable) {
        EXPECT_FALSE(ValuesOfType(QString(row.name)).isEmpty());
    }
    EXPECT_EQ(ValuesOfType(QStringLiteral("x")), QString());
}

TEST(Words, ParametersTellWhatTheTableSays) {
    EXPECT_EQ(ParameterTexts(*BuiltInRowOf(QStringLiteral("yxSetGV"))),
              QStringList({QStringLiteral("number"), QStringLiteral("value")}));
    EXPECT_EQ(
        ParameterTexts(*BuiltInRowOf(QStringLiteral("yxSetRegREAL"))),
        QStringList({QStringLiteral("word 1"), QStringLiteral("word 2"), QStringLiteral("word 3"),
                     QStringLiteral("word 4"), QStringLiteral("value")}));
    EXPECT_EQ(ParameterTexts(*BuiltInRowOf(QStringLiteral("pow"))),
              QStringList({QString(), QString()}));
}

}  // namespace
