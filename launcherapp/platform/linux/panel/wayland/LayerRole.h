#pragma once

#include <cstdint>
#include <functional>

struct wl_output;
struct wl_surface;
struct zwlr_layer_shell_v1;
struct zwlr_layer_surface_v1;

namespace tessarine {

/// What makes a surface one that stands above all windows, with no window manager's say. It goes
/// before its surface. Main thread only.
class LayerRole {
public:
    struct Events {
        /// The size that the compositor has for it. It is answered already.
        std::function<void(std::uint32_t width, std::uint32_t height)> configured;
        /// The compositor has taken it from the screen, for good: with its output for instance.
        std::function<void()> closed;
    };

    /// On the output, or on the compositor's active one for null; above everything else. Without a
    /// keyboard, at no edge and over what bars keep free until `wishes` say otherwise.
    LayerRole(zwlr_layer_shell_v1* shell,
              wl_surface* surface,
              wl_output* output,
              const char* name,
              Events events = {});
    ~LayerRole();
    LayerRole(const LayerRole&) = delete;
    LayerRole& operator=(const LayerRole&) = delete;

    /// What is asked for takes effect with the surface's next commit.
    zwlr_layer_surface_v1* wishes() const { return role_; }

    /// Nothing may be drawn before that.
    bool isConfigured() const { return isConfigured_; }

    bool isClosed() const { return isClosed_; }

private:
    struct Listener;

    zwlr_layer_surface_v1* role_;
    Events events_;
    bool isConfigured_ = false;
    bool isClosed_ = false;
};

} // namespace tessarine
