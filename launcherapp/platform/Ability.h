#pragma once

#include <string>
#include <utility>

namespace tessarine {

/// Whether the running desktop can do something, and if not, why, in words for the user.
struct Ability {
    bool available = true;
    std::string reason; ///< a phrase without a full stop; empty when available

    static Ability missing(std::string why) {
        return {.available = false, .reason = std::move(why)};
    }

    bool operator==(const Ability&) const = default;
};

} // namespace tessarine
