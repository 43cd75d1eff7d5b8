"""Sources that are made to take long take no longer than others of their size.

Names are found by hashes. Who knows how these are computed can choose names that collide; those
below do so for the two functions below.
"""

import itertools
import random
import unittest
from string import ascii_letters, ascii_lowercase, digits

from limits import run_limited
from test_size import END, SizeTestCase

# Of names; the capitals are left out of the Cyrillic letters, as small ones do.
NAME_CHARACTERS = digits + ascii_letters + "".join(map(chr, range(ord("а"), ord("я") + 1)))

FEW = 6_000
MANY = 30_000
RATIO = 3  # that a compile may take longer over crafted names
LEAST_SECONDS = 0.02  # what a process takes that does nothing
REPEATS = 3

SEED = 0xCBF29CE484222325
FACTOR = 0x9E3779B97F4A7C15
MASK = 2**64 - 1


def mix(state, value):
    state = ((state ^ value) * FACTOR) & MASK
    return state ^ (state >> 32)


def hash_one_by_one(text, state=SEED):
    for c in text:
        state = mix(state, ord(c))
    return state


def hash_by_fours(text, state=SEED):
    """Four characters at a time, then the rest one by one."""
    rest = len(text) % 4
    for i in range(0, len(text) - rest, 4):
        state = mix(state, int.from_bytes(text[i : i + 4].encode("utf-16-le"), "little"))
    return hash_one_by_one(text[len(text) - rest :], state)


# ---------------------------------------------------------------------------------------------
# Names that collide
# ---------------------------------------------------------------------------------------------


# Two characters of names for each number that two of them differ by.
PAIRS = {ord(a) ^ ord(b): (a, b) for a, b in itertools.product(NAME_CHARACTERS, repeat=2)}


def two_ways(state, chance):
    """Two texts of eight characters that lead from that state to one and the same.

    Those that differ in their fourth character alone lead to states that differ in two of four
    places; four more characters that differ in these places make up for it."""
    while True:
        stem = "".join(chance.choices(ascii_lowercase, k=3))
        for fourths in itertools.combinations(NAME_CHARACTERS, 2):
            one, other = (hash_by_fours(stem + c, state) for c in fourths)
            places = [(one ^ other) >> shift & 0xFFFF for shift in (0, 16, 32, 48)]
            if all(place in PAIRS for place in places):
                ends = zip(*(PAIRS[place] for place in places))
                return [stem + c + "".join(end) for c, end in zip(fourths, ends)]


def names_of_one_hash(count, beginning):
    """The beginning, then all ways through blocks that have two ways each."""
    chance = random.Random(1)
    state = hash_by_fours(beginning)
    blocks = []
    while 2 ** len(blocks) < count:
        blocks.append(two_ways(state, chance))
        state = hash_by_fours(blocks[-1][0], state)
    ways = itertools.islice(itertools.product(*blocks), count)
    return [beginning + "".join(way) for way in ways]


def texts_of_near_slots(count, hash_of, beginning, alphabet):
    """Texts whose hashes end in one of a few numbers, so that they crowd in one place of a table
    of twice as many slots, whatever its size is before. Their last character is hashed alone."""
    chance = random.Random(1)
    slots = 2 ** (2 * count - 1).bit_length()
    ending = slots - slots // 32
    found = []
    while len(found) < count:
        stem = beginning + "".join(chance.choices(alphabet, k=8))
        state = hash_of(stem)
        found += [stem + c for c in alphabet if not mix(state, ord(c)) & ending]
    return found[:count]


def random_texts(like, alphabet):
    """Texts of the same number and lengths, with the same first four characters."""
    chance = random.Random(2)
    return [text[:4] + "".join(chance.choices(alphabet, k=len(text) - 4)) for text in like]


# ---------------------------------------------------------------------------------------------
# Sources
# ---------------------------------------------------------------------------------------------


def declarations(names):
    yield b"PROGRAM main VAR\n"
    yield from (b"%s:INT;\n" % name.encode() for name in names)
    yield b"END_VAR" + END


def jumps(names):
    yield b"PROGRAM main VAR x:INT; END_VAR\n"
    yield from (b"GOTO %s;%s:\n" % (name.encode(), name.encode()) for name in names)
    yield END


def functions(names):
    yield from (b"FUNCTION %s:INT END_FUNCTION\n" % name.encode() for name in names)
    yield b"PROGRAM main VAR x:INT; END_VAR" + END


def assignments(numbers):
    yield b"PROGRAM main VAR x:LREAL; END_VAR\n"
    yield from (b"x:=%s;\n" % number.encode() for number in numbers)
    yield END


class TimeTestCase(SizeTestCase):
    def seconds(self, chunks):
        """Of the processor; the least of several runs."""
        self.write_source(chunks)
        runs = [run_limited(self.folder, "in.st", "out") for _ in range(REPEATS)]
        self.assertEqual([run.status for run in runs], [0] * REPEATS)
        return min(run.seconds for run in runs)

    def assert_no_longer(self, crafted, ordinary):
        limit = RATIO * max(self.seconds(ordinary), LEAST_SECONDS)
        taken = self.seconds(crafted)
        print(f"{self.id()}: {taken:.2f} s, at most {limit:.2f} s")
        self.assertLessEqual(taken, limit)


class CraftedTexts(TimeTestCase):
    def check(self, crafted, alphabet, *sources):
        ordinary = random_texts(crafted, alphabet)
        for source in sources:
            with self.subTest(source.__name__):
                self.assert_no_longer(source(crafted), source(ordinary))

    def test_names_of_one_hash(self):
        crafted = names_of_one_hash(FEW, "name")
        self.assertEqual(len({hash_by_fours(name) for name in crafted[:1000]}), 1)
        self.check(crafted, NAME_CHARACTERS, declarations)

    def test_names_of_near_slots(self):
        crafted = texts_of_near_slots(MANY, hash_one_by_one, "name", ascii_lowercase)
        self.check(crafted, ascii_lowercase, declarations, jumps, functions)

    def test_numbers_of_near_slots(self):
        crafted = texts_of_near_slots(MANY, hash_by_fours, "1.00", digits)
        self.check(crafted, digits, assignments)


class LongNames(TimeTestCase):
    """The name of a unit stands in every warning about it, which nobody may want to read."""

    LENGTH = 200_000
    WARNINGS = 3_000

    def check(self, source):
        self.assert_no_longer(source(b"n" * self.LENGTH), source(b"n"))

    def unused_variables(self):
        return [b"VAR\n", *(b"v%d:INT;\n" % i for i in range(self.WARNINGS)), b"END_VAR\n"]

    def test_program(self):
        self.check(lambda name: [b"PROGRAM ", name, b"\n", *self.unused_variables(), END])

    def test_function(self):
        self.check(
            lambda name: [
                *(b"FUNCTION ", name, b":INT\n", *self.unused_variables(), b"END_FUNCTION\n"),
                b"PROGRAM main VAR x:INT; END_VAR" + END,
            ]
        )


if __name__ == "__main__":
    unittest.main()
