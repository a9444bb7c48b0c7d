#pragma once

#include "launcherapp/platform/linux/panel/wayland/LayerRole.h"

#include <memory>

struct wl_buffer;
struct wl_compositor;
struct wl_shm;
struct wl_surface;
struct wp_viewport;
struct wp_viewporter;

namespace tessarine {

class QtWayland;

/// What invisible surfaces are made with; each null where the compositor lacks it. Goes after them.
/// Main thread only.
class TransparentSurfaces {
public:
    explicit TransparentSurfaces(const QtWayland& connection);
    ~TransparentSurfaces();
    TransparentSurfaces(const TransparentSurfaces&) = delete;
    TransparentSurfaces& operator=(const TransparentSurfaces&) = delete;

    bool canBeMade() const { return compositor && shell && pixel; }

    wl_compositor* compositor;
    zwlr_layer_shell_v1* shell;
    wp_viewporter* viewporter;
    wl_buffer* pixel = nullptr; ///< one, transparent
};

/// A surface above the windows that shows nothing. Main thread only.
class TransparentSurface {
public:
    enum class Size {
        pixel,  ///< one pixel, which no click hits
        output, ///< all of the output, and clicks hit it; only with a viewporter
    };

    /// It comes up as soon as the compositor has placed it. `with` outlives it and can make it.
    TransparentSurface(const TransparentSurfaces& with, wl_output* output, Size size);
    ~TransparentSurface();
    TransparentSurface(const TransparentSurface&) = delete;
    TransparentSurface& operator=(const TransparentSurface&) = delete;

    wl_surface* surface() const { return surface_; }

    /// Of those that it came up on the last; null before.
    wl_output* output() const { return output_; }

    /// The compositor wants none of it.
    bool isClosed() const { return role_->isClosed(); }

    /// Where clicks go through to what is below, in the surface's coordinates.
    void leaveOut(int x, int y, int width, int height);

private:
    struct Listener;

    struct Hole {
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
    };

    void comeUp(int width, int height);
    void shapeInput();

    const TransparentSurfaces& with_;
    const Size size_;
    wl_surface* surface_;
    wp_viewport* viewport_ = nullptr;
    std::unique_ptr<LayerRole> role_;
    wl_output* output_ = nullptr;
    Hole hole_;
};

} // namespace tessarine
