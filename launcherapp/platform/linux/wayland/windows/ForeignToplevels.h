#pragma once

#include "launcherapp/platform/Ability.h"
#include "launcherapp/platform/WindowList.h"
#include "launcherapp/platform/linux/wayland/WaylandConnection.h"
#include "launcherapp/platform/linux/wayland/windows/WindowChange.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct wl_seat;
struct zwlr_foreign_toplevel_manager_v1;
class QSocketNotifier;

namespace tessarine {

/// The windows as compositors tell them to task bars (wlr-foreign-toplevel-management), over a
/// connection of its own. Their processes and places are not told. After its making nothing here
/// waits. Main thread only, with Qt's event loop.
class ForeignToplevels {
public:
    /// Takes over a connection. `ownApplicationID` is what this program's windows call themselves.
    ForeignToplevels(std::unique_ptr<WaylandConnection> connection, std::string ownApplicationID);
    ~ForeignToplevels();
    ForeignToplevels(const ForeignToplevels&) = delete;
    ForeignToplevels& operator=(const ForeignToplevels&) = delete;

    /// Whether the compositor tells its windows there.
    static bool areTold(const WaylandConnection& connection);

    /// Missing once the compositor is gone, or tells no more: then there are no windows.
    Ability ability();

    /// Oldest first; the numbers are this object's own, and none is given twice.
    std::vector<AppWindow> windows();

    /// The active window. Where none is, as while a panel has the keyboard, the one that was last,
    /// as long as it is there and not minimised: this way of telling doesn't say why none is.
    std::optional<AppWindow> active();

    /// Told from the event loop: that another window is active, and that some came or went.
    WindowChange activeChange;
    WindowChange listChange;

    /// Orders. Nothing happens when the window is gone.
    void unhide(std::uint64_t window);
    void activate(std::uint64_t window);
    void close(std::uint64_t window);

private:
    struct Toplevel;
    struct Listener;

    void read();
    Toplevel* find(std::uint64_t window);
    void noteActive();

    std::unique_ptr<WaylandConnection> connection_;
    std::string ownApplicationID_;
    zwlr_foreign_toplevel_manager_v1* manager_ = nullptr; ///< null after the compositor's last word
    wl_seat* seat_ = nullptr;
    std::vector<std::unique_ptr<Toplevel>> toplevels_; ///< oldest first
    std::uint64_t last_ = 0;                           ///< number given
    std::optional<std::uint64_t> active_;
    bool isLost_ = false;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace tessarine
