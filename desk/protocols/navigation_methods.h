// Answers about names: what they are, where they are declared and used, other names for them.
#pragma once

#include "protocols/script.h"

#include <QJsonValue>

QJsonValue HoverMethod(const Script& script, const QJsonObject& params);

// Also "textDocument/declaration": a script declares a name where it defines it.
QJsonValue DefinitionMethod(const Script& script, const QJsonObject& params);
QJsonValue ReferencesMethod(const Script& script, const QJsonObject& params);
QJsonValue DocumentHighlightMethod(const Script& script, const QJsonObject& params);

// They throw RequestFailed where the name cannot be changed, with the reason.
QJsonValue PrepareRenameMethod(const Script& script, const QJsonObject& params);
QJsonValue RenameMethod(const Script& script, const QJsonObject& params);

QJsonValue RenameOptions();
