#include "reports/run_outputs.h"

#include "facts/input.h"
#include "machine/engine_objects.h"
#include "reports/output.h"
#include "reports/trace.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <set>

namespace {

constexpr std::size_t MOST_PIECES = 2000;  // of a series in a chart

void OpenIfNamed(std::optional<WholeFile>& file, const QString& path) {
    if (!path.isEmpty() && path != QLatin1String(STANDARD_INPUT)) {
        file.emplace(path);
    }
}

// A test can ask for no real that is not finite.
QString TestTextOf(const Value& value) {
    if (value.type == TYP_BOOL) {
        return QString::number(value.whole);
    }
    const bool isFinite = !value.isReal() || std::isfinite(value.real);
    return isFinite ? TextOf(value) : QString();
}

}  // namespace

RunOutputs::RunOutputs(const RunFiles& files, const RunDescription& description,
                       const CodeUnit& program)
    : description_(description),
      program_(program),
      isTraceShown_(files.trace == QLatin1String(STANDARD_INPUT)) {
    OpenIfNamed(trace_, files.trace);
    OpenIfNamed(chart_, files.chart);
    writeTrace(TraceHead(description.script, description.choices, description.checks,
                         namesOf(description.variables)));
    for (const int variable : description.variables) {
        const Declaration& declaration = declarationOf(variable);
        series_.push_back({declaration.name, declaration.type, Series(MOST_PIECES)});
    }
    if (!files.test.isEmpty()) {
        beginTest(files.test);
    }
}

QString RunOutputs::failure() const {
    const std::initializer_list<const WholeFile*> files = {
        trace_ ? &*trace_ : nullptr, chart_ ? &*chart_ : nullptr, test_ ? &test_->file : nullptr};
    const auto* const failed =
        std::find_if(files.begin(), files.end(),
                     [](const WholeFile* file) { return file != nullptr && !file->isFine(); });
    return failed == files.end() ? QString() : (*failed)->path();
}

QStringList RunOutputs::namesOf(const std::vector<int>& variables) const {
    QStringList names;
    for (const int variable : variables) {
        names.append(NameOfVariable(program_, variable));
    }
    return names;
}

const Declaration& RunOutputs::declarationOf(int variable) const {
    return program_.declarations[static_cast<std::size_t>(variable)];
}

bool RunOutputs::isInput(int variable) const {
    return variable != TICK_VARIABLE && declarationOf(variable).section == Section::Input;
}

void RunOutputs::writeTrace(std::string_view text) {
    if (isTraceShown_) {
        Print(text);
    } else if (trace_) {
        trace_->write(text);
    }
}

void RunOutputs::beginTest(const QString& path) {
    test_.emplace(path);
    test_->inputs = columnsOf(Section::Input, description_.given);
    test_->outputs = columnsOf(Section::Output, description_.written);
    std::vector<int> columns = test_->inputs;
    columns.insert(columns.end(), test_->outputs.begin(), test_->outputs.end());
    const QDir folder = QFileInfo(path).absoluteDir();
    const QString script =
        folder.relativeFilePath(QFileInfo(description_.script).absoluteFilePath());
    test_->table.emplace(test_->file, TestHead{script, description_.tick, description_.choices,
                                               description_.checks, objectsOf(columns),
                                               namesOf(test_->inputs), namesOf(test_->outputs)});
}

// The variables of a section and the others, in the order of their declarations.
std::vector<int> RunOutputs::columnsOf(Section section, const std::vector<int>& others) const {
    const int count = static_cast<int>(program_.declarations.size());
    const auto isOther = [&others](int variable) {
        return std::find(others.begin(), others.end(), variable) != others.end();
    };
    std::vector<int> columns;
    if (isOther(TICK_VARIABLE)) {
        columns.push_back(TICK_VARIABLE);
    }
    for (int variable = 0; variable < count; ++variable) {
        if (declarationOf(variable).section == section || isOther(variable)) {
            columns.push_back(variable);
        }
    }
    return columns;
}

// Those that the script gives no name, each once.
std::vector<Declaration> RunOutputs::objectsOf(const std::vector<int>& columns) const {
    const std::set<int> each(columns.begin(), columns.end());
    std::vector<Declaration> objects;
    for (const int variable : each) {
        if (variable != TICK_VARIABLE && IsNamedByNumber(declarationOf(variable))) {
            objects.push_back(declarationOf(variable));
        }
    }
    return objects;
}

// Of an input what the cycle begins with, of other variables what was set before it.
QString RunOutputs::givenText(const Machine& machine, int variable,
                              const std::vector<Setting>& given) const {
    if (isInput(variable)) {
        return TestTextOf(machine.value(variable));
    }
    const auto found =
        std::find_if(given.rbegin(), given.rend(),
                     [variable](const Setting& each) { return each.variable == variable; });
    return found == given.rend() ? QString() : TestTextOf(found->value);
}

void RunOutputs::beginCycle(const Machine& machine, const std::vector<Setting>& given) {
    tick_ = machine.tick();
    if (test_) {
        test_->given.clear();
        for (const int variable : test_->inputs) {
            test_->given.append(givenText(machine, variable, given));
        }
    }
}

void RunOutputs::endCycle(const Machine& machine) {
    std::vector<Value> values;
    for (const int variable : description_.variables) {
        values.push_back(machine.value(variable));
    }
    if (isTraceShown_ || trace_) {
        writeTrace(TraceRow(machine.cycles(), tick_, values));
    }
    for (std::size_t index = 0; chart_ && index < values.size(); ++index) {
        series_[index].series.add({machine.cycles(), values[index]});
    }
    if (test_) {
        QStringList outputs;
        for (const int variable : test_->outputs) {
            outputs.append(TestTextOf(machine.value(variable)));
        }
        test_->table->cycle(test_->given, outputs);
    }
}

void RunOutputs::finish(const Machine& machine) {
    if (trace_) {
        trace_->finish();
    }
    if (chart_) {
        chart_->write(PageOf({QFileInfo(description_.script).fileName(), machine.cycles(),
                              description_.tick, description_.isWatched, series_}));
        chart_->finish();
    }
    if (test_) {
        test_->table->end();
        test_->file.finish();
    }
}
