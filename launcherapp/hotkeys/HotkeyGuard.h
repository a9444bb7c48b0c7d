#pragma once

#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/RivalLaunchers.h"
#include "launcherapp/platform/Subscription.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tessarine {

class Diagnostics;
class Hotkey;
class HotkeySetup;
class Prefs;

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
    void rivalChanged(const std::string& name, RivalLaunchers::Change change);
    void reassert(std::string_view reason);
    void retryLater();

    Services services_;
    std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
    std::optional<Seconds> lastReassert_;
    Subscription changes_;
    Subscription session_;
    Subscription timer_;
};

} // namespace tessarine
