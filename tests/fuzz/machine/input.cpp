#include "input.h"

#include <algorithm>

MachineInput SplitInput(std::string_view text) {
    const std::size_t length = std::min(CHOICE_BYTES, text.size());
    MachineInput input = {std::string(text.substr(0, length)), {}};
    text.remove_prefix(length);
    for (std::size_t part = 0; part < PARTS; ++part) {
        const bool isLast = part + 1 == PARTS;
        const std::size_t end =
            isLast ? text.size() : std::min(text.find(PART_MARK), text.size());
        input.parts[part] = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return input;
}

std::string JoinInput(const MachineInput& input) {
    std::string text = input.choices;
    text.resize(CHOICE_BYTES, '0');
    for (const std::string& part : input.parts) {
        text += part + PART_MARK;
    }
    text.erase(text.find_last_not_of(PART_MARK) + 1);
    return text;
}
