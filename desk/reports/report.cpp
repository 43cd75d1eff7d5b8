#include "reports/report.h"

#include <algorithm>

namespace {

int CountOf(Level level, const FileReport& report) {
    const auto isOfLevel = [level](const Diagnostic& each) { return each.level == level; };
    const auto& all = report.diagnostics;
    return static_cast<int>(std::count_if(all.begin(), all.end(), isOfLevel));
}

}  // namespace

void Summary::add(const FileReport& report) {
    const int errorsHere = CountOf(Level::Error, report);
    const int warningsHere = CountOf(Level::Warning, report);
    errors += errorsHere;
    warnings += warningsHere;
    files += 1;
    filesWithFindings += errorsHere + warningsHere > 0 ? 1 : 0;
}

void MakeWarningsErrors(FileReport& report) {
    for (Diagnostic& diagnostic : report.diagnostics) {
        if (diagnostic.level == Level::Warning) {
            diagnostic.level = Level::Error;
        }
    }
}
