#include "launcherapp/platform/linux/pasteboard/x11/X11Pasteboard.h"

#include "launcherapp/platform/linux/pasteboard/x11/PasteboardWorker.h"

#include <xcb/xcb.h>

#include <sys/socket.h>

namespace tessarine {

X11Pasteboard::X11Pasteboard(MainQueue& queue, TransferLimits limits) {
    if (!display_.answers())
        mailbox().lose("there is no X11 display");
    start(queue, [this, limits](const PasteboardNews& news) {
        runPasteboardWorker(display_, mailbox(), limits, news);
    });
}

X11Pasteboard::~X11Pasteboard() {
    close();
    // The thread may be waiting for a display that has stopped; a connection at its end lets it go.
    if (display_.answers())
        ::shutdown(xcb_get_file_descriptor(display_.xcb()), SHUT_RD);
    join();
}

} // namespace tessarine
