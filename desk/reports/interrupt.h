// Ctrl-C and the like while something long goes on that can end early.
#pragma once

#include <atomic>

// From now on the first signal that asks the program to end is remembered; a second one ends it.
// One that the program was started without stays without effect.
void RememberInterrupts();

// Whether such a signal has come.
const std::atomic<bool>& Interrupts();
bool IsInterrupted();
