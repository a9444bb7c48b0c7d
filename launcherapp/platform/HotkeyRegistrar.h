#pragma once

#include "LauncherCore/commands/HotkeyBinding.h"

#include <cstdint>
#include <functional>
#include <string>

namespace tessarine {

/// What became of a chord that was asked for.
struct HotkeyOutcome {
    enum class Kind {
        registered,
        heldByAnother, ///< some other program has it
        refused,       ///< anything else: `reason` says what
    };
    Kind kind = Kind::registered;
    std::string reason; ///< in words; empty for a registered one

    bool operator==(const HotkeyOutcome&) const = default;
};

/// Chords that reach the program wherever the keyboard is. Main thread only.
class HotkeyRegistrar {
public:
    struct Press {
        std::uint32_t id = 0;
        double at = 0; ///< seconds by the main queue's clock when the key went down
    };

    virtual ~HotkeyRegistrar() = default;

    /// Called for each press of a registered chord; set once.
    virtual void setHandler(std::function<void(const Press&)> pressed) = 0;

    /// Takes the chord for `id`, which holds none. Waits for the display's answer.
    virtual HotkeyOutcome grab(std::uint32_t id, const HotkeyBinding& binding) = 0;

    /// Gives the chord of `id` back; nothing happens when it holds none.
    virtual void release(std::uint32_t id) = 0;
};

} // namespace tessarine
