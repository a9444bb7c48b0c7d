#pragma once

#include <string>

namespace tessarine {

/// A clock somewhere on Earth. A value; any thread.
struct ZoneClock {
    std::string name;       ///< the city as it is shown
    std::string identifier; ///< IANA zone ("Europe/Athens"), or a fixed offset as in "GMT+05:30"

    bool operator==(const ZoneClock&) const = default;
};

} // namespace tessarine
