// What the command lines of several subcommands have in common.
#pragma once

#include "reports/output.h"

#include <QStringList>

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

// "--color=WHEN"
void AddColorOption(CLI::App& command, ColorWish& wish);

// Arguments as texts, by the encoding of the locale.
QStringList ListOf(const std::vector<std::string>& arguments);
