// The choice of a format for the results of tests.
#pragma once

#include "reports/test_report.h"

#include <memory>
#include <utility>

enum class TestFormat : unsigned char { Human, Tap, Junit };

// The formats by the names that the user knows them by.
inline constexpr std::pair<const char*, TestFormat> TEST_FORMATS[] = {
    {"human", TestFormat::Human}, {"tap", TestFormat::Tap}, {"junit", TestFormat::Junit}};

std::unique_ptr<TestReport> MakeTestReport(TestFormat format, const TestReportOptions& options);
