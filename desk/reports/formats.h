// The formats of reports, each in a file of its own, and what they share.
#pragma once

#include "reports/report.h"

#include <QString>

#include <memory>
#include <string_view>

std::unique_ptr<Report> MakeHumanReport(bool hasColors, bool isQuiet);
std::unique_ptr<Report> MakeGccReport();
std::unique_ptr<Report> MakeJsonReport();
std::unique_ptr<Report> MakeSarifReport();
std::unique_ptr<Report> MakeGithubReport();

// "note", "warning", "error"
std::string_view NameOf(Level level);

// Whether a help is about another place than its diagnostic.
bool HasOwnPlace(const Help& help, const Diagnostic& diagnostic);

// The place that a help is about.
Span SpanOf(const Help& help, const Diagnostic& diagnostic);

// "path:line:column:", which editors read.
QString PlaceText(const Source& source, Place place);
