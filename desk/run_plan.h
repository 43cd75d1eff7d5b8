// The command line of `yxst run`, and what it asks for.
#pragma once

#include "machine/inputs.h"
#include "machine/profile.h"
#include "reports/output.h"

#include <QString>

#include <optional>
#include <string>
#include <vector>

struct RunArguments {
    std::string path;
    int cycles = 0;  // 0: not given
    quint32 tick = 100;
    std::string inputs;
    std::vector<std::string> settings;
    std::vector<std::string> forced;
    std::string trace;
    std::vector<std::string> watched;
    std::string chart;
    std::string until;
    std::string engine;
    std::vector<std::string> checks;
    std::string test;
    bool isFast = false;
    bool isQuiet = false;
    ColorWish color = ColorWish::Auto;
};

// What to do with a program.
struct RunPlan {
    Profile profile;
    Checks checks;
    std::vector<Setting> settings;
    std::vector<Setting> forced;
    Inputs inputs;
    std::optional<Condition> until;
    std::vector<int> variables;  // to be shown
    std::vector<int> written;    // the engine's objects that the script writes
    int cycles = 1;              // at most
};

// Reads what the arguments say about a program. What is wrong with them, a sentence without its
// full stop, empty if nothing is.
QString ReadPlan(const RunArguments& arguments, const CodeUnit& program, RunPlan& plan);

// What is wrong with the names of the files among the arguments; empty if nothing is.
QString WhatIsWrongWithFiles(const RunArguments& arguments);
