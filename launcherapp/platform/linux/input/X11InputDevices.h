#pragma once

#include <cstdint>
#include <span>
#include <vector>

struct xcb_connection_t;

namespace tessarine {

/// The input devices of an X11 display, as the X Input Extension 2 tells them; on a display
/// without it there are none. Main thread only; each function waits for the display's answer.
class X11InputDevices {
public:
    /// Reads the list of devices, on a connection that has agreed on a version of the extension.
    explicit X11InputDevices(xcb_connection_t* connection);

    /// Whether another program has one of the keys with one of the states through the extension.
    /// The display tells of a conflict only among grabs of one kind, and window managers grab by
    /// this one: a core grab besides it is granted, and never hears of the key.
    bool isGrabbed(std::span<const std::uint8_t> keyCodes,
                   std::span<const std::uint16_t> states) const;

private:
    xcb_connection_t* connection_;
    /// Devices whose grabs count: each keyboard, and the two numbers that stand for all devices and
    /// for all main ones. Empty without the extension.
    std::vector<std::uint16_t> keyboards_;
};

/// Whether the display is one that a Wayland compositor keeps for X11 programs: keys reach it only
/// while a window of theirs has the keyboard, so grabs are granted in vain. Waits for the answer.
bool isWaylandsDisplay(xcb_connection_t* connection);

} // namespace tessarine
