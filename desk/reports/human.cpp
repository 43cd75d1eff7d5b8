// For a person at a terminal: the message, the line of the script with the place marked, what to
// do, and a summary of all files.

#include "reports/excerpt.h"
#include "reports/formats.h"
#include "reports/output.h"
#include "reports/terminal_text.h"

#include <QStringList>

#include <algorithm>
#include <cstddef>

namespace {

// What makes a terminal paint.
using Paint = const char*;
constexpr Paint BOLD = "1";
constexpr Paint BLUE = "1;34";
constexpr Paint CYAN = "1;36";
constexpr Paint LEVEL_PAINTS[] = {"1;32", "1;33", "1;31"};  // green, yellow, red

QString TextOf(std::string_view ascii) {
    return QString::fromLatin1(ascii.data(), static_cast<int>(ascii.size()));
}

Paint PaintOf(Level level) {
    return LEVEL_PAINTS[static_cast<std::size_t>(level)];
}

// The digits of the greatest number of a line that is shown.
int DigitsOfLines(const Source& source, const Diagnostic& diagnostic) {
    int greatest = source.placeOf(diagnostic.span.begin).line;
    for (const Help& help : diagnostic.helps) {
        greatest = std::max(greatest, source.placeOf(SpanOf(help, diagnostic).begin).line);
    }
    return QString::number(greatest).size();
}

QString CountText(int count, const QString& what) {
    return QString::number(count) + u' ' + what + (count == 1 ? "" : "s");
}

QString FindingsText(const Summary& summary) {
    QStringList counts;
    if (summary.errors > 0) {
        counts.append(CountText(summary.errors, QStringLiteral("error")));
    }
    if (summary.warnings > 0) {
        counts.append(CountText(summary.warnings, QStringLiteral("warning")));
    }
    return counts.join(QStringLiteral(", "));
}

QString FilesText(const Summary& summary) {
    const QString files = CountText(summary.files, QStringLiteral("file"));
    const QString of = QString::number(summary.filesWithFindings) + QStringLiteral(" of ");
    return summary.files == 1 ? files : of + files;
}

class HumanReport : public Report {
public:
    HumanReport(bool hasColors, bool isQuiet) : hasColors_(hasColors), isQuiet_(isQuiet) {}

    void file(const FileReport& report) override;
    void end(const Summary& summary) override;

private:
    bool hasColors_;
    bool isQuiet_;
    int digits_ = 1;  // of the numbers of lines

    QString painted(Paint paint, const QString& text) const;
    void diagnostic(const Source& source, const Diagnostic& diagnostic);
    void heading(const Source& source, const Diagnostic& diagnostic) const;
    void excerpt(const Source& source, Span span, Paint paint) const;
    void row(const QString& number, const QString& text) const;
    void help(const Source& source, const Diagnostic& diagnostic, const Help& help) const;
};

void HumanReport::file(const FileReport& report) {
    for (const Diagnostic& each : report.diagnostics) {
        diagnostic(report.source, each);
    }
}

void HumanReport::end(const Summary& summary) {
    const QString findings = FindingsText(summary);
    if (!isQuiet_ && !findings.isEmpty()) {
        Print(findings + QStringLiteral(" in ") + FilesText(summary) + u'\n');
    }
}

QString HumanReport::painted(Paint paint, const QString& text) const {
    return hasColors_ ? QStringLiteral("\x1b[%1m%2\x1b[0m").arg(QLatin1String(paint), text)
                      : text;
}

void HumanReport::diagnostic(const Source& source, const Diagnostic& diagnostic) {
    digits_ = DigitsOfLines(source, diagnostic);
    heading(source, diagnostic);
    excerpt(source, diagnostic.span, PaintOf(diagnostic.level));
    for (const Help& each : diagnostic.helps) {
        help(source, diagnostic, each);
    }
    Print(QStringLiteral("\n"));
}

void HumanReport::heading(const Source& source, const Diagnostic& diagnostic) const {
    const QStringList parts = {
        painted(BOLD, PlaceText(source, diagnostic.placeIn(source))),
        painted(PaintOf(diagnostic.level), TextOf(NameOf(diagnostic.level)) + u':'),
        painted(BOLD, Harmless(diagnostic.message)),
        u'[' + diagnostic.id + u']',
    };
    Print(parts.join(u' ') + u'\n');
}

void HumanReport::excerpt(const Source& source, Span span, Paint paint) const {
    const Excerpt shown = ExcerptOf(source, span);
    row(QString::number(shown.line), shown.text);
    row(QString(), painted(paint, shown.mark));
}

void HumanReport::row(const QString& number, const QString& text) const {
    const QString gutter = u' ' + number.rightJustified(digits_) + QStringLiteral(" |");
    Print(painted(BLUE, gutter) + (text.isEmpty() ? QString() : u' ' + text) + u'\n');
}

void HumanReport::help(const Source& source, const Diagnostic& diagnostic,
                       const Help& help) const {
    const QString gutter = QString(digits_ + 2, u' ') + u'=';
    Print(painted(BLUE, gutter) + u' ' + painted(CYAN, QStringLiteral("help:")) + u' ' +
          Harmless(help.text) + u'\n');
    if (HasOwnPlace(help, diagnostic)) {
        excerpt(source, help.span, CYAN);
    }
}

}  // namespace

std::unique_ptr<Report> MakeHumanReport(bool hasColors, bool isQuiet) {
    return std::make_unique<HumanReport>(hasColors, isQuiet);
}
