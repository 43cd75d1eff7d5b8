// The same code executed both ways, an item at a time and by register code: what differs.
#pragma once

#include "machine/machine.h"

#include <QString>

#include <cmath>
#include <optional>

inline QString TextOfStop(const std::optional<RunStop>& stop) {
    return stop ? QStringLiteral("%1 at %2: %3")
                      .arg(NameOf(stop->check))
                      .arg(stop->item)
                      .arg(stop->message)
                : QStringLiteral("none");
}

inline QString TextOfNotes(const Notes& notes) {
    QString text;
    for (const auto& [place, count] : notes) {
        text += QStringLiteral("%1 at %2: %3; ")
                    .arg(NameOf(place.first))
                    .arg(place.second)
                    .arg(count);
    }
    return text;
}

inline bool AreSame(const Value& one, const Value& other) {
    if (one.type != other.type || !one.isReal()) {
        return one.type == other.type && one.whole == other.whole;
    }
    return std::isnan(one.real) ? std::isnan(other.real) : one.whole == other.whole;
}

// The first difference in what is seen of the two machines, empty if there is none.
inline QString DifferenceOf(const Code& code, const Machine& one, const Machine& other) {
    const std::vector<Declaration>& variables = code.program().declarations;
    for (int index = 0; index < static_cast<int>(variables.size()) && one.cycles() > 0; ++index) {
        if (!AreSame(one.value(index), other.value(index))) {
            return QStringLiteral("%1 is %2 and %3")
                .arg(variables[static_cast<std::size_t>(index)].name, TextOf(one.value(index)),
                     TextOf(other.value(index)));
        }
    }
    const auto textOf = [](const Machine& machine) {
        return QStringLiteral("stop %1, notes %2, cycles %3, instructions %4, tick %5, set %6")
            .arg(TextOfStop(machine.stop()), TextOfNotes(machine.notes()))
            .arg(machine.cycles())
            .arg(machine.instructions())
            .arg(machine.tick())
            .arg(machine.tickSetting() ? qint64(*machine.tickSetting()) : -1);
    };
    return textOf(one) == textOf(other) ? QString()
                                        : textOf(one) + QStringLiteral("\n") + textOf(other);
}
