// Answers about scripts as a whole: their outline, their code, what stands between their words.
#pragma once

#include "protocols/script.h"

#include <QJsonArray>
#include <QJsonValue>

QJsonValue DocumentSymbolMethod(const Script& script, const QJsonObject& params);

// The symbols of all scripts that have the letters of the query in their order.
QJsonArray WorkspaceSymbols(const std::vector<const Script*>& scripts, const QString& query);
QJsonValue WorkspaceSymbolMethod(const std::vector<const Script*>& scripts,
                                 const QJsonObject& params);

QJsonValue CodeLensMethod(const Script& script, const QJsonObject& params);
QJsonValue CodeLensOptions();

// "yxst/code": the target code of the script or, with params.range, of the units that the range
// touches. {"items": [{"text": "MOV @x #A0", "range": ...}]} in the order of the code, each with
// the piece of the script that it is written for; no items while the script is broken.
QJsonValue CodeMethod(const Script& script, const QJsonObject& params);

QJsonValue InlayHintMethod(const Script& script, const QJsonObject& params);
