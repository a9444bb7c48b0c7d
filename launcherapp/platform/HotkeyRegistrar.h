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
        asked,         ///< the desktop asks its user first: `Events::settled` tells the answer
        heldByAnother, ///< some other program has it
        refused,       ///< anything else: `reason` says what
    };
    Kind kind = Kind::registered;
    std::string reason; ///< in words; empty for one that is registered or asked for
    /// What a desktop that chooses the keys itself calls those of a registered chord; empty where
    /// they are the ones asked for.
    std::string trigger = {};
    /// Registered, with keys that such a desktop doesn't tell; `trigger` is empty.
    bool isTriggerUnknown = false;

    bool operator==(const HotkeyOutcome&) const = default;
};

/// What a chord is for, as a desktop lists it among its shortcuts.
struct HotkeyPurpose {
    std::string name;        ///< the same at each start: what the user chose goes by it
    std::string description; ///< in words, for the user

    bool operator==(const HotkeyPurpose&) const = default;
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
        /// What became of a chord that was asked for, and again whenever that changes: the user
        /// may give it other keys, and the desktop may take it away and give it back.
        std::function<void(std::uint32_t id, const HotkeyOutcome& outcome)> settled;
        /// A sentence for the log about what may make the chords go wrong later.
        std::function<void(const std::string& problem)> problem = {};
    };

    virtual ~HotkeyRegistrar() = default;

    /// Set once, before the first chord.
    virtual void setEvents(Events events) = 0;

    /// Whether other keys are of no use in place of those that were refused: the desktop chooses
    /// them with its user, or gives none.
    virtual bool takesNoStandIns() const { return false; }

    /// Says what the next chord of `id` is for. Displays that know keys alone have no use for it.
    virtual void describe(std::uint32_t /*id*/, const HotkeyPurpose& /*purpose*/) {}

    /// Takes the chord for `id`, in place of one that it holds and that it keeps when this one is
    /// not to be had. Waits for the display's answer, but not for a user's: that one is told later.
    /// Asking for the same again asks nobody; the outcome is what is known of it.
    virtual HotkeyOutcome grab(std::uint32_t id, const HotkeyBinding& binding) = 0;

    /// Gives the chord of `id` back, or takes the wish for it back; nothing happens when it has
    /// none.
    virtual void release(std::uint32_t id) = 0;

    /// The chord that a press of a key makes, by the numbers that the display gives the key and
    /// what is held with it; nothing for a key that no binding can name, a modifier among them.
    virtual std::optional<HotkeyBinding> chord(std::uint32_t key, std::uint32_t state) const = 0;
};

} // namespace tessarine
