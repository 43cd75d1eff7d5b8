// One array of flat objects, one a line.

#include "reports/formats.h"
#include "reports/json_writer.h"

namespace {

class JsonReport : public Report {
public:
    void begin() override { json_.beginArray(); }
    void file(const FileReport& report) override;
    void end(const Summary&) override { json_.endArray(); }

private:
    JsonWriter json_{1};

    void diagnostic(const Source& source, const Diagnostic& diagnostic);
    void place(Place begin, Place end);
    void helps(const Source& source, const Diagnostic& diagnostic);
    void help(const Source& source, const Diagnostic& diagnostic, const Help& help);
};

void JsonReport::file(const FileReport& report) {
    for (const Diagnostic& each : report.diagnostics) {
        diagnostic(report.source, each);
    }
}

void JsonReport::diagnostic(const Source& source, const Diagnostic& diagnostic) {
    json_.beginObject();
    json_.member("file", source.name());
    place(diagnostic.placeIn(source), source.placeOf(diagnostic.span.end));
    json_.member("severity", NameOf(diagnostic.level));
    json_.member("id", diagnostic.id);
    json_.member("message", diagnostic.message);
    if (!diagnostic.helps.empty()) {
        json_.member("help", diagnostic.helps.front().text);
        helps(source, diagnostic);
    }
    json_.endObject();
}

void JsonReport::place(Place begin, Place end) {
    json_.member("line", begin.line);
    json_.member("column", begin.column);
    json_.member("endLine", end.line);
    json_.member("endColumn", end.column);
}

void JsonReport::helps(const Source& source, const Diagnostic& diagnostic) {
    json_.key("helps");
    json_.beginArray();
    for (const Help& each : diagnostic.helps) {
        help(source, diagnostic, each);
    }
    json_.endArray();
}

void JsonReport::help(const Source& source, const Diagnostic& diagnostic, const Help& help) {
    json_.beginObject();
    json_.member("id", help.id);
    json_.member("text", help.text);
    const Span span = SpanOf(help, diagnostic);
    place(source.placeOf(span.begin), source.placeOf(span.end));
    json_.endObject();
}

}  // namespace

std::unique_ptr<Report> MakeJsonReport() {
    return std::make_unique<JsonReport>();
}
