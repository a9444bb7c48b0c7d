#pragma once

#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/linux/pasteboard/MailboxPasteboard.h"
#include "launcherapp/platform/linux/pasteboard/TransferLimits.h"
#include "launcherapp/platform/linux/x11/X11Connection.h"

namespace tessarine {

/// The CLIPBOARD selection of an X11 display, on a connection and a thread of its own, so that the
/// main thread waits neither for other programs nor for the display. PRIMARY, the selected text, is
/// left alone. What is there before this is made has the count 1.
class X11Pasteboard : public MailboxPasteboard {
public:
    /// Connects to the display; everything else follows on the thread. Throws std::system_error
    /// when there is no descriptor or no thread to be had.
    explicit X11Pasteboard(MainQueue& queue, TransferLimits limits = {});

    /// At once, whatever is under way; what was asked for is not called any more, and what we own
    /// goes with us.
    ~X11Pasteboard() override;

private:
    X11Connection display_; ///< the thread's alone once it runs
};

} // namespace tessarine
