#include "code_items.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>

namespace {

constexpr std::size_t FIELDS_OF_SECTION = 4;
constexpr std::size_t FIELDS_OF_MANY = 7;

CodeItem WordsOf(std::string_view text) {
    CodeItem words(1);
    bool isQuoted = false;
    for (const char c : text) {
        isQuoted = isQuoted != (c == '\'');
        if (c == ' ' && !isQuoted) {
            words.emplace_back();
        } else {
            words.back().push_back(c);
        }
    }
    return words;
}

// "0012", a tab, the item.
std::string_view WithoutNumber(std::string_view line) {
    const std::size_t tab = line.find('\t');
    const bool isNumbered =
        tab != line.npos && std::all_of(line.begin(), line.begin() + static_cast<long>(tab),
                                        [](unsigned char c) { return std::isdigit(c) != 0; });
    return isNumbered ? line.substr(tab + 1) : line;
}

CodeItems ReadListing(std::string_view text) {
    CodeItems items;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        const std::string_view line = text.substr(begin, end - begin);
        items.push_back(line.substr(0, 1) == ";" ? CodeItem{std::string(line)}
                                                 : WordsOf(WithoutNumber(line)));
        begin = end + 1;
    }
    return items;
}

CodeItems ReadFile(std::string_view text, const CodeWords& words) {
    CodeItem all = WordsOf(text);
    if (all.back().empty()) {
        all.pop_back();
    }
    CodeItems items;
    for (std::size_t begin = 0; begin < all.size();) {
        const std::string second = begin + 1 < all.size() ? all[begin + 1] : std::string();
        const std::size_t end = std::min(begin + words.lengthOf(all[begin], second), all.size());
        items.emplace_back(all.begin() + static_cast<long>(begin),
                           all.begin() + static_cast<long>(end));
        begin = end;
    }
    return items;
}

}  // namespace

CodeWords::CodeWords(std::istream& dictionary) {
    std::string line;
    while (std::getline(dictionary, line)) {
        const std::size_t groupEnd = line.find("=\"");
        if (groupEnd != std::string::npos && line.back() == '"') {
            const std::string word = line.substr(groupEnd + 2, line.size() - groupEnd - 3);
            groups_[line.substr(0, groupEnd)].push_back(word);
            groupOfWord_[word] = line.substr(0, groupEnd);
        }
    }
    for (const char* name :
         {"move", "binary", "unary", "jump", "call", "section", "sectionOfMany", "type", "place",
          "builtIn", "choice", "check", "table"}) {
        if (groups_.count(name) == 0) {
            throw std::runtime_error(std::string("the dictionary has no group ") + name);
        }
    }
}

const std::vector<std::string>& CodeWords::group(const std::string& name) const {
    return groups_.at(name);
}

std::string CodeWords::groupOf(const std::string& word) const {
    const auto found = groupOfWord_.find(word);
    return found == groupOfWord_.end() ? std::string() : found->second;
}

std::size_t CodeWords::lengthOf(const std::string& first, const std::string& second) const {
    const std::string group = groupOf(first);
    if (group == "move" || group == "binary") {
        return 3;
    }
    if (group == "unary" || group == "jump" || group == "call") {
        return 2;
    }
    const std::string section = groupOf(second);
    return section == "section"         ? FIELDS_OF_SECTION
           : section == "sectionOfMany" ? FIELDS_OF_MANY
                                        : 1;
}

CodeItems ReadItems(std::string_view text, const CodeWords& words) {
    return text.find('\n') == text.npos ? ReadFile(text, words) : ReadListing(text);
}

std::string JoinItems(const CodeItems& items, bool isListing) {
    std::string text;
    for (const CodeItem& item : items) {
        for (const std::string& word : item) {
            text += word + ' ';
        }
        if (isListing && !item.empty()) {
            text.back() = '\n';
        }
    }
    return text;
}

bool IsLabel(const CodeItem& item) {
    return item.size() == 1 && item[0].size() > 1 && item[0].back() == ':';
}

bool IsDeclaration(const CodeItem& item, const CodeWords& words) {
    return item.size() >= FIELDS_OF_SECTION && words.groupOf(item[1]).rfind("section", 0) == 0;
}

bool IsInstruction(const CodeItem& item, const CodeWords& words) {
    return item.size() > 1 && words.lengthOf(item[0], {}) == item.size();
}

int HeightChange(const CodeItem& item) {
    const auto pushes = std::count(item.begin(), item.end(), "$PUSH");
    return static_cast<int>(pushes - std::count(item.begin(), item.end(), "$POP"));
}
