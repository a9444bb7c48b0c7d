#include "launcherapp/platform/linux/x11/X11ActivationTokens.h"

#include <fmt/format.h>

#include <chrono>

namespace tessarine {

std::optional<std::string> X11ActivationTokens::take(Activation activation) {
    if (!hasX11_)
        return std::nullopt;
    // The time tells the window manager that the user asked just now, so that the window may take
    // the focus; zero that it may not. X servers count it in milliseconds of the same clock.
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(
                                  std::chrono::steady_clock::now().time_since_epoch())
                                  .count();
    const auto serverTime =
        activation == Activation::foreground ? static_cast<std::uint32_t>(milliseconds) : 0;
    return fmt::format("tessarine-{}-{}_TIME{}", milliseconds, ++taken_, serverTime);
}

} // namespace tessarine
