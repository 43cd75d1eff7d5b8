// Runs a command and writes what it used to a file: microseconds of user plus system time,
// microseconds from start to end and kilobytes of peak memory.
//
//     launcher FILE SECONDS COMMAND [ARGUMENT...]
//
// The command is stopped when it has used so many seconds. A process starts out with the peak
// memory of the one that starts it, so this one is small.

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace {

// The arguments
constexpr int USAGE_FILE = 1;
constexpr int SECONDS = 2;
constexpr int COMMAND = 3;

constexpr int STATUS_NOT_RUN = 127;
constexpr int STATUS_SIGNAL = 128;
constexpr long long MICROSECONDS = 1'000'000;

long long Microseconds(const timeval& time) {
    return time.tv_sec * MICROSECONDS + time.tv_usec;
}

}  // namespace

int main(int argc, char** argv) {
    std::FILE* file = argc > COMMAND ? std::fopen(argv[USAGE_FILE], "w") : nullptr;
    if (file == nullptr) {
        return STATUS_NOT_RUN;
    }
    const rlim_t seconds = std::strtoul(argv[SECONDS], nullptr, 10);
    const rlimit limit = {seconds, seconds + 1};
    pid_t child = 0;
    int status = 0;
    rusage usage = {};
    const auto start = std::chrono::steady_clock::now();
    if (setrlimit(RLIMIT_CPU, &limit) != 0 ||
        posix_spawnp(&child, argv[COMMAND], nullptr, nullptr, argv + COMMAND, environ) != 0 ||
        wait4(child, &status, 0, &usage) != child) {
        return STATUS_NOT_RUN;
    }
    const std::chrono::duration<double, std::micro> wall =
        std::chrono::steady_clock::now() - start;
    const long long time = Microseconds(usage.ru_utime) + Microseconds(usage.ru_stime);
    std::fprintf(file, "%lld %.0f %ld\n", time, wall.count(), usage.ru_maxrss);
    std::fclose(file);
    return WIFEXITED(status) ? WEXITSTATUS(status) : STATUS_SIGNAL + WTERMSIG(status);
}
