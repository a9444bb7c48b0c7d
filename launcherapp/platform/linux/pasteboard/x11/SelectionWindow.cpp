#include "launcherapp/platform/linux/pasteboard/x11/SelectionWindow.h"

#include "launcherapp/platform/linux/x11/X11Connection.h"

#include <xcb/xcb.h>

namespace tessarine {

std::uint32_t openSelectionWindow(const X11Connection& display, std::uint32_t events) {
    const auto window = xcb_generate_id(display.xcb());
    xcb_create_window(display.xcb(),
                      0, // one that only takes input has no depth
                      window,
                      display.root(),
                      -1,
                      -1,
                      1,
                      1,
                      0,
                      XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT,
                      XCB_CW_EVENT_MASK,
                      &events);
    return window;
}

} // namespace tessarine
