#include "launcherapp/platform/linux/input/typing/X11TestKeys.h"

#include "launcherapp/platform/linux/XcbOwned.h"
#include "launcherapp/platform/linux/x11/X11Extension.h"

#include <xcb/xcb.h>
#include <xcb/xtest.h>
// One of its records has a field of this name.
#define explicit isExplicit
#include <xcb/xkb.h>
#undef explicit

namespace tessarine {

namespace {

constexpr std::uint16_t coreKeyboard = XCB_XKB_ID_USE_CORE_KBD;
constexpr std::uint8_t allModifiers = 0xff;
/// Without Shift and with it.
constexpr std::uint8_t symbolsPerKey = 2;

} // namespace

bool X11TestKeys::areThere() const {
    if (xcb_connection_has_error(connection_) != 0)
        return false;
    xcb_prefetch_extension_data(connection_, &xcb_test_id);
    if (!x11Extension(connection_, xcb_xkb_id) || !x11Extension(connection_, xcb_test_id))
        return false;
    const XcbOwned<xcb_test_get_version_reply_t> version(xcb_test_get_version_reply(
        connection_,
        xcb_test_get_version(connection_, XCB_TEST_MAJOR_VERSION, XCB_TEST_MINOR_VERSION),
        nullptr));
    const XcbOwned<xcb_xkb_use_extension_reply_t> keyboard(xcb_xkb_use_extension_reply(
        connection_,
        xcb_xkb_use_extension(connection_, XCB_XKB_MAJOR_VERSION, XCB_XKB_MINOR_VERSION),
        nullptr));
    return version && keyboard && keyboard->supported;
}

void X11TestKeys::press(KeyCode key) const {
    xcb_test_fake_input(
        connection_, XCB_KEY_PRESS, key, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
}

void X11TestKeys::release(KeyCode key) const {
    xcb_test_fake_input(
        connection_, XCB_KEY_RELEASE, key, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
}

void X11TestKeys::tap(KeyCode key) const {
    press(key);
    release(key);
}

std::vector<X11TestKeys::KeyCode> X11TestKeys::down() const {
    const XcbOwned<xcb_query_keymap_reply_t> reply(
        xcb_query_keymap_reply(connection_, xcb_query_keymap(connection_), nullptr));
    std::vector<KeyCode> keys;
    for (unsigned key = 0; reply && key < 8 * sizeof reply->keys; ++key) {
        if (reply->keys[key / 8] & (1u << (key % 8)))
            keys.push_back(static_cast<KeyCode>(key));
    }
    return keys;
}

X11TestKeys::Locks X11TestKeys::locks() const {
    const XcbOwned<xcb_xkb_get_state_reply_t> state(xcb_xkb_get_state_reply(
        connection_, xcb_xkb_get_state(connection_, coreKeyboard), nullptr));
    return state ? Locks{.modifiers = state->lockedMods, .layout = state->lockedGroup} : Locks{};
}

void X11TestKeys::setLocks(Locks locks) const {
    xcb_xkb_latch_lock_state(connection_,
                             coreKeyboard,
                             allModifiers,
                             locks.modifiers,
                             1,
                             locks.layout,
                             allModifiers,
                             1,
                             0);
}

void X11TestKeys::setMeanings(std::span<const Meaning> meanings) const {
    // Neighbouring keys by one request, since each request costs every program a reading.
    for (std::size_t first = 0; first < meanings.size();) {
        std::vector<xcb_keysym_t> symbols;
        auto end = first;
        for (; end < meanings.size() && meanings[end].key == meanings[first].key + (end - first);
             ++end)
            symbols.insert(symbols.end(), symbolsPerKey, meanings[end].symbol);
        xcb_change_keyboard_mapping(connection_,
                                    static_cast<std::uint8_t>(end - first),
                                    meanings[first].key,
                                    symbolsPerKey,
                                    symbols.data());
        first = end;
    }
}

void X11TestKeys::clearMeanings(std::span<const Meaning> meanings) const {
    std::vector<Meaning> ours;
    for (const auto& meaning : meanings) {
        const XcbOwned<xcb_get_keyboard_mapping_reply_t> now(xcb_get_keyboard_mapping_reply(
            connection_, xcb_get_keyboard_mapping(connection_, meaning.key, 1), nullptr));
        const bool isOurs = now && now->keysyms_per_keycode > 0 &&
                            *xcb_get_keyboard_mapping_keysyms(now.get()) == meaning.symbol;
        if (isOurs)
            ours.push_back({.key = meaning.key, .symbol = XCB_NO_SYMBOL});
    }
    setMeanings(ours);
}

bool X11TestKeys::finish() const {
    const XcbOwned<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    // The display tells everybody of each new meaning, and nobody else takes that off the queue.
    while (const XcbOwned<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
    }
    return reply != nullptr;
}

} // namespace tessarine
