#include "launcherapp/platform/linux/panel/wayland/TransparentSurface.h"

#include "launcherapp/platform/linux/panel/wayland/QtWayland.h"
#include "launcherapp/platform/linux/wayland/LayerShell.h"

#include <wayland-client.h>

#include <cstdint>
#include <limits>
#include <sys/mman.h>
#include <unistd.h>
#include <viewporter.h>

namespace tessarine {

namespace {

constexpr std::uint32_t allEdges =
    ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM |
    ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT | ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT;

/// Null where there is no memory for it.
wl_buffer* transparentPixel(wl_shm* memory) {
    constexpr int bytes = 4;
    const int file = ::memfd_create("tessarine-pixel", MFD_CLOEXEC);
    if (file < 0)
        return nullptr;
    wl_buffer* buffer = nullptr;
    if (::ftruncate(file, bytes) == 0) { // zeroes: nothing of any colour
        auto* const pool = wl_shm_create_pool(memory, file, bytes);
        buffer = wl_shm_pool_create_buffer(pool, 0, 1, 1, bytes, WL_SHM_FORMAT_ARGB8888);
        wl_shm_pool_destroy(pool);
    }
    ::close(file);
    return buffer;
}

} // namespace

TransparentSurfaces::TransparentSurfaces(const QtWayland& connection)
    : compositor(connection.registry().bindFirst<wl_compositor>(wl_compositor_interface, 4)),
      shell(connection.registry().bindFirst<zwlr_layer_shell_v1>(zwlr_layer_shell_v1_interface, 1)),
      viewporter(connection.registry().bindFirst<wp_viewporter>(wp_viewporter_interface, 1)) {
    if (auto* const memory = connection.registry().bindFirst<wl_shm>(wl_shm_interface, 1)) {
        pixel = transparentPixel(memory);
        wl_shm_destroy(memory);
    }
}

TransparentSurfaces::~TransparentSurfaces() {
    if (pixel)
        wl_buffer_destroy(pixel);
    if (viewporter)
        wp_viewporter_destroy(viewporter);
    // The shell's own end came with a later version; without it the object ends with the
    // connection.
    if (shell)
        wl_proxy_destroy(reinterpret_cast<wl_proxy*>(shell));
    if (compositor)
        wl_compositor_destroy(compositor);
}

struct TransparentSurface::Listener {
    static void enter(void* data, wl_surface*, wl_output* output) {
        static_cast<TransparentSurface*>(data)->output_ = output;
    }

    static void leave(void*, wl_surface*, wl_output*) {}

    static constexpr wl_surface_listener functions = [] {
        wl_surface_listener listener{};
        listener.enter = enter;
        listener.leave = leave;
        return listener; // what a later version of the protocol adds is not told to ours
    }();
};

TransparentSurface::TransparentSurface(const TransparentSurfaces& with,
                                       wl_output* output,
                                       Size size)
    : with_(with), size_(size), surface_(wl_compositor_create_surface(with.compositor)) {
    wl_surface_add_listener(surface_, &Listener::functions, this);
    role_ = std::make_unique<LayerRole>(
        with.shell,
        surface_,
        output,
        size == Size::output ? "tessarine-outside" : "tessarine-probe",
        LayerRole::Events{.configured =
                              [this](std::uint32_t width, std::uint32_t height) {
                                  comeUp(static_cast<int>(width), static_cast<int>(height));
                              },
                          .closed = {}});
    if (size == Size::output) {
        viewport_ = wp_viewporter_get_viewport(with.viewporter, surface_);
        zwlr_layer_surface_v1_set_anchor(role_->wishes(), allEdges);
    } else {
        zwlr_layer_surface_v1_set_size(role_->wishes(), 1, 1);
        shapeInput();
    }
    wl_surface_commit(surface_);
}

TransparentSurface::~TransparentSurface() {
    role_.reset();
    if (viewport_)
        wp_viewport_destroy(viewport_);
    wl_surface_destroy(surface_);
}

void TransparentSurface::leaveOut(int x, int y, int width, int height) {
    hole_ = {.x = x, .y = y, .width = width, .height = height};
    shapeInput();
    if (role_->isConfigured())
        wl_surface_commit(surface_);
}

void TransparentSurface::shapeInput() {
    auto* const region = wl_compositor_create_region(with_.compositor);
    if (size_ == Size::output) {
        constexpr int all = std::numeric_limits<std::int32_t>::max();
        wl_region_add(region, 0, 0, all, all);
        wl_region_subtract(region, hole_.x, hole_.y, hole_.width, hole_.height);
    }
    wl_surface_set_input_region(surface_, region);
    wl_region_destroy(region);
}

void TransparentSurface::comeUp(int width, int height) {
    if (viewport_ && width > 0 && height > 0)
        wp_viewport_set_destination(viewport_, width, height);
    wl_surface_attach(surface_, with_.pixel, 0, 0);
    wl_surface_damage(surface_, 0, 0, 1, 1);
    wl_surface_commit(surface_);
}

} // namespace tessarine
