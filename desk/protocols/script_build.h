// The model of a script under way: one compile after the other, within a limit of time.
#pragma once

#include "facts/compile.h"
#include "language/model.h"
#include "protocols/settings.h"

class ScriptBuild {
public:
    using Clock = std::chrono::steady_clock;

    // Starts the first compile. The text is that of an editor, CRs and all.
    ScriptBuild(const QString& uri, const QString& text, const Settings& settings);

    // Readable when there is something to take; NONE if there is nothing to wait for.
    int descriptor() const { return compile_.descriptor(); }

    // When it is to be stopped.
    Clock::time_point deadline() const { return deadline_; }

    // Takes what the compiler has told. False when the model is complete, or will never be.
    bool goOn();

    // Leaves the model as it is, because it takes too long.
    void stop();

    // Why the model is not complete, a sentence without its full stop; empty if it is.
    const QString& failure() const { return failure_; }

    // After the end.
    Model model() const { return build_.model(); }

private:
    ModelBuild build_;
    CompileProcess compile_;
    std::chrono::milliseconds limit_;
    Clock::time_point deadline_;
    QString failure_;
};
