#include "launcherapp/platform/linux/wayland/WaylandRegistry.h"

#include <wayland-client.h>

#include <algorithm>

namespace tessarine {

struct WaylandRegistry::Listener {
    static void added(void* data,
                      wl_registry*,
                      std::uint32_t name,
                      const char* interface,
                      std::uint32_t version) {
        auto& owner = *static_cast<WaylandRegistry*>(data);
        const auto global = owner.globals_.emplace_back(name, interface, version);
        if (owner.events_.added)
            owner.events_.added(global);
    }

    static void removed(void* data, wl_registry*, std::uint32_t name) {
        auto& owner = *static_cast<WaylandRegistry*>(data);
        const auto found = std::ranges::find(owner.globals_, name, &Global::name);
        if (found == owner.globals_.end())
            return;
        const auto global = *found;
        owner.globals_.erase(found);
        if (owner.events_.removed)
            owner.events_.removed(global);
    }

    static constexpr wl_registry_listener functions{.global = added, .global_remove = removed};

    wl_registry* registry = nullptr;
};

WaylandRegistry::WaylandRegistry(wl_display* display, wl_event_queue* queue, Events events)
    : listener_(std::make_unique<Listener>()), events_(std::move(events)) {
    // Through a wrapper, so that no other thread can dispatch the first events on another queue.
    auto* const wrapper = static_cast<wl_display*>(wl_proxy_create_wrapper(display));
    if (!wrapper)
        return;
    if (queue)
        wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapper), queue);
    listener_->registry = wl_display_get_registry(wrapper);
    wl_proxy_wrapper_destroy(wrapper);
    wl_registry_add_listener(listener_->registry, &Listener::functions, this);
}

WaylandRegistry::~WaylandRegistry() {
    if (listener_->registry)
        wl_registry_destroy(listener_->registry);
}

std::optional<WaylandRegistry::Global> WaylandRegistry::find(std::string_view interface) const {
    const auto found = std::ranges::find(globals_, interface, &Global::interface);
    return found == globals_.end() ? std::nullopt : std::optional(*found);
}

void* WaylandRegistry::bindAny(const Global& global,
                               const wl_interface& interface,
                               std::uint32_t version) const {
    return wl_registry_bind(
        listener_->registry, global.name, &interface, std::min(version, global.version));
}

void* WaylandRegistry::bindFirstOf(const wl_interface& interface, std::uint32_t version) const {
    const auto global = find(interface.name);
    return global ? bindAny(*global, interface, version) : nullptr;
}

} // namespace tessarine
