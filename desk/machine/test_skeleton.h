// The table of a test to begin with.
#pragma once

#include "machine/code.h"

// A table with one case for the code of a script: one cycle from the initial values, with what
// the variables hold after it. `script` is what the table calls the script.
QString SkeletonOf(Code code, const QString& script);
