#include "qyx_types.h"

#include "qyx_messages.h"
#include "qyx_scanner.h"

#include <array>
#include <cassert>

bool IsTypBoolean(Typ t) {
    return t == TYP_BOOL;
}

bool IsTypOrdinal(Typ t) {
    return t == TYP_NONE || (t >= TYP_SINT && t <= TYP_UDINT);
}

bool IsTypDigit(Typ t) {
    return IsTypOrdinal(t) || t == TYP_REAL || t == TYP_LREAL;
}

namespace {

bool IsTypDeclared(Typ t) {
    return t >= TYP_BOOL && t <= TYP_ARRAY;
}

const typ& RowOf(Typ t) {
    return TypsTable[t - TYP_BOOL];
}

}  // namespace

QLatin1String TypToStr(Typ t) {
    return IsTypDeclared(t) ? RowOf(t).name : QLatin1String();
}

QLatin1String TypToShortStr(Typ t) {
    return IsTypDeclared(t) ? RowOf(t).shortName : QLatin1String();
}

// ---------------------------------------------------------------------------------------------
// Conversion
// ---------------------------------------------------------------------------------------------

namespace {

constexpr unsigned Bit(Typ t) {
    return 1U << static_cast<unsigned>(t);
}

constexpr unsigned ALL = (1U << (static_cast<unsigned>(TYP_ARRAY) + 1)) - 1;
constexpr unsigned REALS = Bit(TYP_REAL) | Bit(TYP_LREAL);
constexpr unsigned TEXTS = Bit(TYP_STRING) | Bit(TYP_ARRAY);
constexpr unsigned NOT_NUMBERS = TEXTS | Bit(TYP_BOOL);

// How values of one type combine: the result is the larger of the other type and the own one.
struct Conversion {
    Typ own;
    unsigned rejected;          // the types that never combine with it
    unsigned rejectedIfStrict;  // those that do not if the caller is strict
};

constexpr Conversion BOOL_CONVERSION = {TYP_BOOL, ALL & ~Bit(TYP_BOOL), 0};
constexpr Conversion SINT_CONVERSION = {TYP_SINT, NOT_NUMBERS, REALS};
constexpr Conversion INT_CONVERSION = {TYP_INT, NOT_NUMBERS, REALS};
constexpr Conversion UINT_CONVERSION = {TYP_UINT, NOT_NUMBERS, REALS};
constexpr Conversion DINT_CONVERSION = {TYP_DINT, NOT_NUMBERS, REALS};
constexpr Conversion UDINT_CONVERSION = {TYP_UDINT, NOT_NUMBERS, REALS};
constexpr Conversion REAL_CONVERSION = {TYP_REAL, TEXTS, 0};
constexpr Conversion LREAL_CONVERSION = {TYP_LREAL, NOT_NUMBERS, 0};
constexpr Conversion STRING_CONVERSION = {TYP_STRING, ALL & ~Bit(TYP_STRING), 0};
constexpr Conversion ARRAY_CONVERSION = {TYP_ARRAY, ALL, 0};

// The result of a pair of types that do not combine.
constexpr Typ REJECTED = static_cast<Typ>(TYP_ARRAY + 1);

constexpr Typ Convert(const Conversion& conversion, Typ next, bool strict) {
    const unsigned rejected = conversion.rejected | (strict ? conversion.rejectedIfStrict : 0U);
    if ((rejected & Bit(next)) != 0) {
        return REJECTED;
    }
    return conversion.own > next ? conversion.own : next;
}

// QUIRK(bool-alone): a BOOL combines with BOOL alone, not even with a value of no type yet.
constexpr Typ ConvertBoolTo(Typ next) {
    return Convert(BOOL_CONVERSION, next, false);
}

constexpr Typ ConvertSIntTo(Typ next, bool strict) {
    return Convert(SINT_CONVERSION, next, strict);
}

// QUIRK(usint-as-sint): USINT combines exactly as SINT does: with a value of no type yet it
// yields SINT. Programs in the field rely on the types that follow.
constexpr Typ ConvertUSIntTo(Typ next, bool strict) {
    return ConvertSIntTo(next, strict);
}

constexpr Typ ConvertIntTo(Typ next, bool strict) {
    return Convert(INT_CONVERSION, next, strict);
}

constexpr Typ ConvertUIntTo(Typ next, bool strict) {
    return Convert(UINT_CONVERSION, next, strict);
}

constexpr Typ ConvertDIntTo(Typ next, bool strict) {
    return Convert(DINT_CONVERSION, next, strict);
}

constexpr Typ ConvertUDIntTo(Typ next, bool strict) {
    return Convert(UDINT_CONVERSION, next, strict);
}

// QUIRK(real-takes-bool): a REAL takes a BOOL, while a BOOL takes no REAL and an LREAL no BOOL.
// Programs in the field rely on it.
constexpr Typ ConvertRealTo(Typ next) {
    return Convert(REAL_CONVERSION, next, false);
}

constexpr Typ ConvertLRealTo(Typ next) {
    return Convert(LREAL_CONVERSION, next, false);
}

constexpr Typ ConvertStringTo(Typ next) {
    return Convert(STRING_CONVERSION, next, false);
}

constexpr Typ ConvertArrayTo(Typ next) {
    return Convert(ARRAY_CONVERSION, next, false);
}

constexpr Typ ConvertTo(Typ current, Typ next, bool strict) {
    switch (current) {
        case TYP_BOOL:
            return ConvertBoolTo(next);
        case TYP_SINT:
            return ConvertSIntTo(next, strict);
        case TYP_USINT:
            return ConvertUSIntTo(next, strict);
        case TYP_INT:
            return ConvertIntTo(next, strict);
        case TYP_UINT:
            return ConvertUIntTo(next, strict);
        case TYP_DINT:
            return ConvertDIntTo(next, strict);
        case TYP_UDINT:
            return ConvertUDIntTo(next, strict);
        case TYP_REAL:
            return ConvertRealTo(next);
        case TYP_LREAL:
            return ConvertLRealTo(next);
        case TYP_STRING:
            return ConvertStringTo(next);
        case TYP_ARRAY:
            return ConvertArrayTo(next);
        default:
            return next;
    }
}

// All results, so that a conversion is a look into a table: by strictness, current and next type.
constexpr std::size_t TYP_CODES_COUNT = TYP_ARRAY + 1;
using ConversionTable =
    std::array<std::array<std::array<Typ, TYP_CODES_COUNT>, TYP_CODES_COUNT>, 2>;

constexpr ConversionTable MakeConversionTable() {
    ConversionTable table = {};
    for (std::size_t current = 0; current < TYP_CODES_COUNT; ++current) {
        for (std::size_t next = 0; next < TYP_CODES_COUNT; ++next) {
            const auto from = static_cast<Typ>(current);
            const auto to = static_cast<Typ>(next);
            table[0][current][next] = ConvertTo(from, to, false);
            table[1][current][next] = ConvertTo(from, to, true);
        }
    }
    return table;
}

constexpr ConversionTable CONVERSIONS = MakeConversionTable();

}  // namespace

// QUIRK(usint-named-sint): a USINT is named "SINT" here, as it combines like one. Messages are
// fixed.
void AbortIncompatible(Typ current, Typ next) {
    const Typ named = current == TYP_USINT ? TYP_SINT : current;
    Abort(StringsToString(TXT_INCOMPATIBLE_TYPES, ": ", Quoted(TypToStr(named)), " ", TXT_AND,
                          " ", Quoted(TypToStr(next))),
          false);
}

Typ ConvertTyp(Typ current, Typ next, bool strict) {
    assert(current < TYP_CODES_COUNT && next < TYP_CODES_COUNT);
    const Typ result = CONVERSIONS[strict ? 1 : 0][current][next];
    if (result == REJECTED) {
        AbortIncompatible(current, next);
    }
    return result;
}
