#include "facts/input.h"

#include "qyx_files.h"

#include <QDirIterator>
#include <QFileInfo>

#include <unistd.h>

#include <algorithm>

namespace {

constexpr qint64 BLOCK_SIZE = 1 << 16;

// The compiler takes names as the bytes that the user gave, each of them one character.
QString CompilersName(const QString& path) {
    return QString::fromLatin1(QFile::encodeName(path));
}

// Everything that there is to read; nothing if it cannot be read whole.
std::optional<QByteArray> ReadAll(QFile& input) {
    QByteArray bytes;
    QByteArray block;
    do {
        block = input.read(BLOCK_SIZE);
        bytes.append(block);
    } while (!block.isEmpty() && bytes.size() <= MAX_SOURCE_SIZE);
    const bool isWhole = input.error() == QFileDevice::NoError && bytes.size() <= MAX_SOURCE_SIZE;
    return isWhole ? std::optional<QByteArray>(bytes) : std::nullopt;
}

InputBytes ReadStandardInput() {
    QFile input;
    std::optional<QByteArray> bytes;
    if (input.open(STDIN_FILENO, QIODevice::ReadOnly)) {
        bytes = ReadAll(input);
    }
    return {bytes, bytes ? QString() : QStringLiteral("standard input cannot be read whole")};
}

QString WhyUnreadable(const QString& path) {
    const QFileInfo info(path);
    if (!info.exists()) {
        return QStringLiteral("no such file");
    }
    if (info.isDir()) {
        return QStringLiteral("is a folder");
    }
    return info.isFile() && info.isReadable() ? QStringLiteral("cannot be read whole")
                                              : QStringLiteral("cannot be read");
}

QStringList FilesIn(const QString& folder, const QStringList& suffixes) {
    QStringList patterns;
    for (const QString& suffix : suffixes) {
        patterns.append(QStringLiteral("*.") + suffix);
    }
    QStringList files;
    QDirIterator each(folder, patterns, QDir::Files, QDirIterator::Subdirectories);
    while (each.hasNext()) {
        files.append(each.next());
    }
    std::sort(files.begin(), files.end());
    return files;
}

}  // namespace

Input ReadInput(const QString& path) {
    if (path == QLatin1String(STANDARD_INPUT)) {
        const InputBytes input = ReadStandardInput();
        return input.bytes ? Input{Source(NameOfInput(path), SourceText(*input.bytes)), QString()}
                           : Input{std::nullopt, input.failure};
    }
    const FileHandle file(CompilersName(path), true);
    if (!file.isOpened()) {
        return {std::nullopt, WhyUnreadable(path)};
    }
    return {Source(path, file.text()), QString()};
}

InputBytes ReadInputBytes(const QString& path) {
    if (path == QLatin1String(STANDARD_INPUT)) {
        return ReadStandardInput();
    }
    QFile file(path);
    std::optional<QByteArray> bytes;
    if (!QFileInfo(path).isDir() && file.open(QIODevice::ReadOnly)) {
        bytes = ReadAll(file);
    }
    return {bytes, bytes ? QString() : WhyUnreadable(path)};
}

QString NameOfInput(const QString& path) {
    return path == QLatin1String(STANDARD_INPUT) ? QStringLiteral("<stdin>") : path;
}

FoundFiles FindFiles(const QStringList& paths, const QStringList& suffixes, const QString& kind) {
    FoundFiles found;
    for (const QString& path : paths) {
        if (!QFileInfo(path).isDir()) {
            found.files.append(path);
            continue;
        }
        const QStringList files = FilesIn(path, suffixes);
        if (files.isEmpty()) {
            found.failures.append(path + QStringLiteral(": no %1 in this folder").arg(kind));
        }
        found.files.append(files);
    }
    return found;
}
