#include "launcherapp/platform/linux/input/typing/X11KeyMap.h"

#include "launcherapp/platform/linux/XcbOwned.h"

#include <X11/keysym.h>
#include <xcb/xcb.h>
#include <xkbcommon/xkbcommon-x11.h>

#include <algorithm>
#include <array>
#include <functional>
#include <memory>

namespace tessarine {

namespace {

struct Release {
    void operator()(xkb_context* context) const { xkb_context_unref(context); }

    void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
};

constexpr unsigned lockBit = 1; ///< of the protocol, as are the other bits
constexpr unsigned modifierBits = 8;

/// Whether a key with this symbol acts while it is down, and no longer.
bool isHeldModifier(xkb_keysym_t symbol) {
    constexpr auto others =
        std::to_array<xkb_keysym_t>({XK_ISO_Level3_Shift, XK_ISO_Level5_Shift, XK_Mode_switch});
    return (symbol >= XK_Shift_L && symbol <= XK_Control_R) ||
           (symbol >= XK_Meta_L && symbol <= XK_Hyper_R) || std::ranges::count(others, symbol) > 0;
}

/// Those that choose a level of the other keys; the rest make chords of them.
bool choosesLevel(xkb_keysym_t symbol) {
    return symbol == XK_Shift_L || symbol == XK_Shift_R || symbol == XK_ISO_Level3_Shift ||
           symbol == XK_ISO_Level5_Shift;
}

/// What a key with this symbol types; 0 for nothing.
char32_t characterOf(xkb_keysym_t symbol) {
    if (symbol == XK_Return)
        return U'\n';
    if (symbol == XK_Tab)
        return U'\t';
    // The keypad's mean something else as soon as Num Lock changes.
    if (symbol >= XK_KP_Space && symbol <= XK_KP_9)
        return 0;
    constexpr char32_t firstPrintable = 0x20;
    const char32_t character = xkb_keysym_to_utf32(symbol);
    return character < firstPrintable || character == 0x7f ? 0 : character;
}

xkb_keysym_t onlySymbol(xkb_keymap* keymap,
                        xkb_keycode_t key,
                        xkb_layout_index_t layout,
                        xkb_level_index_t level) {
    const xkb_keysym_t* symbols = nullptr;
    const int count = xkb_keymap_key_get_syms_by_level(keymap, key, layout, level, &symbols);
    return count == 1 ? symbols[0] : XKB_KEY_NoSymbol;
}

/// A key that had its meaning taken away may keep its layouts and levels.
bool meansNothing(xkb_keymap* keymap, xkb_keycode_t key) {
    for (xkb_layout_index_t layout = 0; layout < xkb_keymap_num_layouts_for_key(keymap, key);
         ++layout) {
        for (xkb_level_index_t level = 0;
             level < xkb_keymap_num_levels_for_key(keymap, key, layout);
             ++level) {
            const xkb_keysym_t* symbols = nullptr;
            if (xkb_keymap_key_get_syms_by_level(keymap, key, layout, level, &symbols) > 0)
                return false;
        }
    }
    return true;
}

using KeyCodes = std::vector<X11KeyMap::KeyCode>;

KeyCodes longestRunsFirst(const KeyCodes& ascending) {
    std::vector<KeyCodes> runs;
    for (const auto key : ascending) {
        if (runs.empty() || runs.back().back() + 1 != key)
            runs.emplace_back();
        runs.back().push_back(key);
    }
    std::ranges::stable_sort(runs, std::greater(), &KeyCodes::size);
    KeyCodes ordered;
    for (const auto& run : runs)
        ordered.insert(ordered.end(), run.begin(), run.end());
    return ordered;
}

} // namespace

std::optional<X11KeyMap> X11KeyMap::read(xcb_connection_t* connection) {
    const int isThere = xkb_x11_setup_xkb_extension(connection,
                                                    XKB_X11_MIN_MAJOR_XKB_VERSION,
                                                    XKB_X11_MIN_MINOR_XKB_VERSION,
                                                    XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS,
                                                    nullptr,
                                                    nullptr,
                                                    nullptr,
                                                    nullptr);
    const std::unique_ptr<xkb_context, Release> context(
        isThere ? xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES) : nullptr);
    const auto device = context ? xkb_x11_get_core_keyboard_device_id(connection) : -1;
    const std::unique_ptr<xkb_keymap, Release> keymap(
        device >= 0 ? xkb_x11_keymap_new_from_device(
                          context.get(), connection, device, XKB_KEYMAP_COMPILE_NO_FLAGS)
                    : nullptr);
    if (!keymap)
        return std::nullopt;
    X11KeyMap map;
    map.layouts_ = static_cast<std::uint8_t>(
        std::max<xkb_layout_index_t>(1, xkb_keymap_num_layouts(keymap.get())));
    map.readModifiers(connection, keymap.get());
    const auto* setup = xcb_get_setup(connection);
    for (unsigned key = setup->min_keycode; key <= setup->max_keycode; ++key)
        map.readKey(keymap.get(), static_cast<KeyCode>(key));
    map.spareKeys_ = longestRunsFirst(map.spareKeys_);
    return map;
}

void X11KeyMap::readModifiers(xcb_connection_t* connection, xkb_keymap* keymap) {
    const XcbOwned<xcb_get_modifier_mapping_reply_t> mapping(
        xcb_get_modifier_mapping_reply(connection, xcb_get_modifier_mapping(connection), nullptr));
    if (!mapping)
        return;
    const auto* keys = xcb_get_modifier_mapping_keycodes(mapping.get());
    const unsigned perModifier = mapping->keycodes_per_modifier;
    for (unsigned i = 0; i < modifierBits * perModifier; ++i) {
        const auto key = keys[i];
        const auto bit = i / perModifier;
        if (key == 0)
            continue;
        const auto symbol = onlySymbol(keymap, key, 0, 0);
        if (bit == lockBit || !isHeldModifier(symbol)) {
            lockKeys_.insert(key);
            continue;
        }
        modifierKeys_.insert(key);
        const bool isControl = symbol == XK_Control_L || symbol == XK_Control_R;
        if (choosesLevel(symbol) || (bit == controlBit && isControl))
            holders_.try_emplace(bit, key);
    }
}

void X11KeyMap::readKey(xkb_keymap* keymap, KeyCode key) {
    if (meansNothing(keymap, key)) {
        if (!modifierKeys_.contains(key) && !lockKeys_.contains(key))
            spareKeys_.push_back(key);
        return;
    }
    for (std::uint8_t layout = 0; layout < layouts_; ++layout)
        readLayout(keymap, key, layout);
}

void X11KeyMap::readLayout(xkb_keymap* keymap, KeyCode key, std::uint8_t layout) {
    // A key with fewer layouts than there are begins again with its first.
    const auto ofKey = layout % xkb_keymap_num_layouts_for_key(keymap, key);
    const auto levels = xkb_keymap_num_levels_for_key(keymap, key, ofKey);
    for (xkb_level_index_t level = 0; level < levels; ++level) {
        const auto character = characterOf(onlySymbol(keymap, key, ofKey, level));
        if (character == 0)
            continue;
        std::array<xkb_mod_mask_t, 16> masks{};
        const auto ways = xkb_keymap_key_get_mods_for_level(
            keymap, key, ofKey, level, masks.data(), masks.size());
        for (std::size_t i = 0; i < ways; ++i) {
            auto held = keysHolding(masks[i]);
            if (!held)
                continue;
            const auto known = strokes_.find({character, layout});
            if (known == strokes_.end() || held->size() < known->second.held.size())
                strokes_[{character, layout}] = {key, layout, *std::move(held)};
        }
    }
}

/// Nothing when one of the modifiers is on no key that only has to be held, as the locks.
std::optional<std::vector<X11KeyMap::KeyCode>>
X11KeyMap::keysHolding(std::uint32_t modifiers) const {
    std::vector<KeyCode> keys;
    for (unsigned bit = 0; modifiers >> bit != 0; ++bit) {
        if (!(modifiers >> bit & 1))
            continue;
        const auto key = keyFor(bit);
        if (!key || bit == controlBit)
            return std::nullopt;
        keys.push_back(*key);
    }
    return keys;
}

std::optional<X11KeyMap::KeyCode> X11KeyMap::keyFor(unsigned modifierBit) const {
    const auto found = holders_.find(modifierBit);
    return found == holders_.end() ? std::nullopt : std::optional(found->second);
}

std::optional<X11KeyMap::Stroke> X11KeyMap::stroke(char32_t character, std::uint8_t layout) const {
    for (unsigned i = 0; i < layouts_; ++i) {
        const auto tried = static_cast<std::uint8_t>((layout + i) % layouts_);
        if (const auto found = strokes_.find({character, tried}); found != strokes_.end())
            return found->second;
    }
    return std::nullopt;
}

X11KeyMap::KeyCode X11KeyMap::chordKey(char32_t letter, std::uint8_t layout, KeyCode usual) const {
    const auto found = stroke(letter, layout);
    return found && found->held.empty() ? found->key : usual;
}

} // namespace tessarine
