// A value of the machine, and how values are made to fit types.
#pragma once

#include "qyx_tables.h"

#include <QString>

#include <limits>

struct Cell;

// A whole number, a real, the index of a string among the literals, or the address of a variable.
struct Value {
    Typ type = TYP_SINT;  // the type it was given; TYP_ARRAY for an address
    union {
        qint64 whole = 0;
        double real;
        Cell* address;
    };

    bool isReal() const { return type == TYP_REAL || type == TYP_LREAL; }
    double asReal() const { return isReal() ? real : static_cast<double>(whole); }
    bool isTrue() const { return isReal() ? real != 0.0 : whole != 0; }
};

inline Value WholeValue(Typ type, qint64 whole) {
    Value value;
    value.type = type;
    value.whole = whole;
    return value;
}
inline Value RealValue(Typ type, double real) {
    Value value;
    value.type = type;
    value.real = real;
    return value;
}
inline Value TruthValue(bool isTrue) {
    return WholeValue(TYP_BOOL, isTrue ? 1 : 0);
}

// The numbers that an integer type, or BOOL, holds.
struct Range {
    qint64 least;
    qint64 greatest;
    int bits;

    bool holds(qint64 number) const { return number >= least && number <= greatest; }
};

// The range of a type from BOOL to UDINT.
inline const Range& RangeOf(Typ type) {
    static constexpr Range ranges[] = {
        {0, 0, 1},
        {0, 1, 1},
        {std::numeric_limits<qint8>::min(), std::numeric_limits<qint8>::max(), 8},
        {0, std::numeric_limits<quint8>::max(), 8},
        {std::numeric_limits<qint16>::min(), std::numeric_limits<qint16>::max(), 16},
        {0, std::numeric_limits<quint16>::max(), 16},
        {std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max(), 32},
        {0, std::numeric_limits<quint32>::max(), 32},
    };
    return ranges[type];
}

// The low bits of a number, as many as the type has, read in that type.
inline qint64 Wrapped(Typ type, qint64 number) {
    const Range& range = RangeOf(type);
    const quint64 mask = (quint64(1) << range.bits) - 1;
    const quint64 low = static_cast<quint64>(number) & mask;
    return low > static_cast<quint64>(range.greatest) ? static_cast<qint64>(low | ~mask)
                                                      : static_cast<qint64>(low);
}

// A value as people and tables write it: TRUE and FALSE, whole numbers, reals with the fewest
// digits that give the same number again.
QString TextOf(const Value& value);
// Reads a value for a variable of that type: numbers in all notations of scripts, reals as "1e-3"
// too, TRUE, FALSE.
// False where the text is none, or one that the type does not hold.
bool ReadValue(const QString& text, Typ type, Value& value);
