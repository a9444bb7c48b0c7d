#include "launcherapp/platform/linux/panel/wayland/WaylandSeat.h"

#include "launcherapp/platform/linux/panel/wayland/QtWayland.h"

#include <wayland-client.h>

#include <unistd.h>
#include <utility>

namespace tessarine {

namespace {

/// The first in which both devices can be given back.
constexpr std::uint32_t seatVersion = 3;

/// Key codes of XKB are the kernel's with this added.
constexpr std::uint32_t firstScanCode = 8;

} // namespace

struct WaylandSeat::Listeners {
    static WaylandSeat& owner(void* data) { return *static_cast<WaylandSeat*>(data); }

    static void capabilities(void* data, wl_seat*, std::uint32_t devices) {
        owner(data).takeKeyboard(devices & WL_SEAT_CAPABILITY_KEYBOARD);
        owner(data).takePointer(devices & WL_SEAT_CAPABILITY_POINTER);
        owner(data).takeTouch(devices & WL_SEAT_CAPABILITY_TOUCH);
    }

    static void name(void*, wl_seat*, const char*) {}

    static void keymap(void*, wl_keyboard*, std::uint32_t, int file, std::uint32_t) {
        ::close(file);
    }

    static void
    keyboardEnter(void* data, wl_keyboard*, std::uint32_t serial, wl_surface* at, wl_array*) {
        owner(data).lastSerial_ = serial;
        owner(data).moveFocus(at);
    }

    static void keyboardLeave(void* data, wl_keyboard*, std::uint32_t, wl_surface*) {
        owner(data).moveFocus(nullptr);
    }

    static void key(void* data,
                    wl_keyboard*,
                    std::uint32_t serial,
                    std::uint32_t,
                    std::uint32_t code,
                    std::uint32_t state) {
        if (state != WL_KEYBOARD_KEY_STATE_PRESSED)
            return;
        auto& seat = owner(data);
        seat.lastSerial_ = serial;
        if (seat.events_.keyPressed)
            seat.events_.keyPressed(code + firstScanCode);
    }

    static void modifiers(void*,
                          wl_keyboard*,
                          std::uint32_t,
                          std::uint32_t,
                          std::uint32_t,
                          std::uint32_t,
                          std::uint32_t) {}

    static void repeat(void*, wl_keyboard*, std::int32_t, std::int32_t) {}

    static void
    pointerEnter(void* data, wl_pointer*, std::uint32_t, wl_surface* at, wl_fixed_t, wl_fixed_t) {
        owner(data).pointerFocus_ = at;
    }

    static void pointerLeave(void* data, wl_pointer*, std::uint32_t, wl_surface*) {
        owner(data).pointerFocus_ = nullptr;
    }

    static void motion(void*, wl_pointer*, std::uint32_t, wl_fixed_t, wl_fixed_t) {}

    static void button(void* data,
                       wl_pointer*,
                       std::uint32_t serial,
                       std::uint32_t,
                       std::uint32_t,
                       std::uint32_t state) {
        if (state == WL_POINTER_BUTTON_STATE_PRESSED)
            owner(data).tellPress(serial, owner(data).pointerFocus_);
    }

    static void axis(void*, wl_pointer*, std::uint32_t, std::uint32_t, wl_fixed_t) {}

    static void touchDown(void* data,
                          wl_touch*,
                          std::uint32_t serial,
                          std::uint32_t,
                          wl_surface* at,
                          std::int32_t,
                          wl_fixed_t,
                          wl_fixed_t) {
        owner(data).tellPress(serial, at);
    }

    static void touchUp(void*, wl_touch*, std::uint32_t, std::uint32_t, std::int32_t) {}

    static void touchMotion(void*, wl_touch*, std::uint32_t, std::int32_t, wl_fixed_t, wl_fixed_t) {
    }

    static void touchFrame(void*, wl_touch*) {}

    static void touchCancel(void*, wl_touch*) {}

    static constexpr wl_seat_listener ofSeat{.capabilities = capabilities, .name = name};
    static constexpr wl_keyboard_listener ofKeyboard{.keymap = keymap,
                                                     .enter = keyboardEnter,
                                                     .leave = keyboardLeave,
                                                     .key = key,
                                                     .modifiers = modifiers,
                                                     .repeat_info = repeat};
    static constexpr wl_pointer_listener ofPointer = [] {
        wl_pointer_listener listener{};
        listener.enter = pointerEnter;
        listener.leave = pointerLeave;
        listener.motion = motion;
        listener.button = button;
        listener.axis = axis;
        return listener; // what a later version of the protocol adds is not told to ours
    }();
    static constexpr wl_touch_listener ofTouch = [] {
        wl_touch_listener listener{};
        listener.down = touchDown;
        listener.up = touchUp;
        listener.motion = touchMotion;
        listener.frame = touchFrame;
        listener.cancel = touchCancel;
        return listener;
    }();
};

WaylandSeat::WaylandSeat(QtWayland& connection, Events events)
    : events_(std::move(events)), connection_(connection) {
    if (takeFirst()) {
        connection.roundTrip(); // the devices
        connection.roundTrip(); // who has the keyboard
    }
    lateSeat_ = connection.onAdded([this](const WaylandRegistry::Global& global) {
        if (!seat_ && global.interface == wl_seat_interface.name)
            takeFirst();
    });
    goneSeat_ = connection.onRemoved([this](const WaylandRegistry::Global& global) {
        if (!seat_ || global.name != seatName_)
            return;
        forgetSeat();
        takeFirst();
    });
}

WaylandSeat::~WaylandSeat() {
    forgetSeat();
}

/// False where there is none.
bool WaylandSeat::takeFirst() {
    const auto& registry = connection_.registry();
    const auto first = registry.find(wl_seat_interface.name);
    if (!first)
        return false;
    seat_ = registry.bind<wl_seat>(*first, wl_seat_interface, seatVersion);
    seatName_ = first->name;
    wl_seat_add_listener(seat_, &Listeners::ofSeat, this);
    return true;
}

void WaylandSeat::forgetSeat() {
    takeKeyboard(false);
    takePointer(false);
    takeTouch(false);
    lastSerial_.reset(); // it counts with its own seat alone
    if (auto* const seat = std::exchange(seat_, nullptr))
        wl_seat_destroy(seat);
}

void WaylandSeat::takeKeyboard(bool isThere) {
    if (isThere && !keyboard_) {
        keyboard_ = wl_seat_get_keyboard(seat_);
        wl_keyboard_add_listener(keyboard_, &Listeners::ofKeyboard, this);
    } else if (!isThere && keyboard_) {
        wl_keyboard_release(std::exchange(keyboard_, nullptr));
        keyboardFocus_ = nullptr;
    }
}

void WaylandSeat::takePointer(bool isThere) {
    if (isThere && !pointer_) {
        pointer_ = wl_seat_get_pointer(seat_);
        wl_pointer_add_listener(pointer_, &Listeners::ofPointer, this);
    } else if (!isThere && pointer_) {
        wl_pointer_release(std::exchange(pointer_, nullptr));
        pointerFocus_ = nullptr;
    }
}

void WaylandSeat::takeTouch(bool isThere) {
    if (isThere && !touch_) {
        touch_ = wl_seat_get_touch(seat_);
        wl_touch_add_listener(touch_, &Listeners::ofTouch, this);
    } else if (!isThere && touch_) {
        wl_touch_release(std::exchange(touch_, nullptr));
    }
}

void WaylandSeat::tellPress(std::uint32_t serial, wl_surface* surface) {
    lastSerial_ = serial;
    if (events_.pressed)
        events_.pressed(surface);
}

void WaylandSeat::moveFocus(wl_surface* surface) {
    keyboardFocus_ = surface;
    if (events_.focusMoved)
        events_.focusMoved(surface);
}

} // namespace tessarine
