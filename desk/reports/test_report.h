// Results of tests as a person or a server wants them. Files are reported one by one, in their
// order.
#pragma once

#include "check/diagnostic.h"
#include "machine/coverage.h"
#include "machine/test_run.h"

#include <QStringList>

#include <optional>
#include <vector>

// A table and what came of it.
struct TestedFile {
    QString path;
    QString failure;  // why its cases could not be executed: "path:line:column: why"
    Loaded loaded;    // the script
    std::optional<FileReport> errors;  // of a script that does not compile
    std::vector<CaseResult> cases;

    bool isExecuted() const { return failure.isEmpty() && !errors && !loaded.fault; }
};

struct CoveredScript {
    Source source;
    Coverage coverage;
};

enum class CoverageForm : unsigned char { None, Summary, Listing };

// How results are shown.
struct TestReportOptions {
    CoverageForm coverage = CoverageForm::None;
    bool hasColors = false;  // for a person
    bool isQuiet = false;    // what has failed, nothing else
    bool isStrict = false;   // a case with notes has failed
};

bool HasFailed(const CaseResult& result, bool isStrict);

struct TestSummary {
    int files = 0;
    int cases = 0;
    int failed = 0;   // of the cases
    int skipped = 0;  // of the cases
    int broken = 0;   // files whose cases could not be executed

    void add(const TestedFile& file, bool isStrict);
};

// Written to standard output; nothing that begin() opens stays open after end().
class TestReport {
public:
    TestReport() = default;
    TestReport(const TestReport&) = delete;
    TestReport& operator=(const TestReport&) = delete;
    virtual ~TestReport() = default;

    virtual void begin() {}
    virtual void file(const TestedFile& file) = 0;
    virtual void coverage(const CoveredScript&) {}
    virtual void end(const TestSummary&) {}
};
