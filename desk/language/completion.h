// What can be written at a place of a script.
#pragma once

#include "check/context.h"
#include "language/model.h"

#include <optional>

// In the order in which they are offered.
enum class ProposalKind : unsigned char {
    Variable,
    Label,
    Definition,  // of the script
    BuiltIn,
    Type,
    Snippet,
    Word
};

struct Proposal {
    ProposalKind kind;
    QString name;
    QString detail;   // what stands beside it
    QString snippet;  // what is written in place of the name, as a snippet of the protocol
};

struct Proposals {
    Span word;  // what they take the place of
    std::vector<Proposal> proposals;
};

// What may stand at an offset, as the compiler has it; nothing in comments and strings, nor
// where a new name is written.
Proposals ProposalsAt(const Model& model, int offset);
