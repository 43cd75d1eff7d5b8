// Many scripts checked side by side, told in order.
#pragma once

#include "check/file_check.h"

#include <QStringList>

#include <functional>
#include <optional>

struct CheckOptions {
    int jobs = 1;        // compiles at the same time
    int maxErrors = 50;  // of one script
    FindMore findMore = {};
};

// A script that was checked, or why it could not be.
struct CheckedFile {
    QString path;
    std::optional<FileReport> report;
    QString failure;  // a sentence without its full stop, where there is no report
};

// Checks the files ("-" is standard input) and hands each over in their order, as soon as those
// before it are done.
void CheckFiles(const QStringList& files, const CheckOptions& options,
                const std::function<void(const CheckedFile&)>& handOver);
