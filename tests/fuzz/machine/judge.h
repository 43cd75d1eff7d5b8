// Gives an input to all that reads and executes target code, and judges what comes of it.
//
// Whatever the bytes are, the readers end with a result or with a fault that has a place and a
// text. Of code that is read: as a code file and as a listing it is the same code; what the
// machine leaves, variables, stops, notes and counters, is the same by register code and an item
// at a time; sound code executes nothing that the proof calls unreached, and exact code never
// stops for what the proof excludes.
#pragma once

#include "setup.h"

#include "machine/verifier.h"

// What an input was good for.
struct Judged {
    bool isRead = false;
    bool isSound = false;
    qint64 cycles = 0;
    qint64 registerCycles = 0;
    int tables = 0;  // of tests, that were executed
};

// Throws Unsound.
Judged Judge(std::string_view bytes);

// The part of it that is about tables of tests; 1 if one was executed. The code is null if there
// is none.
int JudgeTests(const Setup& setup, const Code* code);
