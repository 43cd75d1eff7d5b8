// The words of the language in groups, as the fuzzer's dictionary holds them.
#pragma once

#include <istream>
#include <map>
#include <string>
#include <string_view>
#include <vector>

// A reserved word, a type, a built-in or a sign of the language.
struct Word {
    std::string text;
    std::string group;
    const Word* closer = nullptr;  // END_IF of IF; null of a word that opens nothing
};

// ASCII letters as capitals; names and words of any letter case are equal so.
std::string Capitals(std::string_view text);

// Lives where it was made: the words point to each other.
class Words {
public:
    // Takes lines of the form group="WORD". Throws std::runtime_error if a group is missing whose
    // name the mutations know.
    explicit Words(std::istream& dictionary);
    Words(const Words&) = delete;
    Words& operator=(const Words&) = delete;

    // The word of that text in any letter case, else null.
    const Word* find(std::string_view text) const;

    const std::vector<std::string>& all() const { return all_; }
    const std::vector<std::string>& group(const std::string& name) const;

    // What may stand between two operands: words and signs.
    const std::vector<std::string>& infixes() const { return infixes_; }
    bool isInfix(const Word& word) const;

private:
    void addLine(const std::string& line);
    void addInfixes();
    void setClosers();
    const Word* findCloser(const std::string& text) const;

    std::map<std::string, Word> words_;  // by their capitals
    std::vector<std::string> all_;
    std::map<std::string, std::vector<std::string>> groups_;
    std::vector<std::string> infixes_;
};

bool IsIn(const Word* word, std::string_view group);
bool OpensSection(const Word* word);
bool Closes(const Word* word);
