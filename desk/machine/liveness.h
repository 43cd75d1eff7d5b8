// Which of the accumulator, register 0 and the flag are read later.
#pragma once

#include "machine/code.h"

#include <vector>

struct Live {
    bool accumulator = false;
    bool register0 = false;
    bool flag = false;

    bool operator==(const Live& other) const {
        return accumulator == other.accumulator && register0 == other.register0 &&
               flag == other.flag;
    }
};

// For each instruction of the unit: what it, or one that may follow it, reads before it is
// written. One more follows the last.
std::vector<Live> FindLive(const Code& code, const CodeUnit& unit);
