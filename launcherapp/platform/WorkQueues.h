#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <type_traits>
#include <utility>

namespace tessarine {

enum class WorkPriority {
    userInitiated, ///< somebody is waiting to see the result
    utility,       ///< nobody is: saves, releases, refreshes
};

/// Jobs of one name, run one after the other in the order given, off the main thread.
class SerialQueue {
public:
    virtual ~SerialQueue() = default;

    /// Any thread. The caller never waits.
    virtual void submit(std::function<void()> job) = 0;
};

/// Work off the main thread. A job owns what it works on: it captures values, or a door whose
/// header allows any thread, and neither `this` nor a view. Its value comes back to the main
/// thread, where the completion drops it if it is stale. A job lets no exception out.
class WorkQueues {
public:
    virtual ~WorkQueues() = default;

    /// Any thread. Runs `job()`, then `done(value)` on the main thread.
    template <typename Job, typename Done> void run(WorkPriority priority, Job job, Done done) {
        using Value = std::invoke_result_t<Job&>;
        auto value = std::make_shared<std::optional<Value>>();
        submit(
            priority,
            [job = std::move(job), value]() mutable { value->emplace(job()); },
            [done = std::move(done), value]() mutable { done(std::move(**value)); });
    }

    /// Any thread. Runs `job()`; nobody is told.
    template <typename Job> void run(WorkPriority priority, Job job) {
        submit(priority, std::move(job), nullptr);
    }

    /// Any thread. Runs `job()` on a thread of its own and then `done(value)` on the main thread:
    /// for what may never return, as a drive that hangs. Nobody waits for it, not even at the end.
    template <typename Job, typename Done> void runApart(Job job, Done done) {
        using Value = std::invoke_result_t<Job&>;
        auto value = std::make_shared<std::optional<Value>>();
        submitApart([job = std::move(job), value]() mutable { value->emplace(job()); },
                    [done = std::move(done), value]() mutable { done(std::move(**value)); });
    }

    /// Main thread. The queue of this name; the same one each time, alive as long as this object.
    virtual SerialQueue& serial(std::string_view name) = 0;

    /// Any thread. Runs `job` off the main thread and then, if there is one, `completion` on it.
    virtual void
    submit(WorkPriority priority, std::function<void()> job, std::function<void()> completion) = 0;

    /// Any thread. The same on a thread of its own; once this object is gone, the completion is
    /// dropped.
    virtual void submitApart(std::function<void()> job, std::function<void()> completion) = 0;
};

} // namespace tessarine
