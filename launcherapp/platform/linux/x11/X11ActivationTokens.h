#pragma once

#include "launcherapp/platform/ActivationTokens.h"
#include "launcherapp/platform/Environment.h"

#include <cstdint>

namespace tessarine {

/// Startup ids (freedesktop.org, "Startup notification"). They are made here, and need no display.
class X11ActivationTokens : public ActivationTokens {
public:
    /// Gives none without a DISPLAY.
    explicit X11ActivationTokens(const Environment& environment) : hasX11_(environment.hasX11) {}

    void prepare() override {}

    /// Also one for the background: it keeps a window from the front.
    std::optional<std::string> take(Activation activation) override;

private:
    bool hasX11_;
    std::uint64_t taken_ = 0;
};

} // namespace tessarine
