#include "judge.h"

#include "both_ways.h"

#include "machine/test_run.h"

#include <algorithm>

namespace {

// A table may ask for more than there is time for.
constexpr std::size_t MOST_CASES = 4;
constexpr std::size_t MOST_ROWS = 8;
constexpr int MOST_CYCLES = 3;
constexpr qint64 SCAN_LIMIT = 300;

void CheckFault(const std::optional<CsvFault>& fault) {
    if (fault) {
        ExpectFault(fault->message);
        Expect(fault->place.line > 0 && fault->place.column > 0,
               QStringLiteral("a fault has no place: ") + fault->message);
    }
}

void Bound(TestPlan& plan) {
    plan.cases.resize(std::min(plan.cases.size(), MOST_CASES));
    for (PlannedCase& planned : plan.cases) {
        planned.rows.resize(std::min(planned.rows.size(), MOST_ROWS));
        for (PlannedRow& row : planned.rows) {
            row.cycles = std::min(row.cycles, MOST_CYCLES);
        }
    }
}

QString TextOfFailure(const TestFailure& failure) {
    QString text = QStringLiteral("line %1, cycle %2, %3")
                       .arg(failure.line)
                       .arg(failure.cycle)
                       .arg(TextOfStop(failure.stop));
    for (const CellFailure& cell : failure.cells) {
        text += QStringLiteral("; %1: %2, not %3").arg(cell.column, cell.got, cell.expected);
    }
    for (const QStringList& values : failure.last.values) {
        text += QStringLiteral("; ") + values.join(u' ');
    }
    return text;
}

QString TextOfResult(const CaseResult& result) {
    return QStringLiteral("%1 cycles, notes %2, %3")
        .arg(result.cycles)
        .arg(TextOfNotes(result.notes),
             result.failure ? TextOfFailure(*result.failure) : QStringLiteral("passed"));
}

// Where executions are counted, code is executed an item at a time.
void CompareCases(TestSubject subject, const TestPlan& plan) {
    for (const PlannedCase& planned : plan.cases) {
        subject.isCounting = true;
        const QString reference = TextOfResult(RunCase(subject, planned));
        subject.isCounting = false;
        const QString result = TextOfResult(RunCase(subject, planned));
        Expect(reference == result,
               QStringLiteral("a case ends in two ways:\n%1\n%2").arg(reference, result));
    }
}

// Where the preamble is sound, and there is code to execute.
bool Execute(const Setup& setup, const TestText& text, TestSubject& subject) {
    std::optional<CsvFault> fault = DeclareObjects(text.preamble, subject.code.units.back());
    CheckFault(fault);
    if (fault) {
        return false;
    }
    TestPlan plan = PlanTests(text, subject.code.program());
    CheckFault(plan.fault);
    if (plan.fault) {
        return false;
    }
    Bound(plan);
    subject.profile = setup.profile;
    SetChoices(subject.profile, text.preamble.choices.join(u'\n').toUtf8());
    BoundRun(subject.profile, subject.checks, SCAN_LIMIT);
    CompareCases(subject, plan);
    return true;
}

}  // namespace

int JudgeTests(const Setup& setup, const Code* code) {
    const TestText text = ReadTestText(setup.tests);
    CheckFault(text.fault);
    if (text.fault || code == nullptr) {
        return 0;
    }
    TestSubject subject;
    subject.code = *code;
    subject.checks = text.preamble.checks;
    subject.tickStep = text.preamble.tickStep;
    return Execute(setup, text, subject) ? 1 : 0;
}
