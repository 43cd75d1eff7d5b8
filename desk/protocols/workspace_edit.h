// Changes of a script as the protocol has them.
#pragma once

#include "protocols/script.h"

#include <QJsonArray>

// "TextEdit[]" of edits in the order of the script, none within another. Their lines end as those
// of the script.
QJsonArray TextEdits(const Script& script, const std::vector<Edit>& edits);

// "WorkspaceEdit" of the same, with the version of the script for clients that look at it.
QJsonObject WorkspaceEdit(const Script& script, const QJsonArray& edits);
