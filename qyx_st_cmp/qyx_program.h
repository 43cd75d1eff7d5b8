// The units of a source: the definitions of functions and function blocks, then the program.
//
// A source is { definition } PROGRAM name sections body END_PROGRAM. Both entries share the list
// of labels and the count of values on the value stack; both end the run on the first error.
#pragma once

#include "qyx_globals.h"

// Declares the built-ins and compiles every definition in front of the program. Entered with the
// first token of the source; PROGRAM should be current on return.
void DoFunctions(LabelsList& labels, int& stackDepth);

// Compiles the program; PROGRAM must be current. END_PROGRAM is current on return.
void DoProgram(LabelsList& labels, int& stackDepth);
