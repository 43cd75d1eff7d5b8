#include "reports/test_report.h"

#include <algorithm>

bool HasFailed(const CaseResult& result, bool isStrict) {
    return !result.isSkipped && (result.failure || (isStrict && !result.notes.empty()));
}

void TestSummary::add(const TestedFile& file, bool isStrict) {
    ++files;
    broken += file.isExecuted() ? 0 : 1;
    skipped += static_cast<int>(
        std::count_if(file.cases.begin(), file.cases.end(),
                      [](const CaseResult& result) { return result.isSkipped; }));
    cases += static_cast<int>(file.cases.size());
    failed += static_cast<int>(std::count_if(
        file.cases.begin(), file.cases.end(),
        [isStrict](const CaseResult& result) { return HasFailed(result, isStrict); }));
}
