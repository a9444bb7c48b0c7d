#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct wl_display;
struct wl_event_queue;
struct wl_interface;
struct wl_output;

namespace tessarine {

/// What a Wayland compositor offers, as it tells on one connection: its global objects. The thread
/// that dispatches the queue.
class WaylandRegistry {
public:
    struct Global {
        std::uint32_t name = 0; ///< the compositor's number for it
        std::string interface;
        std::uint32_t version = 0;

        bool operator==(const Global&) const = default;
    };

    /// `added` and `removed` are called as the queue is dispatched; either may be empty.
    struct Events {
        std::function<void(const Global& global)> added;
        std::function<void(const Global& global)> removed;
    };

    /// Asks for the globals without waiting. What is bound through this talks on `queue`, the
    /// connection's own when it is null; both outlive this.
    WaylandRegistry(wl_display* display, wl_event_queue* queue, Events events = {});
    ~WaylandRegistry();
    WaylandRegistry(const WaylandRegistry&) = delete;
    WaylandRegistry& operator=(const WaylandRegistry&) = delete;

    /// Those told so far, in the compositor's order.
    const std::vector<Global>& globals() const { return globals_; }

    /// The first of that interface; nothing where the compositor has none.
    std::optional<Global> find(std::string_view interface) const;

    /// Binds it at the lower of both versions; the caller destroys the proxy, which is of
    /// `Proxy`'s interface.
    template <typename Proxy>
    Proxy* bind(const Global& global, const wl_interface& interface, std::uint32_t version) const {
        return static_cast<Proxy*>(bindAny(global, interface, version));
    }

    /// The same for the first of that interface; null where the compositor has none.
    template <typename Proxy>
    Proxy* bindFirst(const wl_interface& interface, std::uint32_t version) const {
        return static_cast<Proxy*>(bindFirstOf(interface, version));
    }

private:
    struct Listener;

    void* bindAny(const Global& global, const wl_interface& interface, std::uint32_t version) const;
    void* bindFirstOf(const wl_interface& interface, std::uint32_t version) const;

    std::unique_ptr<Listener> listener_;
    std::vector<Global> globals_;
    Events events_;
};

} // namespace tessarine
