// What is to be said about a script, as the language server protocol has it.
#pragma once

#include "protocols/script.h"

#include <QJsonArray>

// "Diagnostic[]". The manual is the folder of its pages, empty where there is none.
QJsonArray LspDiagnostics(const Script& script, const QString& manual);

// What tells that a script could not be looked at to its end.
QJsonObject LspFailure(const QString& failure);

// The folder of the manual's pages that were installed with this program, empty without them.
QString InstalledManual();
