// Answers about the layout of a script.
#pragma once

#include "protocols/script.h"

#include <QJsonValue>

// They throw RequestFailed where the script cannot be formatted.
QJsonValue FormattingMethod(const Script& script, const QJsonObject& params);
QJsonValue RangeFormattingMethod(const Script& script, const QJsonObject& params);

// After a `;` was typed; without edits where the script cannot be formatted.
QJsonValue OnTypeFormattingMethod(const Script& script, const QJsonObject& params);

QJsonValue OnTypeFormattingOptions();
