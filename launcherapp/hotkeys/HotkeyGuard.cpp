#include "launcherapp/hotkeys/HotkeyGuard.h"

#include "launcherapp/hotkeys/Hotkey.h"
#include "launcherapp/hotkeys/HotkeySetup.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/RivalLaunchers.h"
#include "launcherapp/shell/Prefs.h"

#include <fmt/format.h>

namespace tessarine {

namespace {

constexpr Seconds checkInterval{120};
constexpr Seconds checkTolerance{30};
constexpr Seconds burst{2}; ///< launchers come and go in several steps

} // namespace

HotkeyGuard::HotkeyGuard(Services services) : services_(services) {}

void HotkeyGuard::start() {
    auto& rivals = services_.rivals;
    changes_ = rivals.onChange([this](const std::string& name, RivalLaunchers::Change change) {
        const auto* verb = change == RivalLaunchers::Change::launched ? "launched" : "quit";
        reassert(fmt::format("{} {}", name, verb));
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
    services_.setup.retry();
    services_.hotkey.reassertAll(reason);
}

} // namespace tessarine
