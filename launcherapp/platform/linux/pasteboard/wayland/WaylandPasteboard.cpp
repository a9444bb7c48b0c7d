#include "launcherapp/platform/linux/pasteboard/wayland/WaylandPasteboard.h"

#include "launcherapp/platform/linux/pasteboard/wayland/DataControl.h"
#include "launcherapp/platform/linux/pasteboard/wayland/DataControlWorker.h"

namespace tessarine {

WaylandPasteboard::WaylandPasteboard(MainQueue& queue, TransferLimits limits) {
    if (!display_.answers())
        mailbox().lose("no Wayland compositor answers");
    else if (!DataControl::isOffered(display_.registry()))
        mailbox().lose("this Wayland compositor shows the clipboard to the focused program alone "
                       "(it has neither ext-data-control nor wlr-data-control)");
    start(queue, [this, limits](const PasteboardNews& news) {
        runDataControlWorker(display_, mailbox(), limits, news);
    });
}

WaylandPasteboard::~WaylandPasteboard() {
    close();
    join();
}

} // namespace tessarine
