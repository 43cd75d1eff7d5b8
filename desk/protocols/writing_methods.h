// What the protocol asks while a script is written: what may come next, what is called, what can
// be folded, selected, coloured and mended.
#pragma once

#include "protocols/script.h"

#include <QJsonValue>

QJsonValue CompletionMethod(const Script& script, const QJsonObject& params);
QJsonValue SignatureHelpMethod(const Script& script, const QJsonObject& params);
QJsonValue FoldingRangeMethod(const Script& script, const QJsonObject& params);
QJsonValue SelectionRangeMethod(const Script& script, const QJsonObject& params);
QJsonValue SemanticTokensMethod(const Script& script, const QJsonObject& params);
QJsonValue SemanticTokensRangeMethod(const Script& script, const QJsonObject& params);

// What the server tells of them when it begins.
QJsonValue CompletionOptions();
QJsonValue SignatureHelpOptions();
QJsonValue SemanticTokensOptions();
