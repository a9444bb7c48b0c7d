#include "launcherapp/query/PanelKeys.h"

#include "LauncherCore/commands/VirtualKeys.h"
#include "LauncherCore/text/Folding.h"

#include <algorithm>
#include <array>

namespace tessarine {

namespace {

constexpr KeyModifiers command{.command = true};
constexpr std::string_view quickLook = "Quick Look the selected result";
constexpr std::string_view runDigit = "Run result 1 to 9";

constexpr PanelChord
chord(PanelKeyAction action, std::string_view characters, std::string_view label) {
    return {action, command, std::nullopt, characters, label};
}

constexpr auto table = std::to_array<PanelChord>({
    {PanelKeyAction::previewShift, {.shift = true}, VirtualKeys::space, std::nullopt, quickLook},
    chord(PanelKeyAction::preview, "y", quickLook),
    {PanelKeyAction::secondary,
     command,
     VirtualKeys::enter,
     std::nullopt,
     "Run the selected result's second action"},
    chord(PanelKeyAction::actions, "k", "Show actions for the selected result"),
    chord(PanelKeyAction::favorite, "d", "Favorite or unfavorite the selected result"),
    chord(PanelKeyAction::copy,
          "c",
          "Copy the selected result (in the clipboard, move it to the top)"),
    {PanelKeyAction::copyField,
     {.command = true, .control = true},
     std::nullopt,
     "c",
     "Copy the selected contact field"},
    chord(PanelKeyAction::settings, ",", "Open Settings"),
    chord(PanelKeyAction::shortcuts, "/", "Show keyboard shortcuts"),
    chord(PanelKeyAction::digit, "1", runDigit),
    chord(PanelKeyAction::digit, "2", runDigit),
    chord(PanelKeyAction::digit, "3", runDigit),
    chord(PanelKeyAction::digit, "4", runDigit),
    chord(PanelKeyAction::digit, "5", runDigit),
    chord(PanelKeyAction::digit, "6", runDigit),
    chord(PanelKeyAction::digit, "7", runDigit),
    chord(PanelKeyAction::digit, "8", runDigit),
    chord(PanelKeyAction::digit, "9", runDigit),
});

} // namespace

std::span<const PanelChord> PanelKeys::chords() {
    return table;
}

const PanelChord*
PanelKeys::match(KeyModifiers modifiers, std::uint16_t keyCode, std::string_view characters) {
    const auto lowered = Folding::lowercase(characters);
    const auto found = std::ranges::find_if(table, [&](const PanelChord& chord) {
        return chord.modifiers == modifiers &&
               (chord.keyCode ? *chord.keyCode == keyCode : *chord.characters == lowered);
    });
    return found == table.end() ? nullptr : &*found;
}

} // namespace tessarine
