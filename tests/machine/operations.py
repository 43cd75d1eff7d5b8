"""Values and what is done with them, as docs/manual/machine.md says.

A value is a pair: its type, as a place in TYPES, and an int, a float or, of a string, a str. What
a page of the manual leaves open raises Undefined.
"""

import ctypes
import math
import struct

from script import TYPES

BOOL, SINT, USINT, INT, UINT, DINT, UDINT, REAL, LREAL, STRING = range(len(TYPES))

BITS = {SINT: 8, USINT: 8, INT: 16, UINT: 16, DINT: 32, UDINT: 32}
RANGES = {
    SINT: (-(2**7), 2**7 - 1),
    USINT: (0, 2**8 - 1),
    INT: (-(2**15), 2**15 - 1),
    UINT: (0, 2**16 - 1),
    DINT: (-(2**31), 2**31 - 1),
    UDINT: (0, 2**32 - 1),
}
WIDEST = (-(2**63), 2**63 - 1)
ZERO = (SINT, 0)

CHOICES = {
    "overflow": ("wrap", "saturate", "stop"),
    "width": ("wide", "typed"),
    "divide-by-zero": ("stop", "zero", "one"),
    "real-by-zero": ("ieee", "stop"),
    "real-to-int": ("even", "away", "truncate"),
    "shift": ("zero", "modulo"),
    "call-result": ("by-use", "accumulator", "both"),
    "return-stack": ("restore", "keep"),
    "scan-stack": ("clear", "keep"),
    "locals": ("initial", "retained"),
    "program-variables": ("retained", "initial"),
    "tick-write": ("setting", "counter"),
    "scan-limit": ("10000000",),
}
STACK_LEFT_IN_PROGRAM = "stack-left in the program"
STOPPING_CHECKS = ("division-by-zero", "stack-left", "stack-empty", "recursion", "scan-limit")


class Stopped(Exception):
    """The run ends; the text names the check, or what no check can turn off."""


class Undefined(Exception):
    """The page does not say what happens."""


def make_choices(changed):
    """All choices; the first of each in CHOICES is the default."""
    for key, value in changed.items():
        is_number = key == "scan-limit" and value.isdecimal()
        if value not in CHOICES.get(key, ()) and not is_number:
            raise ValueError(f"{key} = {value}")
    return {**{key: values[0] for key, values in CHOICES.items()}, **changed}


def make_checks(changed):
    """The actions of the checks that end a run, all of which do so unless they are changed;
    stack-left does so in functions and function blocks, in the program only if it is changed."""
    in_program = {STACK_LEFT_IN_PROGRAM: changed.get("stack-left", "note")}
    return {**{name: "stop" for name in STOPPING_CHECKS}, **in_program, **changed}


# ---------------------------------------------------------------------------------------------
# The C library, whose results for odd operands Python replaces by exceptions
# ---------------------------------------------------------------------------------------------

C_LIBRARY = ctypes.CDLL("libm.so.6")


def of_c_library(name, operands):
    function = getattr(C_LIBRARY, name)
    function.argtypes = [ctypes.c_double] * operands
    function.restype = ctypes.c_double
    return function


C_NAMES = {"LN": "log", **{name: name.lower() for name in (
    "COS", "SIN", "TAN", "ACOS", "ASIN", "ATAN", "EXP", "LOG10", "SQRT", "FABS", "CEIL", "FLOOR",
    "ROUND")}}  # fmt: skip
MATHEMATICS = {name: of_c_library(c_name, 1) for name, c_name in C_NAMES.items()}
C_POWER = of_c_library("pow", 2)

# ---------------------------------------------------------------------------------------------
# Numbers
# ---------------------------------------------------------------------------------------------


def low_bits(number, bits, is_signed):
    """The number that the low bits of another are."""
    kept = number & ((1 << bits) - 1)
    return kept - (1 << bits) if is_signed and kept >> (bits - 1) else kept


def is_signed(rank):
    return RANGES[rank][0] < 0


def to_single(real):
    """The nearest real of 32 bits."""
    try:
        return struct.unpack("f", struct.pack("f", real))[0]
    except OverflowError:
        return math.copysign(math.inf, real)


def whole_to_single(number):
    """Rounded once, also where the number has more bits than a real of 64."""
    surplus = max(abs(number).bit_length() - 24, 0)
    kept, rest = divmod(abs(number), 1 << surplus)
    half = (1 << surplus) >> 1
    is_up = surplus > 0 and (rest > half or (rest == half and kept % 2 == 1))
    nearest = float((kept + is_up) << surplus)
    return -nearest if number < 0 else nearest


def rounded(real, choice):
    if choice == "even":
        return round(real)
    return int(MATHEMATICS["ROUND"](real) if choice == "away" else real)


def divided(left, right):
    """A quotient of reals, with infinities as IEEE 754 has them."""
    if right != 0:
        return left / right
    if left == 0 or math.isnan(left):
        return math.nan
    return math.copysign(math.inf, left) * math.copysign(1.0, right)


def whole_of(text):
    base, hash_sign, digits = text.partition("#")
    return int(digits, int(base)) if hash_sign else int(text)


def number_of(text):
    """The int or the float that a number in a script is, perhaps with a sign."""
    if text[0] in "+-":
        number = number_of(text[1:])
        return -number if text[0] == "-" else number
    return float(text) if "." in text else whole_of(text)


def literal(text, width):
    """The value of a number in the code."""
    number = number_of(text)
    if isinstance(number, float):
        rank = REAL if number <= 3.4e38 else LREAL
        return rank, to_single(number) if width == "typed" and rank == REAL else number
    for rank, (low, high) in RANGES.items():
        if low <= number <= high:
            return rank, number
    return LREAL, float(number)


def initial(text, fit, rank):
    """What a variable begins with."""
    if text is None:
        return zero_of(rank)
    if rank == BOOL:
        return BOOL, int(text.upper() == "TRUE")
    number = number_of(text)
    return fit((LREAL if isinstance(number, float) else DINT, number), rank)


def zero_of(rank):
    return rank, 0.0 if rank in (REAL, LREAL) else 0


def truth(value):
    return value[1] != 0


# ---------------------------------------------------------------------------------------------
# Operations
# ---------------------------------------------------------------------------------------------

EQUAL_TEST = {
    "=": lambda left, right: left == right,
    "<>": lambda left, right: left != right,
    "<": lambda left, right: left < right,
    ">": lambda left, right: left > right,
    "<=": lambda left, right: left <= right,
    ">=": lambda left, right: left >= right,
}


def same_kind(left, right):
    """The numbers of two values, both as reals if one of them is."""
    if isinstance(left[1], float) or isinstance(right[1], float):
        return float(left[1]), float(right[1])
    return left[1], right[1]


def comparison(operator):
    test = EQUAL_TEST[operator]

    def compare(left, right):
        one, other = left[1], right[1]
        if type(one) is not type(other):
            one, other = same_kind(left, right)
        return (BOOL, 1) if test(one, other) else (BOOL, 0)

    return compare


def both(operator):
    if operator == "AND":
        return lambda left, right: (BOOL, int(truth(left) and truth(right)))
    return lambda left, right: (BOOL, int(truth(left) != truth(right)))


def wholes(left, right):
    """The numbers of an operation that is for whole numbers alone."""
    if isinstance(left[1], float) or isinstance(right[1], float):
        raise Undefined("a real where a whole number is due")
    return left[1], right[1]


class Operations:
    """What is done with values under the choices of an engine."""

    def __init__(self, choices, checks):
        self._choices = choices
        self._checks = checks
        self._overflow = choices["overflow"]
        self._is_typed = choices["width"] == "typed"
        self._binary = {
            "+": self._arithmetic(lambda left, right: left + right),
            "-": self._arithmetic(lambda left, right: left - right),
            "*": self._arithmetic(lambda left, right: left * right),
            "/": self._divide,
            "MOD": self._modulo,
            "**": self._power,
            "BIT AND": self._bitwise(lambda left, right: left & right),
            "BIT OR": self._bitwise(lambda left, right: left | right),
            "BIT XOR": self._bitwise(lambda left, right: left ^ right),
            "SHL": self._shift_left,
            "SHR": self._shift_right,
            "ROL": self._rotate_left,
            "ROR": self._rotate_right,
            **{operator: comparison(operator) for operator in EQUAL_TEST},
        }

    def binary(self, operator):
        """The function of an operator; it takes two values."""
        return self._binary[operator]

    def negative(self, value):
        return self._binary["-"](ZERO, value)

    def complement(self, value):
        rank, number = value
        if rank not in BITS:
            raise Undefined("NOT of no integer")
        return rank, low_bits(~number, BITS[rank], is_signed(rank))

    # --- what fits ---

    def fit(self, value, rank):
        """What is stored in a variable of a type."""
        own_rank, number = value
        if isinstance(number, float):
            return rank, self._fit_real(number, rank)
        if rank in RANGES:
            low, high = RANGES[rank]
            if low <= number <= high:
                return value if own_rank == rank else (rank, number)
        return rank, self._fit_whole(number, rank)

    def _fit_real(self, real, rank):
        if rank == REAL:
            return to_single(real)
        if rank == LREAL:
            return real
        if not math.isfinite(real):
            raise Stopped("no integer type holds the real")
        number = rounded(real, self._choices["real-to-int"])
        low, high = RANGES.get(rank, WIDEST)
        if not low <= number <= high:
            raise Stopped("the real does not fit")
        return self._fit_whole(number, rank)

    def _fit_whole(self, number, rank):
        if rank == REAL:
            return whole_to_single(number)
        if rank == LREAL:
            return float(number)
        if rank == BOOL:
            return self._fit_bool(number)
        if rank == STRING:
            return number
        return self._within(number, RANGES[rank])

    def _fit_bool(self, number):
        if number not in (0, 1) and self._overflow == "stop":
            raise Stopped("overflow")
        return int(number != 0)

    def _within(self, number, limits):
        low, high = limits
        if low <= number <= high:
            return number
        if self._overflow == "stop":
            raise Stopped("overflow")
        if self._overflow == "saturate":
            return low if number < low else high
        return low_bits(number, (high - low).bit_length(), low < 0)

    def _whole_result(self, rank, number):
        number = self._within(number, WIDEST)
        if self._is_typed:
            number = self._fit_whole(number, rank)
        return rank, number

    def _real_result(self, rank, real):
        return rank, to_single(real) if self._is_typed and rank == REAL else real

    # --- arithmetic ---

    def _arithmetic(self, function):
        def calculate(left, right):
            rank = max(left[0], right[0])
            one, other = same_kind(left, right)
            if rank >= REAL:
                return self._real_result(rank, function(one, other))
            return self._whole_result(rank, function(one, other))

        return calculate

    def _bitwise(self, function):
        def calculate(left, right):
            return self._whole_result(max(left[0], right[0]), function(*wholes(left, right)))

        return calculate

    def _divide(self, left, right):
        rank = max(left[0], right[0])
        one, other = same_kind(left, right)
        if rank >= REAL:
            return self._real_result(rank, self._divide_reals(one, other))
        return self._whole_result(rank, self._divide_wholes(one, other))

    def _divide_reals(self, left, right):
        if right == 0 and self._choices["real-by-zero"] == "stop":
            raise Stopped("division-by-zero")
        return divided(left, right)

    def _divide_wholes(self, left, right):
        """The fraction is dropped."""
        if right == 0:
            return self._by_zero(left)
        quotient = abs(left) // abs(right)
        return quotient if (left < 0) == (right < 0) else -quotient

    def _by_zero(self, result_for_one):
        choice = self._choices["divide-by-zero"]
        if choice == "stop" or self._checks["division-by-zero"] == "stop":
            raise Stopped("division-by-zero")
        return 0 if choice == "zero" else result_for_one

    def _modulo(self, left, right):
        one, other = wholes(left, right)
        rest = abs(one) % abs(other) if other else self._by_zero(0)
        return self._whole_result(max(left[0], right[0]), -rest if one < 0 else rest)

    # --- powers ---

    def _power(self, left, right):
        rank = max(left[0], right[0])
        one, other = same_kind(left, right)
        if rank >= REAL:
            return self._real_result(rank, C_POWER(one, other))
        if other < 0:
            return self._whole_result(rank, self._negative_power(one, other))
        return self._whole_result(rank, self._whole_power(one, other))

    def _negative_power(self, base, exponent):
        if base == 0:
            return self._by_zero(1)
        if abs(base) > 1:
            return 0
        return base if exponent % 2 else 1

    def _whole_power(self, base, exponent):
        """Exact as far as it matters: a product beyond all types keeps its sign and low bits."""
        if abs(base) < 2 or exponent < 64:
            return base ** (exponent if abs(base) > 1 else min(exponent, 2 - exponent % 2))
        kept = pow(base, exponent, 2**64)
        is_negative = base < 0 and exponent % 2 == 1
        return kept - 2**128 if is_negative else kept + 2**128

    # --- shifts ---

    def _shift(self, left, right, bits, move):
        """Moves by a count that the operand has, else as the choice says."""
        number, count = wholes(left, right)
        if not 0 <= count < bits:
            if self._choices["shift"] == "zero":
                return 0
            count %= bits
        return move(number, count)

    def _shift_left(self, left, right):
        bits = BITS[left[0]] if self._is_typed else 64
        moved = self._shift(left, right, bits, lambda number, count: number << count)
        kept = low_bits(moved, bits, bits == 64 or is_signed(left[0]))
        return self._whole_result(max(left[0], right[0]), kept)

    def _shift_right(self, left, right):
        bits = self._bits_of(left)
        own = low_bits(left[1], bits, False)
        moved = self._shift((left[0], own), right, bits, lambda number, count: number >> count)
        kept = low_bits(moved, bits, is_signed(left[0]))
        return self._whole_result(max(left[0], right[0]), kept)

    def _rotate_left(self, left, right):
        number, count = wholes(left, right)
        return self._rotated(left, right, number, count)

    def _rotate_right(self, left, right):
        number, count = wholes(left, right)
        return self._rotated(left, right, number, -count)

    def _rotated(self, left, right, number, count):
        bits = self._bits_of(left)
        own = low_bits(number, bits, False)
        moved = own << count % bits
        kept = low_bits(moved | moved >> bits, bits, is_signed(left[0]))
        return self._whole_result(max(left[0], right[0]), kept)

    def _bits_of(self, value):
        if value[0] not in BITS:
            raise Undefined("a shift of no integer")
        return BITS[value[0]]
