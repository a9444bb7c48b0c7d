#include "launcherapp/platform/linux/panel/wayland/WaylandActivationTokens.h"

#include "launcherapp/platform/linux/desktop/SummonsToken.h"

#include <wayland-client.h>
#include <xdg-activation-v1.h>

#include <QGuiApplication>
#include <QWindow>
#include <utility>

namespace tessarine {

namespace {

/// The surface if it is one that lives: what is told of the keyboard may be of one that is gone.
wl_surface* living(wl_surface* surface) {
    for (auto* const window : QGuiApplication::allWindows()) {
        if (surface && QtWayland::surface(*window) == surface)
            return surface;
    }
    return nullptr;
}

} // namespace

struct WaylandActivationTokens::Listener {
    static void done(void* data, xdg_activation_token_v1*, const char* token) {
        static_cast<WaylandActivationTokens*>(data)->answer_ = token;
    }

    static constexpr xdg_activation_token_v1_listener functions{.done = done};
};

WaylandActivationTokens::WaylandActivationTokens(std::chrono::milliseconds keepsFor)
    : keepsFor_(keepsFor) {}

WaylandActivationTokens::~WaylandActivationTokens() {
    forget();
    if (activation_)
        xdg_activation_v1_destroy(activation_);
}

/// Null where the compositor has none, or was too busy to tell of it up to now.
xdg_activation_v1* WaylandActivationTokens::source() {
    if (!activation_)
        activation_ =
            connection_.registry().bindFirst<xdg_activation_v1>(xdg_activation_v1_interface, 1);
    return activation_;
}

void WaylandActivationTokens::prepare() {
    forget();
    if (source() && living(seat_.keyboardFocus()))
        ask();
}

void WaylandActivationTokens::ask() {
    askedAt_ = std::chrono::steady_clock::now();
    asked_ = xdg_activation_v1_get_activation_token(activation_);
    xdg_activation_token_v1_add_listener(asked_, &Listener::functions, this);
    if (const auto serial = seat_.lastSerial(); serial && seat_.seat())
        xdg_activation_token_v1_set_serial(asked_, *serial, seat_.seat());
    if (auto* const surface = living(seat_.keyboardFocus()))
        xdg_activation_token_v1_set_surface(asked_, surface);
    xdg_activation_token_v1_commit(asked_);
}

std::optional<std::string> WaylandActivationTokens::take(Activation activation) {
    if (activation == Activation::background || !source())
        return std::nullopt;
    if (std::chrono::steady_clock::now() - askedAt_ >= keepsFor_)
        forget();
    if (!asked_) { // for what a chord launches without the panel
        if (auto summons = SummonsToken::take())
            return summons;
        ask();
    }
    connection_.waitUntil([this] { return answer_.has_value(); }, patience);
    auto token = std::exchange(answer_, std::nullopt);
    forget();
    return token;
}

void WaylandActivationTokens::forget() {
    answer_.reset();
    if (auto* const asked = std::exchange(asked_, nullptr))
        xdg_activation_token_v1_destroy(asked);
}

} // namespace tessarine
