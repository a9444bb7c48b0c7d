#pragma once

#include "launcherapp/platform/MainQueue.h"

#include <memory>

class QObject;

namespace tessarine {

/// The main queue over Qt's event loop. Made and destroyed on the main thread, which is the one
/// that made it, while an application object of Qt lives.
class QtMainQueue : public MainQueue {
public:
    QtMainQueue();
    ~QtMainQueue() override;
    QtMainQueue(const QtMainQueue&) = delete;
    QtMainQueue& operator=(const QtMainQueue&) = delete;

    void post(Task task) override;
    void postAfter(Seconds delay, Task task) override;
    Subscription every(Seconds interval, Seconds tolerance, Task task) override;
    double now() const override;
    Seconds uptime() const override;
    bool isMainThread() const override;

private:
    std::unique_ptr<QObject> receiver_; ///< what is posted goes with it
};

} // namespace tessarine
