#include "tests/wayland/TestKeyboard.h"

#include "launcherapp/platform/linux/files/FileDescriptor.h"
#include "launcherapp/platform/linux/wayland/WaylandConnection.h"
#include "tests/wayland/TestKeys.h"

#include <virtual-keyboard-unstable-v1.h>
#include <wayland-client.h>
#include <xkbcommon/xkbcommon.h>

#include <cstring>
#include <stdexcept>
#include <sys/mman.h>
#include <vector>

namespace tessarine {

namespace {

template <auto destroy> struct Destroy {
    template <typename Thing> void operator()(Thing* thing) const { destroy(thing); }
};

using Context = std::unique_ptr<xkb_context, Destroy<xkb_context_unref>>;
using Keymap = std::unique_ptr<xkb_keymap, Destroy<xkb_keymap_unref>>;
using State = std::unique_ptr<xkb_state, Destroy<xkb_state_unref>>;

constexpr std::uint32_t evdevOffset = 8; ///< of XKB's key codes from the kernel's

} // namespace

struct TestKeyboard::Parts {
    explicit Parts(const std::string& layout) {
        if (!connection.answers())
            throw std::runtime_error("no compositor answers");
        seat = connection.registry().bindFirst<wl_seat>(wl_seat_interface, 1);
        manager = connection.registry().bindFirst<zwp_virtual_keyboard_manager_v1>(
            zwp_virtual_keyboard_manager_v1_interface, 1);
        if (!seat || !manager)
            throw std::runtime_error("the compositor takes no keyboard");
        keyboard = zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(manager, seat);
        const xkb_rule_names names{.rules = nullptr,
                                   .model = nullptr,
                                   .layout = layout.c_str(),
                                   .variant = nullptr,
                                   .options = nullptr};
        keymap.reset(xkb_keymap_new_from_names(context.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS));
        state.reset(xkb_state_new(keymap.get()));
        sendKeymap();
    }

    ~Parts() {
        if (keyboard)
            zwp_virtual_keyboard_v1_destroy(keyboard);
        if (manager)
            zwp_virtual_keyboard_manager_v1_destroy(manager);
        if (seat)
            wl_seat_destroy(seat);
        connection.roundTrip();
    }

    void sendKeymap() {
        const std::unique_ptr<char, Destroy<std::free>> text(
            xkb_keymap_get_as_string(keymap.get(), XKB_KEYMAP_FORMAT_TEXT_V1));
        const auto size = std::strlen(text.get()) + 1;
        const FileDescriptor file(::memfd_create("keymap", MFD_CLOEXEC));
        if (::write(file.number(), text.get(), size) != static_cast<ssize_t>(size))
            throw std::runtime_error("no memory for the keymap");
        zwp_virtual_keyboard_v1_keymap(keyboard,
                                       WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1,
                                       file.number(),
                                       static_cast<std::uint32_t>(size));
        connection.roundTrip();
    }

    void set(std::uint32_t key, bool isDown) {
        const auto now = std::chrono::duration_cast<std::chrono::milliseconds>(
            std::chrono::steady_clock::now().time_since_epoch());
        zwp_virtual_keyboard_v1_key(keyboard,
                                    static_cast<std::uint32_t>(now.count()),
                                    key,
                                    isDown ? WL_KEYBOARD_KEY_STATE_PRESSED
                                           : WL_KEYBOARD_KEY_STATE_RELEASED);
        xkb_state_update_key(state.get(), key + evdevOffset, isDown ? XKB_KEY_DOWN : XKB_KEY_UP);
        const auto part = [this](xkb_state_component component) {
            return xkb_state_serialize_mods(state.get(), component);
        };
        zwp_virtual_keyboard_v1_modifiers(keyboard,
                                          part(XKB_STATE_MODS_DEPRESSED),
                                          part(XKB_STATE_MODS_LATCHED),
                                          part(XKB_STATE_MODS_LOCKED),
                                          0);
        connection.roundTrip();
    }

    WaylandConnection connection;
    wl_seat* seat = nullptr;
    zwp_virtual_keyboard_manager_v1* manager = nullptr;
    zwp_virtual_keyboard_v1* keyboard = nullptr;
    Context context{xkb_context_new(XKB_CONTEXT_NO_FLAGS)};
    Keymap keymap;
    State state;
};

TestKeyboard::TestKeyboard(const std::string& layout) : parts_(std::make_unique<Parts>(layout)) {}

TestKeyboard::~TestKeyboard() = default;

void TestKeyboard::down(std::uint32_t key) {
    parts_->set(key, true);
}

void TestKeyboard::up(std::uint32_t key) {
    parts_->set(key, false);
}

void TestKeyboard::press(std::initializer_list<std::uint32_t> keys) {
    const std::vector<std::uint32_t> inOrder(keys);
    for (const auto key : inOrder)
        down(key);
    for (auto key = inOrder.rbegin(); key != inOrder.rend(); ++key)
        up(*key);
}

void TestKeyboard::type(const std::string& text) {
    for (const char character : text)
        press({keyOf(character)});
}

} // namespace tessarine
