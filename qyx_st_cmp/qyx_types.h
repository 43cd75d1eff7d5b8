// The names and classes of types, and the one rule that merges two.
#pragma once

#include "qyx_globals.h"

// TYP_NONE, no type yet, is deliberately ordinal and digit: it constrains nothing.
bool IsTypBoolean(Typ t);
bool IsTypOrdinal(Typ t);  // integers
bool IsTypDigit(Typ t);    // integers and reals

// The type's keyword and its two-letter code in target code; empty for no type.
QLatin1String TypToStr(Typ t);
QLatin1String TypToShortStr(Typ t);

// The type of a value that combines a value of type `current` with one of type `next`. With
// `strict` an integer takes no real. Aborts with Incompatible types: "INT" and "BOOL" where the
// two do not combine. No target code is written: the engine knows no conversions.
Typ ConvertTyp(Typ current, Typ next, bool strict = false);

// The abort of ConvertTyp.
[[noreturn]] void AbortIncompatible(Typ current, Typ next);
