#pragma once

#include "LauncherCore/geometry/Rectangle.h"

#include <ostream>

namespace tessarine {

/// For failures of tests.
inline void PrintTo(const Rectangle& rectangle, std::ostream* out) {
    *out << rectangle.x << "," << rectangle.y << " " << rectangle.width << "x" << rectangle.height;
}

} // namespace tessarine
