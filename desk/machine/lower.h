// Lowers target code to register code, by following what each instruction does to the
// accumulator, register 0, the flag and the value stack.
#pragma once

#include "machine/memory.h"
#include "machine/register_code.h"
#include "machine/unit_plans.h"

// Whatever the code is, register code comes of it that gives up where it cannot go on. The cells
// of the memory must stay where they are as long as the register code is used.
RegisterCode Lower(const Lowered& lowered, Memory& memory);
