// Numbers and strings at the edges of what the language takes, and a little beyond.
#pragma once

#include "random.h"

#include <string>

std::string MakeNumber(Random& random);
std::string MakeString(Random& random);
