// Executes code files both ways, an item at a time and by register code, by several choices and
// with changing inputs, and tells what differs.
//
//     machine_compare FILE...

#include "both_ways.h"

#include "machine/code.h"

#include <QFile>

#include <algorithm>
#include <iostream>
#include <random>
#include <utility>

namespace {

constexpr int CYCLES = 20;

const char* const CHOICES[] = {
    "",
    "overflow = saturate\nreal-to-int = away\nshift = modulo",
    "overflow = stop",
    "width = typed\nreal-to-int = truncate",
    "width = typed\noverflow = saturate\ndivide-by-zero = zero",
    "divide-by-zero = one\nreal-by-zero = stop",
    "call-result = accumulator\nlocals = retained",
    "call-result = both\nreturn-stack = keep\nscan-stack = keep",
    "program-variables = initial\ntick-write = counter",
    "scan-limit = 150",
};

// What the checks do: as they are unless set, all noted, none.
enum class Checking { Usual, Noted, None };
constexpr Checking CHECKINGS[] = {Checking::Usual, Checking::Noted, Checking::None};

Checks ChecksOf(Checking checking) {
    Checks checks = checking == Checking::None ? NoChecks() : Checks();
    if (checking == Checking::Noted) {
        for (std::size_t check = 0; check < CHECKS_COUNT - 1; ++check) {
            checks.set(NameOf(static_cast<Check>(check)), QStringLiteral("note"));
        }
    }
    // Code that does not end must end here.
    checks.set(QStringLiteral("scan-limit"), QStringLiteral("stop"));
    return checks;
}

struct Totals {
    qint64 programs = 0;
    qint64 runs = 0;
    qint64 cycles = 0;
    qint64 registerCycles = 0;
    qint64 lowered = 0;  // programs of which no cycle by the default choices gave up
    qint64 differences = 0;
};

bool IsInput(const Declaration& declaration) {
    return declaration.section == Section::Input && declaration.type < TYP_STRING;
}

Value RandomValue(Typ type, std::mt19937& random) {
    const auto number = static_cast<qint64>(random()) % 8 - 2;
    if (type == TYP_REAL || type == TYP_LREAL) {
        return RealValue(type, static_cast<double>(number) * 0.75);
    }
    const Range& range = RangeOf(type);
    return WholeValue(type, random() % 8 == 0 ? range.greatest
                                              : std::clamp(number, range.least, range.greatest));
}

void SetInputs(const Code& code, std::mt19937& random, Machine& one, Machine& other) {
    for (std::size_t index = 0; index < code.program().declarations.size(); ++index) {
        const Declaration& declaration = code.program().declarations[index];
        if (IsInput(declaration)) {
            const Value value = RandomValue(declaration.type, random);
            one.set(static_cast<int>(index), value);
            other.set(static_cast<int>(index), value);
        }
    }
}

// As if the script gave no initial value where the code has 0.
void SetUninitialized(const Code& code, Machine& machine) {
    for (std::size_t unit = 0; unit < code.units.size(); ++unit) {
        const std::vector<Declaration>& all = code.units[unit].declarations;
        for (std::size_t index = 0; index < all.size(); index += 2) {
            if (all[index].section <= Section::Output && all[index].numbers[0].whole == 0) {
                machine.setUninitialized(static_cast<int>(unit), static_cast<int>(index));
            }
        }
    }
}

class Comparison {
public:
    Comparison(QString name, const Code& code, Totals& totals)
        : name_(std::move(name)), code_(code), totals_(totals) {}

    void compareAll() {
        ++totals_.programs;
        for (const char* const choices : CHOICES) {
            for (const Checking checking : CHECKINGS) {
                compare(choices, checking);
            }
        }
    }

private:
    QString name_;
    const Code& code_;
    Totals& totals_;

    void compare(const char* choices, Checking checking) {
        Profile profile;
        profile.scanLimit = 20'000;
        SetChoices(profile, choices);
        Machine reference(code_, profile, ChecksOf(checking));
        Machine machine(code_, profile, ChecksOf(checking));
        reference.setItemwise();
        if (checking == Checking::Noted && !reference.stop()) {
            SetUninitialized(code_, reference);
            SetUninitialized(code_, machine);
        }
        const bool isSame = run(reference, machine);
        ++totals_.runs;
        totals_.cycles += machine.cycles();
        totals_.registerCycles += machine.registerCycles();
        const bool isDefault = *choices == '\0' && checking == Checking::Usual;
        const bool isLowered = machine.cycles() == machine.registerCycles();
        totals_.lowered += isDefault && isLowered && machine.cycles() > 0 ? 1 : 0;
        totals_.differences += isSame ? 0 : 1;
        if (!isSame) {
            std::cout << "    choices: " << choices << "\n";
        }
    }

    bool run(Machine& reference, Machine& machine) {
        std::mt19937 random(1);
        reference.setTickStep(100);
        machine.setTickStep(100);
        for (int cycle = 0; cycle < CYCLES && !reference.stop(); ++cycle) {
            SetInputs(code_, random, reference, machine);
            reference.cycle();
            machine.cycle();
            const QString difference = DifferenceOf(code_, reference, machine);
            if (!difference.isEmpty()) {
                std::cout << name_.toStdString() << ", cycle " << cycle << ": "
                          << difference.toStdString() << "\n";
                return false;
            }
        }
        return true;
    }
};

void CompareFile(const QString& name, Totals& totals) {
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly)) {
        std::cout << name.toStdString() << ": not read\n";
        ++totals.differences;
        return;
    }
    const CodeResult read = ReadCode(file.readAll());
    if (!read.fault) {
        Comparison(name, read.code, totals).compareAll();
    }
}

}  // namespace

int main(int argc, char** argv) {
    Totals totals;
    for (int index = 1; index < argc; ++index) {
        CompareFile(QString::fromLocal8Bit(argv[index]), totals);
    }
    std::cout << totals.programs << " programs, " << totals.runs << " runs, " << totals.cycles
              << " cycles, " << totals.registerCycles << " by register code; " << totals.lowered
              << " programs by register code alone by the default choices; " << totals.differences
              << " differences\n";
    return totals.differences == 0 && totals.programs > 0 ? 0 : 1;
}
