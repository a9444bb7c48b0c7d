#include "launcherapp/hotkeys/HotkeyGuard.h"

#include "launcherapp/hotkeys/Hotkey.h"
#include "launcherapp/hotkeys/HotkeySetup.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/shell/Prefs.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace tessarine {

namespace {

constexpr Seconds checkInterval{120};
constexpr Seconds checkTolerance{30};
constexpr Seconds burst{2}; ///< launchers come and go in several steps

/// A program gives its name on the bus back before its connection to the display, and the display
/// takes its time to clear up after one that ended.
constexpr std::array<Seconds, 2> afterQuitting{Seconds{0.5}, Seconds{2.5}};

} // namespace

HotkeyGuard::HotkeyGuard(Services services) : services_(services) {}

void HotkeyGuard::start() {
    requireMainThread(services_.queue);
    auto& rivals = services_.rivals;
    changes_ = rivals.onChange([this](const std::string& name, RivalLaunchers::Change change) {
        rivalChanged(name, change);
    });
    session_ = rivals.onSessionResumed([this] { reassert("session resumed"); });
    timer_ = services_.queue.every(checkInterval, checkTolerance, [this] {
        if (!services_.rivals.running().empty())
            reassert("periodic check while another launcher runs");
    });
    services_.diagnostics.log(
        fmt::format("hotkey guard armed (watching {} rival launchers; {} running now)",
                    rivals.known(),
                    rivals.running().size()));
}

void HotkeyGuard::rivalChanged(const std::string& name, RivalLaunchers::Change change) {
    switch (change) {
    case RivalLaunchers::Change::launched:
        return reassert(fmt::format("{} launched", name));
    case RivalLaunchers::Change::quit:
        reassert(fmt::format("{} quit", name));
        return retryLater();
    case RivalLaunchers::Change::found:
        return services_.setup.registerHotkey(); // it would have been decided otherwise
    }
}

void HotkeyGuard::retryLater() {
    for (const auto delay : afterQuitting)
        services_.queue.postAfter(delay, [this, alive = std::weak_ptr(alive_)] {
            if (!alive.expired() && !services_.setup.chordIsLeftTo())
                services_.setup.retry();
        });
}

void HotkeyGuard::reassert(std::string_view reason) {
    const auto now = services_.queue.uptime();
    if (lastReassert_ && now - *lastReassert_ <= burst)
        return;
    if (const auto rival = services_.setup.chordIsLeftTo()) {
        services_.diagnostics.log(
            fmt::format("hotkey guard: {}; leaving {} to {} (take it in Settings > General)",
                        reason,
                        HotkeyNames::display(services_.prefs.hotkey()),
                        *rival));
        return;
    }
    lastReassert_ = now;
    services_.setup.retry(); // first, so that the log's line speaks of the chords there are then
    const auto results = services_.hotkey.reassertAll(reason);
    const bool isAnyLost =
        std::ranges::any_of(results, [](const auto& each) { return !each.second; });
    if (isAnyLost)
        services_.setup.retry(); // for a stand-in
}

} // namespace tessarine
