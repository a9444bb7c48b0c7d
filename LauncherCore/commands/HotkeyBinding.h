#pragma once

#include <cstdint>

namespace tessarine {

/// A global hotkey as preferences store it.
struct HotkeyBinding {
    std::uint32_t keyCode = 0;         ///< a virtual key code, as chords name them
    std::uint32_t carbonModifiers = 0; ///< command 0x100, shift 0x200, option 0x800, control 0x1000

    bool operator==(const HotkeyBinding&) const = default;
};

} // namespace tessarine
