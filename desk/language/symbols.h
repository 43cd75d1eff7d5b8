// The outline of a script.
#pragma once

#include "language/names.h"

struct Symbol {
    QString name;
    QString detail;
    NameKind kind;
    bool isConstant;
    Span range;      // the unit, the declaration, the label
    Span selection;  // the name, which lies in it
    std::vector<Symbol> children;
};

// The units, each with its variables and labels in the order of the script.
std::vector<Symbol> SymbolsOf(const Model& model);

// Whether the letters of a query stand in a name in their order, whatever the case.
bool IsFoundBy(const QString& name, const QString& query);
