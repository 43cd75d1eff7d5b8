// Commands to the runner of a workflow, which shows them beside the lines of a change.

#include "reports/formats.h"
#include "reports/output.h"

#include <QStringList>

namespace {

QString CommandOf(Level level) {
    constexpr const char* commands[] = {"notice", "warning", "error"};
    return QString::fromLatin1(commands[static_cast<std::size_t>(level)]);
}

// What the runner takes for the end of a line or of a value.
QString EscapedData(QString text) {
    return text.replace(u'%', QLatin1String("%25"))
        .replace(u'\r', QLatin1String("%0D"))
        .replace(u'\n', QLatin1String("%0A"));
}

QString EscapedProperty(const QString& text) {
    return EscapedData(text)
        .replace(u':', QLatin1String("%3A"))
        .replace(u',', QLatin1String("%2C"));
}

QString Property(const char* name, const QString& value) {
    return QLatin1String(name) + QStringLiteral("=") + EscapedProperty(value);
}

QString Property(const char* name, int value) {
    return Property(name, QString::number(value));
}

// The runner knows columns only where a piece ends in the line in which it begins.
QStringList PlaceProperties(Place begin, Place end) {
    QStringList properties = {Property("line", begin.line), Property("endLine", end.line)};
    if (begin.line == end.line) {
        properties << Property("col", begin.column) << Property("endColumn", end.column);
    }
    return properties;
}

QString MessageOf(const Diagnostic& diagnostic) {
    QStringList lines = {diagnostic.message};
    for (const Help& help : diagnostic.helps) {
        lines.append(QStringLiteral("help: ") + help.text);
    }
    return lines.join(u'\n');
}

void PrintCommand(const Source& source, const Diagnostic& diagnostic) {
    const Span span = diagnostic.span;
    QStringList properties = {Property("file", source.name())};
    properties << PlaceProperties(diagnostic.placeIn(source), source.placeOf(span.end))
               << Property("title", diagnostic.id);
    Print(QStringLiteral("::") + CommandOf(diagnostic.level) + u' ' + properties.join(u',') +
          QStringLiteral("::") + EscapedData(MessageOf(diagnostic)) + u'\n');
}

class GithubReport : public Report {
public:
    void file(const FileReport& report) override {
        for (const Diagnostic& each : report.diagnostics) {
            PrintCommand(report.source, each);
        }
    }
};

}  // namespace

std::unique_ptr<Report> MakeGithubReport() {
    return std::make_unique<GithubReport>();
}
