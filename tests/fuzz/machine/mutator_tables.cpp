#include "mutator.h"

#include "../literals.h"

#include <algorithm>

namespace {

constexpr int MOST_CHANGES = 4;

using Texts = std::vector<std::string>;

bool IsSign(char c) {
    return c == '\n' || c == ',' || c == ';' || c == '=' || c == ' ' || c == '"' || c == '#';
}

// Texts and the signs between them; joined they are the table again.
Texts CellsOf(std::string_view text) {
    Texts cells;
    bool isAfterSign = true;
    for (const char c : text) {
        if (IsSign(c) || isAfterSign) {
            cells.emplace_back();
        }
        cells.back().push_back(c);
        isAfterSign = IsSign(c);
    }
    return cells;
}

// Each with its line feed.
Texts LinesOf(std::string_view text) {
    Texts lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size() - 1) + 1;
        lines.emplace_back(text.substr(begin, end - begin));
        begin = end;
    }
    return lines;
}

std::string Join(const Texts& texts) {
    std::string joined;
    for (const std::string& text : texts) {
        joined += text;
    }
    return joined;
}

// Deletes, repeats or swaps one of the texts.
void Rearrange(Texts& texts, Random& random) {
    const std::size_t at = random.below(texts.size());
    const auto place = texts.begin() + static_cast<long>(at);
    switch (random.below(3)) {
        case 0:
            texts.erase(place);
            break;
        case 1:
            texts.insert(place, std::string(*place));
            break;
        default:
            std::swap(*place, texts[random.below(texts.size())]);
    }
}

}  // namespace

// A word of tables, a number, a sign, or a name of the code.
std::string MachineMutator::makeCell(const std::string& former) {
    static const Texts signs = {",", ";", "\n", "=", " ", "\"", "#", "?", "!", "<=", "..", "~"};
    if (former.size() == 1 && IsSign(former[0])) {
        return random_.oneOf(signs);
    }
    switch (random_.below(5)) {
        case 0:
            return random_.oneOf(words_.group("table"));
        case 1:
            return chooseName(items_.size()) + (random_.oneIn(2) ? "?" : "");
        case 2:
            return former + random_.oneOf(signs) + MakeNumber(random_);
        default:
            return std::string(random_.oneIn(4) ? "-" : "") + MakeNumber(random_);
    }
}

std::string MachineMutator::makeArgument() {
    return random_.oneIn(3)
               ? random_.oneOf(words_.group("check"))
               : chooseName(items_.size()) + random_.oneOf(Texts{"=", "<", ">=", "<>"}) +
                     (random_.oneIn(4) ? "TRUE" : MakeNumber(random_));
}

void MachineMutator::changeTable(Part part) {
    std::string& text = input_.parts[part];
    items_ = ReadItems(input_.parts[CODE], words_);
    int changes = 0;
    do {
        Texts lines = LinesOf(random_.oneIn(6) ? other_.parts[part] : text);
        Texts cells = CellsOf(text);
        switch (random_.below(4)) {
            case 0:
                text += part == ENGINE ? random_.oneOf(words_.group("choice")) + '\n'
                        : part == ARGUMENTS || part == INPUTS ? makeArgument() + '\n'
                        : lines.empty()                       ? makeCell({})
                                                              : random_.oneOf(lines);
                break;
            case 1:
                if (!lines.empty()) {
                    Rearrange(lines, random_);
                    text = Join(lines);
                }
                break;
            default:
                if (!cells.empty()) {
                    std::string& cell = cells[random_.below(cells.size())];
                    cell = makeCell(cell);
                    text = Join(cells);
                }
        }
    } while (++changes < MOST_CHANGES && random_.oneIn(2));
}
