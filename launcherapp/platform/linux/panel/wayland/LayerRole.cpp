#include "launcherapp/platform/linux/panel/wayland/LayerRole.h"

#include "launcherapp/platform/linux/wayland/LayerShell.h"

#include <utility>

namespace tessarine {

struct LayerRole::Listener {
    static void configure(void* data,
                          zwlr_layer_surface_v1* role,
                          std::uint32_t serial,
                          std::uint32_t width,
                          std::uint32_t height) {
        auto& owner = *static_cast<LayerRole*>(data);
        zwlr_layer_surface_v1_ack_configure(role, serial);
        owner.isConfigured_ = true;
        if (owner.events_.configured)
            owner.events_.configured(width, height);
    }

    static void closed(void* data, zwlr_layer_surface_v1*) {
        auto& owner = *static_cast<LayerRole*>(data);
        owner.isClosed_ = true;
        if (owner.events_.closed)
            owner.events_.closed();
    }

    static constexpr zwlr_layer_surface_v1_listener functions{.configure = configure,
                                                              .closed = closed};
};

LayerRole::LayerRole(zwlr_layer_shell_v1* shell,
                     wl_surface* surface,
                     wl_output* output,
                     const char* name,
                     Events events)
    : role_(zwlr_layer_shell_v1_get_layer_surface(
          shell, surface, output, ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, name)),
      events_(std::move(events)) {
    zwlr_layer_surface_v1_add_listener(role_, &Listener::functions, this);
    zwlr_layer_surface_v1_set_exclusive_zone(role_, -1);
}

LayerRole::~LayerRole() {
    zwlr_layer_surface_v1_destroy(role_);
}

} // namespace tessarine
