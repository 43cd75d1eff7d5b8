#include "reports/progress.h"

#include <unistd.h>

#include <cstdio>

namespace {

constexpr qint64 QUIET_MS = 1000;
constexpr qint64 STEP_MS = 100;

}  // namespace

Progress::Progress(int total)
    : total_(total), isWanted_(isatty(STDERR_FILENO) != 0), nextTime_(QUIET_MS) {
    timer_.start();
}

Progress::~Progress() {
    hide();
}

void Progress::show(int done) {
    if (!isWanted_ || timer_.elapsed() < nextTime_) {
        return;
    }
    nextTime_ = timer_.elapsed() + STEP_MS;
    isShown_ = true;
    std::fprintf(stderr, "\r%d of %d", done, total_);
}

// The terminal clears the line from its begin.
void Progress::hide() {
    if (isShown_) {
        std::fputs("\r\033[K", stderr);
        isShown_ = false;
    }
}
