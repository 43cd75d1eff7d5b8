#include "check/check_files.h"

#include "check/file_check.h"
#include "facts/input.h"
#include "facts/pool.h"

#include <map>
#include <memory>

namespace {

// The files under way, by their index, and those that wait for one before them.
class Checks {
public:
    Checks(const QStringList& files, const CheckOptions& options,
           const std::function<void(const CheckedFile&)>& handOver)
        : files_(files), options_(options), handOver_(handOver) {}

    void run() {
        while (nextFile_ < files_.size() || pool_.running() > 0) {
            if (nextFile_ < files_.size() && pool_.running() < options_.jobs) {
                begin(nextFile_++);
            } else {
                goOn(pool_.wait());
            }
        }
    }

private:
    const QStringList& files_;
    const CheckOptions& options_;
    const std::function<void(const CheckedFile&)>& handOver_;
    CompilePool pool_;
    std::map<int, FileCheck> running_;
    std::map<int, CheckedFile> done_;
    int nextFile_ = 0;
    int nextToHandOver_ = 0;

    void begin(int index) {
        const Input input = ReadInput(files_[index]);
        if (!input.source) {
            end(index, {files_[index], std::nullopt, input.failure});
            return;
        }
        const FileCheck& check =
            running_
                .emplace(index, FileCheck(*input.source, options_.maxErrors, options_.findMore))
                .first->second;
        pool_.start(index, check.next(), options_.findMore ? Detail::All : Detail::IfMessages);
    }

    void goOn(const CompilePool::Finished& finished) {
        FileCheck& check = running_.at(finished.key);
        if (!finished.result.facts) {
            end(finished.key, {files_[finished.key], std::nullopt, finished.result.failure});
        } else if (check.take(*finished.result.facts)) {
            pool_.start(finished.key, check.next(), Detail::IfMessages);
        } else {
            end(finished.key, {files_[finished.key], check.report(), QString()});
        }
    }

    void end(int index, CheckedFile file) {
        running_.erase(index);
        done_.emplace(index, std::move(file));
        while (!done_.empty() && done_.begin()->first == nextToHandOver_) {
            handOver_(done_.begin()->second);
            done_.erase(done_.begin());
            ++nextToHandOver_;
        }
    }
};

}  // namespace

void CheckFiles(const QStringList& files, const CheckOptions& options,
                const std::function<void(const CheckedFile&)>& handOver) {
    Checks(files, options, handOver).run();
}
