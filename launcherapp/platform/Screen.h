#pragma once

#include "LauncherCore/geometry/Rectangle.h"

#include <string>

namespace tessarine {

/// One monitor.
struct Screen {
    std::string name;    ///< of the output, for the log
    Rectangle frame;     ///< all of it
    Rectangle workArea;  ///< without docks and bars
    bool isMain = false; ///< the user's primary one

    bool operator==(const Screen&) const = default;
};

} // namespace tessarine
