#include "launcherapp/platform/linux/pasteboard/wayland/ContentWriters.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace tessarine {

void ContentWriters::add(std::shared_ptr<const std::string> bytes, FileDescriptor into, Time now) {
    if (writers_.size() >= most)
        return;
    const int flags = ::fcntl(into.number(), F_GETFL);
    if (flags < 0 || ::fcntl(into.number(), F_SETFL, flags | O_NONBLOCK) < 0)
        return;
    writers_.push_back({.bytes = std::move(bytes), .into = std::move(into), .lastSign = now});
}

void ContentWriters::goOn(Time now) {
    std::erase_if(writers_, [&](Writer& writer) { return isOver(writer, now); });
}

bool ContentWriters::isOver(Writer& writer, Time now) const {
    while (writer.written < writer.bytes->size()) {
        const auto count = ::write(writer.into.number(),
                                   writer.bytes->data() + writer.written,
                                   writer.bytes->size() - writer.written);
        if (count < 0)
            return (errno != EAGAIN && errno != EINTR) || now - writer.lastSign >= limits_.silence;
        writer.written += static_cast<std::size_t>(count);
        writer.lastSign = now;
    }
    return true;
}

std::vector<pollfd> ContentWriters::doors() const {
    std::vector<pollfd> doors;
    for (const auto& writer : writers_)
        doors.push_back({.fd = writer.into.number(), .events = POLLOUT, .revents = 0});
    return doors;
}

std::optional<ContentWriters::Time> ContentWriters::deadline() const {
    const auto next = std::ranges::min_element(writers_, {}, &Writer::lastSign);
    if (next == writers_.end())
        return std::nullopt;
    return next->lastSign + limits_.silence;
}

} // namespace tessarine
