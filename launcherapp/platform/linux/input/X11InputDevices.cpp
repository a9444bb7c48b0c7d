#include "launcherapp/platform/linux/input/X11InputDevices.h"

#include "launcherapp/platform/linux/XcbOwned.h"

#include <xcb/randr.h>
#include <xcb/xcb.h>
#include <xcb/xinput.h>

#include <algorithm>
#include <string_view>

namespace tessarine {

namespace {

bool hasExtension(xcb_connection_t* connection, std::string_view name) {
    const auto cookie =
        xcb_query_extension(connection, static_cast<std::uint16_t>(name.size()), name.data());
    const XcbOwned<xcb_query_extension_reply_t> reply(
        xcb_query_extension_reply(connection, cookie, nullptr));
    return reply && reply->present;
}

xcb_window_t rootOf(xcb_connection_t* connection) {
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

} // namespace

X11InputDevices::X11InputDevices(xcb_connection_t* connection) : connection_(connection) {
    const auto* extension = xcb_get_extension_data(connection, &xcb_input_id);
    if (!extension || !extension->present)
        return;
    extension_ = extension->major_opcode;
    const auto cookie = xcb_input_xi_query_device(connection, XCB_INPUT_DEVICE_ALL);
    const XcbOwned<xcb_input_xi_query_device_reply_t> reply(
        xcb_input_xi_query_device_reply(connection, cookie, nullptr));
    if (!reply)
        return;
    for (auto each = xcb_input_xi_query_device_infos_iterator(reply.get()); each.rem > 0;
         xcb_input_xi_device_info_next(&each)) {
        if (each.data->type == XCB_INPUT_DEVICE_TYPE_MASTER_KEYBOARD)
            keyboards_.push_back(each.data->deviceid);
    }
}

bool X11InputDevices::isGrabbed(std::span<const std::uint8_t> keyCodes,
                                std::span<const std::uint16_t> states) const {
    // A grab for a moment shows it. One of each keyboard meets those of all keyboards at once too.
    // A press may find it all the same, and then it comes here.
    constexpr std::uint32_t events = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS;
    const std::vector<std::uint32_t> modifiers(states.begin(), states.end());
    const auto count = static_cast<std::uint16_t>(modifiers.size());
    const auto root = rootOf(connection_);
    std::vector<xcb_input_xi_passive_grab_device_cookie_t> cookies;
    for (const auto keyCode : keyCodes) {
        for (const auto keyboard : keyboards_) {
            cookies.push_back(xcb_input_xi_passive_grab_device(connection_,
                                                               XCB_CURRENT_TIME,
                                                               root,
                                                               XCB_NONE,
                                                               keyCode,
                                                               keyboard,
                                                               count,
                                                               1,
                                                               XCB_INPUT_GRAB_TYPE_KEYCODE,
                                                               XCB_INPUT_GRAB_MODE_22_ASYNC,
                                                               XCB_INPUT_GRAB_MODE_22_ASYNC,
                                                               XCB_INPUT_GRAB_OWNER_NO_OWNER,
                                                               &events,
                                                               modifiers.data()));
            xcb_input_xi_passive_ungrab_device(connection_,
                                               root,
                                               keyCode,
                                               keyboard,
                                               count,
                                               XCB_INPUT_GRAB_TYPE_KEYCODE,
                                               modifiers.data());
        }
    }
    bool isGrabbed = false;
    for (const auto cookie : cookies) {
        const XcbOwned<xcb_input_xi_passive_grab_device_reply_t> reply(
            xcb_input_xi_passive_grab_device_reply(connection_, cookie, nullptr));
        // The reply lists the states that could not be had.
        isGrabbed = isGrabbed || (reply && reply->num_modifiers > 0);
    }
    return isGrabbed;
}

std::optional<X11InputDevices::KeyPress>
X11InputDevices::keyPress(const xcb_ge_generic_event_t& event) const {
    if (event.extension != extension_ || event.event_type != XCB_INPUT_KEY_PRESS)
        return std::nullopt;
    const auto& press = reinterpret_cast<const xcb_input_key_press_event_t&>(event);
    return KeyPress{.key = static_cast<std::uint8_t>(press.detail),
                    .state = static_cast<std::uint16_t>(press.mods.effective),
                    .time = press.time};
}

bool isWaylandsDisplay(xcb_connection_t* connection) {
    if (hasExtension(connection, "XWAYLAND"))
        return true;
    // Before its version 23.1 it shows by the names of its monitors alone.
    if (!hasExtension(connection, "RANDR"))
        return false;
    const auto cookie = xcb_randr_get_screen_resources_current(connection, rootOf(connection));
    const XcbOwned<xcb_randr_get_screen_resources_current_reply_t> screen(
        xcb_randr_get_screen_resources_current_reply(connection, cookie, nullptr));
    if (!screen || screen->num_outputs == 0)
        return false;
    const auto output = *xcb_randr_get_screen_resources_current_outputs(screen.get());
    const XcbOwned<xcb_randr_get_output_info_reply_t> info(xcb_randr_get_output_info_reply(
        connection,
        xcb_randr_get_output_info(connection, output, screen->config_timestamp),
        nullptr));
    if (!info)
        return false;
    const std::string_view name(
        reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get())), info->name_len);
    return name.starts_with("XWAYLAND");
}

} // namespace tessarine
