#pragma once

#include "LauncherCore/commands/HotkeyBinding.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

struct xcb_connection_t;

namespace tessarine {

/// What the keys of an X11 display mean at one moment: where a virtual key is, and which bits of
/// an event's state are which modifier. A value; any thread, but for `read`.
class X11Keyboard {
public:
    /// Asks the display and waits for its answer.
    static X11Keyboard read(xcb_connection_t* connection);

    /// The key codes that a virtual key is, by what the layouts in use put on them; of one that
    /// no layout has, the place where a US keyboard has it. Empty for an unknown key.
    std::vector<std::uint8_t> keyCodes(std::uint32_t virtualKey) const;

    /// The state's bits for the modifiers of a binding; nothing when a modifier is on no key.
    std::optional<std::uint16_t> modifiers(std::uint32_t carbonModifiers) const;

    /// The binding that a key code with such a state is; nothing for a key that has no number in
    /// bindings. The state's locks, layout and mouse buttons count for nothing.
    std::optional<HotkeyBinding> binding(std::uint32_t keyCode, std::uint32_t state) const;

    /// The bits that a pressed lock key leaves in the state: Caps Lock, Num Lock and Scroll Lock.
    std::uint16_t locks() const { return locks_; }

    /// Every state that the lock keys can be in, none first.
    std::vector<std::uint16_t> lockStates() const;

    bool operator==(const X11Keyboard&) const = default;

private:
    struct Modifier {
        std::uint32_t carbon;
        std::uint16_t bit; ///< of a state; 0 when it is on no key
    };

    std::array<Modifier, 4> modifiers() const;
    std::span<const std::uint32_t> symbolsOf(std::uint8_t keyCode) const;

    std::uint8_t firstKeyCode_ = 8;
    std::size_t symbolsPerKey_ = 0;
    std::vector<std::uint32_t> symbols_; ///< `symbolsPerKey_` for each key code from the first on
    std::uint16_t alt_ = 0;
    std::uint16_t super_ = 0;
    std::uint16_t locks_ = 0;
};

} // namespace tessarine
