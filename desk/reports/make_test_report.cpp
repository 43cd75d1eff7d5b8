#include "reports/make_test_report.h"

#include "reports/test_text.h"

std::unique_ptr<TestReport> MakeTestReport(TestFormat format, const TestReportOptions& options) {
    switch (format) {
        case TestFormat::Tap:
            return MakeTapReport(options);
        case TestFormat::Junit:
            return MakeJunitReport(options);
        default:
            return MakeHumanTestReport(options);
    }
}
