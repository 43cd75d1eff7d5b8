// The values of a run, cycle by cycle, as a comma-separated table.
#pragma once

#include "machine/profile.h"
#include "machine/value.h"

#include <QStringList>

#include <string>
#include <vector>

// Lines with "#" tell the script, the version and the changed choices and checks of the machine,
// each "key = value"; the row with the names of the columns follows.
std::string TraceHead(const QString& script, const QStringList& choices,
                      const ChangedChecks& checks, const QStringList& variables);

// The values as the cycle left them; the tick counter as it stood during the cycle.
std::string TraceRow(qint64 cycle, quint32 tick, const std::vector<Value>& values);
