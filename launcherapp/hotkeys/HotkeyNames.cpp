#include "launcherapp/hotkeys/HotkeyNames.h"

#include "LauncherCore/commands/Chord.h"
#include "LauncherCore/commands/VirtualKeys.h"

#include <array>
#include <string_view>

namespace tessarine {

namespace {

struct Modifier {
    std::uint32_t bit;
    std::string_view text;
};

constexpr auto words = std::to_array<Modifier>({{HotkeyModifiers::command, "Super+"},
                                                {HotkeyModifiers::control, "Ctrl+"},
                                                {HotkeyModifiers::option, "Alt+"},
                                                {HotkeyModifiers::shift, "Shift+"}});

std::string modifiersInWords(const HotkeyBinding& binding) {
    std::string text;
    for (const auto& modifier : words) {
        if (binding.carbonModifiers & modifier.bit)
            text += modifier.text;
    }
    return text;
}

} // namespace

std::string HotkeyIDs::name(std::uint32_t id) {
    switch (id) {
    case panel:
        return "panel";
    case clipboard:
        return "clipboard";
    case voice:
        return "voice";
    default:
        return "command " + std::to_string(id);
    }
}

HotkeyPurpose HotkeyIDs::purpose(std::uint32_t id) {
    switch (id) {
    case panel:
        return {.name = name(id), .description = "Show or hide the panel"};
    case clipboard:
        return {.name = name(id), .description = "Show what was copied"};
    case voice:
        return {.name = name(id), .description = "Search by voice"};
    default:
        return {.name = name(id), .description = name(id)};
    }
}

std::string HotkeyNames::display(const HotkeyBinding& binding) {
    return Chord::of(binding).glyphs() + VirtualKeys::label(binding.keyCode);
}

std::string HotkeyNames::onKeyboard(const HotkeyBinding& binding) {
    return modifiersInWords(binding) + VirtualKeys::printed(binding.keyCode);
}

} // namespace tessarine
