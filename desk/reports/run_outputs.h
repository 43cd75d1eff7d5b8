// The files that a run writes while it goes on: trace, chart and test.
#pragma once

#include "machine/load.h"
#include "machine/machine.h"
#include "machine/settings.h"
#include "reports/chart.h"
#include "reports/test_table.h"
#include "reports/whole_file.h"

#include <QStringList>

#include <optional>
#include <vector>

// Where they go; an empty name is none, "-" is standard output, which the trace alone may have.
struct RunFiles {
    QString trace;
    QString chart;
    QString test;
};

// What stands in them beside the values.
struct RunDescription {
    QString script;  // as it was named
    QStringList choices;
    ChangedChecks checks;
    quint32 tick;
    bool isWatched;              // the variables were asked for
    std::vector<int> variables;  // of trace and chart
    // Of the test, beside the inputs and the outputs: what is set from outside, the engine's
    // objects that the script writes.
    std::vector<int> given;
    std::vector<int> written;
};

// Takes the values of each cycle. The program must outlive it.
class RunOutputs {
public:
    RunOutputs(const RunFiles& files, const RunDescription& description, const CodeUnit& program);

    // The file that cannot be written, empty as long as all can.
    QString failure() const;
    // Around each cycle; `given` is what was set before it.
    void beginCycle(const Machine& machine, const std::vector<Setting>& given);
    void endCycle(const Machine& machine);
    // Puts all files in their places.
    void finish(const Machine& machine);

private:
    struct TestFile {
        explicit TestFile(const QString& path) : file(path) {}

        WholeFile file;
        std::optional<TestTable> table;
        std::vector<int> inputs;
        std::vector<int> outputs;
        QStringList given;
    };

    RunDescription description_;
    const CodeUnit& program_;
    bool isTraceShown_;
    std::optional<WholeFile> trace_;
    std::optional<WholeFile> chart_;
    std::optional<TestFile> test_;
    std::vector<ChartSeries> series_;
    quint32 tick_ = 0;  // during the cycle

    QStringList namesOf(const std::vector<int>& variables) const;
    const Declaration& declarationOf(int variable) const;
    bool isInput(int variable) const;
    void writeTrace(std::string_view text);
    void beginTest(const QString& path);
    std::vector<int> columnsOf(Section section, const std::vector<int>& others) const;
    std::vector<Declaration> objectsOf(const std::vector<int>& columns) const;
    QString givenText(const Machine& machine, int variable,
                      const std::vector<Setting>& given) const;
};
