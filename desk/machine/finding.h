// What is to be said about target code.
#pragma once

#include "facts/level.h"

#include <QString>

#include <vector>

struct Finding {
    Level level;
    QString id;       // "wrong-type"
    QString message;  // no full stop at its end
    int item;         // its number from 1, 0 where it is about no single item
};

using Findings = std::vector<Finding>;
