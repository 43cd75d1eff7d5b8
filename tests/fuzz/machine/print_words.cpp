// Prints the words of target code and of the tables beside it as the fuzzer's dictionary: lines
// of the form group="WORD". The mutator chooses by the groups, the fuzzer itself passes over
// them.

#include "setup.h"

#include "machine/code.h"
#include "machine/forms.h"

#include <iostream>
#include <set>

namespace {

constexpr const char* SHAPES[] = {"move", "binary", "unary", "jump", "call", "nothing"};
constexpr QLatin1String PLACES[] = {ACCUMULATOR, REGISTER_0, PUSH, POP, NIL, TICK};
constexpr const char* ENTRIES[] = {"PROG:", "VAR:", "MAIN:", "BODY:"};
constexpr const char* ACTIONS[] = {"off", "note", "stop"};
constexpr const char* TABLE_WORDS[] = {
    "cycles", "case", "script", "engine", "check", "tick", "global", "register",
    "force ", "?",    "!",      "<=",     "~",     "..",   "TRUE",   "FALSE"};

void Print(const char* group, const std::string& word) {
    std::cout << group << "=\"" << word << "\"\n";
}

void PrintCode() {
    for (int at = 0; at <= static_cast<int>(Operation::Return); ++at) {
        const InstructionForm& form = FormOf(static_cast<Operation>(at));
        Print(SHAPES[static_cast<std::size_t>(form.shape)], form.keyword.data());
    }
    for (int at = 0; at <= static_cast<int>(Section::EngineRegister); ++at) {
        const QLatin1String code = CodeOf(static_cast<Section>(at));
        Print(FieldsOf(View(code)) > 4 ? "sectionOfMany" : "section", code.data());
    }
    for (const typ& row : TypsTable) {
        Print("type", TypToStr(row.code).data());
    }
    for (const QLatin1String place : PLACES) {
        Print("place", place.data());
    }
    for (const char* const entry : ENTRIES) {
        Print("entry", entry);
    }
    for (const BuiltIn& builtIn : EngineBuiltIns()) {
        Print("builtIn", builtIn.name.toStdString());
    }
}

void PrintChoices() {
    std::set<std::string> choices = {"scan-limit = 100"};
    for (unsigned number = 0; number < PROFILES; ++number) {
        for (const QString& choice : ChangedChoices(ProfileOf(number))) {
            choices.insert(choice.toStdString());
        }
    }
    for (const std::string& choice : choices) {
        Print("choice", choice);
    }
}

void PrintTables() {
    for (std::size_t at = 0; at < CHECKS_COUNT; ++at) {
        for (const char* const action : ACTIONS) {
            Print("check", NameOf(static_cast<Check>(at)).toStdString() + '=' + action);
        }
    }
    for (const char* const word : TABLE_WORDS) {
        Print("table", word);
    }
}

}  // namespace

int main() {
    PrintCode();
    PrintChoices();
    PrintTables();
    return 0;
}
