#pragma once

#include "launcherapp/platform/linux/x11/X11Connection.h"

#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace tessarine {

/// Another program on the display of the tests, and the user's hands: windows, grabs, keys, clicks.
class X11Neighbour {
public:
    using Window = X11Connection::Window;

    X11Neighbour() {
        if (!display.answers())
            throw std::runtime_error("no display");
        const auto* setup = xcb_get_setup(xcb());
        first_ = setup->min_keycode;
        mapping_.reset(xcb_get_keyboard_mapping_reply(
            xcb(),
            xcb_get_keyboard_mapping(
                xcb(),
                first_,
                static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1)),
            nullptr));
    }

    xcb_connection_t* xcb() const { return display.xcb(); }

    Window root() const { return display.root(); }

    /// Until the display has done all that was asked.
    void finish() {
        const XcbOwned<xcb_get_input_focus_reply_t> reply(
            xcb_get_input_focus_reply(xcb(), xcb_get_input_focus(xcb()), nullptr));
    }

    enum class Kind { managed, unmanaged };

    /// A mapped window that notes its keys, of one colour; `prepare` sees it before it is mapped.
    Window open(int x,
                int y,
                int width,
                int height,
                Kind kind = Kind::managed,
                const std::function<void(Window)>& prepare = {}) {
        const auto window = xcb_generate_id(xcb());
        const std::uint32_t values[] = {
            0x336699,
            kind == Kind::unmanaged,
            XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_FOCUS_CHANGE,
        };
        xcb_create_window(xcb(),
                          XCB_COPY_FROM_PARENT,
                          window,
                          root(),
                          static_cast<std::int16_t>(x),
                          static_cast<std::int16_t>(y),
                          static_cast<std::uint16_t>(width),
                          static_cast<std::uint16_t>(height),
                          0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          XCB_COPY_FROM_PARENT,
                          XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK,
                          values);
        // The place is the user's own wish, which window managers grant (ICCCM 4.1.2.3).
        std::vector<std::uint32_t> hints(18);
        hints.front() = 1;
        set(window, "WM_NORMAL_HINTS", hints, XCB_ATOM_WM_SIZE_HINTS);
        if (prepare)
            prepare(window);
        xcb_map_window(xcb(), window);
        finish();
        return window;
    }

    void close(Window window) {
        xcb_destroy_window(xcb(), window);
        finish();
    }

    void set(Window window,
             const std::string& property,
             const std::vector<std::uint32_t>& values,
             xcb_atom_t type = XCB_ATOM_CARDINAL) {
        xcb_change_property(xcb(),
                            XCB_PROP_MODE_REPLACE,
                            window,
                            display.atom(property),
                            type,
                            32,
                            static_cast<std::uint32_t>(values.size()),
                            values.data());
        finish();
    }

    void unset(Window window, const std::string& property) {
        xcb_delete_property(xcb(), window, display.atom(property));
        finish();
    }

    /// A request to the window manager, as a pager makes it.
    void ask(Window window, const std::string& type, const std::vector<std::uint32_t>& values) {
        xcb_client_message_event_t event{};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = window;
        event.type = display.atom(type);
        std::ranges::copy(values, event.data.data32);
        xcb_send_event(xcb(),
                       0,
                       root(),
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&event));
        finish();
    }

    void activate(Window window) {
        constexpr std::uint32_t pager = 2;
        ask(window, "_NET_ACTIVE_WINDOW", {pager, XCB_CURRENT_TIME, 0});
    }

    void raise(Window window) {
        const std::uint32_t above = XCB_STACK_MODE_ABOVE;
        xcb_configure_window(xcb(), window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
        finish();
    }

    Window active() const {
        const auto windows = display.numbers({{root(), display.atom("_NET_ACTIVE_WINDOW")}});
        return windows.front().empty() ? Window{XCB_WINDOW_NONE} : windows.front().front();
    }

    /// The windows that the window manager tells of.
    std::vector<Window> managed() const {
        return display.numbers({{root(), display.atom("_NET_CLIENT_LIST")}}).front();
    }

    Window focus() const {
        const XcbOwned<xcb_get_input_focus_reply_t> reply(
            xcb_get_input_focus_reply(xcb(), xcb_get_input_focus(xcb()), nullptr));
        return reply->focus;
    }

    /// The top-level window that is seen at a place of the screen.
    Window topmostAt(int x, int y) {
        movePointer(x, y);
        const XcbOwned<xcb_query_pointer_reply_t> reply(
            xcb_query_pointer_reply(xcb(), xcb_query_pointer(xcb(), root()), nullptr));
        return reply->child;
    }

    bool grabKeyboard(Window window) {
        const XcbOwned<xcb_grab_keyboard_reply_t> reply(xcb_grab_keyboard_reply(
            xcb(),
            xcb_grab_keyboard(
                xcb(), 0, window, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
            nullptr));
        return reply->status == XCB_GRAB_STATUS_SUCCESS;
    }

    void ungrabKeyboard() {
        xcb_ungrab_keyboard(xcb(), XCB_CURRENT_TIME);
        finish();
    }

    /// Presses the keys of a text in small letters, one after the other.
    void type(const std::string& text) {
        for (const char letter : text) {
            const auto code = keycode(static_cast<xcb_keysym_t>(letter));
            fake(XCB_KEY_PRESS, code);
            fake(XCB_KEY_RELEASE, code);
        }
        finish();
    }

    void movePointer(int x, int y) {
        fake(XCB_MOTION_NOTIFY, 0, x, y);
        finish();
    }

    void press(std::uint8_t button = 1) {
        fake(XCB_BUTTON_PRESS, button);
        finish();
    }

    void release(std::uint8_t button = 1) {
        fake(XCB_BUTTON_RELEASE, button);
        finish();
    }

    void click(int x, int y, std::uint8_t button = 1) {
        movePointer(x, y);
        press(button);
        release(button);
    }

    /// How many keys went down in windows of this program since the last call.
    int keysPressed() {
        finish();
        int count = 0;
        while (const XcbOwned<xcb_generic_event_t> event{xcb_poll_for_event(xcb())})
            count += (event->response_type & 0x7f) == XCB_KEY_PRESS;
        return count;
    }

    /// What is to be seen in a part of the screen, as the display's pixels.
    std::vector<std::uint8_t> pixels(int x, int y, int width, int height) const {
        const XcbOwned<xcb_get_image_reply_t> image(
            xcb_get_image_reply(xcb(),
                                xcb_get_image(xcb(),
                                              XCB_IMAGE_FORMAT_Z_PIXMAP,
                                              root(),
                                              static_cast<std::int16_t>(x),
                                              static_cast<std::int16_t>(y),
                                              static_cast<std::uint16_t>(width),
                                              static_cast<std::uint16_t>(height),
                                              ~0U),
                                nullptr));
        const auto* first = xcb_get_image_data(image.get());
        return {first, first + xcb_get_image_data_length(image.get())};
    }

    /// Takes or gives up the place of the compositor.
    void mixWindows(Window owner) {
        xcb_set_selection_owner(xcb(), owner, display.atom("_NET_WM_CM_S0"), XCB_CURRENT_TIME);
        finish();
    }

    X11Connection display;

private:
    std::uint8_t keycode(xcb_keysym_t keysym) const {
        const auto* symbols = xcb_get_keyboard_mapping_keysyms(mapping_.get());
        const auto count = xcb_get_keyboard_mapping_keysyms_length(mapping_.get());
        const auto* found = std::find(symbols, symbols + count, keysym);
        if (found == symbols + count)
            throw std::runtime_error("no key for it");
        return static_cast<std::uint8_t>(first_ +
                                         (found - symbols) / mapping_->keysyms_per_keycode);
    }

    void fake(std::uint8_t type, std::uint8_t detail, int x = 0, int y = 0) {
        xcb_test_fake_input(xcb(),
                            type,
                            detail,
                            XCB_CURRENT_TIME,
                            root(),
                            static_cast<std::int16_t>(x),
                            static_cast<std::int16_t>(y),
                            0);
    }

    xcb_keycode_t first_ = 0;
    XcbOwned<xcb_get_keyboard_mapping_reply_t> mapping_;
};

} // namespace tessarine
