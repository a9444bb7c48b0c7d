#pragma once

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <unistd.h>

namespace tessarine {

/// Mounts of our own, which no other process sees, until this object goes. Threads begun meanwhile
/// see them too. Needs the right to mount.
class MountNamespace {
public:
    MountNamespace() : before_(::open("/proc/self/ns/mnt", O_RDONLY | O_CLOEXEC)) {
        // Else what we mount would appear in the namespace that we come from.
        if (before_ < 0 || ::unshare(CLONE_NEWNS) != 0)
            reason_ = std::strerror(errno);
        else if (::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
            reason_ = std::strerror(errno);
    }

    ~MountNamespace() {
        if (before_ < 0)
            return;
        std::string folder(4096, '\0'); // entering a namespace leaves the folder we work in
        const bool isKnown = ::getcwd(folder.data(), folder.size()) != nullptr;
        (void)::setns(before_, CLONE_NEWNS);
        if (isKnown && ::chdir(folder.c_str()) != 0)
            (void)::chdir("/");
        ::close(before_);
    }

    MountNamespace(const MountNamespace&) = delete;
    MountNamespace& operator=(const MountNamespace&) = delete;

    bool works() const { return reason_.empty(); }

    const std::string& reason() const { return reason_; }

private:
    int before_;
    std::string reason_;
};

} // namespace tessarine
