// The language server between standard input and standard output.
#pragma once

#include <QString>

// How it ended.
struct ServerEnd {
    bool isAsAgreed;  // the client had announced it
    QString fault;  // why its messages cannot be read any further, without a full stop, or empty
};

// Serves until the client leaves. Nothing else may write to standard output.
ServerEnd ServeLanguage();
