#pragma once

#include "LauncherCore/geometry/Rectangle.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tessarine {

class X11Connection;

/// What docks and bars leave of the monitors of an X11 display, in the display's own pixels. Main
/// thread only; each question waits for the display's answers.
class X11WorkAreas {
public:
    /// The connection must outlive this.
    explicit X11WorkAreas(const X11Connection& display) : display_(display) {}

    /// One for each monitor, in their order; a whole monitor where the display doesn't answer.
    std::vector<Rectangle> within(const std::vector<Rectangle>& monitors);

private:
    struct Room;
    Room room(std::size_t monitorCount);

    const X11Connection& display_;
    /// The windows that were there last: mostly they still are, and are asked about before it is
    /// known, which saves waiting for the display once more.
    std::vector<std::uint32_t> clients_;
};

} // namespace tessarine
