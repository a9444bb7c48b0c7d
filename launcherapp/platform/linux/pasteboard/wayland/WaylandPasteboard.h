#pragma once

#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/linux/pasteboard/MailboxPasteboard.h"
#include "launcherapp/platform/linux/pasteboard/TransferLimits.h"
#include "launcherapp/platform/linux/wayland/WaylandConnection.h"

#include <memory>

namespace tessarine {

/// The clipboard of a Wayland compositor by its data-control protocol, which needs no focus, on a
/// connection and a thread of its own, so that the main thread waits neither for other programs nor
/// for the compositor. The primary selection is left alone. What is there before this is made has
/// the count 1.
///
/// The compositor tells in one and the same way of an owner that has ended and of one that empties
/// the clipboard on purpose. Both count as abandoned here, and it is said that they can't be told
/// apart.
///
/// The ability goes with the compositor, or when the connection breaks, until a new connection is
/// answered, which is tried after a second and then ever more rarely; and with the seat, until
/// there is one again. What lies there when it comes back counts as a change.
class WaylandPasteboard : public MailboxPasteboard {
public:
    /// Connects to the compositor, and waits for it no longer than WaylandConnection's patience;
    /// where it doesn't answer, or has no such protocol, the ability is missing. Throws
    /// std::system_error when there is no descriptor or no thread to be had.
    explicit WaylandPasteboard(MainQueue& queue, TransferLimits limits = {});

    /// At once, whatever is under way, but while a silent compositor is being asked again
    /// (WaylandConnection's patience); what was asked for is not called any more, and what we own
    /// goes with us.
    ~WaylandPasteboard() override;

    bool tellsEndFromEmptying() const override { return false; }

private:
    /// The thread's alone once it runs; never null.
    std::unique_ptr<WaylandConnection> display_ = std::make_unique<WaylandConnection>();
};

} // namespace tessarine
