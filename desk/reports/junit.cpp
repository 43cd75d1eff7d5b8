// Tests for servers that build: XML as JUnit writes it.

#include "reports/output.h"
#include "reports/terminal_text.h"
#include "reports/test_text.h"

#include <QXmlStreamWriter>

#include <numeric>

namespace {

class JunitReport : public TestReport {
public:
    explicit JunitReport(const TestReportOptions& options) : options_(options), xml_(&text_) {
        xml_.setAutoFormatting(true);
        xml_.setAutoFormattingIndent(2);
    }

    void begin() override {
        xml_.writeStartDocument();
        xml_.writeStartElement(QStringLiteral("testsuites"));
    }

    void file(const TestedFile& file) override {
        xml_.writeStartElement(QStringLiteral("testsuite"));
        attribute("name", file.path);
        attribute("file", file.path);
        counts(file);
        if (!file.isExecuted()) {
            broken(file);
        }
        for (const CaseResult& each : file.cases) {
            caseOf(file, each);
        }
        xml_.writeEndElement();
        flush();
    }

    void end(const TestSummary&) override {
        xml_.writeEndDocument();
        flush();
    }

private:
    TestReportOptions options_;
    QString text_;  // that is not written yet
    QXmlStreamWriter xml_;

    void flush() {
        Print(text_);
        text_.clear();
    }

    void attribute(const char* name, const QString& value) {
        xml_.writeAttribute(QLatin1String(name), Harmless(value));
    }

    void counts(const TestedFile& file) {
        TestSummary summary;
        summary.add(file, options_.isStrict);
        attribute("tests", QString::number(summary.cases + summary.broken));
        attribute("failures", QString::number(summary.failed));
        attribute("errors", QString::number(summary.broken));
        attribute("skipped", QString::number(summary.skipped));
        const double seconds = std::accumulate(
            file.cases.begin(), file.cases.end(), 0.0,
            [](double sum, const CaseResult& each) { return sum + each.seconds; });
        attribute("time", secondsText(seconds));
    }

    static QString secondsText(double seconds) { return QString::number(seconds, 'f', 3); }

    void beginCase(const TestedFile& file, const QString& name) {
        xml_.writeStartElement(QStringLiteral("testcase"));
        attribute("classname", file.path);
        attribute("name", name);
        attribute("file", file.path);
    }

    void broken(const TestedFile& file) {
        beginCase(file, QStringLiteral("cases"));
        outcome("error", BrokenLines(file), {});
        xml_.writeEndElement();
    }

    void caseOf(const TestedFile& file, const CaseResult& each) {
        beginCase(file, each.name);
        attribute("line", QString::number(each.line));
        attribute("time", secondsText(each.seconds));
        if (each.isSkipped) {
            xml_.writeEmptyElement(QStringLiteral("skipped"));
            attribute("message", QStringLiteral("interrupted"));
        } else if (HasFailed(each, options_.isStrict)) {
            outcome("failure", FailureLines(file, each, options_.isStrict),
                    LastCyclesLines(each));
        } else if (!options_.isQuiet && !each.notes.empty()) {
            xml_.writeTextElement(QStringLiteral("system-out"),
                                  NoteLines(file, each).join(u'\n'));
        }
        xml_.writeEndElement();
    }

    void outcome(const char* element, const QStringList& lines, const QStringList& last) {
        xml_.writeStartElement(QLatin1String(element));
        attribute("message", lines.value(0));
        xml_.writeCharacters((lines + last).join(u'\n'));
        xml_.writeEndElement();
    }
};

}  // namespace

std::unique_ptr<TestReport> MakeJunitReport(const TestReportOptions& options) {
    return std::make_unique<JunitReport>(options);
}
