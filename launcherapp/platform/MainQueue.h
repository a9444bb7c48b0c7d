#pragma once

#include "launcherapp/platform/Subscription.h"

#include <chrono>
#include <functional>

namespace tessarine {

using Seconds = std::chrono::duration<double>;

/// The main thread's run loop and the program's clocks. A task runs on the main thread, never
/// inside the call that gave it, and in the order given among tasks due at the same time. Tasks
/// still waiting when the loop ends are dropped.
class MainQueue {
public:
    using Task = std::function<void()>;

    virtual ~MainQueue() = default;

    /// Any thread.
    virtual void post(Task task) = 0;

    /// Main thread. Runs once, `delay` from now, and can't be taken back. A delay below zero is
    /// none.
    virtual void postAfter(Seconds delay, Task task) = 0;

    /// Main thread. Runs every `interval` until the subscription ends, first one `interval` from
    /// now. A run may come up to `tolerance` late, so that the machine can sleep; a run that was
    /// missed is not made up for. Intervals beyond 20 days are 20 days.
    virtual Subscription every(Seconds interval, Seconds tolerance, Task task) = 0;

    /// Any thread. Seconds since 1970, UTC, as the user's clock has it.
    virtual double now() const = 0;

    /// Any thread. Time since some fixed moment; never goes back.
    virtual Seconds uptime() const = 0;

    /// Any thread.
    virtual bool isMainThread() const = 0;
};

/// Stops the program, in release too, when called off the main thread: a service's state is
/// changed there alone.
void requireMainThread(const MainQueue& queue);

} // namespace tessarine
