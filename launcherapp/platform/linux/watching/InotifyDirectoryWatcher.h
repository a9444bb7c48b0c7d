#pragma once

#include "launcherapp/platform/DirectoryWatcher.h"

#include <memory>

namespace tessarine {

/// Directory watching over one inotify instance of the kernel. A directory that moves because one
/// above it was renamed is not noticed until something below it changes. Where the kernel gives no
/// instance, no change is ever told of. Main thread only, with Qt's event loop.
class InotifyDirectoryWatcher : public DirectoryWatcher {
public:
    explicit InotifyDirectoryWatcher(MainQueue& queue);
    ~InotifyDirectoryWatcher() override;
    InotifyDirectoryWatcher(const InotifyDirectoryWatcher&) = delete;
    InotifyDirectoryWatcher& operator=(const InotifyDirectoryWatcher&) = delete;

    Subscription watch(const std::vector<std::string>& directories,
                       Seconds latency,
                       std::function<void(const DirectoryChanges&)> changed) override;

private:
    class State;
    std::shared_ptr<State> state_;
};

} // namespace tessarine
