#include "qyx_types.h"

#include "qyx_messages.h"
#include "qyx_observer.h"

#include <array>
#include <cassert>
#include <iterator>

namespace {

bool IsTypDeclared(Typ t) {
    return t != TYP_NONE && t < TYP_CODES_COUNT;
}

const typ& RowOf(Typ t) {
    return TypsTable[t - 1];
}

bool HasClass(Typ t, TypClass typClass) {
    return IsTypDeclared(t) && RowOf(t).typClass == typClass;
}

}  // namespace

bool IsTypBoolean(Typ t) {
    return HasClass(t, TypClass::Boolean);
}

bool IsTypOrdinal(Typ t) {
    return t == TYP_NONE || HasClass(t, TypClass::Ordinal);
}

bool IsTypDigit(Typ t) {
    return IsTypOrdinal(t) || HasClass(t, TypClass::Real);
}

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

// The result of a pair of types that do not combine.
constexpr Typ REJECTED = static_cast<Typ>(TYP_CODES_COUNT);

constexpr unsigned Bit(Typ t) {
    return 1U << static_cast<unsigned>(t);
}

constexpr unsigned NONE = Bit(TYP_NONE);
constexpr unsigned BOOLEAN = Bit(TYP_BOOL);
constexpr unsigned INTEGERS = Bit(TYP_SINT) | Bit(TYP_USINT) | Bit(TYP_INT) | Bit(TYP_UINT) |
                              Bit(TYP_DINT) | Bit(TYP_UDINT);
constexpr unsigned REALS = Bit(TYP_REAL) | Bit(TYP_LREAL);

// How values of one type combine with those of others; what is not accepted is rejected.
struct Conversion {
    Typ current;
    Typ least;                     // the result is the larger of this and the other type
    unsigned accepted;             // the types that combine with it
    unsigned acceptedUnlessStrict  // those that do too unless the caller is strict
        = 0;

    constexpr Typ operator()(Typ next, bool strict) const {
        const unsigned all = strict ? accepted : accepted | acceptedUnlessStrict;
        if ((all & Bit(next)) == 0) {
            return REJECTED;
        }
        return least > next ? least : next;
    }
};

// QUIRK(bool-alone): a BOOL combines with BOOL alone, not even with a value of no type yet.
constexpr Conversion ConvertBoolTo = {TYP_BOOL, TYP_BOOL, BOOLEAN};
constexpr Conversion ConvertSIntTo = {TYP_SINT, TYP_SINT, NONE | INTEGERS, REALS};
// QUIRK(usint-as-sint): USINT combines exactly as SINT does: with a value of no type yet it
// yields SINT. Programs in the field rely on the types that follow.
constexpr Conversion ConvertUSIntTo = {TYP_USINT, TYP_SINT, NONE | INTEGERS, REALS};
constexpr Conversion ConvertIntTo = {TYP_INT, TYP_INT, NONE | INTEGERS, REALS};
constexpr Conversion ConvertUIntTo = {TYP_UINT, TYP_UINT, NONE | INTEGERS, REALS};
constexpr Conversion ConvertDIntTo = {TYP_DINT, TYP_DINT, NONE | INTEGERS, REALS};
constexpr Conversion ConvertUDIntTo = {TYP_UDINT, TYP_UDINT, NONE | INTEGERS, REALS};
// QUIRK(real-takes-bool): a REAL takes a BOOL, while a BOOL takes no REAL and an LREAL no BOOL.
// Programs in the field rely on it.
constexpr Conversion ConvertRealTo = {TYP_REAL, TYP_REAL, NONE | BOOLEAN | INTEGERS | REALS};
constexpr Conversion ConvertLRealTo = {TYP_LREAL, TYP_LREAL, NONE | INTEGERS | REALS};
constexpr Conversion ConvertStringTo = {TYP_STRING, TYP_STRING, Bit(TYP_STRING)};
constexpr Conversion ConvertArrayTo = {TYP_ARRAY, TYP_ARRAY, 0};

// In the order of the table of types, one for each.
constexpr Conversion CONVERSION_ROWS[] = {
    ConvertBoolTo,  ConvertSIntTo, ConvertUSIntTo, ConvertIntTo,    ConvertUIntTo,  ConvertDIntTo,
    ConvertUDIntTo, ConvertRealTo, ConvertLRealTo, ConvertStringTo, ConvertArrayTo,
};

constexpr bool IsOneForEachType() {
    for (std::size_t row = 0; row < std::size(CONVERSION_ROWS); ++row) {
        if (CONVERSION_ROWS[row].current != TypsTable[row].code) {
            return false;
        }
    }
    return std::size(CONVERSION_ROWS) == std::size(TypsTable);
}
static_assert(IsOneForEachType(), "every type has its conversion");

// All results, so that a conversion is a look into a table: by strictness, current and next type.
// A value of no type yet takes the other type, whatever it is.
using ConversionTable =
    std::array<std::array<std::array<Typ, TYP_CODES_COUNT>, TYP_CODES_COUNT>, 2>;

constexpr ConversionTable MakeConversionTable() {
    ConversionTable table = {};
    for (std::size_t code = 0; code < TYP_CODES_COUNT; ++code) {
        const auto next = static_cast<Typ>(code);
        table[0][TYP_NONE][next] = table[1][TYP_NONE][next] = next;
        for (const Conversion& convert : CONVERSION_ROWS) {
            table[0][convert.current][next] = convert(next, false);
            table[1][convert.current][next] = convert(next, true);
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
    Tell(&Observer::typesRefused, current, next);
    Abort(TXT_INCOMPATIBLE_TYPES,
          StringsToString(TXT_INCOMPATIBLE_TYPES, ": ", Quoted(TypToStr(named)), " ", TXT_AND,
                          " ", Quoted(TypToStr(next))));
}

Typ ConvertTyp(Typ current, Typ next, bool strict) {
    assert(current < TYP_CODES_COUNT && next < TYP_CODES_COUNT);
    const Typ result = CONVERSIONS[strict ? 1 : 0][current][next];
    if (result == REJECTED) {
        AbortIncompatible(current, next);
    }
    return result;
}
