// Diagnostics as a person, an editor or a server wants them. Files are reported one by one, in
// their order, and none is kept.
#pragma once

#include "check/diagnostic.h"

// What was found in all files. Notes do not count.
struct Summary {
    int errors = 0;
    int warnings = 0;
    int files = 0;
    int filesWithFindings = 0;

    void add(const FileReport& report);
};

// What "--werror" asks for.
void MakeWarningsErrors(FileReport& report);

// Written to standard output: what begin() opens, end() closes.
class Report {
public:
    Report() = default;
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;
    virtual ~Report() = default;

    virtual void begin() {}
    virtual void file(const FileReport& report) = 0;
    virtual void end(const Summary&) {}
};
