#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tessarine {

/// An application that the panel can launch by name.
struct CatalogApp {
    std::string id;   ///< the path of its desktop entry, below the root it was met in
    std::string name; ///< what its row shows
    std::string path; ///< the same path as `id`
    std::optional<std::string> bundleID; ///< its desktop-file id without ".desktop"
    std::vector<std::string> aliases;    ///< other words that find it

    bool operator==(const CatalogApp&) const = default;
};

} // namespace tessarine
