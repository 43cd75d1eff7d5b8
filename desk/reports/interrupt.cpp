#include "reports/interrupt.h"

#include <csignal>
#include <initializer_list>

namespace {

// A handler can reach nothing else.
volatile std::sig_atomic_t g_isInterrupted = 0;

void Remember(int) {
    g_isInterrupted = 1;
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

bool IsInterrupted() {
    return g_isInterrupted != 0;
}
