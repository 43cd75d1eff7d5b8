// What the manual's page of the language says of types and built-ins: rows of its tables, which
// are compiled in.
#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>
#include <vector>

// A row of the table of built-ins, in Markdown.
struct BuiltInRow {
    QString name;        // without the marks of code
    QString parameters;  // "`UINT` number, `LREAL` value"
    QString result;      // "none" for a function block
    QString text;        // what it does
};

const std::vector<BuiltInRow>& BuiltInRows();

// The row of that name, whatever its case; null if there is none.
const BuiltInRow* BuiltInRowOf(QStringView name);

// What the table says of each parameter, such as "number"; empty where it says nothing.
QStringList ParameterTexts(const BuiltInRow& row);

// What the values of a type are, in Markdown; empty if there is no such type.
QString ValuesOfType(QStringView name);
