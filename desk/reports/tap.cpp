// Tests for harnesses: the Test Anything Protocol, with a block of YAML for what has failed. It
// keeps to version 13, and its YAML to blocks of lines, which all harnesses read.

#include "reports/output.h"
#include "reports/terminal_text.h"
#include "reports/test_text.h"

namespace {

// A description: "#" would begin a directive.
QString Described(const QString& text) {
    return Harmless(text)
        .replace(u'\\', QStringLiteral("\\\\"))
        .replace(u'#', QStringLiteral("\\#"));
}

QString YamlText(const QString& text) {
    QString escaped = Harmless(text);
    escaped.replace(u'\\', QStringLiteral("\\\\")).replace(u'"', QStringLiteral("\\\""));
    return u'"' + escaped + u'"';
}

class TapReport : public TestReport {
public:
    explicit TapReport(const TestReportOptions& options) : options_(options) {}

    void begin() override { Print(QStringLiteral("TAP version 13\n")); }

    void file(const TestedFile& file) override {
        if (!file.isExecuted()) {
            result(false, file.path);
            printBlock(file, 0, BrokenLines(file), {});
            return;
        }
        for (const CaseResult& each : file.cases) {
            caseOf(file, each);
        }
    }

    void coverage(const CoveredScript& script) override {
        comment(CoverageLines(script, options_.coverage));
    }

    void end(const TestSummary& summary) override {
        Print(summary.skipped == 0 ? QStringLiteral("1..%1\n").arg(number_)
                                   : QStringLiteral("Bail out!  interrupted\n"));
    }

private:
    TestReportOptions options_;
    int number_ = 0;

    void result(bool isFine, const QString& description) {
        ++number_;
        Print(QStringLiteral("%1 %2 - ")
                  .arg(isFine ? QStringLiteral("ok") : QStringLiteral("not ok"))
                  .arg(number_) +
              Described(description) + u'\n');
    }

    void caseOf(const TestedFile& file, const CaseResult& each) {
        if (each.isSkipped) {
            return;
        }
        const bool isFine = !HasFailed(each, options_.isStrict);
        result(isFine, file.path + QStringLiteral(": ") + each.name);
        if (!isFine) {
            printBlock(file, each.line, FailureLines(file, each, options_.isStrict),
                       LastCyclesLines(each));
        }
        if (!options_.isQuiet && !options_.isStrict) {
            comment(NoteLines(file, each));
        }
    }

    static void printBlock(const TestedFile& file, int line, const QStringList& failures,
                           const QStringList& last) {
        QString text = QStringLiteral("  ---\n  file: ") + YamlText(file.path) + u'\n';
        if (line > 0) {
            text += QStringLiteral("  line: %1\n").arg(line);
        }
        text += block(QStringLiteral("message"), failures) +
                block(QStringLiteral("lastCycles"), last) + QStringLiteral("  ...\n");
        Print(text);
    }

    // No line begins with a blank, which would be taken for the indentation.
    static QString block(const QString& key, const QStringList& lines) {
        QString text =
            lines.isEmpty() ? QString() : QStringLiteral("  ") + key + QStringLiteral(": |\n");
        for (const QString& line : lines) {
            text += QStringLiteral("    ") + line + u'\n';
        }
        return text;
    }

    static void comment(const QStringList& lines) {
        for (const QString& line : lines) {
            Print(QStringLiteral("# ") + line + u'\n');
        }
    }
};

}  // namespace

std::unique_ptr<TestReport> MakeTapReport(const TestReportOptions& options) {
    return std::make_unique<TapReport>(options);
}
