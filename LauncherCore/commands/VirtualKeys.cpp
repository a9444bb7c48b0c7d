#include "LauncherCore/commands/VirtualKeys.h"

#include <algorithm>
#include <array>

namespace tessarine {

namespace {

struct Key {
    std::string_view name;
    std::uint32_t code;
};

/// Codes count the places on a keyboard; the names are those of a US layout.
// clang-format off
constexpr auto keys = std::to_array<Key>({
    {"a", 0}, {"s", 1}, {"d", 2}, {"f", 3}, {"h", 4}, {"g", 5}, {"z", 6}, {"x", 7}, {"c", 8},
    {"v", VirtualKeys::v}, {"b", 11}, {"q", 12}, {"w", 13}, {"e", 14}, {"r", 15}, {"y", 16}, {"t", 17},
    {"1", 18}, {"2", 19}, {"3", 20}, {"4", 21}, {"6", 22}, {"5", 23}, {"=", 24}, {"9", 25},
    {"7", 26}, {"-", 27}, {"8", 28}, {"0", 29}, {"]", 30}, {"o", 31}, {"u", 32}, {"[", 33},
    {"i", 34}, {"p", 35}, {"l", 37}, {"j", 38}, {"'", 39}, {"k", 40}, {";", 41}, {"\\", 42},
    {",", 43}, {"/", 44}, {"n", 45}, {"m", 46}, {".", 47}, {"`", 50}, {"space", VirtualKeys::space},
    {"return", VirtualKeys::enter}, {"enter", VirtualKeys::enter}, {"tab", 48},
    {"escape", VirtualKeys::escape}, {"esc", VirtualKeys::escape},
    {"delete", VirtualKeys::backspace}, {"backspace", VirtualKeys::backspace}, {"left", 123}, {"right", 124}, {"down", 125}, {"up", 126}, {"home", 115},
    {"end", 119}, {"pageup", 116}, {"pagedown", 121}, {"f1", 122}, {"f2", 120}, {"f3", 99},
    {"f4", 118}, {"f5", 96}, {"f6", 97}, {"f7", 98}, {"f8", 100}, {"f9", 101}, {"f10", 109},
    {"f11", 103}, {"f12", 111}, {"f13", 105}, {"f14", 107}, {"f15", 113}, {"f16", 106},
    {"f17", 64}, {"f18", 79}, {"f19", 80}, {"f20", 90},
});
// clang-format on

} // namespace

std::optional<std::uint32_t> VirtualKeys::code(std::string_view name) {
    const auto found = std::ranges::find(keys, name, &Key::name);
    return found == keys.end() ? std::nullopt : std::optional(found->code);
}

std::optional<std::string_view> VirtualKeys::name(std::uint32_t code) {
    const auto found = std::ranges::find(keys, code, &Key::code);
    return found == keys.end() ? std::nullopt : std::optional(found->name);
}

std::string VirtualKeys::label(std::uint32_t code) {
    const auto named = name(code);
    if (!named)
        return "key " + std::to_string(code);
    std::string text(*named);
    if (text.front() >= 'a' && text.front() <= 'z')
        text.front() = static_cast<char>(text.front() - 'a' + 'A');
    return text;
}

std::string VirtualKeys::printed(std::uint32_t code) {
    const auto named = name(code);
    if (named == "pageup")
        return "Page Up";
    if (named == "pagedown")
        return "Page Down";
    return named == "delete" ? "Backspace" : label(code);
}

bool VirtualKeys::isFunctionKey(std::uint32_t code) {
    const auto named = name(code);
    return named && named->size() > 1 && named->front() == 'f';
}

} // namespace tessarine
