#include "protocols/server_loop.h"

#include "protocols/framing.h"
#include "protocols/language_server.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>

namespace {

constexpr std::size_t BLOCK_SIZE = std::size_t{64} * 1024;

// With so many bytes that the client has not taken yet nothing more is read from it.
constexpr int MUCH_OUTPUT = 1 << 24;

// How long the last of it may take that is to be written, in milliseconds.
constexpr int PATIENCE = 1000;

// In the order in which they are polled; compiles follow.
enum Stream : std::size_t { INPUT, OUTPUT, COMPILES };

class ServerLoop {
public:
    ServerEnd run() {
        while (!isOver_) {
            serve();
        }
        finishOutput();
        return {server_.wasShutDown(), reader_.fault()};
    }

private:
    LanguageServer server_;
    MessageReader reader_;
    QByteArray outgoing_;
    int sent_ = 0;  // bytes of it
    bool isOver_ = false;
    std::vector<pollfd> polled_;

    // What the compiles have told comes first: after that their descriptors may be others'.
    // Compiles are started when there is no message that could change their texts.
    void serve() {
        wait();
        goOn();
        server_.stopLate();
        if (polled_[INPUT].revents != 0) {
            read();
        } else if (server_.scripts().hasChanged()) {
            server_.compile();
        }
        if (polled_[OUTPUT].revents != 0) {
            write();
        }
    }

    // ---------------------------------------------------------------------------------------------
    // Waiting
    // ---------------------------------------------------------------------------------------------

    void wait() {
        refill();
        const bool isFull = outgoing_.size() - sent_ > MUCH_OUTPUT;
        polled_ = {{isFull ? NONE : STDIN_FILENO, POLLIN, 0},
                   {outgoing_.isEmpty() ? NONE : STDOUT_FILENO, POLLOUT, 0}};
        for (const int descriptor : server_.scripts().descriptors()) {
            polled_.push_back({descriptor, POLLIN, 0});
        }
        if (poll(polled_.data(), polled_.size(), timeout()) < 0) {
            std::for_each(polled_.begin(), polled_.end(), [](pollfd& each) { each.revents = 0; });
        }
    }

    // In milliseconds; NONE where nothing but messages can come.
    int timeout() const {
        if (server_.scripts().hasChanged()) {
            return 0;
        }
        const auto deadline = server_.scripts().deadline();
        return deadline ? MillisecondsUntil(*deadline) : NONE;
    }

    void goOn() {
        for (std::size_t index = COMPILES; index < polled_.size(); ++index) {
            if (polled_[index].revents != 0) {
                server_.goOn(polled_[index].fd);
            }
        }
    }

    // ---------------------------------------------------------------------------------------------
    // Streams
    // ---------------------------------------------------------------------------------------------

    void read() {
        std::array<char, BLOCK_SIZE> block;
        const ssize_t count = ::read(STDIN_FILENO, block.data(), block.size());
        if (count <= 0) {
            isOver_ = count == 0 || errno != EINTR;
            return;
        }
        reader_.feed(QByteArray(block.data(), static_cast<int>(count)));
        takeMessages();
    }

    void takeMessages() {
        while (const std::optional<QByteArray> message = reader_.next()) {
            server_.take(*message);
            if (server_.isOver()) {
                break;
            }
        }
        if (!reader_.fault().isEmpty()) {
            server_.refuse(reader_.fault());
        }
        isOver_ = server_.isOver() || !reader_.fault().isEmpty();
    }

    // What the server has to say is sent piece by piece.
    void refill() {
        if (sent_ == outgoing_.size()) {
            outgoing_.clear();
            std::swap(outgoing_, server_.output());
            sent_ = 0;
        }
    }

    // So much as a pipe that can be written takes without waiting. A client that does not read
    // any more has left.
    void write() {
        const auto size = static_cast<std::size_t>(std::min(outgoing_.size() - sent_, PIPE_BUF));
        const ssize_t count = ::write(STDOUT_FILENO, outgoing_.constData() + sent_, size);
        if (count < 0 && errno != EINTR) {
            isOver_ = true;
            outgoing_.clear();
            server_.output().clear();
        }
        sent_ = outgoing_.isEmpty() ? 0 : sent_ + static_cast<int>(std::max<ssize_t>(count, 0));
    }

    void finishOutput() {
        refill();
        pollfd output = {STDOUT_FILENO, POLLOUT, 0};
        while (!outgoing_.isEmpty() && poll(&output, 1, PATIENCE) > 0) {
            write();
            refill();
        }
    }
};

}  // namespace

ServerEnd ServeLanguage() {
    return ServerLoop().run();
}
