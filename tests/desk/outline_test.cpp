// The outline of scripts, their code, and what an editor shows between their words.

#include "marked_script.h"
#include "protocols/outline_methods.h"

#include <gtest/gtest.h>

namespace {

const QString RANGE = QStringLiteral("range");
const QString NAME = QStringLiteral("name");

constexpr const char* SCRIPT =
    "FUNCTION Twice : INT\n"
    "VAR_ARG x : INT; END_VAR\n"
    "RESULT := 2 * x;\n"
    "END_FUNCTION\n"
    "FUNCTION_BLOCK B VAR END_VAR END_FUNCTION_BLOCK\n"
    "PROGRAM P\n"
    "VAR CONSTANT most : REAL := 2.5; END_VAR\n"
    "VAR_INPUT level : REAL; END_VAR\n"
    "again: GOTO again;\n"
    "END_PROGRAM\n";

Script ScriptOf(const char* text) {
    return OpenScript(QString::fromUtf8(text));
}

QString TextAt(const Script& script, const QJsonValue& range) {
    return script.source().text(script.lines.spanOf(range.toObject())).toString();
}

// ---------------------------------------------------------------------------------------------
// Symbols
// ---------------------------------------------------------------------------------------------

Script WithTrees(const char* text) {
    Script script = ScriptOf(text);
    const QJsonObject trees = {{QStringLiteral("hierarchicalDocumentSymbolSupport"), true}};
    const QJsonObject document = {{QStringLiteral("documentSymbol"), trees}};
    script.client = {{QStringLiteral("textDocument"), document}};
    return script;
}

// Names, kinds and details, those of the children in parentheses.
QString Outline(const QJsonValue& symbols) {
    QStringList texts;
    for (const QJsonValue symbol : symbols.toArray()) {
        const QString children = Outline(symbol[QStringLiteral("children")]);
        const QString text = QStringLiteral("%1 %2 %3")
                                 .arg(symbol[NAME].toString())
                                 .arg(symbol[QStringLiteral("kind")].toInt())
                                 .arg(symbol[QStringLiteral("detail")].toString())
                                 .trimmed();
        texts.append(children.isEmpty() ? text : text + QStringLiteral(" (") + children + u')');
    }
    return texts.join(QStringLiteral(", "));
}

TEST(Symbols, UnitsHoldTheirVariablesAndLabels) {
    EXPECT_EQ(Outline(DocumentSymbolMethod(WithTrees(SCRIPT), {})).toStdString(),
              "Twice 12 FUNCTION : INT (x 13 VAR_ARG : INT), B 12 FUNCTION_BLOCK, "
              "P 2 PROGRAM (most 14 VAR : REAL, level 13 VAR_INPUT : REAL, again 20)");
}

// Whether each selection lies in its range, and each range in that of the parent.
void ExpectNested(const Script& script, const QJsonValue& symbols, Span parent) {
    for (const QJsonValue symbol : symbols.toArray()) {
        const Span range = script.lines.spanOf(symbol[RANGE].toObject());
        const Span selection =
            script.lines.spanOf(symbol[QStringLiteral("selectionRange")].toObject());
        EXPECT_LE(parent.begin, range.begin);
        EXPECT_GE(parent.end, range.end);
        EXPECT_LE(range.begin, selection.begin);
        EXPECT_GE(range.end, selection.end);
        EXPECT_FALSE(symbol[NAME].toString().isEmpty());
        ExpectNested(script, symbol[QStringLiteral("children")], range);
    }
}

TEST(Symbols, RangesAreThoseOfDeclarations) {
    const Script script = WithTrees(SCRIPT);
    const QJsonValue symbols = DocumentSymbolMethod(script, {});
    ExpectNested(script, symbols, {0, script.source().size()});
    const QJsonValue children = symbols[2][QStringLiteral("children")];
    EXPECT_EQ(TextAt(script, children[0][RANGE]).toStdString(), "CONSTANT most : REAL := 2.5;");
    EXPECT_EQ(TextAt(script, children[0][QStringLiteral("selectionRange")]).toStdString(),
              "most");
    EXPECT_EQ(TextAt(script, children[2][RANGE]).toStdString(), "again:");
}

TEST(Symbols, ABrokenScriptHasItsSymbols) {
    for (const char* const text :
         {"PROGRAM P VAR a : INT; b : ; c : INT; END_VAR a := ; c := 1; END_PROGRAM",
          "FUNCTION F : INT VAR_ARG a : INT; END_VAR PROGRAM P VAR x : INT; END_VAR", "PROGRAM",
          "FUNCTION F", "PROGRAM P VAR x", "PROGRAM P VAR x : INT; END_VAR l:", "",
          "FUNCTION : INT END_FUNCTION PROGRAM P VAR END_VAR END_PROGRAM"}) {
        const Script script = WithTrees(text);
        ExpectNested(script, DocumentSymbolMethod(script, {}), {0, script.source().size()});
    }
    EXPECT_EQ(
        Outline(DocumentSymbolMethod(
                    WithTrees("PROGRAM P VAR a : INT; b : ; c : INT; END_VAR a := ; c := 1; "
                              "END_PROGRAM"),
                    {}))
            .toStdString(),
        "P 2 PROGRAM (a 13 VAR : INT, c 13 VAR : INT)");
}

TEST(Symbols, ClientsWithoutTreesGetAList) {
    const Script script = ScriptOf(SCRIPT);
    const QJsonArray symbols = DocumentSymbolMethod(script, {}).toArray();
    EXPECT_EQ(Outline(symbols).toStdString(),
              "Twice 12, x 13, B 12, P 2, most 14, level 13, again 20");
    EXPECT_EQ(symbols[1].toObject()[QStringLiteral("containerName")], QStringLiteral("Twice"));
    EXPECT_EQ(symbols[1][QStringLiteral("location")][QStringLiteral("uri")], script.uri);
}

TEST(WorkspaceSymbols, LettersOfTheQueryStandInTheirOrder) {
    const Script one = ScriptOf(SCRIPT);
    Script other = ScriptOf("PROGRAM Насос VAR Most2 : INT; END_VAR END_PROGRAM");
    other.uri = QStringLiteral("file:///other.st");
    const std::vector<const Script*> scripts = {&one, &other};
    const auto names = [&scripts](const char* query) {
        return Outline(WorkspaceSymbols(scripts, QString::fromUtf8(query))).toStdString();
    };
    EXPECT_EQ(names("mst"), "most 14, Most2 13");
    EXPECT_EQ(names("ОС"), "Насос 2");
    EXPECT_EQ(names("tsom"), "");
    EXPECT_EQ(names("most22"), "");
    EXPECT_EQ(WorkspaceSymbolMethod(scripts, {}).toArray().size(), 9);
    const QJsonValue found = WorkspaceSymbols(scripts, QStringLiteral("most2"));
    EXPECT_EQ(found[0][QStringLiteral("location")][QStringLiteral("uri")], other.uri);
}

// ---------------------------------------------------------------------------------------------
// Code
// ---------------------------------------------------------------------------------------------

TEST(CodeLens, EachUnitHasOne) {
    const Script script = ScriptOf(SCRIPT);
    const QJsonArray lenses = CodeLensMethod(script, {}).toArray();
    ASSERT_EQ(lenses.size(), 3);
    EXPECT_EQ(TextAt(script, lenses[2][RANGE]).toStdString(), "P");
    const QJsonValue command = lenses[2][QStringLiteral("command")];
    EXPECT_EQ(command[QStringLiteral("command")], QStringLiteral("yxst.showCode"));
    EXPECT_EQ(command[QStringLiteral("arguments")][0], script.uri);
    EXPECT_EQ(command[QStringLiteral("arguments")][1], lenses[2][RANGE]);
}

// Each item with its piece of the script.
std::string CodeTexts(const Script& script, const QJsonObject& params) {
    QStringList texts;
    for (const QJsonValue item : CodeMethod(script, params)[QStringLiteral("items")].toArray()) {
        texts.append(item[QStringLiteral("text")].toString() + QStringLiteral(" <") +
                     TextAt(script, item[RANGE]) + u'>');
    }
    return texts.join(u'\n').toStdString();
}

TEST(Code, EachItemHasItsPiece) {
    const Script script = ScriptOf(
        "PROGRAM P // tank\nVAR a : INT; b : INT; END_VAR\n"
        "a := 1; b :=\n2;\n"
        "IF a = 1 THEN // yes\nb := 3;\nEND_IF;\nEND_PROGRAM");
    EXPECT_EQ(CodeTexts(script, {}),
              "PROG: <PROGRAM P>\nP <PROGRAM P>\nVAR: <PROGRAM P>\n"
              "a V INT 0 <a : INT;>\nb V INT 0 <b : INT;>\n"
              "MAIN: <PROGRAM P>\n"
              "MOV 1 #A0 <a := 1;>\nMOV #A0 @a <a := 1;>\n"
              "MOV 2 #A0 <b :=\n2;>\nMOV #A0 @b <b :=\n2;>\n"
              "MOV @a #A0 <IF a = 1 THEN>\nMOV #A0 $PUSH <IF a = 1 THEN>\n"
              "MOV 1 #A0 <IF a = 1 THEN>\nEQ $POP #A0 <IF a = 1 THEN>\n"
              "TST #A0 <IF a = 1 THEN>\nJMPF L2 <IF a = 1 THEN>\n"
              "MOV 3 #A0 <b := 3;>\nMOV #A0 @b <b := 3;>\nL2: <END_IF;>\nRET <END_PROGRAM>");
}

TEST(Code, ARangeChoosesUnits) {
    const Script script = ScriptOf(SCRIPT);
    const QJsonObject range = CodeLensMethod(script, {})[0][RANGE].toObject();
    EXPECT_EQ(CodeTexts(script, {{RANGE, range}}),
              "Twice: <FUNCTION Twice : INT>\nRESULT V INT 0 <FUNCTION Twice : INT>\n"
              "x VA INT 0 <x : INT;>\nBODY: <FUNCTION Twice : INT>\n"
              "MOV $POP #A0 <FUNCTION Twice : INT>\nMOV #A0 @x <FUNCTION Twice : INT>\n"
              "MOV 2 #A0 <RESULT := 2 * x;>\nMOV #A0 $PUSH <RESULT := 2 * x;>\n"
              "MOV @x #A0 <RESULT := 2 * x;>\nMUL $POP #A0 <RESULT := 2 * x;>\n"
              "MOV #A0 @RESULT <RESULT := 2 * x;>\nMOV @RESULT #A0 <END_FUNCTION>\n"
              "RET <END_FUNCTION>");
}

TEST(Code, ABrokenScriptHasNone) {
    EXPECT_EQ(CodeTexts(ScriptOf("PROGRAM P VAR a : INT; END_VAR a := ; END_PROGRAM"), {}), "");
    EXPECT_EQ(CodeTexts(ScriptOf(""), {}), "");
}

// ---------------------------------------------------------------------------------------------
// Hints
// ---------------------------------------------------------------------------------------------

// The script with its hints in it.
std::string Hinted(const Script& script, const QJsonObject& range) {
    QString text = script.source().text();
    const QJsonArray hints = InlayHintMethod(script, {{RANGE, range}}).toArray();
    for (int index = hints.size() - 1; index >= 0; --index) {
        const QJsonValue hint = hints[index];
        const int offset = script.lines.offsetOf(hint[QStringLiteral("position")].toObject());
        text.insert(offset, u'<' + hint[QStringLiteral("label")].toString() + u'>');
    }
    return text.toStdString();
}

std::string HintedStatement(const char* statement) {
    const QString head = QStringLiteral(
        "FUNCTION F : INT VAR_ARG a : INT; b : LREAL; END_VAR RESULT := a; a := b; END_FUNCTION\n"
        "PROGRAM P VAR x : LREAL := 1; a : INT := 1; END_VAR\n");
    const Script script =
        OpenScript(head + QString::fromUtf8(statement) + QStringLiteral("\nEND_PROGRAM"));
    const Span all = {head.size(), head.size() + static_cast<int>(std::strlen(statement))};
    const std::string hinted = Hinted(script, script.lines.rangeOf(all));
    const auto begin = static_cast<std::size_t>(head.size());
    return hinted.substr(begin, hinted.size() - begin - std::strlen("\nEND_PROGRAM"));
}

TEST(Hints, ParametersHaveTheirNames) {
    EXPECT_EQ(HintedStatement("x := F(1, F((a), 2.5));"),
              "x := F(<a:>1, <b:>F(<a:>(a), <b:>2.5));");
    EXPECT_EQ(HintedStatement("x := F(A, x);"), "x := F(A, <b:>x);");
    EXPECT_EQ(HintedStatement("x := F(a + 1, x);"), "x := F(<a:>a + 1, <b:>x);");
    EXPECT_EQ(HintedStatement("yxSetGV(3, x);"), "yxSetGV(<number:>3, <value:>x);");
    EXPECT_EQ(HintedStatement("x := sin(x);"), "x := sin(x);");
}

TEST(Hints, LiteralsHaveTheTypesThatSurprise) {
    EXPECT_EQ(HintedStatement("x := 100 + 200 - 30000 + 40000;"),
              "x := 100 + 200<: USINT> - 30000 + 40000<: UINT>;");
    EXPECT_EQ(HintedStatement("x := 3000000000 + 1.5 + 3.5E40;"),
              "x := 3000000000<: UDINT> + 1.5 + 3.5E40<: LREAL>;");
    EXPECT_EQ(HintedStatement("x := 16#1F + 8#17;"),
              "x := 16#1F<= 31 : SINT> + 8#17<= 15 : SINT>;");
    EXPECT_EQ(HintedStatement("x := (* c *) 1;"), "x := (* c *) 1<: no type>;");
}

TEST(Hints, InitialValuesHaveTheTypeOfTheirVariable) {
    const Script script = ScriptOf(
        "PROGRAM P VAR a : UINT := 40000; b : INT := -2#11; END_VAR\n"
        "a := 1; END_PROGRAM");
    const QJsonObject all = script.lines.rangeOf({0, script.source().size()});
    EXPECT_EQ(Hinted(script, all),
              "PROGRAM P VAR a : UINT := 40000; b : INT := -2#11<= 3>; END_VAR\n"
              "a := 1; END_PROGRAM");
}

TEST(Hints, OnlyThoseOfTheRangeAreGiven) {
    const Script script = ScriptOf(
        "PROGRAM P VAR a : INT; END_VAR\na := 16#1;\na := 16#2;\n"
        "a := 16#3; END_PROGRAM");
    const int line = script.source().text().indexOf(QStringLiteral("a := 16#2"));
    EXPECT_EQ(Hinted(script, script.lines.rangeOf({line, line + 10})),
              "PROGRAM P VAR a : INT; END_VAR\na := 16#1;\na := 16#2<= 2 : SINT>;\n"
              "a := 16#3; END_PROGRAM");
}

TEST(Hints, ParametersTellWhatTheyAre) {
    const Script script = ScriptOf(
        "FUNCTION_BLOCK B VAR_REF v : INT; END_VAR v := 1; "
        "END_FUNCTION_BLOCK\n"
        "PROGRAM P VAR a : INT := 1; END_VAR B(a); END_PROGRAM");
    const QJsonObject all = script.lines.rangeOf({0, script.source().size()});
    const QJsonValue hint = InlayHintMethod(script, {{RANGE, all}})[0];
    EXPECT_EQ(hint[QStringLiteral("kind")], 2);
    EXPECT_EQ(hint[QStringLiteral("tooltip")][QStringLiteral("value")],
              QStringLiteral("```st\nv : INT;\n```\n\n"
                             "Parameter by reference of function block `B` (`VAR_REF`)"));
}

TEST(Hints, ABrokenPieceHasNone) {
    const Script script = ScriptOf(
        "PROGRAM P VAR a : INT; END_VAR a := 16#1 + ; a := sin(2#11; "
        "a := 16#3; END_PROGRAM");
    const QJsonObject all = script.lines.rangeOf({0, script.source().size()});
    EXPECT_EQ(Hinted(script, all),
              "PROGRAM P VAR a : INT; END_VAR a := 16#1 + ; a := sin(2#11; "
              "a := 16#3<= 3 : SINT>; END_PROGRAM");
}

}  // namespace
