#include "benchmarks/PanelProbeDisplay.h"

#include <xcb/damage.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <poll.h>
#include <string_view>

namespace tessarine {

namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};

template <typename Reply> using Owned = std::unique_ptr<Reply, Free>;

constexpr std::uint32_t keysymSuper = 0xffeb;
constexpr std::uint32_t keysymAlt = 0xffe9;
constexpr std::uint32_t keysymControl = 0xffe3;

[[noreturn]] void giveUp(const char* reason) {
    std::printf("NOT MEASURED: %s\n", reason);
    std::exit(2);
}

template <typename Event> const Event& as(const void* event) {
    return *static_cast<const Event*>(event);
}

} // namespace

PanelProbeDisplay::PanelProbeDisplay() : connection_(xcb_connect(nullptr, nullptr)) {
    if (xcb_connection_has_error(connection_))
        giveUp("there is no X11 display");
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    const auto* damage = xcb_get_extension_data(connection_, &xcb_damage_id);
    const auto* keys = xcb_get_extension_data(connection_, &xcb_test_id);
    if (!damage->present || !keys->present)
        giveUp("the display lacks DAMAGE or XTEST");
    const Owned<xcb_damage_query_version_reply_t> version(xcb_damage_query_version_reply(
        connection_, xcb_damage_query_version(connection_, 1, 1), nullptr));
    damageEvent_ = damage->first_event + XCB_DAMAGE_NOTIFY;
    const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection_, root_, XCB_CW_EVENT_MASK, &events);
    receiver_ = xcb_generate_id(connection_);
    xcb_create_window(connection_,
                      XCB_COPY_FROM_PARENT,
                      receiver_,
                      root_,
                      0,
                      0,
                      1,
                      1,
                      0,
                      XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT,
                      0,
                      nullptr);
    xcb_flush(connection_);
}

PanelProbeDisplay::~PanelProbeDisplay() {
    xcb_disconnect(connection_);
}

std::uint8_t PanelProbeDisplay::keycode(std::uint32_t keysym) const {
    const auto* setup = xcb_get_setup(connection_);
    const auto first = setup->min_keycode;
    const Owned<xcb_get_keyboard_mapping_reply_t> mapping(xcb_get_keyboard_mapping_reply(
        connection_,
        xcb_get_keyboard_mapping(
            connection_, first, static_cast<std::uint8_t>(setup->max_keycode - first + 1)),
        nullptr));
    const auto* symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
    const auto count = xcb_get_keyboard_mapping_keysyms_length(mapping.get());
    const auto* found = std::find(symbols, symbols + count, keysym);
    if (found == symbols + count)
        giveUp("the keyboard lacks a key that is to be pressed");
    return static_cast<std::uint8_t>(first + (found - symbols) / mapping->keysyms_per_keycode);
}

std::optional<PanelProbeDisplay::Chord> PanelProbeDisplay::chord(const std::string& name) const {
    const struct {
        std::string_view word;
        std::uint32_t keysym;
        std::uint16_t mask;
    } modifiers[] = {{"super+", keysymSuper, XCB_MOD_MASK_4},
                     {"alt+", keysymAlt, XCB_MOD_MASK_1},
                     {"ctrl+", keysymControl, XCB_MOD_MASK_CONTROL}};

    Chord chord;
    std::string_view rest = name;
    for (const auto& [word, keysym, mask] : modifiers) {
        if (!rest.starts_with(word))
            continue;
        chord.modifier = keycode(keysym);
        chord.mask = mask;
        rest.remove_prefix(word.size());
    }
    if (rest == "space")
        rest = " ";
    if (rest.size() != 1)
        return std::nullopt;
    chord.key = keycode(static_cast<std::uint32_t>(rest.front()));
    return chord;
}

void PanelProbeDisplay::fake(std::uint8_t type, std::uint8_t detail, int x, int y) {
    xcb_test_fake_input(connection_,
                        type,
                        detail,
                        XCB_CURRENT_TIME,
                        root_,
                        static_cast<std::int16_t>(x),
                        static_cast<std::int16_t>(y),
                        0);
}

PanelProbeDisplay::Clock::time_point PanelProbeDisplay::press(const Chord& chord) {
    if (chord.modifier) {
        fake(XCB_KEY_PRESS, chord.modifier);
        const Owned<xcb_get_input_focus_reply_t> done(
            xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    }
    const auto at = Clock::now();
    fake(XCB_KEY_PRESS, chord.key);
    fake(XCB_KEY_RELEASE, chord.key);
    if (chord.modifier)
        fake(XCB_KEY_RELEASE, chord.modifier);
    xcb_flush(connection_);
    return at;
}

PanelProbeDisplay::Clock::time_point PanelProbeDisplay::pressLetter(char letter) {
    return pressKeysym(static_cast<std::uint32_t>(letter));
}

PanelProbeDisplay::Clock::time_point PanelProbeDisplay::pressKeysym(std::uint32_t keysym) {
    return press({.key = keycode(keysym)});
}

void PanelProbeDisplay::click(int x, int y, int times) {
    fake(XCB_MOTION_NOTIFY, 0, x, y);
    for (int i = 0; i < times; ++i) {
        fake(XCB_BUTTON_PRESS, 1);
        fake(XCB_BUTTON_RELEASE, 1);
    }
    xcb_flush(connection_);
}

bool PanelProbeDisplay::isPanel(std::uint32_t window) {
    constexpr std::string_view instance = "tessarine";
    const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection_,
        xcb_get_property(connection_, 0, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 0, 64),
        nullptr));
    if (!reply)
        return false;
    const std::string_view text(
        static_cast<const char*>(xcb_get_property_value(reply.get())),
        static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
    return text.starts_with(instance);
}

void PanelProbeDisplay::watch(std::uint32_t window) {
    if (window == panel_)
        return;
    panel_ = window;
    damage_ = xcb_generate_id(connection_);
    xcb_damage_create(connection_, damage_, panel_, XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
    xcb_flush(connection_);
}

std::optional<PanelProbeDisplay::Sight> PanelProbeDisplay::sight(const void* event) {
    const auto now = Clock::now();
    const int type = as<xcb_generic_event_t>(event).response_type & 0x7f;
    if (type == damageEvent_) {
        const auto& notice = as<xcb_damage_notify_event_t>(event);
        if (notice.drawable != panel_)
            return std::nullopt;
        return Sight{.kind = Sight::Kind::drawn,
                     .at = now,
                     .top = notice.area.y,
                     .bottom = notice.area.y + notice.area.height,
                     .width = notice.area.width};
    }
    if (type == XCB_MAP_NOTIFY) {
        const auto& notice = as<xcb_map_notify_event_t>(event);
        if (!notice.override_redirect || (notice.window != panel_ && !isPanel(notice.window)))
            return std::nullopt;
        watch(notice.window);
        return Sight{.kind = Sight::Kind::mapped, .at = now};
    }
    // The next program may get the same numbers for its windows.
    if (type == XCB_DESTROY_NOTIFY && as<xcb_destroy_notify_event_t>(event).window == panel_)
        panel_ = XCB_WINDOW_NONE;
    if (type == XCB_UNMAP_NOTIFY && as<xcb_unmap_notify_event_t>(event).window == panel_)
        return Sight{.kind = Sight::Kind::unmapped, .at = now};
    return std::nullopt;
}

std::optional<PanelProbeDisplay::Sight> PanelProbeDisplay::next(Clock::time_point deadline) {
    for (;;) {
        while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
            if (const auto seen = sight(event.get()))
                return seen;
        }
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
        if (left < 0 || xcb_connection_has_error(connection_))
            return std::nullopt;
        pollfd socket{.fd = xcb_get_file_descriptor(connection_), .events = POLLIN, .revents = 0};
        ::poll(&socket, 1, static_cast<int>(left) + 1);
    }
}

void PanelProbeDisplay::forget() {
    while (next(Clock::now())) {
    }
}

PanelProbeDisplay::Extent PanelProbeDisplay::panel() {
    const Owned<xcb_get_geometry_reply_t> reply(
        xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, panel_), nullptr));
    if (!reply)
        return {};
    return {.x = reply->x, .y = reply->y, .width = reply->width, .height = reply->height};
}

/// Takes the chord and gives it back while the display serves nobody else, so that whoever wants
/// it at the same moment never finds it taken by us.
bool PanelProbeDisplay::isTaken(const Chord& chord) {
    xcb_grab_server(connection_);
    const auto grab = xcb_grab_key_checked(
        connection_, 0, root_, chord.mask, chord.key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    xcb_ungrab_key(connection_, chord.key, root_, chord.mask);
    xcb_ungrab_server(connection_);
    const Owned<xcb_generic_error_t> error(xcb_request_check(connection_, grab));
    return error && error->error_code == XCB_ACCESS;
}

std::uint32_t PanelProbeDisplay::atom(const char* name) {
    const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        connection_,
        xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(std::strlen(name)), name),
        nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

std::string PanelProbeDisplay::selectedText() {
    const auto property = atom("TESSARINE_PROBE");
    xcb_convert_selection(
        connection_, receiver_, XCB_ATOM_PRIMARY, atom("UTF8_STRING"), property, XCB_CURRENT_TIME);
    xcb_flush(connection_);
    const auto deadline = Clock::now() + std::chrono::seconds(2);
    while (Clock::now() < deadline) {
        const Owned<xcb_generic_event_t> event{xcb_poll_for_event(connection_)};
        if (!event) {
            pollfd socket{
                .fd = xcb_get_file_descriptor(connection_), .events = POLLIN, .revents = 0};
            ::poll(&socket, 1, 10);
            continue;
        }
        if ((event->response_type & 0x7f) != XCB_SELECTION_NOTIFY)
            continue;
        const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(
            connection_,
            xcb_get_property(connection_, 1, receiver_, property, XCB_ATOM_ANY, 0, 4096),
            nullptr));
        if (!reply)
            return {};
        return {static_cast<const char*>(xcb_get_property_value(reply.get())),
                static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
    }
    return {};
}

} // namespace tessarine
