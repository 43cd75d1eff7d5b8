// What the cases of a table do with the variables of their script.
#pragma once

#include "machine/settings.h"
#include "machine/test_table.h"

struct TestSetting {
    ColumnUse use;  // Set or Force
    Setting setting;
    bool isRelease;
};

// What is expected of a variable: that all conditions hold.
struct TestQuestion {
    ColumnUse use;  // AskAtEnd or AskEachCycle
    int variable;
    std::vector<Condition> conditions;
    QString column;  // as the head has it
    QString expected;
    Place place;
};

struct PlannedRow {
    int line;
    int cycles;
    bool isAtMost;
    std::vector<TestSetting> settings;
    std::vector<TestQuestion> questions;
    std::vector<int> variables;  // of all its columns, each once
};

struct PlannedCase {
    QString name;
    int line;
    std::vector<PlannedRow> rows;
};

struct TestPlan {
    std::vector<PlannedCase> cases;
    std::optional<CsvFault> fault;
};

// Adds the engine's objects of the table to the variables of the program. What is wrong with one,
// if anything is.
std::optional<CsvFault> DeclareObjects(const TestPreamble& preamble, CodeUnit& program);

// Finds the variables and values of the rows; the program has the objects of the preamble
// already.
TestPlan PlanTests(const TestText& text, const CodeUnit& program);
