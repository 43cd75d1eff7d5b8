// The pieces of a script that its words enclose, found by its tokens alone: also while the script
// is broken.
#pragma once

#include "language/model.h"

// A unit, a section, a compound statement, or a branch of one: ELSIF, ELSE, the labels of a CASE.
struct Block {
    Token code;  // of its first word, TOKEN_NUMBER for the labels of a CASE
    Span span;   // to the end of its END_ word, of a branch to the end of its last token
    int end;     // where the word begins that ends it
};

// In the order of their begins, outer ones first. What has no end is none.
std::vector<Block> BlocksOf(const Model& model);
