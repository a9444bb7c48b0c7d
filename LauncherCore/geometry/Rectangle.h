#pragma once

namespace tessarine {

/// A place on the desktop in logical pixels, y downward from the top of the primary screen. Where
/// windows of other programs are concerned, and it is said so, pixels are the display's own.
struct Point {
    double x = 0;
    double y = 0;

    bool operator==(const Point&) const = default;
};

/// A rectangle on the desktop, in pixels as of `Point`; `x` and `y` are its top left.
struct Rectangle {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    double right() const { return x + width; }

    double bottom() const { return y + height; }

    /// The top and left edges belong to it, the bottom and right ones do not.
    bool contains(const Point& point) const {
        return point.x >= x && point.x < right() && point.y >= y && point.y < bottom();
    }

    bool operator==(const Rectangle&) const = default;
};

} // namespace tessarine
