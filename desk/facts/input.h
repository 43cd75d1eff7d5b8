// Scripts as the user names them: files, folders, standard input.
#pragma once

#include "facts/source.h"

#include <QByteArray>
#include <QStringList>

#include <optional>

constexpr const char* STANDARD_INPUT = "-";

// A script that was read, or why it was not.
struct Input {
    std::optional<Source> source;
    QString failure;  // a sentence without its full stop, where there is no source
};

// Reads a script; "-" is standard input.
Input ReadInput(const QString& path);

// A file as it is, or why it was not read.
struct InputBytes {
    std::optional<QByteArray> bytes;
    QString failure;
};
InputBytes ReadInputBytes(const QString& path);

// What messages call the file of that path.
QString NameOfInput(const QString& path);

// The files that paths stand for, in the order of the paths; those of a folder by name.
struct FoundFiles {
    QStringList files;
    QStringList failures;  // "path: why", for what names no script
};

// A folder stands for all files in it, and in its folders, with one of the suffixes ("st").
// `kind` is what they are called where there are none: "scripts".
FoundFiles FindFiles(const QStringList& paths, const QStringList& suffixes,
                     const QString& kind = QStringLiteral("scripts"));
