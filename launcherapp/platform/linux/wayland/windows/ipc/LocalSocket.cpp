#include "launcherapp/platform/linux/wayland/windows/ipc/LocalSocket.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace tessarine {

namespace {

using Clock = std::chrono::steady_clock;

bool isOnlyLate(int error) {
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

} // namespace

LocalSocket::LocalSocket(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.empty() || path.size() >= sizeof address.sun_path)
        return;
    std::memcpy(address.sun_path, path.data(), path.size());
    FileDescriptor made(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    // It never is "in progress": a local socket is connected at once or not at all.
    if (made &&
        ::connect(made.number(), reinterpret_cast<sockaddr*>(&address), sizeof address) == 0)
        socket_ = std::move(made);
}

std::optional<pid_t> LocalSocket::listener() const {
    ucred other{};
    socklen_t size = sizeof other;
    if (!isOpen() || ::getsockopt(descriptor(), SOL_SOCKET, SO_PEERCRED, &other, &size) != 0 ||
        other.pid == 0)
        return std::nullopt;
    return other.pid;
}

void LocalSocket::send(std::string_view bytes) {
    if (!isOpen())
        return;
    unsent_ += bytes;
    sendOn();
}

void LocalSocket::sendOn() {
    while (isOpen() && !unsent_.empty()) {
        const auto sent = ::send(descriptor(), unsent_.data(), unsent_.size(), MSG_NOSIGNAL);
        if (sent > 0)
            unsent_.erase(0, static_cast<std::size_t>(sent));
        else if (isOnlyLate(errno))
            return;
        else
            unsent_.clear(); // what the other end still said before it went is to be read
    }
}

std::string LocalSocket::takeWhatCame() {
    sendOn();
    std::string all;
    char bytes[16384];
    while (isOpen()) {
        const auto count = ::recv(descriptor(), bytes, sizeof bytes, 0);
        if (count > 0)
            all.append(bytes, static_cast<std::size_t>(count));
        else if (count < 0 && isOnlyLate(errno))
            break;
        else
            socket_ = FileDescriptor();
    }
    return all;
}

bool LocalSocket::wait(Clock::time_point end) {
    while (isOpen()) {
        sendOn();
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        const auto wanted = static_cast<short>(unsent_.empty() ? POLLIN : POLLIN | POLLOUT);
        pollfd socket{.fd = descriptor(), .events = wanted, .revents = 0};
        const int ready = ::poll(&socket, 1, static_cast<int>(std::max<std::int64_t>(left, 0)));
        if (ready > 0 && socket.revents != POLLOUT)
            return true;
        if (ready <= 0 && left <= 0)
            return false;
    }
    return true;
}

} // namespace tessarine
