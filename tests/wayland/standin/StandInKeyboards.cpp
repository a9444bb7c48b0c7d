#include "tests/wayland/standin/StandInKeyboards.h"

#include <virtual-keyboard-unstable-v1-server.h>
#include <wayland-server-protocol.h>

#include <cstdint>
#include <unistd.h>

namespace tessarine {

struct StandInKeyboards::Requests {
    static StandInKeyboards& owner(wl_resource* resource) {
        return *static_cast<StandInKeyboards*>(wl_resource_get_user_data(resource));
    }

    static void keymap(wl_client*, wl_resource*, std::uint32_t, std::int32_t file, std::uint32_t) {
        ::close(file);
    }

    static void
    key(wl_client*, wl_resource* keyboard, std::uint32_t, std::uint32_t code, std::uint32_t state) {
        if (state == WL_KEYBOARD_KEY_STATE_PRESSED)
            owner(keyboard).compositor_.note("press " + std::to_string(code));
    }

    static void modifiers(
        wl_client*, wl_resource*, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t) {}

    static void unplug(wl_client*, wl_resource* keyboard) {
        owner(keyboard).compositor_.note("unplug");
        wl_resource_destroy(keyboard);
    }

    static void plugIn(wl_client* client, wl_resource* manager, wl_resource*, std::uint32_t id) {
        owner(manager).compositor_.note("plug in");
        auto* const made = wl_resource_create(client, &zwp_virtual_keyboard_v1_interface, 1, id);
        wl_resource_set_implementation(
            made, &ofKeyboard, wl_resource_get_user_data(manager), nullptr);
    }

    static constexpr struct zwp_virtual_keyboard_v1_interface ofKeyboard {
        .keymap = keymap, .key = key, .modifiers = modifiers, .destroy = unplug
    };

    static constexpr struct zwp_virtual_keyboard_manager_v1_interface ofManager {
        .create_virtual_keyboard = plugIn
    };
};

StandInKeyboards::StandInKeyboards(StandInCompositor& compositor)
    : compositor_(compositor), service_{.interface = &zwp_virtual_keyboard_manager_v1_interface,
                                        .requests = &Requests::ofManager,
                                        .data = this} {
    compositor_.offer(service_);
}

StandInKeyboards::~StandInKeyboards() {
    compositor_.disconnectAll();
}

} // namespace tessarine
