// What the operators do to values, by the choices of a profile.
#pragma once

#include "machine/forms.h"
#include "machine/value.h"
#include "machine/watch.h"

class Arithmetic {
public:
    // Both must outlive it.
    Arithmetic(const Profile& profile, Watch& watch) : profile_(profile), watch_(watch) {}

    // An operation with a left and a right operand.
    Value apply(Operation operation, const Value& left, const Value& right);
    Value bitNot(const Value& operand);

    // A value made to fit a variable of that type.
    Value fit(Typ type, const Value& value);
    // A number of the code as an operand.
    Value literal(const Value& value) const;

    // A real that a function of the C library gave for those operands.
    Value realResult(double number, bool areOperandsFinite);

private:
    const Profile& profile_;
    Watch& watch_;

    Value whole(Operation operation, Typ type, qint64 left, qint64 right);
    Value reals(Operation operation, Typ type, double left, double right);
    Value result(Typ type, qint64 number);
    Value result(Typ type, double number, bool areOperandsFinite);
    qint64 add(qint64 left, qint64 right);
    qint64 subtract(qint64 left, qint64 right);
    qint64 multiply(qint64 left, qint64 right);
    qint64 quotient(qint64 left, qint64 right);
    qint64 power(qint64 base, qint64 exponent);
    qint64 overflowed(bool isNegative, quint64 wrapped);
    qint64 divisorOf(qint64 right);
    Value shift(Operation operation, Typ type, const Value& left, qint64 count);
    Value rotate(Typ type, const Value& left, qint64 count);
    int checkedCount(qint64 count, int bits);
    qint64 fitWhole(Typ type, qint64 number);
    qint64 roundedWhole(Typ type, double number);
};
