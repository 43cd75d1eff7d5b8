// The choice of a format.
#pragma once

#include "reports/report.h"

#include <memory>
#include <utility>

enum class ReportFormat : unsigned char { Human, Gcc, Json, Sarif, Github };

// The formats by the names that the user knows them by.
inline constexpr std::pair<const char*, ReportFormat> REPORT_FORMATS[] = {
    {"human", ReportFormat::Human},   {"gcc", ReportFormat::Gcc},
    {"json", ReportFormat::Json},     {"sarif", ReportFormat::Sarif},
    {"github", ReportFormat::Github},
};

struct ReportOptions {
    ReportFormat format = ReportFormat::Human;
    bool hasColors = false;  // for the format that knows any, Human
    bool isQuiet = false;    // no summary
};

std::unique_ptr<Report> MakeReport(const ReportOptions& options);
