#include "words.h"

#include <algorithm>
#include <stdexcept>

namespace {

constexpr std::string_view CLOSER_PREFIX = "END_";
constexpr std::string_view INFIX_SIGNS = "*+-/<=>";
constexpr std::string_view LINE_COMMENT = "//";

bool StartsWith(std::string_view text, std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}

bool IsInfixSign(std::string_view text) {
    return text.find_first_not_of(INFIX_SIGNS) == std::string_view::npos && text != LINE_COMMENT;
}

}  // namespace

std::string Capitals(std::string_view text) {
    std::string capitals(text);
    for (char& c : capitals) {
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }
    return capitals;
}

Words::Words(std::istream& dictionary) {
    std::string line;
    while (std::getline(dictionary, line)) {
        addLine(line);
    }
    for (const char* name :
         {"units", "sections", "engineSections", "declarations", "statements", "constants",
          "variables", "operators", "types", "functions", "punctuation"}) {
        if (groups_.count(name) == 0) {
            throw std::runtime_error(std::string("the dictionary has no group ") + name);
        }
    }
    addInfixes();
    setClosers();
}

void Words::addLine(const std::string& line) {
    const std::size_t groupEnd = line.find("=\"");
    if (groupEnd == std::string::npos || line.back() != '"') {
        return;
    }
    const std::string group = line.substr(0, groupEnd);
    const std::string text = line.substr(groupEnd + 2, line.size() - groupEnd - 3);
    all_.push_back(text);
    groups_[group].push_back(text);
    words_[Capitals(text)] = {text, group};
}

void Words::addInfixes() {
    infixes_ = group("operators");
    for (const std::string& sign : group("punctuation")) {
        if (IsInfixSign(sign)) {
            infixes_.push_back(sign);
        }
    }
}

void Words::setClosers() {
    for (auto& [capitals, word] : words_) {
        if (!Closes(&word)) {
            word.closer = findCloser(capitals);
        }
    }
}

// END_VAR closes VAR_INPUT too, but FUNCTION_BLOCK has a closer of its own.
const Word* Words::findCloser(const std::string& text) const {
    std::size_t size = text.size();
    while (size != std::string::npos && size > 0) {
        const Word* closer = find(std::string(CLOSER_PREFIX) + text.substr(0, size));
        if (closer != nullptr) {
            return closer;
        }
        size = text.rfind('_', size - 1);
    }
    return nullptr;
}

const Word* Words::find(std::string_view text) const {
    const auto found = words_.find(Capitals(text));
    return found == words_.end() ? nullptr : &found->second;
}

const std::vector<std::string>& Words::group(const std::string& name) const {
    return groups_.at(name);
}

bool Words::isInfix(const Word& word) const {
    return std::find(infixes_.begin(), infixes_.end(), word.text) != infixes_.end();
}

bool IsIn(const Word* word, std::string_view group) {
    return word != nullptr && word->group == group;
}

bool OpensSection(const Word* word) {
    return IsIn(word, "sections") || IsIn(word, "engineSections");
}

bool Closes(const Word* word) {
    return word != nullptr && StartsWith(word->text, CLOSER_PREFIX);
}
