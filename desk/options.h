// What the command lines of several subcommands have in common.
#pragma once

#include "reports/output.h"

#include <QStringList>

#include <CLI/CLI.hpp>

#include <map>
#include <string>
#include <vector>

// "--color=WHEN"
void AddColorOption(CLI::App& command, ColorWish& wish);

// An option with a value from 1 on: "--jobs=N".
void AddCountOption(CLI::App& command, const char* option, int& count, const char* description);

// An option whose value is one of the words of a table: "--format=FORMAT".
template <typename Value>
void AddChoiceOption(CLI::App& command, const char* option, Value& chosen,
                     const std::map<std::string, Value>& choices, const char* valueName,
                     const char* description) {
    std::vector<std::string> words;
    words.reserve(choices.size());
    for (const auto& [word, value] : choices) {
        words.push_back(word);
    }
    command
        .add_option_function<std::string>(
            option, [&chosen, choices](const std::string& word) { chosen = choices.at(word); },
            description)
        ->option_text(valueName)
        ->check(CLI::IsMember(words));
}

// A text of the command line, by the encoding of the locale.
QString TextOfArgument(const std::string& argument);
// Arguments as texts, by the encoding of the locale.
QStringList ListOf(const std::vector<std::string>& arguments);
