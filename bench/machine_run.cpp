// Executes a code file for a number of cycles on the machine of the desk:
//
//     machine_run checked|fast|items FILE CYCLES

#include "machine/machine.h"

#include <QFile>

#include <cstring>
#include <iostream>
#include <limits>

namespace {

int Fail(const QString& message) {
    std::cerr << message.toStdString() << "\n";
    return 1;
}

// With checks, without, or an item at a time with checks.
int Run(const char* way, const Code& code, qint64 cycles) {
    const bool isFast = std::strcmp(way, "fast") == 0;
    Profile profile;
    profile.scanLimit = std::numeric_limits<qint64>::max();
    Machine machine(code, profile, isFast ? NoChecks() : Checks());
    if (isFast) {
        machine.setUncounted();
    }
    if (std::strcmp(way, "items") == 0) {
        machine.setItemwise();
    }
    machine.setTickStep(100);
    for (qint64 cycle = 0; cycle < cycles && machine.cycle(); ++cycle) {
    }
    for (std::size_t index = 0; index < code.program().declarations.size(); ++index) {
        std::cout << code.program().declarations[index].name.toStdString() << " "
                  << TextOf(machine.value(static_cast<int>(index))).toStdString() << "\n";
    }
    return machine.stop() ? Fail(machine.stop()->message) : 0;
}

}  // namespace

int main(int argc, char** argv) {
    QFile file(argc == 4 ? QString::fromLocal8Bit(argv[2]) : QString());
    if (argc != 4 || !file.open(QIODevice::ReadOnly)) {
        return Fail(QStringLiteral("machine_run checked|fast|items FILE CYCLES"));
    }
    const CodeResult read = ReadCode(file.readAll());
    return read.fault ? Fail(read.fault->message)
                      : Run(argv[1], read.code, QByteArray(argv[3]).toLongLong());
}
