#include "launcherapp/platform/linux/input/X11Keyboard.h"

#include "LauncherCore/commands/HotkeyBinding.h"
#include "launcherapp/platform/linux/XcbOwned.h"

#include <X11/keysym.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <array>

namespace tessarine {

namespace {

struct Key {
    std::uint32_t virtualKey;
    std::uint32_t symbol;   ///< what it types without modifiers
    std::uint8_t usKeyCode; ///< where a US keyboard has it, as the kernel's drivers number keys
};

// clang-format off
constexpr auto keys = std::to_array<Key>({
    {0, XK_a, 38}, {1, XK_s, 39}, {2, XK_d, 40}, {3, XK_f, 41}, {4, XK_h, 43}, {5, XK_g, 42},
    {6, XK_z, 52}, {7, XK_x, 53}, {8, XK_c, 54}, {9, XK_v, 55}, {11, XK_b, 56}, {12, XK_q, 24},
    {13, XK_w, 25}, {14, XK_e, 26}, {15, XK_r, 27}, {16, XK_y, 29}, {17, XK_t, 28},
    {18, XK_1, 10}, {19, XK_2, 11}, {20, XK_3, 12}, {21, XK_4, 13}, {22, XK_6, 15},
    {23, XK_5, 14}, {24, XK_equal, 21}, {25, XK_9, 18}, {26, XK_7, 16}, {27, XK_minus, 20},
    {28, XK_8, 17}, {29, XK_0, 19}, {30, XK_bracketright, 35}, {31, XK_o, 32}, {32, XK_u, 30},
    {33, XK_bracketleft, 34}, {34, XK_i, 31}, {35, XK_p, 33}, {36, XK_Return, 36},
    {37, XK_l, 46}, {38, XK_j, 44}, {39, XK_apostrophe, 48}, {40, XK_k, 45},
    {41, XK_semicolon, 47}, {42, XK_backslash, 51}, {43, XK_comma, 59}, {44, XK_slash, 61},
    {45, XK_n, 57}, {46, XK_m, 58}, {47, XK_period, 60}, {48, XK_Tab, 23}, {49, XK_space, 65},
    {50, XK_grave, 49}, {51, XK_BackSpace, 22}, {53, XK_Escape, 9}, {64, XK_F17, 195},
    {79, XK_F18, 196}, {80, XK_F19, 197}, {90, XK_F20, 198}, {96, XK_F5, 71}, {97, XK_F6, 72},
    {98, XK_F7, 73}, {99, XK_F3, 69}, {100, XK_F8, 74}, {101, XK_F9, 75}, {103, XK_F11, 95},
    {105, XK_F13, 191}, {106, XK_F16, 194}, {107, XK_F14, 192}, {109, XK_F10, 76},
    {111, XK_F12, 96}, {113, XK_F15, 193}, {115, XK_Home, 110}, {116, XK_Prior, 112},
    {118, XK_F4, 70}, {119, XK_End, 115}, {120, XK_F2, 68}, {121, XK_Next, 117},
    {122, XK_F1, 67}, {123, XK_Left, 113}, {124, XK_Right, 114}, {125, XK_Down, 116},
    {126, XK_Up, 111},
});
// clang-format on

/// The columns of the core keyboard mapping that hold what a key types without modifiers: that of
/// the first layout, and that of the second.
constexpr std::array<std::size_t, 2> plainColumns{0, 2};
constexpr unsigned lastKeyCode = 255; ///< of the protocol

} // namespace

X11Keyboard X11Keyboard::read(xcb_connection_t* connection) {
    const auto* setup = xcb_get_setup(connection);
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const auto mappingCookie = xcb_get_keyboard_mapping(connection, setup->min_keycode, count);
    const auto modifierCookie = xcb_get_modifier_mapping(connection);
    const XcbOwned<xcb_get_keyboard_mapping_reply_t> mapping(
        xcb_get_keyboard_mapping_reply(connection, mappingCookie, nullptr));
    const XcbOwned<xcb_get_modifier_mapping_reply_t> modifiers(
        xcb_get_modifier_mapping_reply(connection, modifierCookie, nullptr));
    X11Keyboard keyboard;
    if (!mapping || !modifiers || mapping->keysyms_per_keycode == 0)
        return keyboard; // the display is lost
    keyboard.firstKeyCode_ = setup->min_keycode;
    keyboard.symbolsPerKey_ = mapping->keysyms_per_keycode;
    const auto* typed = xcb_get_keyboard_mapping_keysyms(mapping.get());
    keyboard.symbols_.assign(typed, typed + xcb_get_keyboard_mapping_keysyms_length(mapping.get()));

    const auto* keyCodes = xcb_get_modifier_mapping_keycodes(modifiers.get());
    const std::size_t perModifier = modifiers->keycodes_per_modifier;
    const auto bitOf = [&](std::initializer_list<std::uint32_t> symbols) -> std::uint16_t {
        for (std::size_t i = XCB_MAP_INDEX_1 * perModifier; i < 8 * perModifier; ++i) {
            const auto ofKey = keyboard.symbolsOf(keyCodes[i]);
            if (std::ranges::find_first_of(ofKey, symbols) != ofKey.end())
                return static_cast<std::uint16_t>(1u << (i / perModifier));
        }
        return 0;
    };
    keyboard.alt_ = bitOf({XK_Alt_L, XK_Alt_R});
    keyboard.super_ = bitOf({XK_Super_L, XK_Super_R});
    keyboard.locks_ = static_cast<std::uint16_t>(XCB_MOD_MASK_LOCK | bitOf({XK_Num_Lock}) |
                                                 bitOf({XK_Scroll_Lock}));
    return keyboard;
}

/// Empty for key code 0, which stands for no key.
std::span<const std::uint32_t> X11Keyboard::symbolsOf(std::uint8_t keyCode) const {
    const auto first = static_cast<std::size_t>(keyCode - firstKeyCode_) * symbolsPerKey_;
    if (keyCode < firstKeyCode_ || first + symbolsPerKey_ > symbols_.size())
        return {};
    return std::span(symbols_).subspan(first, symbolsPerKey_);
}

std::vector<std::uint8_t> X11Keyboard::keyCodes(std::uint32_t virtualKey) const {
    const auto key = std::ranges::find(keys, virtualKey, &Key::virtualKey);
    if (key == keys.end())
        return {};
    for (const auto column : plainColumns) {
        std::vector<std::uint8_t> found;
        for (unsigned keyCode = firstKeyCode_; keyCode <= lastKeyCode; ++keyCode) {
            const auto typed = symbolsOf(static_cast<std::uint8_t>(keyCode));
            if (column < typed.size() && typed[column] == key->symbol)
                found.push_back(static_cast<std::uint8_t>(keyCode));
        }
        if (!found.empty())
            return found;
    }
    // A layout of another script, or one that types it only with Shift: the place is left.
    return {key->usKeyCode};
}

std::array<X11Keyboard::Modifier, 4> X11Keyboard::modifiers() const {
    return {Modifier{HotkeyModifiers::command, super_},
            Modifier{HotkeyModifiers::option, alt_},
            Modifier{HotkeyModifiers::shift, XCB_MOD_MASK_SHIFT},
            Modifier{HotkeyModifiers::control, XCB_MOD_MASK_CONTROL}};
}

std::optional<std::uint16_t> X11Keyboard::modifiers(std::uint32_t carbonModifiers) const {
    std::uint16_t bits = 0;
    for (const auto& [carbon, bit] : modifiers()) {
        if (!(carbonModifiers & carbon))
            continue;
        if (bit == 0)
            return std::nullopt;
        bits = static_cast<std::uint16_t>(bits | bit);
    }
    return bits;
}

std::optional<HotkeyBinding> X11Keyboard::binding(std::uint32_t keyCode,
                                                  std::uint32_t state) const {
    if (keyCode > lastKeyCode)
        return std::nullopt;
    std::uint32_t held = 0;
    for (const auto& [carbon, bit] : modifiers()) {
        if (state & bit)
            held |= carbon;
    }
    // Asked the way that a grab goes, so that what is recorded here is the key that is grabbed.
    for (const auto& key : keys) {
        if (std::ranges::count(keyCodes(key.virtualKey), keyCode) > 0)
            return HotkeyBinding{.keyCode = key.virtualKey, .carbonModifiers = held};
    }
    return std::nullopt;
}

std::vector<std::uint16_t> X11Keyboard::lockStates() const {
    std::vector<std::uint16_t> states{0};
    for (unsigned bit = 1; bit <= XCB_MOD_MASK_5; bit <<= 1) {
        if (!(locks_ & bit))
            continue;
        const auto before = states;
        for (const auto state : before)
            states.push_back(static_cast<std::uint16_t>(state | bit));
    }
    return states;
}

} // namespace tessarine
