#pragma once

#include "launcherapp/platform/linux/pasteboard/PasteboardMailbox.h"
#include "launcherapp/platform/linux/pasteboard/PasteboardNews.h"
#include "launcherapp/platform/linux/pasteboard/TransferLimits.h"
#include "launcherapp/platform/linux/wayland/WaylandConnection.h"

#include <chrono>
#include <memory>

namespace tessarine {

/// Before a lost compositor, or one that was silent, is asked again; doubled each time.
inline constexpr std::chrono::seconds firstReconnection{1};
inline constexpr std::chrono::seconds longestReconnection{60};

/// What the clipboard's own thread does until the mailbox is closed. Where the compositor doesn't
/// answer, or is lost, it connects anew after a while, and tells the mailbox; where it has no such
/// protocol, it tells that it can do nothing. It sleeps until the compositor, a
/// program that takes or gives something, or a request wakes it, with a time limit only while
/// something is under way; a compositor that stands still holds it up no more than they. The
/// mailbox and the connection must outlive it, and nothing else may use the connection, which is
/// never null, meanwhile.
void runDataControlWorker(std::unique_ptr<WaylandConnection>& display,
                          PasteboardMailbox& mailbox,
                          TransferLimits limits,
                          const PasteboardNews& news);

} // namespace tessarine
