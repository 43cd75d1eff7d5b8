// The interchange format of analysis tools, SARIF 2.1.0.

#include "explain/search.h"
#include "facts/catalogue.h"
#include "reports/formats.h"
#include "reports/json_writer.h"

#include <QStringList>
#include <QUrl>

namespace {

constexpr std::string_view SCHEMA = "https://json.schemastore.org/sarif-2.1.0.json";
constexpr int DEPTH_OF_RESULTS = 4;  // in the log, the runs, the run, the results

// A path as it is named: a relative one stays relative, and none is taken for more than a path.
QString UriOf(const QString& path) {
    const QString encoded = QString::fromLatin1(QUrl::toPercentEncoding(path, "/"));
    return path.startsWith(u'/') ? QStringLiteral("file://") + encoded : encoded;
}

// The title of the entry that the manual has for the id of what is not the compiler's.
QString TitleInManual(const QString& id) {
    for (const Entry& entry : EntriesOfManual()) {
        if (!entry.isMessage && entry.ids.contains(id)) {
            return TitleOf(entry);
        }
    }
    return {};
}

// What the compiler says with an id, or what is told with it.
QString DescriptionOf(const QString& id) {
    for (int constant = 0; constant < ConstantsCount(); ++constant) {
        if (id == IdOf(constant)) {
            return QString(TextOf(constant)).trimmed();
        }
    }
    return TitleInManual(id);
}

// The rules stand after the results, when it is known which of them there are.
class SarifReport : public Report {
public:
    void begin() override;
    void file(const FileReport& report) override;
    void end(const Summary&) override;

private:
    JsonWriter json_{DEPTH_OF_RESULTS};
    QStringList rules_;  // the ids so far

    int ruleIndexOf(const QString& id);
    void result(const Source& source, const Diagnostic& diagnostic);
    void message(std::string_view key, const QString& text);
    void location(const Source& source, Span span);
    void region(const Source& source, Span span);
    void helps(const Source& source, const Diagnostic& diagnostic);
    void tool();
    void rule(const QString& id);
};

void SarifReport::begin() {
    json_.beginObject();
    json_.member("$schema", SCHEMA);
    json_.member("version", std::string_view("2.1.0"));
    json_.key("runs");
    json_.beginArray();
    json_.beginObject();
    json_.member("columnKind", std::string_view("utf16CodeUnits"));
    json_.key("results");
    json_.beginArray();
}

void SarifReport::file(const FileReport& report) {
    for (const Diagnostic& each : report.diagnostics) {
        result(report.source, each);
    }
}

void SarifReport::end(const Summary&) {
    json_.endArray();
    tool();
    json_.endObject();
    json_.endArray();
    json_.endObject();
}

int SarifReport::ruleIndexOf(const QString& id) {
    if (!rules_.contains(id)) {
        rules_.append(id);
    }
    return rules_.indexOf(id);
}

void SarifReport::result(const Source& source, const Diagnostic& diagnostic) {
    json_.beginObject();
    json_.member("ruleId", diagnostic.id);
    json_.member("ruleIndex", ruleIndexOf(diagnostic.id));
    json_.member("level", NameOf(diagnostic.level));
    message("message", diagnostic.message);
    json_.key("locations");
    json_.beginArray();
    json_.beginObject();
    location(source, diagnostic.span);
    json_.endObject();
    json_.endArray();
    if (!diagnostic.helps.empty()) {
        helps(source, diagnostic);
    }
    json_.endObject();
}

void SarifReport::message(std::string_view key, const QString& text) {
    json_.key(key);
    json_.beginObject();
    json_.member("text", text);
    json_.endObject();
}

void SarifReport::location(const Source& source, Span span) {
    json_.key("physicalLocation");
    json_.beginObject();
    json_.key("artifactLocation");
    json_.beginObject();
    json_.member("uri", UriOf(source.name()));
    json_.endObject();
    region(source, span);
    json_.endObject();
}

void SarifReport::region(const Source& source, Span span) {
    const Place begin = source.placeOf(span.begin);
    const Place end = source.placeOf(span.end);
    json_.key("region");
    json_.beginObject();
    json_.member("startLine", begin.line);
    json_.member("startColumn", begin.column);
    json_.member("endLine", end.line);
    json_.member("endColumn", end.column);
    json_.endObject();
}

void SarifReport::helps(const Source& source, const Diagnostic& diagnostic) {
    json_.key("relatedLocations");
    json_.beginArray();
    for (const Help& help : diagnostic.helps) {
        json_.beginObject();
        location(source, SpanOf(help, diagnostic));
        message("message", help.text);
        json_.endObject();
    }
    json_.endArray();
}

void SarifReport::tool() {
    json_.key("tool");
    json_.beginObject();
    json_.key("driver");
    json_.beginObject();
    json_.member("name", std::string_view("yxst"));
    json_.member("version", std::string_view(YXST_VERSION));
    json_.key("rules");
    json_.beginArray();
    for (const QString& id : rules_) {
        rule(id);
    }
    json_.endArray();
    json_.endObject();
    json_.endObject();
}

void SarifReport::rule(const QString& id) {
    const QString description = DescriptionOf(id);
    json_.beginObject();
    json_.member("id", id);
    if (!description.isEmpty()) {
        message("shortDescription", description);
    }
    json_.endObject();
}

}  // namespace

std::unique_ptr<Report> MakeSarifReport() {
    return std::make_unique<SarifReport>();
}
