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

    /// How long a token waits for the launch that it was asked for: what is launched later has
    /// another occasion, and compositors let a token die.
    static constexpr std::chrono::milliseconds freshness{5000};

    explicit WaylandActivationTokens(std::chrono::milliseconds keepsFor = freshness);
    ~WaylandActivationTokens() override;
    WaylandActivationTokens(const WaylandActivationTokens&) = delete;
    WaylandActivationTokens& operator=(const WaylandActivationTokens&) = delete;

    void prepare() override;
    /// None for the background. What a key of the desktop's starts without the panel has the token
    /// that came with the press.
    std::optional<std::string> take(Activation activation) override;

private:
    struct Listener;

    xdg_activation_v1* source();
    void ask();
    void forget();

    const std::chrono::milliseconds keepsFor_;
    QtWayland connection_;
    WaylandSeat seat_{connection_};
    xdg_activation_v1* activation_ = nullptr; ///< null until it is needed
    xdg_activation_token_v1* asked_ = nullptr;
    std::chrono::steady_clock::time_point askedAt_;
    std::optional<std::string> answer_; ///< to what was asked
};

} // namespace tessarine
