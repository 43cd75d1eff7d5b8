// What the language server answers about scripts: a table of methods.
//
// A method is a function in a file NAME_methods.cpp of this folder, which NAME_methods.h
// declares, and a row of the table in methods.cpp. The function gets the params of the request as
// they came: what is missing or of another type reads as empty. It may throw RequestFailed.
//
// The script is that of params.textDocument.uri. A request without it has its URI in params.data,
// as "codeLens/resolve", or as the first of params.arguments, as "workspace/executeCommand";
// there it is a string, or the member "uri" of an object.
#pragma once

#include "protocols/script.h"

#include <QJsonArray>

#include <vector>

using ScriptHandler = QJsonValue (*)(const Script& script, const QJsonObject& params);

// Of the scripts that are open, in the order of their URIs.
using WorkspaceHandler = QJsonValue (*)(const std::vector<const Script*>& scripts,
                                        const QJsonObject& params);

struct Method {
    const char* name;  // "textDocument/hover"
    // One of them, the other is null.
    ScriptHandler ofScript;
    WorkspaceHandler ofWorkspace;
    const char* capability;   // "hoverProvider"; null where another row tells it
    QJsonValue (*options)();  // what stands for it; null for true
};

// Null if there is none of that name.
const Method* MethodNamed(const QString& name);

// What the server can do, for the answer to "initialize".
QJsonObject MethodCapabilities();
