// The table of a test to begin with.
#pragma once

#include "machine/load.h"

// A table with one case for a script that is ready: one cycle from the initial values, with what
// the variables hold after it. `script` is what the table calls the script.
QString SkeletonOf(const Loaded& loaded, const QString& script);
