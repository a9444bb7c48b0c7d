#pragma once

#include "LauncherCore/commands/HotkeyBinding.h"
#include "launcherapp/hotkeys/HotkeyNames.h"
#include "launcherapp/platform/HotkeyRegistrar.h"
#include "launcherapp/platform/Observers.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tessarine {

class Diagnostics;
class RivalLaunchers;

/// The chords that summon the program from anywhere, by whom they are for. Main thread only.
class Hotkey {
public:
    struct Services {
        HotkeyRegistrar& registrar;
        const RivalLaunchers& rivals; ///< named where a chord turns out to be another's
        Diagnostics& diagnostics;
    };

    explicit Hotkey(Services services);
    Hotkey(const Hotkey&) = delete;
    Hotkey& operator=(const Hotkey&) = delete;

    /// Says what the chord of `id` is for, before it is asked for: the desktop may list it to the
    /// user. The program's own need none.
    void describe(std::uint32_t id, HotkeyPurpose purpose);

    /// Takes the chord for `id`, in place of one it has. An absent action keeps the present one.
    /// False when the desktop refuses; `status` then says why, and `id` holds no chord. True also
    /// while the desktop asks its user: `isAsked`.
    bool add(const HotkeyBinding& binding,
             std::uint32_t id,
             std::optional<std::function<void()>> action);

    /// Takes the chord for `id` where the desktop grants it. On a refusal everything stays as it
    /// is: false, and `id` keeps the chord that it holds.
    bool addIfFree(const HotkeyBinding& binding, std::uint32_t id);

    /// Gives the chord back and forgets the action; nothing happens for an unknown id.
    void remove(std::uint32_t id);

    /// Takes every chord again, in ascending order of id, and logs how that went. One that is lost
    /// by it is asked for the next time too.
    std::map<std::uint32_t, bool> reassertAll(std::string_view reason);

    /// One line for the settings and the doctor; "not registered" for an unknown id.
    std::string status(std::uint32_t id = HotkeyIDs::panel) const;

    /// The same line for people: with the names of their keyboard's keys.
    std::string statusInWords(std::uint32_t id = HotkeyIDs::panel) const;

    /// The chord that `id` holds; nothing while it holds none or the desktop is still asked. On a
    /// desktop that chooses the keys it is what was asked for: `keysInWords` says what it became.
    std::optional<HotkeyBinding> binding(std::uint32_t id) const;

    /// The keys that `id` is summoned by, for people: "Super+Space", or what the desktop calls
    /// them, or that it doesn't tell; nothing while it holds none.
    std::optional<std::string> keysInWords(std::uint32_t id = HotkeyIDs::panel) const;

    /// The chord that `id` holds or that the desktop is asked for; nothing for neither.
    std::optional<HotkeyBinding> claim(std::uint32_t id) const;

    /// Whether the desktop has yet to say whether `id` gets its chord.
    bool isAsked(std::uint32_t id = HotkeyIDs::panel) const;

    /// Whether another chord is no way out of a refusal.
    bool takesNoStandIns() const { return services_.registrar.takesNoStandIns(); }

    /// When the key of the last press handled went down, by the main queue's uptime; nothing
    /// before the first.
    std::optional<Seconds> lastPressEventTime() const { return lastPressEventTime_; }

    /// A key of the desktop's own called instead of a chord, at that time: the last press handled.
    void notePress(Seconds at) { lastPressEventTime_ = at; }

    /// Calls `changed` after each change of a status.
    Subscription onChange(std::function<void()> changed) {
        return statusChanges_.add(std::move(changed));
    }

    /// Calls `changed` after the keyboard's change of layout, when the chords have been taken
    /// again.
    Subscription onKeysChanged(std::function<void()> changed) {
        return keysChanges_.add(std::move(changed));
    }

    /// While the subscription lasts, a press of a chord runs no action but is told here: so a field
    /// that records chords can be given one that is taken.
    Subscription divert(std::function<void(const HotkeyBinding&)> pressed);

private:
    struct Status {
        std::string line;
        std::string inWords;
    };

    /// A chord that is ours, or that the desktop is asked for.
    struct Hold {
        HotkeyOutcome::Kind kind = HotkeyOutcome::Kind::registered;
        // See HotkeyOutcome.
        std::string trigger;
        bool isTriggerUnknown = false;
    };

    void pressed(const HotkeyRegistrar::Press& press);
    void settled(std::uint32_t id, const HotkeyOutcome& outcome);
    bool take(const HotkeyBinding& binding, std::uint32_t id);
    void letGo(std::uint32_t id);
    HotkeyOutcome grab(const HotkeyBinding& binding, std::uint32_t id);
    void hold(const HotkeyBinding& binding, std::uint32_t id, const HotkeyOutcome& outcome);
    Status refusal(const HotkeyBinding& binding, const HotkeyOutcome& outcome) const;
    std::string suspects() const;

    Services services_;
    std::map<std::uint32_t, std::function<void()>> actions_;
    std::map<std::uint32_t, HotkeyBinding> bindings_; ///< those to take again at a reassert
    std::map<std::uint32_t, Hold> held_;              ///< which of them are ours now, or may be
    std::map<std::uint32_t, HotkeyPurpose> purposes_; ///< of those that are not the program's own
    std::map<std::uint32_t, Status> statuses_;
    std::optional<Seconds> lastPressEventTime_;
    Observers<> statusChanges_;
    Observers<> keysChanges_;
    Observers<HotkeyBinding> diversions_;
    std::shared_ptr<int> diverting_ = std::make_shared<int>(0); ///< how many want the presses
};

} // namespace tessarine
