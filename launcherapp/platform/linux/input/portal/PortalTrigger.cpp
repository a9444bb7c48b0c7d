#include "launcherapp/platform/linux/input/portal/PortalTrigger.h"

#include "LauncherCore/commands/HotkeyBinding.h"
#include "LauncherCore/commands/VirtualKeys.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace tessarine {

namespace {

struct Modifier {
    std::uint32_t bit;
    std::string_view text;
};

constexpr auto modifiers = std::to_array<Modifier>({{HotkeyModifiers::control, "CTRL+"},
                                                    {HotkeyModifiers::option, "ALT+"},
                                                    {HotkeyModifiers::shift, "SHIFT+"},
                                                    {HotkeyModifiers::command, "LOGO+"}});

struct Key {
    std::string_view name;   ///< of VirtualKeys
    std::string_view symbol; ///< of the X keyboard extension
};

/// Those that are called otherwise; letters, digits and the space bar have one name.
constexpr auto keys =
    std::to_array<Key>({{"=", "equal"},        {"-", "minus"},           {"]", "bracketright"},
                        {"[", "bracketleft"},  {"'", "apostrophe"},      {";", "semicolon"},
                        {"\\", "backslash"},   {",", "comma"},           {"/", "slash"},
                        {".", "period"},       {"`", "grave"},           {"return", "Return"},
                        {"tab", "Tab"},        {"escape", "Escape"},     {"delete", "BackSpace"},
                        {"left", "Left"},      {"right", "Right"},       {"down", "Down"},
                        {"up", "Up"},          {"home", "Home"},         {"end", "End"},
                        {"pageup", "Page_Up"}, {"pagedown", "Page_Down"}});

} // namespace

std::optional<std::string> PortalTrigger::of(const HotkeyBinding& binding) {
    const auto name = VirtualKeys::name(binding.keyCode);
    if (!name)
        return std::nullopt;
    std::string text;
    for (const auto& [bit, word] : modifiers) {
        if (binding.carbonModifiers & bit)
            text += word;
    }
    const auto key = std::ranges::find(keys, *name, &Key::name);
    if (key != keys.end())
        return text.append(key->symbol);
    return VirtualKeys::isFunctionKey(binding.keyCode) ? text + 'F' + std::string(name->substr(1))
                                                       : text.append(*name);
}

} // namespace tessarine
