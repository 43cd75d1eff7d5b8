// One compile, in a child process: the compiler's state is global and lives for one run, and a
// crash of it ends the child alone.
#pragma once

#include "facts/facts.h"

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <optional>

// How much of the facts is wanted.
enum class Detail : unsigned char {
    IfMessages,  // all of them if there is a message, else none
    All
};

// What is to be known of the facts, worked out in the child: its memory is that of the moment at
// which the compile was started. Never empty.
using Question = std::function<QByteArray(const Facts&)>;

// The facts or the answer to the question, or why there is neither.
struct CompileResult {
    std::optional<Facts> facts;
    QString failure;  // a sentence without its full stop
    QByteArray answer = {};
};

// A compile under way; it is ended when this goes.
class CompileProcess {
public:
    // Starts the compile. That it cannot be started is found in its result.
    CompileProcess(const Source& source, Detail detail);
    CompileProcess(const Source& source, const Question& question,
                   Records records = Records::All);
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
    bool hasQuestion_ = false;
    QByteArray received_;

    void start(const Source& source, Records records,
               const std::function<void(Facts&, int)>& deliver);
    int wait();
};

// Compiles and waits for what comes of it.
CompileResult CompileAndWait(const Source& source, Detail detail = Detail::All);

// The same, but ends a compile that takes longer, which is a failure.
CompileResult CompileWithin(std::chrono::milliseconds limit, const Source& source,
                            Detail detail = Detail::All);

// For poll(): how long it is until then, 0 if that is past.
int MillisecondsUntil(std::chrono::steady_clock::time_point end);
