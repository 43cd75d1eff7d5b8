#include "facts/pool.h"

#include <poll.h>

namespace {

constexpr int FOR_EVER = -1;

}  // namespace

void CompilePool::start(int key, const Source& source, Detail detail) {
    entries_.push_back({key, CompileProcess(source, detail)});
}

void CompilePool::start(int key, const Source& source, const Question& question,
                        Records records) {
    entries_.push_back({key, CompileProcess(source, question, records)});
}

CompilePool::Finished CompilePool::finish(std::size_t index) {
    Finished finished = {entries_[index].key, entries_[index].process.result()};
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(index));
    return finished;
}

CompilePool::Finished CompilePool::giveUp() {
    const int key = entries_.front().key;
    entries_.erase(entries_.begin());
    return {key, {std::nullopt, QStringLiteral("the compiler has taken too long")}};
}

// In milliseconds.
int CompilePool::timeout() const {
    return end_ == Clock::time_point::max() ? FOR_EVER : MillisecondsUntil(end_);
}

CompilePool::Finished CompilePool::wait() {
    std::vector<pollfd> files;
    for (const Entry& entry : entries_) {
        files.push_back({entry.process.descriptor(), POLLIN, 0});
    }
    for (;;) {
        for (std::size_t index = 0; index < files.size(); ++index) {
            const bool isReady = files[index].fd < 0 || files[index].revents != 0;
            if (isReady && (files[index].fd < 0 || !entries_[index].process.takeSome())) {
                return finish(index);
            }
            files[index].revents = 0;
        }
        if (poll(files.data(), files.size(), timeout()) == 0) {
            return giveUp();
        }
    }
}
