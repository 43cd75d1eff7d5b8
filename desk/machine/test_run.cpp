#include "machine/test_run.h"

#include "machine/machine.h"

#include <QElapsedTimer>

#include <algorithm>
#include <deque>
#include <map>
#include <set>

namespace {

constexpr std::size_t SHOWN_CYCLES = 5;

class CaseRunner {
public:
    CaseRunner(const TestSubject& subject, const PlannedCase& planned)
        : subject_(subject),
          planned_(planned),
          machine_(subject.code, subject.profile, subject.checks) {
        remember();
        machine_.setTickStep(subject.tickStep);
        if (subject.interrupt != nullptr) {
            machine_.setInterrupt(*subject.interrupt);
        }
        for (const UnitVariable& each : subject.uninitialized) {
            machine_.setUninitialized(each.unit, each.variable);
        }
        if (subject.isCounting) {
            machine_.countExecutions();
        }
    }

    CaseResult run() {
        timer_.start();
        result_.name = planned_.name;
        result_.line = planned_.line;
        for (const PlannedRow& row : planned_.rows) {
            if (!result_.failure && !result_.isSkipped) {
                runRow(row);
            }
        }
        result_.seconds = static_cast<double>(timer_.nsecsElapsed()) / 1e9;
        result_.cycles = machine_.cycles();
        result_.notes = machine_.notes();
        result_.executions = machine_.executions();
        return std::move(result_);
    }

private:
    struct PastCycle {
        qint64 cycle;
        std::vector<std::optional<Value>> values;
    };

    const TestSubject& subject_;
    const PlannedCase& planned_;
    Machine machine_;
    QElapsedTimer timer_;
    CaseResult result_;
    std::map<int, Value> inputs_;  // of VAR_INPUT, which come in before each cycle
    std::vector<int> variables_;   // of all columns, each once
    std::set<int> given_;          // those that rows have set or forced
    std::deque<PastCycle> past_;

    void runRow(const PlannedRow& row) {
        for (const TestSetting& setting : row.settings) {
            put(setting);
        }
        for (int cycle = 1; cycle <= row.cycles; ++cycle) {
            if (!executeCycle(row)) {
                return;
            }
            if (row.isAtMost && holdsAll(row, ColumnUse::AskAtEnd)) {
                return;
            }
        }
        failIf(row, ColumnUse::AskAtEnd);
    }

    void remember() {
        for (const PlannedRow& row : planned_.rows) {
            for (const int variable : row.variables) {
                if (std::find(variables_.begin(), variables_.end(), variable) ==
                    variables_.end()) {
                    variables_.push_back(variable);
                }
            }
        }
    }

    void put(const TestSetting& setting) {
        const int variable = setting.setting.variable;
        const Value& value = setting.setting.value;
        if (variable == TICK_VARIABLE) {
            machine_.setTick(static_cast<quint32>(value.whole));
            return;
        }
        given_.insert(variable);
        if (setting.isRelease) {
            machine_.release(variable);
        } else if (setting.use == ColumnUse::Force) {
            machine_.force(variable, value);
        } else {
            machine_.set(variable, value);
            feed(variable, value);
        }
    }

    // From now on the input has that value again before each cycle, whatever the script stores.
    void feed(int variable, const Value& value) {
        const Declaration& declaration =
            subject_.code.program().declarations[static_cast<std::size_t>(variable)];
        if (declaration.section == Section::Input) {
            inputs_[variable] = value;
        }
    }

    bool isInterrupted() const {
        return machine_.interruption() || (subject_.interrupt != nullptr && *subject_.interrupt);
    }

    // False if the case has ended.
    bool executeCycle(const PlannedRow& row) {
        for (const auto& [variable, value] : inputs_) {
            machine_.set(variable, value);
        }
        const bool isWhole = !isInterrupted() && machine_.cycle();
        if (isInterrupted()) {
            result_.isSkipped = true;
            return false;
        }
        past_.push_back({machine_.cycles() + (isWhole ? 0 : 1), {}});
        for (const int variable : variables_) {
            past_.back().values.push_back(valueOf(variable));
        }
        if (past_.size() > SHOWN_CYCLES) {
            past_.pop_front();
        }
        if (!isWhole) {
            fail(row, {});
            result_.failure->stop = machine_.stop();
            return false;
        }
        failIf(row, ColumnUse::AskEachCycle);
        return !result_.failure;
    }

    // TICK is what the script has set last, nothing before it has.
    std::optional<Value> valueOf(int variable) const {
        if (variable != TICK_VARIABLE) {
            return machine_.value(variable);
        }
        if (subject_.profile.tickWrite == TickWrite::Counter) {
            return WholeValue(TYP_UDINT, machine_.tick());
        }
        const std::optional<quint32> setting = machine_.tickSetting();
        return setting ? std::optional(WholeValue(TYP_UDINT, *setting)) : std::nullopt;
    }

    static QString textOf(const std::optional<Value>& value) {
        return value ? TextOf(*value) : QStringLiteral("nothing");
    }

    bool holds(const TestQuestion& question) const {
        const std::optional<Value> got = valueOf(question.variable);
        return std::all_of(
            question.conditions.begin(), question.conditions.end(),
            [&got](const Condition& condition) { return got && Holds(condition, *got); });
    }

    bool holdsAll(const PlannedRow& row, ColumnUse use) const {
        return std::all_of(row.questions.begin(), row.questions.end(),
                           [this, use](const TestQuestion& question) {
                               return question.use != use || holds(question);
                           });
    }

    std::vector<CellFailure> failuresOf(const PlannedRow& row, ColumnUse use) const {
        std::vector<CellFailure> failures;
        for (const TestQuestion& question : row.questions) {
            if (question.use == use && !holds(question)) {
                failures.push_back({question.column, question.expected,
                                    textOf(valueOf(question.variable)), question.place});
            }
        }
        return failures;
    }

    void failIf(const PlannedRow& row, ColumnUse use) {
        std::vector<CellFailure> failures = failuresOf(row, use);
        if (!failures.empty()) {
            fail(row, std::move(failures));
        }
    }

    void fail(const PlannedRow& row, std::vector<CellFailure> cells) {
        TestFailure failure;
        failure.line = row.line;
        failure.cycle = past_.back().cycle;
        failure.last = lastCycles(row, cells);
        failure.cells = std::move(cells);
        result_.failure = std::move(failure);
    }

    // -----------------------------------------------------------------------------------------
    // The last cycles
    // -----------------------------------------------------------------------------------------

    // Those of the variables that failed, and of the others that have changed. What was asked or
    // given besides is told once.
    LastCycles lastCycles(const PlannedRow& row, const std::vector<CellFailure>& cells) const {
        LastCycles last;
        for (const PastCycle& past : past_) {
            last.cycles.push_back(past.cycle);
        }
        last.values.resize(past_.size());
        for (const bool hasFailed : {true, false}) {
            for (std::size_t index = 0; index < variables_.size(); ++index) {
                if (isIn(variables_[index], row, cells) == hasFailed) {
                    addIfShown(index, hasFailed, row, last);
                }
            }
        }
        return last;
    }

    void addIfShown(std::size_t index, bool hasFailed, const PlannedRow& row,
                    LastCycles& last) const {
        const int variable = variables_[index];
        const bool isAsked = std::any_of(
            row.questions.begin(), row.questions.end(),
            [variable](const TestQuestion& question) { return question.variable == variable; });
        if (hasFailed || hasChanged(index)) {
            add(index, last);
        } else if (isAsked || given_.count(variable) > 0) {
            last.unchanged.append(NameOfVariable(subject_.code.program(), variable) + u' ' +
                                  textOf(past_.back().values[index]));
        }
    }

    static bool isIn(int variable, const PlannedRow& row, const std::vector<CellFailure>& cells) {
        return std::any_of(cells.begin(), cells.end(), [&](const CellFailure& cell) {
            return std::any_of(
                row.questions.begin(), row.questions.end(), [&](const TestQuestion& question) {
                    return question.variable == variable && question.column == cell.column;
                });
        });
    }

    bool hasChanged(std::size_t index) const {
        return std::any_of(past_.begin(), past_.end(), [this, index](const PastCycle& past) {
            return textOf(past.values[index]) != textOf(past_.front().values[index]);
        });
    }

    void add(std::size_t index, LastCycles& last) const {
        last.names.append(NameOfVariable(subject_.code.program(), variables_[index]));
        for (std::size_t cycle = 0; cycle < past_.size(); ++cycle) {
            last.values[cycle].append(textOf(past_[cycle].values[index]));
        }
    }
};

}  // namespace

CaseResult RunCase(const TestSubject& subject, const PlannedCase& planned) {
    return CaseRunner(subject, planned).run();
}
