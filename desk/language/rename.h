// A name and all its uses get another name.
#pragma once

#include "language/names.h"

// What can be renamed at an offset.
struct RenameTarget {
    Span span;
    int name = NONE;
    QString refusal;  // why nothing can, else empty
};

RenameTarget RenameTargetAt(const Model& model, int offset);

struct Renaming {
    std::vector<Span> places;  // where the new name is to stand, in the order of the script
    QString refusal;           // why it cannot be, else empty
};

// The renamed script is compiled, and waited for: its code is the same but for the name, and each
// use means what it meant, or it is refused.
Renaming RenameTo(const Model& model, int offset, const QString& newName);
