#pragma once

#include <optional>
#include <string>

namespace tessarine {

/// Whether what starts is to come to the front.
enum class Activation { foreground, background };

/// What tells the desktop that the user asked for what starts now, so that its window may come to
/// the front. Main thread only.
class ActivationTokens {
public:
    virtual ~ActivationTokens() = default;

    /// While the panel still has the keyboard: asks for the token of what is launched next, and
    /// doesn't wait for it. Called again, it forgets what nobody took.
    virtual void prepare() = 0;

    /// The token for one launch, each another; waits 100 ms at most. Nothing where the desktop has
    /// none to give.
    virtual std::optional<std::string> take(Activation activation) = 0;
};

} // namespace tessarine
