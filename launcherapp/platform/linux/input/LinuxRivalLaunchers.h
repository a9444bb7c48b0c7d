#pragma once

#include "launcherapp/platform/RivalLaunchers.h"

#include <memory>

namespace tessarine {

class MainQueue;
class WorkQueues;

/// The launchers of RivalTable. Those with a name on the session bus are seen coming and going;
/// the others are looked for among the processes, in the background and only when somebody asks
/// who runs, and seen going. The first question is answered by a look at once, which takes some
/// milliseconds. Main thread only, with Qt's event loop.
class LinuxRivalLaunchers : public RivalLaunchers {
public:
    LinuxRivalLaunchers(MainQueue& queue, WorkQueues& work);
    ~LinuxRivalLaunchers() override;
    LinuxRivalLaunchers(const LinuxRivalLaunchers&) = delete;
    LinuxRivalLaunchers& operator=(const LinuxRivalLaunchers&) = delete;

    std::size_t known() const override;
    std::vector<std::string> running() const override;
    Subscription onChange(std::function<void(const std::string&, Change)> changed) override;
    Subscription onSessionResumed(std::function<void()> resumed) override;

private:
    class Watch;
    std::shared_ptr<Watch> watch_;
};

} // namespace tessarine
