// The formats of test reports, each in a file of its own, and what they share.
#pragma once

#include "reports/test_report.h"

#include <QStringList>

#include <memory>

std::unique_ptr<TestReport> MakeHumanTestReport(const TestReportOptions& options);
std::unique_ptr<TestReport> MakeTapReport(const TestReportOptions& options);
std::unique_ptr<TestReport> MakeJunitReport(const TestReportOptions& options);

// What has failed in one line each: "path:line:column: step? is 2 after cycle 57, not 3". Notes
// are among them only if they make a case fail.
QStringList FailureLines(const TestedFile& file, const CaseResult& result, bool isStrict);
// The notes of the checks, a line each.
QStringList NoteLines(const TestedFile& file, const CaseResult& result);
// A table of the last cycles, and what has not changed in them; empty if there is none.
QStringList LastCyclesLines(const CaseResult& result);
// Why no case of the file was executed, in one line each.
QStringList BrokenLines(const TestedFile& file);
// What was executed of a script.
QStringList CoverageLines(const CoveredScript& script, CoverageForm form);

// "1 case", "2 cases"
QString CasesText(int count);
