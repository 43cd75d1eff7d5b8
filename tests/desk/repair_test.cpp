// The way past each kind of error: what check finds in small scripts, and what it does not.

#include "check/file_check.h"

#include "facts/compile.h"
#include "print_text.h"
#include "repair_cases.h"

#include <gmock/gmock.h>

#include <QRegularExpression>

#include <algorithm>
#include <map>
#include <stdexcept>

using testing::ElementsAre;
using testing::Eq;

namespace {

constexpr int MAX_ERRORS = 20;

Facts FactsOfSource(const Source& source) {
    const CompileResult result = CompileAndWait(source, Detail::IfMessages);
    if (!result.facts) {
        throw std::runtime_error(result.failure.toStdString());
    }
    return *result.facts;
}

FileReport Checked(const QString& text, int maxErrors = MAX_ERRORS) {
    FileCheck check(Source(QStringLiteral("script.st"), text), maxErrors);
    while (check.take(FactsOfSource(check.next()))) {
    }
    return check.report();
}

using Counts = std::map<int, int>;  // by the line

Counts CountsOf(const FileReport& report, Level level) {
    Counts counts;
    for (const Diagnostic& each : report.diagnostics) {
        if (each.level == level) {
            ++counts[each.placeIn(report.source).line];
        }
    }
    return counts;
}

// How often the mark stands in the comments at the ends of the lines.
Counts CountsOfMarks(const QString& text, QChar mark) {
    static const QRegularExpression comment(QStringLiteral("//([!?]+)$"));
    Counts counts;
    const QStringList lines = text.split(u'\n');
    for (int line = 1; line <= lines.size(); ++line) {
        const int count = comment.match(lines[line - 1]).captured(1).count(mark);
        if (count > 0) {
            counts[line] = count;
        }
    }
    return counts;
}

QString TextOfCase(const RepairCase& each) {
    return QString::fromUtf8(each.script).replace(u'@', QString(100'000, u'('));
}

void ExpectMarkedErrors(const std::vector<RepairCase>& cases) {
    for (const RepairCase& each : cases) {
        const QString text = TextOfCase(each);
        const FileReport report = Checked(text);
        EXPECT_THAT(CountsOf(report, Level::Error), Eq(CountsOfMarks(text, u'!'))) << each.name;
        EXPECT_THAT(CountsOf(report, Level::Note), Eq(CountsOfMarks(text, u'?'))) << each.name;
    }
}

void ExpectErrorOfCompilerFirst(const std::vector<RepairCase>& cases) {
    for (const RepairCase& each : cases) {
        const QString text = TextOfCase(each);
        const FileReport all = Checked(text);
        const FileReport one = Checked(text, 1);
        const auto isError = [](const Diagnostic& found) { return found.level == Level::Error; };
        const auto of = [&isError](const FileReport& report) {
            return *std::find_if(report.diagnostics.begin(), report.diagnostics.end(), isError);
        };
        EXPECT_EQ(of(all).message, of(one).message) << each.name;
        EXPECT_EQ(of(all).span.begin, of(one).span.begin) << each.name;
    }
}

std::vector<QString> Messages(const FileReport& report) {
    std::vector<QString> messages;
    for (const Diagnostic& each : report.diagnostics) {
        messages.push_back(each.message);
    }
    return messages;
}

// ---------------------------------------------------------------------------------------------
// The ways
// ---------------------------------------------------------------------------------------------

TEST(Repair, Declarations) {
    ExpectMarkedErrors(DeclarationCases());
}

TEST(Repair, Statements) {
    ExpectMarkedErrors(StatementCases());
}

TEST(Repair, Mends) {
    ExpectMarkedErrors(MendCases());
}

TEST(Repair, Heads) {
    ExpectMarkedErrors(HeadCases());
}

TEST(Repair, Structure) {
    ExpectMarkedErrors(StructureCases());
}

TEST(Repair, Units) {
    ExpectMarkedErrors(UnitCases());
}

TEST(Repair, TheFirstErrorIsThatOfTheFirstCompile) {
    ExpectErrorOfCompilerFirst(DeclarationCases());
    ExpectErrorOfCompilerFirst(StatementCases());
    ExpectErrorOfCompilerFirst(MendCases());
    ExpectErrorOfCompilerFirst(HeadCases());
    ExpectErrorOfCompilerFirst(StructureCases());
    ExpectErrorOfCompilerFirst(UnitCases());
}

// ---------------------------------------------------------------------------------------------
// The whole check
// ---------------------------------------------------------------------------------------------

const QString THREE_ERRORS = QStringLiteral(
    "PROGRAM P\nVAR a : INT := 0; END_VAR\na := ;\na := + ;\na := 'a';\nEND_PROGRAM\n");

TEST(FileCheck, EndsWithTheGreatestNumberOfErrors) {
    EXPECT_THAT(CountsOf(Checked(THREE_ERRORS, 2), Level::Error), Eq(Counts{{3, 1}, {4, 1}}));
    EXPECT_THAT(CountsOf(Checked(THREE_ERRORS, 3), Level::Error).size(), Eq(3U));
    EXPECT_THAT(CountsOf(Checked(THREE_ERRORS, 1), Level::Note), Eq(Counts{{4, 1}}));
    EXPECT_TRUE(CountsOf(Checked(THREE_ERRORS, 3), Level::Note).empty());
}

TEST(FileCheck, OneCompileIsEnoughForAScriptThatCompiles) {
    FileCheck check(Source(QString(), QStringLiteral("PROGRAM P VAR END_VAR END_PROGRAM")), 20);
    EXPECT_FALSE(check.take(FactsOfSource(check.next())));
    EXPECT_TRUE(check.report().diagnostics.empty());
}

TEST(FileCheck, WarningsStandAmongTheErrors) {
    const FileReport report =
        Checked(QStringLiteral("PROGRAM P\nVAR a : INT; b : INT := 0; c : INT := 0; END_VAR\n"
                               "b := a;\nb := ;\nb := a;\nEND_PROGRAM\n"));
    EXPECT_THAT(
        Messages(report),
        ElementsAre(QStringLiteral("The variable \"a\" might not have been initialized "
                                   "in \"P\""),
                    QStringLiteral("The variable \"c\" is declared but never used "
                                   "in \"P\""),
                    QStringLiteral("The variable \"a\" might not have been initialized"),
                    QStringLiteral("Number expected but \";\" found"),
                    QStringLiteral("The variable \"a\" might not have been initialized")));
}

TEST(FileCheck, AWarningThatMayFollowFromAnErrorIsNotGiven) {
    const FileReport report = Checked(
        QStringLiteral("PROGRAM P\nVAR a : INT := 0; END_VAR\nb := a + ;\nEND_PROGRAM\n"));
    EXPECT_THAT(CountsOf(report, Level::Warning), Eq(Counts()));
}

TEST(FileCheck, ANameThatAHelpProposesIsNotUnused) {
    const FileReport report =
        Checked(QStringLiteral("PROGRAM P\nVAR level : INT := 0; spare : INT := 0; END_VAR\n"
                               "IF levle > 1 THEN END_IF;\nEND_PROGRAM\n"));
    EXPECT_THAT(Messages(report),
                ElementsAre(QStringLiteral("The variable \"spare\" is declared but never used "
                                           "in \"P\""),
                            QStringLiteral("An unrecognized keyword \"levle\"")));
}

TEST(FileCheck, TheResultIsNotMissedWhereItsAssignmentIsWrong) {
    const FileReport report =
        Checked(QStringLiteral("FUNCTION F : INT\nRESULT := ;\nEND_FUNCTION\n"
                               "PROGRAM P\nVAR a : INT; END_VAR\na := F();\nEND_PROGRAM\n"));
    EXPECT_THAT(Messages(report), ElementsAre(QStringLiteral("Number expected but \";\" found")));
}

TEST(FileCheck, PlacesAreThoseOfTheScript) {
    const QString text = QStringLiteral(
        "PROGRAM P VAR a : WORD; b : INT := 0; END_VAR\n"
        "IF THEN b := gone; END_IF; b := 'later'; END_PROGRAM");
    const FileReport report = Checked(text);
    std::vector<QString> marked;
    for (const Diagnostic& each : report.diagnostics) {
        marked.push_back(report.source.text(each.span).toString());
    }
    EXPECT_THAT(marked, ElementsAre(QStringLiteral("WORD"), QStringLiteral("THEN"),
                                    QStringLiteral(";"), QStringLiteral(";")));
}

TEST(FileCheck, HelpsAreAtPlacesOfTheScript) {
    const FileReport report =
        Checked(QStringLiteral("PROGRAM P\nVAR a : WORD; levels : INT := 0; END_VAR\n"
                               "levels := level;\nEND_PROGRAM\n"));
    const Diagnostic& last = report.diagnostics.back();
    ASSERT_EQ(last.helps.size(), 1U);
    EXPECT_EQ(last.helps[0].text, QStringLiteral("did you mean `levels`?"));
    EXPECT_EQ(report.source.text(last.helps[0].span).toString(), QStringLiteral("level"));
}

TEST(FileCheck, ItEndsWhateverTheScriptIs) {
    for (const char* text :
         {"", "\n", "PROGRAM", "PROGRAM P", "VAR", "END_PROGRAM", ";;;;", "'", "FUNCTION F",
          "FUNCTION FUNCTION FUNCTION", "IF IF IF END_IF", "PROGRAM P VAR", "PROGRAM P VAR a",
          "PROGRAM P VAR END_VAR IF CASE"}) {
        const FileReport report = Checked(QString::fromUtf8(text));
        EXPECT_FALSE(CountsOf(report, Level::Error).empty()) << text;
    }
}

}  // namespace
