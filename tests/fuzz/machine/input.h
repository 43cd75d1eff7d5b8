// What the fuzzer gives to the machine: one text with all that a run is made of.
//
// It begins with bytes that choose how the code is executed. After them come the code, a file of
// the engine's choices, a table of inputs, arguments of the command line one a line, and a table
// of tests, each of which a form feed divides from the next; none has to be there.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

constexpr std::size_t CHOICE_BYTES = 4;
constexpr char PART_MARK = '\f';

enum Part : std::size_t { CODE, ENGINE, INPUTS, ARGUMENTS, TESTS, PARTS };

struct MachineInput {
    std::string choices;  // fewer than CHOICE_BYTES where the text is as short
    std::array<std::string, PARTS> parts;

    // One of the bytes that choose; 0 for one that is missing.
    unsigned choice(std::size_t index) const {
        return index < choices.size() ? static_cast<unsigned char>(choices[index]) : 0U;
    }
};

MachineInput SplitInput(std::string_view text);
// The text of which the input is made, but for marks of parts that are missing at its end.
std::string JoinInput(const MachineInput& input);
