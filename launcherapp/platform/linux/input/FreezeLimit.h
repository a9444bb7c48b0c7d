#pragma once

#include "launcherapp/platform/linux/files/FileDescriptor.h"

#include <functional>
#include <memory>
#include <thread>

class QTimer;

namespace tessarine {

/// Calls `expired`, on a thread of its own, when the main thread hangs for longer than the user
/// can be made to wait for a key; and again as often as it goes on. Costs one timer a second and
/// otherwise sleeps. Made and destroyed on the main thread, with Qt's event loop.
class FreezeLimit {
public:
    explicit FreezeLimit(std::function<void()> expired);
    ~FreezeLimit();
    FreezeLimit(const FreezeLimit&) = delete;
    FreezeLimit& operator=(const FreezeLimit&) = delete;

private:
    void rearm();
    void watch(const std::function<void()>& expired) const;

    FileDescriptor timer_; ///< a timerfd that runs out unless the main thread winds it up in time
    FileDescriptor end_;   ///< an eventfd that ends the thread
    std::unique_ptr<QTimer> beat_;
    std::jthread thread_;
};

} // namespace tessarine
