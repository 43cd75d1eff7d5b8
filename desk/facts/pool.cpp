#include "facts/pool.h"

#include <poll.h>

namespace {

constexpr int FOR_EVER = -1;

}  // namespace

void CompilePool::start(int key, const Source& source, Detail detail) {
    entries_.push_back({key, CompileProcess(source, detail)});
}

void CompilePool::start(int key, const Source& source, const Question& question) {
    entries_.push_back({key, CompileProcess(source, question)});
}

CompilePool::Finished CompilePool::finish(std::size_t index) {
    Finished finished = {entries_[index].key, entries_[index].process.result()};
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(index));
    return finished;
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
        poll(files.data(), files.size(), FOR_EVER);
    }
}
