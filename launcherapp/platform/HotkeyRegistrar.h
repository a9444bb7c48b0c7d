#pragma once

#include "LauncherCore/commands/HotkeyBinding.h"
#include "launcherapp/platform/MainQueue.h"

#include <cstdint>
#include <functional>
#include <optional>
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
        Seconds at{0}; ///< by the main queue's uptime, when the key went down
    };

    struct Events {
        /// A chord was pressed; not called again for a key that is held down.
        std::function<void(const Press&)> pressed;
        /// The chords' keys are others now, as after a change of the keyboard's layout: what was
        /// taken stands for the old ones until it is taken again.
        std::function<void()> keysChanged;
    };

    virtual ~HotkeyRegistrar() = default;

    /// Set once, before the first chord.
    virtual void setEvents(Events events) = 0;

    /// Takes the chord for `id`, in place of one that it holds and that it keeps when this one is
    /// not to be had. Waits for the display's answer.
    virtual HotkeyOutcome grab(std::uint32_t id, const HotkeyBinding& binding) = 0;

    /// Gives the chord of `id` back; nothing happens when it holds none.
    virtual void release(std::uint32_t id) = 0;

    /// The chord that a press of a key makes, by the numbers that the display gives the key and
    /// what is held with it; nothing for a key that no binding can name, a modifier among them.
    virtual std::optional<HotkeyBinding> chord(std::uint32_t key, std::uint32_t state) const = 0;
};

} // namespace tessarine
