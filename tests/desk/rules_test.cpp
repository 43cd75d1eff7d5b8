// The reasons: each rule fires on its slip, and on no script that only looks like it; the page of
// the manual shows each with the help that it gives.

#include "check/rules.h"

#include "facts/compile.h"
#include "print_text.h"
#include "rule_cases.h"
#include "rule_slips.h"

#include <gmock/gmock.h>

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStringList>

#include <stdexcept>

using testing::IsEmpty;
using testing::UnorderedElementsAreArray;

namespace {

struct Outcome {
    bool isCompiled;
    std::vector<Help> helps;
};

Outcome OutcomeOf(const Source& source) {
    const CompileResult result = CompileAndWait(source);
    if (!result.facts) {
        throw std::runtime_error(result.failure.toStdString());
    }
    return {result.facts->isCompiled(), HelpsForError(source, *result.facts)};
}

Source SourceOf(const QString& text) {
    return Source(QStringLiteral("script.st"), text);
}

// ---------------------------------------------------------------------------------------------
// Rules
// ---------------------------------------------------------------------------------------------

TEST(Rules, EachHasACase) {
    std::vector<QString> ids;
    for (const RuleCase& each : RuleCases()) {
        ids.emplace_back(QLatin1String(each.id));
    }
    EXPECT_THAT(ids, UnorderedElementsAreArray(RuleIds()));
}

TEST(Rules, EachFiresOnItsSlip) {
    for (const RuleCase& each : RuleCases()) {
        const Source source = SourceOf(each.slip);
        const Outcome outcome = OutcomeOf(source);
        ASSERT_EQ(outcome.helps.size(), 1U) << each.id;
        const Help& help = outcome.helps.front();
        EXPECT_EQ(help.id, QLatin1String(each.id));
        EXPECT_EQ(help.text, QString::fromUtf8(each.help));
        EXPECT_EQ(source.text(help.span).toString(), QString::fromUtf8(each.marked)) << each.id;
    }
}

TEST(Rules, SlipsHaveOtherForms) {
    for (const Slip& each : OtherSlips()) {
        const Source source = SourceOf(each.script);
        const Outcome outcome = OutcomeOf(source);
        ASSERT_EQ(outcome.helps.size(), 1U) << each.help;
        const Help& help = outcome.helps.front();
        EXPECT_EQ(help.id, QLatin1String(each.id)) << each.help;
        EXPECT_EQ(help.text, QString::fromUtf8(each.help));
        EXPECT_EQ(source.text(help.span).toString(), QString::fromUtf8(each.marked)) << each.help;
    }
}

TEST(Rules, NoneFiresWithoutAReason) {
    for (const QString& script : ScriptsWithoutReason()) {
        const Outcome outcome = OutcomeOf(SourceOf(script));
        EXPECT_FALSE(outcome.isCompiled) << script.toStdString();
        EXPECT_THAT(outcome.helps, IsEmpty()) << script.toStdString();
    }
}

TEST(Rules, EachIsSilentOnANearMiss) {
    for (const RuleCase& each : RuleCases()) {
        const Outcome outcome = OutcomeOf(SourceOf(each.nearMiss));
        EXPECT_FALSE(outcome.isCompiled) << each.id;
        for (const Help& help : outcome.helps) {
            EXPECT_NE(help.id, QLatin1String(each.id));
        }
    }
}

TEST(Rules, HelpsAreNoSentences) {
    for (const RuleCase& each : RuleCases()) {
        const QString text = QString::fromUtf8(each.help);
        EXPECT_FALSE(text.endsWith(QLatin1Char('.'))) << each.id;
        EXPECT_EQ(text.count(QLatin1Char('`')) % 2, 0) << each.id;
    }
}

TEST(Rules, NoneFiresOnWhatCompiles) {
    const Outcome outcome = OutcomeOf(SourceOf(Statements("\ncount := 1;\n")));
    EXPECT_TRUE(outcome.isCompiled);
    EXPECT_THAT(outcome.helps, IsEmpty());
}

// ---------------------------------------------------------------------------------------------
// The page of the manual
// ---------------------------------------------------------------------------------------------

struct Entry {
    QString id;
    QString slip;
    QString help;
};

QString ReadPage() {
    const QFileInfo here(QStringLiteral(__FILE__));
    QFile file(here.path() + QStringLiteral("/../../docs/manual/reasons.md"));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// The text of the first fence of that kind, the word after the three backticks.
QString FenceIn(const QString& section, const QString& kind) {
    const QRegularExpression fence(QStringLiteral("```%1\n(.*?)```").arg(kind),
                                   QRegularExpression::DotMatchesEverythingOption);
    return fence.match(section).captured(1);
}

// The script of an entry, its statements in the frame of the page.
QString SlipIn(const QString& section, const QString& frame) {
    const int whole = section.indexOf(QStringLiteral("```st\n"));
    const int part = section.indexOf(QStringLiteral("```st statements\n"));
    if (part < 0 || (whole >= 0 && whole < part)) {
        return FenceIn(section, QStringLiteral("st"));
    }
    QString script = frame;
    return script.replace(QStringLiteral("    (* statements *)\n"),
                          FenceIn(section, QStringLiteral("st statements")));
}

std::vector<Entry> EntriesOf(const QString& page) {
    const QString frame = FenceIn(page, QStringLiteral("st frame"));
    QStringList sections = page.split(QStringLiteral("<!-- reason: "));
    sections.removeFirst();
    std::vector<Entry> entries;
    for (const QString& section : sections) {
        entries.push_back({section.section(QLatin1Char(' '), 0, 0), SlipIn(section, frame),
                           FenceIn(section, QStringLiteral("text")).trimmed()});
    }
    return entries;
}

TEST(PageOfReasons, EachRuleHasAnEntry) {
    std::vector<QString> ids;
    for (const Entry& entry : EntriesOf(ReadPage())) {
        ids.push_back(entry.id);
    }
    EXPECT_THAT(ids, UnorderedElementsAreArray(RuleIds()));
}

TEST(PageOfReasons, EachEntryShowsItsHelp) {
    for (const Entry& entry : EntriesOf(ReadPage())) {
        const Outcome outcome = OutcomeOf(SourceOf(entry.slip));
        ASSERT_EQ(outcome.helps.size(), 1U) << entry.id.toStdString();
        EXPECT_EQ(outcome.helps.front().id, entry.id);
        EXPECT_EQ(QStringLiteral("help: ") + outcome.helps.front().text, entry.help);
    }
}

}  // namespace
