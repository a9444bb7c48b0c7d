#pragma once

#include <cstdint>

namespace tessarine {

/// The bits of a binding's modifiers. On Linux keyboards Command is the Super key, Option is Alt.
namespace HotkeyModifiers {
inline constexpr std::uint32_t command = 0x100;
inline constexpr std::uint32_t shift = 0x200;
inline constexpr std::uint32_t option = 0x800;
inline constexpr std::uint32_t control = 0x1000;
} // namespace HotkeyModifiers

/// A global hotkey as preferences store it.
struct HotkeyBinding {
    std::uint32_t keyCode = 0;         ///< a virtual key code, as chords name them
    std::uint32_t carbonModifiers = 0; ///< of HotkeyModifiers

    bool operator==(const HotkeyBinding&) const = default;
};

} // namespace tessarine
