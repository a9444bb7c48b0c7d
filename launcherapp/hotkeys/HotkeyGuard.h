#pragma once

#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/Subscription.h"

#include <optional>
#include <string_view>

namespace tessarine {

class Diagnostics;
class Hotkey;
class HotkeySetup;
class Prefs;
class RivalLaunchers;

/// Watches the launchers that may hold the same chords, and takes the chords again whenever one
/// may have become free or been lost. Main thread only.
class HotkeyGuard {
public:
    struct Services {
        MainQueue& queue;
        Hotkey& hotkey;
        HotkeySetup& setup;
        RivalLaunchers& rivals;
        const Prefs& prefs;
        Diagnostics& diagnostics;
    };

    explicit HotkeyGuard(Services services);
    HotkeyGuard(const HotkeyGuard&) = delete;
    HotkeyGuard& operator=(const HotkeyGuard&) = delete;

    void start();

private:
    void reassert(std::string_view reason);

    Services services_;
    std::optional<Seconds> lastReassert_;
    Subscription changes_;
    Subscription session_;
    Subscription timer_;
};

} // namespace tessarine
