#pragma once

#include "launcherapp/platform/linux/files/FileDescriptor.h"
#include "launcherapp/platform/linux/wayland/LayerShell.h"
#include "launcherapp/platform/linux/wayland/WaylandConnection.h"

#include <wayland-client.h>

#include <stdexcept>
#include <sys/mman.h>
#include <unistd.h>

namespace tessarine {

/// A surface in front of all windows that takes the keyboard, as the panel is one. Lasts as long as
/// this object.
class StandInPanel {
public:
    StandInPanel() {
        const auto& registry = connection_.registry();
        compositor_ = registry.bindFirst<wl_compositor>(wl_compositor_interface, 4);
        memory_ = registry.bindFirst<wl_shm>(wl_shm_interface, 1);
        shell_ = registry.bindFirst<zwlr_layer_shell_v1>(zwlr_layer_shell_v1_interface, 3);
        if (!compositor_ || !memory_ || !shell_)
            throw std::runtime_error("the compositor takes no panel");
        surface_ = wl_compositor_create_surface(compositor_);
        layer_ = zwlr_layer_shell_v1_get_layer_surface(
            shell_, surface_, nullptr, ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, "stand-in");
        static constexpr zwlr_layer_surface_v1_listener listener{
            .configure =
                [](void*, zwlr_layer_surface_v1* layer, std::uint32_t serial, auto, auto) {
                    zwlr_layer_surface_v1_ack_configure(layer, serial);
                },
            .closed = [](void*, zwlr_layer_surface_v1*) {}};
        zwlr_layer_surface_v1_add_listener(layer_, &listener, nullptr);
        zwlr_layer_surface_v1_set_size(layer_, side, side);
        zwlr_layer_surface_v1_set_keyboard_interactivity(layer_, 1);
        wl_surface_commit(surface_);
        connection_.roundTrip();
        draw();
        if (!connection_.roundTrip())
            throw std::runtime_error("the compositor refused the panel");
    }

    ~StandInPanel() {
        zwlr_layer_surface_v1_destroy(layer_);
        wl_surface_destroy(surface_);
        wl_buffer_destroy(buffer_);
        zwlr_layer_shell_v1_destroy(shell_);
        wl_shm_destroy(memory_);
        wl_compositor_destroy(compositor_);
        connection_.roundTrip();
    }

    StandInPanel(const StandInPanel&) = delete;
    StandInPanel& operator=(const StandInPanel&) = delete;

private:
    static constexpr int side = 100;

    void draw() {
        const FileDescriptor file(::memfd_create("panel", MFD_CLOEXEC));
        if (::ftruncate(file.number(), side * side * 4) != 0)
            throw std::runtime_error("no memory for the panel");
        auto* const pool = wl_shm_create_pool(memory_, file.number(), side * side * 4);
        buffer_ = wl_shm_pool_create_buffer(pool, 0, side, side, side * 4, WL_SHM_FORMAT_XRGB8888);
        wl_shm_pool_destroy(pool);
        wl_surface_attach(surface_, buffer_, 0, 0);
        wl_surface_commit(surface_);
        connection_.roundTrip();
    }

    WaylandConnection connection_;
    wl_compositor* compositor_ = nullptr;
    wl_shm* memory_ = nullptr;
    zwlr_layer_shell_v1* shell_ = nullptr;
    wl_surface* surface_ = nullptr;
    zwlr_layer_surface_v1* layer_ = nullptr;
    wl_buffer* buffer_ = nullptr;
};

} // namespace tessarine
