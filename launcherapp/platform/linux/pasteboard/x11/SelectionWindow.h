#pragma once

#include <cstdint>

namespace tessarine {

class X11Connection;

/// A window that is never shown, to which answers and properties of a selection go, with these
/// events of it (an XCB_EVENT_MASK).
std::uint32_t openSelectionWindow(const X11Connection& display, std::uint32_t events);

} // namespace tessarine
