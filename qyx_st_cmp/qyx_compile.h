// One compile: the whole of the source that is open, its code into the code file that is open.
#pragma once

// Compiles the script. Aborts at its first error.
void Compile();
