#pragma once

#include "LauncherCore/commands/HotkeyBinding.h"
#include "launcherapp/platform/HotkeyRegistrar.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace tessarine {

class Diagnostics;

/// Who a chord is for.
namespace HotkeyIDs {
inline constexpr std::uint32_t panel = 1;
inline constexpr std::uint32_t clipboard = 2;
inline constexpr std::uint32_t voice = 3;
inline constexpr std::uint32_t firstCommand = 4; ///< and above: commands of the user's

/// "panel", "clipboard", "voice" or "command 17".
std::string name(std::uint32_t id);
} // namespace HotkeyIDs

/// The chord as it is shown: "⌃⌥⇧⌘" for what it holds, in that order, and the key's label;
/// "key 200" for a key without one.
std::string display(const HotkeyBinding& binding);

/// The chords that summon the program from anywhere, by whom they are for. Main thread only.
class Hotkey {
public:
    Hotkey(HotkeyRegistrar& registrar, Diagnostics& diagnostics);
    Hotkey(const Hotkey&) = delete;
    Hotkey& operator=(const Hotkey&) = delete;

    /// Takes the chord for `id`, in place of one it has. An absent action keeps the present one.
    /// False when the desktop refuses; `status` then says why.
    bool add(const HotkeyBinding& binding,
             std::uint32_t id,
             std::optional<std::function<void()>> action);
    void remove(std::uint32_t id);

    /// Takes every chord again, in ascending order of id, and logs how that went.
    std::map<std::uint32_t, bool> reassertAll(std::string_view reason);

    /// One line for the settings and the doctor; "not registered" for an unknown id.
    std::string status(std::uint32_t id = HotkeyIDs::panel) const;

    /// The chord that `id` holds; nothing while it holds none.
    std::optional<HotkeyBinding> binding(std::uint32_t id) const;

    /// When the key of the last press handled went down, in seconds by the main queue's clock;
    /// nothing before the first.
    std::optional<double> lastPressEventTime() const { return lastPressEventTime_; }

private:
    HotkeyRegistrar& registrar_;
    Diagnostics& diagnostics_;
    std::map<std::uint32_t, std::function<void()>> actions_;
    std::map<std::uint32_t, HotkeyBinding> bindings_;
    std::map<std::uint32_t, std::string> statuses_;
    std::optional<double> lastPressEventTime_;
};

} // namespace tessarine
