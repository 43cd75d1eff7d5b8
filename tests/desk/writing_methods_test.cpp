// What helps to write a script, as an editor gets it.

#include "protocols/writing_methods.h"
#include "marked_script.h"
#include "print_text.h"
#include "protocols/mending_methods.h"
#include "protocols/methods.h"

#include <gmock/gmock.h>

#include <QJsonDocument>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// JSON without its quotes where it is written in a test: 'a' stands for "a".
QJsonObject Json(const char* text) {
    QByteArray bytes(text);
    bytes.replace('\'', '"');
    return QJsonDocument::fromJson(bytes).object();
}

QString TextOf(const QJsonValue& value) {
    const QJsonDocument document =
        value.isArray() ? QJsonDocument(value.toArray()) : QJsonDocument(value.toObject());
    return QString::fromUtf8(document.toJson(QJsonDocument::Compact)).replace(u'"', u'\'');
}

// A value some members down.
QJsonValue At(QJsonValue value, std::initializer_list<const char*> members) {
    for (const char* member : members) {
        value = value[QLatin1String(member)];
    }
    return value;
}

QJsonObject ItemNamed(const QJsonValue& items, const QString& label) {
    const QJsonArray all = items.toArray();
    for (const QJsonValue& item : all) {
        if (item[QStringLiteral("label")].toString() == label) {
            return item.toObject();
        }
    }
    return {};
}

const QJsonObject SNIPPETS =
    Json("{'textDocument': {'completion': {'completionItem': {'snippetSupport': true}}}}");

QString Program(const char* statements) {
    return QStringLiteral("PROGRAM p\r\nVAR\r\nlevel : INT;\r\nEND_VAR\r\n") +
           QString::fromUtf8(statements);
}

// ---------------------------------------------------------------------------------------------
// Completion
// ---------------------------------------------------------------------------------------------

TEST(CompletionMethod, TakesThePlaceOfTheWord) {
    const MarkedScript script = Marked(Program("(* \U0001F600 *) level := LE|v + 1;"));
    const QJsonValue items = CompletionMethod(script.script, script.params());
    const QJsonObject level = ItemNamed(items, QStringLiteral("level"));
    EXPECT_EQ(script.textOf(At(level, {"textEdit", "range"})), "LEv");
    EXPECT_EQ(At(level, {"textEdit", "range", "start", "character"}).toInt(), 18);
    EXPECT_EQ(At(level, {"textEdit", "newText"}).toString(), "level");
    EXPECT_EQ(At(level, {"filterText"}).toString(), "LEvel");
    EXPECT_EQ(At(level, {"detail"}).toString(), "INT, VAR");
}

TEST(CompletionMethod, HasGapsForWhoTakesThem) {
    MarkedScript script = Marked(Program("level := |"));
    const auto sine = [&script] {
        return ItemNamed(CompletionMethod(script.script, script.params()), QStringLiteral("sin"));
    };
    EXPECT_EQ(At(sine(), {"textEdit", "newText"}).toString(), "sin");
    EXPECT_TRUE(At(sine(), {"insertTextFormat"}).isUndefined());
    script.script.client = SNIPPETS;
    EXPECT_EQ(At(sine(), {"textEdit", "newText"}).toString(), "sin(${1:LREAL})");
    EXPECT_EQ(At(sine(), {"insertTextFormat"}).toInt(), 2);
    EXPECT_EQ(At(sine(), {"documentation", "value"}).toString(), "sine");
}

TEST(CompletionMethod, LeavesTheParenthesesOfACall) {
    MarkedScript script = Marked(Program("level := si|(1);"));
    script.script.client = SNIPPETS;
    const QJsonValue items = CompletionMethod(script.script, script.params());
    EXPECT_EQ(At(ItemNamed(items, QStringLiteral("sin")), {"textEdit", "newText"}).toString(),
              "sin");
}

TEST(CompletionMethod, HasSnippetsForWhoTakesThem) {
    MarkedScript script = Marked(Program("level := 1; |"));
    const auto countOfIf = [&script] {
        const QJsonArray items = CompletionMethod(script.script, script.params()).toArray();
        return std::count_if(items.begin(), items.end(), [](const QJsonValue& item) {
            return item[QStringLiteral("label")].toString() == QLatin1String("IF");
        });
    };
    EXPECT_EQ(countOfIf(), 1);
    script.script.client = SNIPPETS;
    EXPECT_EQ(countOfIf(), 3);
}

TEST(CompletionMethod, PutsWhatIsNearestFirst) {
    const MarkedScript script =
        Marked(QStringLiteral("FUNCTION zone : INT VAR END_VAR RESULT := 1; END_FUNCTION\n") +
               Program("level := |"));
    const QJsonValue items = CompletionMethod(script.script, script.params());
    QStringList keys;
    for (const char* name : {"level", "zone", "acos", "FALSE"}) {
        keys.append(At(ItemNamed(items, QString::fromLatin1(name)), {"sortText"}).toString());
    }
    QStringList sorted = keys;
    sorted.sort();
    EXPECT_EQ(keys, sorted);
}

// ---------------------------------------------------------------------------------------------
// Signatures, folds, selections, colours
// ---------------------------------------------------------------------------------------------

TEST(SignatureHelpMethod, TellsTheParameter) {
    const MarkedScript script = Marked(Program("level := pow(1, |"));
    const QJsonValue help = SignatureHelpMethod(script.script, script.params());
    EXPECT_EQ(At(help, {"activeParameter"}).toInt(), 1);
    const QJsonValue signature = help[QStringLiteral("signatures")][0];
    EXPECT_EQ(At(signature, {"label"}).toString(), "pow(LREAL, LREAL) : LREAL");
    EXPECT_EQ(TextOf(At(signature, {"parameters"})), "[{'label':[4,9]},{'label':[11,16]}]");
    const MarkedScript none = Marked(Program("level := |1;"));
    EXPECT_TRUE(SignatureHelpMethod(none.script, none.params()).isNull());
}

TEST(FoldingRangeMethod, CountsLinesFromZero) {
    const Script script = OpenScript(Program("(* one\r\ntwo *) level := 1;\r\nEND_PROGRAM"));
    EXPECT_EQ(TextOf(FoldingRangeMethod(script, {})),
              "[{'endLine':5,'startLine':0},{'endLine':2,'startLine':1},"
              "{'endLine':5,'kind':'comment','startLine':4}]");
}

TEST(SelectionRangeMethod, HasAChainForEachPosition) {
    const MarkedScript script = Marked(Program("level := 1 + |level;\r\nEND_PROGRAM"));
    QJsonObject params = script.params();
    const QJsonValue position = params[QStringLiteral("position")];
    params[QStringLiteral("positions")] = QJsonArray{position, script.script.lines.positionOf(0)};
    const QJsonArray chains = SelectionRangeMethod(script.script, params).toArray();
    ASSERT_EQ(chains.size(), 2);
    EXPECT_EQ(script.textOf(At(chains[0], {"range"})), "level");
    EXPECT_EQ(script.textOf(At(chains[0], {"parent", "range"})), "1 + level");
    EXPECT_EQ(script.textOf(At(chains[0], {"parent", "parent", "range"})), "level := 1 + level;");
    EXPECT_EQ(script.textOf(At(chains[1], {"range"})), "PROGRAM");
}

TEST(SemanticTokensMethod, TellsEachFromTheOneBefore) {
    const Script script =
        OpenScript(QStringLiteral("PROGRAM p\r\nVAR x : INT; (* \U0001F600 *) y : INT; END_VAR"));
    EXPECT_EQ(TextOf(SemanticTokensMethod(script, {})),
              "{'data':[0,8,1,6,1,1,4,1,9,1,0,4,3,8,0,0,5,8,0,0,0,9,1,9,1,0,4,3,8,0]}");
    const QJsonObject range = Json(
        "{'range': {'start': {'line': 1, 'character': 12}, "
        "'end': {'line': 1, 'character': 23}}}");
    EXPECT_EQ(TextOf(SemanticTokensRangeMethod(script, range)),
              "{'data':[1,13,8,0,0,0,9,1,9,1]}");
    EXPECT_EQ(TextOf(SemanticTokensMethod(OpenScript(QString()), {})), "{'data':[]}");
}

TEST(Methods, HaveALegendAndWhatBeginsThem) {
    const QJsonObject capabilities = MethodCapabilities();
    EXPECT_EQ(At(capabilities, {"semanticTokensProvider", "legend", "tokenTypes"}).toArray()[9],
              QJsonValue(QStringLiteral("variable")));
    EXPECT_TRUE(At(capabilities, {"completionProvider"}).isObject());
    EXPECT_EQ(TextOf(At(capabilities, {"signatureHelpProvider", "triggerCharacters"})),
              "['(',',']");
}

// ---------------------------------------------------------------------------------------------
// Code actions
// ---------------------------------------------------------------------------------------------

QJsonObject ActionParams(const MarkedScript& script, const char* context) {
    QJsonObject params = script.params();
    const QJsonValue position = params[QStringLiteral("position")];
    params[QStringLiteral("range")] =
        QJsonObject{{QStringLiteral("start"), position}, {QStringLiteral("end"), position}};
    params[QStringLiteral("context")] = Json(context);
    return params;
}

std::vector<QString> KindsOf(const QJsonValue& actions) {
    std::vector<QString> kinds;
    const QJsonArray all = actions.toArray();
    for (const QJsonValue& action : all) {
        kinds.push_back(action[QStringLiteral("kind")].toString());
    }
    return kinds;
}

TEST(CodeActionMethod, MendsWhatADiagnosticTells) {
    MarkedScript script = Marked(Program("level |= 1;\r\nEND_PROGRAM"));
    const QJsonObject params = ActionParams(
        script,
        "{'diagnostics': [{'range': {'start': {'line': 4, 'character': 6}, "
        "'end': {'line': 4, 'character': 7}}, 'code': 'expected-but', 'message': 'one'}, "
        "{'range': {'start': {'line': 0, 'character': 6}, "
        "'end': {'line': 4, 'character': 7}}, 'code': 'expected-but', 'message': 'two'}, "
        "{'range': {'start': {'line': 4, 'character': 6}, "
        "'end': {'line': 4, 'character': 8}}, 'code': 'expected-but', 'message': 'three'}]}");
    const QJsonArray actions = CodeActionMethod(script.script, params).toArray();
    ASSERT_EQ(actions.size(), 1);
    EXPECT_EQ(At(actions[0], {"kind"}).toString(), "quickfix");
    EXPECT_TRUE(At(actions[0], {"isPreferred"}).toBool());
    EXPECT_EQ(At(actions[0], {"diagnostics"}).toArray().size(), 1);
    const QJsonArray edits = At(actions[0], {"edit", "changes", "file:///test.st"}).toArray();
    ASSERT_EQ(edits.size(), 1);
    EXPECT_EQ(script.textOf(At(edits[0], {"range"})), "=");
    EXPECT_EQ(At(edits[0], {"newText"}).toString(), ":=");
}

TEST(CodeActionMethod, AnswersWhatIsAskedFor) {
    const MarkedScript script = Marked(Program("level |= 1;\r\nlevel = 2;\r\nEND_PROGRAM"));
    const auto kindsFor = [&script](const char* context) {
        return KindsOf(CodeActionMethod(script.script, ActionParams(script, context)));
    };
    EXPECT_THAT(kindsFor("{}"), ElementsAre("quickfix"));
    EXPECT_THAT(kindsFor("{'only': ['quickfix']}"), ElementsAre("quickfix"));
    EXPECT_THAT(kindsFor("{'only': ['source']}"), ElementsAre("source.fixAll", "source.format"));
    EXPECT_THAT(kindsFor("{'only': ['source.format']}"), ElementsAre("source.format"));
    EXPECT_THAT(kindsFor("{'only': ['source.fixAll']}"), ElementsAre("source.fixAll"));
    EXPECT_THAT(kindsFor("{'only': ['refactor']}"), IsEmpty());
}

TEST(CodeActionMethod, PrefersWhatIsCertain) {
    const MarkedScript script = Marked(Program("level := 2|,5;\r\nEND_PROGRAM"));
    const QJsonArray actions =
        CodeActionMethod(script.script, ActionParams(script, "{}")).toArray();
    ASSERT_EQ(actions.size(), 1);
    EXPECT_EQ(At(actions[0], {"title"}).toString(), "A fraction follows a point: write `2.5`");
    EXPECT_TRUE(At(actions[0], {"isPreferred"}).isUndefined());
    EXPECT_EQ(
        CodeActionMethod(script.script, ActionParams(script, "{'only': ['source.fixAll']}")),
        QJsonArray());
}

TEST(CodeActionMethod, MendsAllAtOnce) {
    const MarkedScript script = Marked(Program("level |= 1;\r\nlevel = 2;\r\nEND_PROGRAM"));
    const QJsonArray actions =
        CodeActionMethod(script.script, ActionParams(script, "{'only': ['source.fixAll']}"))
            .toArray();
    ASSERT_EQ(actions.size(), 1);
    EXPECT_EQ(At(actions[0], {"edit", "changes", "file:///test.st"}).toArray().size(), 2);
}

}  // namespace
