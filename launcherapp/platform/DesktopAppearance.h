#pragma once

#include "launcherapp/platform/Subscription.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace tessarine {

enum class ColorScheme {
    none, ///< the user prefers neither, or nobody can be asked
    dark,
    light,
};

enum class Motion {
    full,
    reduced, ///< the user asked for nothing to move
};

/// What the user's desktop is set to look like. Main thread only. What is not known yet, or not
/// told on this desktop, reads as `none`, `full` and nothing; a question never waits.
class DesktopAppearance {
public:
    virtual ~DesktopAppearance() = default;

    virtual ColorScheme colorScheme() const = 0;
    virtual Motion motion() const = 0;

    /// The colour that the user wants to see used for what stands out: 0xRRGGBB.
    virtual std::optional<std::uint32_t> accent() const = 0;

    /// Calls `changed` after any of them has changed.
    virtual Subscription onChange(std::function<void()> changed) = 0;
};

} // namespace tessarine
