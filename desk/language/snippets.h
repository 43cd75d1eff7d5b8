// Pieces of scripts with gaps to fill in, those of the editors.
#pragma once

#include <QString>

#include <vector>

struct Snippet {
    QString name;
    QString firstWord;  // the reserved word that it begins with
    QString body;       // with the marks of the protocol; lines are indented with tabs
};

const std::vector<Snippet>& Snippets();
