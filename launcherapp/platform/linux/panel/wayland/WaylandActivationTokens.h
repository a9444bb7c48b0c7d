#pragma once

#include "launcherapp/platform/ActivationTokens.h"
#include "launcherapp/platform/linux/panel/wayland/QtWayland.h"
#include "launcherapp/platform/linux/panel/wayland/WaylandSeat.h"

#include <chrono>

struct xdg_activation_token_v1;
struct xdg_activation_v1;

namespace tessarine {

/// Tokens of xdg-activation, asked for on Qt's connection in the name of the surface that has the
/// keyboard: compositors give none that counts to anybody else. Main thread only, with Qt connected
/// to Wayland.
class WaylandActivationTokens : public ActivationTokens {
public:
    /// How long a launch waits for its token.
    static constexpr std::chrono::milliseconds patience{100};

    WaylandActivationTokens();
    ~WaylandActivationTokens() override;
    WaylandActivationTokens(const WaylandActivationTokens&) = delete;
    WaylandActivationTokens& operator=(const WaylandActivationTokens&) = delete;

    void prepare() override;
    /// None for the background.
    std::optional<std::string> take(Activation activation) override;

private:
    struct Listener;

    void ask();
    void forget();

    QtWayland connection_;
    WaylandSeat seat_{connection_};
    xdg_activation_v1* activation_; ///< null where the compositor has none
    xdg_activation_token_v1* asked_ = nullptr;
    std::optional<std::string> answer_; ///< to what was asked
};

} // namespace tessarine
