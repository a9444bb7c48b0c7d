#pragma once

#include "launcherapp/platform/linux/wayland/WaylandConnection.h"

#include <cstdint>
#include <optional>
#include <string>

struct wl_seat;
struct zwp_virtual_keyboard_manager_v1;
struct zwp_virtual_keyboard_v1;

namespace tessarine {

/// A keyboard that a program plugs into the first seat of a Wayland compositor, and unplugs when
/// this goes. A keyboard's modifiers are its own: those that the user holds on another count for
/// nothing while this one types, and his layout and modifiers come back with his next key. What is
/// asked for is done in order. Keys are the kernel's. The connection outlives this; its thread.
class VirtualKeyboard {
public:
    static constexpr std::uint32_t shiftModifier = 1;   ///< as every keymap has it
    static constexpr std::uint32_t controlModifier = 4; ///< likewise

    static bool isOffered(const WaylandRegistry& registry);

    /// Whether there is a seat to plug it into: one may go, and another come later.
    static bool hasSeat(const WaylandRegistry& registry);

    /// The compositor may take the focus from the window that has it and give it back.
    explicit VirtualKeyboard(WaylandConnection& connection);
    /// Sends all that was asked for.
    ~VirtualKeyboard();
    VirtualKeyboard(const VirtualKeyboard&) = delete;
    VirtualKeyboard& operator=(const VirtualKeyboard&) = delete;

    /// False when its seat has gone.
    bool isPluggedIn() const;

    /// Comes before any key. False when the compositor takes no keyboard now, or there is no memory
    /// to hand the keymap over in.
    bool layOut(const std::string& keymap);

    void press(std::uint32_t key);
    void release(std::uint32_t key);
    void tap(std::uint32_t key);

    /// The modifiers that are held from here on: the keys alone don't tell.
    void hold(std::uint32_t modifiers);

private:
    void set(std::uint32_t key, std::uint32_t state);

    WaylandConnection& connection_;
    std::optional<WaylandRegistry::Global> seatGlobal_;
    wl_seat* seat_;
    zwp_virtual_keyboard_manager_v1* manager_;
    zwp_virtual_keyboard_v1* keyboard_ = nullptr; ///< null where the compositor takes none
};

} // namespace tessarine
