#include "tests/desktop/panel/PanelDesktop.h"

#include <string_view>

namespace tessarine {

namespace {

template <typename Event> const Event& as(const void* event) {
    return *static_cast<const Event*>(event);
}

} // namespace

PanelDesktop::PanelDesktop()
    : ProgramOnDesktop({{"DISPLAY", variable("DISPLAY")}}),
      clipboard_(xcb_generate_id(neighbour.xcb())) {
    xcb_create_window(neighbour.xcb(),
                      XCB_COPY_FROM_PARENT,
                      clipboard_,
                      neighbour.root(),
                      0,
                      0,
                      1,
                      1,
                      0,
                      XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT,
                      0,
                      nullptr);
    neighbour.movePointer(2, 2); // where no panel ever is
}

PanelDesktop::~PanelDesktop() = default;

void PanelDesktop::summon(const std::string& chord) {
    const int before = logged(shown);
    keys("key " + chord);
    ASSERT_TRUE(becomes(before + 1, shown));
}

void PanelDesktop::keys(const std::string& words) const {
    run("DISPLAY=" + environment.at("DISPLAY") + " xdotool " + words);
}

std::optional<X11Neighbour::Window> PanelDesktop::panelWindow() {
    auto* const xcb = neighbour.xcb();
    const XcbOwned<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(xcb, xcb_query_tree(xcb, neighbour.root()), nullptr));
    const auto* first = xcb_query_tree_children(tree.get());
    for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
        const auto asked =
            xcb_get_property(xcb, 0, first[i], XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 0, 16);
        const XcbOwned<xcb_get_property_reply_t> name(xcb_get_property_reply(xcb, asked, nullptr));
        const XcbOwned<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(
                xcb, xcb_get_window_attributes(xcb, first[i]), nullptr));
        if (!name || !attributes || attributes->map_state != XCB_MAP_STATE_VIEWABLE)
            continue;
        const std::string_view text(
            static_cast<const char*>(xcb_get_property_value(name.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(name.get())));
        if (text.starts_with("tessarine"))
            return first[i];
    }
    return std::nullopt;
}

std::optional<WindowFrame> PanelDesktop::panelFrame() {
    const auto window = panelWindow();
    return window ? geometry(*window) : std::nullopt;
}

std::optional<WindowFrame> PanelDesktop::frameOf(X11Neighbour::Window window) {
    // The manager's own window around it is a child of the root.
    while (true) {
        const XcbOwned<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(
            neighbour.xcb(), xcb_query_tree(neighbour.xcb(), window), nullptr));
        if (!tree)
            return std::nullopt;
        if (tree->parent == tree->root)
            return geometry(window);
        window = tree->parent;
    }
}

std::optional<WindowFrame> PanelDesktop::geometry(X11Neighbour::Window window) {
    const XcbOwned<xcb_get_geometry_reply_t> reply(xcb_get_geometry_reply(
        neighbour.xcb(), xcb_get_geometry(neighbour.xcb(), window), nullptr));
    if (!reply)
        return std::nullopt;
    return WindowFrame{
        .x = reply->x, .y = reply->y, .width = reply->width, .height = reply->height};
}

bool PanelDesktop::goesAway() {
    return waitUntil(patience, [&] { return !panelWindow(); });
}

std::string PanelDesktop::fieldText() {
    auto* const xcb = neighbour.xcb();
    const auto property = neighbour.display.atom("TESSARINE_TEST");
    const auto clipboard = neighbour.display.atom("CLIPBOARD");
    // Ours first, so that the panel is seen to take it.
    xcb_set_selection_owner(xcb, clipboard_, clipboard, XCB_CURRENT_TIME);
    neighbour.finish();
    keys("key ctrl+a ctrl+c");
    const auto owner = [&] {
        const XcbOwned<xcb_get_selection_owner_reply_t> reply(
            xcb_get_selection_owner_reply(xcb, xcb_get_selection_owner(xcb, clipboard), nullptr));
        return reply->owner;
    };
    if (!waitUntil(patience, [&] { return owner() != clipboard_; }))
        return "(the field gives nothing)";
    xcb_convert_selection(xcb,
                          clipboard_,
                          clipboard,
                          neighbour.display.atom("UTF8_STRING"),
                          property,
                          XCB_CURRENT_TIME);
    neighbour.finish();
    std::string text = "(the field doesn't answer)";
    waitUntil(patience, [&] {
        const XcbOwned<xcb_generic_event_t> event{xcb_poll_for_event(xcb)};
        if (!event || (event->response_type & 0x7f) != XCB_SELECTION_NOTIFY)
            return false;
        const XcbOwned<xcb_get_property_reply_t> reply(xcb_get_property_reply(
            xcb, xcb_get_property(xcb, 1, clipboard_, property, XCB_ATOM_ANY, 0, 8192), nullptr));
        text.assign(static_cast<const char*>(xcb_get_property_value(reply.get())),
                    static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
        return true;
    });
    return text;
}

bool PanelDesktop::paste(const std::string& text, const std::function<bool()>& holds) {
    auto* const xcb = neighbour.xcb();
    xcb_set_selection_owner(xcb, clipboard_, neighbour.display.atom("CLIPBOARD"), XCB_CURRENT_TIME);
    neighbour.finish();
    keys("key ctrl+v");
    return waitUntil(patience, [&] {
        while (const XcbOwned<xcb_generic_event_t> event{xcb_poll_for_event(xcb)}) {
            if ((event->response_type & 0x7f) == XCB_SELECTION_REQUEST)
                answerPaste(event.get(), text);
        }
        return holds();
    });
}

void PanelDesktop::answerPaste(const void* event, const std::string& text) {
    auto* const xcb = neighbour.xcb();
    const auto& request = as<xcb_selection_request_event_t>(event);
    const auto utf8 = neighbour.display.atom("UTF8_STRING");
    auto property = request.property;
    if (request.target == neighbour.display.atom("TARGETS"))
        xcb_change_property(
            xcb, XCB_PROP_MODE_REPLACE, request.requestor, property, XCB_ATOM_ATOM, 32, 1, &utf8);
    else if (request.target == utf8)
        xcb_change_property(xcb,
                            XCB_PROP_MODE_REPLACE,
                            request.requestor,
                            property,
                            utf8,
                            8,
                            static_cast<std::uint32_t>(text.size()),
                            text.data());
    else
        property = XCB_ATOM_NONE;
    xcb_selection_notify_event_t answer{};
    answer.response_type = XCB_SELECTION_NOTIFY;
    answer.time = request.time;
    answer.requestor = request.requestor;
    answer.selection = request.selection;
    answer.target = request.target;
    answer.property = property;
    xcb_send_event(xcb, 0, request.requestor, 0, reinterpret_cast<const char*>(&answer));
    neighbour.finish();
}

std::string PanelDesktop::keysOfNeighbour() {
    const auto* setup = xcb_get_setup(neighbour.xcb());
    const auto first = setup->min_keycode;
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - first + 1);
    const XcbOwned<xcb_get_keyboard_mapping_reply_t> mapping(xcb_get_keyboard_mapping_reply(
        neighbour.xcb(), xcb_get_keyboard_mapping(neighbour.xcb(), first, count), nullptr));
    const auto* symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
    std::string letters;
    while (const XcbOwned<xcb_generic_event_t> event{xcb_poll_for_event(neighbour.xcb())}) {
        if ((event->response_type & 0x7f) != XCB_KEY_PRESS)
            continue;
        const auto key = as<xcb_key_press_event_t>(event.get()).detail - first;
        const auto symbol = symbols[key * mapping->keysyms_per_keycode];
        if (symbol < 0x80) // the keys held for a chord are everybody's
            letters += static_cast<char>(symbol);
    }
    return letters;
}

} // namespace tessarine
