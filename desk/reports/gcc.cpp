// One line for each message, in the form that compilers have made common: editors read it.

#include "reports/formats.h"
#include "reports/output.h"
#include "reports/terminal_text.h"

namespace {

void PrintLine(const Source& source, Place place, Level level, const QString& text) {
    const std::string_view name = NameOf(level);
    Print(PlaceText(source, place) + u' ');
    Print(name);
    Print(QStringLiteral(": ") + Harmless(text) + u'\n');
}

class GccReport : public Report {
public:
    void file(const FileReport& report) override {
        for (const Diagnostic& each : report.diagnostics) {
            diagnostic(report.source, each);
        }
    }

private:
    static void diagnostic(const Source& source, const Diagnostic& diagnostic) {
        const QString text = diagnostic.message + QStringLiteral(" [") + diagnostic.id + u']';
        PrintLine(source, diagnostic.placeIn(source), diagnostic.level, text);
        for (const Help& help : diagnostic.helps) {
            PrintLine(source, source.placeOf(SpanOf(help, diagnostic).begin), Level::Note,
                      help.text);
        }
    }
};

}  // namespace

std::unique_ptr<Report> MakeGccReport() {
    return std::make_unique<GccReport>();
}
