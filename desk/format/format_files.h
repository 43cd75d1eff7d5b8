// Many scripts formatted side by side, told in order.
#pragma once

#include "format/format.h"

#include <QByteArray>
#include <QStringList>

#include <functional>

struct FormatFilesOptions {
    int jobs = 1;  // compiles at the same time
    FormatOptions format = {};
    QString stdinName = {};  // what messages call standard input
};

// What the compiler says of a script that has an error.
struct ScriptError {
    Place place;  // as the compiler says it
    QString text;
    int constant;  // in the catalogue
};

// A script that was formatted, or why it was not.
struct FormattedFile {
    QString path;
    Source source;                     // as the compiler reads it
    QByteArray bytes;                  // of the file
    std::optional<QByteArray> result;  // those that it is to have
    std::optional<ScriptError> error;
    QString failure;  // a sentence without its full stop, where a file is not fine
};

// Formats the files ("-" is standard input) and hands each over in their order, as soon as those
// before it are done. None is written.
void FormatFiles(const QStringList& files, const FormatFilesOptions& options,
                 const std::function<void(const FormattedFile&)>& handOver);
