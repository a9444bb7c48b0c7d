#include "tests/wayland/standin/StandInWindows.h"

#include <wlr-foreign-toplevel-management-unstable-v1-server.h>

#include <cstdint>

namespace tessarine {

struct StandInWindows::Requests {
    static StandInWindows& owner(wl_resource* resource) {
        return *static_cast<StandInWindows*>(wl_resource_get_user_data(resource));
    }

    static void activate(wl_client*, wl_resource* window, wl_resource*) {
        owner(window).compositor_.note("activate");
    }

    static void close(wl_client*, wl_resource* window) { owner(window).compositor_.note("close"); }

    static void unsetMinimized(wl_client*, wl_resource* window) {
        owner(window).compositor_.note("unhide");
    }

    static void destroy(wl_client*, wl_resource* window) { wl_resource_destroy(window); }

    static void managerGone(wl_resource* manager) { std::erase(owner(manager).managers_, manager); }

    static constexpr struct zwlr_foreign_toplevel_handle_v1_interface ofWindow {
        .unset_minimized = unsetMinimized, .activate = activate, .close = close, .destroy = destroy
    };

    static constexpr struct zwlr_foreign_toplevel_manager_v1_interface ofManager {};
};

StandInWindows::StandInWindows(StandInCompositor& compositor)
    : compositor_(compositor), service_{.interface = &zwlr_foreign_toplevel_manager_v1_interface,
                                        .version = 3,
                                        .requests = &Requests::ofManager,
                                        .data = this,
                                        .bound = [this](wl_resource* made) {
                                            managers_.push_back(made);
                                            wl_resource_set_destructor(made, Requests::managerGone);
                                        }} {
    compositor_.offer(service_);
}

StandInWindows::~StandInWindows() {
    compositor_.disconnectAll();
}

void StandInWindows::show(const std::string& applicationID) {
    compositor_.run([&] {
        for (auto* const manager : managers_) {
            auto* const window = wl_resource_create(wl_resource_get_client(manager),
                                                    &zwlr_foreign_toplevel_handle_v1_interface,
                                                    wl_resource_get_version(manager),
                                                    0);
            wl_resource_set_implementation(window, &Requests::ofWindow, this, nullptr);
            zwlr_foreign_toplevel_manager_v1_send_toplevel(manager, window);
            zwlr_foreign_toplevel_handle_v1_send_app_id(window, applicationID.c_str());
            std::uint32_t active = ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_ACTIVATED;
            wl_array states{.size = sizeof active, .alloc = 0, .data = &active};
            zwlr_foreign_toplevel_handle_v1_send_state(window, &states);
            zwlr_foreign_toplevel_handle_v1_send_done(window);
        }
    });
}

void StandInWindows::finish() {
    compositor_.run([&] {
        for (const auto managers = managers_; auto* const manager : managers) {
            zwlr_foreign_toplevel_manager_v1_send_finished(manager);
            wl_resource_destroy(manager);
        }
    });
}

} // namespace tessarine
