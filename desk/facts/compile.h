// One compile, in a child process: the compiler's state is global and lives for one run, and a
// crash of it ends the child alone.
#pragma once

#include "facts/facts.h"

#include <sys/types.h>

#include <chrono>
#include <optional>

// How much of the facts is wanted.
enum class Detail : unsigned char {
    IfMessages,  // all of them if there is a message, else none
    All
};

// The facts, or why there are none.
struct CompileResult {
    std::optional<Facts> facts;
    QString failure;  // a sentence without its full stop, where there are no facts
};

// A compile under way; it is ended when this goes.
class CompileProcess {
public:
    // Starts the compile. That it cannot be started is found in its result.
    CompileProcess(const Source& source, Detail detail);
    CompileProcess(const CompileProcess&) = delete;
    CompileProcess& operator=(const CompileProcess&) = delete;
    CompileProcess(CompileProcess&& other) noexcept;
    CompileProcess& operator=(CompileProcess&& other) noexcept;
    ~CompileProcess();

    // Readable when there is something to take; NONE if the compile could not be started.
    int descriptor() const { return pipe_; }

    // Takes what is there, waits for it if there is nothing yet. False at the end.
    bool takeSome();

    // What came of it, after the end.
    CompileResult result();

private:
    pid_t child_ = NONE;
    int pipe_ = NONE;
    QByteArray received_;

    int wait();
};

// Compiles and waits for what comes of it.
CompileResult CompileAndWait(const Source& source, Detail detail = Detail::All);

// The same, but ends a compile that takes longer, which is a failure.
CompileResult CompileWithin(std::chrono::milliseconds limit, const Source& source,
                            Detail detail = Detail::All);
