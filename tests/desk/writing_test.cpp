// What helps to write a script: proposals, signatures, folds, selections, colours.

#include "language/completion.h"
#include "language/folds.h"
#include "language/selection.h"
#include "language/semantics.h"
#include "language/signature.h"
#include "language/snippets.h"
#include "print_text.h"

#include <gmock/gmock.h>

#include <QStringList>

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using testing::UnorderedElementsAre;

namespace {

// A script in which "|" marks a place.
struct Marked {
    Model model;
    int offset;
};

Marked ScriptOf(const char* text) {
    QString script = QString::fromUtf8(text);
    const int offset = script.indexOf(u'|');
    script.remove(offset, offset < 0 ? 0 : 1);
    return {ModelOf(Source(QStringLiteral("script.st"), script), 50), offset};
}

QString TextOf(const Model& model, Span span) {
    return model.source.text(span).toString();
}

// ---------------------------------------------------------------------------------------------
// Proposals
// ---------------------------------------------------------------------------------------------

std::vector<QString> NamesAt(const char* text) {
    const Marked script = ScriptOf(text);
    std::vector<QString> names;
    for (const Proposal& each : ProposalsAt(script.model, script.offset).proposals) {
        if (each.kind != ProposalKind::Snippet) {
            names.push_back(each.name);
        }
    }
    return names;
}

// Statements of a program; declarations and a function stand before, a function block too.
std::vector<QString> NamesAmongStatements(const char* statements) {
    const std::string head =
        "FUNCTION Half : REAL VAR_ARG whole : REAL; END_VAR RESULT := whole / 2; END_FUNCTION\n"
        "FUNCTION_BLOCK Bump VAR_REF total : INT; END_VAR total := total + 1; "
        "END_FUNCTION_BLOCK\n"
        "PROGRAM Demo\nVAR\nCONSTANT most : INT := 5;\nlevel : REAL := 0.0;\ncount : INT := 0;\n"
        "ready : BOOL := FALSE;\nEND_VAR\n";
    return NamesAt((head + statements).c_str());
}

TEST(Proposals, BeginAScriptWithUnits) {
    EXPECT_THAT(NamesAt("|"), UnorderedElementsAre("FUNCTION", "FUNCTION_BLOCK", "PROGRAM"));
}

TEST(Proposals, HaveNothingWhereANewNameIsWritten) {
    EXPECT_THAT(NamesAt("PROGRAM |"), IsEmpty());
    EXPECT_THAT(NamesAt("FUNCTION Ha|"), IsEmpty());
    EXPECT_THAT(NamesAt("PROGRAM p VAR CONSTANT |"), IsEmpty());
}

TEST(Proposals, HaveNothingAfterTheProgram) {
    EXPECT_THAT(NamesAt("PROGRAM p VAR END_VAR END_PROGRAM |"), IsEmpty());
}

TEST(Proposals, HaveNothingInComments) {
    EXPECT_THAT(NamesAmongStatements("// cou|"), IsEmpty());
    EXPECT_THAT(NamesAmongStatements("(* cou| *) count := 1;"), IsEmpty());
    EXPECT_THAT(NamesAmongStatements("(* cou|"), IsEmpty());
    EXPECT_THAT(NamesAmongStatements("(* one *)|"), Contains("count"));
    EXPECT_THAT(NamesAmongStatements("// one\n|"), Contains("count"));
}

TEST(Proposals, HaveNothingInStringsAndNumbers) {
    EXPECT_THAT(NamesAmongStatements("level := 'le|'; END_PROGRAM"), IsEmpty());
    EXPECT_THAT(NamesAmongStatements("level := 'le|"), IsEmpty());
    EXPECT_THAT(NamesAmongStatements("level := 1|;"), IsEmpty());
    EXPECT_THAT(NamesAmongStatements("level := 1.|;"), IsEmpty());
    EXPECT_THAT(NamesAmongStatements("level := 16#F|;"), IsEmpty());
}

TEST(Proposals, KnowTheSectionsOfAUnit) {
    EXPECT_THAT(NamesAt("PROGRAM p |"),
                UnorderedElementsAre("VAR", "VAR_INPUT", "VAR_OUTPUT", "VAR_GLOBAL",
                                     "VAR_YXGLOBAL", "VAR_YXREGISTER"));
    EXPECT_THAT(NamesAt("FUNCTION f : INT |"),
                UnorderedElementsAre("VAR", "VAR_ARG", "VAR_REF", "RESULT", "END_FUNCTION"));
    EXPECT_THAT(NamesAt("FUNCTION_BLOCK f |"),
                UnorderedElementsAre("VAR", "VAR_ARG", "VAR_REF", "END_FUNCTION_BLOCK"));
    EXPECT_THAT(NamesAt("PROGRAM p VAR END_VAR |"), IsSupersetOf({"VAR_INPUT", "IF"}));
}

TEST(Proposals, KnowTheTypes) {
    EXPECT_THAT(
        NamesAt("PROGRAM p VAR x : |"),
        ElementsAre("BOOL", "SINT", "USINT", "INT", "UINT", "DINT", "UDINT", "REAL", "LREAL"));
    EXPECT_THAT(NamesAt("FUNCTION f : L|"), Contains("STRING"));
    EXPECT_THAT(NamesAmongStatements("after : |"), Not(Contains("INT")));
}

TEST(Proposals, KnowInitialValuesAndWordsOfDeclarations) {
    EXPECT_THAT(NamesAt("PROGRAM p VAR x : BOOL := |"), ElementsAre("TRUE", "FALSE"));
    EXPECT_THAT(NamesAt("PROGRAM p VAR x : INT := |"), IsEmpty());
    EXPECT_THAT(NamesAt("PROGRAM p VAR x : BOOL; |"), ElementsAre("CONSTANT", "END_VAR"));
    EXPECT_THAT(NamesAt("PROGRAM p VAR_INPUT |"), ElementsAre("END_VAR"));
}

TEST(Proposals, BeginAStatementWithWhatCan) {
    const std::vector<QString> names = NamesAmongStatements("|");
    EXPECT_THAT(names, IsSupersetOf({"level", "Half", "Bump", "sin", "yxSetGV", "IF", "TICK",
                                     "EXIT", "END_PROGRAM"}));
    for (const char* none : {"most", "THEN", "ELSE", "NOT", "TRUE", "MOD", "RESULT", "BREAK",
                             "CONTINUE", "END_IF", "INT", "whole", "total", "Demo"}) {
        EXPECT_THAT(names, Not(Contains(none)));
    }
}

TEST(Proposals, OfferValues) {
    const std::vector<QString> names = NamesAmongStatements("level := |");
    EXPECT_THAT(names, IsSupersetOf({"most", "level", "Half", "sin", "NOT", "TRUE", "TICK"}));
    for (const char* none : {"Bump", "yxSetGV", "IF", "MOD", "RESULT", "whole"}) {
        EXPECT_THAT(names, Not(Contains(none)));
    }
    EXPECT_THAT(NamesAmongStatements("level := Half(|"), IsSupersetOf({"most", "Half"}));
}

TEST(Proposals, GoOnAfterAValueByItsType) {
    EXPECT_THAT(NamesAmongStatements("level := count |"),
                UnorderedElementsAre("MOD", "OR", "XOR", "AND", "SHL", "SHR", "ROL", "ROR"));
    EXPECT_THAT(NamesAmongStatements("ready := ready |"),
                UnorderedElementsAre("OR", "XOR", "AND"));
    EXPECT_THAT(NamesAmongStatements("IF ready |"),
                UnorderedElementsAre("OR", "XOR", "AND", "THEN"));
    EXPECT_THAT(NamesAmongStatements("IF count |"), Not(Contains("THEN")));
    EXPECT_THAT(NamesAmongStatements("FOR count := 1 |"), IsSupersetOf({"TO", "DOWNTO"}));
}

TEST(Proposals, EndWhatIsOpen) {
    EXPECT_THAT(NamesAmongStatements("IF ready THEN |"),
                IsSupersetOf({"ELSIF", "ELSE", "END_IF"}));
    EXPECT_THAT(NamesAmongStatements("IF ready THEN ELSE |"), Not(Contains("ELSIF")));
    EXPECT_THAT(NamesAmongStatements("IF ready THEN |"), Not(Contains("END_PROGRAM")));
    EXPECT_THAT(NamesAmongStatements("count := 3; IF ready THEN count := 1; |\nEND_PROGRAM"),
                Contains("END_IF"));
    EXPECT_THAT(NamesAmongStatements("count := 3; IF ready THEN count := 1;\n|count := 2;\n"),
                Contains("END_IF"));
    EXPECT_THAT(NamesAmongStatements("WHILE ready DO |"),
                IsSupersetOf({"END_WHILE", "BREAK", "CONTINUE"}));
    EXPECT_THAT(NamesAmongStatements("REPEAT |"), IsSupersetOf({"UNTIL", "BREAK"}));
    EXPECT_THAT(NamesAmongStatements("REPEAT UNTIL ready |"), Contains("END_REPEAT"));
    EXPECT_THAT(NamesAmongStatements("CASE count OF |"), IsEmpty());
    EXPECT_THAT(NamesAmongStatements("CASE count OF 1: |"),
                IsSupersetOf({"count", "ELSE", "END_CASE"}));
}

TEST(Proposals, NameAVariableWhereOneMustBe) {
    EXPECT_THAT(NamesAmongStatements("FOR |"), ElementsAre("count"));
    EXPECT_THAT(NamesAmongStatements("Bump(|"), ElementsAre("count"));
}

TEST(Proposals, NameLabelsOfTheWholeScript) {
    EXPECT_THAT(NamesAmongStatements("first: GOTO |; last: count := 1; END_PROGRAM"),
                ElementsAre("first", "last"));
}

TEST(Proposals, HaveTheResultInFunctionsAlone) {
    EXPECT_THAT(NamesAt("FUNCTION f : INT VAR_ARG a : INT; END_VAR |"),
                IsSupersetOf({"a", "RESULT", "f", "END_FUNCTION"}));
    EXPECT_THAT(NamesAt("FUNCTION f : INT RESULT := 1; |"), Contains("RESULT"));
}

TEST(Proposals, AreThoseOfTheUnit) {
    const std::vector<QString> names = NamesAt(
        "FUNCTION f : INT VAR a : INT; END_VAR a := |; END_FUNCTION\n"
        "FUNCTION g : INT VAR b : INT; END_VAR b := 1; END_FUNCTION");
    EXPECT_THAT(names, IsSupersetOf({"a", "f"}));
    EXPECT_THAT(names, Not(Contains("b")));
    EXPECT_THAT(names, Not(Contains("g")));  // a definition calls those above it
}

TEST(Proposals, PassWhatIsBroken) {
    const std::vector<QString> names = NamesAmongStatements(
        "count := unknown;\nIF ready count := 1; END_IF;\nlevel := le|\ncount := 2;");
    EXPECT_THAT(names, IsSupersetOf({"level", "Half"}));
    EXPECT_THAT(names, Not(Contains("unknown")));
    EXPECT_THAT(names, Not(Contains("IF")));
}

TEST(Proposals, BeginAStatementAfterALineThatIsNotEnded) {
    EXPECT_THAT(NamesAmongStatements("count := 1\n|"), IsSupersetOf({"IF", "count"}));
    EXPECT_THAT(NamesAmongStatements("count := 1 |"), Not(Contains("IF")));
    EXPECT_THAT(NamesAmongStatements("count := 3; count := 1 |\ncount := 2;\nEND_PROGRAM"),
                Not(Contains("IF")));
}

TEST(Proposals, AreForTheWholeWord) {
    const Marked script = ScriptOf("PROGRAM p VAR Счётчик : INT; END_VAR Сч|ет := 1;");
    const Proposals found = ProposalsAt(script.model, script.offset);
    EXPECT_EQ(TextOf(script.model, found.word), QStringLiteral("Счет"));
}

TEST(Proposals, CallWithGaps) {
    const Marked script = ScriptOf(
        "FUNCTION f : INT VAR_ARG a : INT; b : REAL; END_VAR RESULT := a; END_FUNCTION\n"
        "PROGRAM p VAR x : INT; END_VAR x := |");
    QStringList snippets;
    for (const Proposal& each : ProposalsAt(script.model, script.offset).proposals) {
        snippets.append(each.snippet);
    }
    EXPECT_TRUE(snippets.contains(QStringLiteral("f(${1:a}, ${2:b})")));
    EXPECT_TRUE(snippets.contains(QStringLiteral("pow(${1:LREAL}, ${2:LREAL})")));
}

std::vector<QString> SnippetsAt(const char* text) {
    const Marked script = ScriptOf(text);
    std::vector<QString> names;
    for (const Proposal& each : ProposalsAt(script.model, script.offset).proposals) {
        if (each.kind == ProposalKind::Snippet) {
            names.push_back(each.detail);
        }
    }
    return names;
}

TEST(Snippets, StandWhereTheirFirstWordDoes) {
    EXPECT_THAT(SnippetsAt("|"), UnorderedElementsAre("Program", "Function", "Function block"));
    EXPECT_THAT(SnippetsAt("PROGRAM p |"),
                UnorderedElementsAre("Variables", "Inputs", "Outputs"));
    EXPECT_THAT(SnippetsAt("PROGRAM p VAR x : INT; END_VAR x := 1; |"),
                UnorderedElementsAre("IF", "IF with ELSE", "FOR", "WHILE", "REPEAT", "CASE"));
}

// ---------------------------------------------------------------------------------------------
// Signatures
// ---------------------------------------------------------------------------------------------

// The label, with "*" before the parameter that is written.
QString SignatureIn(const char* statements) {
    const std::string head =
        "FUNCTION Half : REAL VAR_ARG whole : REAL; END_VAR RESULT := whole / 2; END_FUNCTION\n"
        "FUNCTION_BLOCK Bump VAR_REF total : INT; END_VAR VAR_ARG by : INT; END_VAR "
        "total := total + by; END_FUNCTION_BLOCK\n"
        "PROGRAM Demo\nVAR\nlevel : REAL := 0.0;\ncount : INT := 0;\nEND_VAR\n";
    const Marked script = ScriptOf((head + statements).c_str());
    const std::optional<Signature> found = SignatureAt(script.model, script.offset);
    if (!found) {
        return {};
    }
    SignatureText text = SignatureOf(found->callee);
    const auto parameter = static_cast<std::size_t>(found->parameter);
    return parameter < text.parameters.size()
               ? text.label.insert(text.parameters[parameter].begin, u'*')
               : text.label;
}

TEST(Signatures, AreThoseOfTheCallAroundThePlace) {
    EXPECT_EQ(SignatureIn("level := Half(|"), "Half(*whole : REAL) : REAL");
    EXPECT_EQ(SignatureIn("level := Half(Half(|1) + 1);"), "Half(*whole : REAL) : REAL");
    EXPECT_EQ(SignatureIn("level := pow(sin(1), |2);"), "pow(LREAL, *LREAL) : LREAL");
    EXPECT_EQ(SignatureIn("level := pow(sin(1)|, 2);"), "pow(*LREAL, LREAL) : LREAL");
    EXPECT_EQ(SignatureIn("level := pow(1, sin((1 + 2) * |"), "sin(*LREAL) : LREAL");
    EXPECT_EQ(SignatureIn("Bump(count,| 1);"), "Bump(VAR_REF total : INT, *by : INT)");
    EXPECT_EQ(SignatureIn("level := Half(1, |2);"), "Half(whole : REAL) : REAL");
}

TEST(Signatures, AreNoneElsewhere) {
    for (const char* place :
         {"level := Half|(1);", "level := Half(1)|;", "level := (|1);", "level := level(|1);",
          "level := unknown(|1);", "level := Half((* | *) 1);", "level := Half('|');",
          "level := Half('|", "|", "level := sin(1); count := |2;"}) {
        EXPECT_EQ(SignatureIn(place), QString()) << place;
    }
}

TEST(Signatures, AreOfWhatIsDefinedAbove) {
    const Marked script = ScriptOf(
        "FUNCTION f : INT VAR END_VAR RESULT := g(|1); END_FUNCTION\n"
        "FUNCTION g : INT VAR END_VAR RESULT := 1; END_FUNCTION\n"
        "PROGRAM p VAR END_VAR END_PROGRAM");
    EXPECT_FALSE(SignatureAt(script.model, script.offset));
}

// ---------------------------------------------------------------------------------------------
// Folds
// ---------------------------------------------------------------------------------------------

// "FIRST-LAST" by lines from 1, with "c" for comments.
std::vector<QString> FoldsIn(const char* text) {
    const Marked script = ScriptOf(text);
    const Source& source = script.model.source;
    std::vector<QString> folds;
    for (const Fold& fold : FoldsOf(script.model)) {
        folds.push_back(QStringLiteral("%1-%2%3")
                            .arg(source.placeOf(fold.span.begin).line)
                            .arg(source.placeOf(fold.span.end).line)
                            .arg(fold.isComment ? QStringLiteral("c") : QString()));
    }
    return folds;
}

TEST(Folds, LeaveTheLineOfTheEnd) {
    EXPECT_THAT(FoldsIn("PROGRAM p\nVAR\nx : INT;\nEND_VAR\nIF x > 1 THEN\nx := 1;\n"
                        "END_IF;\nEND_PROGRAM\n"),
                ElementsAre("1-7", "2-3", "5-6"));
}

TEST(Folds, HaveBranches) {
    EXPECT_THAT(FoldsIn("PROGRAM p\nVAR x : INT; END_VAR\nIF x > 1 THEN\nx := 1;\nELSIF x > 2 "
                        "THEN\nx := 2;\nELSE\nx := 3;\n\nEND_IF;\nEND_PROGRAM"),
                ElementsAre("1-10", "3-9", "5-6", "7-9"));
    EXPECT_THAT(FoldsIn("PROGRAM p\nVAR x : INT; END_VAR\nCASE x OF\n1, -2:\nx := 1;\n3..5:\n"
                        "after:\nx := 3;\nELSE\nx := 3;\nEND_CASE;\nEND_PROGRAM"),
                ElementsAre("1-11", "3-10", "4-5", "6-8", "9-10"));
}

TEST(Folds, AreOverLines) {
    EXPECT_THAT(FoldsIn("PROGRAM p VAR END_VAR END_PROGRAM"), IsEmpty());
    EXPECT_THAT(FoldsIn(""), IsEmpty());
    EXPECT_THAT(FoldsIn("PROGRAM p VAR END_VAR\nEND_PROGRAM"), IsEmpty());
    EXPECT_THAT(FoldsIn("PROGRAM p VAR\nEND_VAR END_PROGRAM"), ElementsAre("1-2"));
}

TEST(Folds, AreThereInABrokenScript) {
    EXPECT_THAT(FoldsIn("PROGRAM p\nVAR\nx : INT;\nEND_VAR\nIF x > THEN\nx := ;\nEND_IF;\n"
                        "WHILE x > 1 DO\nx := 2;\n"),
                ElementsAre("2-3", "5-6"));
}

TEST(Folds, HoldComments) {
    EXPECT_THAT(FoldsIn("// one\n  // two\n\n// three\n(* four\nfive *)\n(* six *)\n"
                        "PROGRAM p VAR END_VAR // seven\n// eight\nEND_PROGRAM"),
                ElementsAre("8-9", "1-2c", "5-6c"));
}

// ---------------------------------------------------------------------------------------------
// Selections
// ---------------------------------------------------------------------------------------------

std::vector<QString> SelectionsIn(const char* text) {
    const Marked script = ScriptOf(text);
    std::vector<QString> texts;
    for (const Span& span : SelectionsAt(script.model, script.offset)) {
        texts.push_back(TextOf(script.model, span));
    }
    return texts;
}

TEST(Selections, GrowByOperations) {
    const QString unit = QStringLiteral(
        "PROGRAM p VAR x : INT; END_VAR IF x > 1 THEN x := (x + 1) * sin(x); END_IF; "
        "END_PROGRAM");
    EXPECT_THAT(SelectionsIn("PROGRAM p VAR x : INT; END_VAR "
                             "IF x > 1 THEN x := (x + |1) * sin(x); END_IF; END_PROGRAM "),
                ElementsAre("1", "x + 1", "(x + 1)", "(x + 1) * sin(x)", "x := (x + 1) * sin(x);",
                            "IF x > 1 THEN x := (x + 1) * sin(x); END_IF",
                            "IF x > 1 THEN x := (x + 1) * sin(x); END_IF;", unit, unit + u' '));
    EXPECT_THAT(SelectionsIn("PROGRAM p VAR x : INT; END_VAR "
                             "IF x > 1 THEN x := (x + 1) * sin(x|); END_IF; END_PROGRAM "),
                IsSupersetOf({"x", "(x)", "sin(x)", "(x + 1) * sin(x)"}));
}

TEST(Selections, HoldCalls) {
    EXPECT_THAT(SelectionsIn("PROGRAM p VAR x : INT; END_VAR x := sin(|x); END_PROGRAM"),
                IsSupersetOf({"x", "(x)", "sin(x)", "x := sin(x);"}));
}

TEST(Selections, AreThereInDeclarationsAndComments) {
    EXPECT_THAT(SelectionsIn("PROGRAM p VAR x : |INT; END_VAR END_PROGRAM"),
                ElementsAre("INT", "x : INT;", "VAR x : INT; END_VAR",
                            "PROGRAM p VAR x : INT; END_VAR END_PROGRAM"));
    EXPECT_THAT(SelectionsIn("PROGRAM p VAR END_VAR (* on|e *) END_PROGRAM"),
                ElementsAre("(* one *)", "PROGRAM p VAR END_VAR (* one *) END_PROGRAM"));
    EXPECT_THAT(SelectionsIn("|"), ElementsAre(""));
    EXPECT_THAT(SelectionsIn("PROGRAM p  |"), ElementsAre("", "PROGRAM p  "));
}

// ---------------------------------------------------------------------------------------------
// Colours
// ---------------------------------------------------------------------------------------------

// The text of each colour with a letter for its meaning and marks for the rest.
std::vector<QString> ColoursIn(const char* text) {
    const Marked script = ScriptOf(text);
    const QString letters = QStringLiteral("cflnoprstv");
    std::vector<QString> colours;
    for (const Colour& each : ColoursOf(script.model)) {
        QString colour =
            TextOf(script.model, each.span) + u'/' + letters[static_cast<int>(each.meaning)];
        colour += each.isDeclaration ? QStringLiteral("!") : QString();
        colour += each.isReadOnly ? QStringLiteral("=") : QString();
        colour += each.isWritten ? QStringLiteral("<") : QString();
        colour += each.isBuiltIn ? QStringLiteral("#") : QString();
        colours.push_back(colour);
    }
    return colours;
}

TEST(Colours, TellWhatNamesAre) {
    EXPECT_THAT(
        ColoursIn("FUNCTION f : REAL VAR_ARG a : REAL; END_VAR RESULT := sin(a); "
                  "END_FUNCTION"),
        ElementsAre("f/f!", "REAL/t", "a/p!", "REAL/t", "RESULT/v<#", ":=/o", "sin/f#", "a/p"));
    EXPECT_THAT(ColoursIn("PROGRAM p VAR CONSTANT c : INT := -1; x : INT; END_VAR again: "
                          "x := c MOD TICK; GOTO again; END_PROGRAM"),
                ElementsAre("p/r!", "c/v!=", "INT/t", ":=/o", "-/o", "1/n", "x/v!", "INT/t",
                            "again/l!", "x/v<", ":=/o", "c/v=", "MOD/o", "TICK/v#", "again/l"));
}

TEST(Colours, DivideCommentsIntoLines) {
    EXPECT_THAT(ColoursIn("(* one\n\n  two *) // three\nPROGRAM"),
                ElementsAre("(* one/c", "  two *)/c", "// three/c"));
}

TEST(Colours, AreThereInABrokenScript) {
    EXPECT_THAT(ColoursIn("PROGRAM p VAR x : INT; END_VAR x := ; x := y; x := 2; END_PROGRAM"),
                IsSupersetOf({"x/v!", "x/v<", "2/n"}));
}

}  // namespace
