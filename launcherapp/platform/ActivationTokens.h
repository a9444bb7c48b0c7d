#pragma once

#include <map>
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

/// The variables in which a program that is started finds its token; none without a token.
inline std::map<std::string, std::string>
activationVariables(const std::optional<std::string>& token) {
    if (!token)
        return {};
    // Which of the two a program reads is its toolkit's affair, not the desktop's.
    return {{"DESKTOP_STARTUP_ID", *token}, {"XDG_ACTIVATION_TOKEN", *token}};
}

} // namespace tessarine
