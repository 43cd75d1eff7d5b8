// Several compiles side by side.
#pragma once

#include "facts/compile.h"

#include <chrono>
#include <vector>

// Runs compiles in child processes and gives back what comes of them as they end.
class CompilePool {
public:
    using Clock = std::chrono::steady_clock;

    // What has not ended by then is ended, and has failed.
    explicit CompilePool(Clock::time_point end = Clock::time_point::max()) : end_(end) {}

    struct Finished {
        int key;
        CompileResult result;
    };

    // Starts a compile; the key is given back with its result.
    void start(int key, const Source& source, Detail detail);
    void start(int key, const Source& source, const Question& question,
               Records records = Records::All);

    int running() const { return static_cast<int>(entries_.size()); }

    // Waits for the next compile that ends. One must be running.
    Finished wait();

private:
    struct Entry {
        int key;
        CompileProcess process;
    };
    std::vector<Entry> entries_;
    Clock::time_point end_;

    Finished finish(std::size_t index);
    Finished giveUp();
    int timeout() const;
};
