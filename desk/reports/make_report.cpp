#include "reports/make_report.h"

#include "reports/formats.h"

std::unique_ptr<Report> MakeReport(const ReportOptions& options) {
    switch (options.format) {
        case ReportFormat::Gcc:
            return MakeGccReport();
        case ReportFormat::Json:
            return MakeJsonReport();
        case ReportFormat::Sarif:
            return MakeSarifReport();
        case ReportFormat::Github:
            return MakeGithubReport();
        default:
            return MakeHumanReport(options.hasColors, options.isQuiet);
    }
}
