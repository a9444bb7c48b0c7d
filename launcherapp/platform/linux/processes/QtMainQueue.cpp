#include "launcherapp/platform/linux/processes/QtMainQueue.h"

#include <QMetaObject>
#include <QObject>
#include <QThread>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <utility>

namespace tessarine {

namespace {

/// Qt's timers count milliseconds in an int.
constexpr Seconds longestTimer = std::chrono::hours(24 * 20);

std::chrono::milliseconds rounded(Seconds duration) {
    return std::chrono::ceil<std::chrono::milliseconds>(
        std::clamp(duration, Seconds::zero(), longestTimer));
}

/// Qt's coarse timers come up to a twentieth of their interval early or late, so one is used only
/// where that much was granted.
Qt::TimerType timerType(Seconds interval, Seconds tolerance) {
    return tolerance >= interval / 20 ? Qt::CoarseTimer : Qt::PreciseTimer;
}

} // namespace

QtMainQueue::QtMainQueue() : receiver_(std::make_unique<QObject>()) {}

QtMainQueue::~QtMainQueue() = default;

void QtMainQueue::post(Task task) {
    QMetaObject::invokeMethod(receiver_.get(), std::move(task), Qt::QueuedConnection);
}

void QtMainQueue::postAfter(Seconds delay, Task task) {
    requireMainThread(*this);
    if (delay > longestTimer) {
        postAfter(longestTimer, [this, rest = delay - longestTimer, task = std::move(task)] {
            postAfter(rest, task);
        });
        return;
    }
    QTimer::singleShot(rounded(delay), Qt::PreciseTimer, receiver_.get(), std::move(task));
}

Subscription QtMainQueue::every(Seconds interval, Seconds tolerance, Task task) {
    requireMainThread(*this);
    const auto timer = std::make_shared<QTimer>();
    timer->setTimerType(timerType(interval, tolerance));
    timer->setInterval(rounded(interval));
    QObject::connect(timer.get(), &QTimer::timeout, receiver_.get(), std::move(task));
    timer->start();
    return Subscription([timer] { timer->stop(); });
}

double QtMainQueue::now() const {
    return Seconds(std::chrono::system_clock::now().time_since_epoch()).count();
}

Seconds QtMainQueue::uptime() const {
    return std::chrono::steady_clock::now().time_since_epoch();
}

bool QtMainQueue::isMainThread() const {
    return receiver_->thread() == QThread::currentThread();
}

} // namespace tessarine
