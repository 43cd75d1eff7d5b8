#include "reports/report.h"

#include "reports/formats.h"
#include "reports/terminal_text.h"

#include <algorithm>
#include <cstddef>

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

std::string_view NameOf(Level level) {
    constexpr std::string_view names[] = {"note", "warning", "error"};
    return names[static_cast<std::size_t>(level)];
}

bool HasOwnPlace(const Help& help, const Diagnostic& diagnostic) {
    const bool hasPlace = help.span.end > 0;
    const bool isSame =
        help.span.begin == diagnostic.span.begin && help.span.end == diagnostic.span.end;
    return hasPlace && !isSame;
}

Span SpanOf(const Help& help, const Diagnostic& diagnostic) {
    return HasOwnPlace(help, diagnostic) ? help.span : diagnostic.span;
}

QString PlaceText(const Source& source, Place place) {
    return QStringLiteral("%1:%2:%3:")
        .arg(Harmless(source.name()), QString::number(place.line), QString::number(place.column));
}
