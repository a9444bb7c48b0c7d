#pragma once

#include "LauncherCore/geometry/Rectangle.h"

#include <QRect>
#include <cmath>

/// The desktop's rectangles as Qt has them, and back. Pure; any thread.
namespace tessarine::QtGeometry {

inline Rectangle rectangle(const QRect& rect) {
    return {.x = static_cast<double>(rect.x()),
            .y = static_cast<double>(rect.y()),
            .width = static_cast<double>(rect.width()),
            .height = static_cast<double>(rect.height())};
}

/// In whole pixels, each number rounded by itself.
inline QRect rounded(const Rectangle& rectangle) {
    return {static_cast<int>(std::lround(rectangle.x)),
            static_cast<int>(std::lround(rectangle.y)),
            static_cast<int>(std::lround(rectangle.width)),
            static_cast<int>(std::lround(rectangle.height))};
}

} // namespace tessarine::QtGeometry
