#pragma once

#include "launcherapp/platform/linux/pasteboard/PasteboardMailbox.h"
#include "launcherapp/platform/linux/pasteboard/PasteboardNews.h"
#include "launcherapp/platform/linux/pasteboard/TransferLimits.h"

namespace tessarine {

class X11Connection;

/// What the clipboard's own thread does until the mailbox is closed. It sleeps until the display or
/// a request wakes it, with a time limit only while something is under way. The mailbox and the
/// connection must outlive it, and nothing else may use the connection meanwhile.
void runPasteboardWorker(const X11Connection& display,
                         PasteboardMailbox& mailbox,
                         TransferLimits limits,
                         const PasteboardNews& news);

} // namespace tessarine
