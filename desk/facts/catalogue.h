// The identifiers of the compiler's messages.
//
// A message is known by the constant of the catalogue that tells its kind; its identifier is the
// constant's name in lower case with hyphens. Both are numbered in the order of the catalogue.
#pragma once

#include <QLatin1String>

// The number of the constant with that text, which is in the catalogue.
int ConstantOf(QLatin1String text);

int ConstantsCount();
QLatin1String IdOf(int constant);    // "incompatible-types"
QLatin1String TextOf(int constant);  // "Incompatible types"
