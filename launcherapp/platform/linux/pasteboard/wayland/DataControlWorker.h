#pragma once

#include "launcherapp/platform/linux/pasteboard/PasteboardMailbox.h"
#include "launcherapp/platform/linux/pasteboard/PasteboardNews.h"
#include "launcherapp/platform/linux/pasteboard/TransferLimits.h"

namespace tessarine {

class WaylandConnection;

/// What the clipboard's own thread does until the mailbox is closed, and tells that it can do
/// nothing where the mailbox has no ability from the beginning. It sleeps until the compositor, a
/// program that takes or gives something, or a request wakes it, with a time limit only while
/// something is under way; a compositor that stands still holds it up no more than they. The
/// mailbox and the connection must outlive it, and nothing else may use the connection meanwhile.
void runDataControlWorker(WaylandConnection& display,
                          PasteboardMailbox& mailbox,
                          TransferLimits limits,
                          const PasteboardNews& news);

} // namespace tessarine
