#pragma once

#include <string>

namespace tessarine {

/// An application that runs and can be quit by name.
struct QuittableApp {
    std::string name;     ///< what its row shows; empty when it has none
    std::string bundleID; ///< its desktop-file id

    bool operator==(const QuittableApp&) const = default;
};

} // namespace tessarine
