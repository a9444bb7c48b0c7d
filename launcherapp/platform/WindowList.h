#pragma once

#include "launcherapp/platform/Ability.h"
#include "launcherapp/platform/Subscription.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tessarine {

/// One window that the desktop manages, with what it says about its application.
struct AppWindow {
    std::uint64_t id = 0;
    std::string applicationID;  ///< a desktop-file id the window names itself by; may be empty
    std::string className;      ///< second half of WM_CLASS; may be empty
    std::string instanceName;   ///< first half of WM_CLASS; may be empty
    std::int64_t processID = 0; ///< 0 when the window doesn't tell
    std::string executable;     ///< path of that process's program; empty when unknown
    bool ordinary = true;       ///< a window that task bars show, not a panel or desktop
    bool hidden = false;        ///< minimised
    bool own = false;           ///< of this very process

    bool operator==(const AppWindow&) const = default;
};

/// The windows of running applications, and which is in front. Main thread only. A call waits for
/// the display's answer: mostly less than a millisecond, and longer only while another program
/// has the display to itself.
class WindowList {
public:
    virtual ~WindowList() = default;

    /// Whether this desktop tells its windows; when not, the lists below are empty.
    virtual Ability ability() const = 0;

    /// Why there may be windows, the one in front among them, that the lists below lack; nothing
    /// where they hold them all.
    virtual std::optional<std::string> gap() const = 0;

    /// Oldest first.
    virtual std::vector<AppWindow> windows() const = 0;

    /// The window that has the user's attention; nothing when none has.
    virtual std::optional<AppWindow> active() const = 0;

    /// Whether the program that has or had the window runs, with or without windows. False for a
    /// window that didn't tell its process.
    virtual bool stillRuns(const AppWindow& window) const = 0;

    /// Calls `changed` after another window has become active.
    virtual Subscription onActiveChanged(std::function<void()> changed) = 0;

    /// Calls `changed` after windows have come or gone. Never where the desktop doesn't tell that
    /// unasked, which is what this does here.
    virtual Subscription onListChanged(std::function<void()> changed) {
        static_cast<void>(changed);
        return {};
    }

    /// Brings a window back from the task bar. Nothing happens when it is gone.
    virtual void unhide(std::uint64_t window) = 0;

    /// Brings a window to the front and gives it the keyboard. Nothing happens when it is gone.
    virtual void activate(std::uint64_t window) = 0;
};

} // namespace tessarine
