#pragma once

#include <string>
#include <vector>

namespace tessarine {

/// An application that runs and can be quit by name.
struct QuittableApp {
    std::string name;     ///< what its row shows; empty when it has none
    std::string bundleID; ///< its desktop-file id
    /// Names of the other applications that end with it when it is ended by force, as all of them
    /// are one process; mostly none.
    std::vector<std::string> alsoEnds = {};

    bool operator==(const QuittableApp&) const = default;
};

} // namespace tessarine
