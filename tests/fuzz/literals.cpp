#include "literals.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace {

constexpr std::array<std::uint64_t, 24> INTEGERS = {0,
                                                    1,
                                                    2,
                                                    7,
                                                    8,
                                                    10,
                                                    99,
                                                    126,
                                                    127,
                                                    128,
                                                    255,
                                                    256,
                                                    32767,
                                                    32768,
                                                    65535,
                                                    65536,
                                                    2147483647,
                                                    2147483648,
                                                    4294967294,
                                                    4294967295,
                                                    4294967296,
                                                    9223372036854775807,
                                                    9223372036854775808U,
                                                    18446744073709551615U};

constexpr std::array<std::string_view, 20> REALS = {
    "0.0",     "1.0",      "2.5",        "5.",           ".5",     "0.1",           "1.5E-3",
    "1.0e10",  "1.E",      "1.0E+",      "3.4E38",       "3.5E38", "3.4E+38",       "1.0E308",
    "1.0E309", "1.0E-400", "16777217.0", "4294967296.0", "00.00",  "1.5E0000000001"};

constexpr std::array<std::string_view, 7> STRINGS = {"''",  "'a'",    "'; END_IF'", "'(* *)'",
                                                     "'ж'", "'a\tb'", "'open"};

constexpr std::array<unsigned, 3> BASES = {2, 8, 16};

// Lengths about the largest that a number may have.
constexpr std::array<std::size_t, 5> LENGTHS = {31, 32, 33, 254, 255};

std::string InBase(std::uint64_t value, unsigned base) {
    std::string digits;
    do {
        digits.push_back("0123456789ABCDEF"[value % base]);
        value /= base;
    } while (value != 0);
    std::reverse(digits.begin(), digits.end());
    return digits;
}

std::string MakeBased(Random& random) {
    const unsigned base = random.oneOf(BASES);
    return std::to_string(base) + '#' + InBase(random.oneOf(INTEGERS), base);
}

std::string MakeLong(Random& random) {
    const std::string digits(random.oneOf(LENGTHS), random.oneIn(2) ? '0' : '1');
    return random.oneIn(2) ? digits : "2#" + digits;
}

}  // namespace

std::string MakeNumber(Random& random) {
    if (random.oneIn(32)) {
        return MakeLong(random);
    }
    if (random.oneIn(3)) {
        return MakeBased(random);
    }
    if (random.oneIn(3)) {
        return std::string(random.oneOf(REALS));
    }
    return std::to_string(random.oneOf(INTEGERS));
}

std::string MakeString(Random& random) {
    return std::string(random.oneOf(STRINGS));
}
