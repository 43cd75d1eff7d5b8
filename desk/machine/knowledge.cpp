#include "machine/knowledge.h"

#include <algorithm>

namespace {

bool IsWhole(Typ type) {
    return type != TYP_NONE && IsTypOrdinal(type);
}

bool IsNumber(Typ type) {
    return type != TYP_NONE && IsTypDigit(type);
}

bool IsPlain(KnownValue value) {
    return value.known < Knowledge::Address;
}

bool IsUntyped(KnownValue value) {
    return value.known == Knowledge::Number || value.known == Knowledge::Truth;
}

bool IsAnything(KnownValue value) {
    return value.known == Knowledge::Anything;
}

bool IsOfType(KnownValue value, Typ type) {
    return value.known == Knowledge::Typed && value.type == type;
}

constexpr KnownValue TRUTH_VALUE = {Knowledge::Typed, TYP_BOOL};

}  // namespace

KnownValue Merged(KnownValue one, KnownValue other) {
    if (one == other) {
        return one;
    }
    if (IsPlain(one) && IsPlain(other) && one.type == other.type) {
        return ValueOf(one.type);
    }
    const Knowledge worse = std::max({one.known, other.known, Knowledge::Anything});
    const bool isAnything =
        worse == Knowledge::Anything && (IsAnything(one) || IsAnything(other));
    return {isAnything || worse > Knowledge::Anything ? worse : Knowledge::Mixed, TYP_NONE};
}

namespace {

// ---------------------------------------------------------------------------------------------
// Numbers
// ---------------------------------------------------------------------------------------------

// The type of what two numbers give; a BOOL among them counts as a number.
Typ CombinedType(KnownValue left, KnownValue right) {
    if (IsNumber(left.type) && IsNumber(right.type)) {
        return ConvertTyp(left.type, right.type);
    }
    const bool isTruth = left.type == TYP_BOOL && right.type == TYP_BOOL;
    return isTruth ? TYP_REAL : std::max(left.type, right.type);
}

KnownValue Combined(KnownValue left, KnownValue right) {
    if (!IsPlain(left) || !IsPlain(right)) {
        return ANYTHING;
    }
    if (IsUntyped(left) && !IsNumber(right.type)) {
        const bool isReal = left.type == TYP_REAL && right.type == TYP_BOOL;
        return isReal ? KnownValue{Knowledge::RealOrTruth, TYP_REAL} : right;
    }
    const Knowledge known =
        IsUntyped(left) && IsUntyped(right) ? Knowledge::Number : Knowledge::Typed;
    return {known, CombinedType(left, right)};
}

bool IsNumeric(KnownValue value) {
    return IsAnything(value) || (IsPlain(value) && IsNumber(value.type));
}

bool IsNumericOrTruth(KnownValue value) {
    return IsNumeric(value) || IsOfType(value, TYP_BOOL);
}

Fit FitOfArithmetic(KnownValue left, KnownValue right, bool isInReal) {
    if (IsNumeric(left) && IsNumeric(right)) {
        return Fit::Fine;
    }
    const bool isReal = isInReal || left.type == TYP_REAL;
    if (isReal && IsNumericOrTruth(left) && IsNumericOrTruth(right)) {
        return Fit::Fine;
    }
    return IsUntyped(left) && IsPlain(right) ? Fit::Untyped : Fit::Wrong;
}

Fit FitOfWhole(KnownValue value) {
    if (IsAnything(value) || (IsPlain(value) && IsWhole(value.type))) {
        return Fit::Fine;
    }
    return IsUntyped(value) ? Fit::Untyped : Fit::Wrong;
}

// ---------------------------------------------------------------------------------------------
// Truth values
// ---------------------------------------------------------------------------------------------

bool IsTruth(KnownValue value) {
    return IsAnything(value) || IsOfType(value, TYP_BOOL);
}

Fit FitOfTruth(KnownValue value) {
    const Fit other = value.known == Knowledge::RealOrTruth ? Fit::Untyped : Fit::Wrong;
    return IsTruth(value) ? Fit::Fine : other;
}

Fit FitOfComparison(KnownValue left, KnownValue right) {
    const bool isTruth = IsTruth(left) && (IsTruth(right) || right.known == Knowledge::Truth);
    const bool isReal = left.type == TYP_REAL && IsPlain(left) && IsTruth(right);
    if (isTruth || isReal || (IsNumeric(left) && IsNumeric(right))) {
        return Fit::Fine;
    }
    return IsUntyped(left) && IsPlain(right) ? Fit::Untyped : Fit::Wrong;
}

Fit FitIf(bool isFine) {
    return isFine ? Fit::Fine : Fit::Wrong;
}

}  // namespace

OperationOutcome BinaryOutcome(Operation operation, KnownValue left, KnownValue right,
                               bool isInReal) {
    if (operation <= Operation::Divide || operation == Operation::Power) {
        return {FitOfArithmetic(left, right, isInReal), Combined(left, right)};
    }
    if (operation < Operation::Equal) {
        return {std::max(FitOfWhole(left), FitOfWhole(right)), Combined(left, right)};
    }
    return {operation < Operation::And ? FitOfComparison(left, right)
                                       : std::max(FitOfTruth(left), FitOfTruth(right)),
            TRUTH_VALUE};
}

OperationOutcome UnaryOutcome(Operation operation, KnownValue operand) {
    if (operation == Operation::BitNot) {
        return {FitOfWhole(operand), operand};
    }
    return {FitOfTruth(operand),
            operation == Operation::Not ? TRUTH_VALUE : operand};  // the test keeps the value
}

OperationOutcome NumberOutcome(Operation operation, bool isZero, KnownValue right) {
    if (operation == Operation::Equal) {
        return {FitIf(IsNumericOrTruth(right)), TRUTH_VALUE};
    }
    if (!isZero) {
        return {FitOfWhole(right), right};
    }
    const KnownValue result = {right.known == Knowledge::Truth ? Knowledge::Number : right.known,
                               right.type};
    const Fit fit = FitIf(IsNumericOrTruth(right));
    return {IsOfType(right, TYP_STRING) ? Fit::SignedString : fit, result};
}

Fit FitOfStore(Typ target, KnownValue value) {
    if (IsAnything(value)) {
        return Fit::Fine;
    }
    if (target == TYP_BOOL) {
        return FitOfTruth(value);
    }
    const bool isTaken = IsNumber(target)
                             ? IsNumeric(value) || (target == TYP_REAL && IsTruth(value))
                             : target != TYP_ARRAY && IsOfType(value, target);
    return FitIf(isTaken);
}

Fit FitOfArgument(Typ formal, KnownValue value) {
    const bool isTooWide = IsWhole(formal) && IsNumeric(value) && FitOfWhole(value) != Fit::Fine;
    return isTooWide ? FitOfWhole(value) : FitOfStore(formal, value);
}
