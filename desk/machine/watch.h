// What the checks of a run have found, and whether it is to end early.
#pragma once

#include "machine/profile.h"

#include <atomic>
#include <map>
#include <utility>

// Why a run has ended before its time; thrown where it does.
struct RunStop {
    Check check;
    QString message;  // no full stop at its end
    int item = 0;     // the number of the item
};

// A cycle that was asked to end; thrown where it does.
struct Interruption {
    int item;  // the number of the item
};

// How often each check has noted something, at each item.
using Notes = std::map<std::pair<Check, int>, qint64>;

// Counts or throws what checks raise. The machine tells which item it executes.
class Watch {
public:
    explicit Watch(const Checks& checks) : checks_(checks) {}

    void setItem(int item) { item_ = item; }
    const Notes& notes() const { return notes_; }
    void setNotes(const Notes& notes) { notes_ = notes; }
    const Checks& checks() const { return checks_; }

    bool isOn(Check check) const { return checks_.actionOf(check) != Action::Off; }
    // Notes the check, or throws a RunStop, as its action says.
    void raise(Check check, const QString& message) {
        switch (checks_.actionOf(check)) {
            case Action::Off:
                return;
            case Action::Note:
                ++notes_[{check, item_}];
                return;
            case Action::Stop:
                stop(check, message);
        }
    }
    // Throws a RunStop, whatever the action of the check.
    [[noreturn]] void stop(Check check, const QString& message) const {
        throw RunStop{check, message, item_};
    }

    // The flag asks cycles to end; it must outlive the watch.
    void setInterrupt(const std::atomic<bool>& flag) { interrupt_ = &flag; }
    // Called wherever a cycle that does not end comes by.
    void endIfAsked(int item) const {
        if (interrupt_ != nullptr && interrupt_->load(std::memory_order_relaxed)) {
            throw Interruption{item};
        }
    }

private:
    Checks checks_;
    Notes notes_;
    int item_ = 0;
    const std::atomic<bool>* interrupt_ = nullptr;
};
