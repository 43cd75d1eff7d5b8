#include "facts/compile.h"

#include "facts/collector.h"
#include "facts/transfer.h"

#include "qyx_compile.h"
#include "qyx_files.h"
#include "qyx_scanner.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>
#include <string_view>
#include <utility>

#ifdef YXST_COVERAGE
extern "C" void __gcov_dump();
#endif

namespace {

// ---------------------------------------------------------------------------------------------
// The child
// ---------------------------------------------------------------------------------------------

constexpr std::size_t PIPE_CAPACITY = std::size_t{64} * 1024;

constexpr int SUCCESS = 0;  // the statuses of a child
constexpr int WITHOUT_MEMORY = 3;

#ifdef YXST_COVERAGE
// A process of its own writes what was executed: a child may be killed at any time, and would
// leave a file that is half written.
void WriteCounts() {
    const pid_t writer = fork();
    if (writer == 0) {
        __gcov_dump();
        _exit(SUCCESS);
    }
    waitpid(writer, nullptr, 0);
}
#endif

[[noreturn]] void LeaveChild(int status) {
#ifdef YXST_COVERAGE
    WriteCounts();
#endif
    _exit(status);
}

// Reads what the compiler has not: from where it stopped, token by token.
void ReadOn(Collector& collector) {
    collector.readOn();
    SkipWhite();
    while (!IsEndOfInput(Look)) {
        const int line = g_InputCodeFileCurrentLineCount;
        const int column = g_InputCodeFileCurrentPosCount;
        try {
            Scan();
        } catch (const CompileStopped&) {
            const bool hasRead = line != g_InputCodeFileCurrentLineCount ||
                                 column != g_InputCodeFileCurrentPosCount;
            if (!hasRead) {
                GetChar();
            }
            SkipWhite();
        }
    }
}

Facts CompileHere(const Source& source, Records records) {
    Collector collector(source, records);
    g_Observer = &collector;
    g_InputCodeFileHandle = FileHandle::ofText(source.text());
    g_OutputCodeFileHandle = FileHandle::discarding();
    try {
        Compile();
    } catch (const CompileStopped&) {
        ReadOn(collector);
    }
    return collector.take();
}

void WriteAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = write(file, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR) {
            return;
        }
        bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
}

// Who waits for them takes no more than a QByteArray can hold.
void WriteFacts(int file, const Facts& facts) {
    constexpr std::size_t limit = std::numeric_limits<int>::max() - PIPE_CAPACITY;
    std::size_t total = 0;
    PassBytes(facts, [file, &total](std::string_view bytes) {
        total += bytes.size();
        if (total > limit) {
            throw std::length_error("facts");
        }
        WriteAll(file, bytes);
    });
}

// A child does not outlive who waits for it, not even one that has ended before it could ask.
void EndWithParent(pid_t parent) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) {
        _exit(SUCCESS);
    }
}

// What becomes of the facts: they go to the file, or what is made of them.
using Deliver = std::function<void(Facts& facts, int file)>;

[[noreturn]] void RunChild(const Source& source, Records records, const Deliver& deliver,
                           int file) {
    try {
        Facts facts = CompileHere(source, records);
        deliver(facts, file);
    } catch (const std::bad_alloc&) {
        LeaveChild(WITHOUT_MEMORY);
    } catch (const std::length_error&) {
        LeaveChild(WITHOUT_MEMORY);
    }
    LeaveChild(SUCCESS);
}

// ---------------------------------------------------------------------------------------------
// The parent
// ---------------------------------------------------------------------------------------------

QString FailureOf(int status) {
    if (WIFSIGNALED(status)) {
        return QStringLiteral("the compiler was ended by signal %1 (%2)")
            .arg(WTERMSIG(status))
            .arg(QString::fromLocal8Bit(strsignal(WTERMSIG(status))));
    }
    return WEXITSTATUS(status) == WITHOUT_MEMORY ? QStringLiteral("out of memory")
                                                 : QStringLiteral("the compiler has failed");
}

// Whether there is something to take before that time.
bool IsReadableBefore(std::chrono::steady_clock::time_point end, int descriptor) {
    pollfd pipe = {descriptor, POLLIN, 0};
    return poll(&pipe, 1, MillisecondsUntil(end)) != 0;
}

}  // namespace

CompileProcess::CompileProcess(const Source& source, Detail detail) {
    start(source, Records::All, [detail](Facts& facts, int file) {
        if (detail == Detail::IfMessages && facts.messages.empty()) {
            facts = Facts();
        }
        WriteFacts(file, facts);
    });
}

CompileProcess::CompileProcess(const Source& source, const Question& question, Records records)
    : hasQuestion_(true) {
    start(source, records, [&question](const Facts& facts, int file) {
        const QByteArray answer = question(facts);
        WriteAll(file, {answer.constData(), static_cast<std::size_t>(answer.size())});
    });
}

// What may be printed later must not be printed by the child as well.
void CompileProcess::start(const Source& source, Records records, const Deliver& deliver) {
    std::array<int, 2> ends = {NONE, NONE};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        return;
    }
    const pid_t parent = getpid();
    child_ = fork();
    if (child_ == 0) {
        EndWithParent(parent);
        RunChild(source, records, deliver, ends[1]);
    }
    close(ends[1]);
    pipe_ = ends[0];
}

CompileProcess::CompileProcess(CompileProcess&& other) noexcept
    : child_(std::exchange(other.child_, NONE)),
      pipe_(std::exchange(other.pipe_, NONE)),
      hasQuestion_(other.hasQuestion_),
      received_(std::move(other.received_)) {}

CompileProcess& CompileProcess::operator=(CompileProcess&& other) noexcept {
    std::swap(child_, other.child_);
    std::swap(pipe_, other.pipe_);
    std::swap(hasQuestion_, other.hasQuestion_);
    std::swap(received_, other.received_);
    return *this;
}

CompileProcess::~CompileProcess() {
    if (child_ > 0) {
        kill(child_, SIGKILL);
        wait();
    }
    if (pipe_ >= 0) {
        close(pipe_);
    }
}

int CompileProcess::wait() {
    int status = 0;
    while (waitpid(child_, &status, 0) < 0 && errno == EINTR) {
    }
    child_ = NONE;
    return status;
}

bool CompileProcess::takeSome() {
    std::array<char, PIPE_CAPACITY> block;
    ssize_t count = 0;
    do {
        count = read(pipe_, block.data(), block.size());
    } while (count < 0 && errno == EINTR);
    received_.append(block.data(), static_cast<int>(std::max<ssize_t>(count, 0)));
    return count > 0;
}

CompileResult CompileProcess::result() {
    if (child_ <= 0) {
        return {std::nullopt, QStringLiteral("no process for the compiler can be started")};
    }
    const int status = wait();
    if (hasQuestion_) {
        const bool isAnswered = status == SUCCESS && !received_.isEmpty();
        return {std::nullopt, isAnswered ? QString() : FailureOf(status), std::move(received_)};
    }
    std::optional<Facts> facts = FactsOf(received_);
    received_.clear();
    if (status != SUCCESS || !facts) {
        return {std::nullopt, FailureOf(status)};
    }
    return {std::move(facts), QString()};
}

CompileResult CompileAndWait(const Source& source, Detail detail) {
    CompileProcess process(source, detail);
    while (process.descriptor() >= 0 && process.takeSome()) {
    }
    return process.result();
}

CompileResult CompileWithin(std::chrono::milliseconds limit, const Source& source,
                            Detail detail) {
    const auto end = std::chrono::steady_clock::now() + limit;
    CompileProcess process(source, detail);
    while (process.descriptor() >= 0) {
        if (!IsReadableBefore(end, process.descriptor())) {
            return {std::nullopt, QStringLiteral("the compiler has taken too long")};
        }
        if (!process.takeSome()) {
            break;
        }
    }
    return process.result();
}

int MillisecondsUntil(std::chrono::steady_clock::time_point end) {
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    return static_cast<int>(
        std::clamp<std::int64_t>(left.count(), 0, std::numeric_limits<int>::max()));
}
