// What the fuzzer runs for the machine: inputs, one after the other in the same process.
//
//     yxst_fuzz_machine [INPUT...]
//
// With names it judges the inputs of these files and prints how many of them held code that was
// read, was sound, was executed. Without, the fuzzer gives it the inputs.
//
// The fuzzer keeps as a crash whatever ends by a signal: SIGUSR1 if the judge finds anything
// wrong, which it then names, and SIGXCPU if an input takes more than a second of processor time.

#include "judge.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iterator>

namespace {

constexpr time_t SECONDS_LIMIT = 1;

timer_t MakeTimer() {
    sigevent event = {};
    event.sigev_notify = SIGEV_SIGNAL;
    event.sigev_signo = SIGXCPU;
    timer_t timer = {};
    if (timer_create(CLOCK_PROCESS_CPUTIME_ID, &event, &timer) != 0) {
        std::perror("timer");
        std::abort();
    }
    return timer;
}

// The time begins anew for each input.
Judged JudgeInTime(timer_t timer, std::string_view bytes) {
    itimerspec limit = {};
    limit.it_value.tv_sec = SECONDS_LIMIT;
    timer_settime(timer, 0, &limit, nullptr);
    try {
        return Judge(bytes);
    } catch (const Unsound& found) {
        std::fprintf(stderr, "%s\n", found.what.toUtf8().constData());
        std::raise(SIGUSR1);
    }
    return {};
}

std::string ReadFile(const char* name) {
    std::ifstream file(name, std::ios::binary);
    if (!file) {
        std::perror(name);
        std::exit(EXIT_FAILURE);
    }
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

int JudgeFiles(char** begin, char** end) {
    const timer_t timer = MakeTimer();
    int read = 0;
    int sound = 0;
    int byRegisters = 0;
    int tables = 0;
    std::for_each(begin, end, [&](const char* name) {
        std::fprintf(stderr, "%s\n", name);
        const Judged judged = JudgeInTime(timer, ReadFile(name));
        read += judged.isRead ? 1 : 0;
        sound += judged.isSound ? 1 : 0;
        byRegisters += judged.registerCycles > 0 ? 1 : 0;
        tables += judged.tables;
    });
    std::printf("%td inputs, %d read, %d sound, %d by register code, %d tables\n", end - begin,
                read, sound, byRegisters, tables);
    return EXIT_SUCCESS;
}

}  // namespace

#ifdef __AFL_FUZZ_TESTCASE_LEN
// What the fuzzer's macros stand for is not this project's to mend.
#pragma clang diagnostic ignored "-Wgnu-statement-expression"
#pragma clang diagnostic ignored "-Wshorten-64-to-32"

__AFL_FUZZ_INIT();

// So many in one process; what one leaves behind for the next would show.
constexpr unsigned INPUTS_OF_PROCESS = 1000;

static int JudgeForFuzzer() {
    __AFL_INIT();
    const timer_t timer = MakeTimer();
    const auto* const bytes = reinterpret_cast<const char*>(__AFL_FUZZ_TESTCASE_BUF);
    while (__AFL_LOOP(INPUTS_OF_PROCESS)) {
        JudgeInTime(timer, {bytes, static_cast<std::size_t>(__AFL_FUZZ_TESTCASE_LEN)});
    }
    return EXIT_SUCCESS;
}
#endif

int main(int argc, char** argv) {
#ifdef __AFL_FUZZ_TESTCASE_LEN
    if (argc == 1) {
        return JudgeForFuzzer();
    }
#endif
    return JudgeFiles(argv + 1, argv + argc);
}
