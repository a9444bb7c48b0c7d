#include "launcherapp/platform/linux/pasteboard/wayland/WaylandPasteboard.h"

#include "launcherapp/platform/DesktopTable.h"
#include "launcherapp/platform/linux/pasteboard/wayland/DataControl.h"
#include "launcherapp/platform/linux/pasteboard/wayland/DataControlWorker.h"

namespace tessarine {

WaylandPasteboard::WaylandPasteboard(MainQueue& queue, TransferLimits limits) {
    if (!display_->answers())
        mailbox().lose(std::string(DesktopTable::silentCompositor));
    else if (!DataControl::isOffered(display_->registry()))
        mailbox().lose(std::string(DesktopTable::hiddenClipboard));
    start(queue, [this, limits](const PasteboardNews& news) {
        runDataControlWorker(display_, mailbox(), limits, news);
    });
}

WaylandPasteboard::~WaylandPasteboard() {
    close();
    join();
}

} // namespace tessarine
