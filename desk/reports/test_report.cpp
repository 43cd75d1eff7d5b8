#include "reports/test_report.h"

#include "reports/test_text.h"

#include <algorithm>

void TestSummary::add(const TestedFile& file, bool isStrict) {
    ++files;
    broken += file.isExecuted() ? 0 : 1;
    cases += static_cast<int>(file.cases.size());
    failed += static_cast<int>(std::count_if(
        file.cases.begin(), file.cases.end(),
        [isStrict](const CaseResult& result) { return HasFailed(result, isStrict); }));
}

std::unique_ptr<TestReport> MakeTestReport(const TestReportOptions& options) {
    switch (options.format) {
        case TestFormat::Tap:
            return MakeTapReport(options);
        case TestFormat::Junit:
            return MakeJunitReport(options);
        default:
            return MakeHumanTestReport(options);
    }
}
