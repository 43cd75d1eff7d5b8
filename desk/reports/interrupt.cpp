#include "reports/interrupt.h"

#include <csignal>
#include <initializer_list>

namespace {

// A handler can reach nothing else; threads look at it.
std::atomic<bool> g_isInterrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free);

void Remember(int) {
    g_isInterrupted = true;
}

}  // namespace

void RememberInterrupts() {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action = {};
        sigaction(signal, nullptr, &action);
        if (action.sa_handler != SIG_IGN) {
            action.sa_handler = Remember;
            action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
            sigaction(signal, &action, nullptr);
        }
    }
}

const std::atomic<bool>& Interrupts() {
    return g_isInterrupted;
}

bool IsInterrupted() {
    return g_isInterrupted;
}
