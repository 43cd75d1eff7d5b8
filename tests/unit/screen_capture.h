// What reaches standard output, for tests.
#pragma once

#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstdio>
#include <string>

// Collects what reaches standard output while it lives.
class ScreenCapture {
public:
    ScreenCapture() : file_(std::tmpfile()), standardOutput_(dup(STDOUT_FILENO)) {
        std::fflush(stdout);
        dup2(fileno(file_), STDOUT_FILENO);
    }
    ~ScreenCapture() {
        std::fflush(stdout);
        dup2(standardOutput_, STDOUT_FILENO);
        close(standardOutput_);
        std::fclose(file_);
    }
    ScreenCapture(const ScreenCapture&) = delete;
    ScreenCapture& operator=(const ScreenCapture&) = delete;

    std::string text() {
        std::fflush(stdout);
        std::rewind(file_);
        std::string all;
        std::array<char, 4096> block = {};
        while (const std::size_t count = std::fread(block.data(), 1, block.size(), file_)) {
            all.append(block.data(), count);
        }
        return all;
    }

private:
    std::FILE* file_;
    int standardOutput_;
};
