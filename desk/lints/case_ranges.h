// The labels of CASE.
#pragma once

#include "lints/subject.h"

#include <map>
#include <vector>

// A value or range of a label of CASE.
struct CaseRange {
    Span span;
    double low;
    double high;
};

// The labels of each CASE, by its statement, in the order of the script.
std::map<int, std::vector<CaseRange>> RangesOfCases(const Subject& subject);
