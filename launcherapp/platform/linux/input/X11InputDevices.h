#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

struct xcb_connection_t;
struct xcb_ge_generic_event_t;

namespace tessarine {

/// The input devices of an X11 display, as the X Input Extension 2 tells them; on a display
/// without it there are none. Main thread only; each function waits for the display's answer.
class X11InputDevices {
public:
    struct KeyPress {
        std::uint8_t key = 0;
        std::uint16_t state = 0;
        std::uint32_t time = 0; ///< the display's, in milliseconds
    };

    /// Reads the list of devices, on a connection that has agreed on a version of the extension.
    explicit X11InputDevices(xcb_connection_t* connection);

    /// Whether another program has one of the keys with one of the states through the extension.
    /// The display tells of a conflict only among grabs of one kind, and window managers grab by
    /// this one: a core grab besides it is granted, and never hears of the key.
    bool isGrabbed(std::span<const std::uint8_t> keyCodes,
                   std::span<const std::uint16_t> states) const;

    /// The press that an event tells of, which `isGrabbed` kept from everybody else as it came
    /// while it was asking; nothing for any other event.
    std::optional<KeyPress> keyPress(const xcb_ge_generic_event_t& event) const;

private:
    xcb_connection_t* connection_;
    std::optional<std::uint8_t> extension_; ///< its number; nothing without it
    std::vector<std::uint16_t> keyboards_;  ///< those that programs get keys of
};

/// Whether the display is one that a Wayland compositor keeps for X11 programs: keys reach it only
/// while a window of theirs has the keyboard, so grabs are granted in vain. Waits for the answer.
bool isWaylandsDisplay(xcb_connection_t* connection);

} // namespace tessarine
