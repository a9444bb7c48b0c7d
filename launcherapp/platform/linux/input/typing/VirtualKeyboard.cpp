#include "launcherapp/platform/linux/input/typing/VirtualKeyboard.h"

#include "launcherapp/platform/linux/files/FileDescriptor.h"

#include <virtual-keyboard-unstable-v1.h>
#include <wayland-client.h>

#include <chrono>
#include <sys/mman.h>
#include <unistd.h>

namespace tessarine {

bool VirtualKeyboard::isOffered(const WaylandRegistry& registry) {
    return registry.find(zwp_virtual_keyboard_manager_v1_interface.name).has_value();
}

bool VirtualKeyboard::hasSeat(const WaylandRegistry& registry) {
    return registry.find(wl_seat_interface.name).has_value();
}

VirtualKeyboard::VirtualKeyboard(WaylandConnection& connection)
    : connection_(connection), seatGlobal_(connection.registry().find(wl_seat_interface.name)),
      seat_(connection.registry().bindFirst<wl_seat>(wl_seat_interface, 1)),
      manager_(connection.registry().bindFirst<zwp_virtual_keyboard_manager_v1>(
          zwp_virtual_keyboard_manager_v1_interface, 1)) {
    if (seat_ && manager_)
        keyboard_ = zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(manager_, seat_);
}

VirtualKeyboard::~VirtualKeyboard() {
    if (keyboard_)
        zwp_virtual_keyboard_v1_destroy(keyboard_);
    if (manager_)
        zwp_virtual_keyboard_manager_v1_destroy(manager_);
    if (seat_)
        wl_seat_destroy(seat_);
    connection_.flush();
}

bool VirtualKeyboard::isPluggedIn() const {
    return keyboard_ && connection_.registry().find(wl_seat_interface.name) == seatGlobal_;
}

bool VirtualKeyboard::layOut(const std::string& keymap) {
    const auto size = keymap.size() + 1; // with the NUL at its end
    const FileDescriptor file(::memfd_create("keymap", MFD_CLOEXEC));
    if (!keyboard_ || !file ||
        ::write(file.number(), keymap.c_str(), size) != static_cast<ssize_t>(size))
        return false;
    zwp_virtual_keyboard_v1_keymap(keyboard_,
                                   WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1,
                                   file.number(),
                                   static_cast<std::uint32_t>(size));
    return true;
}

void VirtualKeyboard::press(std::uint32_t key) {
    set(key, WL_KEYBOARD_KEY_STATE_PRESSED);
}

void VirtualKeyboard::release(std::uint32_t key) {
    set(key, WL_KEYBOARD_KEY_STATE_RELEASED);
}

void VirtualKeyboard::tap(std::uint32_t key) {
    press(key);
    release(key);
}

void VirtualKeyboard::hold(std::uint32_t modifiers) {
    zwp_virtual_keyboard_v1_modifiers(keyboard_, modifiers, 0, 0, 0);
}

void VirtualKeyboard::set(std::uint32_t key, std::uint32_t state) {
    const auto now = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now().time_since_epoch());
    zwp_virtual_keyboard_v1_key(keyboard_, static_cast<std::uint32_t>(now.count()), key, state);
}

} // namespace tessarine
