#pragma once

#include "LauncherCore/commands/HotkeyBinding.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tessarine {

/// A global hotkey as people write it. Pure; any thread.
struct Chord {
    std::uint32_t keyCode = 0; ///< a virtual key code
    bool command = false;
    bool option = false;
    bool shift = false;
    bool control = false;

    bool operator==(const Chord&) const = default;

    bool hasModifier() const { return command || option || shift || control; }

    /// Of "cmd+shift+c", "⌘⇧c", "Cmd - Shift - C" and their like; nothing when a word of it is
    /// neither a modifier's nor a key's.
    static std::optional<Chord> parse(std::string_view text);

    static Chord of(const HotkeyBinding& binding);

    /// The one spelling of a chord: "ctrl+alt+shift+cmd+c" of what it holds; "key200" for a key
    /// without a name.
    std::string text() const;

    /// "⌃⌥⇧⌘" of what it holds.
    std::string glyphs() const;

    /// The glyphs and the key's name with a capital: "⌘C", "⌥Space"; "⌘Key200" for one without.
    std::string display() const;

    /// As the display's registrar takes it.
    HotkeyBinding binding() const;
};

} // namespace tessarine
