// Answers about the layout of a script.
#pragma once

#include "protocols/script.h"

#include <QJsonValue>

// It throws RequestFailed where the script cannot be formatted.
QJsonValue FormattingMethod(const Script& script, const QJsonObject& params);
QJsonValue RangeFormattingMethod(const Script& script, const QJsonObject& params);

// After a `;` was typed.
QJsonValue OnTypeFormattingMethod(const Script& script, const QJsonObject& params);

QJsonValue OnTypeFormattingOptions();
