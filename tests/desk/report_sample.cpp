// Shows the sample reports in a format:
//
//     yxst_report_sample FORMAT [colors] [quiet]

#include "reports/make_report.h"
#include "reports/output.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "sample_reports.h"

namespace {

ReportOptions OptionsOf(const std::vector<std::string>& arguments) {
    const auto has = [&arguments](const char* wanted) {
        return std::find(arguments.begin(), arguments.end(), wanted) != arguments.end();
    };
    const std::map<std::string, ReportFormat> formats(std::begin(REPORT_FORMATS),
                                                      std::end(REPORT_FORMATS));
    return {formats.at(arguments.at(0)), has("colors"), has("quiet")};
}

}  // namespace

int main(int argc, char** argv) {
    const auto report = MakeReport(OptionsOf({argv + 1, argv + argc}));
    Summary summary;
    report->begin();
    for (const FileReport& each : SampleReports()) {
        report->file(each);
        summary.add(each);
    }
    report->end(summary);
    return FinishOutput(STATUS_FINE);
}
