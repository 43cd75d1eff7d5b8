// What happened in a run as the table of a test: what was put in, and what came out.
#pragma once

#include "machine/code.h"
#include "machine/profile.h"
#include "reports/whole_file.h"

#include <QStringList>

// What stands above the rows.
struct TestHead {
    QString script;  // as seen from the folder of the table
    quint32 tick;
    QStringList choices;  // "key = value"
    ChangedChecks checks;
    std::vector<Declaration> objects;  // of the engine, to which the script gives no names
    QStringList inputs;
    QStringList outputs;
};

// Writes a table whose rows stand for cycles in which nothing changes.
class TestTable {
public:
    TestTable(WholeFile& file, const TestHead& head);

    // A cycle: the texts of what was put in and of what came out, in the order of the head. An
    // empty text puts nothing in, or says nothing about what comes out.
    void cycle(const QStringList& inputs, const QStringList& outputs);
    // Writes the row that is still collected.
    void end();

private:
    WholeFile& file_;
    std::vector<int> widths_;
    qint64 cycles_ = 0;  // of the row
    QStringList cells_;

    void row(const QStringList& cells);
};
