#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace tessarine {

enum class PanelKeyAction {
    preview,
    previewShift,
    secondary,
    actions,
    favorite,
    copy,
    copyField,
    settings,
    shortcuts,
    digit,
};

/// Modifiers by the names that chords use; the window says which keys of the keyboard they are.
struct KeyModifiers {
    bool command = false;
    bool option = false;
    bool shift = false;
    bool control = false;

    bool operator==(const KeyModifiers&) const = default;
};

/// One chord of the panel.
struct PanelChord {
    PanelKeyAction action;
    KeyModifiers modifiers;
    std::optional<std::uint16_t> keyCode;       ///< a virtual key code; nothing: the characters
    std::optional<std::string_view> characters; ///< what the key types without modifiers
    std::string_view label;                     ///< for the list of shortcuts
};

/// The panel's whole vocabulary of chords. Pure; any thread.
namespace PanelKeys {

/// Every chord, in the order of the list of shortcuts.
std::span<const PanelChord> chords();

/// The chord that a key press is; nothing when it is none. `characters` is what the key types
/// without modifiers; its case doesn't matter, so Caps Lock doesn't either.
const PanelChord* match(KeyModifiers modifiers, std::uint16_t keyCode, std::string_view characters);

} // namespace PanelKeys
} // namespace tessarine
