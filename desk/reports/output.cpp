#include "reports/output.h"

#include <poll.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

void Print(std::string_view text) {
    if (std::ferror(stdout) == 0) {
        std::fwrite(text.data(), 1, text.size(), stdout);
    }
}

void Print(const QString& text) {
    Print(std::string_view(text.toStdString()));
}

void Complain(const QString& text) {
    std::fputs(("yxst: " + text.toStdString() + ".\n").c_str(), stderr);
}

namespace {

bool HasReaderLeft() {
    pollfd output = {STDOUT_FILENO, 0, 0};
    return poll(&output, 1, 0) > 0 && (output.revents & (POLLERR | POLLHUP)) != 0;
}

}  // namespace

Status FinishOutput(Status status) {
    const bool isWritten = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
    if (isWritten) {
        return status;
    }
    if (!HasReaderLeft()) {
        Complain(QStringLiteral("standard output cannot be written"));
    }
    return STATUS_FAILED;
}

bool HasColors(ColorWish wish, int descriptor) {
    if (wish != ColorWish::Auto) {
        return wish == ColorWish::Always;
    }
    const char* const refusal = std::getenv("NO_COLOR");
    const bool isRefused = refusal != nullptr && *refusal != '\0';
    return !isRefused && isatty(descriptor) != 0;
}
