#include "machine/inputs.h"

#include "facts/csv.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace {

const QString CYCLES = QStringLiteral("cycles");

// Takes the rows of a table; the first fault ends it.
class InputsReader {
public:
    InputsReader(const Csv& csv, const CodeUnit& program) : csv_(csv), program_(program) {}

    InputsResult read() {
        if (csv_.fault) {
            fail(csv_.fault->place, csv_.fault->message);
        } else if (csv_.rows.empty()) {
            fail({1, 1}, QStringLiteral("the table has no row with the names of its columns"));
        } else {
            readHead(csv_.rows.front());
            expectRows();
        }
        for (std::size_t row = 1; result_.fault.isEmpty() && row < csv_.rows.size(); ++row) {
            readRow(csv_.rows[row]);
        }
        return std::move(result_);
    }

private:
    const Csv& csv_;
    const CodeUnit& program_;
    InputsResult result_;

    void fail(Place place, const QString& message) {
        if (result_.fault.isEmpty()) {
            result_.fault = PlaceName(place) + QStringLiteral(": ") + message;
        }
    }

    void readHead(const CsvRow& head) {
        const CsvCell& first = head.cells.front();
        if (first.text.compare(CYCLES, Qt::CaseInsensitive) != 0) {
            fail(first.place,
                 QStringLiteral("the first column is \"cycles\", not \"%1\"").arg(first.text));
        }
        for (std::size_t column = 1; column < head.cells.size(); ++column) {
            readName(head.cells[column]);
        }
    }

    void expectRows() {
        if (csv_.rows.size() == 1) {
            fail(csv_.rows.front().cells.front().place,
                 QStringLiteral("no row with values follows the names"));
        }
    }

    void readName(const CsvCell& cell) {
        const FoundVariable found = FindSettable(program_, cell.text);
        std::vector<int>& variables = result_.inputs.variables;
        if (found.index == NOWHERE) {
            fail(cell.place, found.fault);
        } else if (std::find(variables.begin(), variables.end(), found.index) !=
                   variables.end()) {
            fail(cell.place, QStringLiteral("\"%1\" has a column already").arg(cell.text));
        }
        variables.push_back(found.index);
    }

    void readRow(const CsvRow& row) {
        const std::vector<int>& variables = result_.inputs.variables;
        if (row.cells.size() > variables.size() + 1) {
            fail(row.cells[variables.size() + 1].place,
                 QStringLiteral("the row has more cells than there are columns"));
            return;
        }
        InputRow input;
        readCycles(row.cells.front(), input);
        for (std::size_t column = 1; column < row.cells.size(); ++column) {
            readValue(row.cells[column], variables[column - 1], input);
        }
        result_.inputs.rows.push_back(std::move(input));
    }

    void readCycles(const CsvCell& cell, InputRow& input) {
        bool isNumber = false;
        const int number = cell.text.toInt(&isNumber);
        if (!isNumber || number < 1) {
            fail(cell.place,
                 QStringLiteral("a number of cycles from 1 to %1 is expected, not \"%2\"")
                     .arg(QString::number(std::numeric_limits<int>::max()), cell.text));
        }
        input.cycles = number;
    }

    void readValue(const CsvCell& cell, int variable, InputRow& input) {
        if (cell.text.isEmpty()) {
            return;
        }
        QString text = cell.text;
        if (csv_.separator == u';') {
            text.replace(u',', u'.');
        }
        Setting setting = {variable, Value()};
        const QString fault = ReadValueFor(program_, variable, text, setting.value);
        if (!fault.isEmpty()) {
            fail(cell.place, fault);
        }
        input.settings.push_back(setting);
    }
};

}  // namespace

qint64 Inputs::cycles() const {
    return std::accumulate(rows.begin(), rows.end(), qint64(0),
                           [](qint64 sum, const InputRow& row) { return sum + row.cycles; });
}

InputsResult ReadInputs(const QByteArray& text, const CodeUnit& program) {
    return InputsReader(ReadCsv(text), program).read();
}

void Put(const Setting& setting, Machine& machine) {
    if (setting.variable == TICK_VARIABLE) {
        machine.setTick(static_cast<quint32>(setting.value.whole));
    } else {
        machine.set(setting.variable, setting.value);
    }
}

InputFeed::InputFeed(const Inputs& inputs, const CodeUnit& program)
    : inputs_(inputs), program_(program) {}

bool InputFeed::isInput(int variable) const {
    return variable != TICK_VARIABLE &&
           program_.declarations[static_cast<std::size_t>(variable)].section == Section::Input;
}

const std::vector<Setting>& InputFeed::feed(Machine& machine) {
    given_.clear();
    if (row_ < inputs_.rows.size() && cycleOfRow_ == 0) {
        beginRow(machine);
    }
    if (row_ < inputs_.rows.size() && ++cycleOfRow_ == inputs_.rows[row_].cycles) {
        ++row_;
        cycleOfRow_ = 0;
    }
    for (const int variable : inputs_.variables) {
        const auto held = held_.find(variable);
        if (held != held_.end()) {
            machine.set(variable, held->second);
        }
    }
    return given_;
}

void InputFeed::beginRow(Machine& machine) {
    given_ = inputs_.rows[row_].settings;
    for (const Setting& setting : given_) {
        if (isInput(setting.variable)) {
            held_[setting.variable] = setting.value;
        } else {
            Put(setting, machine);
        }
    }
}
