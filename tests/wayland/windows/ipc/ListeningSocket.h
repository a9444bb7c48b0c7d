#pragma once

#include "launcherapp/platform/linux/files/FileDescriptor.h"

#include <cstring>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace tessarine {

/// A socket at that path in the file system which programs can connect to, in the place of one that
/// was there.
inline FileDescriptor listeningSocket(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.data(), path.size());
    FileDescriptor made(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    ::unlink(path.c_str());
    if (::bind(made.number(), reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(made.number(), 10) != 0)
        throw std::runtime_error("no socket");
    return made;
}

} // namespace tessarine
