#include "launcherapp/platform/linux/input/typing/TextKeymap.h"

#include <fmt/format.h>
#include <linux/input-event-codes.h>
#include <xkbcommon/xkbcommon.h>

#include <cstdlib>
#include <memory>
#include <vector>

namespace tessarine {

namespace {

struct Free {
    void operator()(xkb_context* context) const { xkb_context_unref(context); }

    void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }

    void operator()(char* text) const { std::free(text); }
};

/// A key by XKB's name for its place, and the kernel's code.
struct Place {
    std::string name;
    std::uint32_t key = 0;
};

std::vector<Place> characterKeys() {
    const struct {
        const char* row;
        std::uint32_t first;
        std::uint32_t count;
    } rows[] = {{"AE", KEY_1, 12}, {"AD", KEY_Q, 12}, {"AC", KEY_A, 11}, {"AB", KEY_Z, 10}};

    std::vector<Place> places;
    for (const auto& [row, first, count] : rows) {
        for (std::uint32_t i = 0; i < count; ++i)
            places.push_back({fmt::format("{}{:02}", row, i + 1), first + i});
    }
    places.push_back({"TLDE", KEY_GRAVE});
    places.push_back({"BKSL", KEY_BACKSLASH});
    places.push_back({"LSGT", KEY_102ND});
    return places;
}

/// Resolved, so that no program needs the data it is made of; nothing when that is missing.
std::optional<std::string> compiled(const std::string& symbols) {
    const auto source = "xkb_keymap { xkb_keycodes { include \"evdev+aliases(qwerty)\" }; "
                        "xkb_types { include \"complete\" }; xkb_compat { include \"complete\" }; "
                        "xkb_symbols { " +
                        symbols + " }; };";
    const std::unique_ptr<xkb_context, Free> context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    if (!context)
        return std::nullopt;
    const std::unique_ptr<xkb_keymap, Free> keymap(xkb_keymap_new_from_string(
        context.get(), source.c_str(), XKB_KEYMAP_FORMAT_TEXT_V1, XKB_KEYMAP_COMPILE_NO_FLAGS));
    const std::unique_ptr<char, Free> text(
        keymap ? xkb_keymap_get_as_string(keymap.get(), XKB_KEYMAP_FORMAT_TEXT_V1) : nullptr);
    return text ? std::optional<std::string>(text.get()) : std::nullopt;
}

} // namespace

std::optional<TextKeymap> TextKeymap::usual() {
    auto text = compiled("include \"pc+us\"");
    if (!text)
        return std::nullopt;
    TextKeymap keymap;
    keymap.text_ = *std::move(text);
    return keymap;
}

std::optional<TextKeymap> TextKeymap::forBeginning(std::u32string_view text) {
    static const auto places = characterKeys();
    TextKeymap keymap;
    keymap.keys_ = {{U'\n', KEY_ENTER}, {U'\t', KEY_TAB}, {U' ', KEY_SPACE}};
    auto place = places.begin();
    std::string symbols = "include \"pc\" key <SPCE> { [ space ] }; ";
    for (const auto character : text) {
        if (!keymap.keys_.contains(character)) {
            if (place == places.end())
                break;
            keymap.keys_[character] = place->key;
            symbols += fmt::format("replace key <{}> {{ [ U{:04X} ] }}; ",
                                   place->name,
                                   static_cast<std::uint32_t>(character));
            ++place;
        }
        ++keymap.length_;
    }
    auto whole = compiled(symbols);
    if (!whole)
        return std::nullopt;
    keymap.text_ = *std::move(whole);
    return keymap;
}

} // namespace tessarine
