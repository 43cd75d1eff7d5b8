// What an editor can fold away.
#pragma once

#include "language/model.h"

// It goes from the line of its begin to the line of its end, which is a later one.
struct Fold {
    Span span;
    bool isComment;
};

// Units, sections, compound statements and their branches, comments over several lines, and
// lines of comments that follow each other. None overlaps another: they are nested.
std::vector<Fold> FoldsOf(const Model& model);
