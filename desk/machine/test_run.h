// Executes the cases of a test, each on a machine of its own.
#pragma once

#include "machine/load.h"
#include "machine/test_plan.h"
#include "machine/watch.h"

#include <atomic>
#include <optional>
#include <vector>

// What all cases of a table have in common. Cases may be executed at the same time.
struct TestSubject {
    Code code;
    Profile profile;
    Checks checks;
    quint32 tickStep = 0;
    std::vector<UnitVariable> uninitialized;
    bool isCounting = false;                       // how often each instruction is executed
    const std::atomic<bool>* interrupt = nullptr;  // ends all cases once it is set
};

// A cell that does not say what has come out.
struct CellFailure {
    QString column;
    QString expected;
    QString got;
    Place place;
};

// The values of some variables as the last cycles left them, as texts.
struct LastCycles {
    QStringList names;
    std::vector<qint64> cycles;       // their numbers from 1
    std::vector<QStringList> values;  // of each cycle
    QStringList unchanged;            // others that belong to it: "start TRUE"
};

struct TestFailure {
    int line = 0;                    // of the row
    qint64 cycle = 0;                // of the case, from 1
    std::vector<CellFailure> cells;  // empty if the run has ended
    std::optional<RunStop> stop;     // why it has
    LastCycles last;
};

struct CaseResult {
    QString name;
    int line = 0;
    qint64 cycles = 0;       // that were executed
    double seconds = 0.0;    // that they took
    bool isSkipped = false;  // not executed, or not to its end, as it was interrupted
    std::optional<TestFailure> failure;
    Notes notes;
    std::vector<qint64> executions;  // of each instruction, if they are counted
};

// Executes the rows of a case up to the first one that fails.
CaseResult RunCase(const TestSubject& subject, const PlannedCase& planned);
