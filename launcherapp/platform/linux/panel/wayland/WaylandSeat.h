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
struct wl_touch;

namespace tessarine {

class QtWayland;

/// What the user's keyboard, pointer and touch screen do to the surfaces of this program, as the
/// compositor tells it beside what it tells Qt. Main thread only.
class WaylandSeat {
public:
    struct Events {
        /// The keyboard came to a surface, or left it: then it is null.
        std::function<void(wl_surface* surface)> focusMoved;
        /// By the number that Qt has for it (`nativeScanCode`).
        std::function<void(std::uint32_t scanCode)> keyPressed;
        /// By a button of the pointer or a finger.
        std::function<void(wl_surface* surface)> pressed;
    };

    /// `connection` outlives this. The first seat is followed; one that is told late, or when that
    /// has gone, is taken then.
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

    bool takeFirst();
    void forgetSeat();
    void takeKeyboard(bool isThere);
    void takePointer(bool isThere);
    void takeTouch(bool isThere);
    void tellPress(std::uint32_t serial, wl_surface* surface);
    void moveFocus(wl_surface* surface);

    Events events_;
    QtWayland& connection_;
    wl_seat* seat_ = nullptr;
    std::uint32_t seatName_ = 0;      ///< the compositor's number for it, while there is one
    wl_keyboard* keyboard_ = nullptr; ///< null while there is none
    wl_pointer* pointer_ = nullptr;   ///< null while there is none
    wl_touch* touch_ = nullptr;       ///< null while there is none
    wl_surface* keyboardFocus_ = nullptr;
    wl_surface* pointerFocus_ = nullptr;
    std::optional<std::uint32_t> lastSerial_;
    Subscription lateSeat_;
    Subscription goneSeat_;
};

} // namespace tessarine
