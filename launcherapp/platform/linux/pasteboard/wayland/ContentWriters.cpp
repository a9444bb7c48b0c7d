#include "launcherapp/platform/linux/pasteboard/wayland/ContentWriters.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace tessarine {

void ContentWriters::add(std::shared_ptr<const std::string> bytes, FileDescriptor into, Time now) {
    const int flags = ::fcntl(into.number(), F_GETFL);
    if (flags < 0 || ::fcntl(into.number(), F_SETFL, flags | O_NONBLOCK) < 0)
        return;
    if (writers_.size() >= most)
        writers_.erase(std::ranges::min_element(writers_, {}, &Writer::lastSign));
    writers_.push_back({.bytes = std::move(bytes), .into = std::move(into), .lastSign = now});
}

void ContentWriters::goOn(Time now) {
    std::erase_if(writers_, [&](Writer& writer) { return isOver(writer, now); });
}

bool ContentWriters::isOver(Writer& writer, Time now) {
    while (writer.written < writer.bytes->size()) {
        const auto count = ::write(writer.into.number(),
                                   writer.bytes->data() + writer.written,
                                   writer.bytes->size() - writer.written);
        if (count < 0)
            return errno != EAGAIN && errno != EINTR;
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

} // namespace tessarine
