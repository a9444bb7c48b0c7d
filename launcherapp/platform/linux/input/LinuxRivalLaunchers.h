#pragma once

#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/RivalLaunchers.h"

#include <memory>

namespace tessarine {

class SessionWatch;
class WorkQueues;

/// The launchers of RivalTable. Those with a name on the session bus are seen coming and going at
/// once. The others are looked for among the processes, in the background and not too often: when a
/// program comes to the bus, when `look` is called, when somebody asks who runs; their end is seen
/// at once. The first look begins as this is made; whoever asks before it has ended waits for it,
/// at most 50 ms, and is told later of what it finds. Main thread only, with Qt's event loop.
class LinuxRivalLaunchers : public RivalLaunchers {
public:
    /// So soon after a look among the processes there is no other.
    static constexpr Seconds restOfLooks{10};

    LinuxRivalLaunchers(MainQueue& queue,
                        WorkQueues& work,
                        SessionWatch& session,
                        Seconds betweenLooks = restOfLooks);
    ~LinuxRivalLaunchers() override;
    LinuxRivalLaunchers(const LinuxRivalLaunchers&) = delete;
    LinuxRivalLaunchers& operator=(const LinuxRivalLaunchers&) = delete;

    std::size_t known() const override;
    std::vector<std::string> running() const override;
    Subscription onChange(std::function<void(const std::string&, Change)> changed) override;
    Subscription onSessionResumed(std::function<void()> resumed) override;

    /// Something happened that programs which just began bring with them, as a new window does.
    void look();

private:
    class Watch;
    SessionWatch& session_;
    std::shared_ptr<Watch> watch_;
};

} // namespace tessarine
