// The formats of reports, byte for byte: what each makes of places, levels, helps and of
// characters that mean something to it.

#include "reports/make_report.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "sample_reports.h"
#include "screen_capture.h"

namespace {

std::string Shown(const ReportOptions& options, const std::vector<FileReport>& files) {
    ScreenCapture screen;
    {
        const auto report = MakeReport(options);
        Summary summary;
        report->begin();
        for (const FileReport& each : files) {
            report->file(each);
            summary.add(each);
        }
        report->end(summary);
    }
    return screen.text();
}

std::string Shown(ReportFormat format, const std::vector<FileReport>& files) {
    return Shown({format, false, true}, files);
}

const Source SCRIPT(QStringLiteral("a.st"), QStringLiteral("x := y;\nz\n"));

Diagnostic Error(Span span, std::vector<Help> helps = {}) {
    return {Level::Error, QStringLiteral("incompatible-types"), QStringLiteral("Text"), span,
            std::move(helps)};
}

FileReport Of(const std::vector<Diagnostic>& diagnostics) {
    return {SCRIPT, diagnostics};
}

FileReport With(int errors, int warnings, int notes) {
    FileReport report = Of({});
    const auto add = [&report](int count, Level level) {
        for (int i = 0; i < count; ++i) {
            report.diagnostics.push_back(
                {level, QStringLiteral("id"), QStringLiteral("Text"), {}, {}});
        }
    };
    add(errors, Level::Error);
    add(warnings, Level::Warning);
    add(notes, Level::Note);
    return report;
}

// What follows the diagnostics.
std::string SummaryOf(const std::vector<FileReport>& files) {
    const std::string shown = Shown(ReportOptions(), files);
    return shown.substr(Shown(ReportFormat::Human, files).size());
}

// ---------------------------------------------------------------------------------------------
// Human
// ---------------------------------------------------------------------------------------------

TEST(HumanReports, ShowTheLineAndTheMark) {
    EXPECT_EQ(Shown(ReportFormat::Human, {Of({Error({5, 6})})}),
              "a.st:1:6: error: Text [incompatible-types]\n"
              " 1 | x := y;\n"
              "   |      ^\n"
              "\n");
}

TEST(HumanReports, GutterHasRoomForTheGreatestNumber) {
    const Source source(QStringLiteral("a.st"), QStringLiteral("x\n").repeated(10));
    const Help help = {QStringLiteral("rule"), QStringLiteral("do this"), {18, 19}};
    EXPECT_EQ(Shown(ReportFormat::Human, {{source, {Error({16, 17}, {help})}}}),
              "a.st:9:1: error: Text [incompatible-types]\n"
              "  9 | x\n"
              "    | ^\n"
              "    = help: do this\n"
              " 10 | x\n"
              "    | ^\n"
              "\n");
}

TEST(HumanReports, HelpShowsAnotherPlaceOnly) {
    const QString id = QStringLiteral("rule");
    const QString text = QStringLiteral("do this");
    const std::string without =
        Shown(ReportFormat::Human, {Of({Error({5, 6}, {{id, text, {}}})})});
    EXPECT_EQ(Shown(ReportFormat::Human, {Of({Error({5, 6}, {{id, text, {5, 6}}})})}), without);
    EXPECT_EQ(Shown(ReportFormat::Human, {Of({Error({5, 6}, {{id, text, {0, 1}}})})}),
              without.substr(0, without.size() - 1) + " 1 | x := y;\n   | ^\n\n");
}

TEST(HumanReports, EmptyLineEndsAtTheGutter) {
    EXPECT_EQ(Shown(ReportFormat::Human, {Of({Error({10, 10})})}),
              "a.st:3:1: error: Text [incompatible-types]\n 3 |\n   | ^\n\n");
}

TEST(HumanReports, NothingCommandsTheTerminal) {
    const Source source(QStringLiteral("\x1b.st"), QStringLiteral("x"));
    const Diagnostic diagnostic = {Level::Error,
                                   QStringLiteral("id"),
                                   QStringLiteral("a\nb"),
                                   {0, 1},
                                   {{QStringLiteral("rule"), QStringLiteral("c\rd"), {}}}};
    EXPECT_EQ(Shown(ReportFormat::Human, {{source, {diagnostic}}}),
              "␛.st:1:1: error: a␊b [id]\n 1 | x\n   | ^\n   = help: c␍d\n\n");
    EXPECT_EQ(Shown(ReportFormat::Gcc, {{source, {diagnostic}}}),
              "␛.st:1:1: error: a␊b [id]\n␛.st:1:1: note: c␍d\n");
}

TEST(HumanReports, ColorsOnlyWhenAsked) {
    const std::vector<FileReport> files = SampleReports();
    EXPECT_EQ(Shown(ReportFormat::Human, files).find('\x1b'), std::string::npos);
    EXPECT_EQ(Shown({ReportFormat::Human, true, true},
                    {Of({Error({5, 6}, {{QStringLiteral("rule"), QStringLiteral("do"), {}}})})}),
              "\x1b[1ma.st:1:6:\x1b[0m \x1b[1;31merror:\x1b[0m \x1b[1mText\x1b[0m "
              "[incompatible-types]\n"
              "\x1b[1;34m 1 |\x1b[0m x := y;\n"
              "\x1b[1;34m   |\x1b[0m \x1b[1;31m     ^\x1b[0m\n"
              "\x1b[1;34m   =\x1b[0m \x1b[1;36mhelp:\x1b[0m do\n"
              "\n");
    for (const auto& row : REPORT_FORMATS) {
        if (row.second != ReportFormat::Human) {
            EXPECT_EQ(Shown({row.second, true, false}, files), Shown(row.second, files));
        }
    }
}

TEST(Summaries, CountWhatWasFound) {
    EXPECT_EQ(SummaryOf({With(1, 0, 0)}), "1 error in 1 file\n");
    EXPECT_EQ(SummaryOf({With(0, 2, 0)}), "2 warnings in 1 file\n");
    EXPECT_EQ(SummaryOf({With(2, 1, 1), With(0, 0, 1), With(0, 0, 0)}),
              "2 errors, 1 warning in 1 of 3 files\n");
    EXPECT_EQ(SummaryOf({With(1, 0, 0), With(0, 1, 0)}), "1 error, 1 warning in 2 of 2 files\n");
}

TEST(Summaries, SayNothingOfNothing) {
    EXPECT_EQ(SummaryOf({}), "");
    EXPECT_EQ(SummaryOf({With(0, 0, 0), With(0, 0, 1)}), "");
}

// ---------------------------------------------------------------------------------------------
// The other formats
// ---------------------------------------------------------------------------------------------

const Help HERE = {QStringLiteral("rule"), QStringLiteral("do this"), {}};
const Help ELSEWHERE = {QStringLiteral("other"), QStringLiteral("or that"), {8, 9}};

TEST(GccReports, OneLineForEachMessage) {
    EXPECT_EQ(Shown(ReportFormat::Gcc, {Of({Error({5, 6}, {HERE, ELSEWHERE})}), With(0, 1, 1)}),
              "a.st:1:6: error: Text [incompatible-types]\n"
              "a.st:1:6: note: do this\n"
              "a.st:2:1: note: or that\n"
              "a.st:1:1: warning: Text [id]\n"
              "a.st:1:1: note: Text [id]\n");
}

TEST(JsonReports, OneObjectForEachDiagnostic) {
    EXPECT_EQ(
        Shown(ReportFormat::Json, {Of({Error({5, 9}, {HERE, ELSEWHERE})}), With(0, 1, 0)}),
        "[\n"
        R"({"file":"a.st","line":1,"column":6,"endLine":2,"endColumn":2,)"
        R"("severity":"error","id":"incompatible-types","message":"Text",)"
        R"("help":"do this","helps":[)"
        R"({"id":"rule","text":"do this","line":1,"column":6,"endLine":2,"endColumn":2},)"
        R"({"id":"other","text":"or that","line":2,"column":1,"endLine":2,"endColumn":2}]},)"
        "\n"
        R"({"file":"a.st","line":1,"column":1,"endLine":1,"endColumn":1,)"
        R"("severity":"warning","id":"id","message":"Text"}])"
        "\n");
    EXPECT_EQ(Shown(ReportFormat::Json, {Of({})}), "[]\n");
}

TEST(SarifReports, RulesAreThoseThatWereMet) {
    const std::string head =
        R"({
"$schema":"https://json.schemastore.org/sarif-2.1.0.json",
"version":"2.1.0",
"runs":[{"columnKind":"utf16CodeUnits","results":[)";
    const std::string tool =
        R"(],"tool":{"driver":{"name":"yxst","version":")" YXST_VERSION R"(","rules":[)";
    EXPECT_EQ(Shown(ReportFormat::Sarif, {}), head + tool + "]}}}]}\n");
    EXPECT_EQ(
        Shown(ReportFormat::Sarif,
              {Of({Error({5, 9})}), With(0, 1, 0), Of({Error({0, 1}, {ELSEWHERE})})}),
        head +
            R"(
{"ruleId":"incompatible-types","ruleIndex":0,"level":"error","message":{"text":"Text"},)"
            R"("locations":[{"physicalLocation":{"artifactLocation":{"uri":"a.st"},)"
            R"("region":{"startLine":1,"startColumn":6,"endLine":2,"endColumn":2}}}]},
{"ruleId":"id","ruleIndex":1,"level":"warning","message":{"text":"Text"},)"
            R"("locations":[{"physicalLocation":{"artifactLocation":{"uri":"a.st"},)"
            R"("region":{"startLine":1,"startColumn":1,"endLine":1,"endColumn":1}}}]},
{"ruleId":"incompatible-types","ruleIndex":0,"level":"error","message":{"text":"Text"},)"
            R"("locations":[{"physicalLocation":{"artifactLocation":{"uri":"a.st"},)"
            R"("region":{"startLine":1,"startColumn":1,"endLine":1,"endColumn":2}}}],)"
            R"("relatedLocations":[{"physicalLocation":{"artifactLocation":{"uri":"a.st"},)"
            R"("region":{"startLine":2,"startColumn":1,"endLine":2,"endColumn":2}},)"
            R"("message":{"text":"or that"}}]})" +
            tool +
            R"({"id":"incompatible-types","shortDescription":{"text":"Incompatible types"}},)"
            R"({"id":"id"}]}}}]})"
            "\n");
}

std::string UriOf(const QString& path) {
    const std::string shown =
        Shown(ReportFormat::Sarif, {{Source(path, QString()), {Error({0, 0})}}});
    const std::string key = "\"uri\":\"";
    const std::size_t begin = shown.find(key) + key.size();
    return shown.substr(begin, shown.find('"', begin) - begin);
}

TEST(SarifReports, UrisNamePathsAndNothingElse) {
    EXPECT_EQ(UriOf("a/b.st"), "a/b.st");
    EXPECT_EQ(UriOf("../b-_.~.st"), "../b-_.~.st");
    EXPECT_EQ(UriOf("/a b/c.st"), "file:///a%20b/c.st");
    EXPECT_EQ(UriOf("a:b?c#d%20[e].st"), "a%3Ab%3Fc%23d%2520%5Be%5D.st");
    EXPECT_EQ(UriOf("бак"), "%D0%B1%D0%B0%D0%BA");
    EXPECT_EQ(UriOf("<stdin>"), "%3Cstdin%3E");
}

TEST(GithubReports, OneCommandForEachDiagnostic) {
    EXPECT_EQ(
        Shown(ReportFormat::Github, {Of({Error({5, 6}, {HERE, ELSEWHERE})}), With(0, 1, 1)}),
        "::error file=a.st,line=1,endLine=1,col=6,endColumn=7,title=incompatible-types::"
        "Text%0Ahelp: do this%0Ahelp: or that\n"
        "::warning file=a.st,line=1,endLine=1,col=1,endColumn=1,title=id::Text\n"
        "::notice file=a.st,line=1,endLine=1,col=1,endColumn=1,title=id::Text\n");
}

TEST(GithubReports, ColumnsOnlyWithinALine) {
    EXPECT_EQ(Shown(ReportFormat::Github, {Of({Error({5, 9})})}),
              "::error file=a.st,line=1,endLine=2,title=incompatible-types::Text\n");
}

TEST(GithubReports, WhatMeansSomethingIsEscaped) {
    const Source source(QStringLiteral("a:b,c%\r\n.st"), QString());
    const Diagnostic diagnostic = {
        Level::Error, QStringLiteral("id"), QStringLiteral("100%: a,\r\nb::c"), {}, {}};
    EXPECT_EQ(Shown(ReportFormat::Github, {{source, {diagnostic}}}),
              "::error file=a%3Ab%2Cc%25%0D%0A.st,line=1,endLine=1,col=1,endColumn=1,title=id::"
              "100%25: a,%0D%0Ab::c\n");
}

TEST(ReportFormats, FilesFollowEachOther) {
    const FileReport pump = PumpReport();
    const FileReport tank = TankReport();
    for (const ReportFormat format :
         {ReportFormat::Human, ReportFormat::Gcc, ReportFormat::Github}) {
        EXPECT_EQ(Shown(format, {pump, GoodReport(), tank}),
                  Shown(format, {pump}) + Shown(format, {tank}));
    }
}

}  // namespace
