// The table of a test, as an engineer writes it beside a script.
//
// Its text tells which script it is for; what its names and values mean is known when that script
// has been compiled: `test_plan` finds it out.
#pragma once

#include "facts/csv.h"
#include "machine/code.h"
#include "machine/profile.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

// What a column does with its variable.
enum class ColumnUse : unsigned char {
    Set,          // "name": before the first cycle of a row
    Force,        // "force name": and holds it there, until "-"
    AskAtEnd,     // "name?": after the last cycle of a row
    AskEachCycle  // "name!"
};

struct TestColumn {
    ColumnUse use;
    QString name;
    Place place;
};

struct TestRow {
    int line;
    int columns;  // the index of the columns that its cells stand in
    int cycles;
    bool isAtMost;               // it ends as soon as all holds that is asked at its end
    std::vector<CsvCell> cells;  // those that are not empty
    std::vector<int> columnsOf;  // of each of them
};

struct TestCase {
    QString name;
    int line;
    std::vector<TestRow> rows;
};

// What the lines above the first case say.
struct TestPreamble {
    QString script;              // empty: the one beside the table
    Place scriptPlace = {0, 0};  // line 0 where no line names it
    QString engineFile;          // with choices, empty if there is none
    Place enginePlace = {0, 0};
    QStringList choices;  // "key = value", on top of those of the file
    Checks checks;
    quint32 tickStep = 100;
    std::vector<Declaration> objects;  // of the engine, with names that the script does not give
    std::vector<Place> objectPlaces;
};

struct TestText {
    TestPreamble preamble;
    QChar separator = u',';
    std::vector<std::vector<TestColumn>> columns;
    std::vector<TestCase> cases;
    std::optional<CsvFault> fault;  // what is wrong first
};

// Reads a table whose cases are those that follow `case` lines.
TestText ReadTestText(const QByteArray& text);
