// Which statements of a script were executed, by the instructions that were.
#pragma once

#include "facts/facts.h"
#include "machine/code.h"

#include <vector>

// The statements that begin on a line. An ELSIF, a label of a CASE and an UNTIL count as
// statements of their own.
struct LineCoverage {
    int line;
    int statements = 0;
    int executed = 0;  // of these
    qint64 count = 0;  // how often the one that was executed most often was
};

struct Coverage {
    std::vector<LineCoverage> lines;  // those on which statements begin

    int statements() const;
    int executed() const;
};

// `executions` are those of each instruction of the script's code.
Coverage CoverageOf(const Source& source, const Facts& facts, const Code& code,
                    const std::vector<qint64>& executions);
