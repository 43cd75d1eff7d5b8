// The subcommands, each in a file of its own; main.cpp has the table of them.
#pragma once

#include "reports/output.h"

#include <CLI/CLI.hpp>

#include <functional>

// What is done when the command line has been read.
using Runner = std::function<Status()>;

// Each declares its arguments and options and returns what is to be done with them.
Runner DeclareCheck(CLI::App& command);
Runner DeclareExplain(CLI::App& command);
Runner DeclareFmt(CLI::App& command);
Runner DeclareFacts(CLI::App& command);
Runner DeclareVerify(CLI::App& command);
Runner DeclareRun(CLI::App& command);
Runner DeclareTest(CLI::App& command);
Runner DeclareLsp(CLI::App& command);
