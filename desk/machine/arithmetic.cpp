#include "machine/arithmetic.h"

#include "qyx_types.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int WIDE_BITS = 64;
constexpr qint64 LEAST = std::numeric_limits<qint64>::min();
constexpr qint64 GREATEST = std::numeric_limits<qint64>::max();

Value Compared(Operation operation, bool isLess, bool isEqual, bool isGreater) {
    switch (operation) {
        case Operation::Equal:
            return TruthValue(isEqual);
        case Operation::NotEqual:
            return TruthValue(!isEqual);
        case Operation::Less:
            return TruthValue(isLess);
        case Operation::Greater:
            return TruthValue(isGreater);
        case Operation::LessOrEqual:
            return TruthValue(isLess || isEqual);
        default:
            return TruthValue(isGreater || isEqual);
    }
}

template <typename Number>
Value CompareNumbers(Operation operation, Number left, Number right) {
    return Compared(operation, left<right, left == right, left> right);
}

bool IsComparison(Operation operation) {
    return operation >= Operation::Equal && operation <= Operation::GreaterOrEqual;
}

bool IsShift(Operation operation) {
    return operation >= Operation::ShiftLeft && operation <= Operation::RotateRight;
}

bool IsOfWholeNumbers(Operation operation) {
    return operation == Operation::Modulo ||
           (operation >= Operation::BitAnd && operation <= Operation::RotateRight);
}

// The bits that a number has in a type.
quint64 BitsOf(Typ type, qint64 number) {
    return static_cast<quint64>(number) & ((quint64(1) << RangeOf(type).bits) - 1);
}

// A count of bits from 0 to below the width, whatever its sign.
int Remainder(qint64 count, int bits) {
    const qint64 rest = count % bits;
    return static_cast<int>(rest < 0 ? rest + bits : rest);
}

// The rest of a division; 0 where the quotient is 0, and where it might not fit.
qint64 RestOf(qint64 left, qint64 right) {
    return right == 0 || right == -1 ? 0 : left % right;
}

QString Number(qint64 number) {
    return QString::number(number);
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Operations
// ---------------------------------------------------------------------------------------------

Value Arithmetic::apply(Operation operation, const Value& left, const Value& right) {
    const bool isReal = left.isReal() || right.isReal();
    if (left.type >= TYP_STRING || right.type >= TYP_STRING ||
        (isReal && IsOfWholeNumbers(operation))) {
        watch_.stop(Check::UnsoundCode,
                    QStringLiteral("the operands are not of a kind that the operation takes"));
    }
    if (operation == Operation::And) {
        return TruthValue(left.isTrue() && right.isTrue());
    }
    if (operation == Operation::Xor) {
        return TruthValue(left.isTrue() != right.isTrue());
    }
    const Typ type = std::max(left.type, right.type);
    if (IsShift(operation)) {
        return shift(operation, type, left, right.whole);
    }
    return isReal ? reals(operation, type, left.asReal(), right.asReal())
                  : whole(operation, type, left.whole, right.whole);
}

Value Arithmetic::whole(Operation operation, Typ type, qint64 left, qint64 right) {
    if (IsComparison(operation)) {
        return CompareNumbers(operation, left, right);
    }
    switch (operation) {
        case Operation::Add:
            return result(type, add(left, right));
        case Operation::Subtract:
            return result(type, subtract(left, right));
        case Operation::Multiply:
            return result(type, multiply(left, right));
        case Operation::Divide:
            return result(type, quotient(left, divisorOf(right)));
        case Operation::Modulo:
            return result(type, RestOf(left, divisorOf(right)));
        case Operation::Power:
            return result(type, power(left, right));
        case Operation::BitAnd:
            return result(type, left & right);
        case Operation::BitOr:
            return result(type, left | right);
        default:
            return result(type, left ^ right);
    }
}

Value Arithmetic::reals(Operation operation, Typ type, double left, double right) {
    if (IsComparison(operation)) {
        return CompareNumbers(operation, left, right);
    }
    const bool areFinite = std::isfinite(left) && std::isfinite(right);
    switch (operation) {
        case Operation::Add:
            return result(type, left + right, areFinite);
        case Operation::Subtract:
            return result(type, left - right, areFinite);
        case Operation::Multiply:
            return result(type, left * right, areFinite);
        case Operation::Divide:
            if (right == 0.0 && profile_.realByZero == RealByZero::Stop) {
                watch_.stop(Check::DivisionByZero, QStringLiteral("a real is divided by 0"));
            }
            return result(type, left / right, areFinite);
        default:
            return result(type, std::pow(left, right), areFinite);
    }
}

Value Arithmetic::result(Typ type, qint64 number) {
    return WholeValue(type, profile_.width == Width::Typed ? fitWhole(type, number) : number);
}

Value Arithmetic::result(Typ type, double number, bool areOperandsFinite) {
    if (areOperandsFinite && !std::isfinite(number)) {
        watch_.raise(Check::NotFinite, QStringLiteral("the result is not finite"));
    }
    const bool isRounded = profile_.width == Width::Typed && type == TYP_REAL;
    return RealValue(type, isRounded ? static_cast<double>(static_cast<float>(number)) : number);
}

Value Arithmetic::realResult(double number, bool areOperandsFinite) {
    return result(TYP_LREAL, number, areOperandsFinite);
}

Value Arithmetic::bitNot(const Value& operand) {
    if (operand.type < TYP_SINT || operand.type > TYP_UDINT) {
        watch_.stop(Check::UnsoundCode, QStringLiteral("the operand is no whole number"));
    }
    return WholeValue(operand.type, Wrapped(operand.type, ~operand.whole));
}

Value Arithmetic::literal(const Value& value) const {
    const bool isRounded = profile_.width == Width::Typed && value.type == TYP_REAL;
    return isRounded ? RealValue(TYP_REAL, static_cast<double>(static_cast<float>(value.real)))
                     : value;
}

// ---------------------------------------------------------------------------------------------
// Whole numbers of 64 bits
// ---------------------------------------------------------------------------------------------

// What comes of an exact result beyond 64 bits, of which the low ones are given.
qint64 Arithmetic::overflowed(bool isNegative, quint64 wrapped) {
    const QString message = QStringLiteral("a whole number needs more than 64 bits");
    if (profile_.overflow == Overflow::Stop) {
        watch_.stop(Check::StoreOverflow, message);
    }
    watch_.raise(Check::StoreOverflow, message);
    if (profile_.overflow == Overflow::Saturate) {
        return isNegative ? LEAST : GREATEST;
    }
    return static_cast<qint64>(wrapped);
}

qint64 Arithmetic::add(qint64 left, qint64 right) {
    qint64 sum = 0;
    return __builtin_add_overflow(left, right, &sum)
               ? overflowed(left < 0, static_cast<quint64>(left) + static_cast<quint64>(right))
               : sum;
}

qint64 Arithmetic::subtract(qint64 left, qint64 right) {
    qint64 difference = 0;
    return __builtin_sub_overflow(left, right, &difference)
               ? overflowed(left < 0, static_cast<quint64>(left) - static_cast<quint64>(right))
               : difference;
}

qint64 Arithmetic::multiply(qint64 left, qint64 right) {
    qint64 product = 0;
    return __builtin_mul_overflow(left, right, &product)
               ? overflowed((left < 0) != (right < 0),
                            static_cast<quint64>(left) * static_cast<quint64>(right))
               : product;
}

// The divisor to take; 0 if the result is to be 0.
qint64 Arithmetic::divisorOf(qint64 right) {
    if (right != 0) {
        return right;
    }
    const QString message = QStringLiteral("a whole number is divided by 0");
    if (profile_.byZero == ByZero::Stop) {
        watch_.stop(Check::DivisionByZero, message);
    }
    watch_.raise(Check::DivisionByZero, message);
    return profile_.byZero == ByZero::One ? 1 : 0;
}

qint64 Arithmetic::quotient(qint64 left, qint64 right) {
    if (right == -1) {
        return subtract(0, left);
    }
    return right == 0 ? 0 : left / right;
}

// By squaring. Where a product does not fit the whole power does not, so it is raised once.
qint64 Arithmetic::power(qint64 base, qint64 exponent) {
    if (exponent < 0) {
        const bool isOdd = exponent % 2 != 0;
        return base == 1 || base == -1 ? (isOdd ? base : 1) : quotient(1, divisorOf(base));
    }
    quint64 low = 1;
    auto factor = static_cast<quint64>(base);
    bool fits = true;
    qint64 exact = 1;
    qint64 exactFactor = base;
    bool factorFits = true;
    for (qint64 rest = exponent; rest > 0; rest /= 2) {
        if (rest % 2 != 0) {
            low *= factor;
            fits = fits && factorFits && !__builtin_mul_overflow(exact, exactFactor, &exact);
        }
        factor *= factor;
        factorFits =
            factorFits && !__builtin_mul_overflow(exactFactor, exactFactor, &exactFactor);
    }
    return fits ? exact : overflowed(base < 0 && exponent % 2 != 0, low);
}

// ---------------------------------------------------------------------------------------------
// Shifts
// ---------------------------------------------------------------------------------------------

// The count of a shift, as many as there are bits if none is to be left.
int Arithmetic::checkedCount(qint64 count, int bits) {
    if (count >= 0 && count < bits) {
        return static_cast<int>(count);
    }
    if (watch_.isOn(Check::ShiftRange)) {
        watch_.raise(
            Check::ShiftRange,
            QStringLiteral("%1 bits are shifted by %2").arg(Number(bits), Number(count)));
    }
    return profile_.shift == Shift::Modulo ? Remainder(count, bits) : bits;
}

Value Arithmetic::shift(Operation operation, Typ type, const Value& left, qint64 count) {
    if (operation == Operation::RotateLeft) {
        return rotate(type, left, count);
    }
    if (operation == Operation::RotateRight) {
        return rotate(type, left, count == LEAST ? count : -count);
    }
    const int typeBits = RangeOf(left.type).bits;
    const bool isTyped = profile_.width == Width::Typed;
    if (operation == Operation::ShiftRight) {
        const int by = checkedCount(count, typeBits);
        const quint64 shifted = by == typeBits ? 0 : BitsOf(left.type, left.whole) >> by;
        return result(type, Wrapped(left.type, static_cast<qint64>(shifted)));
    }
    const int bits = isTyped ? typeBits : WIDE_BITS;
    const int by = checkedCount(count, bits);
    const quint64 shifted = by == bits ? 0 : static_cast<quint64>(left.whole) << by;
    const auto number = static_cast<qint64>(shifted);
    return result(type, isTyped ? Wrapped(left.type, number) : number);
}

// To the left by any count.
Value Arithmetic::rotate(Typ type, const Value& left, qint64 count) {
    const int bits = RangeOf(left.type).bits;
    const int by = Remainder(count, bits);
    const quint64 pattern = BitsOf(left.type, left.whole);
    const quint64 rotated = by == 0 ? pattern : (pattern << by) | (pattern >> (bits - by));
    return result(type, Wrapped(left.type, static_cast<qint64>(rotated)));
}

// ---------------------------------------------------------------------------------------------
// Stores
// ---------------------------------------------------------------------------------------------

qint64 Arithmetic::fitWhole(Typ type, qint64 number) {
    const Range& range = RangeOf(type);
    if (range.holds(number)) {
        return number;
    }
    if (profile_.overflow == Overflow::Stop || watch_.isOn(Check::StoreOverflow)) {
        const QString message =
            QStringLiteral("%1 does not fit the type %2").arg(Number(number), TypToStr(type));
        if (profile_.overflow == Overflow::Stop) {
            watch_.stop(Check::StoreOverflow, message);
        }
        watch_.raise(Check::StoreOverflow, message);
    }
    if (type == TYP_BOOL) {
        return 1;
    }
    return profile_.overflow == Overflow::Saturate
               ? std::clamp(number, range.least, range.greatest)
               : Wrapped(type, number);
}

// A real as a whole number of that type, which must hold it.
qint64 Arithmetic::roundedWhole(Typ type, double number) {
    const double rounded = profile_.rounding == Rounding::Even   ? std::nearbyint(number)
                           : profile_.rounding == Rounding::Away ? std::round(number)
                                                                 : std::trunc(number);
    if (rounded != number && std::isfinite(number) && watch_.isOn(Check::RealToInt)) {
        watch_.raise(
            Check::RealToInt,
            QStringLiteral("%1 becomes %2").arg(QString::number(number, 'g', 17)).arg(rounded));
    }
    const Range& range = RangeOf(type);
    const bool isBool = type == TYP_BOOL;
    if (isBool && std::isfinite(rounded)) {
        return rounded == 0.0 ? 0 : rounded == 1.0 ? 1 : fitWhole(TYP_BOOL, 2);
    }
    if (!(rounded >= static_cast<double>(range.least) &&
          rounded <= static_cast<double>(range.greatest))) {
        watch_.stop(Check::RealToInt, QStringLiteral("%1 does not fit the type %2")
                                          .arg(QString::number(number, 'g', 17), TypToStr(type)));
    }
    return static_cast<qint64>(rounded);
}

Value Arithmetic::fit(Typ type, const Value& value) {
    if (value.type >= TYP_STRING || type >= TYP_STRING) {
        if (value.type != type) {
            watch_.stop(Check::UnsoundCode, QStringLiteral("the value is of another kind"));
        }
        return value;
    }
    if (type < TYP_REAL) {
        return WholeValue(
            type, value.isReal() ? roundedWhole(type, value.real) : fitWhole(type, value.whole));
    }
    const double number = value.asReal();
    const double rounded =
        type == TYP_REAL ? static_cast<double>(static_cast<float>(number)) : number;
    if (std::isfinite(number) && !std::isfinite(rounded)) {
        watch_.raise(Check::NotFinite, QStringLiteral("the number is beyond the range of REAL"));
    }
    return RealValue(type, rounded);
}
