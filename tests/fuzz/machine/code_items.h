// Target code as the mutations see it: items and their words. Any text is taken, so that code
// that is wrong can be changed too.
#pragma once

#include <istream>
#include <map>
#include <string>
#include <string_view>
#include <vector>

// The words of target code in groups, as the fuzzer's dictionary holds them.
class CodeWords {
public:
    // Takes lines of the form group="WORD". Throws std::runtime_error if a group is missing whose
    // name the mutations know.
    explicit CodeWords(std::istream& dictionary);

    const std::vector<std::string>& group(const std::string& name) const;
    // The group of a word, empty if it is in none.
    std::string groupOf(const std::string& word) const;

    // How many words an item that begins so has; the second word tells a declaration.
    std::size_t lengthOf(const std::string& first, const std::string& second) const;

private:
    std::map<std::string, std::vector<std::string>> groups_;
    std::map<std::string, std::string> groupOfWord_;
};

using CodeItem = std::vector<std::string>;
using CodeItems = std::vector<CodeItem>;

// A code file, or a listing, which is told by its line feeds.
CodeItems ReadItems(std::string_view text, const CodeWords& words);
std::string JoinItems(const CodeItems& items, bool isListing);

bool IsLabel(const CodeItem& item);
bool IsDeclaration(const CodeItem& item, const CodeWords& words);
bool IsInstruction(const CodeItem& item, const CodeWords& words);
// How an item changes the height of the stack.
int HeightChange(const CodeItem& item);
