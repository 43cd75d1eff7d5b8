// The lints: each fires at the right place, and on no script that is nearly the same.

#include "lints/lints.h"

#include "explain/entries.h"
#include "facts/compile.h"
#include "lint_cases.h"
#include "print_text.h"

#include <gmock/gmock.h>

#include <QSet>

#include <stdexcept>

using testing::IsEmpty;

namespace {

Source SourceOf(const QString& text) {
    return Source(QStringLiteral("script.st"), text);
}

std::vector<Diagnostic> FoundIn(const Source& source, const QStringList& disabled = {}) {
    const CompileResult result = CompileAndWait(source);
    if (!result.facts || !result.facts->isCompiled()) {
        throw std::runtime_error(source.text().toStdString());
    }
    return FindLints(source, *result.facts, disabled);
}

QStringList IdsIn(const QString& script, const QStringList& disabled = {}) {
    QStringList ids;
    for (const Diagnostic& each : FoundIn(SourceOf(script), disabled)) {
        ids.append(each.id);
    }
    return ids;
}

void ExpectFinding(const LintCase& expected) {
    const Source source = SourceOf(expected.script);
    const std::vector<Diagnostic> found = FoundIn(source);
    ASSERT_EQ(found.size(), 1U) << expected.script.toStdString();
    const Diagnostic& finding = found.front();
    const QString help = QString::fromUtf8(expected.help);
    EXPECT_EQ(finding.level, Level::Warning);
    EXPECT_EQ(finding.id, QLatin1String(expected.id));
    EXPECT_EQ(finding.message, QString::fromUtf8(expected.message));
    EXPECT_EQ(source.text(finding.span).toString(), QString::fromUtf8(expected.marked));
    ASSERT_EQ(finding.helps.size(), help.isEmpty() ? 0U : 1U) << expected.script.toStdString();
    if (!help.isEmpty()) {
        EXPECT_EQ(finding.helps.front().text, help);
        EXPECT_EQ(finding.helps.front().id, finding.id);
    }
}

std::vector<LintCase> AllCases() {
    std::vector<LintCase> all;
    for (const auto cases :
         {CasesOfStatements, CasesOfDeclarations, CasesOfGrouping, CasesOfValues}) {
        const std::vector<LintCase> some = cases();
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

TEST(Lints, FireOnTheirCases) {
    for (const LintCase& each : AllCases()) {
        ExpectFinding(each);
    }
}

TEST(Lints, AreSilentOnNearMisses) {
    for (const QString& script : ScriptsWithoutLints()) {
        EXPECT_THAT(IdsIn(script), IsEmpty()) << script.toStdString();
    }
}

TEST(Lints, MessagesAndHelpsAreNoSentences) {
    for (const LintCase& each : AllCases()) {
        const QString message = QString::fromUtf8(each.message);
        EXPECT_FALSE(message.endsWith(u'.')) << each.message;
        EXPECT_FALSE(message.contains(u'`')) << each.message;
        EXPECT_EQ(QString::fromUtf8(each.help).count(u'`') % 2, 0) << each.help;
    }
}

TEST(Lints, StandInTheOrderOfTheScript) {
    const QString script =
        LintedStatements("x := r = q;\nu := 256; x := x AND y OR a / b / c > 1;\nend: a := 1;");
    EXPECT_EQ(IdsIn(script),
              (QStringList{"real-equality", "constant-out-of-range", "surprising-condition",
                           "surprising-grouping", "unused-label"}));
}

TEST(Lints, OfErrorsThereAreNone) {
    const Source source = SourceOf(LintedStatements("u := 256; u := ;"));
    const CompileResult result = CompileAndWait(source);
    ASSERT_TRUE(result.facts.has_value());
    EXPECT_FALSE(result.facts->isCompiled());
    EXPECT_TRUE(FindLints(source, *result.facts, {}).empty());
}

TEST(Lints, CanBeDisabled) {
    const QString script = LintedStatements("x := r = q; u := 256;");
    EXPECT_EQ(IdsIn(script, {"real-equality"}), QStringList{"constant-out-of-range"});
    EXPECT_THAT(IdsIn(script, {"real-equality", "constant-out-of-range"}), IsEmpty());
}

// A comment that allows a lint is of use although that lint is disabled.
TEST(Lints, AllowanceOfADisabledLintIsOfUse) {
    const QString script = LintedStatements("u := 256; // yxst:allow constant-out-of-range");
    EXPECT_THAT(IdsIn(script, {"constant-out-of-range"}), IsEmpty());
}

TEST(Lints, AllowanceHoldsForItsLineAlone) {
    const QString script =
        LintedStatements("u := 256; // yxst:allow constant-out-of-range\nu := 257;");
    EXPECT_EQ(IdsIn(script), QStringList{"constant-out-of-range"});
    const QString above = LintedStatements("// yxst:allow constant-out-of-range\nu := 256;");
    EXPECT_EQ(IdsIn(above), (QStringList{"useless-allow", "constant-out-of-range"}));
}

TEST(Lints, AnUnreachedLabelIsToldOnce) {
    const QString script = LintedStatements("EXIT; done: a := 1; // yxst:allow useless-allow");
    EXPECT_EQ(IdsIn(script), (QStringList{"unreachable-code", "useless-allow"}));
    EXPECT_EQ(IdsIn(LintedStatements("EXIT; done: a := 1;"), {"unreachable-code"}),
              QStringList{"unused-label"});
}

// What is long is shortened within the parentheses, and marked where they are.
TEST(Lints, ALongGroupingShowsItsParentheses) {
    QString chain;
    for (int index = 0; index < 60; ++index) {
        chain += QStringLiteral("x AND ");
    }
    const Source source = SourceOf(
        LintedStatements((QStringLiteral("x := ") + chain + "y OR z;").toUtf8().constData()));
    const std::vector<Diagnostic> found = FoundIn(source);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].message, QStringLiteral("This is grouped as \"x AND (y OR z)\""));
    EXPECT_EQ(source.text(found[0].span).toString(), QStringLiteral("x AND y OR z"));
}

TEST(Lints, EachHasACaseAndAnIdentifierOfItsOwn) {
    QSet<QString> tried = {"unset-read", "unused-store", "unreachable-code",
                           "loop-variable-changed"};  // in lints_flow_test.cpp
    for (const LintCase& each : AllCases()) {
        tried.insert(QString(QLatin1String(each.id)));
    }
    const QStringList ids = LintIds();
    EXPECT_EQ(QSet<QString>(ids.begin(), ids.end()), tried);
    EXPECT_EQ(ids.size(), tried.size());
}

TEST(Lints, EachHasAnEntryInTheManual) {
    QStringList entries;
    for (const Entry& entry : EntriesOfManual()) {
        entries += entry.isMessage ? QStringList() : entry.ids;
    }
    for (const QString& id : LintIds()) {
        EXPECT_EQ(entries.count(id), 1) << id.toStdString();
    }
}

TEST(Lints, TheNearestIsProposed) {
    EXPECT_EQ(NearestLint("surprising-group"), QStringLiteral("surprising-grouping"));
    EXPECT_EQ(NearestLint("unused-lable"), QStringLiteral("unused-label"));
    EXPECT_EQ(NearestLint("Real-Equality"), QStringLiteral("real-equality"));
    EXPECT_EQ(NearestLint("nothing-of-all-this"), QString());
}

}  // namespace
