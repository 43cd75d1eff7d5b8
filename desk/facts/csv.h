// Tables as texts: lines of cells with a comma or a semicolon between them.
#pragma once

#include "facts/source.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

struct CsvCell {
    QString text;  // without the blanks around it, or without its quotes
    Place place;   // of its first character
};

struct CsvRow {
    std::vector<CsvCell> cells;  // at least one
};

struct CsvFault {
    Place place;
    QString message;  // no full stop at its end
};

struct Csv {
    QChar separator = u',';
    std::vector<CsvRow> rows;       // without those that hold nothing
    std::optional<CsvFault> fault;  // why the text is no table
};

// Reads a table in UTF-8. A semicolon in its first row makes semicolons the separator. A cell may
// stand in double quotes, and then hold separators, line ends and, doubled, quotes. What follows
// a "#" at the begin of a line, or between blanks, is a comment.
Csv ReadCsv(const QByteArray& text);

// A text as a cell of a table with commas: in quotes where it needs them.
QString CsvText(const QString& text);

// "line 3, column 5"
QString PlaceName(Place place);
