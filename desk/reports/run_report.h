// How a run ended, for a person.
#pragma once

#include "check/diagnostic.h"
#include "machine/load.h"
#include "machine/machine.h"

#include <QString>

#include <vector>

// What a check has found at an item.
struct Finding {
    Level level;
    QString id;       // of the check
    QString message;  // no full stop at its end
    int item;
};

// A note for each check and item, in the order of the items; the stop is the last.
std::vector<Finding> FindingsOf(const Notes& notes);
Finding FindingOf(const RunStop& stop);

// Shows findings with the line of the script that each item was written for, or with the items
// around it.
void PrintFindings(const Loaded& loaded, const std::vector<Finding>& findings, bool hasColors);
// "path:line:column: note: text [id]"
QString LineOf(const Loaded& loaded, const Finding& finding);
// "path:line:column" of what the item was written for, or "path: item 12"
QString PlaceOf(const Loaded& loaded, int item);
// The lines of findings on standard error.
void ComplainOfFindings(const Loaded& loaded, const std::vector<Finding>& findings);

// Shows why code cannot be read, with the items around the place.
void PrintFault(const Loaded& loaded, const CodeFault& fault);

// Shows the variables as a table, and how much was executed, with the instructions if they are
// counted.
void PrintVariables(const CodeUnit& program, const std::vector<int>& variables,
                    const Machine& machine);
void PrintSummary(const Machine& machine, quint32 tickStep);
