#include "launcherapp/platform/linux/input/FreezeLimit.h"

#include <QTimer>
#include <array>
#include <chrono>
#include <cstdint>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>
#include <unistd.h>
#include <utility>

namespace tessarine {

namespace {

constexpr std::chrono::seconds beat{1};
constexpr time_t limitSeconds = 2;

} // namespace

FreezeLimit::FreezeLimit(std::function<void()> expired)
    : timer_(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC)), end_(::eventfd(0, EFD_CLOEXEC)),
      beat_(std::make_unique<QTimer>()) {
    rearm();
    beat_->setTimerType(Qt::CoarseTimer);
    QObject::connect(beat_.get(), &QTimer::timeout, beat_.get(), [this] { rearm(); });
    beat_->start(beat);
    thread_ = std::jthread([this, expired = std::move(expired)] { watch(expired); });
}

FreezeLimit::~FreezeLimit() {
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(end_.number(), &one, sizeof one);
    thread_.join();
}

void FreezeLimit::rearm() {
    const itimerspec limit{.it_interval = {.tv_sec = limitSeconds, .tv_nsec = 0},
                           .it_value = {.tv_sec = limitSeconds, .tv_nsec = 0}};
    ::timerfd_settime(timer_.number(), 0, &limit, nullptr);
}

void FreezeLimit::watch(const std::function<void()>& expired) const {
    constexpr int forever = -1;
    std::array<pollfd, 2> sources{pollfd{timer_.number(), POLLIN, 0},
                                  pollfd{end_.number(), POLLIN, 0}};
    while (true) {
        ::poll(sources.data(), sources.size(), forever);
        if (sources[1].revents)
            return;
        std::uint64_t expirations = 0;
        if (sources[0].revents && ::read(timer_.number(), &expirations, sizeof expirations) > 0)
            expired();
    }
}

} // namespace tessarine
