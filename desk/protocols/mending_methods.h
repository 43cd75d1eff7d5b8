// Answers about what mends a script.
#pragma once

#include "protocols/script.h"

#include <QJsonValue>

// Quick fixes of the diagnostics in a range, and all of the script's mends as "source.fixAll"
// where that is asked for.
QJsonValue CodeActionMethod(const Script& script, const QJsonObject& params);

QJsonValue CodeActionOptions();
