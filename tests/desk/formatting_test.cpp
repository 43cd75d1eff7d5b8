// The layout of scripts in an editor: the whole, a range, what was ended.

#include "marked_script.h"
#include "print_text.h"
#include "protocols/editor_text.h"
#include "protocols/formatting_methods.h"
#include "protocols/methods.h"

#include <gmock/gmock.h>

#include <QJsonArray>

namespace {

// The script after the edits of an answer, which are applied from the last to the first.
QString Applied(const Script& script, const QJsonValue& answer) {
    QString text = script.source().text();
    const QJsonArray edits = answer.toArray();
    for (int index = edits.size() - 1; index >= 0; --index) {
        const Span span = script.lines.spanOf(edits[index][QStringLiteral("range")].toObject());
        text.replace(span.begin, span.length(),
                     edits[index][QStringLiteral("newText")].toString());
    }
    return text;
}

// The text after the edits that are made for it, as an editor makes them.
QString InEditor(const QString& text, QJsonValue method(const Script&, const QJsonObject&),
                 const QJsonObject& params = {}) {
    EditorText edited(text);
    const QJsonArray edits = method(OpenScript(text), params).toArray();
    for (int index = edits.size() - 1; index >= 0; --index) {
        const QJsonObject edit = edits[index].toObject();
        edited.change({{QStringLiteral("range"), edit[QStringLiteral("range")]},
                       {QStringLiteral("text"), edit[QStringLiteral("newText")]}});
    }
    return edited.text();
}

QJsonObject RangeOf(const Script& script, const QString& piece) {
    const int begin = script.source().text().indexOf(piece);
    return {{QStringLiteral("range"), script.lines.rangeOf({begin, begin + piece.size()})}};
}

QString Program(const char* statements) {
    return QStringLiteral("PROGRAM p\nVAR\n  a : INT;\nEND_VAR\n") +
           QString::fromUtf8(statements);
}

TEST(Formatting, IsOfTheWholeScript) {
    const Script script = OpenScript(Program("a:=1;\r\nif a>1 then a:=2;end_if;\nend_program\n"));
    EXPECT_EQ(Applied(script, FormattingMethod(script, {})),
              "PROGRAM p\nVAR\n    a : INT;\nEND_VAR\n    a := 1;\n    IF a > 1 THEN\n"
              "        a := 2;\n    END_IF;\nEND_PROGRAM\n");
}

TEST(Formatting, HasTheIndentOfTheEditor) {
    const Script script = OpenScript(Program("a := 1;\nEND_PROGRAM\n"));
    const QJsonObject params = {
        {QStringLiteral("options"), QJsonObject{{QStringLiteral("tabSize"), 2}}}};
    EXPECT_EQ(Applied(script, FormattingMethod(script, params)),
              Program("  a := 1;\nEND_PROGRAM\n"));
}

TEST(Formatting, ChangesNothingOfWhatIsFine) {
    const Script script = OpenScript(QStringLiteral("PROGRAM p\nVAR\nEND_VAR\nEND_PROGRAM\n"));
    EXPECT_EQ(FormattingMethod(script, {}).toArray().size(), 0);
    const Script empty = OpenScript(QString());
    EXPECT_EQ(Applied(empty, FormattingMethod(empty, {})), QString());
}

TEST(Formatting, IsOfWhatStandsBeforeAnError) {
    const Script script = OpenScript(Program("a:=1;\na:=;\na:=2;\n"));
    EXPECT_EQ(Applied(script, FormattingMethod(script, {})),
              "PROGRAM p\nVAR\n    a : INT;\nEND_VAR\n    a := 1;\na:=;\na:=2;\n");
}

TEST(Formatting, IsOfARange) {
    const Script script = OpenScript(Program("a:=1;\na:=2;\na:=3;\nEND_PROGRAM\n"));
    EXPECT_EQ(
        Applied(script, RangeFormattingMethod(script, RangeOf(script, QStringLiteral("a:=2;")))),
        Program("a:=1;\n    a := 2;\na:=3;\nEND_PROGRAM\n"));
}

TEST(Formatting, EndsBeforeALineOfWhichNothingIsSelected) {
    const QString text = Program("a:=1;\na:=2;\na:=3;\nEND_PROGRAM\n");
    const auto formatted = [&text](const QString& piece) {
        return InEditor(text, RangeFormattingMethod, RangeOf(OpenScript(text), piece));
    };
    EXPECT_EQ(formatted(QStringLiteral("a:=2;\n")),
              Program("a:=1;\n    a := 2;\na:=3;\nEND_PROGRAM\n"));
    EXPECT_EQ(formatted(QStringLiteral("p\nVAR\n")), text);
}

TEST(Formatting, OfAnEmptyRangeIsOfItsLine) {
    const QString text = Program("a:=1;\na:=2;\nEND_PROGRAM\n");
    const Script script = OpenScript(text);
    const int begin = text.indexOf(QStringLiteral("a:=2"));
    const QJsonObject params = {{QStringLiteral("range"), script.lines.rangeOf({begin, begin})}};
    EXPECT_EQ(InEditor(text, RangeFormattingMethod, params),
              Program("a:=1;\n    a := 2;\nEND_PROGRAM\n"));
}

TEST(Formatting, LeavesEmptyLinesOutsideOfTheRange) {
    const Script script = OpenScript(Program("a:=1;\n\n\na:=2;\nEND_PROGRAM\n"));
    EXPECT_EQ(Applied(script,
                      RangeFormattingMethod(script, RangeOf(script, QStringLiteral("a:=1;\n")))),
              Program("    a := 1;\n\n\na:=2;\nEND_PROGRAM\n"));
    EXPECT_EQ(
        Applied(script, RangeFormattingMethod(script, RangeOf(script, QStringLiteral("a:=2;")))),
        Program("a:=1;\n\n\n    a := 2;\nEND_PROGRAM\n"));
}

// ---------------------------------------------------------------------------------------------
// The ends of lines
// ---------------------------------------------------------------------------------------------

const char* const SHORT = "PROGRAM p\nVAR\na:INT;\nEND_VAR\na:=1;a:=2;\nEND_PROGRAM\n";

QString WithEnds(const char* text, const char* end) {
    return QString::fromLatin1(text).replace(QLatin1Char('\n'), QLatin1String(end));
}

TEST(FormattingOfLineEnds, AreThoseOfTheFirstLine) {
    const char* const formatted =
        "PROGRAM p\nVAR\n    a : INT;\nEND_VAR\n    a := 1;\n    a := 2;"
        "\nEND_PROGRAM\n";
    EXPECT_EQ(InEditor(WithEnds(SHORT, "\r\n"), FormattingMethod), WithEnds(formatted, "\r\n"));
    const QString mixed =
        WithEnds(SHORT, "\r\n").replace(QStringLiteral("p\r"), QStringLiteral("p"));
    EXPECT_EQ(
        InEditor(mixed, FormattingMethod),
        "PROGRAM p\nVAR\r\n    a : INT;\nEND_VAR\r\n    a := 1;\n    a := 2;\nEND_PROGRAM\r\n");
}

TEST(FormattingOfLineEnds, OfCrAloneAreRefused) {
    const char* const reason = "a carriage return stands within a line";
    const Script script = OpenScript(WithEnds(SHORT, "\r"));
    const QJsonObject range = RangeOf(script, script.source().text());
    for (const auto method : {FormattingMethod, RangeFormattingMethod}) {
        try {
            method(script, range);
            ADD_FAILURE();
        } catch (const RequestFailed& failed) {
            EXPECT_EQ(failed.why, reason);
        }
    }
    const MarkedScript typed = Marked(QStringLiteral("PROGRAM p\rVAR\ra:INT;|\rEND_VAR\r"));
    EXPECT_EQ(OnTypeFormattingMethod(typed.script, typed.params()), QJsonArray());
}

QString AfterTyping(const char* statements) {
    const MarkedScript script = Marked(Program(statements));
    return Applied(script.script, OnTypeFormattingMethod(script.script, script.params()));
}

TEST(Formatting, IsOfTheStatementThatEnds) {
    EXPECT_EQ(AfterTyping("a:=1;\na:=2;|\nEND_PROGRAM\n"),
              Program("a:=1;\n    a := 2;\nEND_PROGRAM\n"));
    EXPECT_EQ(AfterTyping("a:=1;\nif a>1 then\na:=2;\nend_if;|\nEND_PROGRAM\n"),
              Program("a:=1;\n    IF a > 1 THEN\n        a := 2;\n    END_IF;\nEND_PROGRAM\n"));
    EXPECT_EQ(AfterTyping("a:=2;|\na := ;\n"), Program("    a := 2;\na := ;\n"));
}

TEST(Formatting, IsOfTheStatementThatEndsInAnOpenBlock) {
    EXPECT_EQ(AfterTyping("IF a=1 THEN\na:=2;|"), Program("IF a=1 THEN\n        a := 2;"));
    EXPECT_EQ(AfterTyping("FOR a:=1 TO 2 DO\na:=2;|\n"),
              Program("FOR a:=1 TO 2 DO\n        a := 2;\n"));
    EXPECT_EQ(AfterTyping("CASE a OF\n1:REPEAT\na:=2;|\nEND_PROGRAM\n"),
              Program("CASE a OF\n1:REPEAT\n            a := 2;\nEND_PROGRAM\n"));
}

TEST(Formatting, IsOfTheDeclarationThatEnds) {
    const MarkedScript script =
        Marked(QStringLiteral("PROGRAM p\nVAR\na:INT;|\nEND_VAR\na:=1;\nEND_PROGRAM\n"));
    EXPECT_EQ(Applied(script.script, OnTypeFormattingMethod(script.script, script.params())),
              "PROGRAM p\nVAR\n    a : INT;\nEND_VAR\na:=1;\nEND_PROGRAM\n");
}

TEST(Formatting, IsOfNothingWhereNothingEnds) {
    EXPECT_EQ(AfterTyping("a:=1; // a;|\nEND_PROGRAM\n"), Program("a:=1; // a;\nEND_PROGRAM\n"));
    EXPECT_EQ(AfterTyping("a:=;|\nEND_PROGRAM\n"), Program("a:=;\nEND_PROGRAM\n"));
    EXPECT_EQ(AfterTyping("|a:=1;\nEND_PROGRAM\n"), Program("a:=1;\nEND_PROGRAM\n"));
}

TEST(Formatting, IsTold) {
    const QJsonObject capabilities = MethodCapabilities();
    for (const char* name : {"documentFormattingProvider", "documentRangeFormattingProvider"}) {
        EXPECT_EQ(capabilities[QLatin1String(name)], QJsonValue(true)) << name;
    }
    EXPECT_EQ(capabilities[QStringLiteral("documentOnTypeFormattingProvider")]
                  .toObject()[QStringLiteral("firstTriggerCharacter")],
              QJsonValue(QStringLiteral(";")));
}

}  // namespace
