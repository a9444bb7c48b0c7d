#pragma once

#include "launcherapp/platform/Subscription.h"

#include <cstdint>
#include <functional>
#include <optional>

struct wl_array;
struct wl_keyboard;
struct wl_pointer;
struct wl_seat;
struct wl_surface;

namespace tessarine {

class QtWayland;

/// What the user's keyboard and pointer do to the surfaces of this program, as the compositor tells
/// it beside what it tells Qt. Main thread only.
class WaylandSeat {
public:
    struct Events {
        /// The keyboard came to a surface, or left it: then it is null.
        std::function<void(wl_surface* surface)> focusMoved;
        /// By the number that Qt has for it (`nativeScanCode`).
        std::function<void(std::uint32_t scanCode)> keyPressed;
        std::function<void(wl_surface* surface)> buttonPressed;
    };

    /// `connection` outlives this. A seat that it tells late is taken then.
    explicit WaylandSeat(QtWayland& connection, Events events = {});
    ~WaylandSeat();
    WaylandSeat(const WaylandSeat&) = delete;
    WaylandSeat& operator=(const WaylandSeat&) = delete;

    /// Null where there is none, or none yet.
    wl_seat* seat() const { return seat_; }

    /// Whether anybody could type: a seat may have a pointer or a touch screen alone.
    bool hasKeyboard() const { return keyboard_ != nullptr; }

    /// The surface of this program that has the keyboard; null when none has.
    wl_surface* keyboardFocus() const { return keyboardFocus_; }

    /// The compositor's number for the last press, or for the coming of the keyboard; nothing
    /// before there was one.
    std::optional<std::uint32_t> lastSerial() const { return lastSerial_; }

private:
    struct Listeners;

    void takeSeat(wl_seat* seat);
    void takeKeyboard(bool isThere);
    void takePointer(bool isThere);
    void moveFocus(wl_surface* surface);

    Events events_;
    Subscription lateSeat_;
    wl_seat* seat_ = nullptr;
    wl_keyboard* keyboard_ = nullptr; ///< null while there is none
    wl_pointer* pointer_ = nullptr;   ///< null while there is none
    wl_surface* keyboardFocus_ = nullptr;
    wl_surface* pointerFocus_ = nullptr;
    std::optional<std::uint32_t> lastSerial_;
};

} // namespace tessarine
