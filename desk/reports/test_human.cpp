// Tests for a person at a terminal: what has failed, how it came about, and how many have not.

#include "reports/formats.h"
#include "reports/output.h"
#include "reports/run_report.h"
#include "reports/terminal_text.h"
#include "reports/test_text.h"

#include <algorithm>

namespace {

constexpr const char* BOLD = "1";
constexpr const char* RED = "1;31";
constexpr const char* GREEN = "1;32";

class HumanTestReport : public TestReport {
public:
    explicit HumanTestReport(const TestReportOptions& options) : options_(options) {}

    void file(const TestedFile& file) override;
    void coverage(const CoveredScript& script) override;
    void end(const TestSummary& summary) override;

private:
    TestReportOptions options_;

    QString painted(const char* paint, const QString& text) const;
    static void lines(const QStringList& lines);
    void broken(const TestedFile& file) const;
    void failed(const TestedFile& file, const CaseResult& result) const;
    void passed(const TestedFile& file, const CaseResult& result) const;
    void countOf(const TestedFile& file) const;
};

QString HumanTestReport::painted(const char* paint, const QString& text) const {
    return options_.hasColors
               ? QStringLiteral("\x1b[%1m%2\x1b[0m").arg(QLatin1String(paint), text)
               : text;
}

void HumanTestReport::lines(const QStringList& lines) {
    for (const QString& line : lines) {
        Print(line + u'\n');
    }
}

void HumanTestReport::file(const TestedFile& file) {
    if (!file.isExecuted()) {
        broken(file);
        return;
    }
    for (const CaseResult& result : file.cases) {
        if (HasFailed(result, options_.isStrict)) {
            failed(file, result);
        } else if (!result.isSkipped) {
            passed(file, result);
        }
    }
    countOf(file);
}

// A table that cannot be used is a complaint, which stands on standard error.
void HumanTestReport::broken(const TestedFile& file) const {
    if (file.errors) {
        MakeHumanReport(options_.hasColors, true)->file(*file.errors);
    } else if (file.loaded.fault) {
        PrintFault(file.loaded, *file.loaded.fault);
    }
    if (file.failure.isEmpty()) {
        Print(Harmless(file.path) + QStringLiteral(": ") +
              painted(RED, QStringLiteral("the script does not compile")) + u'\n');
    }
}

void HumanTestReport::failed(const TestedFile& file, const CaseResult& result) const {
    Print(QStringLiteral("%1 %2\n").arg(painted(RED, QStringLiteral("failed:")),
                                        painted(BOLD, Harmless(result.name))));
    lines(FailureLines(file, result, options_.isStrict));
    for (const QString& line : LastCyclesLines(result)) {
        Print(QStringLiteral("  ") + line + u'\n');
    }
    Print(QStringLiteral("\n"));
}

void HumanTestReport::passed(const TestedFile& file, const CaseResult& result) const {
    if (!options_.isQuiet && !result.notes.empty()) {
        Print(QStringLiteral("%1 %2\n").arg(painted(GREEN, QStringLiteral("passed, with notes:")),
                                            painted(BOLD, Harmless(result.name))));
        lines(NoteLines(file, result));
        Print(QStringLiteral("\n"));
    }
}

void HumanTestReport::countOf(const TestedFile& file) const {
    TestSummary summary;
    summary.add(file, options_.isStrict);
    if (options_.isQuiet) {
        return;
    }
    const QString count =
        summary.skipped > 0 ? QStringLiteral("%1 of %2 executed, %3 failed")
                                  .arg(summary.cases - summary.skipped)
                                  .arg(CasesText(summary.cases))
                                  .arg(summary.failed)
        : summary.failed == 0
            ? painted(GREEN, CasesText(summary.cases) + QStringLiteral(" passed"))
            : painted(RED, QStringLiteral("%1 of %2 failed")
                               .arg(summary.failed)
                               .arg(CasesText(summary.cases)));
    Print(QStringLiteral("%1: %2\n").arg(Harmless(file.path), count));
}

void HumanTestReport::coverage(const CoveredScript& script) {
    lines(CoverageLines(script, options_.coverage));
}

void HumanTestReport::end(const TestSummary& summary) {
    if (options_.isQuiet || summary.files < 2) {
        return;
    }
    QString text = QStringLiteral("%1 in %2 files, %3 failed")
                       .arg(CasesText(summary.cases))
                       .arg(summary.files)
                       .arg(summary.failed);
    if (summary.broken > 0) {
        text += QStringLiteral("; the cases of %1 could not be executed").arg(summary.broken);
    }
    Print(text + u'\n');
}

}  // namespace

std::unique_ptr<TestReport> MakeHumanTestReport(const TestReportOptions& options) {
    return std::make_unique<HumanTestReport>(options);
}
