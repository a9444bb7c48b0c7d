#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// A sibling application that can lend the launcher rows.
struct Companion {
    std::string id;
    std::string name;
    std::vector<std::string> bundleIDs;

    bool operator==(const Companion&) const = default;
};

/// The registry of companions, by id. Pure; any thread.
namespace Companions {

/// Nothing for an id that isn't registered; on Linux none is so far.
std::optional<Companion> companion(std::string_view id);

} // namespace Companions
} // namespace tessarine
