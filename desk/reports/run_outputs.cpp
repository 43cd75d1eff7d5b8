#include "reports/run_outputs.h"

#include "facts/input.h"
#include "reports/output.h"
#include "reports/trace.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <initializer_list>

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
    writeTrace(
        TraceHead(description.script, description.choices, namesOf(description.variables)));
    for (const int variable : description.variables) {
        const Typ type = program.declarations[static_cast<std::size_t>(variable)].type;
        series_.push_back({nameOf(variable), type, Series(MOST_PIECES)});
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

QString RunOutputs::nameOf(int variable) const {
    return program_.declarations[static_cast<std::size_t>(variable)].name;
}

QStringList RunOutputs::namesOf(const std::vector<int>& variables) const {
    QStringList names;
    for (const int variable : variables) {
        names.append(nameOf(variable));
    }
    return names;
}

Section RunOutputs::sectionOf(int variable) const {
    return program_.declarations[static_cast<std::size_t>(variable)].section;
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
    const int count = static_cast<int>(program_.declarations.size());
    for (int variable = 0; variable < count; ++variable) {
        const std::vector<int>& set = description_.columns;
        if (sectionOf(variable) == Section::Input ||
            std::find(set.begin(), set.end(), variable) != set.end()) {
            test_->inputs.push_back(variable);
        }
        if (sectionOf(variable) == Section::Output) {
            test_->outputs.push_back(variable);
        }
    }
    const QDir folder = QFileInfo(path).absoluteDir();
    const QString script =
        folder.relativeFilePath(QFileInfo(description_.script).absoluteFilePath());
    test_->table.emplace(test_->file, TestHead{script, description_.tick, description_.choices,
                                               namesOf(test_->inputs), namesOf(test_->outputs)});
}

// Of an input what the cycle begins with, of other variables what was set before it.
QString RunOutputs::givenText(const Machine& machine, int variable,
                              const std::vector<Setting>& given) const {
    if (sectionOf(variable) == Section::Input) {
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
