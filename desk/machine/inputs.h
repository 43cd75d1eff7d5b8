// What is put in before the cycles of a run, as a table gives it.
//
// The first column, "cycles", holds how many cycles a row is for, the others the values of a
// variable each; an empty cell leaves the variable as it is.
#pragma once

#include "machine/machine.h"
#include "machine/settings.h"

#include <QByteArray>

#include <map>
#include <vector>

struct InputRow {
    qint64 cycles = 1;
    std::vector<Setting> settings;
};

struct Inputs {
    std::vector<int> variables;  // of the columns
    std::vector<InputRow> rows;

    qint64 cycles() const;  // of all rows
};

struct InputsResult {
    Inputs inputs;
    QString fault;  // "line 3, column 5: ...", without a full stop; empty if there is none
};

// Reads such a table.
InputsResult ReadInputs(const QByteArray& text, const CodeUnit& program);

// Sets a variable, or the tick counter.
void Put(const Setting& setting, Machine& machine);

// Puts the rows of inputs into a machine, cycle by cycle. A variable of VAR_INPUT is set before
// every cycle from its first value on, whatever the script stores in it, others once. The inputs
// and the program must outlive it.
class InputFeed {
public:
    InputFeed(const Inputs& inputs, const CodeUnit& program);

    // Sets what is due before the next cycle, and returns what a row gave for it.
    const std::vector<Setting>& feed(Machine& machine);

private:
    const Inputs& inputs_;
    const CodeUnit& program_;
    std::size_t row_ = 0;
    qint64 cycleOfRow_ = 0;
    std::vector<Setting> given_;
    std::map<int, Value> held_;  // by the index of the variable

    bool isInput(int variable) const;
    void beginRow(Machine& machine);
};
