#include "launcherapp/platform/linux/accessibility/PressableThings.h"

#include "LauncherCore/text/Folding.h"

#include <atspi/atspi-constants.h>

#include <algorithm>
#include <array>

namespace tessarine::PressableThings {

namespace {

constexpr std::array pressableRoles{
    ATSPI_ROLE_PUSH_BUTTON,
    ATSPI_ROLE_PUSH_BUTTON_MENU,
    ATSPI_ROLE_TOGGLE_BUTTON,
    ATSPI_ROLE_CHECK_BOX,
    ATSPI_ROLE_RADIO_BUTTON,
    ATSPI_ROLE_MENU,
    ATSPI_ROLE_MENU_ITEM,
    ATSPI_ROLE_CHECK_MENU_ITEM,
    ATSPI_ROLE_RADIO_MENU_ITEM,
    ATSPI_ROLE_TEAROFF_MENU_ITEM,
    ATSPI_ROLE_LINK,
    ATSPI_ROLE_PAGE_TAB,
    ATSPI_ROLE_LIST_ITEM,
    ATSPI_ROLE_TREE_ITEM,
    ATSPI_ROLE_TABLE_CELL,
    ATSPI_ROLE_ICON,
    ATSPI_ROLE_COMBO_BOX,
};

/// What toolkits call a press, the plainest first.
constexpr std::array<std::string_view, 6> pressNames{
    "press", "click", "activate", "toggle", "jump", "open"};

/// These only move the keyboard, the view or a value.
constexpr std::array<std::string_view, 10> otherActions{"setfocus",
                                                        "focus",
                                                        "showmenu",
                                                        "increase",
                                                        "decrease",
                                                        "scrollup",
                                                        "scrolldown",
                                                        "scrollleft",
                                                        "scrollright",
                                                        "clickancestor"};

/// States come as the bits of 32-bit words, the lowest first.
bool has(std::span<const std::uint32_t> states, AtspiStateType state) {
    const auto bit = static_cast<std::size_t>(state);
    return bit / 32 < states.size() && ((states[bit / 32] >> (bit % 32)) & 1U) != 0;
}

/// A doubled mark stands for itself, as does one before a blank or at the end.
std::string withoutMnemonic(std::string_view text, char mark) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == mark && i + 1 < text.size() && text[i + 1] != ' ')
            ++i;
        plain += text[i];
    }
    return plain;
}

std::string plainName(std::string_view text) {
    return withoutMnemonic(withoutMnemonic(text, '_'), '&');
}

} // namespace

bool isPressable(std::int64_t role) {
    return std::ranges::count(pressableRoles, role) > 0;
}

bool isOnScreen(std::span<const std::uint32_t> states) {
    return has(states, ATSPI_STATE_SHOWING) && has(states, ATSPI_STATE_VISIBLE);
}

bool isEnabled(std::span<const std::uint32_t> states) {
    return has(states, ATSPI_STATE_ENABLED) || has(states, ATSPI_STATE_SENSITIVE);
}

Likeness likeness(std::string_view text, std::string_view name) {
    text = Folding::trimmed(text);
    name = Folding::trimmed(name);
    if (text.empty() || name.empty())
        return Likeness::none;
    if (Folding::equalIgnoringCase(text, name))
        return Likeness::same;
    return Folding::equalIgnoringCase(plainName(text), plainName(name)) ? Likeness::butForMarks
                                                                        : Likeness::none;
}

std::optional<std::size_t> pressAction(std::span<const std::string> actions) {
    const auto is = [&](std::size_t index, std::string_view name) {
        return Folding::equalIgnoringCase(actions[index], name);
    };
    for (const auto& name : pressNames) {
        for (std::size_t i = 0; i < actions.size(); ++i) {
            if (is(i, name))
                return i;
        }
    }
    if (actions.size() == 1 && actions.front().empty())
        return 0;
    for (std::size_t i = 0; i < actions.size(); ++i) {
        if (!actions[i].empty() &&
            std::ranges::none_of(otherActions, [&](auto name) { return is(i, name); }))
            return i;
    }
    return std::nullopt;
}

} // namespace tessarine::PressableThings
