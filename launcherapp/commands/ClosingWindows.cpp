#include "launcherapp/commands/ClosingWindows.h"

#include "launcherapp/platform/Alerts.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <utility>

namespace tessarine {

namespace {

/// A person closing the last window sees no delay.
constexpr Seconds poll{0.5};

/// Each application once, in the order of their oldest windows.
std::vector<std::string> namesOf(const std::vector<OpenWindow>& windows) {
    std::vector<std::string> names;
    for (const auto& window : windows) {
        if (std::ranges::count(names, window.name) == 0)
            names.push_back(window.name);
    }
    return names;
}

} // namespace

void ClosingWindows::start(Done done) {
    requireMainThread(services_.queue);
    takeBack();
    waiting_ = std::make_shared<Waiting>(Waiting{
        .done = std::move(done), .since = services_.queue.uptime(), .told = {}, .window = {}});
    for (const auto& window : services_.openWindows())
        services_.close(window.id);
    look(waiting_);
}

void ClosingWindows::takeBack() {
    requireMainThread(services_.queue);
    if (waiting_)
        end(End::takenBack, {});
}

void ClosingWindows::look(const std::shared_ptr<Waiting>& waiting) {
    auto names = namesOf(services_.openWindows());
    if (names.empty())
        return end(End::closed, {});
    const auto waited = services_.queue.uptime() - waiting->since;
    if (waited >= patience)
        return end(End::timeOver, std::move(names));
    if (waited >= quiet)
        tell(waiting, std::move(names));
    services_.queue.postAfter(poll, [this, weak = std::weak_ptr(waiting)] {
        if (const auto still = weak.lock())
            look(still);
    });
}

void ClosingWindows::tell(const std::shared_ptr<Waiting>& waiting, std::vector<std::string> names) {
    if (waiting->told == names)
        return;
    waiting->window =
        services_.alerts.wait(fmt::format("Waiting for {} to quit", fmt::join(names, ", ")),
                              "Cancel to stay: nothing else will happen then.",
                              [this, weak = std::weak_ptr(waiting)] {
                                  if (!weak.expired())
                                      takeBack();
                              });
    waiting->told = std::move(names);
}

void ClosingWindows::end(End how, std::vector<std::string> open) {
    const auto ended = std::exchange(waiting_, nullptr);
    ended->window.end();
    ended->done(how, std::move(open));
}

} // namespace tessarine
